// Level 1 without sums: out_i = f(a_i, b_i), on contiguous vectors in whole vectors and a partial
// last one; strided vectors element by element.
//
// Each group of vectors is loaded before it is stored, so out may be one of the inputs.
#pragma once

#include "kernel/simd/shuffle.h"

namespace nequar::kernel::NEQUAR_UNIT {

inline constexpr unsigned kGroup = 4;  // vectors in flight

// out := f(a)
template <class Real, class Function>
NEQUAR_INLINE void map(Size n, const Real* a, Real* out, Function f) {
    constexpr Size lanes = kLanes<Real>;
    Size i = 0;
    for (; i + Size(kGroup) * lanes <= n; i += Size(kGroup) * lanes) {
        Vector<Real> v[kGroup];
        NEQUAR_UNROLL for (unsigned u = 0; u < kGroup; ++u) v[u] = f(load(a + i + u * lanes));
        NEQUAR_UNROLL for (unsigned u = 0; u < kGroup; ++u) store(out + i + u * lanes, v[u]);
    }
    for (; i + lanes <= n; i += lanes) store(out + i, f(load(a + i)));
    if (i < n) {
        const FirstLanes<Real> last = first_lanes<Real>(n - i);
        store(out + i, f(load(a + i, last)), last);
    }
}

// out := f(a, b)
template <class Real, class Function>
NEQUAR_INLINE void map(Size n, const Real* a, const Real* b, Real* out, Function f) {
    constexpr Size lanes = kLanes<Real>;
    Size i = 0;
    for (; i + Size(kGroup) * lanes <= n; i += Size(kGroup) * lanes) {
        Vector<Real> v[kGroup];
        NEQUAR_UNROLL for (unsigned u = 0; u < kGroup; ++u) {
            v[u] = f(load(a + i + u * lanes), load(b + i + u * lanes));
        }
        NEQUAR_UNROLL for (unsigned u = 0; u < kGroup; ++u) store(out + i + u * lanes, v[u]);
    }
    for (; i + lanes <= n; i += lanes) store(out + i, f(load(a + i), load(b + i)));
    if (i < n) {
        const FirstLanes<Real> last = first_lanes<Real>(n - i);
        store(out + i, f(load(a + i, last), load(b + i, last)), last);
    }
}

template <class Real>
void add(Size n, const Real* a, const Real* b, Real* out) {
    map(n, a, b, out, [](Vector<Real> x, Vector<Real> y) { return x + y; });
}

template <class Real>
void subtract(Size n, const Real* a, const Real* b, Real* out) {
    map(n, a, b, out, [](Vector<Real> x, Vector<Real> y) { return x - y; });
}

template <class Real>
void add_weighted(Size n, const Real* a, const Real* b, Real wa, Real wb, Real* out) {
    const Vector<Real> va = broadcast(wa);
    const Vector<Real> vb = broadcast(wb);
    map(n, a, b, out, [=](Vector<Real> x, Vector<Real> y) { return multiply_add(va, x, vb * y); });
}

template <class Real>
void add_constant(Size n, const Real* a, Real c, Real* out) {
    const Vector<Real> vc = broadcast(c);
    map(n, a, out, [=](Vector<Real> x) { return x + vc; });
}

template <class Real>
void multiply_by(Size n, const Real* a, Real c, Real* out) {
    const Vector<Real> vc = broadcast(c);
    map(n, a, out, [=](Vector<Real> x) { return vc * x; });
}

template <class Real>
void multiply_elementwise(Size n, const Real* a, const Real* b, Real* out) {
    map(n, a, b, out, [](Vector<Real> x, Vector<Real> y) { return x * y; });
}

template <class Real>
void fill(Size n, Real value, Real* out) {
    constexpr Size lanes = kLanes<Real>;
    const Vector<Real> v = broadcast(value);
    Size i = 0;
    for (; i + Size(kGroup) * lanes <= n; i += Size(kGroup) * lanes) {
        NEQUAR_UNROLL for (unsigned u = 0; u < kGroup; ++u) store(out + i + u * lanes, v);
    }
    for (; i + lanes <= n; i += lanes) store(out + i, v);
    if (i < n) store(out + i, v, first_lanes<Real>(n - i));
}

template <class Real>
void axpy(Size n, Real alpha, const Real* x, Size sx, Real* y, Size sy) {
    if (sx == 1 && sy == 1) {
        const Vector<Real> va = broadcast(alpha);
        map(n, x, static_cast<const Real*>(y), y,
            [=](Vector<Real> xi, Vector<Real> yi) { return multiply_add(va, xi, yi); });
        return;
    }
    for (Size i = 0; i < n; ++i) y[i * sy] += alpha * x[i * sx];
}

template <unsigned count, unsigned... Lane>
struct DescendingLanes : DescendingLanes<count - 1, Lane..., count - 1> {};
template <unsigned... Lane>
struct DescendingLanes<0, Lane...> {
    using Type = LaneList<Lane...>;
};
template <class AnyVector, unsigned... Lane>
NEQUAR_INLINE AnyVector reversed_lanes(const AnyVector& v, LaneList<Lane...>) {
    return __builtin_shufflevector(v, v, Lane...);
}
template <class Real>
NEQUAR_INLINE Vector<Real> reversed(const Vector<Real>& v) {
    return reversed_lanes(v, typename DescendingLanes<unsigned(kLanes<Real>)>::Type{});
}

// Vectors from both ends towards the middle.
template <class Real>
void add_reversed(Size n, Real alpha, Real* x) {
    constexpr Size lanes = kLanes<Real>;
    const Vector<Real> va = broadcast(alpha);
    Size i = 0;
    for (; 2 * (i + lanes) <= n; i += lanes) {
        Real* const from_end = x + n - i - lanes;
        const Vector<Real> low = load(x + i);
        const Vector<Real> high = load(from_end);
        store(x + i, multiply_add(va, reversed<Real>(high), low));
        store(from_end, multiply_add(va, reversed<Real>(low), high));
    }
    for (Size j = n - 1 - i; i <= j; ++i, --j) {
        const Real low = x[i];
        const Real high = x[j];
        x[i] = low + alpha * high;
        x[j] = high + alpha * low;
    }
}

template <class Real>
void scale(Size n, Real alpha, Real* x, Size sx) {
    if (sx == 1) {
        multiply_by(n, static_cast<const Real*>(x), alpha, x);
        return;
    }
    for (Size i = 0; i < n; ++i) x[i * sx] *= alpha;
}

template <class Real>
void copy(Size n, const Real* x, Size sx, Real* y, Size sy) {
    if (sx == 1 && sy == 1) {
        map(n, x, y, [](Vector<Real> xi) { return xi; });
        return;
    }
    for (Size i = 0; i < n; ++i) y[i * sy] = x[i * sx];
}

// (x_i, y_i) := f(x_i, y_i) in place, f working on references to vectors or single elements.
template <class Real, class Function>
NEQUAR_INLINE void map_pair(Size n, Real* x, Size sx, Real* y, Size sy, Function f) {
    constexpr Size lanes = kLanes<Real>;
    Size i = 0;
    if (sx == 1 && sy == 1) {
        for (; i + 2 * lanes <= n; i += 2 * lanes) {
            Vector<Real> x0 = load(x + i), x1 = load(x + i + lanes);
            Vector<Real> y0 = load(y + i), y1 = load(y + i + lanes);
            f(x0, y0);
            f(x1, y1);
            store(x + i, x0);
            store(x + i + lanes, x1);
            store(y + i, y0);
            store(y + i + lanes, y1);
        }
        for (; i < n; i += lanes) {
            const FirstLanes<Real> part = first_lanes<Real>(n - i < lanes ? n - i : lanes);
            Vector<Real> x0 = load(x + i, part);
            Vector<Real> y0 = load(y + i, part);
            f(x0, y0);
            store(x + i, x0, part);
            store(y + i, y0, part);
        }
        return;
    }
    for (; i < n; ++i) {
        Real xi = x[i * sx];
        Real yi = y[i * sy];
        f(xi, yi);
        x[i * sx] = xi;
        y[i * sy] = yi;
    }
}

template <class Real>
void swap(Size n, Real* x, Size sx, Real* y, Size sy) {
    map_pair(n, x, sx, y, sy, [](auto& xi, auto& yi) {
        const auto old = xi;
        xi = yi;
        yi = old;
    });
}

template <class Real>
void rotate(Size n, Real* x, Size sx, Real* y, Size sy, Real c, Real s) {
    map_pair(n, x, sx, y, sy, [=](auto& xi, auto& yi) {
        const auto old = xi;
        xi = c * old - s * yi;
        yi = s * old + c * yi;
    });
}

}  // namespace nequar::kernel::NEQUAR_UNIT
