// Tests of a square matrix's structure.
//
// A tolerance bounds the magnitude of what should vanish: as it stands, or as a fraction of the
// largest |a_ij| when it is relative. What is exactly right passes at any tolerance, a negative one
// or a NaN included; a NaN where a zero or an equal is wanted never passes.
#pragma once

#include "core/view.h"

namespace nequar {

struct Tolerance {
    double value = 0;
    bool relative = false;
};

// Whether every element above the diagonal is negligible. The transpose tests the upper form.
template <class Real>
bool is_lower(View<const Real> a, Tolerance tolerance);

// Whether |a_ij - a_ji| is negligible for all i, j.
template <class Real>
bool is_symmetric(View<const Real> a, Tolerance tolerance);

// Whether the symmetric matrix in A's lower triangle has a Cholesky factorization
//
//   A = L L^T,   every pivot above zero and finite.
//
// Right-looking by panels (Golub & Van Loan, Matrix Computations, 4th ed., 4.2.9), on A itself,
// whose lower triangle is lost.
template <class Real>
bool has_cholesky_factor(View<Real> a, Size panel = 48);

// Whether |a_ii| > sum of |a_ij|, j != i, in every row.
template <class Real>
bool is_diagonally_dominant(View<const Real> a);

}  // namespace nequar
