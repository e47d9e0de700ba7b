// Two sorted runs side by side: distances, products, equality. What is not stored is zero. Each
// costs the sum of the two lengths.
#pragma once

#include "sparse/algorithm/columns.h"

namespace nequar {

// sum of (a_i - b_i)^2
template <class Real>
Real distance_squared(const Run<Real>& a, const Run<Real>& b);
template <class Real>
Real distance_squared(const Columns<Real>& a, const Columns<Real>& b);

// The same over the number of elements of the matrix.
template <class Real>
Real mean_squared_difference(const Columns<Real>& a, const Columns<Real>& b);

// sum of a_i b_i over the indices stored in both
template <class Real>
Real product(const Run<Real>& a, const Run<Real>& b);

// Whether a_i == b_i everywhere; a stored NaN equals nothing.
template <class Real>
bool are_equal(const Run<Real>& a, const Run<Real>& b);
template <class Real>
bool are_equal(const Columns<Real>& a, const Columns<Real>& b);

// a_i := a_i b_i; what b does not store becomes a stored zero. `values` are those of the run a.
template <class Real>
void multiply_elementwise(const Run<Real>& a, const Run<Real>& b, Real* values);

}  // namespace nequar
