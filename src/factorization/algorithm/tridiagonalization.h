// A = Q T Q^T, A symmetric, T tridiagonal, by Householder similarity transforms.
//
//   A n x n, its upper triangle in contiguous rows alone is read; its rows keep the reflectors
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
#include "factorization/algorithm/block_reflector.h"

namespace nequar {

// The last off-diagonal element needs no reflector.
inline Size tridiagonal_reflections(Size n) {
    return n > 2 ? n - 2 : 0;
}

// Row i of A holds u_i from column i + 1 on afterwards. block: rows of a panel, 0: by the size.
template <class Real>
Outcome tridiagonalize(View<Real> a, Strided<Real> d, Strided<Real> e, Size block = 0);

// The reflectors that A's rows hold, ready to be applied to rows 1 ... n - 1 of a matrix. The
// couplings, block x reflections, are written, and parts of A's lower triangle.
template <class Real>
ReflectorStore<Real> tridiagonal_store(View<Real> a, View<Real> couplings);

// The same, and Q (no overlap with A) unless null.
template <class Real>
Outcome tridiagonalize(View<Real> a, Strided<Real> d, Strided<Real> e, const View<Real>* q,
                       Size block = 0);

}  // namespace nequar
