// Sums, means, deviations and extrema of stored values, and where a zero is.
#pragma once

#include "sparse/algorithm/columns.h"
#include "sparse/algorithm/validity.h"

namespace nequar {

// sum of x_k
template <class Real>
Real sum(const Real* x, Size count);

// (sum of x_k) / total, also where the sum overflows and the mean does not
template <class Real>
Real mean(const Real* x, Size count, Size total);

// sqrt((sum (x_k - mean)^2 + (total - count) mean^2) / total): the population deviation of `total`
// elements of which all but the stored ones are zero. Rescaled where a square over- or underflows.
template <class Real>
Real deviation(const Real* x, Size count, Size total, Real mean);

// The position of the largest (smallest) value: 0 if that one is, else the last that is. A NaN is
// chosen only at position 0. count > 0.
template <class Real>
Size position_of_largest(const Real* x, Size count);
template <class Real>
Size position_of_smallest(const Real* x, Size count);

template <class Real>
bool has_zero(const Real* x, Size count);

// x_k := x_k / c
template <class Real>
void divide(const Real* x, Size count, Real c, Real* out);

// A zero element of a run before its last stored element: a gap or a stored zero. -1: none. 0 when
// nothing is stored.
template <class Real>
Size first_zero_before_end(const Run<Real>& run);

// A zero element: the first gap of the first column that is not full, else the first stored zero.
// Of a lower half, column c begins with row c.
template <class Real>
bool find_zero(const Columns<Real>& a, StoredHalf half, Size& column, Size& row);

// Deletes the zeros; answers how many elements remain. For a matrix the start pointers, which are
// in order, follow.
template <class Real>
Size remove_zeros(Real* values, int* indices, Size count);
template <class Real>
Size remove_zeros(Real* values, int* rows, int* start, Size width);

}  // namespace nequar
