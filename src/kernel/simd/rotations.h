// Sweeps of plane rotations over adjacent rows, several sweeps at once.
//
// Rotation (r, i) of sweep r takes rows i and i + 1. It has to follow (r, i - 1) and (r - 1, i +
// 1), so D sweeps can go down the rows together, each one row behind the one before: a wave at row
// w is
//
//        row w        |            (D-1, w)
//        row w + 1    |   ...      (D-1, w)         rotations (0, w + D - 1), (1, w + D - 2), ...,
//        ...          |   (1, .)                    (D - 1, w), in this order
//        row w + D    |   (0, w + D - 1)
//
// A wave holds D + 1 rows of a strip of columns in registers: it loads row w + D, and row w is done
// with and stored. So D rotations cost one load and one store. The ends, where a wave would reach
// over the first or last row, are done rotation by rotation.
//
// Van Zee, van de Geijn, Quintana-Orti, Restructuring the tridiagonal and bidiagonal QR algorithms
// for performance, ACM TOMS 40, 2014.
#pragma once

#include "kernel/simd/partition.h"
#include "kernel/table.h"

namespace nequar::kernel::NEQUAR_UNIT {

#if NEQUAR_VECTOR_BYTES == 64
inline constexpr unsigned kWaveDepth =
    4;  // sweeps of a wave: (depth + 1) strip registers hold rows
#else
inline constexpr unsigned kWaveDepth = 2;
#endif
inline constexpr unsigned kWaveStrip = 4;  // vectors across a strip

// While one stands, what is below the smallest normal number is zero. Rotated from the identity, a
// matrix has elements that are products of hundreds of sines, and arithmetic on numbers that are
// not normal is a hundred times slower. What it guards is a function that is not inlined, so that
// nothing moves out.
#if defined(__SSE2__)
class TinyIsZero {
public:
    TinyIsZero() : before_(_mm_getcsr()) { _mm_setcsr(before_ | kFlushResults | kFlushOperands); }
    ~TinyIsZero() { _mm_setcsr(before_); }
    TinyIsZero(const TinyIsZero&) = delete;
    TinyIsZero& operator=(const TinyIsZero&) = delete;

private:
    static constexpr unsigned kFlushResults = 0x8000;
    static constexpr unsigned kFlushOperands = 0x0040;
    unsigned before_;
};
#else
struct TinyIsZero {
    TinyIsZero() {}
};
#endif

// A strip of columns: U vectors, or less than one.
template <class Real, unsigned U>
struct WholeStrip {
    NEQUAR_INLINE Vector<Real> get(const Real* p, unsigned u) const {
        return load(p + Size(u) * kLanes<Real>);
    }
    NEQUAR_INLINE void put(Real* p, unsigned u, const Vector<Real>& v) const {
        store(p + Size(u) * kLanes<Real>, v);
    }
};
template <class Real>
struct PartialStrip {
    FirstLanes<Real> lanes;
    NEQUAR_INLINE Vector<Real> get(const Real* p, unsigned) const { return load(p, lanes); }
    NEQUAR_INLINE void put(Real* p, unsigned, const Vector<Real>& v) const { store(p, v, lanes); }
};

// (x, y) := (c x - s y, s x + c y), the pair (c, s) from memory
template <class Real, unsigned U>
NEQUAR_INLINE void rotate_vectors(const Real* pair, Vector<Real> (&x)[U], Vector<Real> (&y)[U]) {
    const Vector<Real> c = broadcast(pair[0]);
    const Vector<Real> s = broadcast(pair[1]);
    NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) {
        const Vector<Real> old = x[u];
        x[u] = multiply_subtract_from(s, y[u], c * old);
        y[u] = multiply_add(s, old, c * y[u]);
    }
}

// Rotations [begin, end) of one sweep, the row between two of them kept in registers.
template <class Real, unsigned U, class Strip>
NEQUAR_INLINE void rotate_one_by_one(const Strip& strip, const Real* pairs, Size begin, Size end,
                                     Real* a, Size row_stride) {
    if (begin >= end) return;
    Vector<Real> x[U];
    Vector<Real> y[U];
    NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) x[u] = strip.get(a + begin * row_stride, u);
    for (Size i = begin; i < end; ++i) {
        Real* const row = a + i * row_stride;
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) y[u] = strip.get(row + row_stride, u);
        rotate_vectors<Real, U>(pairs + 2 * i, x, y);
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) {
            strip.put(row, u, x[u]);
            x[u] = y[u];
        }
    }
    NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) strip.put(a + end * row_stride, u, x[u]);
}

// D sweeps of `count` >= D rotations each over one strip.
template <unsigned D, unsigned U, class Real, class Strip>
NEQUAR_INLINE void rotate_in_waves(const Strip& strip, const Real* pairs, Size sweep_stride,
                                   Size count, Real* a, Size row_stride) {
    for (unsigned r = 0; r + 1 < D; ++r) {
        rotate_one_by_one<Real, U>(strip, pairs + r * sweep_stride, 0, Size(D - 1 - r), a,
                                   row_stride);
    }
    Vector<Real> row[D + 1][U];
    NEQUAR_UNROLL for (unsigned k = 0; k < D; ++k) {
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) {
            row[k][u] = strip.get(a + k * row_stride, u);
        }
    }
    // Wave w, with row w + k in row[(first + k) % (D + 1)].
    const auto wave = [&](Size w, unsigned first) __attribute__((always_inline)) {
        Real* const top = a + w * row_stride;
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) {
            row[(first + D) % (D + 1)][u] = strip.get(top + D * row_stride, u);
        }
        NEQUAR_UNROLL for (unsigned r = 0; r < D; ++r) {
            rotate_vectors<Real, U>(pairs + r * sweep_stride + 2 * (w + D - 1 - r),
                                    row[(first + D - 1 - r) % (D + 1)],
                                    row[(first + D - r) % (D + 1)]);
        }
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) strip.put(top, u, row[first][u]);
    };
    const Size waves = count - Size(D) + 1;
    Size w = 0;
    for (; w + Size(D) + 1 <= waves; w += Size(D) + 1) {
        NEQUAR_UNROLL for (unsigned k = 0; k <= D; ++k) wave(w + k, k);
    }
    for (; w < waves; ++w) {
        wave(w, 0);
        NEQUAR_UNROLL for (unsigned k = 0; k < D; ++k) {
            NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) row[k][u] = row[k + 1][u];
        }
    }
    NEQUAR_UNROLL for (unsigned k = 0; k < D; ++k) {
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) {
            strip.put(a + (waves + k) * row_stride, u, row[k][u]);
        }
    }
    for (unsigned r = 1; r < D; ++r) {
        rotate_one_by_one<Real, U>(strip, pairs + r * sweep_stride, count - Size(r), count, a,
                                   row_stride);
    }
}

// All sweeps over one strip.
template <unsigned U, class Real, class Strip>
NEQUAR_INLINE void rotate_strip(const Strip& strip, Size sweeps, Size count, const Real* pairs,
                                Size sweep_stride, Real* a, Size row_stride) {
    Size r = 0;
    if (count >= Size(kWaveDepth)) {
        for (; r + Size(kWaveDepth) <= sweeps; r += Size(kWaveDepth)) {
            rotate_in_waves<kWaveDepth, U>(strip, pairs + r * sweep_stride, sweep_stride, count, a,
                                           row_stride);
        }
    }
    for (; r < sweeps; ++r) {
        rotate_one_by_one<Real, U>(strip, pairs + r * sweep_stride, 0, count, a, row_stride);
    }
}

template <class Real>
__attribute__((noinline)) void rotate_strips(Size sweeps, Size count, Size n, const Real* pairs,
                                             Size sweep_stride, Real* a, Size row_stride) {
    constexpr Size lanes = kLanes<Real>;
    constexpr Size strip = Size(kWaveStrip) * lanes;
    Size j = 0;
    for (; j + strip <= n; j += strip) {
        rotate_strip<kWaveStrip>(WholeStrip<Real, kWaveStrip>{}, sweeps, count, pairs, sweep_stride,
                                 a + j, row_stride);
    }
    for (; j < n; j += lanes) {
        const PartialStrip<Real> part = {first_lanes<Real>(smaller(n - j, lanes))};
        rotate_strip<1>(part, sweeps, count, pairs, sweep_stride, a + j, row_stride);
    }
}

template <class Real>
void rotate_rows(Size sweeps, Size count, Size n, const Real* pairs, Size sweep_stride, Real* a,
                 Size row_stride) {
    if (count <= 0) return;
    const TinyIsZero tiny;
    rotate_strips(sweeps, count, n, pairs, sweep_stride, a, row_stride);
}

// ---- Jacobi rotations: one row with many --------------------------------------------------------

// (x, y) := (x - s (y + x tau), y + s (x - y tau))
template <class Real>
NEQUAR_INLINE void rotate_by_tau(const Vector<Real>& s, const Vector<Real>& tau, Vector<Real>& x,
                                 Vector<Real>& y) {
    const Vector<Real> from_x = multiply_subtract_from(y, tau, x);
    x = multiply_subtract_from(s, multiply_add(x, tau, y), x);
    y = multiply_add(s, from_x, y);
}

template <class Real, unsigned U, class Strip>
NEQUAR_INLINE void rotate_strip_with_rows(const Strip& strip, Size count, Real* x, Real* rows,
                                          Size row_stride, const Real* pairs) {
    Vector<Real> vx[U];
    NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) vx[u] = strip.get(x, u);
    for (Size q = 0; q < count; ++q) {
        if (pairs[2 * q] == 0) continue;
        const Vector<Real> s = broadcast(pairs[2 * q]);
        const Vector<Real> tau = broadcast(pairs[2 * q + 1]);
        Real* const row = rows + q * row_stride;
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) {
            Vector<Real> y = strip.get(row, u);
            rotate_by_tau<Real>(s, tau, vx[u], y);
            strip.put(row, u, y);
        }
    }
    NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) strip.put(x, u, vx[u]);
}

template <class Real>
void rotate_with_rows(Size count, Size n, Real* x, Real* rows, Size row_stride, const Real* pairs) {
    constexpr Size lanes = kLanes<Real>;
    constexpr Size strip = Size(kWaveStrip) * lanes;
    Size j = 0;
    for (; j + strip <= n; j += strip) {
        rotate_strip_with_rows<Real, kWaveStrip>(WholeStrip<Real, kWaveStrip>{}, count, x + j,
                                                 rows + j, row_stride, pairs);
    }
    for (; j < n; j += lanes) {
        const PartialStrip<Real> part = {first_lanes<Real>(smaller(n - j, lanes))};
        rotate_strip_with_rows<Real, 1>(part, count, x + j, rows + j, row_stride, pairs);
    }
}

}  // namespace nequar::kernel::NEQUAR_UNIT
