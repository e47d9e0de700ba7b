// The two figures that spectral methods ask for, where the user gives none.
#pragma once

#include <algorithm>
#include <limits>

namespace program {

// Values below this share of the largest are rounding: the larger dimension times the unit.
template <class Real>
double rounding_tolerance(int height, int width) {
    return std::max(height, width) * static_cast<double>(std::numeric_limits<Real>::epsilon());
}

// About two steps a value are needed; this leaves room for the unlucky.
inline int iteration_limit(int order) {
    constexpr int most = 2000000000;
    return order > (most - 100) / 30 ? most : 100 + 30 * order;
}

}  // namespace program
