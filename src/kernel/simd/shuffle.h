// Transposition in registers: an N x N block, N a power of two up to the vector's lanes.
//
// Memory is read in pieces of 128 bits (E elements). Vector (g, e) takes in its lane l of 128 bits
// the piece of row l E + e that holds columns g E ... g E + E - 1:
//
//        row 0   | p00 p01 |            vector (0,0) = p00 p20     vector (1,0) = p01 p21
//        row 1   | p10 p11 |            vector (0,1) = p10 p30     vector (1,1) = p11 p31
//        row 2   | p20 p21 |
//        row 3   | p30 p31 |            (E = 2, N = 4)
//
// so that what is left is an E x E transposition inside the lanes, which every instruction set does
// in one cycle a shuffle, and pieces are put together by loads.
#pragma once

#include "kernel/simd/vector.h"

namespace nequar::kernel::NEQUAR_UNIT {

template <class Real, unsigned N>
struct Pack;  // a vector of N elements

#define NEQUAR_DEFINE_PACK(Real, N)                                                            \
    template <>                                                                                \
    struct Pack<Real, N> {                                                                     \
        typedef Real Type __attribute__((vector_size(N * sizeof(Real))));                      \
        typedef Real Unaligned                                                                 \
            __attribute__((vector_size(N * sizeof(Real)), aligned(alignof(Real)), may_alias)); \
    };
NEQUAR_DEFINE_PACK(double, 2)
NEQUAR_DEFINE_PACK(double, 4)
NEQUAR_DEFINE_PACK(double, 8)
NEQUAR_DEFINE_PACK(float, 4)
NEQUAR_DEFINE_PACK(float, 8)
NEQUAR_DEFINE_PACK(float, 16)
#undef NEQUAR_DEFINE_PACK

template <class Real, unsigned N>
using PackOf = typename Pack<Real, N>::Type;

template <class Real>
inline constexpr unsigned kPiece = 16 / sizeof(Real);  // elements in 128 bits

template <unsigned N, class Real>
NEQUAR_INLINE PackOf<Real, N> load_pack(const Real* p) {
    return *reinterpret_cast<const typename Pack<Real, N>::Unaligned*>(p);
}
template <unsigned N, class Real>
NEQUAR_INLINE void store_pack(Real* p, PackOf<Real, N> v) {
    *reinterpret_cast<typename Pack<Real, N>::Unaligned*>(p) = v;
}

// Row k of a block at rows(k): evenly apart, or wherever `rows` says.
template <class Real>
struct EvenRows {
    const Real* first;
    Size step;

    NEQUAR_INLINE const Real* operator()(unsigned k) const { return first + Size(k) * step; }
};

// Pieces of 128 bits at `column` of the rows k, k + E, k + 2 E, ... put together.
template <class Real, unsigned N, class Rows>
NEQUAR_INLINE PackOf<Real, N> gather_pieces(const Rows& rows, unsigned k, Size column) {
    if constexpr (N == kPiece<Real>) {
        return load_pack<N>(rows(k) + column);
    } else {
        const auto low = gather_pieces<Real, N / 2>(rows, k, column);
        const auto high = gather_pieces<Real, N / 2>(rows, k + N / 2, column);
        if constexpr (N == 4) {
            return __builtin_shufflevector(low, high, 0, 1, 2, 3);
        } else if constexpr (N == 8) {
            return __builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7);
        } else {
            return __builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13,
                                           14, 15);
        }
    }
}

// Inside each lane of 128 bits: rows in, columns out.
NEQUAR_INLINE void transpose_lanes(PackOf<double, 2> (&v)[2]) {
    const auto a = v[0], b = v[1];
    v[0] = __builtin_shufflevector(a, b, 0, 2);
    v[1] = __builtin_shufflevector(a, b, 1, 3);
}
NEQUAR_INLINE void transpose_lanes(PackOf<double, 4> (&v)[2]) {
    const auto a = v[0], b = v[1];
    v[0] = __builtin_shufflevector(a, b, 0, 4, 2, 6);
    v[1] = __builtin_shufflevector(a, b, 1, 5, 3, 7);
}
NEQUAR_INLINE void transpose_lanes(PackOf<double, 8> (&v)[2]) {
    const auto a = v[0], b = v[1];
    v[0] = __builtin_shufflevector(a, b, 0, 8, 2, 10, 4, 12, 6, 14);
    v[1] = __builtin_shufflevector(a, b, 1, 9, 3, 11, 5, 13, 7, 15);
}
NEQUAR_INLINE void transpose_lanes(PackOf<float, 4> (&v)[4]) {
    const auto ab_low = __builtin_shufflevector(v[0], v[1], 0, 4, 1, 5);
    const auto ab_high = __builtin_shufflevector(v[0], v[1], 2, 6, 3, 7);
    const auto cd_low = __builtin_shufflevector(v[2], v[3], 0, 4, 1, 5);
    const auto cd_high = __builtin_shufflevector(v[2], v[3], 2, 6, 3, 7);
    v[0] = __builtin_shufflevector(ab_low, cd_low, 0, 1, 4, 5);
    v[1] = __builtin_shufflevector(ab_low, cd_low, 2, 3, 6, 7);
    v[2] = __builtin_shufflevector(ab_high, cd_high, 0, 1, 4, 5);
    v[3] = __builtin_shufflevector(ab_high, cd_high, 2, 3, 6, 7);
}
NEQUAR_INLINE void transpose_lanes(PackOf<float, 8> (&v)[4]) {
    const auto ab_low = __builtin_shufflevector(v[0], v[1], 0, 8, 1, 9, 4, 12, 5, 13);
    const auto ab_high = __builtin_shufflevector(v[0], v[1], 2, 10, 3, 11, 6, 14, 7, 15);
    const auto cd_low = __builtin_shufflevector(v[2], v[3], 0, 8, 1, 9, 4, 12, 5, 13);
    const auto cd_high = __builtin_shufflevector(v[2], v[3], 2, 10, 3, 11, 6, 14, 7, 15);
    v[0] = __builtin_shufflevector(ab_low, cd_low, 0, 1, 8, 9, 4, 5, 12, 13);
    v[1] = __builtin_shufflevector(ab_low, cd_low, 2, 3, 10, 11, 6, 7, 14, 15);
    v[2] = __builtin_shufflevector(ab_high, cd_high, 0, 1, 8, 9, 4, 5, 12, 13);
    v[3] = __builtin_shufflevector(ab_high, cd_high, 2, 3, 10, 11, 6, 7, 14, 15);
}
NEQUAR_INLINE void transpose_lanes(PackOf<float, 16> (&v)[4]) {
    const auto ab_low = __builtin_shufflevector(v[0], v[1], 0, 16, 1, 17, 4, 20, 5, 21, 8, 24, 9,
                                                25, 12, 28, 13, 29);
    const auto ab_high = __builtin_shufflevector(v[0], v[1], 2, 18, 3, 19, 6, 22, 7, 23, 10, 26, 11,
                                                 27, 14, 30, 15, 31);
    const auto cd_low = __builtin_shufflevector(v[2], v[3], 0, 16, 1, 17, 4, 20, 5, 21, 8, 24, 9,
                                                25, 12, 28, 13, 29);
    const auto cd_high = __builtin_shufflevector(v[2], v[3], 2, 18, 3, 19, 6, 22, 7, 23, 10, 26, 11,
                                                 27, 14, 30, 15, 31);
    v[0] = __builtin_shufflevector(ab_low, cd_low, 0, 1, 16, 17, 4, 5, 20, 21, 8, 9, 24, 25, 12, 13,
                                   28, 29);
    v[1] = __builtin_shufflevector(ab_low, cd_low, 2, 3, 18, 19, 6, 7, 22, 23, 10, 11, 26, 27, 14,
                                   15, 30, 31);
    v[2] = __builtin_shufflevector(ab_high, cd_high, 0, 1, 16, 17, 4, 5, 20, 21, 8, 9, 24, 25, 12,
                                   13, 28, 29);
    v[3] = __builtin_shufflevector(ab_high, cd_high, 2, 3, 18, 19, 6, 7, 22, 23, 10, 11, 26, 27, 14,
                                   15, 30, 31);
}

// columns(g E + q) = column g E + q of the N x N block of the given rows.
template <unsigned N, class Real, class Rows>
NEQUAR_INLINE void load_transposed(const Rows& rows, PackOf<Real, N> (&columns)[N]) {
    constexpr unsigned piece = kPiece<Real>;
    NEQUAR_UNROLL for (unsigned g = 0; g < N / piece; ++g) {
        PackOf<Real, N> v[piece];
        NEQUAR_UNROLL for (unsigned e = 0; e < piece; ++e) {
            v[e] = gather_pieces<Real, N>(rows, e, Size(g * piece));
        }
        transpose_lanes(v);
        NEQUAR_UNROLL for (unsigned e = 0; e < piece; ++e) columns[g * piece + e] = v[e];
    }
}
template <unsigned N, class Real>
NEQUAR_INLINE void load_transposed(const Real* p, Size step, PackOf<Real, N> (&columns)[N]) {
    load_transposed<N, Real>(EvenRows<Real>{p, step}, columns);
}

// ---- squares of whole vectors ------------------------------------------------------------------
// A square is transposed by halves: blocks of `half` columns of row i + half and those to the right
// of row i change places, for half = N/2, ..., 2, 1.

template <unsigned... Lane>
struct LaneList {};
template <unsigned count, unsigned... Lane>
struct AscendingLanes : AscendingLanes<count - 1, count - 1, Lane...> {};
template <unsigned... Lane>
struct AscendingLanes<0, Lane...> {
    using Type = LaneList<Lane...>;
};

template <unsigned half, class AnyVector, unsigned... Lane>
NEQUAR_INLINE void exchange_lanes(AnyVector& a, AnyVector& b, LaneList<Lane...>) {
    constexpr unsigned lanes = sizeof...(Lane);
    const AnyVector low =
        __builtin_shufflevector(a, b, (Lane / half % 2 == 0 ? Lane : Lane + lanes - half)...);
    b = __builtin_shufflevector(a, b, (Lane / half % 2 == 0 ? Lane + half : Lane + lanes)...);
    a = low;
}
template <unsigned half, class AnyVector>
NEQUAR_INLINE void exchange(AnyVector& a, AnyVector& b) {
    exchange_lanes<half>(a, b, typename AscendingLanes<sizeof(AnyVector) / sizeof(a[0])>::Type{});
}

// Lane i becomes the sum of the lanes of v[i], halves added to halves.
template <unsigned half, class Real>
NEQUAR_INLINE void add_lanes(Vector<Real> (&v)[unsigned(kLanes<Real>)]) {
    NEQUAR_UNROLL for (unsigned i = 0; i < half; ++i) {
        exchange<half>(v[i], v[i + half]);
        v[i] += v[i + half];
    }
    if constexpr (half > 1) add_lanes<half / 2, Real>(v);
}
template <class Real>
NEQUAR_INLINE Vector<Real> sums_of_lanes(Vector<Real> (&v)[unsigned(kLanes<Real>)]) {
    add_lanes<unsigned(kLanes<Real>) / 2, Real>(v);
    return v[0];
}

#if NEQUAR_VECTOR_BYTES == 64
// With vectors of a cache line, rows are better read whole: each line is asked for once.
// A half in the low lanes, zeros above.
NEQUAR_INLINE Vector<double> low_half(Vector<double> v) {
    return __builtin_shufflevector(v, Vector<double>{}, 0, 1, 2, 3, 8, 8, 8, 8);
}
NEQUAR_INLINE Vector<float> low_half(Vector<float> v) {
    return __builtin_shufflevector(v, Vector<float>{}, 0, 1, 2, 3, 4, 5, 6, 7, 16, 16, 16, 16, 16,
                                   16, 16, 16);
}
NEQUAR_INLINE Vector<double> high_half(Vector<double> v) {
    return __builtin_shufflevector(v, Vector<double>{}, 4, 5, 6, 7, 8, 8, 8, 8);
}
NEQUAR_INLINE Vector<float> high_half(Vector<float> v) {
    return __builtin_shufflevector(v, Vector<float>{}, 8, 9, 10, 11, 12, 13, 14, 15, 16, 16, 16, 16,
                                   16, 16, 16, 16);
}

template <unsigned half, class Real, unsigned N>
NEQUAR_INLINE void exchange_blocks(Vector<Real> (&v)[N]) {
    NEQUAR_UNROLL for (unsigned i = 0; i < N; ++i) {
        if (i % (2 * half) < half) exchange<half>(v[i], v[i + half]);
    }
    if constexpr (half > 1) exchange_blocks<half / 2, Real>(v);
}

// Up to N rows of up to a vector's lanes, N all of them or half; what is missing reads as zero.
// With half of the rows both halves of the vectors are transposed at once: column j comes to lie in
// the low half of vector j, column N + j in its high half.
template <unsigned N, class Real>
NEQUAR_INLINE void load_rows_transposed(Size rows, Size columns, const Real* in, Size in_row,
                                        Vector<Real> (&v)[N]) {
    if (rows == Size(N) && columns == kLanes<Real>) {
        NEQUAR_UNROLL for (unsigned i = 0; i < N; ++i) v[i] = load(in + Size(i) * in_row);
    } else {
        const FirstLanes<Real> present = first_lanes<Real>(columns);
        NEQUAR_UNROLL for (unsigned i = 0; i < N; ++i) {
            v[i] = Vector<Real>{};
            if (Size(i) < rows) v[i] = load(in + Size(i) * in_row, present);
        }
    }
    exchange_blocks<N / 2, Real>(v);
}

// out(j, i) = in(i, j), i < rows, j < columns, both up to a vector's lanes; whole vectors are
// written, zeros where there is no row: they are read back at once as they were written.
template <class Real>
NEQUAR_INLINE void transpose_to_vectors(Size rows, Size columns, const Real* in, Size in_row,
                                        Real* out, Size out_row) {
    constexpr unsigned lanes = unsigned(kLanes<Real>);
    constexpr unsigned half = lanes / 2;
    if (rows <= Size(half)) {
        Vector<Real> v[half];
        load_rows_transposed<half, Real>(rows, columns, in, in_row, v);
        NEQUAR_UNROLL for (unsigned j = 0; j < half; ++j) {
            if (Size(j) < columns) store(out + Size(j) * out_row, low_half(v[j]));
            if (Size(half + j) < columns) store(out + Size(half + j) * out_row, high_half(v[j]));
        }
        return;
    }
    Vector<Real> v[lanes];
    load_rows_transposed<lanes, Real>(rows, columns, in, in_row, v);
    if (columns == Size(lanes)) {
        NEQUAR_UNROLL for (unsigned j = 0; j < lanes; ++j) store(out + Size(j) * out_row, v[j]);
        return;
    }
    NEQUAR_UNROLL for (unsigned j = 0; j < lanes - 1; ++j) {
        if (Size(j) < columns) store(out + Size(j) * out_row, v[j]);
    }
}
#endif

// Rows in, columns out.
template <class Real>
NEQUAR_INLINE void transpose_in_registers(Vector<Real> (&v)[unsigned(kLanes<Real>)]) {
#if NEQUAR_VECTOR_BYTES == 64
    exchange_blocks<unsigned(kLanes<Real>) / 2, Real>(v);
#else
    constexpr unsigned lanes = unsigned(kLanes<Real>);
    alignas(64) Real square[lanes * lanes];
    NEQUAR_UNROLL for (unsigned i = 0; i < lanes; ++i) store(square + i * lanes, v[i]);
    load_transposed<lanes>(static_cast<const Real*>(square), Size(lanes), v);
#endif
}

// columns[j] = column j of the square of a vector each way.
template <class Real>
NEQUAR_INLINE void load_square(const Real* in, Size in_row,
                               Vector<Real> (&columns)[unsigned(kLanes<Real>)]) {
#if NEQUAR_VECTOR_BYTES == 64
    NEQUAR_UNROLL for (Size i = 0; i < kLanes<Real>; ++i) columns[i] = load(in + i * in_row);
    exchange_blocks<unsigned(kLanes<Real>) / 2, Real>(columns);
#else
    load_transposed<unsigned(kLanes<Real>)>(in, in_row, columns);
#endif
}

// out(j, i) = in(i, j) for an N x N block; rows of `in` are in_row apart, rows of `out` out_row.
template <unsigned N, class Real>
NEQUAR_INLINE void transpose_block(const Real* in, Size in_row, Real* out, Size out_row) {
    if constexpr (N < kPiece<Real>) {
        NEQUAR_UNROLL for (unsigned i = 0; i < N; ++i) {
            NEQUAR_UNROLL for (unsigned j = 0; j < N; ++j) out[j * out_row + i] =
                in[i * in_row + j];
        }
    } else {
        PackOf<Real, N> columns[N];
        load_transposed<N>(in, in_row, columns);
        NEQUAR_UNROLL for (unsigned j = 0; j < N; ++j) store_pack<N>(out + j * out_row, columns[j]);
    }
}

// out(j, i) = in(i, j) for N rows of `count` elements: N wide columns go out one below the other.
template <unsigned N, class Real>
NEQUAR_INLINE void transpose_rows(Size count, const Real* in, Size in_row, Real* out,
                                  Size out_row) {
    Size j = 0;
    for (; j + Size(N) <= count; j += N)
        transpose_block<N>(in + j, in_row, out + j * out_row, out_row);
    for (; j < count; ++j) {
        NEQUAR_UNROLL for (unsigned i = 0; i < N; ++i) out[j * out_row + i] = in[i * in_row + j];
    }
}

}  // namespace nequar::kernel::NEQUAR_UNIT
