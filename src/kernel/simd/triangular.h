// Triangular solves and products, in place on B.
//
//   trsm   B := T^-1 B      T m x m, its named triangle alone is read; B m x n, any strides
//   trmm   B := T B
//   trsv   x := T^-1 x
//
// Recursion on halves turns most of the work into gemm:
//
//        | T11     |  | B1 |        solve:   B1 := T11^-1 B1,  B2 -= T21 B1,  B2 := T22^-1 B2
//        | T21 T22 |  | B2 |        product: B2 := T22 B2,  B2 += T21 B1,  B1 := T11 B1
//
// (upper: the same from below). A triangle of up to kBase rows is packed once; then each panel of
// NV vectors of B is copied to scratch, where tiles of R rows are updated by the rows that are
// finished, in registers as in gemm, and closed by an R x R triangle, and copied back.
//
// The solve multiplies by reciprocals of the diagonal where all of them in the packed triangle are
// normal numbers, and divides otherwise (the reciprocal of a subnormal number overflows).
#pragma once

#include "kernel/simd/gemm.h"
#include "kernel/simd/level2.h"

namespace nequar::kernel::NEQUAR_UNIT {

inline constexpr unsigned kBase = 64;
inline constexpr unsigned kBaseTiles = kBase / 2;  // tiles are 4 rows or more, but for the tiniest

#if NEQUAR_VECTOR_BYTES == 64
inline constexpr unsigned kTriangularRows = 8;
inline constexpr unsigned kTriangularVectors = 3;
#else
inline constexpr unsigned kTriangularRows = 6;
inline constexpr unsigned kTriangularVectors = 2;
#endif

// ---- the packed triangle -----------------------------------------------------------------------

template <class Real>
struct PackedTriangle {
    Size m;
    bool lower;
    bool unit;
    bool divide;  // the diagonal is stored as it is; else as reciprocals
    Partition rows;
    // For each tile of rows: R elements for each finished column, then the R x R triangle by rows.
    alignas(64) Real elements[kBase * (kBase + kTriangularRows) / 2 + kBase * kTriangularRows];
};

// Elements of the tile of `height` rows from row i0: its finished columns and its triangle.
NEQUAR_INLINE Size finished_columns(bool lower, Size m, Size i0, Size height) {
    return lower ? i0 : m - i0 - height;
}

template <class Real>
NEQUAR_INLINE bool is_normal(Real x) {
    const Real size = x < 0 ? -x : x;
    constexpr Real smallest = sizeof(Real) == 8 ? Real(__DBL_MIN__) : Real(__FLT_MIN__);
    constexpr Real largest = sizeof(Real) == 8 ? Real(__DBL_MAX__) : Real(__FLT_MAX__);
    return size >= smallest && size <= largest;
}

template <class Real>
void pack_triangle(bool lower, bool unit, bool invert, Size m, Block<const Real> t,
                   PackedTriangle<Real>& packed) {
    packed.m = m;
    packed.lower = lower;
    packed.unit = unit;
    packed.rows = partition(m, kTriangularRows);
    packed.divide = !invert;
    if (invert && !unit) {
        for (Size i = 0; i < m; ++i) {
            const Real pivot = *moved(t, i, i).data;
            if (!is_normal(pivot) || !is_normal(1 / pivot)) packed.divide = true;
        }
    }
    Real* out = packed.elements;
    Size i0 = 0;
    for (Size part = 0; part < packed.rows.parts; ++part) {
        const Size height = size_of_part(packed.rows, part);
        const Size finished = finished_columns(lower, m, i0, height);
        const Block<const Real> from = moved(t, i0, lower ? 0 : i0 + height);
        pack_panel_of_a(height, finished, from.data, from.row_stride, from.column_stride, out);
        out += height * finished;
        for (Size r = 0; r < height; ++r) {
            for (Size s = 0; s < height; ++s) {
                const bool stored = lower ? s < r : s > r;
                Real value = stored ? *moved(t, i0 + r, i0 + s).data : Real(0);
                if (r == s) {
                    value = unit ? Real(1) : *moved(t, i0 + r, i0 + r).data;
                    if (!packed.divide) value = 1 / value;
                }
                *out++ = value;
            }
        }
        i0 += height;
    }
}

// ---- one tile of rows of a panel ---------------------------------------------------------------

// Rows x (R x NV vectors): x := D^-1 (x - T done) with `done` the k finished rows, D the R x R
// triangle.
template <class Real, unsigned R, unsigned NV, bool Lower>
void solve_tile(Size k, const Real* t, const Real* triangle, const Real* done, Real* x, bool unit,
                bool divide) {
    constexpr Size lanes = kLanes<Real>;
    constexpr Size panel = Size(NV) * lanes;
    Vector<Real> acc[R][NV];
    NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
        NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
            acc[r][v] = load(x + r * panel + v * lanes);
        }
    }
    for (Size p = 0; p < k; ++p, t += R, done += panel) {
        Vector<Real> row[NV];
        NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) row[v] = load(done + v * lanes);
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
            const Vector<Real> factor = broadcast(t[r]);
            NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
                acc[r][v] = multiply_subtract_from(factor, row[v], acc[r][v]);
            }
        }
    }
    NEQUAR_UNROLL for (unsigned step = 0; step < R; ++step) {
        const unsigned r = Lower ? step : R - 1 - step;
        if (!unit) {
            const Vector<Real> pivot = broadcast(triangle[r * R + r]);
            NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
                acc[r][v] = divide ? acc[r][v] / pivot : acc[r][v] * pivot;
            }
        }
        NEQUAR_UNROLL for (unsigned later = step + 1; later < R; ++later) {
            const unsigned s = Lower ? later : R - 1 - later;
            const Vector<Real> factor = broadcast(triangle[s * R + r]);
            NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
                acc[s][v] = multiply_subtract_from(factor, acc[r][v], acc[s][v]);
            }
        }
        NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
            store(x + r * panel + v * lanes, acc[r][v]);
        }
    }
}

// Rows x (R x NV vectors): x := D x + T others, with `others` the k rows that are not yet
// overwritten.
template <class Real, unsigned R, unsigned NV, bool Lower>
void product_tile(Size k, const Real* t, const Real* triangle, const Real* others, Real* x,
                  bool unit, bool /*divide*/) {
    constexpr Size lanes = kLanes<Real>;
    constexpr Size panel = Size(NV) * lanes;
    Vector<Real> acc[R][NV] = {};
    for (Size p = 0; p < k; ++p, t += R, others += panel) {
        Vector<Real> row[NV];
        NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) row[v] = load(others + v * lanes);
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
            const Vector<Real> factor = broadcast(t[r]);
            NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
                acc[r][v] = multiply_add(factor, row[v], acc[r][v]);
            }
        }
    }
    NEQUAR_UNROLL for (unsigned s = 0; s < R; ++s) {
        NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
            const Vector<Real> row = load(x + s * panel + v * lanes);
            acc[s][v] = unit ? acc[s][v] + row
                             : multiply_add(broadcast(triangle[s * R + s]), row, acc[s][v]);
            NEQUAR_UNROLL for (unsigned r = Lower ? s + 1 : 0; r < (Lower ? R : s); ++r) {
                acc[r][v] = multiply_add(broadcast(triangle[r * R + s]), row, acc[r][v]);
            }
        }
    }
    NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
        NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
            store(x + r * panel + v * lanes, acc[r][v]);
        }
    }
}

enum class Task { solve, product };

template <class Real>
using TriangularKernel = void (*)(Size k, const Real* t, const Real* triangle, const Real* others,
                                  Real* x, bool unit, bool divide);

// [task][lower][vectors - 1][rows - 1]
template <class Real>
struct TriangularKernels {
    TriangularKernel<Real> kernel[2][2][kTriangularVectors][kTriangularRows];
};

template <class Real, unsigned NV = 1, unsigned R = 1>
constexpr void enter_triangular(TriangularKernels<Real>& set) {
    if constexpr (NV <= kTriangularVectors) {
        set.kernel[0][0][NV - 1][R - 1] = solve_tile<Real, R, NV, false>;
        set.kernel[0][1][NV - 1][R - 1] = solve_tile<Real, R, NV, true>;
        set.kernel[1][0][NV - 1][R - 1] = product_tile<Real, R, NV, false>;
        set.kernel[1][1][NV - 1][R - 1] = product_tile<Real, R, NV, true>;
        if constexpr (R < kTriangularRows) {
            enter_triangular<Real, NV, R + 1>(set);
        } else {
            enter_triangular<Real, NV + 1, 1>(set);
        }
    }
}

template <class Real>
constexpr TriangularKernels<Real> all_triangular_kernels() {
    TriangularKernels<Real> set = {};
    enter_triangular<Real>(set);
    return set;
}

template <class Real>
inline constexpr TriangularKernels<Real> kTriangularKernels = all_triangular_kernels<Real>();

// ---- a packed triangle on all of B -------------------------------------------------------------

// The panel back to where it came from.
template <class Real>
void unpack_panel(Size columns, Size panel, Size k, const Real* in, Real* b, Size b_row,
                  Size b_column) {
    constexpr Size lanes = kLanes<Real>;
    if (b_column == 1) {
        const FirstLanes<Real> last = first_lanes<Real>((columns - 1) % lanes + 1);
        for (Size p = 0; p < k; ++p, in += panel, b += b_row) {
            Size j = 0;
            for (; j + lanes < columns; j += lanes) store(b + j, load(in + j));
            store(b + j, load(in + j), last);
        }
        return;
    }
    Size p = 0;
    if (b_row == 1) {
        for (; p + lanes <= k; p += lanes) {
            transpose_rows<unsigned(lanes)>(columns, in + p * panel, panel, b + p, b_column);
        }
    }
    for (; p < k; ++p) {
        for (Size j = 0; j < columns; ++j) b[p * b_row + j * b_column] = in[p * panel + j];
    }
}

template <class Real>
void run_panel(Task task, const PackedTriangle<Real>& packed, Size vectors, Real* x) {
    const Size panel = vectors * kLanes<Real>;
    const auto& kernels =
        kTriangularKernels<Real>.kernel[task == Task::solve ? 0 : 1][packed.lower][vectors - 1];
    // A solve goes through the rows in the order in which they become known, a product against it.
    const bool forward = packed.lower == (task == Task::solve);
    Size i0 = forward ? 0 : packed.m;
    const Real* t = packed.elements;
    if (!forward) {
        Size row = 0;
        for (Size part = 0; part < packed.rows.parts; ++part) {
            const Size height = size_of_part(packed.rows, part);
            t += height * (finished_columns(packed.lower, packed.m, row, height) + height);
            row += height;
        }
    }
    for (Size step = 0; step < packed.rows.parts; ++step) {
        const Size part = forward ? step : packed.rows.parts - 1 - step;
        const Size height = size_of_part(packed.rows, part);
        if (!forward) i0 -= height;
        const Size finished = finished_columns(packed.lower, packed.m, i0, height);
        if (!forward) t -= height * (finished + height);
        const Real* others = packed.lower ? x : x + (i0 + height) * panel;
        kernels[height - 1](finished, t, t + height * finished, others, x + i0 * panel, packed.unit,
                            packed.divide);
        if (forward) {
            t += height * (finished + height);
            i0 += height;
        }
    }
}

template <class Real>
__attribute__((noinline)) void run_base(Task task, bool lower, bool unit, Size m, Size n,
                                        Block<const Real> t, Block<Real> b) {
    constexpr Size lanes = kLanes<Real>;
    PackedTriangle<Real> packed;
    pack_triangle(lower, unit, task == Task::solve, m, t, packed);
    alignas(64) Real x[kBase * kTriangularVectors * unsigned(lanes)];
    const Partition panels = partition((n + lanes - 1) / lanes, kTriangularVectors);
    Size j = 0;
    for (Size part = 0; part < panels.parts; ++part) {
        const Size vectors = size_of_part(panels, part);
        const Size panel = vectors * lanes;
        const Size columns = smaller(panel, n - j);
        Real* from = b.data + j * b.column_stride;
        pack_panel_of_b(columns, panel, m, static_cast<const Real*>(from), b.row_stride,
                        b.column_stride, x);
        run_panel(task, packed, vectors, x);
        unpack_panel(columns, panel, m, x, from, b.row_stride, b.column_stride);
        j += panel;
    }
}

// ---- recursion ---------------------------------------------------------------------------------

template <class Real>
NEQUAR_INLINE Block<const Real> reading(const Block<Real>& block) {
    return {block.data, block.row_stride, block.column_stride};
}

template <class Real>
void solve_by_halves(bool lower, bool unit, Size m, Size n, Block<const Real> t, Block<Real> b) {
    if (m <= Size(kBase)) {
        run_base(Task::solve, lower, unit, m, n, t, b);
        return;
    }
    const Size m1 = round_up(m / 2, kBase);
    const Size m2 = m - m1;
    const Block<Real> b2 = moved(b, m1, 0);
    if (lower) {
        solve_by_halves(lower, unit, m1, n, t, b);
        gemm(m2, n, m1, Real(-1), moved(t, m1, 0), reading(b), true, b2);
        solve_by_halves(lower, unit, m2, n, moved(t, m1, m1), b2);
    } else {
        solve_by_halves(lower, unit, m2, n, moved(t, m1, m1), b2);
        gemm(m1, n, m2, Real(-1), moved(t, 0, m1), reading(b2), true, b);
        solve_by_halves(lower, unit, m1, n, t, b);
    }
}

template <class Real>
void multiply_by_halves(bool lower, bool unit, Size m, Size n, Block<const Real> t, Block<Real> b) {
    if (m <= Size(kBase)) {
        run_base(Task::product, lower, unit, m, n, t, b);
        return;
    }
    const Size m1 = round_up(m / 2, kBase);
    const Size m2 = m - m1;
    const Block<Real> b2 = moved(b, m1, 0);
    if (lower) {
        multiply_by_halves(lower, unit, m2, n, moved(t, m1, m1), b2);
        gemm(m2, n, m1, Real(1), moved(t, m1, 0), reading(b), true, b2);
        multiply_by_halves(lower, unit, m1, n, t, b);
    } else {
        multiply_by_halves(lower, unit, m1, n, t, b);
        gemm(m1, n, m2, Real(1), moved(t, 0, m1), reading(b2), true, b);
        multiply_by_halves(lower, unit, m2, n, moved(t, m1, m1), b2);
    }
}

// ---- one right-hand side -----------------------------------------------------------------------

inline constexpr Size kVectorBase =
    16;  // rows of a diagonal block that is solved element by element

template <class Real>
NEQUAR_INLINE void solve_diagonal_block(bool lower, bool unit, Size m, const Block<const Real>& t,
                                        Real* x, Size sx) {
    for (Size step = 0; step < m; ++step) {
        const Size i = lower ? step : m - 1 - step;
        const Size first = lower ? 0 : i + 1;
        const Size last = lower ? i : m;
        const Real* row = t.data + i * t.row_stride;
        Real sum = x[i * sx];
        for (Size j = first; j < last; ++j) sum -= row[j * t.column_stride] * x[j * sx];
        x[i * sx] = unit ? sum : sum / row[i * t.column_stride];
    }
}

// Rows contiguous: each block takes in what is solved before it is solved itself. Columns
// contiguous: each solved block is taken out of all that follows.
template <class Real>
void trsv(bool lower, bool unit, Size n, Block<const Real> t, Real* x, Size sx) {
    if (n <= 0) return;
    const bool by_columns = t.row_stride == 1 && t.column_stride != 1;
    const Size blocks = (n + kVectorBase - 1) / kVectorBase;
    for (Size step = 0; step < blocks; ++step) {
        const Size block = lower ? step : blocks - 1 - step;
        const Size i0 = block * kVectorBase;
        const Size height = smaller(kVectorBase, n - i0);
        const Size end = i0 + height;
        Real* here = x + i0 * sx;
        if (!by_columns) {
            const Size first = lower ? 0 : end;
            gemv(height, lower ? i0 : n - end, Real(-1), moved(t, i0, first),
                 static_cast<const Real*>(x + first * sx), sx, true, here, sx);
        }
        solve_diagonal_block(lower, unit, height, moved(t, i0, i0), here, sx);
        if (by_columns) {
            const Size first = lower ? end : 0;
            gemv(lower ? n - end : i0, height, Real(-1), moved(t, first, i0),
                 static_cast<const Real*>(here), sx, true, x + first * sx, sx);
        }
    }
}

template <class Real>
void trsm(bool lower, bool unit, Size m, Size n, Block<const Real> t, Block<Real> b) {
    if (m <= 0 || n <= 0) return;
    if (n == 1) {
        trsv(lower, unit, m, t, b.data, b.row_stride);
        return;
    }
    solve_by_halves(lower, unit, m, n, t, b);
}

template <class Real>
void trmm(bool lower, bool unit, Size m, Size n, Block<const Real> t, Block<Real> b) {
    if (m <= 0 || n <= 0) return;
    multiply_by_halves(lower, unit, m, n, t, b);
}

}  // namespace nequar::kernel::NEQUAR_UNIT
