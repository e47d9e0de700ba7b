// Level 3, as plain loops.
//
//   gemm    C := alpha A B (+ C)                 A m x k, B k x n, C m x n
//   gemmt   a triangle of C := alpha A B (+ C)   A n x k, B k x n, C n x n
//   trsm    B := T^-1 B                          T m x m, B m x n
//   trmm    B := T B                             T m x m, B m x n
#pragma once

#include "kernel/reference/level2.h"

namespace nequar::kernel::reference {

template <class Real>
void gemm_element(Size i, Size j, Size k, Real alpha, const Block<const Real>& a,
                  const Block<const Real>& b, bool accumulate, const Block<Real>& c) {
    Real sum = 0;
    for (Size p = 0; p < k; ++p) sum += at(a, i, p) * at(b, p, j);
    at(c, i, j) = accumulate ? at(c, i, j) + alpha * sum : alpha * sum;
}

template <class Real>
void gemm(Size m, Size n, Size k, Real alpha, const Block<const Real>& a,
          const Block<const Real>& b, bool accumulate, const Block<Real>& c) {
    for (Size i = 0; i < m; ++i) {
        for (Size j = 0; j < n; ++j) gemm_element(i, j, k, alpha, a, b, accumulate, c);
    }
}

template <class Real>
void gemmt(bool lower, Size n, Size k, Real alpha, Block<const Real> a, Block<const Real> b,
           bool accumulate, Block<Real> c) {
    for (Size i = 0; i < n; ++i) {
        const Size first = lower ? 0 : i;
        const Size last = lower ? i + 1 : n;
        for (Size j = first; j < last; ++j) gemm_element(i, j, k, alpha, a, b, accumulate, c);
    }
}

template <class Real>
void trsm(bool lower, bool unit, Size m, Size n, Block<const Real> t, Block<Real> b) {
    for (Size j = 0; j < n; ++j) {
        trsv(lower, unit, m, t, b.data + j * b.column_stride, b.row_stride);
    }
}

template <class Real>
void trmm(bool lower, bool unit, Size m, Size n, Block<const Real> t, Block<Real> b) {
    for (Size step = 0; step < m; ++step) {
        const Size i = lower ? m - 1 - step : step;  // the rows that are still to be read stay
        const Size first = lower ? 0 : i + 1;
        const Size last = lower ? i : m;
        for (Size j = 0; j < n; ++j) {
            Real sum = unit ? at(b, i, j) : at(t, i, i) * at(b, i, j);
            for (Size p = first; p < last; ++p) sum += at(t, i, p) * at(b, p, j);
            at(b, i, j) = sum;
        }
    }
}

}  // namespace nequar::kernel::reference
