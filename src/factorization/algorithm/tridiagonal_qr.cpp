#include "factorization/algorithm/tridiagonal_qr.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "factorization/algorithm/rotation.h"

namespace nequar {

namespace {

// The eigenvalue of | a b | closer to c. The quotient first: b^2 might underflow.
//                   | b c |
template <class Real>
Real wilkinson_shift(Real a, Real b, Real c) {
    const Real delta = (a - c) / 2;
    if (delta == 0) return c - std::abs(b);
    return c - b * (b / (delta + std::copysign(std::hypot(delta, b), delta)));
}

// The rotation of `givens_rotation` and r = c x - s z, in fewer steps where the squares are safe:
// the larger of c and s is not negative.
template <class Real>
inline Real rotate_to_zero(Real x, Real z, Rotation<Real>& rotation) {
    constexpr Real smallest = std::numeric_limits<Real>::min() * 0x1p40f;
    constexpr Real largest = std::numeric_limits<Real>::max() / 4;
    const Real squares = x * x + z * z;
    if (squares > smallest && squares < largest) {
        const Real r = std::copysign(std::sqrt(squares), std::abs(z) > std::abs(x) ? -z : x);
        rotation = {x / r, -z / r};
        return r;
    }
    rotation = givens_rotation(x, z);
    return rotation.c * x - rotation.s * z;
}

template <class Real>
bool is_absorbed(Real e, Real d0, Real d1) {
    const Real magnitude = std::abs(d0) + std::abs(d1);
    return std::abs(e) + magnitude == magnitude || std::abs(e) < std::numeric_limits<Real>::min();
}

}  // namespace

template <class Real>
void implicit_qr_step(Real* d, Real* e, Size first, Size last, Real* pairs) {
    Real x = d[first] - wilkinson_shift(d[last - 1], e[last - 1], d[last]);
    Real z = e[first];
    Real diagonal = d[first];
    Real off = e[first];
    for (Size k = first; k < last; ++k) {
        Rotation<Real> g;
        const Real r = rotate_to_zero(x, z, g);
        if (k > first) e[k - 1] = r;
        const Real t = g.s * (diagonal - d[k + 1]) + 2 * g.c * off;
        d[k] = diagonal - g.s * t;
        diagonal = d[k + 1] + g.s * t;
        x = g.c * t - off;
        if (k + 1 < last) {
            z = -g.s * e[k + 1];
            off = g.c * e[k + 1];
        }
        if (pairs != nullptr) {
            pairs[2 * k] = g.c;
            pairs[2 * k + 1] = g.s;
        }
    }
    e[last - 1] = x;
    d[last] = diagonal;
}

template <class Real>
std::int64_t diagonalize_tridiagonal(Size n, Real* d, Real* e, std::int64_t limit,
                                     const RotatedRows<Real>* target) {
    limit = std::min<std::int64_t>(limit, 50 * n + 100);
    std::int64_t count = 0;
    Size last = n - 1;
    while (last > 0) {
        // Only the block that the step before has changed needs looking at again; what is above the
        // first absorbed element from below waits for its turn.
        if (is_absorbed(e[last - 1], d[last - 1], d[last])) {
            e[--last] = 0;
            continue;
        }
        if (++count >= limit) break;
        Size first = last - 1;
        while (first > 0 && !is_absorbed(e[first - 1], d[first - 1], d[first])) --first;
        if (first > 0) e[first - 1] = 0;
        Real* pairs = nullptr;
        if (target != nullptr) {
            if (target->sweeps->is_full()) target->sweeps->apply(target->rows);
            pairs = target->sweeps->begin(first, last);
        }
        implicit_qr_step(d, e, first, last, pairs);
    }
    if (target != nullptr) target->sweeps->apply(target->rows);
    return count;
}

#define NEQUAR_INSTANTIATE(Real)                                                    \
    template void implicit_qr_step(Real*, Real*, Size, Size, Real*);                \
    template std::int64_t diagonalize_tridiagonal(Size, Real*, Real*, std::int64_t, \
                                                  const RotatedRows<Real>*);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
