// A column of a row-major matrix costs a cache line per element, whatever the loop: strided lines
// are walked once, in plain loops; contiguous ones go to the kernels.
#include "algebra/algorithm/lines.h"

#include "kernel/kernel.h"

namespace nequar {

template <class Real>
void add_lines(Strided<const Real> x, Strided<const Real> y, Strided<Real> z) {
    if (z.stride == 1) return kernel::add(z.size, x.data, y.data, z.data);
    for (Size i = 0; i < z.size; ++i) z(i) = x(i) + y(i);
}

template <class Real>
void add_lines_weighted(Strided<const Real> x, Strided<const Real> y, Real wx, Real wy,
                        Strided<Real> z) {
    if (z.stride == 1) return kernel::add_weighted(z.size, x.data, y.data, wx, wy, z.data);
    for (Size i = 0; i < z.size; ++i) z(i) = wx * x(i) + wy * y(i);
}

template <class Real>
void subtract_lines(Strided<const Real> x, Strided<const Real> y, Strided<Real> z) {
    if (z.stride == 1) return kernel::subtract(z.size, x.data, y.data, z.data);
    for (Size i = 0; i < z.size; ++i) z(i) = x(i) - y(i);
}

template <class Real>
void scale_line(Strided<const Real> x, Real c, Strided<Real> z) {
    if (z.stride == 1) return kernel::scale(z.size, x.data, c, z.data);
    for (Size i = 0; i < z.size; ++i) z(i) = c * x(i);
}

#define NEQUAR_INSTANTIATE(Real)                                                           \
    template void add_lines(Strided<const Real>, Strided<const Real>, Strided<Real>);      \
    template void add_lines_weighted(Strided<const Real>, Strided<const Real>, Real, Real, \
                                     Strided<Real>);                                       \
    template void subtract_lines(Strided<const Real>, Strided<const Real>, Strided<Real>); \
    template void scale_line(Strided<const Real>, Real, Strided<Real>);

NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)

}  // namespace nequar
