// C := alpha A B (+ C) where B has so few columns that a vector along a row of C would be mostly
// empty: n <= kFewColumns.
//
// Vectors run along the rows of A instead. E rows (E elements are 128 bits) are transposed inside
// the lanes of 128 bits of Q lanes, so that vector e holds, in lane q, column p + q E + e of A; it
// meets a vector of factors that holds b(p + q E + e, j) throughout lane q:
//
//      rows of A, p ...            transposed in lanes, vector e          factors of column j
//      a00 a01 | a02 a03           e = 0:  a00 a10 | a02 a12              b0j b0j | b2j b2j
//      a10 a11 | a12 a13           e = 1:  a01 a11 | a03 a13              b1j b1j | b3j b3j
//                                  (E = 2, Q = 2)
//
// The lanes are Q partial sums of the same elements of C, added at the end. Half of the shuffles of
// a whole transposition are not needed, and no element waits for a sum over a whole vector.
// The factors are packed once, each E times over.
#pragma once

#include "kernel/simd/shuffle.h"
#include "kernel/table.h"

namespace nequar::kernel::NEQUAR_UNIT {

#if NEQUAR_VECTOR_BYTES == 64

inline constexpr unsigned kColumnsOfBlock = 4;  // as many as there are lanes of 128 bits
template <class Real>
inline constexpr Size kFewColumns = sizeof(Real) == 4 ? 8 : 4;
inline constexpr unsigned kFactorBytes = 32768;

// Steps that packed factors can hold.
template <class Real>
inline constexpr Size kFactorSteps = kFactorBytes / Size(sizeof(Real)) /
                                     (kFewColumns<Real> * Size(kPiece<Real>));

// Four vectors of partial sums, one a column, to E rows of four elements.
NEQUAR_INLINE Vector<double> rows_of_sums(Vector<double> a, Vector<double> b, Vector<double> c,
                                          Vector<double> d) {
    const Vector<double> ab = __builtin_shufflevector(a, b, 0, 1, 2, 3, 8, 9, 10, 11) +
                              __builtin_shufflevector(a, b, 4, 5, 6, 7, 12, 13, 14, 15);
    const Vector<double> cd = __builtin_shufflevector(c, d, 0, 1, 2, 3, 8, 9, 10, 11) +
                              __builtin_shufflevector(c, d, 4, 5, 6, 7, 12, 13, 14, 15);
    return __builtin_shufflevector(ab, cd, 0, 4, 8, 12, 1, 5, 9, 13) +
           __builtin_shufflevector(ab, cd, 2, 6, 10, 14, 3, 7, 11, 15);
}
NEQUAR_INLINE Vector<float> rows_of_sums(Vector<float> a, Vector<float> b, Vector<float> c,
                                         Vector<float> d) {
    const Vector<float> ab =
        __builtin_shufflevector(a, b, 0, 1, 2, 3, 4, 5, 6, 7, 16, 17, 18, 19, 20, 21, 22, 23) +
        __builtin_shufflevector(a, b, 8, 9, 10, 11, 12, 13, 14, 15, 24, 25, 26, 27, 28, 29, 30, 31);
    const Vector<float> cd =
        __builtin_shufflevector(c, d, 0, 1, 2, 3, 4, 5, 6, 7, 16, 17, 18, 19, 20, 21, 22, 23) +
        __builtin_shufflevector(c, d, 8, 9, 10, 11, 12, 13, 14, 15, 24, 25, 26, 27, 28, 29, 30, 31);
    return __builtin_shufflevector(ab, cd, 0, 8, 16, 24, 1, 9, 17, 25, 2, 10, 18, 26, 3, 11, 19,
                                   27) +
           __builtin_shufflevector(ab, cd, 4, 12, 20, 28, 5, 13, 21, 29, 6, 14, 22, 30, 7, 15, 23,
                                   31);
}

// A number throughout 128 bits.
NEQUAR_INLINE PackOf<double, 2> spread_pack(double x) {
    const PackOf<double, 2> v = {x};
    return __builtin_shufflevector(v, v, 0, 0);
}
NEQUAR_INLINE PackOf<float, 4> spread_pack(float x) {
    const PackOf<float, 4> v = {x};
    return __builtin_shufflevector(v, v, 0, 0, 0, 0);
}

// For each vector of steps and each e: a vector for each of `Columns` columns; zero past n and k.
template <class Real, unsigned Columns>
void pack_factors(Size n, Size k, const Block<const Real>& b, Real* out) {
    constexpr Size lanes = kLanes<Real>;
    constexpr unsigned E = kPiece<Real>;
    constexpr Size vectors = Size(E * Columns);  // for a vector of steps
    const Size cleared = n < Size(Columns) ? 0 : k / lanes;
    for (Size i = cleared * vectors * lanes; i < (k + lanes - 1) / lanes * vectors * lanes;
         i += lanes)
        store(out + i, Vector<Real>{});
    const Real* row = b.data;
    for (Size p = 0; p < k; ++p, row += b.row_stride) {
        const Size q = p % lanes / Size(E);
        Real* to = out + (p / lanes * vectors + p % Size(E) * Size(Columns)) * lanes + q * Size(E);
        NEQUAR_UNROLL for (unsigned j = 0; j < Columns; ++j, to += lanes) {
            if (Size(j) >= n) break;
            const PackOf<Real, E> v = spread_pack(row[Size(j) * b.column_stride]);
            store_pack<E>(to, v);
        }
    }
}

// A vector that is used more than once is loaded once.
template <class Real>
NEQUAR_INLINE Vector<Real> in_register(Vector<Real> v) {
#if defined(__AVX512F__)
    __asm__("" : "+v"(v));
#endif
    return v;
}

// What the tiles of one product share.
template <class Real>
struct FewColumnsTask {
    Size n;
    Size k;
    Real alpha;
    Size a_row;
    const Real* factors;
    Size c_row;
    Size c_column;
    bool accumulate;
};

template <class Real, unsigned G, unsigned NB>
NEQUAR_INLINE void add_steps(Vector<Real> (&rows)[G][kPiece<Real>], const Real* factors,
                             Vector<Real> (&acc)[G][NB * kColumnsOfBlock]) {
    constexpr unsigned columns = NB * kColumnsOfBlock;
    NEQUAR_UNROLL for (unsigned g = 0; g < G; ++g) transpose_lanes(rows[g]);
    NEQUAR_UNROLL for (unsigned e = 0; e < kPiece<Real>; ++e) {
        NEQUAR_UNROLL for (unsigned j = 0; j < columns; ++j) {
            const Vector<Real> factor =
                in_register<Real>(load(factors + Size(e * columns + j) * kLanes<Real>));
            NEQUAR_UNROLL for (unsigned g = 0; g < G; ++g) {
                acc[g][j] = multiply_add(rows[g][e], factor, acc[g][j]);
            }
        }
    }
}

// Up to G E rows of C; a missing row of A is a copy of the last one.
template <class Real, unsigned G, unsigned NB>
void few_columns_tile(Size height, const FewColumnsTask<Real>& task, const Real* a, Real* c) {
    constexpr Size lanes = kLanes<Real>;
    constexpr unsigned E = kPiece<Real>;
    constexpr unsigned columns = NB * kColumnsOfBlock;
    const Real* from[G * E];
    NEQUAR_UNROLL for (unsigned r = 0; r < G * E; ++r) {
        from[r] = a + (Size(r) < height ? Size(r) : height - 1) * task.a_row;
    }
    Vector<Real> acc[G][columns];
    NEQUAR_UNROLL for (unsigned g = 0; g < G; ++g) {
        NEQUAR_UNROLL for (unsigned j = 0; j < columns; ++j) acc[g][j] = Vector<Real>{};
    }
    const Real* factors = task.factors;
    Size p = 0;
    for (; p + lanes <= task.k; p += lanes, factors += Size(E * columns) * lanes) {
        Vector<Real> rows[G][E];
        NEQUAR_UNROLL for (unsigned r = 0; r < G * E; ++r) rows[r / E][r % E] =
            in_register<Real>(load(from[r] + p));
        add_steps<Real, G, NB>(rows, factors, acc);
    }
    if (p < task.k) {
        const FirstLanes<Real> rest = first_lanes<Real>(task.k - p);
        Vector<Real> rows[G][E];
        NEQUAR_UNROLL for (unsigned r = 0; r < G * E; ++r) {
            rows[r / E][r % E] = load(from[r] + p, rest);
        }
        add_steps<Real, G, NB>(rows, factors, acc);
    }
    const Vector<Real> alpha = broadcast(task.alpha);
    alignas(64) Real sums[G][NB][E][kColumnsOfBlock];
    NEQUAR_UNROLL for (unsigned g = 0; g < G; ++g) {
        NEQUAR_UNROLL for (unsigned block = 0; block < NB; ++block) {
            const Vector<Real>* s = acc[g] + block * kColumnsOfBlock;
            store(&sums[g][block][0][0], alpha * rows_of_sums(s[0], s[1], s[2], s[3]));
        }
    }
    if (task.n == Size(columns) && task.c_column == 1 && !task.accumulate) {
        for (Size r = 0; r < height; ++r, c += task.c_row) {
            NEQUAR_UNROLL for (unsigned block = 0; block < NB; ++block) {
                store_pack<kColumnsOfBlock>(
                    c + block * kColumnsOfBlock,
                    load_pack<kColumnsOfBlock>(&sums[r / Size(E)][block][r % Size(E)][0]));
            }
        }
        return;
    }
    for (Size r = 0; r < height; ++r, c += task.c_row) {
        for (Size j = 0; j < task.n; ++j) {
            Real& element = c[j * task.c_column];
            const Real sum = sums[r / Size(E)][j / 4][r % Size(E)][j % 4];
            element = task.accumulate ? element + sum : sum;
        }
    }
}

template <class Real, unsigned NB>
NEQUAR_INLINE void few_columns_tiles(Size m, const FewColumnsTask<Real>& task, const Real* a,
                                     Real* c) {
    constexpr unsigned G = 8 / kPiece<Real>;
    for (Size i = 0; i < m; i += 8) {
        const Size height = m - i < 8 ? m - i : 8;
        few_columns_tile<Real, G, NB>(height, task, a + i * task.a_row, c + i * task.c_row);
    }
}

// Whether there are rows enough to make up for the packing, and steps enough for the sums.
template <class Real>
NEQUAR_INLINE bool pays_with_few_columns(Size m, Size n, Size k) {
    return m >= 16 && n > 0 && k >= (n <= Size(kColumnsOfBlock) ? 2 : 8) * kLanes<Real>;
}

// A of contiguous rows, n <= kFewColumns.
template <class Real>
__attribute__((noinline)) void multiply_few_columns(Size m, Size n, Size k, Real alpha,
                                                    const Block<const Real>& a,
                                                    const Block<const Real>& b, bool accumulate,
                                                    const Block<Real>& c) {
    alignas(64) Real factors[kFactorBytes / sizeof(Real)];
    FewColumnsTask<Real> task;
    task.n = n;
    task.alpha = alpha;
    task.a_row = a.row_stride;
    task.factors = factors;
    task.c_row = c.row_stride;
    task.c_column = c.column_stride;
    task.accumulate = accumulate;
    const bool one_block = n <= Size(kColumnsOfBlock);
    for (Size p = 0; p < k; p += task.k, task.accumulate = true) {
        task.k = k - p < kFactorSteps<Real> ? k - p : kFactorSteps<Real>;
        Block<const Real> rest;
        rest.data = b.data + p * b.row_stride;
        rest.row_stride = b.row_stride;
        rest.column_stride = b.column_stride;
        if (one_block) {
            pack_factors<Real, 4>(n, task.k, rest, factors);
            few_columns_tiles<Real, 1>(m, task, a.data + p, c.data);
        } else if constexpr (kFewColumns<Real> == 8) {
            pack_factors<Real, 8>(n, task.k, rest, factors);
            few_columns_tiles<Real, 2>(m, task, a.data + p, c.data);
        }
    }
}

#endif

}  // namespace nequar::kernel::NEQUAR_UNIT
