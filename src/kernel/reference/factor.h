// Eliminations of what is small, as plain loops; nothing is fused.
//
//   lu_small         A = L U                    row by row, no search
//   cholesky_small   A = U^T U                  on the upper triangle
//   lu_panel         P A = L U, m x w           column by column, held transposed
//   lu_pivoted_small P A = L U, n x n           the same on a transposed copy
#pragma once

#include <cmath>

#include "kernel/reference/level1.h"
#include "kernel/reference/level2.h"

namespace nequar::kernel::reference {

template <class Real>
Size lu_small(bool /*fused*/, Size n, const Block<const Real>& from, const int* rows,
              const Block<Real>& to) {
    Real a[kSmallOrder][kSmallOrder];
    for (Size i = 0; i < n; ++i) {
        for (Size j = 0; j < n; ++j) a[i][j] = at(from, rows != nullptr ? rows[i] : i, j);
    }
    for (Size k = 0; k < n; ++k) {
        const Real reciprocal = 1 / a[k][k];
        if (std::isinf(reciprocal)) return k;
        for (Size i = k + 1; i < n; ++i) {
            a[i][k] *= reciprocal;
            for (Size j = k + 1; j < n; ++j) a[i][j] -= a[i][k] * a[k][j];
        }
    }
    for (Size i = 0; i < n; ++i) {
        for (Size j = 0; j < n; ++j) at(to, i, j) = a[i][j];
    }
    return -1;
}

template <class Real>
Size cholesky_small(bool /*fused*/, Size n, const Block<const Real>& from, const Block<Real>& to) {
    Real u[kSmallOrder][kSmallOrder];
    for (Size i = 0; i < n; ++i) {
        for (Size j = i; j < n; ++j) u[i][j] = at(from, i, j);
    }
    for (Size k = 0; k < n; ++k) {
        if (!(u[k][k] > 0)) return k;
        u[k][k] = std::sqrt(u[k][k]);
        for (Size j = k + 1; j < n; ++j) u[k][j] /= u[k][k];
        for (Size i = k + 1; i < n; ++i) {
            for (Size j = i; j < n; ++j) u[i][j] -= u[k][i] * u[k][j];
        }
    }
    for (Size i = 0; i < n; ++i) {
        for (Size j = i; j < n; ++j) at(to, i, j) = u[i][j];
    }
    return -1;
}

template <class Real>
Size lu_panel(bool /*fused*/, Size w, Size m, Real* t, Size stride, int* pivots) {
    Size zero = -1;
    for (Size k = 0; k < w; ++k) {
        Real* const column = t + k * stride;
        Size r = k;
        Real largest = 0;
        for (Size i = k; i < m; ++i) {
            if (!(std::abs(column[i]) > largest)) continue;  // NaN, too
            largest = std::abs(column[i]);
            r = i;
        }
        pivots[k] = static_cast<int>(r);
        if (r != k) swap(w, t + k, stride, t + r, stride);
        const Real pivot = column[k];
        if (pivot == 0) {
            if (zero < 0) zero = k;
        } else {
            const Real reciprocal = 1 / pivot;
            for (Size i = k + 1; i < m; ++i) {
                column[i] = std::isinf(reciprocal) ? column[i] / pivot : column[i] * reciprocal;
            }
        }
        for (Size c = k + 1; c < w; ++c) {
            for (Size i = k + 1; i < m; ++i) t[c * stride + i] -= t[c * stride + k] * column[i];
        }
    }
    return zero;
}

template <class Real>
Size lu_pivoted_small(Size n, const Block<Real>& a, int* pivots) {
    Real t[kSmallOrder][kSmallOrder];
    for (Size i = 0; i < n; ++i) {
        for (Size j = 0; j < n; ++j) t[j][i] = at(a, i, j);
    }
    const Size zero = lu_panel(false, n, n, t[0], kSmallOrder, pivots);
    for (Size i = 0; i < n; ++i) {
        for (Size j = 0; j < n; ++j) at(a, i, j) = t[j][i];
    }
    return zero;
}

template <class Real>
void last_largest_of_columns(Size m, Size w, const Real* a, Size row_stride, const int* rows,
                             Real* largest, Real* place) {
    for (Size j = 0; j < w; ++j) {
        largest[j] = 0;
        place[j] = -1;
        for (Size i = 0; i < m; ++i) {
            const Real magnitude = std::abs(a[rows[i] * row_stride + j]);
            if (!(magnitude >= largest[j])) continue;  // NaN, too
            largest[j] = magnitude;
            place[j] = static_cast<Real>(i);
        }
    }
}

template <class Real>
void eliminate_column(Size m, Size n, Size column, const Real* pivot_row, const Real* weight,
                      Real* a, Size row_stride, Real* factors, Real* largest) {
    for (Size r = 0; r < m; ++r) {
        Real* const row = a + r * row_stride;
        factors[r] = row[column];
        largest[r] = 0;
        for (Size j = 0; j < n; ++j) {
            row[j] -= factors[r] * pivot_row[j];
            const Real magnitude = std::abs(row[j]) * weight[j];
            if (magnitude > largest[r]) largest[r] = magnitude;  // false for NaN
        }
    }
}

}  // namespace nequar::kernel::reference
