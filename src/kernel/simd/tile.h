// The micro-kernels of gemm: one tile of C, kept in registers over the whole length k.
//
//   C(R x w) := alpha A(R x k) B(k x w) (+ C),   w = NV vectors, the last one possibly partial
//
//                 B  k x w   rows of NV vectors, unit stride along a row
//   A  R x k      C  R x w   one broadcast of a(r, p) meets NV vectors of b(p, :)
//
// A is read through two strides, B through one along its columns; packed operands are operands of
// short strides. C has unit stride along its rows.
//
// R x NV accumulators, NV vectors of B and one broadcast fill the register file: 16 registers hold
// 6 x 2 or 4 x 3 accumulators, 32 hold 8 x 3, 12 x 2 or 24 x 1. At least 8 accumulators are needed
// to hide the latency of the multiply-add (4 cycles, two a cycle). (Van Zee, van de Geijn, BLIS: A
// Framework for Rapidly Instantiating BLAS Functionality, ACM TOMS 41, 2015.)
#pragma once

#include "kernel/simd/vector.h"

namespace nequar::kernel::NEQUAR_UNIT {

// What one call of a micro-kernel needs.
template <class Real>
struct TileTask {
    Size k;
    const Real* a;
    Size a_row;
    Size a_column;
    const Real* b;
    Size b_row;
    Real* c;
    Size c_row;
    Real alpha;
    bool accumulate;
    bool prefetch;          // C is far away
    FirstLanes<Real> last;  // lanes of the last vector, where it is partial
};

template <class Real>
using TileKernel = void (*)(const TileTask<Real>&);

// ---- the shapes of tiles -----------------------------------------------------------------------

#if NEQUAR_VECTOR_BYTES == 64
inline constexpr unsigned kMostVectors = 3;
inline constexpr unsigned kPackedVectors = 3;
inline constexpr unsigned kPackedRows = 8;
constexpr unsigned most_rows(unsigned vectors) {
    return vectors == 3 ? 8 : vectors == 2 ? 12 : 24;
}
inline constexpr unsigned kMostRows = 24;
inline constexpr unsigned kTileVectors = 24;  // of the largest tiles
#else
inline constexpr unsigned kMostVectors = 3;
inline constexpr unsigned kPackedVectors = 2;
inline constexpr unsigned kPackedRows = 6;
constexpr unsigned most_rows(unsigned vectors) {
    return vectors == 3 ? 4 : vectors == 2 ? 6 : 8;
}
inline constexpr unsigned kMostRows = 8;
inline constexpr unsigned kTileVectors = 12;
#endif

// ---- the kernels -------------------------------------------------------------------------------

// A pointer of which the compiler does not know that it is another one plus something: it stays in
// a register of its own instead of being computed anew at each step.
template <class Real>
NEQUAR_INLINE const Real* opaque(const Real* p) {
    __asm__("" : "+r"(p));
    return p;
}

// Rows of A that are reached from one pointer by the strides that an address can hold.
inline constexpr unsigned kRowsOfPointer = 5;

// acc += a(:, p) b(p, :), then on to the next p.
template <unsigned R, unsigned NV, bool Partial, class Real>
NEQUAR_INLINE void accumulate_step(const Real* (&a)[(R + kRowsOfPointer - 1) / kRowsOfPointer],
                                   Size a_row, Size a_column, const Real*& b, Size b_row,
                                   FirstLanes<Real> last, Vector<Real> (&acc)[R][NV]) {
    Vector<Real> row[NV];
    NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
        row[v] =
            Partial && v == NV - 1 ? load(b + v * kLanes<Real>, last) : load(b + v * kLanes<Real>);
    }
    NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
        const Vector<Real> x = broadcast(a[r / kRowsOfPointer][Size(r % kRowsOfPointer) * a_row]);
        NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
            acc[r][v] = multiply_add(x, row[v], acc[r][v]);
        }
    }
    NEQUAR_UNROLL for (auto& pointer : a) pointer += a_column;
    b += b_row;
}

// acc += A B over k steps.
template <unsigned R, unsigned NV, bool Partial, class Real>
NEQUAR_INLINE void accumulate_tile(Size k, const Real* a, Size a_row, Size a_column, const Real* b,
                                   Size b_row, FirstLanes<Real> last, Vector<Real> (&acc)[R][NV]) {
    constexpr unsigned pointers = (R + kRowsOfPointer - 1) / kRowsOfPointer;
    const Real* rows[pointers];
    NEQUAR_UNROLL for (unsigned i = 0; i < pointers; ++i) {
        rows[i] = opaque(a);
        a += Size(kRowsOfPointer) * a_row;
    }
    for (; k > 0; --k) accumulate_step<R, NV, Partial>(rows, a_row, a_column, b, b_row, last, acc);
}

template <class Real, unsigned R, unsigned NV, bool Partial>
void tile(const TileTask<Real>& task) {
    constexpr Size lanes = kLanes<Real>;
    const Size c_row = task.c_row;
    const FirstLanes<Real> last = task.last;
    Real* c = task.c;
    if (task.prefetch) {
        constexpr Size line = 64 / Size(sizeof(Real));
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
            NEQUAR_UNROLL for (Size j = 0; j < Size(NV) * lanes; j += line) {
                prefetch_for_writing(c + r * c_row + j);
            }
        }
    }
    Vector<Real> acc[R][NV];
    NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r) {
        NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) acc[r][v] = Vector<Real>{};
    }
    accumulate_tile<R, NV, Partial>(task.k, task.a, task.a_row, task.a_column, task.b, task.b_row,
                                    last, acc);
    const Vector<Real> alpha = broadcast(task.alpha);
    if (task.accumulate) {
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r, c += c_row) {
            NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
                Real* p = c + v * lanes;
                if (Partial && v == NV - 1) {
                    store(p, multiply_add(alpha, acc[r][v], load(p, last)), last);
                } else {
                    store(p, multiply_add(alpha, acc[r][v], load(p)));
                }
            }
        }
    } else {
        NEQUAR_UNROLL for (unsigned r = 0; r < R; ++r, c += c_row) {
            NEQUAR_UNROLL for (unsigned v = 0; v < NV; ++v) {
                Real* p = c + v * lanes;
                if (Partial && v == NV - 1) {
                    store(p, alpha * acc[r][v], last);
                } else {
                    store(p, alpha * acc[r][v]);
                }
            }
        }
    }
}

// All kernels of one element type, found by index: [partial][vectors - 1][rows - 1].
template <class Real>
struct TileSet {
    TileKernel<Real> kernel[2][kMostVectors][kMostRows];
};

template <class Real, unsigned NV = 1, unsigned R = 1>
constexpr void enter_tiles(TileSet<Real>& set) {
    if constexpr (NV <= kMostVectors) {
        set.kernel[false][NV - 1][R - 1] = tile<Real, R, NV, false>;
        set.kernel[true][NV - 1][R - 1] = tile<Real, R, NV, true>;
        if constexpr (R < most_rows(NV)) {
            enter_tiles<Real, NV, R + 1>(set);
        } else {
            enter_tiles<Real, NV + 1, 1>(set);
        }
    }
}

template <class Real>
constexpr TileSet<Real> all_tiles() {
    TileSet<Real> set = {};
    enter_tiles<Real>(set);
    return set;
}

template <class Real>
inline constexpr TileSet<Real> kTiles = all_tiles<Real>();

template <class Real>
NEQUAR_INLINE TileKernel<Real> tile_kernel(bool partial, Size vectors, Size rows) {
    return kTiles<Real>.kernel[partial][vectors - 1][rows - 1];
}

}  // namespace nequar::kernel::NEQUAR_UNIT
