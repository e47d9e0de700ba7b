// Sweeps of plane rotations over adjacent rows, several sweeps at once.
//
// A rotation is three shears, three multiply-adds where the plain form takes two of them and two
// products:
//
//   | c -s |   | 1 -t | | 1  0 | | 1 -t |
//   | s  c | = | 0  1 | | s  1 | | 0  1 |,    t = s / (1 + c)
//
// Rotation (r, i) of sweep r takes rows i and i + 1. It has to follow (r, i - 1) and (r - 1, i +
// 1), so D sweeps can go down the rows together, each L rows behind the one before: a wave at row w
// is, with L = 2 and D = 3,
//
//        row w        |            (2, w)
//        row w + 1    |            (2, w)
//        row w + 2    |   (1, w+2)                  rotations (0, w + 4), (1, w + 2), (2, w);
//        row w + 3    |   (1, w+2)                  none waits for another
//        row w + 4    |   (0, w+4)
//        row w + 5    |   (0, w+4)
//
// A wave holds L (D - 1) + 2 rows of a strip of columns in registers: it loads the last of them,
// and row w is done with and stored. So D rotations cost one load and one store. The ends, where a
// wave would reach over the first or last row, are done rotation by rotation.
//
// Van Zee, van de Geijn, Quintana-Orti, Restructuring the tridiagonal and bidiagonal QR algorithms
// for performance, ACM TOMS 40, 2014.
#pragma once

#include "kernel/simd/partition.h"
#include "kernel/table.h"

namespace nequar::kernel::NEQUAR_UNIT {

#if NEQUAR_VECTOR_BYTES == 64
inline constexpr unsigned kWaveDepth = 3;  // D, sweeps of a wave
inline constexpr unsigned kWaveLag = 2;    // L
#else
inline constexpr unsigned kWaveDepth = 2;
inline constexpr unsigned kWaveLag = 1;
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

// A strip of columns: U vectors, or the last of them not whole.
template <class Real, unsigned U>
struct WholeStrip {
    NEQUAR_INLINE Vector<Real> get(const Real* p, unsigned u) const {
        return load(p + Size(u) * kLanes<Real>);
    }
    NEQUAR_INLINE void put(Real* p, unsigned u, const Vector<Real>& v) const {
        store(p + Size(u) * kLanes<Real>, v);
    }
};
template <class Real, unsigned U>
struct PartialStrip {
    FirstLanes<Real> lanes;
    NEQUAR_INLINE Vector<Real> get(const Real* p, unsigned u) const {
        const Real* const place = p + Size(u) * kLanes<Real>;
        return u + 1 < U ? load(place) : load(place, lanes);
    }
    NEQUAR_INLINE void put(Real* p, unsigned u, const Vector<Real>& v) const {
        Real* const place = p + Size(u) * kLanes<Real>;
        if (u + 1 < U)
            store(place, v);
        else
            store(place, v, lanes);
    }
};

// (x, y) := (c x - s y, s x + c y) for C of them that have no row in common: rows x[k], y[k], the
// pair (t, s) at pairs[k].
template <unsigned C, unsigned U, class Real>
NEQUAR_INLINE void rotate_vectors(const Real* const (&pairs)[C], Vector<Real>* const (&x)[C],
                                  Vector<Real>* const (&y)[C]) {
    Vector<Real> t[C];
    Vector<Real> s[C];
    NEQUAR_UNROLL for (unsigned k = 0; k < C; ++k) {
        t[k] = broadcast(pairs[k][0]);
        s[k] = broadcast(pairs[k][1]);
    }
    NEQUAR_UNROLL for (unsigned k = 0; k < C; ++k) {
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) {
            x[k][u] = multiply_subtract_from(t[k], y[k][u], x[k][u]);
        }
    }
    NEQUAR_UNROLL for (unsigned k = 0; k < C; ++k) {
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) {
            y[k][u] = multiply_add(s[k], x[k][u], y[k][u]);
        }
    }
    NEQUAR_UNROLL for (unsigned k = 0; k < C; ++k) {
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) {
            x[k][u] = multiply_subtract_from(t[k], y[k][u], x[k][u]);
        }
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
        rotate_vectors<1, U, Real>({pairs + 2 * i}, {x}, {y});
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) {
            strip.put(row, u, x[u]);
            x[u] = y[u];
        }
    }
    NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) strip.put(a + end * row_stride, u, x[u]);
}

// D sweeps of `count` > L (D - 1) rotations each over one strip.
template <unsigned D, unsigned L, unsigned U, class Real, class Strip>
NEQUAR_INLINE void rotate_in_waves(const Strip& strip, const Real* pairs, Size sweep_stride,
                                   Size count, Real* a, Size row_stride) {
    constexpr unsigned W = L * (D - 1) + 2;  // rows of a wave
    for (unsigned r = 0; r + 1 < D; ++r) {
        rotate_one_by_one<Real, U>(strip, pairs + r * sweep_stride, 0, Size(L * (D - 1 - r)), a,
                                   row_stride);
    }
    Vector<Real> row[W][U];
    NEQUAR_UNROLL for (unsigned k = 0; k + 1 < W; ++k) {
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) {
            row[k][u] = strip.get(a + k * row_stride, u);
        }
    }
    // Wave w, with row w + k in row[(first + k) % W].
    const auto wave = [&](Size w, unsigned first) __attribute__((always_inline)) {
        Real* const top = a + w * row_stride;
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) {
            row[(first + W - 1) % W][u] = strip.get(top + (W - 1) * row_stride, u);
        }
        if constexpr (L == 2 && D == 3) {
            const Real* const last = pairs + 2 * w;
            rotate_vectors<3, U, Real>(
                {last + 8, last + sweep_stride + 4, last + 2 * sweep_stride},
                {row[(first + 4) % W], row[(first + 2) % W], row[first]},
                {row[(first + 5) % W], row[(first + 3) % W], row[(first + 1) % W]});
        } else {
            NEQUAR_UNROLL for (unsigned r = 0; r < D; ++r) {
                const unsigned k = L * (D - 1 - r);
                rotate_vectors<1, U, Real>({pairs + r * sweep_stride + 2 * (w + Size(k))},
                                           {row[(first + k) % W]}, {row[(first + k + 1) % W]});
            }
        }
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) strip.put(top, u, row[first][u]);
    };
    const Size waves = count - Size(L * (D - 1));
    Size w = 0;
    for (; w + Size(W) <= waves; w += Size(W)) {
        NEQUAR_UNROLL for (unsigned k = 0; k < W; ++k) wave(w + k, k);
    }
    for (; w < waves; ++w) {
        wave(w, 0);
        NEQUAR_UNROLL for (unsigned k = 0; k + 1 < W; ++k) {
            NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) row[k][u] = row[k + 1][u];
        }
    }
    NEQUAR_UNROLL for (unsigned k = 0; k + 1 < W; ++k) {
        NEQUAR_UNROLL for (unsigned u = 0; u < U; ++u) {
            strip.put(a + (waves + k) * row_stride, u, row[k][u]);
        }
    }
    for (unsigned r = 1; r < D; ++r) {
        rotate_one_by_one<Real, U>(strip, pairs + r * sweep_stride, count - Size(L * r), count, a,
                                   row_stride);
    }
}

// All sweeps over one strip.
template <unsigned U, class Real, class Strip>
NEQUAR_INLINE void rotate_strip(const Strip& strip, Size sweeps, Size count, const Real* pairs,
                                Size sweep_stride, Real* a, Size row_stride) {
    Size r = 0;
    if (count > Size(kWaveLag * (kWaveDepth - 1))) {
        for (; r + Size(kWaveDepth) <= sweeps; r += Size(kWaveDepth)) {
            rotate_in_waves<kWaveDepth, kWaveLag, U>(strip, pairs + r * sweep_stride, sweep_stride,
                                                     count, a, row_stride);
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
    for (; j + lanes < n; j += 2 * lanes) {
        const PartialStrip<Real, 2> part = {first_lanes<Real>(smaller(n - j - lanes, lanes))};
        rotate_strip<2>(part, sweeps, count, pairs, sweep_stride, a + j, row_stride);
    }
    if (j < n) {
        const PartialStrip<Real, 1> part = {first_lanes<Real>(n - j)};
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
        const PartialStrip<Real, 1> part = {first_lanes<Real>(smaller(n - j, lanes))};
        rotate_strip_with_rows<Real, 1>(part, count, x + j, rows + j, row_stride, pairs);
    }
}

}  // namespace nequar::kernel::NEQUAR_UNIT
