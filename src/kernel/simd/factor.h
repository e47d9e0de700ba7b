// Eliminations on what fits the first cache: the ends of the recursions of LU and Cholesky, and
// whole small problems.
//
//   lu_small         A = L U, n <= kSmallOrder, no search
//   cholesky_small   A = U^T U, likewise
//   lu_panel         P A = L U of an m x w panel with partial pivoting, held transposed
//
// All go in groups of four pivots. The group itself is eliminated first; then every row behind it
// takes the four multiples at once, so an element is loaded and stored once for four pivots:
//
//      | D  X |      D 4 x 4, X the rest of the pivot rows
//      | M  C |      C := C - M X,  in tiles of four rows by two vectors
//
// An element is diminished by its products in the order of the pivots. With `fused` these are fused
// multiply-adds where there are such; without, products and differences are rounded one by one, as
// plain loops would do, to the last bit.
//
// Rows of the working square are followed by padding, into which tiles may run.
#pragma once

#include "kernel/simd/partition.h"
#include "kernel/simd/reduction.h"
#include "kernel/table.h"

namespace nequar::kernel::NEQUAR_UNIT {

inline constexpr Size kPivots = 4;

template <class Real>
inline constexpr Size kSquareStride = kSmallOrder + kLanes<Real>;

// A square of kSmallOrder rows, and room for a last group of less than four.
template <class Real>
struct Square {
    alignas(64) Real elements[(kSmallOrder + kPivots) * kSquareStride<Real>];
};

// The stride of a square of order n: no longer than it has to be, so that small ones stay together.
template <class Real>
NEQUAR_INLINE Size stride_of_square(Size n) {
    return round_up(n, kLanes<Real>) + kLanes<Real>;
}

// Elements first ... n-1 of a row to the square; behind them zeros up to the stride. With
// contiguous elements, a few before `first` may come along.
template <class Real>
NEQUAR_INLINE void take_row(Size first, Size n, const Real* from, Size step, Real* to,
                            FirstLanes<Real> last) {
    constexpr Size lanes = kLanes<Real>;
    if (step == 1) {
        Size j = first / lanes * lanes;
        for (; j + lanes < n; j += lanes) store(to + j, load(from + j));
        store(to + j, load(from + j, last));
        store(to + j + lanes, Vector<Real>{});
        return;
    }
    for (Size j = first; j < n; ++j) to[j] = from[j * step];
    for (Size j = n; j < stride_of_square<Real>(n); ++j) to[j] = 0;
}

// Elements first ... n-1 of a row of the square to where they belong; nothing else is written.
template <class Real>
NEQUAR_INLINE void give_row(Size first, Size n, const Real* from, Real* to, Size step) {
    constexpr Size lanes = kLanes<Real>;
    if (step == 1) {
        Size j = first;
        for (; j + lanes <= n; j += lanes) store(to + j, load(from + j));
        if (j < n) {
            const FirstLanes<Real> last = first_lanes<Real>(n - j);
            store(to + j, load(from + j), last);
        }
        return;
    }
    for (Size j = first; j < n; ++j) to[j * step] = from[j];
}

template <bool Fused, class Real>
NEQUAR_INLINE Vector<Real> diminished(Vector<Real> c, Vector<Real> a, Vector<Real> b) {
    if constexpr (Fused) return multiply_subtract_from(a, b, c);
    return c - a * b;
}
template <bool Fused>
NEQUAR_INLINE double diminished(double c, double a, double b) {
#if defined(__FMA__)
    if constexpr (Fused) return __builtin_fma(-a, b, c);
#endif
    return c - a * b;
}
template <bool Fused>
NEQUAR_INLINE float diminished(float c, float a, float b) {
#if defined(__FMA__)
    if constexpr (Fused) return __builtin_fmaf(-a, b, c);
#endif
    return c - a * b;
}

template <class Real>
NEQUAR_INLINE bool is_infinite(Real x) {
    return magnitude_of(x) > (sizeof(Real) == 8 ? Real(__DBL_MAX__) : Real(__FLT_MAX__));
}

// ---- C := C - M X -------------------------------------------------------------------------------

// Multiplier (row r, pivot q) is m[r * m_row + q * m_pivot]; x and c are at the first column.
template <class Real, bool Fused, unsigned R, unsigned NV>
NEQUAR_INLINE void update_tile(const Real* m, Size m_row, Size m_pivot, const Real* x, Size x_row,
                               Real* c, Size c_row) {
    constexpr Size lanes = kLanes<Real>;
    Vector<Real> acc[R][NV];
    NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
        NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) acc[r][v] = load(c + r * c_row + v * lanes);
    }
    NEQUAR_UNROLL for (unsigned q = 0; q < unsigned(kPivots); ++q) {
        Vector<Real> row[NV];
        NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) row[v] = load(x + q * x_row + v * lanes);
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
            const Vector<Real> factor = broadcast(m[r * m_row + q * m_pivot]);
            NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
                acc[r][v] = diminished<Fused, Real>(acc[r][v], factor, row[v]);
            }
        }
    }
    NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
        NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) store(c + r * c_row + v * lanes, acc[r][v]);
    }
}

template <class Real, bool Fused, unsigned R>
NEQUAR_INLINE void update_tiles(Size columns, const Real* m, Size m_row, Size m_pivot,
                                const Real* x, Size x_row, Real* c, Size c_row) {
    constexpr Size lanes = kLanes<Real>;
    Size j = 0;
    for (; j + lanes < columns; j += 2 * lanes) {
        update_tile<Real, Fused, R, 2>(m, m_row, m_pivot, x + j, x_row, c + j, c_row);
    }
    if (j < columns) update_tile<Real, Fused, R, 1>(m, m_row, m_pivot, x + j, x_row, c + j, c_row);
}

// Four pivots at once on up to four rows.
template <class Real, bool Fused>
NEQUAR_INLINE void update_rows(Size rows, Size columns, const Real* m, Size m_row, Size m_pivot,
                               const Real* x, Size x_row, Real* c, Size c_row) {
    switch (rows) {
        case 1:
            return update_tiles<Real, Fused, 1>(columns, m, m_row, m_pivot, x, x_row, c, c_row);
        case 2:
            return update_tiles<Real, Fused, 2>(columns, m, m_row, m_pivot, x, x_row, c, c_row);
        case 3:
            return update_tiles<Real, Fused, 3>(columns, m, m_row, m_pivot, x, x_row, c, c_row);
        default:
            return update_tiles<Real, Fused, 4>(columns, m, m_row, m_pivot, x, x_row, c, c_row);
    }
}

// ---- LU without a search ------------------------------------------------------------------------

template <class Real, bool Fused>
Size eliminate_square(Size n, Real* a, Size stride) {
    constexpr Size lanes = kLanes<Real>;
    for (Size k = 0; k < n; k += kPivots) {
        const Size group = smaller(kPivots, n - k);
        Real* d = a + k * stride + k;
        Real reciprocals[kPivots];
        for (Size p = 0; p < group; ++p) {
            reciprocals[p] = 1 / d[p * stride + p];
            if (is_infinite(reciprocals[p])) return k + p;
            for (Size s = p + 1; s < group; ++s) {
                const Real factor = d[s * stride + p] *= reciprocals[p];
                for (Size j = p + 1; j < group; ++j) {
                    d[s * stride + j] =
                        diminished<Fused>(d[s * stride + j], factor, d[p * stride + j]);
                }
            }
        }
        const Size next = k + kPivots;
        if (next >= n) break;
        Real* x = a + k * stride + next;
        for (Size j = 0; j < n - next; j += lanes) {
            Vector<Real> row[kPivots];
            NEQUAR_UNROLL for (Size p = 0; p < kPivots; ++p) {
                row[p] = load(x + p * stride + j);
                NEQUAR_UNROLL for (Size q = 0; q < p; ++q) {
                    row[p] = diminished<Fused, Real>(row[p], broadcast(d[p * stride + q]), row[q]);
                }
                store(x + p * stride + j, row[p]);
            }
        }
        for (Size i = next; i < n; i += kPivots) {
            const Size rows = smaller(kPivots, n - i);
            Real* m = a + i * stride + k;
            for (Size r = 0; r < rows; ++r) {
                Real* row = m + r * stride;
                NEQUAR_UNROLL for (Size p = 0; p < kPivots; ++p) {
                    Real value = row[p];
                    NEQUAR_UNROLL for (Size q = 0; q < p; ++q) {
                        value = diminished<Fused>(value, row[q], d[q * stride + p]);
                    }
                    row[p] = value * reciprocals[p];
                }
            }
            update_rows<Real, Fused>(rows, n - next, m, stride, 1, x, stride, a + i * stride + next,
                                     stride);
        }
    }
    return -1;
}

template <class Real>
Size lu_small(bool fused, Size n, const Block<const Real>& from, const int* rows,
              const Block<Real>& to) {
    if (n <= 0) return -1;
    Square<Real> square;
    Real* a = square.elements;
    const Size stride = stride_of_square<Real>(n);
    const FirstLanes<Real> last = first_lanes<Real>((n - 1) % kLanes<Real> + 1);
    for (Size i = 0; i < n; ++i) {
        const Real* row = from.data + (rows != nullptr ? rows[i] : i) * from.row_stride;
        take_row(0, n, row, from.column_stride, a + i * stride, last);
    }
    const Size stopped = fused ? eliminate_square<Real, true>(n, a, stride)
                               : eliminate_square<Real, false>(n, a, stride);
    if (stopped >= 0) return stopped;
    for (Size i = 0; i < n; ++i) {
        give_row(0, n, static_cast<const Real*>(a + i * stride), to.data + i * to.row_stride,
                 to.column_stride);
    }
    return -1;
}

// ---- Cholesky -----------------------------------------------------------------------------------

NEQUAR_INLINE double root_of(double x) {
    return __builtin_sqrt(x);
}
NEQUAR_INLINE float root_of(float x) {
    return __builtin_sqrtf(x);
}

// Fused: a row is multiplied by the reciprocal of its pivot; else it is divided.
template <class Real, bool Fused>
Size cholesky_square(Size n, Real* a, Size stride) {
    constexpr Size lanes = kLanes<Real>;
    for (Size k = 0; k < n; k += kPivots) {
        const Size group = smaller(kPivots, n - k);
        Real* d = a + k * stride + k;
        Real scales[kPivots];
        for (Size p = 0; p < group; ++p) {
            const Real s = d[p * stride + p];
            if (!(s > 0)) return k + p;
            const Real pivot = d[p * stride + p] = root_of(s);
            scales[p] = Fused ? 1 / pivot : pivot;
            for (Size j = p + 1; j < group; ++j) {
                Real& element = d[p * stride + j];
                element = Fused ? element * scales[p] : element / scales[p];
            }
            for (Size i = p + 1; i < group; ++i) {
                for (Size j = i; j < group; ++j) {
                    d[i * stride + j] =
                        diminished<Fused>(d[i * stride + j], d[p * stride + i], d[p * stride + j]);
                }
            }
        }
        const Size next = k + kPivots;
        if (next >= n) break;
        Real* x = a + k * stride + next;
        for (Size j = 0; j < n - next; j += lanes) {
            Vector<Real> row[kPivots];
            NEQUAR_UNROLL for (Size p = 0; p < kPivots; ++p) {
                row[p] = load(x + p * stride + j);
                NEQUAR_UNROLL for (Size q = 0; q < p; ++q) {
                    row[p] = diminished<Fused, Real>(row[p], broadcast(d[q * stride + p]), row[q]);
                }
                const Vector<Real> scale = broadcast(scales[p]);
                row[p] = Fused ? row[p] * scale : row[p] / scale;
                store(x + p * stride + j, row[p]);
            }
        }
        // What a tile writes left of the diagonal is not looked at.
        for (Size i = next; i < n; i += kPivots) {
            update_rows<Real, Fused>(smaller(kPivots, n - i), n - i, a + k * stride + i, 1, stride,
                                     a + k * stride + i, stride, a + i * stride + i, stride);
        }
    }
    return -1;
}

// The same where every step waits for the one before it, n <= kFewPivots: one pivot at a time, the
// next one computed ahead of the rows. Rows are read as they were written, in whole vectors.
inline constexpr Size kFewPivots = 16;

template <class Real>
Size cholesky_by_rows(Size n, Real* a, Size stride) {
    constexpr Size lanes = kLanes<Real>;
    Real next = a[0];
    for (Size k = 0; k < n; ++k) {
        if (!(next > 0)) return k;
        Real* const u = a + k * stride;
        const Real pivot = root_of(next);
        if (k + 1 < n) {
            const Real ahead = u[k + 1] / pivot;
            next = diminished<false>(u[stride + k + 1], ahead, ahead);
        }
        const Vector<Real> pivots = broadcast(pivot);
        for (Size j = k / lanes * lanes; j < n; j += lanes) {
            const Vector<Real> v = load(static_cast<const Real*>(u + j));
            store(u + j, v / pivots);
        }
        Real* row = u + stride;
        for (Size i = k + 1; i < n; ++i, row += stride) {
            const Vector<Real> factor = broadcast(u[i]);
            for (Size j = i / lanes * lanes; j < n; j += lanes) {
                const Vector<Real> v = load(static_cast<const Real*>(row + j));
                store(row + j,
                      diminished<false, Real>(v, factor, load(static_cast<const Real*>(u + j))));
            }
        }
        u[k] = pivot;
    }
    return -1;
}

template <class Real>
Size cholesky_small(bool fused, Size n, const Block<const Real>& from, const Block<Real>& to) {
    if (n <= 0) return -1;
    Square<Real> square;
    Real* a = square.elements;
    const Size stride = stride_of_square<Real>(n);
    const FirstLanes<Real> last = first_lanes<Real>((n - 1) % kLanes<Real> + 1);
    for (Size i = 0; i < n; ++i) {
        take_row(i, n, from.data + i * from.row_stride, from.column_stride, a + i * stride, last);
    }
    const Size stopped = fused             ? cholesky_square<Real, true>(n, a, stride)
                         : n <= kFewPivots ? cholesky_by_rows<Real>(n, a, stride)
                                           : cholesky_square<Real, false>(n, a, stride);
    if (stopped >= 0) return stopped;
    for (Size i = 0; i < n; ++i) {
        give_row(i, n, static_cast<const Real*>(a + i * stride), to.data + i * to.row_stride,
                 to.column_stride);
    }
    return -1;
}

// ---- partial pivoting on a panel ----------------------------------------------------------------

// Row t of the transposed panel, from column `first` to m: t := t - sum of the `done` rows before
// it in its group, then the place of the first largest magnitude above zero; `first` when there is
// none.
template <class Real, bool Fused>
Size reduce_and_search(Size done, const Real* factors, const Real* before, Size stride, Size first,
                       Size m, Real* t) {
    constexpr Size lanes = kLanes<Real>;
    Vector<Real> largest = {};
    Vector<Real> place = {};
    Vector<Real> here;
    NEQUAR_UNROLL for (Size lane = 0; lane < lanes; ++lane) here[lane] = Real(lane);
    const Vector<Real> step = broadcast(Real(lanes));
    for (Size j = first; j < m; j += lanes) {
        Vector<Real> v = load(t + j);
        for (Size q = 0; q < done; ++q) {
            v = diminished<Fused, Real>(v, broadcast(factors[q]), load(before + q * stride + j));
        }
        store(t + j, v);
        const Vector<Real> size = magnitude<Real>(v);
        place = size > largest ? here : place;
        largest = larger<Real>(size, largest);
        here += step;
    }
    Real best = 0;
    Real where = 0;
    NEQUAR_UNROLL for (Size lane = 0; lane < lanes; ++lane) {
        if (largest[lane] > best || (largest[lane] == best && best > 0 && place[lane] < where)) {
            best = largest[lane];
            where = place[lane];
        }
    }
    return first + Size(where);
}

template <class Real, bool Fused>
Size eliminate_panel(Size w, Size m, Real* t, Size stride, int* pivots) {
    Size zero = -1;
    for (Size k = 0; k < w; k += kPivots) {
        const Size group = smaller(kPivots, w - k);
        Real* done = t + k * stride;
        for (Size p = 0; p < group; ++p) {
            const Size column = k + p;
            Real* row = done + p * stride;
            // u(k, c), u(k+1, c), ... by the unit triangle of the group
            for (Size q = 0; q < p; ++q) {
                for (Size s = 0; s < q; ++s) {
                    row[k + q] =
                        diminished<Fused>(row[k + q], done[s * stride + k + q], row[k + s]);
                }
            }
            const Size r = reduce_and_search<Real, Fused>(p, row + k, done, stride, column, m, row);
            pivots[column] = static_cast<int>(r);
            if (r != column) {
                for (Size c = 0; c < w; ++c) {
                    const Real old = t[c * stride + column];
                    t[c * stride + column] = t[c * stride + r];
                    t[c * stride + r] = old;
                }
            }
            const Real pivot = row[column];
            if (pivot == 0) {
                if (zero < 0) zero = column;
                continue;
            }
            const Real reciprocal = 1 / pivot;
            if (is_infinite(reciprocal)) {
                for (Size i = column + 1; i < m; ++i) row[i] /= pivot;
            } else {
                multiply_by(m - column - 1, static_cast<const Real*>(row + column + 1), reciprocal,
                            row + column + 1);
            }
        }
        const Size next = k + kPivots;
        if (next >= w) break;
        for (Size c = next; c < w; c += kPivots) {
            const Size rows = smaller(kPivots, w - c);
            for (Size r = 0; r < rows; ++r) {
                Real* row = t + (c + r) * stride + k;
                NEQUAR_UNROLL for (Size q = 1; q < kPivots; ++q) {
                    Real value = row[q];
                    NEQUAR_UNROLL for (Size s = 0; s < q; ++s) {
                        value = diminished<Fused>(value, done[s * stride + k + q], row[s]);
                    }
                    row[q] = value;
                }
            }
            update_rows<Real, Fused>(rows, m - next, t + c * stride + k, stride, 1, done + next,
                                     stride, t + c * stride + next, stride);
        }
    }
    return zero;
}

template <class Real>
Size lu_panel(bool fused, Size w, Size m, Real* t, Size stride, int* pivots) {
    for (Size c = 0; c < w; ++c) {
        for (Size j = m; j < smaller(stride, m + kPanelPadding); ++j) t[c * stride + j] = 0;
    }
    return fused ? eliminate_panel<Real, true>(w, m, t, stride, pivots)
                 : eliminate_panel<Real, false>(w, m, t, stride, pivots);
}

// ---- searches on rows ---------------------------------------------------------------------------

// One vector of columns.
template <class Real, unsigned NV>
NEQUAR_INLINE void last_largest(Size m, const Real* a, Size row_stride, const int* rows,
                                Real* largest, Real* place) {
    constexpr Size lanes = kLanes<Real>;
    Vector<Real> best[NV];
    Vector<Real> where[NV];
    NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
        best[v] = Vector<Real>{};
        where[v] = broadcast(Real(-1));
    }
    for (Size i = 0; i < m; ++i) {
        const Real* row = a + rows[i] * row_stride;
        const Vector<Real> here = broadcast(Real(i));
        NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
            const Vector<Real> size = magnitude<Real>(load(row + v * lanes));
            where[v] = size >= best[v] ? here : where[v];
            best[v] = larger<Real>(size, best[v]);
        }
    }
    NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
        store(largest + v * lanes, best[v]);
        store(place + v * lanes, where[v]);
    }
}

template <class Real>
void last_largest_of_columns(Size m, Size w, const Real* a, Size row_stride, const int* rows,
                             Real* largest, Real* place) {
    constexpr Size lanes = kLanes<Real>;
    Size j = 0;
    for (; j + 2 * lanes <= w; j += 2 * lanes) {
        last_largest<Real, 2>(m, a + j, row_stride, rows, largest + j, place + j);
    }
    for (; j + lanes <= w; j += lanes) {
        last_largest<Real, 1>(m, a + j, row_stride, rows, largest + j, place + j);
    }
    for (; j < w; ++j) {
        Real best = 0;
        Size where = -1;
        for (Size i = 0; i < m; ++i) {
            const Real size = magnitude_of(a[rows[i] * row_stride + j]);
            where = size >= best ? i : where;
            best = size >= best ? size : best;
        }
        largest[j] = best;
        place[j] = Real(where);
    }
}

// ---- one column of Gauss-Jordan -----------------------------------------------------------------

template <class Real, unsigned R>
NEQUAR_INLINE void eliminate_rows(Size n, Size column, const Real* pivot_row, const Real* weight,
                                  Real* a, Size row_stride, Real* factors, Real* largest) {
    constexpr Size lanes = kLanes<Real>;
    Vector<Real> factor[R];
    Vector<Real> best[R];
    NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
        factors[r] = a[r * row_stride + column];
        factor[r] = broadcast(factors[r]);
        best[r] = Vector<Real>{};
    }
    Size j = 0;
    for (; j + lanes <= n; j += lanes) {
        const Vector<Real> row = load(pivot_row + j);
        const Vector<Real> w = load(weight + j);
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
            Real* element = a + r * row_stride + j;
            const Vector<Real> v =
                multiply_subtract_from(factor[r], row, load(static_cast<const Real*>(element)));
            store(element, v);
            best[r] = larger<Real>(magnitude<Real>(v) * w, best[r]);
        }
    }
    if (j < n) {
        const FirstLanes<Real> rest = first_lanes<Real>(n - j);
        const Vector<Real> row = load(pivot_row + j, rest);
        const Vector<Real> w = load(weight + j, rest);
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
            Real* element = a + r * row_stride + j;
            const Vector<Real> v = multiply_subtract_from(
                factor[r], row, load(static_cast<const Real*>(element), rest));
            store(element, v, rest);
            best[r] = larger<Real>(magnitude<Real>(v) * w, best[r]);
        }
    }
    NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
        Real value = 0;
        NEQUAR_UNROLL for (Size lane = 0; lane < lanes; ++lane) {
            if (best[r][lane] > value) value = best[r][lane];
        }
        largest[r] = value;
    }
}

template <class Real>
void eliminate_column(Size m, Size n, Size column, const Real* pivot_row, const Real* weight,
                      Real* a, Size row_stride, Real* factors, Real* largest) {
    Size i = 0;
    for (; i + 4 <= m; i += 4) {
        eliminate_rows<Real, 4>(n, column, pivot_row, weight, a + i * row_stride, row_stride,
                                factors + i, largest + i);
    }
    for (; i < m; ++i) {
        eliminate_rows<Real, 1>(n, column, pivot_row, weight, a + i * row_stride, row_stride,
                                factors + i, largest + i);
    }
}

}  // namespace nequar::kernel::NEQUAR_UNIT
