// Principal components of n samples of dimension d, the rows x_i of an n x d view whose rows or
// columns are contiguous.
//
//   D = X - 1 mean^T                              deviations, n x d
//   G = D D^T (n <= d)   or   G = D^T D           K x K, K = min(n, d): scatter, not divided by n
//   G = V diag(lambda) V^T                        by the caller, eigenvalues in descending order
//   component k = D^T v_k / sqrt(lambda_k)  or  v_k,       k < m, the eigenvalues kept
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

// Writes mean[0 ... d-1], D (n x d, stored like the samples), and the upper triangle of G.
template <class Real>
Outcome gram_of_deviations(View<const Real> samples, Real* mean, View<Real> deviations,
                           View<Real> gram);

enum class EigenvalueFault { none, largest_is_negative, one_is_negative };

// Which of K eigenvalues, in descending order, are kept. Down to the first whose share lambda_k /
// lambda_0 is below `ratio`: that one counts into the total and is not kept. One that is not above
// zero ends the search if its size is below that share, and is a fault if it is not.
template <class Real>
struct KeptEigenvalues {
    EigenvalueFault fault = EigenvalueFault::none;
    Size count = 0;
    Real total = 0;
};
template <class Real>
KeptEigenvalues<Real> keep_eigenvalues(Size k, const Real* eigenvalues, Real ratio);

// Small-sample form: the m x d rows of `components` := diag(lambda)^-1/2 V_m^T D; the columns of V
// are scaled in place.
template <class Real>
void components_of_samples(Size m, const Real* eigenvalues, View<Real> v,
                           View<const Real> deviations, View<Real> components);

// Adds up the shares of m eigenvalues in the total until they exceed 1 - residual_share.
template <class Real>
struct ExplainedShare {
    Size components = 0;  // those before the one that crossed; m when none did
    Real share = 0;       // that one included
};
template <class Real>
ExplainedShare<Real> explained_share(Size m, const Real* eigenvalues, Real total,
                                     Real residual_share);

// One step of analysis and reconstruction along a unit direction: answers the coefficient c of the
// deviation, and adds c direction to the reconstruction.
template <class Real>
Real add_component(Size d, const Real* direction, const Real* deviation, Real* reconstruction);

template <class Real>
Real sum_of_squares(Size d, const Real* x);
// sum c_k^2 / lambda_k
template <class Real>
Real weighted_sum_of_squares(Size m, const Real* coefficients, const Real* eigenvalues);

// rest / whole; 0 where there is nothing that could be left.
template <class Real>
Real relative_square(Real rest, Real whole);

}  // namespace nequar
