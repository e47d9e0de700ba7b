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

// 2 to the power of five eighths of an end of the range of exponents.
template <class Real>
constexpr Real range_of_squares(int exponent) {
    Real power = 1;
    for (int i = 0; i < 5 * (exponent < 0 ? -exponent : exponent) / 8; ++i)
        power *= exponent < 0 ? Real(0.5) : Real(2);
    return power;
}

template <class Real>
bool is_absorbed(Real e, Real d0, Real d1) {
    const Real magnitude = std::abs(d0) + std::abs(d1);
    return std::abs(e) + magnitude == magnitude || std::abs(e) < std::numeric_limits<Real>::min();
}

}  // namespace

// Each rotation waits for the one before. With g = x^2 + z^2 and T = 2 x e_k - z (d_k - d_(k+1)),
//
//     c = x / sqrt(g),  s = -z / sqrt(g),  t = T / sqrt(g),   so   c t = x T / g,  s t = -z T / g
//
// and with 1 / sqrt(g) = sqrt(g) (1 / g) the division and the root wait for nothing but g. The
// signs are those of `givens_rotation`: the larger of c and s is not negative. Where g, or a
// product with T, might leave the range, that function is called.
//
// In a block whose elements fall over the whole range the bulge z can vanish by underflow, and the
// shift would never reach the end of the block: the matrix would stay as it is for ever. What is
// left in the row above, x, is nothing beside the shifted end then, and the chase begins anew.
template <class Real>
void implicit_qr_step(Real* d, Real* e, Size first, Size last, Real* pairs) {
    constexpr Real smallest = range_of_squares<Real>(std::numeric_limits<Real>::min_exponent);
    constexpr Real largest = range_of_squares<Real>(std::numeric_limits<Real>::max_exponent);
    const Real shift = wilkinson_shift(d[last - 1], e[last - 1], d[last]);
    const Real size_at_end = std::abs(shift) + std::abs(e[last - 1]);
    Real x = d[first] - shift;
    Real z = e[first];
    Size begin = first;
    Real diagonal = d[first];
    Real off = e[first];
    for (Size k = first; k < last; ++k) {
        if (z == 0 && k > begin && std::abs(x) + size_at_end == size_at_end) {
            e[k - 1] = x;
            x = diagonal - shift;
            z = off;
            begin = k;
        }
        const Real next = d[k + 1];
        const Real following = k + 1 < last ? e[k + 1] : Real(0);
        const Real x_squared = x * x;
        const Real z_squared = z * z;
        const Real squares = x_squared + z_squared;
        const Real product = 2 * x * off - z * (diagonal - next);
        Rotation<Real> g;
        Real r;
        Real moved;  // from d_k to d_(k+1)
        if (squares > smallest && squares < largest) {
            const Real inverse = 1 / squares;
            // no branch: which is larger cannot be foretold
            const Real sign_of_x = std::copysign(Real(1), x);
            const Real to_sign_of_z = std::copysign(Real(1), -z) - sign_of_x;
            const Real sign = sign_of_x + to_sign_of_z * Real(z_squared > x_squared);
            r = sign * std::sqrt(squares);
            const Real root = std::sqrt(squares) * (sign * inverse);
            g = {x * root, -z * root};
            moved = -(z * product) * inverse;
            x = (x * product) * inverse - off;
            off = g.c * following;
            z = (z * following) * root;
        } else {
            g = givens_rotation(x, z);
            r = g.c * x - g.s * z;
            const Real t = g.s * (diagonal - next) + 2 * g.c * off;
            moved = g.s * t;
            x = g.c * t - off;
            off = g.c * following;
            z = -g.s * following;
        }
        if (k > begin) e[k - 1] = r;
        d[k] = diagonal - moved;
        diagonal = next + moved;
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
                                     const RotatedIdentity<Real>* target) {
    limit = std::min<std::int64_t>(limit, 50 * n + 100);
    std::int64_t count = 0;
    std::int64_t applied = 0;  // so far have the rows of G filled towards the right
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
            if (target->sweeps->is_full()) {
                target->sweeps->apply(target->rows, applied);
                applied = count - 1;
            }
            pairs = target->sweeps->begin(first, last);
        }
        implicit_qr_step(d, e, first, last, pairs);
    }
    if (target != nullptr) target->sweeps->apply(target->rows, applied);
    return count;
}

#define NEQUAR_INSTANTIATE(Real)                                                    \
    template void implicit_qr_step(Real*, Real*, Size, Size, Real*);                \
    template std::int64_t diagonalize_tridiagonal(Size, Real*, Real*, std::int64_t, \
                                                  const RotatedIdentity<Real>*);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
