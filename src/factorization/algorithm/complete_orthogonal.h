// Complete orthogonal decomposition: A = Q | T 0 | Z^T
//                                          | 0 0 |
//
//   A m x n, m >= n;  Q m x m, Z n x n orthogonal;  T r x r lower triangular, r the rank
//
//   A P = Q R,   | R11 R12 | Z0 = | T 0 |,   Z = P Z0
//
// A becomes the middle factor. The rank is that of the pivoted QR: where it is judged too small,
// rows from r on keep what it neglected on and above the diagonal, and the identity holds as far as
// these vanish.
//
// Golub & Van Loan, Matrix Computations, section 5.4.2.
#pragma once

#include "core/outcome.h"
#include "factorization/algorithm/pivoted_qr.h"

namespace nequar {

// Q and Z are left out when null. perm (n elements) is scratch.
template <class Real>
Outcome complete_orthogonal(View<Real> a, const View<Real>* q, const View<Real>* z, int* perm,
                            int& rank, QrBlocking blocking = {});

}  // namespace nequar
