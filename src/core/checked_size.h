// Sizes are ints at the interface; their products are computed here, in 64 bits, and refused when
// they do not fit.
#pragma once

#include <limits>

#include "core/view.h"

namespace nequar {

// product = a * b; false (product untouched) when a factor is negative or the product overflows.
[[nodiscard]] inline bool checked_product(Size a, Size b, Size& product) {
    if (a < 0 || b < 0) return false;
    Size result = 0;
    if (__builtin_mul_overflow(a, b, &result)) return false;
    product = result;
    return true;
}

// The number of elements of a height x width array of `element_size` bytes each; false when it is
// negative or its bytes do not fit an address difference.
[[nodiscard]] inline bool checked_element_count(Size height, Size width, Size element_size,
                                                Size& count) {
    Size elements = 0;
    Size bytes = 0;
    if (!checked_product(height, width, elements)) return false;
    if (!checked_product(elements, element_size, bytes)) return false;
    if (bytes > std::numeric_limits<Size>::max() - 4096) return false;
    count = elements;
    return true;
}

// n(n+1)/2, the number of elements in a packed triangle of order n >= 0 (n an int, so it fits).
inline Size triangle_count(Size n) {
    return n % 2 == 0 ? (n / 2) * (n + 1) : n * ((n + 1) / 2);
}

}  // namespace nequar
