// T = Q R for a tridiagonal T by n - 1 plane rotations.
//
//   below n-1, diagonal n, above n-1: the bands of T
//   R:  diagonal -> its diagonal, above -> its first, second (n-2) := its second super-diagonal;
//       below is used up
//   Q n x n := G_0^T G_1^T ...; upper Hessenberg
//
// A subdiagonal element that is zero makes no rotation. O(n), and O(n^2) for Q.
//
// Golub & Van Loan, Matrix Computations, 5.2.5 and 8.3.3.
#pragma once

#include "core/view.h"

namespace nequar {

// Q (no overlap with the bands) is left out when null.
template <class Real>
void qr_of_tridiagonal(Size n, Real* below, Real* diagonal, Real* above, Real* second,
                       const View<Real>* q);

}  // namespace nequar
