// A P = Q R with column pivoting by 1-norms.
//
//   A m x n, m >= n;  R in A's upper triangle, below it leftovers as in the plain QR;
//   perm(k) is the input column that stands in column k
//
// The pivot is the first column with the largest c(j); c starts as the columns' 1-norms and is
// downdated by c(j) := max(c(j) - |r(k, j)|, 0) after each step. The decomposition stops when the
// largest c is not above zero, and rank is the number of columns until then.
//
// A reflection changes 1-norms, so the downdated c is not the norm of what remains: it may vanish
// while the column does not, and the other way round. The rank by singular values is to be
// preferred where rank matters.
//
// The pivot rule needs row k alone at step k, so the trailing matrix is updated once a panel:
//
//   A_now = A - U F^T,   f_k = (A - U F^T)^T u_k
//
// where one product A^T u_k a step remains as matrix-vector work: half of all.
//
// Golub & Van Loan, Matrix Computations, algorithm 5.4.1 (with 2-norms); Quintana-Orti, Sun,
// Bischof, A BLAS-3 version of the QR factorization with column pivoting, SIAM J. Sci. Comput. 19,
// 1998.
#pragma once

#include "core/outcome.h"
#include "factorization/algorithm/qr.h"

namespace nequar {

struct PivotedQrResult {
    int interchanges = 0;
    int rank = 0;
};

// Q (m x m, no overlap with A) is left out when q is null. perm has n elements.
template <class Real>
Outcome pivoted_qr(View<Real> a, const View<Real>* q, int* perm, PivotedQrResult& result,
                   QrBlocking blocking = {});

}  // namespace nequar
