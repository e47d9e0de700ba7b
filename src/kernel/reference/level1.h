// Level 1, as plain loops: the fallback of every CPU and what the other variants are held against.
#pragma once

#include <cmath>

#include "core/view.h"

namespace nequar::kernel::reference {

template <class Real>
void add(Size n, const Real* a, const Real* b, Real* out) {
    for (Size i = 0; i < n; ++i) out[i] = a[i] + b[i];
}

template <class Real>
void subtract(Size n, const Real* a, const Real* b, Real* out) {
    for (Size i = 0; i < n; ++i) out[i] = a[i] - b[i];
}

template <class Real>
void add_weighted(Size n, const Real* a, const Real* b, Real wa, Real wb, Real* out) {
    for (Size i = 0; i < n; ++i) out[i] = wa * a[i] + wb * b[i];
}

template <class Real>
void add_constant(Size n, const Real* a, Real c, Real* out) {
    for (Size i = 0; i < n; ++i) out[i] = a[i] + c;
}

template <class Real>
void multiply_by(Size n, const Real* a, Real c, Real* out) {
    for (Size i = 0; i < n; ++i) out[i] = c * a[i];
}

template <class Real>
void multiply_elementwise(Size n, const Real* a, const Real* b, Real* out) {
    for (Size i = 0; i < n; ++i) out[i] = a[i] * b[i];
}

template <class Real>
void fill(Size n, Real value, Real* out) {
    for (Size i = 0; i < n; ++i) out[i] = value;
}

template <class Real>
Real sum(Size n, const Real* x) {
    Real total = 0;
    for (Size i = 0; i < n; ++i) total += x[i];
    return total;
}

template <class Real>
Real squares_about(Size n, const Real* x, Real centre) {
    Real total = 0;
    for (Size i = 0; i < n; ++i) total += (x[i] - centre) * (x[i] - centre);
    return total;
}

template <class Real>
Real largest(Size n, const Real* x, Real other) {
    for (Size i = 0; i < n; ++i) other = x[i] > other ? x[i] : other;
    return other;
}

template <class Real>
Real smallest(Size n, const Real* x, Real other) {
    for (Size i = 0; i < n; ++i) other = x[i] < other ? x[i] : other;
    return other;
}

template <class Real>
Real dot(Size n, const Real* x, Size sx, const Real* y, Size sy) {
    Real sum = 0;
    for (Size i = 0; i < n; ++i) sum += x[i * sx] * y[i * sy];
    return sum;
}

template <class Real>
Real sum_of_magnitudes(Size n, const Real* x, Size sx) {
    Real sum = 0;
    for (Size i = 0; i < n; ++i) sum += std::abs(x[i * sx]);
    return sum;
}

template <class Real>
void add_reversed(Size n, Real alpha, Real* x) {
    for (Size i = 0, j = n - 1; i <= j; ++i, --j) {
        const Real low = x[i];
        const Real high = x[j];
        x[i] = low + alpha * high;
        x[j] = high + alpha * low;
    }
}

template <class Real>
Real sum_of_squares(Size n, const Real* x, Size sx) {
    Real sum = 0;
    for (Size i = 0; i < n; ++i) sum += x[i * sx] * x[i * sx];
    return sum;
}

template <class Real>
Real distance_squared(Size n, const Real* x, Size sx, const Real* y, Size sy) {
    Real sum = 0;
    for (Size i = 0; i < n; ++i) {
        const Real difference = x[i * sx] - y[i * sy];
        sum += difference * difference;
    }
    return sum;
}

template <class Real>
void squared_distances(Size n, Size d, const Real* x, Block<const Real> a, Real* out) {
    for (Size i = 0; i < n; ++i)
        out[i] = distance_squared(d, x, 1, a.data + i * a.row_stride, a.column_stride);
}

template <class Real>
void axpy(Size n, Real alpha, const Real* x, Size sx, Real* y, Size sy) {
    for (Size i = 0; i < n; ++i) y[i * sy] += alpha * x[i * sx];
}

template <class Real>
void scale(Size n, Real alpha, Real* x, Size sx) {
    for (Size i = 0; i < n; ++i) x[i * sx] *= alpha;
}

template <class Real>
void copy(Size n, const Real* x, Size sx, Real* y, Size sy) {
    for (Size i = 0; i < n; ++i) y[i * sy] = x[i * sx];
}

template <class Real>
void swap(Size n, Real* x, Size sx, Real* y, Size sy) {
    for (Size i = 0; i < n; ++i) {
        const Real old = x[i * sx];
        x[i * sx] = y[i * sy];
        y[i * sy] = old;
    }
}

template <class Real>
void rotate(Size n, Real* x, Size sx, Real* y, Size sy, Real c, Real s) {
    for (Size i = 0; i < n; ++i) {
        const Real xi = x[i * sx];
        const Real yi = y[i * sy];
        x[i * sx] = c * xi - s * yi;
        y[i * sy] = s * xi + c * yi;
    }
}

template <class Real>
Size index_of_largest_magnitude(Size n, const Real* x, Size sx) {
    if (n <= 0) return -1;
    Size index = 0;
    Real largest = -1;
    for (Size i = 0; i < n; ++i) {
        const Real magnitude = std::abs(x[i * sx]);
        if (magnitude > largest) {  // false for NaN
            largest = magnitude;
            index = i;
        }
    }
    return index;
}

}  // namespace nequar::kernel::reference
