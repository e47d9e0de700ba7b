// A = U B V^T, B upper bidiagonal, by Householder reflections from both sides.
//
//   A m x n, m >= n -> left as scratch;  B(i, i) = d(i), B(i, i+1) = f(i);  U m x m,  V n x n
//   U = H_0 H_1 ... H_(n-1),   V = | 1            |
//                                  |   G_0 G_1 ...|   with n - 2 reflectors G on rows 1 ... n-1
//
// A diagonal element is not negative where a reflection was made, neither is one of the
// superdiagonal; without one they keep their sign, as d(n-1) of a square matrix and f(n-2) do.
//
// Blocked: the reflectors of a panel are found from a matrix that is updated later,
//
//   A_now = A - P Q^T,    P = [ u0 x0 u1 x1 ... ],  Q = [ y0 v0 y1 v1 ... ]
//
//      |  d  f  .  .  .  . |     column j:  b = A e_j - P Q(j, :)^T, its reflector u,
//      |     b  r  r  r  r |                y = A_now^T u
//      |     b  A  A  A  A |     row j:     r = A(j, :) - P(j, :) Q^T, its reflector v,
//      |     b  A  A  A  A |                x = A_now v
//
// Half of the work is the trailing update, a matrix product; the other half the products of A with
// u and v. These share one walk over A: when a few elements of y are known so are those of r, and
// their columns, still at hand, are added up for x. That needs r before it is scaled to v:
//
//   A v = v(0) A e_0 + factor sum of r(i) A e_i over i > 0,     v(i) = factor r(i)
//
// Golub & Van Loan, Matrix Computations, algorithm 5.4.2; Dongarra, Hammarling, Sorensen, Block
// reduction of matrices to condensed forms, J. Comput. Appl. Math. 27, 1989; Howell, Demmel et al.,
// Cache efficient bidiagonalization using BLAS 2.5 operators, ACM TOMS 34, 2008.
#pragma once

#include "core/outcome.h"
#include "factorization/algorithm/block_reflector.h"

namespace nequar {

// Where the reflectors are kept, unless null: m x n vectors on the left, (n-1) x (n-2) on the
// right, each with their couplings. Their blocks need not be those of the reduction.
template <class Real>
struct BidiagonalStores {
    const ReflectorStore<Real>* left = nullptr;
    const ReflectorStore<Real>* right = nullptr;
};

inline Size right_reflections(Size n) {
    return n > 2 ? n - 2 : 0;
}

// Columns of a panel for a matrix of width n, and reflectors that are best applied at once; 1: no
// blocks. Panels are narrow, since what they have found is applied to every next column.
Size block_of_bidiagonal(Size n);
Size block_of_reflectors(Size n);

// d: n elements, f: n - 1. Quickest when the columns of A are contiguous.
template <class Real>
Outcome bidiagonalize(View<Real> a, Real* d, Real* f, const BidiagonalStores<Real>& stores,
                      Size block);

// A := 0 but for B, U and V (unless null) the orthogonal factors; nothing overlaps. `largest` is
// the largest magnitude of A, which is finite.
template <class Real>
Outcome bidiagonalize_in_place(View<Real> a, Real largest, const View<Real>* u, const View<Real>* v,
                               Size block = 0);

}  // namespace nequar
