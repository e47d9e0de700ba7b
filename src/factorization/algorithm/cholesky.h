// A = L L^T, A n x n symmetric positive definite, L lower triangular with a positive diagonal.
//
//   [A11    ]   [L11    ] [L11^T L21^T]     A11 = L11 L11^T          recursion
//   [A21 A22] = [L21 L22] [      L22^T]     L21 = A21 L11^-T         trsm on the transposes
//                                           A22 := A22 - L21 L21^T   syrk
//                                           A22 = L22 L22^T          recursion
//
// A = U U^T is the same on the reversed view: with J the reversal, J A J = (J U J)(J U J)^T and
// J U J is lower triangular.
//
// A matrix no larger than the base is factored in exactly the operations of the plain scheme
//   s = a(i, j) - l(i, 0) l(j, 0) - l(i, 1) l(j, 1) - ...,  l(j, i) = s / l(i, i)
// (product, then difference; no fused operation). A pivot that is not above zero, NaN included, is
// the end.
//
// Source: Golub and Van Loan, Matrix Computations, 4.2.
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

struct CholeskyBlocking {
    Size base = 32;  // the order at which the recursion ends, at most 64
};

// In place on the lower triangle; the strict upper one is neither read nor written. On failure
// columns before the failing block are factored, what follows is partly updated.
template <class Real>
Outcome cholesky_lower(View<Real> a, CholeskyBlocking blocking = {});

// Reads the diagonal and the strict upper triangle, which keeps its input; writes L into the
// strict lower triangle and, when it succeeds, onto the diagonal. On failure the diagonal is that
// of the input and the strict lower triangle is partly overwritten.
template <class Real>
Outcome cholesky_from_upper(View<Real> a, CholeskyBlocking blocking = {});

}  // namespace nequar
