// P A = L U with partial pivoting: the pivot of column j is the largest element of the column as
// the elimination left it, the first of equals.
//
//   A n x n, packed factors in place: U on and above the diagonal, unit lower triangular L below.
//
// Recursion on halves of the columns; the rows of a half are exchanged when it is needed:
//
//   [A1 | A2]     P1 A1 = [L11; L21] U11       recursion on m x n1
//                 A2 := P1 A2                  rows exchanged
//                 U12 = L11^-1 A12             trsm
//                 A22 := A22 - L21 U12         gemm
//                 P2 A22 = L22 U22             recursion
//                 L21 := P2 L21                rows exchanged
//
// It ends at narrow panels, which are factored on a transposed copy, so that columns are
// contiguous. The smallest matrices go row by row as they are; a matrix no larger than `plain` has
// the same bits either way.
//
// What is not a number is never chosen. A column without a pivot, all zero where it is sought, is
// passed over: its multipliers stay zero and the elimination goes on, so that on failure too
// P A = L U holds for finite input, with a zero on the diagonal of U.
//
// Source: Toledo, Locality of reference in LU decomposition with partial pivoting, SIAM J. Matrix
// Anal. Appl. 18 (1997); Gustavson, IBM J. Res. Dev. 41 (1997).
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

struct LuPartialBlocking {
    Size plain = 32;  // the largest order that is one panel, eliminated without fused operations
    Size panel = 16;  // the width at which the recursion ends
    Size rows = 32;   // the largest order that goes row by row, `plain` and kSmallOrder at most
};

// Fails as singular with the first column whose pivot is exactly zero, all columns done.
template <class Real>
Outcome lu_partial_in_place(View<Real> a, int* perm, int& interchanges,
                            LuPartialBlocking blocking = {});

}  // namespace nequar
