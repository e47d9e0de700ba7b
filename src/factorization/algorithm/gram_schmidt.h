// Classical Gram-Schmidt on the columns a_j of A (m x n), into Q (m x n).
//
//   q_j := a_j - sum over k < j of (a_j^T q_k) q_k;   q_j := q_j / ||q_j||
//
// The coefficients are taken with the input column (not with what is left of it), so all those of a
// block of columns with the columns before it are one product:
//
//   | Q1 | A2 |     R12 = Q1^T A2,  Q2 := A2 - Q1 R12;   then the columns of the block one by one
//
// The scheme loses orthogonality with the square of the condition of A; a Householder QR does not.
//
// Golub & Van Loan, Matrix Computations, section 5.2.7.
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

// Fails with zero_column at the first column of which nothing is left; the columns before it are
// done. Q must not overlap A. block: columns of a block, 0: chosen here, 1: column by column.
template <class Real>
Outcome gram_schmidt(View<const Real> a, View<Real> q, Size block = 0);

}  // namespace nequar
