// Solving with factors that are already there, one or many right-hand sides.
//
//   lu: packed L and U of P A            X = U^-1 L^-1 P B        gather, trsm, trsm
//   factor: L of A = L L^T               X = L^-T L^-1 B          trsm, trsm
//           U of A = U U^T               X = U^-T U^-1 B          trsm, trsm
//
// A single right-hand side goes through trsv.
#pragma once

#include "core/view.h"
#include "kernel/kernel.h"

namespace nequar {

// Row i of X := row perm[i] of B. They must not overlap.
template <class Real>
void gather_right_hand_sides(View<const Real> b, const int* perm, View<Real> x);

// X := T^-1 X
template <class Real>
void solve_triangle(kernel::Triangle triangle, kernel::Diagonal diagonal, View<const Real> t,
                    View<Real> x);

// X := (P A)^-1 P B. B and X are n x k and must not overlap.
template <class Real>
void solve_from_lu(View<const Real> lu, const int* perm, View<const Real> b, View<Real> x);

// X := (L L^T)^-1 X with L the lower triangle, or X := (U U^T)^-1 X with U the upper one, in place.
template <class Real>
void solve_from_cholesky(kernel::Triangle triangle, View<const Real> factor, View<Real> x);

}  // namespace nequar
