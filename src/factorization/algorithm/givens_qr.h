// H = Q R for an upper Hessenberg H by n - 1 plane rotations.
//
//   H n x n -> R;  elements below the subdiagonal are neither read nor written
//   row k, row k+1 := c row k - s row k+1, s row k + c row k+1      from column k on
//   Q := G_0^T G_1^T ..., n x n
//
// A subdiagonal element that is zero makes no rotation. O(n^2).
//
// Golub & Van Loan, Matrix Computations, algorithm 5.2.5.
#pragma once

#include "core/view.h"

namespace nequar {

// Q (no overlap with H) is left out when null.
template <class Real>
void givens_qr_of_hessenberg(View<Real> h, const View<Real>* q);

}  // namespace nequar
