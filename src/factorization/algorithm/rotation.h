// Plane rotation that annihilates b beside a.
//
//   new_a = c a - s b = r,    new_b = s a + c b = 0,    c^2 + s^2 = 1
//
//   b = 0:        c = 1, s = 0
//   |b| > |a|:    t = -a / b,  s = 1 / sqrt(1 + t^2),  c = s t
//   otherwise:    t = -b / a,  c = 1 / sqrt(1 + t^2),  s = c t
//
// The larger of c and s is not negative, so r may be negative. |t| <= 1: nothing overflows.
//
// Golub & Van Loan, Matrix Computations, algorithm 5.1.3.
#pragma once

#include <cmath>

namespace nequar {

template <class Real>
struct Rotation {
    Real c = 1;
    Real s = 0;
};

template <class Real>
inline Rotation<Real> givens_rotation(Real a, Real b) {
    if (b == 0) return {1, 0};
    if (std::abs(b) > std::abs(a)) {
        const Real t = -a / b;
        const Real s = 1 / std::sqrt(1 + t * t);
        return {s * t, s};
    }
    const Real t = -b / a;
    const Real c = 1 / std::sqrt(1 + t * t);
    return {c, c * t};
}

}  // namespace nequar
