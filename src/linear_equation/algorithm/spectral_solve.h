// Solves and inverses from A = U S V^T.
//
//   x = V (S^-1 (U^T b))          A^-1 = (V S^-1) U^T          A^+ = sum of v_i u_i^T / s_i, i <
//   rank
#pragma once

#include "core/view.h"

namespace nequar {

// A := S^-1 A
template <class Real>
void divide_rows(View<Real> a, Strided<const Real> s);

// B := V S^-1 U^T B, all square of order n; w is scratch of B's shape. Nothing overlaps.
template <class Real>
void solve_with_svd(View<const Real> u, Strided<const Real> s, View<const Real> v, View<Real> b,
                    View<Real> w);

// Inverse (n x m) := V S^-1 U^T with as many columns of U (m rows) and V (n rows) as S has
// elements; v becomes V S^-1. Nothing overlaps.
template <class Real>
void invert_with_svd(View<const Real> u, Strided<const Real> s, View<Real> v, View<Real> inverse);

}  // namespace nequar
