// The condition number in the 1-norm from an LU factorization, without the inverse.
//
//   P A = L U,   ||A^-1||_1 = max ||A^-1 x||_1 over ||x||_1 = 1
//
// A convex function is climbed along its subgradients: x := e_j with j the largest element of
// A^-T sign(A^-1 x). Each turn costs two pairs of triangular solves, and five turns are the limit.
// The alternating vector at the end catches the matrices on which the climb stops early. The answer
// is a lower bound of ||A^-1||_1, mostly the norm itself.
//
// Source: Higham, Accuracy and Stability of Numerical Algorithms, 15.3, algorithm 15.4 (Hager).
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

// ||A||_1, the largest sum of magnitudes of a column; NaN when there is one in A.
template <class Real>
Outcome norm1(View<const Real> a, Real& norm);

// The estimate of ||A^-1||_1. NaN in the factors gives NaN; overflow gives infinity.
template <class Real>
Outcome estimate_norm1_of_inverse(View<const Real> lu, const int* perm, Real& norm);

}  // namespace nequar
