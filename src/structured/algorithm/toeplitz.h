// Symmetric Toeplitz matrices T(i, j) = r[|i-j|] of which every leading principal part is positive
// definite (or, for r[0] < 0, negative definite).
//
//   durbin    T_m y = -(r[1], ..., r[m])
//   levinson  T x = b
//   trench    B = T^-1
//
// All three begin with r / r[0] and raise the order k step by step: with y the solution of order k,
// J the reversal and beta = det T_{k+1} / det T_k,
//
//   alpha = -(r[k+1] + r[1...k]^T J y) / beta,     y := ( y + alpha J y,  alpha )
//   mu    = (b[k] - r[1...k]^T J x) / beta,        x := ( x + mu J y,  mu )
//
// The loops keep J y in place of y, at the end of its buffer, where it grows to the front; then the
// products with r and the update of x run through contiguous memory.
//
//            buffer |      free      | y[k-1] ... y[1] y[0] |
//
// Source: Golub and Van Loan, Matrix Computations, algorithms 4.7.1 to 4.7.3. O(n^2) time, O(n)
// workspace. Where r has other numbers than finite ones, beta or gamma fails the test for being
// positive, or the numbers that depend on them are no numbers either.
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

// Outcomes of all three: `singular` when r[0] is exactly zero, `not_positive_definite` when beta
// (or gamma) is not above zero, `no_memory`. Sizes are at least 1 unless a comment says otherwise.

// The test of r[0] with which all three begin.
template <class Real>
Outcome leading_element(Real first);

// y[0 ... m-1] from r[0 ... m]; m = 0 writes nothing. y may be r or overlap it.
template <class Real>
Outcome durbin(Size m, const Real* r, Real* y);

// x[0 ... n-1] from r[0 ... n-1] and b[0 ... n-1]. x may be r or b or overlap them. With n = 1,
// r[1] is not read.
template <class Real>
Outcome levinson(Size n, const Real* r, const Real* b, Real* x);

// The n x n inverse, exactly symmetric and persymmetric, into a view with contiguous rows that does
// not overlap r. It is not touched before the recursion has succeeded.
template <class Real>
Outcome trench(Size n, const Real* r, View<Real> b);

// The inverse, packed by diagonals, the main one first, each from its top.
template <class Real>
Outcome trench_packed(Size n, const Real* r, Real* packed);

}  // namespace nequar
