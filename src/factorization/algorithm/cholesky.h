// Cholesky factorizations of a symmetric positive definite A, n x n.
//
//   lower: A = L L^T                                 upper: A = U U^T (from the bottom right
//   corner)
//
//   [A11    ]   [L11    ] [L11^T L21^T]              [A11 A12]   [U11 U12] [U11^T      ]
//   [A21 A22] = [L21 L22] [      L22^T]              [    A22] = [    U22] [U12^T U22^T]
//
//   A11 = L11 L11^T          recursion               A22 = U22 U22^T          recursion
//   L21 = A21 L11^-T         trsm                    U12 = A12 U22^-T         trsm
//   A22 := A22 - L21 L21^T   syrk                    A11 := A11 - U12 U12^T   syrk
//   A22 = L22 L22^T          recursion               A11 = U11 U11^T          recursion
//
// The diagonal blocks at the ends of the recursion, and small matrices, are factored row by row. A
// matrix no larger than `plain` is factored in exactly the operations of the plain scheme
//   s = a(i, j) - l(i, 0) l(j, 0) - l(i, 1) l(j, 1) - ...,  l(j, i) = s / l(i, i)
// (product, then difference; no fused operation). A pivot that is not above zero, NaN included, is
// the end.
//
// Source: Golub and Van Loan, Matrix Computations, 4.2.
#pragma once

#include "core/outcome.h"
#include "core/view.h"
#include "kernel/kernel.h"

namespace nequar {

struct CholeskyBlocking {
    Size plain = 32;  // the largest order that is factored by the stated operations alone
    Size base = 32;   // the order of the diagonal blocks at which the recursion ends
    // Neither may exceed kernel::kSmallOrder.
};

// In place on the named triangle; the other one is neither read nor written. On failure the index
// is that of the pivot, and the triangle is partly factored and updated.
template <class Real>
Outcome cholesky(kernel::Triangle triangle, View<Real> a, CholeskyBlocking blocking = {});

// Reads the diagonal and the triangle opposite to the named one, which keeps its input; writes the
// factor into the named triangle and, when it succeeds, onto the diagonal. On failure the diagonal
// is that of the input and the named triangle is partly overwritten.
template <class Real>
Outcome cholesky_from_opposite(kernel::Triangle triangle, View<Real> a,
                               CholeskyBlocking blocking = {});

}  // namespace nequar
