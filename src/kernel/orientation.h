// Operands that run backwards in memory. What a product computes does not depend on the order in
// which a dimension is walked, so a dimension in which operands run backwards is turned round in
// all of them, and the kernels see unit strides again.
#pragma once

#include "core/view.h"

namespace nequar::kernel {

template <class Real>
Strided<Real> turned(const Strided<Real>& x) {
    return {x.data + (x.size - 1) * x.stride, x.size, -x.stride};
}

template <class Real>
View<Real> with_rows_turned(const View<Real>& a) {
    return {a.data + (a.height - 1) * a.row_stride, a.height, a.width, -a.row_stride,
            a.column_stride};
}

template <class Real>
View<Real> with_columns_turned(const View<Real>& a) {
    return with_rows_turned(a.transposed()).transposed();
}

// Whether x and y, walked together, are better turned round.
template <class A, class B>
bool run_backwards(const Strided<A>& x, const Strided<B>& y) {
    return x.stride < 0 && y.stride < 0 && y.size > 0;
}

// Whether a dimension of C = A B is better turned round.
template <class Real>
bool run_backwards(const View<const Real>& a, const View<const Real>& b, const View<Real>& c) {
    return c.row_stride < 0 || c.column_stride < 0 || (a.column_stride < 0 && b.row_stride < 0);
}

// C = A B: the rows of A and C, the columns of B and C, the inner dimension.
template <class Real>
void turn_forwards(View<const Real>& a, View<const Real>& b, View<Real>& c) {
    if (c.is_empty()) return;
    if (c.row_stride < 0) {
        a = with_rows_turned(a);
        c = with_rows_turned(c);
    }
    if (c.column_stride < 0) {
        b = with_columns_turned(b);
        c = with_columns_turned(c);
    }
    if (a.column_stride < 0 && b.row_stride < 0 && a.width > 0) {
        a = with_columns_turned(a);
        b = with_rows_turned(b);
    }
}

}  // namespace nequar::kernel
