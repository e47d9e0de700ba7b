// Where the elements of a matrix lie in the range of their type.
#pragma once

#include "core/view.h"

namespace nequar {

// The largest magnitude; false when an element is NaN or infinite.
template <class Real>
bool find_largest_finite(View<const Real> a, Real& largest);

// The binary exponent of `largest` when it is near an end of the range; 0 in the wide middle, where
// neither squares nor sums of products of what is not negligible leave the range.
template <class Real>
int exponent_near_ends(Real largest);

// A := 2^exponent A, exact but for what becomes subnormal or infinite
template <class Real>
void scale_by_power_of_two(View<Real> a, int exponent);

}  // namespace nequar
