#include "linear_equation/algorithm/spectral_solve.h"

#include "kernel/kernel.h"

namespace nequar {

using kernel::Update;

template <class Real>
void divide_rows(View<Real> a, Strided<const Real> s) {
    for (Size i = 0; i < a.height; ++i)
        for (Size j = 0; j < a.width; ++j) a(i, j) /= s(i);
}

template <class Real>
void solve_with_svd(View<const Real> u, Strided<const Real> s, View<const Real> v, View<Real> b,
                    View<Real> w) {
    kernel::gemm(Real(1), u.transposed(), reading(b), Update::set, w);
    divide_rows(w, s);
    kernel::gemm(Real(1), v, reading(w), Update::set, b);
}

template <class Real>
void invert_with_svd(View<const Real> u, Strided<const Real> s, View<Real> v, View<Real> inverse) {
    divide_rows(v.transposed(), s);
    kernel::gemm(Real(1), reading(v), u.transposed(), Update::set, inverse);
}

#define NEQUAR_INSTANTIATE(Real)                                                          \
    template void divide_rows(View<Real>, Strided<const Real>);                           \
    template void solve_with_svd(View<const Real>, Strided<const Real>, View<const Real>, \
                                 View<Real>, View<Real>);                                 \
    template void invert_with_svd(View<const Real>, Strided<const Real>, View<Real>, View<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
