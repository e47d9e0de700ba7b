#include "linear_equation/algorithm/spectral_solve.h"

#include "kernel/kernel.h"

namespace nequar {

using kernel::Update;

template <class Real>
void solve_with_svd(View<const Real> u, Strided<const Real> s, View<const Real> v, View<Real> b,
                    View<Real> w) {
    kernel::gemm(Real(1), u.transposed(), reading(b), Update::set, w);
    for (Size i = 0; i < w.height; ++i)
        for (Size j = 0; j < w.width; ++j) w(i, j) /= s(i);
    kernel::gemm(Real(1), v, reading(w), Update::set, b);
}

template <class Real>
void invert_with_svd(View<const Real> u, Strided<const Real> s, View<Real> v, View<Real> inverse) {
    for (Size i = 0; i < v.height; ++i)
        for (Size j = 0; j < v.width; ++j) v(i, j) /= s(j);
    kernel::gemm(Real(1), reading(v), u.transposed(), Update::set, inverse);
}

#define NEQUAR_INSTANTIATE(Real)                                                          \
    template void solve_with_svd(View<const Real>, Strided<const Real>, View<const Real>, \
                                 View<Real>, View<Real>);                                 \
    template void invert_with_svd(View<const Real>, Strided<const Real>, View<Real>, View<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
