// C := alpha A B (+ C) where B has so few columns that a vector along a row of C would be mostly
// empty: n <= kFewColumns.
//
// G steps at once: G neighbours in a row of A are repeated throughout a vector, which one load
// does, and meet G rows of B, interleaved (G = 2, four columns):
//
//      a(i,p) a(i,p+1) | a(i,p) a(i,p+1) | a(i,p) a(i,p+1) | a(i,p) a(i,p+1)
//      b(p,0) b(p+1,0) | b(p,1) b(p+1,1) | b(p,2) b(p+1,2) | b(p,3) b(p+1,3)
//
// so that G neighbouring lanes are partial sums of one element of C, added at the end. B is
// interleaved once. What is left of k is done by single steps in the first lane of each group.
#pragma once

#include "kernel/simd/partition.h"
#include "kernel/simd/shuffle.h"
#include "kernel/simd/tile.h"
#include "kernel/table.h"

namespace nequar::kernel::NEQUAR_UNIT {

#if NEQUAR_VECTOR_BYTES == 64

template <class Real>
inline constexpr Size kFewColumns = kLanes<Real> / 2;
inline constexpr unsigned kInterleavedBytes = 32768;
inline constexpr Size kInterleavedVectors = kInterleavedBytes / 64;

// ---- groups of lanes ---------------------------------------------------------------------------

template <unsigned G, class Real>
NEQUAR_INLINE Vector<Real> repeat_group(const Real* p) {
#if defined(__AVX512F__) && defined(__AVX512DQ__)
    // With all lanes named: the plain forms make g++ 12 warn of their undefined operands.
    if constexpr (sizeof(Real) == 8 && G == 2) {
        return _mm512_maskz_broadcast_f64x2(0xff, _mm_loadu_pd(p));
    } else if constexpr (sizeof(Real) == 8) {
        return _mm512_maskz_broadcast_f64x4(0xff, _mm256_loadu_pd(p));
    } else if constexpr (G == 2) {
        double pair;
        __builtin_memcpy(&pair, p, sizeof pair);
        return _mm512_castpd_ps(_mm512_set1_pd(pair));
    } else {
        return _mm512_maskz_broadcast_f32x4(0xffff, _mm_loadu_ps(p));
    }
#else
    Vector<Real> v;
    NEQUAR_UNROLL for (Size lane = 0; lane < kLanes<Real>; ++lane) v[lane] = p[lane % Size(G)];
    return v;
#endif
}

// The lanes of a and b in turn, as far as a vector goes.
NEQUAR_INLINE Vector<double> in_turn(Vector<double> a, Vector<double> b) {
    return __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
}
NEQUAR_INLINE Vector<float> in_turn(Vector<float> a, Vector<float> b) {
    return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}

// Even lanes of a, then of b; odd lanes.
template <bool odd>
NEQUAR_INLINE Vector<double> every_second(Vector<double> a, Vector<double> b) {
    return odd ? __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15)
               : __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14);
}
template <bool odd>
NEQUAR_INLINE Vector<float> every_second(Vector<float> a, Vector<float> b) {
    return odd ? __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27,
                                         29, 31)
               : __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26,
                                         28, 30);
}

// Neighbours added: the sums of a, then those of b.
template <class Real>
NEQUAR_INLINE Vector<Real> sums_of_pairs(Vector<Real> a, Vector<Real> b) {
    return every_second<false>(a, b) + every_second<true>(a, b);
}

// ---- B -----------------------------------------------------------------------------------------

// Vectors for k / G groups, then for the k % G steps that are left; zero past n.
template <class Real, unsigned G>
void interleave(Size n, Size k, const Block<const Real>& b, Real* out) {
    constexpr Size lanes = kLanes<Real>;
    const Real* from = b.data;
    Size p = 0;
    if (b.column_stride == 1) {
        const FirstLanes<Real> present = first_lanes<Real>(n);
        const Vector<Real> none = {};
        for (; p + Size(G) <= k; p += G, from += Size(G) * b.row_stride, out += lanes) {
            Vector<Real> row[G];
            NEQUAR_UNROLL for (unsigned t = 0; t < G; ++t) {
                row[t] = load(from + Size(t) * b.row_stride, present);
            }
            if constexpr (G == 2)
                store(out, in_turn(row[0], row[1]));
            else
                store(out, in_turn(in_turn(row[0], row[2]), in_turn(row[1], row[3])));
        }
        for (; p < k; ++p, from += b.row_stride, out += lanes) {
            const Vector<Real> row = load(from, present);
            store(out, G == 2 ? in_turn(row, none) : in_turn(in_turn(row, none), none));
        }
        return;
    }
    for (; p + Size(G) <= k; p += G, from += Size(G) * b.row_stride, out += lanes) {
        store(out, Vector<Real>{});
        for (Size j = 0; j < n; ++j) {
            for (Size t = 0; t < Size(G); ++t) {
                out[j * Size(G) + t] = from[t * b.row_stride + j * b.column_stride];
            }
        }
    }
    for (; p < k; ++p, from += b.row_stride, out += lanes) {
        store(out, Vector<Real>{});
        for (Size j = 0; j < n; ++j) out[j * Size(G)] = from[j * b.column_stride];
    }
}

// ---- tiles of C --------------------------------------------------------------------------------

// What the tiles of one product share.
template <class Real>
struct FewColumnsTask {
    Size n;
    Size k;
    Real alpha;
    Size a_row;
    const Real* b;
    Size c_row;
    Size c_column;
    bool accumulate;
};

// R rows from the first of a and c, of which those before `first` are not written.
template <class Real, unsigned G, unsigned R>
void few_columns_tile(Size first, const FewColumnsTask<Real>& task, const Real* a, Real* c) {
    constexpr Size lanes = kLanes<Real>;
    constexpr unsigned columns = unsigned(lanes) / G;
    constexpr unsigned pointers = (R + kRowsOfPointer - 1) / kRowsOfPointer;
    const Real* rows[pointers];
    NEQUAR_UNROLL for (unsigned i = 0; i < pointers; ++i) {
        rows[i] = opaque(a);
        a += Size(kRowsOfPointer) * task.a_row;
    }
    const Size a_row = task.a_row;
    const Real* b = task.b;
    Vector<Real> acc[R];
    NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) acc[r] = Vector<Real>{};
    for (Size left = task.k / Size(G); left > 0; --left, b += lanes) {
        const Vector<Real> factors = load(b);
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
            const Real* p = rows[r / kRowsOfPointer] + Size(r % kRowsOfPointer) * a_row;
            acc[r] = multiply_add(repeat_group<G>(p), factors, acc[r]);
        }
        NEQUAR_UNROLL for (auto& pointer : rows) pointer += G;
    }
    Vector<Real> is_first;  // one in the first lane of each group
    NEQUAR_UNROLL for (Size lane = 0; lane < lanes; ++lane) is_first[lane] = lane % Size(G) == 0;
    for (Size left = task.k % Size(G); left > 0; --left, b += lanes) {
        const Vector<Real> factors = load(b);
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
            const Real* p = rows[r / kRowsOfPointer] + Size(r % kRowsOfPointer) * a_row;
            const Vector<Real> x = is_first > 0 ? broadcast(*p) : Vector<Real>{};
            acc[r] = multiply_add(x, factors, acc[r]);
        }
        NEQUAR_UNROLL for (auto& pointer : rows) pointer += 1;
    }
    const Vector<Real> alpha = broadcast(task.alpha);
    alignas(64) Real sums[R][columns];
    NEQUAR_UNROLL for (unsigned r = 0; r < R; r += G) {
        Vector<Real> sum = sums_of_pairs<Real>(acc[r], acc[r + 1]);
        if constexpr (G == 4)
            sum = sums_of_pairs<Real>(sum, sums_of_pairs<Real>(acc[r + 2], acc[r + 3]));
        store(sums[r], alpha * sum);
    }
    c += first * task.c_row;
    if (task.n == Size(columns) && task.c_column == 1 && !task.accumulate) {
        for (Size r = first; r < Size(R); ++r, c += task.c_row) {
            store_pack<columns>(c, load_pack<columns>(sums[r]));
        }
        return;
    }
    for (Size r = first; r < Size(R); ++r, c += task.c_row) {
        for (Size j = 0; j < task.n; ++j) {
            Real& element = c[j * task.c_column];
            element = task.accumulate ? element + sums[r][j] : sums[r][j];
        }
    }
}

// The last tile may begin in the one before it.
template <class Real, unsigned G>
void few_columns_tiles(Size m, const FewColumnsTask<Real>& task, const Real* a, Real* c) {
    for (Size i = 0; i < m;) {
        const Size left = m - i;
        const Size height = left >= 24 ? 24 : left > 8 ? 16 : 8;
        const Size start = smaller(i, m - height);
        const Real* from = a + start * task.a_row;
        Real* to = c + start * task.c_row;
        if (height == 24)
            few_columns_tile<Real, G, 24>(i - start, task, from, to);
        else if (height == 16)
            few_columns_tile<Real, G, 16>(i - start, task, from, to);
        else
            few_columns_tile<Real, G, 8>(i - start, task, from, to);
        i = start + height;
    }
}

template <class Real, unsigned G>
__attribute__((noinline)) void multiply_by_groups(Size m, Size n, Size k, Real alpha,
                                                  const Block<const Real>& a,
                                                  const Block<const Real>& b, bool accumulate,
                                                  const Block<Real>& c) {
    alignas(64) Real interleaved[kInterleavedBytes / sizeof(Real)];
    constexpr Size most = (kInterleavedVectors - Size(G)) * Size(G);
    FewColumnsTask<Real> task;
    task.n = n;
    task.alpha = alpha;
    task.a_row = a.row_stride;
    task.b = interleaved;
    task.c_row = c.row_stride;
    task.c_column = c.column_stride;
    task.accumulate = accumulate;
    for (Size p = 0; p < k; p += task.k, task.accumulate = true) {
        task.k = smaller(k - p, most);
        Block<const Real> rest;
        rest.data = b.data + p * b.row_stride;
        rest.row_stride = b.row_stride;
        rest.column_stride = b.column_stride;
        interleave<Real, G>(n, task.k, rest, interleaved);
        few_columns_tiles<Real, G>(m, task, a.data + p, c.data);
    }
}

// A of contiguous rows, n <= kFewColumns, m >= 8.
template <class Real>
NEQUAR_INLINE void multiply_few_columns(Size m, Size n, Size k, Real alpha,
                                        const Block<const Real>& a, const Block<const Real>& b,
                                        bool accumulate, const Block<Real>& c) {
    if (n > kLanes<Real> / 4)
        multiply_by_groups<Real, 2>(m, n, k, alpha, a, b, accumulate, c);
    else
        multiply_by_groups<Real, 4>(m, n, k, alpha, a, b, accumulate, c);
}

// Whether there are rows enough to make up for the interleaving.
template <class Real>
NEQUAR_INLINE bool pays_with_few_columns(Size m, Size n, Size k) {
    return m >= 16 && n > 0 && k >= 16;
}

#endif

}  // namespace nequar::kernel::NEQUAR_UNIT
