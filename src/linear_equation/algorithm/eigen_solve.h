// With the decomposition A = V L V^T of a symmetric A, n x n, V orthogonal, L diagonal:
//
//   A x = b      t = V^T b,  t_i := t_i / l_i,  x = V t
//   A^+          sum of v_i v_i^T / l_i over the components that count
//
// A component counts when |l_i| > threshold, and their number is the rank.
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

enum class EigenFault { none, tolerance, ordering, not_finite };

struct EigenRank {
    EigenFault fault = EigenFault::none;
    Size rank = 0;
};

// threshold := tolerance * the larger of |l_0| and |l_(n-1)|, and the number of values above it in
// magnitude. Faults: a tolerance outside of [0, 1); with check_order, a value above the one before;
// a value that is no number.
template <class Real>
EigenRank count_components(Strided<const Real> values, Real tolerance, bool check_order,
                           Real& threshold);

// B := A^-1 B, n x k; t (n x k) is scratch
template <class Real>
void solve_with_eigen(View<const Real> v, Strided<const Real> values, View<Real> b, View<Real> t);

// X := the sum over the values above the threshold in magnitude, n x n; it may not overlap V. V's
// rows may be any number.
template <class Real>
Outcome invert_with_eigen(View<const Real> v, Strided<const Real> values, Real threshold,
                          View<Real> x);

}  // namespace nequar
