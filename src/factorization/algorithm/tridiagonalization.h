// A = Q T Q^T, A symmetric, T tridiagonal, by Householder similarity transforms.
//
//   A n x n, its upper triangle in contiguous rows alone is read; it is used up
//   d n, e n - 1: diagonal and off-diagonal of T
//   Q n x n, the first row and column those of the identity
//
// The reflector of row i, u = (u_(i+1) ... u_(n-1)), clears the row right of its off-diagonal, and
// with w = A u - (u^T A u / 2) u
//
//     (I - u u^T) A (I - u u^T) = A - u w^T - w u^T.
//
// A panel of b rows is reduced from a matrix that is updated only afterwards:
//
//      | d  e             |      row i:  a_i := a_i - sum over the panel of (w u_i + u w_i)
//      |    d  e          |      A u   = (A before the panel) u - sum of (u (w^T u) + w (u^T u))
//      |       .  .  .  . |
//      |          C  C  C |      C, upper triangle := C - | u w ... | | w u ... |^T
//      |             C  C |
//
// so half of the work is matrix products, the other half the product with a symmetric vector, which
// reads one triangle.
//
// Dongarra, Sorensen, Hammarling, Block reduction of matrices to condensed forms for eigenvalue
// computations, J. Comp. Appl. Math. 27, 1989; Golub & Van Loan, Matrix Computations, 8.3.1.
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

// Q (no overlap with A) is left out when null. block: rows of a panel, 0: by the size.
template <class Real>
Outcome tridiagonalize(View<Real> a, Strided<Real> d, Strided<Real> e, const View<Real>* q,
                       Size block = 0);

}  // namespace nequar
