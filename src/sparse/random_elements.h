// Random dense elements from which the makers of random sparse objects take theirs.
#pragma once

#include "core/view.h"

namespace nequar {

// Sets all elements to 0.0, then `draws` of them, at places drawn with repetition, to values
// uniform in min … max. The seed is taken from the time at the first call in the process; each call
// continues with numbers of its own, also when threads call at once.
template <class Real>
void draw_elements(Strided<Real> elements, Size draws, Real min, Real max);

}  // namespace nequar
