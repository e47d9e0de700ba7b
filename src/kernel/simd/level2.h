// Level 2 on strided operands, vectors along the unit stride of A.
//
//   gemv   y := alpha A x (+ y)     rows contiguous:     4 dot products at once, x loaded once for
//                                   them; of short rows as many as a vector has lanes, summed up
//                                   together
//                                   columns contiguous:  4 columns at once into y
//   ger    A += alpha x y^T         4 rows at once, y loaded once for them
//
// A strided x or y goes through a short buffer on the stack, a stretch at a time.
#pragma once

#include "kernel/simd/partition.h"
#include "kernel/simd/shuffle.h"
#include "kernel/table.h"

namespace nequar::kernel::NEQUAR_UNIT {

inline constexpr unsigned kStretch = 1024;  // elements of a buffered vector

// ---- rows contiguous ---------------------------------------------------------------------------

// sums[r] = A(r, :) x for R rows of n contiguous elements, x contiguous.
template <unsigned R, class Real>
NEQUAR_INLINE void dot_rows(Size n, const Real* a, Size a_row, const Real* x, Real (&sums)[R]) {
    constexpr Size lanes = kLanes<Real>;
    Vector<Real> acc[R][2] = {};
    Size j = 0;
    for (; j + 2 * lanes <= n; j += 2 * lanes) {
        const Vector<Real> x0 = load(x + j);
        const Vector<Real> x1 = load(x + j + lanes);
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
            acc[r][0] = multiply_add(load(a + r * a_row + j), x0, acc[r][0]);
            acc[r][1] = multiply_add(load(a + r * a_row + j + lanes), x1, acc[r][1]);
        }
    }
    if (j + lanes <= n) {
        const Vector<Real> x0 = load(x + j);
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
            acc[r][0] = multiply_add(load(a + r * a_row + j), x0, acc[r][0]);
        }
        j += lanes;
    }
    if (j < n) {
        const FirstLanes<Real> last = first_lanes<Real>(n - j);
        const Vector<Real> x0 = load(x + j, last);
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
            acc[r][1] = multiply_add(load(a + r * a_row + j, last), x0, acc[r][1]);
        }
    }
    NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
        sums[r] = sum_of_lanes<Real>(acc[r][0] + acc[r][1]);
    }
}

inline constexpr Size kShortRow = 2048;  // bytes

// The sums of as many rows as a vector has lanes; those from `height` on are not read.
template <class Real>
NEQUAR_INLINE Vector<Real> dot_short_rows(Size height, Size n, const Real* a, Size a_row,
                                          const Real* x) {
    constexpr Size lanes = kLanes<Real>;
    const Real* rows[unsigned(lanes)];
    NEQUAR_UNROLL for (Size r = 0; r < lanes; ++r) rows[r] = a + smaller(r, height - 1) * a_row;
    Vector<Real> acc[unsigned(lanes)] = {};
    Size j = 0;
    for (; j + lanes <= n; j += lanes) {
        const Vector<Real> xj = load(x + j);
        NEQUAR_UNROLL for (Size r = 0; r < lanes; ++r) {
            acc[r] = multiply_add(load(rows[r] + j), xj, acc[r]);
        }
    }
    if (j < n) {
        const FirstLanes<Real> last = first_lanes<Real>(n - j);
        const Vector<Real> xj = load(x + j, last);
        NEQUAR_UNROLL for (Size r = 0; r < lanes; ++r) {
            acc[r] = multiply_add(load(rows[r] + j, last), xj, acc[r]);
        }
    }
    return sums_of_lanes<Real>(acc);
}

// y(i ...) := alpha A(i ..., :) x (+ y) for the next rows, `lanes` of them at a time, while more
// than half of those are left; answers the first row that is not done.
template <class Real>
Size gemv_short_rows(Size m, Size n, Real alpha, const Real* a, Size a_row, const Real* x,
                     bool accumulate, Real* y) {
    constexpr Size lanes = kLanes<Real>;
    const Vector<Real> factor = broadcast(alpha);
    Size i = 0;
    for (; i + lanes <= m; i += lanes) {
        const Vector<Real> sums = factor * dot_short_rows(lanes, n, a + i * a_row, a_row, x);
        store(y + i, accumulate ? load(y + i) + sums : sums);
    }
    if (m - i <= lanes / 2) return i;
    const FirstLanes<Real> last = first_lanes<Real>(m - i);
    const Vector<Real> sums = factor * dot_short_rows(m - i, n, a + i * a_row, a_row, x);
    store(y + i, accumulate ? load(y + i, last) + sums : sums, last);
    return m;
}

template <class Real>
void gemv_rows(Size m, Size n, Real alpha, const Real* a, Size a_row, const Real* x,
               bool accumulate, Real* y, Size sy) {
    Size i = 0;
    if (sy == 1 && 2 * m > kLanes<Real> && n * Size(sizeof(Real)) <= kShortRow)
        i = gemv_short_rows(m, n, alpha, a, a_row, x, accumulate, y);
    for (; i + 4 <= m; i += 4) {
        Real sums[4];
        dot_rows<4>(n, a + i * a_row, a_row, x, sums);
        NEQUAR_UNROLL for (unsigned r = 0; r < 4; ++r) {
            Real& element = y[(i + r) * sy];
            element = accumulate ? element + alpha * sums[r] : alpha * sums[r];
        }
    }
    for (; i < m; ++i) {
        Real sums[1];
        dot_rows<1>(n, a + i * a_row, a_row, x, sums);
        Real& element = y[i * sy];
        element = accumulate ? element + alpha * sums[0] : alpha * sums[0];
    }
}

// ---- columns contiguous ------------------------------------------------------------------------

// y := A(:, 0 ... C - 1) x (+ y), x scaled already, y contiguous.
template <unsigned C, class Real>
NEQUAR_INLINE void add_columns(Size m, const Real* a, Size a_column, const Real (&x)[C],
                               bool accumulate, Real* y) {
    constexpr Size lanes = kLanes<Real>;
    Vector<Real> factor[C];
    NEQUAR_UNROLL for (unsigned c = 0; c < C; ++c) factor[c] = broadcast(x[c]);
    Size i = 0;
    for (; i + 2 * lanes <= m; i += 2 * lanes) {
        Vector<Real> sum0 = accumulate ? load(y + i) : Vector<Real>{};
        Vector<Real> sum1 = accumulate ? load(y + i + lanes) : Vector<Real>{};
        NEQUAR_UNROLL for (unsigned c = 0; c < C; ++c) {
            sum0 = multiply_add(load(a + c * a_column + i), factor[c], sum0);
            sum1 = multiply_add(load(a + c * a_column + i + lanes), factor[c], sum1);
        }
        store(y + i, sum0);
        store(y + i + lanes, sum1);
    }
    for (; i < m; i += lanes) {
        const FirstLanes<Real> part = first_lanes<Real>(smaller(m - i, lanes));
        Vector<Real> sum = accumulate ? load(y + i, part) : Vector<Real>{};
        NEQUAR_UNROLL for (unsigned c = 0; c < C; ++c) {
            sum = multiply_add(load(a + c * a_column + i, part), factor[c], sum);
        }
        store(y + i, sum, part);
    }
}

template <class Real>
void gemv_columns(Size m, Size n, Real alpha, const Real* a, Size a_column, const Real* x, Size sx,
                  bool accumulate, Real* y) {
    Size j = 0;
    for (; j + 4 <= n; j += 4) {
        const Real factors[4] = {alpha * x[j * sx], alpha * x[(j + 1) * sx],
                                 alpha * x[(j + 2) * sx], alpha * x[(j + 3) * sx]};
        add_columns<4>(m, a + j * a_column, a_column, factors, accumulate || j > 0, y);
    }
    for (; j < n; ++j) {
        const Real factors[1] = {alpha * x[j * sx]};
        add_columns<1>(m, a + j * a_column, a_column, factors, accumulate || j > 0, y);
    }
}

// ---- entries -----------------------------------------------------------------------------------

template <class Real>
void gemv_any_strides(Size m, Size n, Real alpha, const Block<const Real>& a, const Real* x,
                      Size sx, bool accumulate, Real* y, Size sy) {
    for (Size i = 0; i < m; ++i) {
        const Real* row = a.data + i * a.row_stride;
        Real sum = 0;
        for (Size j = 0; j < n; ++j) sum += row[j * a.column_stride] * x[j * sx];
        y[i * sy] = accumulate ? y[i * sy] + alpha * sum : alpha * sum;
    }
}

template <class Real>
void gemv(Size m, Size n, Real alpha, Block<const Real> a, const Real* x, Size sx, bool accumulate,
          Real* y, Size sy) {
    if (m <= 0) return;
    if (n <= 0) {
        if (!accumulate) {
            for (Size i = 0; i < m; ++i) y[i * sy] = 0;
        }
        return;
    }
    // A reversed dimension is turned round together with the vector beside it.
    if (a.column_stride == -1) {
        a.data -= n - 1;
        a.column_stride = 1;
        x += (n - 1) * sx;
        sx = -sx;
    }
    if (a.row_stride == -1) {
        a.data -= m - 1;
        a.row_stride = 1;
        y += (m - 1) * sy;
        sy = -sy;
    }
    if (a.column_stride == 1 || n == 1) {
        if (sx == 1) {
            gemv_rows(m, n, alpha, a.data, a.row_stride, x, accumulate, y, sy);
            return;
        }
        Real buffer[kStretch];
        for (Size j = 0; j < n; j += Size(kStretch)) {
            const Size count = smaller(n - j, Size(kStretch));
            for (Size p = 0; p < count; ++p) buffer[p] = x[(j + p) * sx];
            gemv_rows(m, count, alpha, a.data + j, a.row_stride, buffer, accumulate || j > 0, y,
                      sy);
        }
        return;
    }
    if (a.row_stride == 1 || m == 1) {
        if (sy == 1 && m <= 2 * Size(kStretch)) {
            gemv_columns(m, n, alpha, a.data, a.column_stride, x, sx, accumulate, y);
            return;
        }
        Real buffer[kStretch];
        for (Size i = 0; i < m; i += Size(kStretch)) {
            const Size count = smaller(m - i, Size(kStretch));
            if (sy == 1) {
                gemv_columns(count, n, alpha, a.data + i, a.column_stride, x, sx, accumulate,
                             y + i);
                continue;
            }
            gemv_columns(count, n, alpha, a.data + i, a.column_stride, x, sx, false, buffer);
            for (Size p = 0; p < count; ++p) {
                Real& element = y[(i + p) * sy];
                element = accumulate ? element + buffer[p] : buffer[p];
            }
        }
        return;
    }
    gemv_any_strides(m, n, alpha, a, x, sx, accumulate, y, sy);
}

// R rows of A += factors y^T, y contiguous.
template <unsigned R, class Real>
NEQUAR_INLINE void add_to_rows(Size n, const Real (&factors)[R], const Real* y, Real* a,
                               Size a_row) {
    constexpr Size lanes = kLanes<Real>;
    Vector<Real> factor[R];
    NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) factor[r] = broadcast(factors[r]);
    Size j = 0;
    for (; j + lanes <= n; j += lanes) {
        const Vector<Real> v = load(y + j);
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
            Real* p = a + r * a_row + j;
            store(p, multiply_add(factor[r], v, load(p)));
        }
    }
    if (j < n) {
        const FirstLanes<Real> last = first_lanes<Real>(n - j);
        const Vector<Real> v = load(y + j, last);
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
            Real* p = a + r * a_row + j;
            store(p, multiply_add(factor[r], v, load(p, last)), last);
        }
    }
}

template <class Real>
void ger_rows(Size m, Size n, Real alpha, const Real* x, Size sx, const Real* y, Real* a,
              Size a_row) {
    Size i = 0;
    for (; i + 4 <= m; i += 4) {
        const Real factors[4] = {alpha * x[i * sx], alpha * x[(i + 1) * sx],
                                 alpha * x[(i + 2) * sx], alpha * x[(i + 3) * sx]};
        add_to_rows<4>(n, factors, y, a + i * a_row, a_row);
    }
    for (; i < m; ++i) {
        const Real factors[1] = {alpha * x[i * sx]};
        add_to_rows<1>(n, factors, y, a + i * a_row, a_row);
    }
}

template <class Real>
void ger(Size m, Size n, Real alpha, const Real* x, Size sx, const Real* y, Size sy,
         Block<Real> a) {
    if (m <= 0 || n <= 0) return;
    // Along the contiguous way; a single contiguous column is a row of the transpose.
    if (a.row_stride == 1 && (a.column_stride != 1 || n == 1) && m > 1) {
        ger(n, m, alpha, y, sy, x, sx, {a.data, a.column_stride, a.row_stride});
        return;
    }
    if (a.column_stride != 1) {
        for (Size i = 0; i < m; ++i) {
            const Real factor = alpha * x[i * sx];
            Real* row = a.data + i * a.row_stride;
            for (Size j = 0; j < n; ++j) row[j * a.column_stride] += factor * y[j * sy];
        }
        return;
    }
    if (sy == 1) {
        ger_rows(m, n, alpha, x, sx, y, a.data, a.row_stride);
        return;
    }
    Real buffer[kStretch];
    for (Size j = 0; j < n; j += Size(kStretch)) {
        const Size count = smaller(n - j, Size(kStretch));
        for (Size p = 0; p < count; ++p) buffer[p] = y[(j + p) * sy];
        ger_rows(m, count, alpha, x, sx, buffer, a.data + j, a.row_stride);
    }
}

// ---- symmetric, from the upper triangle in contiguous rows
// ---------------------------------------

// Four rows at a time right of their square, each element used twice: for its row's sum and for
// the column's. The first vector is cut so that the others are aligned.
template <class Real>
NEQUAR_INLINE void add_four_symmetric_rows(Size n, const Real* a, Size a_row, const Real* x,
                                           const Real (&xi)[4], Real* y, Real (&sums)[4]) {
    constexpr Size lanes = kLanes<Real>;
    constexpr Size bytes = NEQUAR_VECTOR_BYTES;
    Vector<Real> acc[4] = {};
    Vector<Real> factor[4];
    NEQUAR_UNROLL for (unsigned r = 0; r < 4; ++r) factor[r] = broadcast(xi[r]);
    Size j = 0;
    const Size past = static_cast<Size>(reinterpret_cast<std::size_t>(a) % std::size_t(bytes)) /
                      Size(sizeof(Real));
    if (past != 0 && n > 0) {
        const FirstLanes<Real> part = first_lanes<Real>(smaller(n, lanes - past));
        const Vector<Real> vx = load(x, part);
        Vector<Real> vy = load(y, part);
        NEQUAR_UNROLL for (unsigned r = 0; r < 4; ++r) {
            const Vector<Real> v = load(a + r * a_row, part);
            acc[r] = multiply_add(v, vx, acc[r]);
            vy = multiply_add(v, factor[r], vy);
        }
        store(y, vy, part);
        j = lanes - past;
    }
    for (; j + lanes <= n; j += lanes) {
        const Vector<Real> vx = load(x + j);
        Vector<Real> vy = load(y + j);
        NEQUAR_UNROLL for (unsigned r = 0; r < 4; ++r) {
            const Vector<Real> v = load(a + r * a_row + j);
            acc[r] = multiply_add(v, vx, acc[r]);
            vy = multiply_add(v, factor[r], vy);
        }
        store(y + j, vy);
    }
    if (j < n) {
        const FirstLanes<Real> part = first_lanes<Real>(n - j);
        const Vector<Real> vx = load(x + j, part);
        Vector<Real> vy = load(y + j, part);
        NEQUAR_UNROLL for (unsigned r = 0; r < 4; ++r) {
            const Vector<Real> v = load(a + r * a_row + j, part);
            acc[r] = multiply_add(v, vx, acc[r]);
            vy = multiply_add(v, factor[r], vy);
        }
        store(y + j, vy, part);
    }
    NEQUAR_UNROLL for (unsigned r = 0; r < 4; ++r) sums[r] = sum_of_lanes<Real>(acc[r]);
}

// y := A x
template <class Real>
void symv_upper(Size n, const Real* a, Size a_row, const Real* x, Real* y) {
    for (Size j = 0; j < n; ++j) y[j] = 0;
    Size i = 0;
    for (; i + 4 <= n; i += 4) {
        const Real* const rows = a + i * a_row + i;
        const Real xi[4] = {x[i], x[i + 1], x[i + 2], x[i + 3]};
        Real sums[4];
        add_four_symmetric_rows(n - i - 4, rows + 4, a_row, x + i + 4, xi, y + i + 4, sums);
        NEQUAR_UNROLL for (unsigned r = 0; r < 4; ++r) {
            sums[r] += rows[Size(r) * a_row + Size(r)] * xi[r];
            NEQUAR_UNROLL for (unsigned c = r + 1; c < 4; ++c) {
                const Real element = rows[Size(r) * a_row + Size(c)];
                sums[r] += element * xi[c];
                sums[c] += element * xi[r];
            }
        }
        NEQUAR_UNROLL for (unsigned r = 0; r < 4; ++r) y[i + Size(r)] += sums[r];
    }
    for (; i < n; ++i) {
        Real sum = a[i * a_row + i] * x[i];
        for (Size j = i + 1; j < n; ++j) {
            sum += a[i * a_row + j] * x[j];
            y[j] += a[i * a_row + j] * x[i];
        }
        y[i] += sum;
    }
}

}  // namespace nequar::kernel::NEQUAR_UNIT
