#include "linear_equation/algorithm/factor_solve.h"

namespace nequar {

using kernel::Diagonal;
using kernel::Triangle;

template <class Real>
void gather_right_hand_sides(View<const Real> b, const int* perm, View<Real> x) {
    if (x.width > 1) return kernel::gather_rows(b, perm, x);
    if (x.width < 1) return;
    for (Size i = 0; i < x.height; ++i) x(i, 0) = b(perm[i], 0);
}

template <class Real>
void solve_triangle(Triangle triangle, Diagonal diagonal, View<const Real> t, View<Real> x) {
    if (x.width == 1)
        kernel::trsv(triangle, diagonal, t, x.column(0));
    else
        kernel::trsm(triangle, diagonal, t, x);
}

template <class Real>
void solve_from_lu(View<const Real> lu, const int* perm, View<const Real> b, View<Real> x) {
    gather_right_hand_sides(b, perm, x);
    solve_triangle(Triangle::lower, Diagonal::unit, lu, x);
    solve_triangle(Triangle::upper, Diagonal::stored, lu, x);
}

template <class Real>
void solve_from_cholesky(Triangle triangle, View<const Real> factor, View<Real> x) {
    const Triangle opposite = triangle == Triangle::lower ? Triangle::upper : Triangle::lower;
    solve_triangle(triangle, Diagonal::stored, factor, x);
    solve_triangle(opposite, Diagonal::stored, factor.transposed(), x);
}

#define NEQUAR_INSTANTIATE(Real)                                                             \
    template void gather_right_hand_sides(View<const Real>, const int*, View<Real>);         \
    template void solve_triangle(Triangle, Diagonal, View<const Real>, View<Real>);          \
    template void solve_from_lu(View<const Real>, const int*, View<const Real>, View<Real>); \
    template void solve_from_cholesky(Triangle, View<const Real>, View<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
