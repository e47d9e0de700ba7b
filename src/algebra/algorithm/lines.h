// Operations on the lines (rows or columns) of one matrix. Element i of the inputs is read before
// element i of z is written, so z may be one of the inputs.
#pragma once

#include "core/view.h"

namespace nequar {

// z := x + y
template <class Real>
void add_lines(Strided<const Real> x, Strided<const Real> y, Strided<Real> z);
// z := wx x + wy y
template <class Real>
void add_lines_weighted(Strided<const Real> x, Strided<const Real> y, Real wx, Real wy,
                        Strided<Real> z);
// z := x - y
template <class Real>
void subtract_lines(Strided<const Real> x, Strided<const Real> y, Strided<Real> z);
// z := c x
template <class Real>
void scale_line(Strided<const Real> x, Real c, Strided<Real> z);

}  // namespace nequar
