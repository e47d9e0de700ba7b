// Norms beyond the kernels', and scaling to length one.
#pragma once

#include "core/view.h"

namespace nequar {

// (sum |x_i|^p)^(1/p); the largest magnitude for p = infinity. NaN when p is not above zero. The
// elements are divided by the largest before they are raised, so nothing overflows that fits.
template <class Real>
Real norm_p(Real p, Strided<const Real> x);

// x := x / ||x||, at any scale, subnormal elements included. False, and x unchanged, when x is zero
// or empty or holds a NaN or an infinity.
template <class Real>
bool normalize(Strided<Real> x);

}  // namespace nequar
