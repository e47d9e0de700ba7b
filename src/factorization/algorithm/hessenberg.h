// A = Q H Q^T, H upper Hessenberg, by Householder similarity transforms.
//
//   A n x n -> H; below the subdiagonal every column keeps what stood there when it was reduced
//   Q n x n
//
// Blocked: the reflectors of a panel are found from a matrix that is updated later,
//
//   A_now = (I - U T U^T)^T (A - Y U^T),    Y = A U T
//
//      |  h  h  h  .  .  . |     k   first column of the panel
//      |  h  h  h  .  .  . |
//      |     h  p  p  p  . |     column j of the panel: b = A e_j - Y U(j, :)^T,
//      |        p  p  p  . |     b := b - U T^T U^T b, its reflector u,
//      |        p  p  p  . |     y = (A - Y U^T) u = A u - Y (U^T u)
//
// The product A u is matrix-vector work, one fifth of all; the rest is matrix products.
//
// Golub & Van Loan, Matrix Computations, algorithm 7.4.2; Quintana-Orti & van de Geijn, Improving
// the performance of reduction to Hessenberg form, ACM TOMS 32, 2006.
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

// Q (no overlap with A) is left out when null. block: columns of a panel; 0: by the size, 1: no
// blocks.
template <class Real>
Outcome hessenberg(View<Real> a, const View<Real>* q, Size block = 0);

}  // namespace nequar
