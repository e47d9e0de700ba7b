// The full symmetric n x n matrix A of which the lower half is stored by columns: an element off
// the diagonal counts twice,
//
//     sum_{r, c} f(a_rc)  =  sum_c f(a_cc)  +  2 sum_{r > c} f(a_rc)
//
// and what is not stored is zero. Each reduction costs O(stored + n).
#pragma once

#include "sparse/algorithm/columns.h"

namespace nequar {

// The number of elements of the full matrix that are stored, or whose mirror is.
template <class Real>
Size stored_in_full(const Columns<Real>& lower);

// (sum of a_rc) / n^2, also where the sum overflows and the mean does not
template <class Real>
Real mean_of_full(const Columns<Real>& lower);

// sqrt(sum (a_rc - mean)^2 / n^2), rescaled where a square over- or underflows
template <class Real>
Real deviation_of_full(const Columns<Real>& lower, Real mean);

// sqrt(sum a_rc^2), rescaled likewise
template <class Real>
Real norm_of_full(const Columns<Real>& lower);

// sum (a_rc - b_rc)^2 / n^2; equal sizes
template <class Real>
Real mean_squared_difference_of_full(const Columns<Real>& a, const Columns<Real>& b);

// out := A, both halves; out holds zeros. Row numbers outside of it are passed over.
template <class Real>
void write_full_to_dense(const Columns<Real>& lower, View<Real> out);

// a_cr := a_rc for r > c: the upper triangle of a square matrix becomes the mirror of the lower
// one. For the other direction pass the transposed view.
template <class Real>
void mirror_lower_triangle(View<Real> a, Size tile = 64);

}  // namespace nequar
