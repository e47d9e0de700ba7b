// Norms that survive elements whose squares over- or underflow.
//
//   norm2 = sqrt(s),  s = sum x_i^2                    while s is far from both ends of the range,
//         = m sqrt(sum (x_i / m)^2),  m a power of two near max |x_i|            otherwise.
//
// The plain sum is taken first and nearly always stands. Dividing by a power of two is exact, so
// the second form loses nothing. (Blue, A portable Fortran program to find the Euclidean norm of a
// vector, ACM TOMS 4, 1978, keeps three sums in one pass; a second pass that is almost never run is
// cheaper.)
#include <cmath>
#include <limits>

#include "kernel/dispatch.h"
#include "kernel/kernel.h"
#include "kernel/orientation.h"

namespace nequar::kernel {

namespace {

// A square that falls below the smallest normal number is off by half a subnormal step, eps min /
// 2, at most; n of them do not reach the last place of a sum above n min.
template <class Real>
bool stands(Real sum, Size n) {
    return sum > static_cast<Real>(n) * std::numeric_limits<Real>::min() &&
           sum <= std::numeric_limits<Real>::max();
}

// element(i) yields what is summed in squares.
template <class Real, class Element>
Real rescaled_norm(Size n, Element element) {
    Real largest = 0;
    for (Size i = 0; i < n; ++i) {
        const Real magnitude = std::abs(element(i));
        if (std::isnan(magnitude)) return magnitude;
        if (magnitude > largest) largest = magnitude;
    }
    if (largest == 0 || std::isinf(largest)) return largest;
    const int exponent = std::ilogb(largest);
    Real sum = 0;
    for (Size i = 0; i < n; ++i) {
        const Real scaled = std::scalbn(element(i), -exponent);
        sum += scaled * scaled;
    }
    return std::scalbn(std::sqrt(sum), exponent);
}

}  // namespace

template <class Real>
Real norm2(const Strided<const Real>& x) {
    if (x.stride < 0 && x.size > 0) return norm2<Real>(turned(x));
    const Real sum = table<Real>().sum_of_squares(x.size, x.data, x.stride);
    if (stands(sum, x.size)) return std::sqrt(sum);
    return rescaled_norm<Real>(x.size, [&](Size i) { return x(i); });
}

template <class Real>
Real distance2(const Strided<const Real>& x, const Strided<const Real>& y) {
    const Real sum = table<Real>().distance_squared(x.size, x.data, x.stride, y.data, y.stride);
    if (stands(sum, x.size)) return std::sqrt(sum);
    return rescaled_norm<Real>(x.size, [&](Size i) { return x(i) - y(i); });
}

template double norm2(const Strided<const double>&);
template float norm2(const Strided<const float>&);
template double distance2(const Strided<const double>&, const Strided<const double>&);
template float distance2(const Strided<const float>&, const Strided<const float>&);

}  // namespace nequar::kernel
