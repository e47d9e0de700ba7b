// s = x^T A y, with A m x n: a panel of rows at a time, t = A_i y, s += x_i^T t.
#pragma once

#include "core/view.h"

namespace nequar {

template <class Real>
Real bilinear_form(Strided<const Real> x, View<const Real> a, Strided<const Real> y);

}  // namespace nequar
