// Packing: blocks of A and B copied into the order in which the micro-kernels read them.
//
//   A, m x k:  panels of R rows; inside a panel R elements for each p      out[R p + r]    = A(i0 +
//   r, p) B, k x n:  panels of NV vectors; inside a panel a row of w for each p  out[w p + c]    =
//   B(p, j0 + c)
//                                                                          zeros past the width
//
// Panels follow each other, so panel i0 of A starts at i0 k, and that of B at j0 k.
#pragma once

#include "kernel/simd/partition.h"
#include "kernel/simd/shuffle.h"
#include "kernel/table.h"

namespace nequar::kernel::NEQUAR_UNIT {

// ---- A -----------------------------------------------------------------------------------------

// Rows r0 ... r0 + N - 1 of a panel whose columns are contiguous: out(p, :) <- A(:, p).
template <unsigned N, class Real>
NEQUAR_INLINE void pack_rows_of_panel(Size k, const Real* a, Size a_row, Real* out, Size panel) {
    transpose_rows<N>(k, a, a_row, out, panel);
}

template <class Real>
void pack_panel_of_a(Size rows, Size k, const Real* a, Size a_row, Size a_column, Real* out) {
    if (a_column == 1) {
        const Real* in = a;
        Real* to = out;
        Size left = rows;
        if constexpr (kLanes<Real> >= 8) {
            for (; left >= 8; left -= 8, in += 8 * a_row, to += 8) {
                transpose_rows<8>(k, in, a_row, to, rows);
            }
        }
        if constexpr (kLanes<Real> >= 4) {
            for (; left >= 4; left -= 4, in += 4 * a_row, to += 4) {
                transpose_rows<4>(k, in, a_row, to, rows);
            }
        }
        for (; left >= 2; left -= 2, in += 2 * a_row, to += 2) {
            transpose_rows<2>(k, in, a_row, to, rows);
        }
        if (left == 1) transpose_rows<1>(k, in, a_row, to, rows);
    } else if (a_row == 1 && rows <= 2 * kLanes<Real>) {
        // One or two vectors for each column.
        const Size first = smaller(rows, kLanes<Real>);
        const FirstLanes<Real> low = first_lanes<Real>(first);
        if (first < rows) {
            const FirstLanes<Real> high = first_lanes<Real>(rows - first);
            for (Size p = 0; p < k; ++p, a += a_column, out += rows) {
                store(out, load(a, low), low);
                store(out + first, load(a + first, high), high);
            }
        } else {
            for (Size p = 0; p < k; ++p, a += a_column, out += rows) store(out, load(a, low), low);
        }
    } else {
        for (Size p = 0; p < k; ++p) {
            for (Size r = 0; r < rows; ++r) *out++ = a[r * a_row + p * a_column];
        }
    }
}

template <class Real>
void pack_a(const Partition& rows, Size k, Block<const Real> a, Real* out) {
    const Real* from = a.data;
    for (Size i = 0; i < rows.parts; ++i) {
        const Size height = size_of_part(rows, i);
        pack_panel_of_a(height, k, from, a.row_stride, a.column_stride, out);
        from += height * a.row_stride;
        out += height * k;
    }
}

// ---- B -----------------------------------------------------------------------------------------

// `columns` columns of B as a panel of `panel` >= columns elements a row.
template <class Real>
void pack_panel_of_b(Size columns, Size panel, Size k, const Real* b, Size b_row, Size b_column,
                     Real* out) {
    constexpr Size lanes = kLanes<Real>;
    if (b_column == 1) {
        const Size whole = columns / lanes * lanes;
        for (Size j = 0; j < whole; j += lanes) {
            const Real* in = b + j;
            Real* to = out + j;
            for (Size p = 0; p < k; ++p, in += b_row, to += panel) store(to, load(in));
        }
        if (whole < columns) {
            const FirstLanes<Real> last = first_lanes<Real>(columns - whole);
            const Real* in = b + whole;
            Real* to = out + whole;
            for (Size p = 0; p < k; ++p, in += b_row, to += panel) store(to, load(in, last));
        }
        return;
    }
#if NEQUAR_VECTOR_BYTES == 64
    if (b_row == 1) {
        for (Size j = 0; j < columns; j += lanes) {
            for (Size p = 0; p < k; p += lanes) {
                transpose_to_vectors(smaller(lanes, columns - j), smaller(lanes, k - p),
                                     b + j * b_column + p, b_column, out + p * panel + j, panel);
            }
        }
        return;
    }
#endif
    if (columns < panel) {
        for (Size p = 0; p < k; ++p) {
            store(out + p * panel + panel - lanes, Vector<Real>{});
        }
    }
    Size j = 0;
    if (b_row == 1) {
        for (; j + lanes <= columns; j += lanes) {
            transpose_rows<unsigned(lanes)>(k, b + j * b_column, b_column, out + j, panel);
        }
        for (; j + 2 <= columns; j += 2) {
            transpose_rows<2>(k, b + j * b_column, b_column, out + j, panel);
        }
    }
    for (; j < columns; ++j) {
        for (Size p = 0; p < k; ++p) out[p * panel + j] = b[p * b_row + j * b_column];
    }
}

template <class Real>
void pack_b(const Partition& vectors, Size n, Size k, Block<const Real> b, Real* out) {
    constexpr Size lanes = kLanes<Real>;
    Size j = 0;
    for (Size part = 0; part < vectors.parts; ++part) {
        const Size panel = size_of_part(vectors, part) * lanes;
        const Size columns = smaller(panel, n - j);
        pack_panel_of_b(columns, panel, k, b.data + j * b.column_stride, b.row_stride,
                        b.column_stride, out);
        j += panel;
        out += panel * k;
    }
}

}  // namespace nequar::kernel::NEQUAR_UNIT
