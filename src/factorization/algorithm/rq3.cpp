#include "factorization/algorithm/rq3.h"

#include <cmath>
#include <limits>

namespace nequar {

namespace {

// c = pivot / r, s = element / r, r = sqrt(pivot^2 + element^2); no rotation when the element is 0
template <class Real>
struct AxisRotation {
    Real c = 1, s = 0, r, angle = 0;

    AxisRotation(Real pivot, Real element, Real sign) : r(pivot) {
        if (element == 0) return;
        r = std::hypot(pivot, element);
        // A subnormal r is imprecise: c and s come from a multiple of both.
        const Real small = std::numeric_limits<Real>::min() / std::numeric_limits<Real>::epsilon();
        const Real scale = r < small ? 1 / small : Real(1);
        const Real length = r < small ? std::hypot(pivot * scale, element * scale) : r;
        c = pivot * scale / length;
        s = sign * (element * scale) / length;
        angle = std::atan2(-s, c);
    }
};

// (left, right) := (c left - s right, s left + c right) in the first `rows` rows
template <class Real>
void rotate_columns(View<Real> a, Size rows, Size left, Size right, Real c, Real s) {
    for (Size i = 0; i < rows; ++i) {
        const Real x = a(i, left);
        const Real y = a(i, right);
        a(i, left) = c * x - s * y;
        a(i, right) = s * x + c * y;
    }
}

template <class Real>
void set_rotation(View<Real> q, Size axis0, Size axis1, Real c, Real s) {
    for (Size i = 0; i < 3; ++i)
        for (Size j = 0; j < 3; ++j) q(i, j) = i == j;
    q(axis0, axis0) = q(axis1, axis1) = c;
    q(axis0, axis1) = -s;
    q(axis1, axis0) = s;
}

}  // namespace

template <class Real>
Rq3<Real> rq3(View<Real> a, View<Real> qx, View<Real> qy, View<Real> qz) {
    const AxisRotation<Real> x(a(2, 2), a(2, 1), 1);
    rotate_columns(a, 2, 1, 2, x.c, x.s);
    a(2, 1) = 0;
    a(2, 2) = x.r;

    // Qy's sine stands at the other side of its diagonal: with -s it is the rotation of (0, 2).
    const AxisRotation<Real> y(a(2, 2), a(2, 0), -1);
    rotate_columns(a, 2, 0, 2, y.c, -y.s);
    a(2, 0) = 0;
    a(2, 2) = y.r;

    const AxisRotation<Real> z(a(1, 1), a(1, 0), 1);
    rotate_columns(a, 1, 0, 1, z.c, z.s);
    a(1, 0) = 0;
    a(1, 1) = z.r;

    set_rotation(qx, 1, 2, x.c, x.s);
    set_rotation(qy, 0, 2, y.c, -y.s);
    set_rotation(qz, 0, 1, z.c, z.s);
    return {x.angle, y.angle, z.angle};
}

template Rq3<double> rq3(View<double>, View<double>, View<double>, View<double>);
template Rq3<float> rq3(View<float>, View<float>, View<float>, View<float>);

}  // namespace nequar
