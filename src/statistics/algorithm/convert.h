// Numbers from one element type to another. To whole numbers: the nearest, halves to even; what is
// out of range becomes the nearest limit, NaN becomes 0.
#pragma once

#include <cmath>
#include <limits>
#include <type_traits>

#include "core/view.h"

namespace nequar {

template <class From, class To>
void convert(Size n, const From* from, To* to) {
    for (Size i = 0; i < n; ++i) {
        if constexpr (std::is_integral_v<To> && std::is_floating_point_v<From>) {
            constexpr double low = std::numeric_limits<To>::min();
            constexpr double high = std::numeric_limits<To>::max();
            const double x = static_cast<double>(from[i]);
            const double number = x == x ? x : 0.0;
            to[i] = static_cast<To>(
                std::nearbyint(number < low ? low : (number > high ? high : number)));
        } else {
            to[i] = static_cast<To>(from[i]);
        }
    }
}

}  // namespace nequar
