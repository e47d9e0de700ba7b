// What the recursive factorizations share: where they cut, and the division of a column by its
// pivot.
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

}  // namespace nequar
