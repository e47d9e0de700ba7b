// Count, mean and population variance (covariance) of selected samples:
//
//   mean = sum x_i / count,     variance = sum (x_i - mean)^2 / count
//
// Sums of numbers run in blocks: B selected elements are added up, one after another, then their
// sum is added to the total, so that the error grows with B and the number of blocks rather than
// with their product. B = round(sqrt(n)), at least 16, n being the length of the whole array.
#pragma once

#include "core/outcome.h"
#include "core/view.h"
#include "statistics/algorithm/selection.h"

namespace nequar {

Size summation_block(Size n);

// The selection holds one element at least.
template <class Real>
Real mean_of(const Real* a, const Selection& selection, Size block);
template <class Real>
Real variance_about(Real mean, const Real* a, const Selection& selection, Size block);

// Samples of dimension d are the rows of an n x d view, whose rows or columns are contiguous.
template <class Real>
Outcome mean_vector(View<const Real> samples, const Selection& selection, Real* mean);
// The full symmetric d x d matrix, into a view with contiguous rows that overlaps nothing.
template <class Real>
Outcome covariance(View<const Real> samples, const Selection& selection, const Real* mean,
                   View<Real> result);

}  // namespace nequar
