// A = R Q for a 3 x 3 matrix by three rotations about the axes, Q = Qz Qy Qx.
//
//   Qx = | 1  0  0 |    Qy = |  c  0  s |    Qz = | c -s  0 |
//        | 0  c -s |         |  0  1  0 |         | s  c  0 |
//        | 0  s  c |         | -s  0  c |         | 0  0  1 |
//
//   A := A Qx^T  so that a21 = 0,   A := A Qy^T  so that a20 = 0,   A := A Qz^T  so that a10 = 0
//
// and the angle of each is atan2(-s, c): c = cos(angle), s = -sin(angle). An element that is zero
// already makes no rotation. R's diagonal is not made positive beyond what the rotations do.
//
// Hartley & Zisserman, Multiple View Geometry, section A4.1.1.
#pragma once

#include "core/view.h"

namespace nequar {

template <class Real>
struct Rq3 {
    Real angle_x = 0, angle_y = 0, angle_z = 0;
};

// All views are 3 x 3 and do not overlap; A := R.
template <class Real>
Rq3<Real> rq3(View<Real> a, View<Real> qx, View<Real> qy, View<Real> qz);

}  // namespace nequar
