// What the two LU factorizations share: the row-by-row elimination of a small block, and the
// division of a column by its pivot.
#pragma once

#include <cmath>

#include "core/view.h"

namespace nequar {

// Where a recursion cuts an order n above `base`: near the middle, at a multiple of `base`.
inline Size split_of(Size n, Size base) {
    const Size half = (n / 2 + base - 1) / base * base;
    return half > 0 && half < n ? half : n / 2;
}

// 1/pivot, formed once for a column. The reciprocal of a subnormal pivot overflows; then the
// column is divided element by element.
template <class Real>
bool reciprocal_overflows(Real pivot) {
    return std::isinf(1 / pivot);
}

template <class Real>
void divide_by_pivot(Real pivot, Strided<Real> column) {
    if (reciprocal_overflows(pivot)) {
        for (Size i = 0; i < column.size; ++i) column(i) /= pivot;
        return;
    }
    const Real reciprocal = 1 / pivot;
    for (Size i = 0; i < column.size; ++i) column(i) *= reciprocal;
}

// row -= factor * pivot_row
template <class Real>
void subtract_multiple(Real factor, Strided<const Real> pivot_row, Strided<Real> row) {
    if (row.stride == 1 && pivot_row.stride == 1) {
        const Real* __restrict from = pivot_row.data;
        Real* __restrict to = row.data;
        for (Size j = 0; j < row.size; ++j) to[j] -= factor * from[j];
        return;
    }
    for (Size j = 0; j < row.size; ++j) row(j) -= factor * pivot_row(j);
}

// A = L U in place, row by row, without a search:
//   l(i, k) = a(i, k) / a(k, k),  row_i -= l(i, k) row_k,  i > k
// Every element is diminished by its products in the order k = 0, 1, ... False when a pivot is
// exactly zero or its reciprocal overflows.
template <class Real>
bool eliminate_rows_without_search(View<Real> a) {
    const Size n = a.height;
    for (Size k = 0; k < n; ++k) {
        const Real pivot = a(k, k);
        const Real reciprocal = 1 / pivot;
        if (std::isinf(reciprocal)) return false;  // zero, too
        const Strided<const Real> pivot_row = reading(a.row(k).part(k + 1, n - k - 1));
        for (Size i = k + 1; i < n; ++i) {
            const Real factor = a(i, k) *= reciprocal;
            subtract_multiple(factor, pivot_row, a.row(i).part(k + 1, n - k - 1));
        }
    }
    return true;
}

}  // namespace nequar
