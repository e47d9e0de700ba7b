// Whether a(i, j) == a(j, i) exactly for every i < j, tile by tile so that both are in the cache.
#pragma once

#include "core/view.h"

namespace nequar {

// False for a view that is not square, and for a NaN anywhere off the diagonal.
template <class Real>
bool is_symmetric(View<const Real> a, Size tile = 32);

}  // namespace nequar
