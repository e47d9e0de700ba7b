// Vandermonde matrices V(i, j) = a_j^i of distinct nodes a_0 ... a_{n-1}, in place:
//
//   interpolate   V^T c = f    f becomes the coefficients of p(t) = sum c_k t^k, p(a_j) = f_j
//   solve         V z = b      b becomes z
//
// Both are products of bidiagonal matrices (Newton's divided differences, and their transposes).
// Source: Bjorck and Pereyra 1970; Golub and Van Loan, Matrix Computations, algorithms 4.6.1 and
// 4.6.2. 5/2 n^2 flops. Equal nodes divide by zero. Where a node is not a finite number the whole
// result is NaN (n > 1; with one node the matrix is 1).
#pragma once

#include "core/view.h"

namespace nequar {

// Whether no two nodes are equal. A NaN equals nothing; 0.0 and -0.0 are equal. O(n^2).
template <class Real>
bool are_distinct(Size n, const Real* nodes);

// `nodes` must not overlap the data.
template <class Real>
void interpolate(Size n, const Real* nodes, Real* f);
template <class Real>
void solve_vandermonde(Size n, const Real* nodes, Real* b);

// a^i as all parts of the family compute it, so that they agree to the last bit: from the leading
// bit of i, squares, and a factor a for every bit that is set. a^0 = 1.
template <class Real>
Real power(Real a, Size i);
// out[j] = a_j^i
template <class Real>
void powers_of_nodes(Size n, const Real* nodes, Size i, Real* out);
// out[i] = a^i, i < n
template <class Real>
void powers_of_node(Size n, Real a, Real* out);
// V(i, j) = a_j^i, into a view with contiguous rows.
template <class Real>
void vandermonde_matrix(const Real* nodes, View<Real> v);

}  // namespace nequar
