// What the density estimates at a point x are made of. Samples of dimension d are the rows of an
// n x d view, whose rows or columns are contiguous.
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

// The number of samples with a squared distance from x of at most `limit`; -1 when some distance is
// not a number.
template <class Real>
Size count_within(const Real* x, View<const Real> samples, Real limit);

template <class Real>
bool has_nan(Size n, const Real* x);

// The volume of the ball of squared radius r2 in d dimensions, (pi r2)^(d/2) / Gamma(d/2 + 1); by
// logarithms where a factor leaves the range of doubles. `log_gamma` is ln Gamma(d/2 + 1).
double ball_volume(Size d, double r2, double log_gamma);

// k / (V n); 1e15 where the volume V is exactly zero.
template <class Real>
Real nearest_neighbour_density(Size k, Size n, double volume);
// The number of samples within the distance h of x, divided by n and by the volume of the ball.
// NaN when some distance is not a number.
template <class Real>
Real parzen_density(const Real* x, View<const Real> samples, Real h, double log_gamma);

// q[i] = (s_i - mean)^T S (s_i - mean), S symmetric; q overlaps nothing.
template <class Real>
Outcome quadratic_forms(View<const Real> samples, const Real* mean, View<const Real> s, Real* q);

// sqrt(det) / (2 pi)^(d/2), the height of a Gaussian density whose inverse covariance has this
// determinant.
double gaussian_height(Size d, double determinant);
// values[i] := height exp(factor values[i])
template <class Real>
void gaussian_values(Size n, double height, double factor, Real* values);

}  // namespace nequar
