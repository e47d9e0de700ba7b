// The row order of an LU factorization that chooses its pivots before the update.
//
//   step j:   r_j = the last row i >= j whose |a(i, j)| is the largest of the column,
//             a as the exchanges of the steps before left it, not as the elimination would;
//             rows j and r_j change places.
//
// No step looks at an updated element, so the whole order follows from the input alone, in n^2/2
// comparisons, before any elimination. An element that is not a number is never chosen; when there
// is nothing else, the row stays where it is.
#pragma once

#include "core/view.h"

namespace nequar {

// The element among `candidates` that becomes the pivot: the last of the largest magnitude.
template <class Real>
Size last_largest_magnitude(Strided<const Real> candidates);

// The row order of all n columns of the square view: row i of P A is row perm[i] of A.
// `interchanges` counts the steps that moved a row.
template <class Real>
void choose_pivots_before_update(View<const Real> a, int* perm, int& interchanges);

}  // namespace nequar
