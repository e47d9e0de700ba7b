// Elementary reflectors that map x onto +mu e_pos, mu = ||x||.
//
//   unit form         H = I - beta v v^T,   v(pos) = 1            what users see
//   normalized form   H = I - u u^T,        u^T u = 2             what the library computes with
//
//   alpha = x(pos), sigma = sum of the other x(i)^2, mu = sqrt(alpha^2 + sigma)
//   v     = alpha - mu                alpha <= 0       (no cancellation on either side)
//         = -sigma / (alpha + mu)     alpha >  0
//   beta  = 2 v^2 / (sigma + v^2) = -v / mu,           x(i) := x(i) / v,   i != pos
//
// When sigma is zero there is no reflection (beta = 0, u = 0) and the element keeps its sign. A
// reflection whose beta is below the smallest normal number is treated as none too: what it leaves
// standing is below 1e-150 of the length of x (1e-18 in float). beta = 2 v^2 / (sigma + v^2) is
// the same number, but its squares underflow for a short remainder. u^T u = 2 whatever the lengths,
// so the normalized form never multiplies a large by a small number. A column of subnormal numbers
// is scaled by a power of two first. NaN or infinity in x (beside a remainder that is not zero)
// makes all of the reflector NaN.
//
// Golub & Van Loan, Matrix Computations, algorithm 5.1.1 (the unit form).
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

// Unit form: x := v, answers beta. x is not empty, 0 <= pos < x.size.
template <class Real>
Real householder_vector(Strided<Real> x, Size pos);

template <class Real>
struct Reflection {
    Real image;       // H x = image e_0
    bool is_none;     // H = I
    Real factor = 0;  // u(i) = factor x(i) for i > 0, unless 0: x was scaled, or there is none
};

// Normalized form with pos = 0: u := the vector of x's reflector, zero when there is no
// reflection. x is not empty; u may be x.
template <class Real>
Reflection<Real> make_reflector(Strided<const Real> x, Strided<Real> u);

// w := A^T u, A := (I - u u^T) A = A - u w^T
template <class Real>
void reflect_from_left(Strided<const Real> u, View<Real> a, Strided<Real> w);

// H := I - 2 v v^T / (v^T v), the identity for v = 0, NaN when v holds NaN or infinity
template <class Real>
Outcome householder_matrix(Strided<const Real> v, View<Real> h);

}  // namespace nequar
