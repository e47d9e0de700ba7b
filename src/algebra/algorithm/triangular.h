// Triangular matrices among themselves, n x n.
//
//   X = T^-1      a block of columns at a time: T(j:, j:) X(j:, J) = | I |
//                                                                    | 0 |
//   A := A B      lower times lower, by halves:
//
//      | A11     | | B11     |     | A11 B11                         |
//      | A21 A22 | | B21 B22 |  =  | A21 B11 + A22 B21       A22 B22 |
//
// both at a sixth of the multiplications of full matrices. Upper triangles are the transposed views
// of lower ones: (A B)^T = B^T A^T.
#pragma once

#include "core/view.h"

namespace nequar {

// X := T^-1 with zeros above the diagonal; T's lower triangle alone is read, and its diagonal holds
// no zero. No overlap.
template <class Real>
void invert_lower(View<const Real> t, View<Real> x, Size block = 64);

// A := A B; only lower triangles are read or written. B is used up. No overlap.
template <class Real>
void multiply_lower_by_lower(View<Real> a, View<Real> b, Size base = 32);

}  // namespace nequar
