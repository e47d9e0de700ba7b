// The choice of kernels: made once, from NEQUAR_KERNEL if it names a variant, else the best that
// the CPU can run.
#include "kernel/dispatch.h"

#include <cstdlib>
#include <cstring>

#include "kernel/kernel.h"

namespace nequar::kernel {

namespace {

Variant wanted_variant() {
    const char* name = std::getenv("NEQUAR_KERNEL");
    if (name != nullptr) {
        for (int i = 0; i < kVariantCount; ++i) {
            const auto variant = static_cast<Variant>(i);
            if (std::strcmp(name, name_of(variant)) == 0) return variant;
        }
    }
    return Variant::avx512;
}

// Every caller computes the same value: the environment and the CPU do not change under us, and the
// function's static keeps even a changed environment from giving double and float two variants.
Variant chosen_variant() {
    static const Variant variant = best_up_to(wanted_variant());
    return variant;
}

}  // namespace

const char* name_of(Variant variant) {
    switch (variant) {
        case Variant::reference:
            return "reference";
        case Variant::baseline:
            return "baseline";
        case Variant::avx2:
            return "avx2";
        case Variant::avx512:
            return "avx512";
    }
    return "reference";
}

bool can_run(Variant variant) {
    switch (variant) {
        case Variant::reference:
        case Variant::baseline:
            return true;
#if defined(__x86_64__)
        // The builtins ask the CPU, and whether the system saves the wide registers.
        case Variant::avx2:
            return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
        case Variant::avx512:
            return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
                   __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
                   __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bw");
#endif
        default:
            return false;
    }
}

Variant best_up_to(Variant wanted) {
    for (int i = static_cast<int>(wanted); i > 0; --i) {
        const auto variant = static_cast<Variant>(i);
        if (can_run(variant)) return variant;
    }
    return Variant::reference;
}

template <>
const Table<double>& table_of(Variant variant) {
    switch (variant) {
        case Variant::baseline:
            return baseline::table_of_double();
#if defined(__x86_64__)
        case Variant::avx2:
            return avx2::table_of_double();
        case Variant::avx512:
            return avx512::table_of_double();
#endif
        default:
            return reference::table_of_double();
    }
}

template <>
const Table<float>& table_of(Variant variant) {
    switch (variant) {
        case Variant::baseline:
            return baseline::table_of_float();
#if defined(__x86_64__)
        case Variant::avx2:
            return avx2::table_of_float();
        case Variant::avx512:
            return avx512::table_of_float();
#endif
        default:
            return reference::table_of_float();
    }
}

namespace detail {

constinit std::atomic<const Table<double>*> chosen_table_of_double{nullptr};
constinit std::atomic<const Table<float>*> chosen_table_of_float{nullptr};

const Table<double>& choose_table_of_double() {
    const Table<double>& table = table_of<double>(chosen_variant());
    chosen_table_of_double.store(&table, std::memory_order_release);
    return table;
}

const Table<float>& choose_table_of_float() {
    const Table<float>& table = table_of<float>(chosen_variant());
    chosen_table_of_float.store(&table, std::memory_order_release);
    return table;
}

}  // namespace detail

const char* variant_name() {
    return table<double>().name;
}

}  // namespace nequar::kernel
