// Finding the non-zeros of a dense run, eight elements at a time.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <type_traits>

#include "core/view.h"

namespace nequar {

inline constexpr Size kMarked = 8;  // elements that one byte of marks tells of

// Whether any of eight elements is other than 0.0: has a bit besides the sign.
template <class Real>
bool any_nonzero(const Real* x) {
    using Bits = std::conditional_t<sizeof(Real) == 8, std::uint64_t, std::uint32_t>;
    Bits bits = 0;
    for (Size k = 0; k < kMarked; ++k) bits |= std::bit_cast<Bits>(x[k]);
    return static_cast<Bits>(bits << 1) != 0;
}

// The elements other than 0.0 among the `count` (at most eight) from x on, as bits.
template <class Real>
unsigned marks_of(const Real* x, Size count) {
    unsigned marks = 0;
    for (Size k = 0; k < count; ++k) marks |= unsigned(x[k] != Real(0)) << k;
    return marks;
}

// Calls visit(i) for every x[i] other than 0.0.
template <class Real, class Visit>
void for_nonzeros(const Real* x, Size count, const Visit& visit) {
    for (Size i = 0; i < count; i += kMarked) {
        if (i + kMarked <= count && !any_nonzero(x + i)) continue;
        for (unsigned marks = marks_of(x + i, std::min(kMarked, count - i)); marks != 0;
             marks &= marks - 1)
            visit(i + std::countr_zero(marks));
    }
}

}  // namespace nequar
