#include "frame/algorithm/norm.h"

#include <cmath>
#include <limits>

#include "kernel/kernel.h"

namespace nequar {
namespace {

// The largest |x_i|, or NaN when there is one.
template <class Real>
Real largest_magnitude_or_nan(Strided<const Real> x) {
    Real largest = 0;
    for (Size i = 0; i < x.size; ++i) {
        const Real magnitude = std::abs(x(i));
        if (!(magnitude <= largest)) largest = magnitude;
        if (std::isnan(magnitude)) break;
    }
    return largest;
}

// Divided, not multiplied by the reciprocal: 3 / 5 is 0.6, 3 * 0.2 is not.
template <class Real>
void divide(Strided<Real> x, Real divisor) {
    if (x.stride == 1) {
        for (Size i = 0; i < x.size; ++i) x.data[i] /= divisor;
    } else {
        for (Size i = 0; i < x.size; ++i) x(i) /= divisor;
    }
}

}  // namespace

template <class Real>
Real norm_p(Real p, Strided<const Real> x) {
    if (!(p > 0)) return std::numeric_limits<Real>::quiet_NaN();
    if (p == 1) return kernel::sum_of_magnitudes(x);
    if (p == 2) return kernel::norm2(x);
    const Real largest = largest_magnitude_or_nan(x);
    if (largest == 0 || std::isinf(p) || !std::isfinite(largest)) return largest;
    Real sum = 0;
    for (Size i = 0; i < x.size; ++i) sum += std::pow(std::abs(x(i)) / largest, p);
    return largest * std::pow(sum, 1 / p);
}

template <class Real>
bool normalize(Strided<Real> x) {
    using Limits = std::numeric_limits<Real>;
    const Real norm = kernel::norm2(reading(x));
    // Below min / eps the norm itself would lose places; above max it is infinite.
    if (norm > Limits::min() / Limits::epsilon() && norm <= Limits::max()) {
        divide(x, norm);
        return true;
    }
    const Real largest = largest_magnitude_or_nan(reading(x));
    if (largest == 0 || !std::isfinite(largest)) return false;
    const int exponent = std::ilogb(largest);
    for (Size i = 0; i < x.size; ++i) x(i) = std::scalbn(x(i), -exponent);
    divide(x, kernel::norm2(reading(x)));
    return true;
}

#define NEQUAR_INSTANTIATE(Real)                     \
    template Real norm_p(Real, Strided<const Real>); \
    template bool normalize(Strided<Real>);

NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)

}  // namespace nequar
