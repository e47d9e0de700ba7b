// Inverses of triangular matrices, and what is made of them.
//
//   T lower triangular, in place:
//     [T11    ]^-1   [ T11^-1                     ]     X21 = -T22^-1 T21 T11^-1   two trsm
//     [T21 T22]    = [-T22^-1 T21 T11^-1   T22^-1 ]     T11, T22                   recursion
//
//   the lower triangle of X^T X, or of X X^T, for a lower triangular X, in place:
//     C11 = X11^T X11 + X21^T X21   recursion, syrk     C22 = X22 X22^T + X21 X21^T   recursion,
//     syrk C21 = X22^T X21               trmm                C21 = X21 X11^T               trmm C22
//     = X22^T X22               recursion           C11 = X11 X11^T               recursion
//
// An upper triangle is the transposed view of a lower one. Source: Higham, Accuracy and Stability
// of Numerical Algorithms, 14.2; Golub and Van Loan, Matrix Computations, 3.1 and 4.2.
#pragma once

#include "core/outcome.h"
#include "core/view.h"
#include "kernel/kernel.h"

namespace nequar {

inline constexpr Size kTriangularBase = 16;  // the order at which the recursions end, at most 32

// The strict upper triangle (and, with `unit`, the diagonal) is neither read nor written. The
// caller sees to it that no diagonal element is zero.
template <class Real>
void invert_lower_triangle(kernel::Diagonal diagonal, View<Real> t, Size base = kTriangularBase);

// x := X^T X
template <class Real>
void multiply_transpose_by_lower(View<Real> x, Size base = kTriangularBase);
// x := X X^T
template <class Real>
void multiply_lower_by_transpose(View<Real> x, Size base = kTriangularBase);

// inverse := (L U)^-1 P for the packed factors of P A; the views must not overlap. L^-1 is formed
// in `inverse`, U X = L^-1 is solved there, then the columns go to their places.
template <class Real>
Outcome invert_from_lu(View<const Real> lu, const int* perm, View<Real> inverse,
                       Size base = kTriangularBase);

// The same with L, or the unit lower L, in the lower triangle of `inverse`, and U apart. perm need
// not be a permutation: columns that go to one place are added.
template <class Real>
Outcome invert_from_lu_in_place(kernel::Diagonal diagonal_of_l, View<const Real> u, const int* perm,
                                View<Real> inverse, Size base = kTriangularBase);

// factor := (L L^T)^-1 from the lower triangle, or (U U^T)^-1 from the upper one; both triangles of
// the inverse are written.
template <class Real>
void invert_from_cholesky(kernel::Triangle triangle, View<Real> factor,
                          Size base = kTriangularBase);

// The strict upper triangle := the transposed strict lower one. Tiles, so that both are in cache.
template <class Real>
void mirror_lower_to_upper(View<Real> a, Size tile = 64);

}  // namespace nequar
