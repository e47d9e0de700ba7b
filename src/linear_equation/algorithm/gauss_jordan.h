// Gauss-Jordan elimination with a full search for pivots: A X = B, both overwritten, B by X.
//
//   repeat n times:
//     (pr, pc) = the first largest |a(r, c)|, r and c not yet used, rows before columns
//     rows pr and pc change places, in A and in B; column (and row) pc is used from now on
//     row pc is divided by |pivot|, the magnitude, not the pivot
//     row r -= a(r, pc) row pc, every r != pc, in A and in B
//
//   A n x n, B n x k, contiguous rows.
//
// The pass that eliminates a column looks for the next pivot as well, so a step reads and writes A
// once. A negative pivot is scaled to -1 and its column is then doubled, not cleared: the answer is
// not the solution of A X = B unless every pivot is positive.
//
// The largest element begins at 0 and is replaced by a strictly larger one, so NaN is never a
// pivot, and a remaining block of zeros and NaN is singular. The reciprocal of a subnormal pivot
// overflows: then row pc is divided by the magnitude itself.
//
// Source: Golub and Van Loan, Matrix Computations, 3.4 (complete pivoting).
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

template <class Real>
Outcome gauss_jordan(View<Real> a, View<Real> b);

}  // namespace nequar
