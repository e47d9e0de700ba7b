// Whole matrices: B := A on any strides, A := A^T, A := value.
//
// A copy between a matrix of contiguous rows and one of contiguous columns is a transposition. It
// goes through squares of one cache line each way, so that every line that is touched is used at
// once, whatever the strides do to the sets of the cache; squares follow each other down a strip
// whose pages the TLB holds.
#pragma once

#include "kernel/simd/elementwise.h"
#include "kernel/simd/partition.h"
#include "kernel/simd/shuffle.h"
#include "kernel/table.h"

namespace nequar::kernel::NEQUAR_UNIT {

inline constexpr unsigned kLine = 64;   // bytes
inline constexpr unsigned kStrip = 64;  // columns of the input that a strip spans

template <class Real>
inline constexpr unsigned kLineElements = kLine / sizeof(Real);

// A part of a square of a vector each way: height x width, each up to the lanes. All of it is read
// before anything is written.
#if NEQUAR_VECTOR_BYTES == 64
template <class Real>
NEQUAR_INLINE void load_part(Size height, Size width, const Real* in, Size in_row,
                             Vector<Real> (&columns)[unsigned(kLanes<Real>)]) {
    const FirstLanes<Real> first = first_lanes<Real>(width);
    NEQUAR_UNROLL for (Size i = 0; i < kLanes<Real>; ++i) {
        columns[i] = i < height ? load(in + i * in_row, first) : Vector<Real>{};
    }
    exchange_blocks<unsigned(kLanes<Real>) / 2, Real>(columns);
}

template <class Real>
NEQUAR_INLINE void store_part(Size height, Size width,
                              const Vector<Real> (&columns)[unsigned(kLanes<Real>)], Real* out,
                              Size out_row) {
    const FirstLanes<Real> first = first_lanes<Real>(height);
    NEQUAR_UNROLL for (Size j = 0; j < kLanes<Real>; ++j) {
        if (j < width) store(out + j * out_row, columns[j], first);
    }
}

template <class Real>
void transpose_part(Size height, Size width, const Real* in, Size in_row, Real* out, Size out_row) {
    Vector<Real> columns[unsigned(kLanes<Real>)];
    load_part(height, width, in, in_row, columns);
    store_part(height, width, columns, out, out_row);
}

template <class Real>
void exchange_parts(Size height, Size width, Real* p, Real* q, Size row) {
    Vector<Real> columns[unsigned(kLanes<Real>)];
    load_part(height, width, static_cast<const Real*>(p), row, columns);
    if (p != q) transpose_part(width, height, static_cast<const Real*>(q), row, p, row);
    store_part(height, width, columns, q, row);
}

// out(j, i) = in(i, j): height x width in, both with contiguous rows, any size.
template <class Real>
NEQUAR_INLINE void transpose_small(Size height, Size width, const Real* in, Size in_row, Real* out,
                                   Size out_row) {
    constexpr Size lanes = kLanes<Real>;
    for (Size i = 0; i < height; i += lanes) {
        for (Size j = 0; j < width; j += lanes) {
            transpose_part(smaller(lanes, height - i), smaller(lanes, width - j),
                           in + i * in_row + j, in_row, out + j * out_row + i, out_row);
        }
    }
}
#else
// out(j, i) = in(i, j): height x width in, both with contiguous rows, any size.
template <class Real>
NEQUAR_INLINE void transpose_small(Size height, Size width, const Real* in, Size in_row, Real* out,
                                   Size out_row) {
    constexpr unsigned lanes = unsigned(kLanes<Real>);
    Size i = 0;
    for (; i + Size(lanes) <= height; i += lanes) {
        transpose_rows<lanes>(width, in + i * in_row, in_row, out + i, out_row);
    }
    for (; i + 2 <= height; i += 2) {
        transpose_rows<2>(width, in + i * in_row, in_row, out + i, out_row);
    }
    if (i < height) transpose_rows<1>(width, in + i * in_row, in_row, out + i, out_row);
}

template <class Real>
void exchange_parts(Size height, Size width, Real* p, Real* q, Size row) {
    constexpr unsigned lanes = unsigned(kLanes<Real>);
    alignas(64) Real scratch[lanes * lanes];
    transpose_small(height, width, static_cast<const Real*>(p), row, scratch, Size(lanes));
    if (p != q) transpose_small(width, height, static_cast<const Real*>(q), row, p, row);
    for (Size i = 0; i < width; ++i) copy(height, scratch + i * Size(lanes), 1, q + i * row, 1);
}
#endif

// A square of one cache line each way.
template <class Real>
NEQUAR_INLINE void transpose_square(const Real* in, Size in_row, Real* out, Size out_row) {
    constexpr unsigned lanes = unsigned(kLanes<Real>);
    constexpr unsigned line = kLineElements<Real>;
    NEQUAR_UNROLL for (unsigned j = 0; j < line; j += lanes) {
        NEQUAR_UNROLL for (unsigned i = 0; i < line; i += lanes) {
            Vector<Real> columns[lanes];
            load_square(in + i * in_row + j, in_row, columns);
            NEQUAR_UNROLL for (unsigned k = 0; k < lanes; ++k) {
                store(out + (j + k) * out_row + i, columns[k]);
            }
        }
    }
}

// A vector of each of as many rows.
template <class Real>
NEQUAR_INLINE void prefetch_rows(const Real* first, Size row) {
    NEQUAR_UNROLL for (Size k = 0; k < kLanes<Real>; ++k) prefetch_for_writing(first + k * row);
}

template <class Real>
void transpose_rows_to_rows(Size height, Size width, const Real* in, Size in_row, Real* out,
                            Size out_row) {
    constexpr Size line = kLineElements<Real>;
    for (Size j0 = 0; j0 < width; j0 += Size(kStrip)) {
        const Size columns = smaller(Size(kStrip), width - j0);
        Size i = 0;
        for (; i + line <= height; i += line) {
            Size j = j0;
            for (; j + line <= j0 + columns; j += line) {
                if (i + 4 * line <= height) {
                    NEQUAR_UNROLL for (Size k = 0; k < line; ++k) {
                        prefetch_for_writing(out + (j + k) * out_row + i + 2 * line);
                    }
                }
                transpose_square(in + i * in_row + j, in_row, out + j * out_row + i, out_row);
            }
            transpose_small(line, j0 + columns - j, in + i * in_row + j, in_row,
                            out + j * out_row + i, out_row);
        }
        transpose_small(height - i, columns, in + i * in_row + j0, in_row, out + j0 * out_row + i,
                        out_row);
    }
}

template <class Real>
void copy_matrix(Size m, Size n, Block<const Real> a, Block<Real> b) {
    if (m <= 0 || n <= 0) return;
    // One row or one column: its stride across is of no account.
    if (m == 1) {
        copy(n, a.data, a.column_stride, b.data, b.column_stride);
    } else if (n == 1) {
        copy(m, a.data, a.row_stride, b.data, b.row_stride);
    } else if (a.column_stride == 1 && b.column_stride == 1) {
        if (a.row_stride == n && b.row_stride == n) {
            copy(m * n, a.data, 1, b.data, 1);
        } else {
            for (Size i = 0; i < m; ++i) {
                copy(n, a.data + i * a.row_stride, 1, b.data + i * b.row_stride, 1);
            }
        }
    } else if (a.row_stride == 1 && b.row_stride == 1) {
        copy_matrix<Real>(n, m, {a.data, a.column_stride, 1}, {b.data, b.column_stride, 1});
    } else if (a.column_stride == 1 && b.row_stride == 1) {
        transpose_rows_to_rows(m, n, a.data, a.row_stride, b.data, b.column_stride);
    } else if (a.row_stride == 1 && b.column_stride == 1) {
        transpose_rows_to_rows(n, m, a.data, a.column_stride, b.data, b.row_stride);
    } else {
        for (Size i = 0; i < m; ++i) {
            copy(n, a.data + i * a.row_stride, a.column_stride, b.data + i * b.row_stride,
                 b.column_stride);
        }
    }
}

// ---- in place ----------------------------------------------------------------------------------

// The same for few elements, one by one.
template <class Real>
__attribute__((noinline)) void exchange_elements(Size height, Size width, Real* p, Real* q,
                                                 Size row) {
    for (Size i = 0; i < height; ++i) {
        const Size end = p == q ? i : width;
        for (Size j = 0; j < end; ++j) {
            const Real old = p[i * row + j];
            p[i * row + j] = q[j * row + i];
            q[j * row + i] = old;
        }
    }
}

// Two blocks across the diagonal change places, each transposed: P (height x width) at (i, j) and
// Q (width x height) at (j, i); P = Q on the diagonal. Blocks are squares of a vector but at the
// ends.
template <class Real>
NEQUAR_INLINE void exchange_transposed(Size height, Size width, Real* p, Real* q, Size row) {
    constexpr unsigned lanes = unsigned(kLanes<Real>);
    const Real* from = p;
    const Real* across = q;
    if (height == Size(lanes) && width == Size(lanes)) {
        Vector<Real> columns[lanes];
        load_square(from, row, columns);
        if (p != q) {
            Vector<Real> others[lanes];
            load_square(across, row, others);
            NEQUAR_UNROLL for (unsigned i = 0; i < lanes; ++i) store(p + i * row, others[i]);
        }
        NEQUAR_UNROLL for (unsigned i = 0; i < lanes; ++i) store(q + i * row, columns[i]);
        return;
    }
    const Size pairs = p == q ? height * (height - 1) / 2 : height * width;
    if (pairs <= 2 * Size(lanes)) {
        exchange_elements(height, width, p, q, row);
    } else {
        exchange_parts(height, width, p, q, row);
    }
}

template <class Real>
void transpose_in_place(Size n, Block<Real> a) {
    if (a.column_stride != 1 && a.row_stride == 1) {
        a.row_stride = a.column_stride;
        a.column_stride = 1;
    }
    if (a.column_stride != 1) {
        for (Size i = 0; i < n; ++i) {
            Real* row = a.data + i * a.row_stride;
            Real* column = a.data + i * a.column_stride;
            swap(i, row, a.column_stride, column, a.row_stride);
        }
        return;
    }
    constexpr Size lanes = kLanes<Real>;
    constexpr Size strip = kStrip;
    for (Size j0 = 0; j0 < n; j0 += strip) {
        const Size j_end = smaller(n, j0 + strip);
        for (Size i = j0; i < n; i += lanes) {
            const Size height = smaller(lanes, n - i);
            for (Size j = j0; j < j_end && j <= i; j += lanes) {
                Real* const across = a.data + j * a.row_stride + i;
                // Rows of the strip are apart; what is next on each of them is asked for in time.
                if (i + 4 * lanes <= n) prefetch_rows<Real>(across + 2 * lanes, a.row_stride);
                exchange_transposed(height, smaller(lanes, n - j), a.data + i * a.row_stride + j,
                                    across, a.row_stride);
            }
        }
    }
}

template <class Real>
void fill_matrix(Size m, Size n, Real value, Block<Real> a) {
    if (a.column_stride != 1 && a.row_stride == 1) {
        fill_matrix<Real>(n, m, value, {a.data, a.column_stride, 1});
        return;
    }
    for (Size i = 0; i < m; ++i) {
        Real* row = a.data + i * a.row_stride;
        if (a.column_stride == 1) {
            fill(n, value, row);
        } else {
            for (Size j = 0; j < n; ++j) row[j * a.column_stride] = value;
        }
    }
}

}  // namespace nequar::kernel::NEQUAR_UNIT
