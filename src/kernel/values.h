// More of the kernel layer's face: sums and extrema of contiguous values.
#pragma once

#include "core/view.h"

namespace nequar::kernel {

template <class Real>
Real sum(Size n, const Real* x);
// sum (x_i - centre)^2
template <class Real>
Real squares_about(Size n, const Real* x, Real centre);
// The largest (smallest) of `other` and the elements; NaN never wins.
template <class Real>
Real largest(Size n, const Real* x, Real other);
template <class Real>
Real smallest(Size n, const Real* x, Real other);

}  // namespace nequar::kernel
