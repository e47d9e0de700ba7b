// Square systems and inverses by QR, QL, RQ and LQ.
//
//   A = Q R:   R x = Q^T b          A = R Q:   x = Q^T (R^-1 b)
//   A = Q L:   L x = Q^T b          A = L Q:   x = Q^T (L^-1 b)
//
// Q is never formed for a solve: Q^T is applied to b while A is factored, or from the reflectors
// afterwards. For an inverse Q^T is formed in the place of the inverse, where the triangular solve
// goes on.
#pragma once

#include "core/outcome.h"
#include "factorization/algorithm/qr.h"

namespace nequar {

// B := A^-1 B, A n x n, no overlap with B. Fails with singular at the first zero on the diagonal of
// the triangular factor; B is partly worked on then.
template <class Real>
Outcome solve_by_orthogonal(OrthogonalForm form, View<const Real> a, View<Real> b,
                            QrBlocking blocking = {});

// Inverse := A^-1, likewise; A is overwritten.
template <class Real>
Outcome invert_by_orthogonal(OrthogonalForm form, View<Real> a, View<Real> inverse,
                             QrBlocking blocking = {});

// From factors that are given: B := T^-1 (Q^T B) where Q stands first (qr, ql), and B := Q (T^-1 B)
// with Q as it is given, not transposed, where the triangle stands first (rq, lq). Of T the
// triangle alone is read. w is scratch of B's shape; nothing overlaps.
template <class Real>
Outcome solve_with_orthogonal_factors(OrthogonalForm form, View<const Real> q, View<const Real> t,
                                      View<Real> b, View<Real> w);

// Inverse := A^-1 likewise, where it holds Q at first.
template <class Real>
void invert_with_orthogonal_factors(OrthogonalForm form, View<const Real> t, View<Real> inverse);

}  // namespace nequar
