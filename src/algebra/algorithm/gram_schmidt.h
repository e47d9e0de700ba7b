// Gram-Schmidt orthogonalization, the classical scheme: for j = 0, 1, …
//
//   w = a_j - sum over k < j of (a_j . q_k) q_k,     q_j = w / ||w||
//
// with coefficients taken against the column a_j as it was given. A and Q are m x n, Q may be A.
// When w vanishes exactly the outcome is zero_column with j; the columns before j are then done,
// column j of Q holds w = 0, the others are not written. Norms are safe at any scale of A.
//
// Golub & Van Loan, Matrix Computations, 4th ed., 5.2.7. Orthogonality is lost with the square of
// A's condition number.
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

inline constexpr Size kGramSchmidtBlock = 32;

// The loops as they stand above, for small matrices.
template <class Real>
Outcome gram_schmidt_unblocked(View<const Real> a, View<Real> q);

// Column blocks:              j      j + block
//                 +-----------+------+------+
//                 |    Q0     |  AJ  |      |      W = AJ - Q0 (Q0^T AJ), then the columns of W
//                 |           |      |      |      against each other
//                 +-----------+------+------+
template <class Real>
Outcome gram_schmidt_blocked(View<const Real> a, View<Real> q, Size block = kGramSchmidtBlock);

// Whichever is faster.
template <class Real>
Outcome gram_schmidt(View<const Real> a, View<Real> q);

}  // namespace nequar
