// Which table of kernels this process uses.
#pragma once

#include <atomic>

#include "kernel/table.h"

namespace nequar::kernel {

enum class Variant { reference, baseline, avx2, avx512 };
inline constexpr int kVariantCount = 4;

const char* name_of(Variant variant);

// Whether the variant was compiled in and this CPU (and its system) can run it.
bool can_run(Variant variant);

// The best variant that can run here and is not above `wanted`: asking for what the CPU lacks falls
// back to the best one that it has.
Variant best_up_to(Variant wanted);

// The table of a variant that can run here.
template <class Real>
const Table<Real>& table_of(Variant variant);

namespace detail {
extern std::atomic<const Table<double>*> chosen_table_of_double;
extern std::atomic<const Table<float>*> chosen_table_of_float;
const Table<double>& choose_table_of_double();
const Table<float>& choose_table_of_float();
}  // namespace detail

// The table in use. Chosen at the first call; concurrent first calls make the same choice.
template <class Real>
const Table<Real>& table();

template <>
inline const Table<double>& table<double>() {
    const auto* chosen = detail::chosen_table_of_double.load(std::memory_order_acquire);
    return chosen != nullptr ? *chosen : detail::choose_table_of_double();
}

template <>
inline const Table<float>& table<float>() {
    const auto* chosen = detail::chosen_table_of_float.load(std::memory_order_acquire);
    return chosen != nullptr ? *chosen : detail::choose_table_of_float();
}

}  // namespace nequar::kernel
