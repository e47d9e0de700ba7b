#include "algebra/algorithm/triangular.h"

#include "kernel/kernel.h"

namespace nequar {

using kernel::Diagonal;
using kernel::Triangle;

template <class Real>
void invert_lower(View<const Real> t, View<Real> x, Size block) {
    const Size n = t.height;
    kernel::fill(Real(0), x);
    for (Size j = 0; j < n; j += block) {
        const Size width = n - j < block ? n - j : block;
        const Size rest = n - j;
        for (Size i = j; i < j + width; ++i) x(i, i) = 1;
        kernel::trsm(Triangle::lower, Diagonal::stored, t.block(j, j, rest, rest),
                     x.block(j, j, rest, width));
    }
}

template <class Real>
void multiply_lower_by_lower(View<Real> a, View<Real> b, Size base) {
    const Size n = a.height;
    if (n <= base) {
        for (Size i = 0; i < n; ++i)
            for (Size j = 0; j <= i; ++j) {
                Real sum = 0;
                for (Size k = j; k <= i; ++k) sum += a(i, k) * b(k, j);
                a(i, j) = sum;
            }
        return;
    }
    const Size n1 = (n / 2 + base - 1) / base * base;
    const Size n2 = n - n1;
    const View<Real> a11 = a.block(0, 0, n1, n1);
    const View<Real> a21 = a.block(n1, 0, n2, n1);
    const View<Real> a22 = a.block(n1, n1, n2, n2);
    const View<Real> b11 = b.block(0, 0, n1, n1);
    const View<Real> b21 = b.block(n1, 0, n2, n1);
    const View<Real> b22 = b.block(n1, n1, n2, n2);
    kernel::trmm(Triangle::upper, Diagonal::stored, reading(b11.transposed()), a21.transposed());
    kernel::trmm(Triangle::lower, Diagonal::stored, reading(a22), b21);
    for (Size i = 0; i < n2; ++i) kernel::axpy(Real(1), reading(b21.row(i)), a21.row(i));
    multiply_lower_by_lower(a11, b11, base);
    multiply_lower_by_lower(a22, b22, base);
}

#define NEQUAR_INSTANTIATE(Real)                                    \
    template void invert_lower(View<const Real>, View<Real>, Size); \
    template void multiply_lower_by_lower(View<Real>, View<Real>, Size);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
