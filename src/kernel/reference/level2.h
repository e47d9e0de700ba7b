// Level 2, as plain loops.
//
//   gemv   y := alpha A x (+ y)        A m x n
//   ger    A += alpha x y^T            A m x n
//   trsv   x := T^-1 x                 T n x n, its named triangle alone is read
#pragma once

#include "core/view.h"
#include "kernel/table.h"

namespace nequar::kernel::reference {

template <class Real>
Real& at(const Block<Real>& block, Size i, Size j) {
    return block.data[i * block.row_stride + j * block.column_stride];
}

template <class Real>
void gemv(Size m, Size n, Real alpha, Block<const Real> a, const Real* x, Size sx, bool accumulate,
          Real* y, Size sy) {
    for (Size i = 0; i < m; ++i) {
        Real sum = 0;
        for (Size j = 0; j < n; ++j) sum += at(a, i, j) * x[j * sx];
        y[i * sy] = accumulate ? y[i * sy] + alpha * sum : alpha * sum;
    }
}

template <class Real>
void ger(Size m, Size n, Real alpha, const Real* x, Size sx, const Real* y, Size sy,
         Block<Real> a) {
    for (Size i = 0; i < m; ++i) {
        const Real factor = alpha * x[i * sx];
        for (Size j = 0; j < n; ++j) at(a, i, j) += factor * y[j * sy];
    }
}

template <class Real>
void trsv(bool lower, bool unit, Size n, Block<const Real> t, Real* x, Size sx) {
    for (Size step = 0; step < n; ++step) {
        const Size i = lower ? step : n - 1 - step;
        const Size first = lower ? 0 : i + 1;
        const Size last = lower ? i : n;
        Real sum = x[i * sx];
        for (Size j = first; j < last; ++j) sum -= at(t, i, j) * x[j * sx];
        x[i * sx] = unit ? sum : sum / at(t, i, i);
    }
}

template <class Real>
void symv_upper(Size n, const Real* a, Size a_row, const Real* x, Real* y) {
    for (Size i = 0; i < n; ++i) {
        y[i] = 0;
        for (Size j = 0; j < n; ++j) y[i] += (j < i ? a[j * a_row + i] : a[i * a_row + j]) * x[j];
    }
}

}  // namespace nequar::kernel::reference
