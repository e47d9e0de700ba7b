// C := wa A + wb B^T, with A and C m x n and B n x m; C may be A, and must not overlap B.
//
//            j
//       +----+----+         B^T is laid into a buffer tile by tile, each of which is then added
//     i |    |tile|         along its rows: B is read once, in the order of its own rows.
//       +----+----+
#pragma once

#include "core/view.h"

namespace nequar {

template <class Real>
void add_transposed(View<const Real> a, View<const Real> b, Real wa, Real wb, View<Real> c);

}  // namespace nequar
