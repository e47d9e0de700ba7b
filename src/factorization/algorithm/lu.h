// P A = L U with the pivots chosen before the update.
//
//   A n x n, P a row order, L unit lower triangular, U upper triangular, packed into one matrix:
//   U on and above the diagonal, L strictly below it.
//
// The order is known before the elimination (pivot_order.h), so P A is factored by recursion on
// square blocks, without a search and without moving rows:
//
//   [A11 A12]   [L11    ] [U11 U12]      A11 = L11 U11             recursion
//   [A21 A22] = [L21 L22] [    U22]      U12 = L11^-1 A12          trsm
//                                        L21 = A21 U11^-1          trsm on the transposes
//                                        A22 := A22 - L21 U12      gemm
//                                        A22 = L22 U22             recursion
//
// The diagonal blocks at the ends of the recursion, and small matrices, go row by row. A matrix no
// larger than `plain` is eliminated in exactly the operations, and their order, of the column
// scheme (product, then difference; no fused operation), so both find the same exact zeros.
//
// When a pivot is exactly zero, or so small that its reciprocal overflows, the column scheme is run
// on the untouched input; what it leaves, and what it answers, stands.
//
// Source: Crout's scheme; the recursion after Golub and Van Loan, Matrix Computations, 3.2.11.
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

struct LuBlocking {
    Size plain = 32;  // the largest order that is eliminated by the stated operations alone
    Size base = 32;   // the order of the diagonal blocks at which the recursion ends
    // Neither may exceed kernel::kSmallOrder.
};

// The column scheme, in place, pivots included: step j chooses the pivot on the column as it
// stands, exchanges rows, updates the column, and stops when a(j, j) is exactly zero. Then the
// columns before j are factored, column j is updated, rows and order are exchanged so far, and the
// columns after j are those of the input.
template <class Real>
Outcome lu_by_columns(View<Real> a, int* perm, int& interchanges, Size plain = LuBlocking().plain);

// lu := the factors of P input. The views must not overlap. When it fails, lu, perm and
// interchanges are what the column scheme leaves.
template <class Real>
Outcome lu_before_update(View<const Real> input, View<Real> lu, int* perm, int& interchanges,
                         LuBlocking blocking = {});

// In place; takes a copy of the input as workspace.
template <class Real>
Outcome lu_before_update_in_place(View<Real> a, int* perm, int& interchanges,
                                  LuBlocking blocking = {});

// The product of the diagonal of U, negated for an odd number of interchanges: no scaling, so it
// overflows and underflows like any product. One for an empty matrix.
template <class Real>
Real determinant_from_lu(View<const Real> lu, int interchanges);

}  // namespace nequar
