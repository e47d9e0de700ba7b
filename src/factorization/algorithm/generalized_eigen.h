// A x = lambda B x with B = L L^T as the symmetric problem C y = lambda y,
//
//   C = L^-1 A L^-T,   L^T x = y,   x := x / ||x||
//
// A, C n x n, L the lower triangle of an n x n matrix.
//
// Golub & Van Loan, Matrix Computations, algorithm 8.7.1.
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

// A (symmetric, both triangles) is used up; packed := the symmetric part of C, by diagonals.
template <class Real>
void transform_to_standard(View<const Real> l, View<Real> a, Real* packed);

// The columns of X: y -> x. Stops at a column whose length is 0.0.
template <class Real>
Outcome transform_back(View<const Real> l, View<Real> x);

}  // namespace nequar
