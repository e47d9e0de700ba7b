// A = U S V^T, the singular value decomposition.
//
//   A m x n, m >= n;  U m x m, or m x n, its first columns alone;  S descending;  V n x n
//
//   A  --QR-->  R  (when A is tall)   --bidiagonalize-->  B  --steps-->  diagonal
//
// The rotations of the steps are collected in W_U and W_V (n x n, transposed, so that a rotation
// works on two rows); the reflectors come last, applied to these, so that neither they nor U or V
// are formed for what nobody asked for.
//
// The matrix is scaled by a power of two when its largest element is near the ends of the range.
//
// Golub & Van Loan, Matrix Computations, algorithms 8.6.2 and 5.4.2 (the QR that comes first: T.F.
// Chan, An improved algorithm for computing the singular value decomposition, ACM TOMS 8, 1982).
#pragma once

#include <cstdint>

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

template <class Real>
struct SvdTargets {
    Real* sigma = nullptr;  // n
    const View<Real>* u = nullptr;
    const View<Real>* v = nullptr;
};

// Steps of the QR iteration. As soon as their number reaches the limit the iteration ends, before
// the step that would be the last is made; what the diagonal then holds is delivered.
struct SvdSteps {
    std::int64_t limit = 0;
    std::int64_t made = 0;
    bool has_converged = false;
};

// A limit that no matrix with n columns comes near: about two steps a value are made.
inline std::int64_t generous_limit(Size n) {
    return 100 + 40 * std::int64_t(n);
}

// For callers that only divide by A. When its rank is full beyond doubt, s(n-1) > max(tolerance,
// n eps) s(0), no vector is needed:
//
//   A = U_B B V_B^T:    A^+ = V_B B^-1 U_B^T
//
// `is_done` is set then, V is not touched, and where right sides C are given (m x k, they overlap
// nothing) A^+ C comes to stand in their first n rows; where not, U, m x n, becomes the transposed
// A^+. Otherwise U and V are formed as asked for; but not, if `needs_full_rank`, when s(n-1) <=
// tolerance s(0).
template <class Real>
struct SvdInverse {
    Real tolerance = 0;
    bool needs_full_rank = false;
    const View<Real>* right_sides = nullptr;
    bool is_done = false;
};

// A, whose largest magnitude is given, is finite and read only; it overlaps no target. `inverse`,
// unless null, wants both U and V.
template <class Real>
Outcome svd(View<const Real> a, Real largest, const SvdTargets<Real>& targets, SvdSteps& steps,
            SvdInverse<Real>* inverse = nullptr);

// The rank by singular values in descending order.
enum class RankFault { none, tolerance, ordering, negative, not_finite };

// The first i >= 1 with s(i) <= tolerance s(0), s.size when there is none, 0 for s(0) = 0. The
// tolerance lies in [0, 1). Order and signs, that of s(0) excepted, are looked at when check is
// true. The rank is written when there is no fault.
template <class Real>
RankFault find_rank(Strided<const Real> s, Real tolerance, bool check, int& rank);

// The last i with s(i) / s(0) > tolerance, plus one; 0 when there is none.
template <class Real>
int count_above(Strided<const Real> s, Real tolerance);
// The number of leading elements greater than tolerance s(0).
template <class Real>
int count_leading(Strided<const Real> s, Real tolerance);

// A := A diag(s)
template <class Real>
void scale_columns(Strided<const Real> s, View<Real> a);

}  // namespace nequar
