#include "factorization/algorithm/golub_kahan.h"

#include <cmath>
#include <initializer_list>
#include <limits>

namespace nequar {

namespace {

// Below this a product has lost digits to underflow.
template <class Real>
constexpr Real kLeast = std::numeric_limits<Real>::min() / std::numeric_limits<Real>::epsilon();

}  // namespace

template <class Real>
Real least_element(Size n, const Real* d, const Real* f) {
    Real largest = 0;
    for (Size i = 0; i < n; ++i) {
        if (std::abs(d[i]) > largest) largest = std::abs(d[i]);
        if (i + 1 < n && std::abs(f[i]) > largest) largest = std::abs(f[i]);
    }
    const Real least = largest * std::sqrt(kLeast<Real>);
    return least > kLeast<Real> ? least : kLeast<Real>;
}

template <class Real>
bool deflate(Real* d, Real* f, BidiagonalBlock block, Real least) {
    if (block.end <= block.begin) return false;
    Size zeros = 0;
    Real before = 0;  // the element of f to the left
    for (Size i = block.begin; i + 1 < block.end; ++i) {
        const Real size = std::abs(d[i]) + std::abs(d[i + 1]);
        const Real magnitude = std::abs(f[i]);
        f[i] = magnitude + size == size || magnitude < least ? Real(0) : f[i];
        if (std::abs(d[i]) < least && (f[i] != 0 || before != 0)) d[i] = 0;
        zeros += d[i] == 0;
        before = f[i];
    }
    Real& last = d[block.end - 1];
    if (std::abs(last) < least && before != 0) last = 0;
    return zeros + (last == 0) > 0;
}

template <class Real>
bool find_block(const Real* f, BidiagonalBlock& block) {
    Size last = block.end - 2;
    while (last >= block.begin && f[last] == 0) --last;
    if (last < block.begin) return false;
    Size first = block.begin;
    while (f[first] == 0) ++first;
    block = {first, last + 2};
    return true;
}

template <class Real>
void first_vector(const Real* d, const Real* f, BidiagonalBlock piece, Real& y, Real& z) {
    const Size p = piece.begin;
    const Size q = piece.end - 1;
    const Real above = q - 1 > p ? f[q - 2] : Real(0);
    Real scale = 0;
    for (const Real element : {d[p], f[p], above, d[q - 1], f[q - 1], d[q]})
        if (std::abs(element) > scale) scale = std::abs(element);
    const Real f2 = above / scale;
    const Real d1 = d[q - 1] / scale;
    const Real f1 = f[q - 1] / scale;
    const Real d0 = d[q] / scale;
    const Real t11 = d1 * d1 + f2 * f2;
    const Real t12 = d1 * f1;
    const Real t22 = d0 * d0 + f1 * f1;
    Real mu = t22;
    if (t12 != 0) {
        const Real h = (t11 - t22) / 2;
        const Real root = std::sqrt(h * h + t12 * t12);
        mu = t22 - t12 * (t12 / (h + (h < 0 ? -root : root)));
    }
    const Real dp = d[p] / scale;
    const Real fp = f[p] / scale;
    y = dp * dp - mu;
    z = dp * fp;
    if (std::abs(z) < kLeast<Real>) {  // a direction of few digits, or none: no shift then
        y = d[p];
        z = f[p];
    }
}

namespace {

// The rotation of rotation.h in a form with less to wait for, where no square leaves the range:
//
//   (c, s) = (a, -b) / sqrt(a^2 + b^2), with the sign that makes the larger one not negative
//
// where 1 / sqrt(q) = sqrt(q) (1 / q): root and quotient need not wait for each other.
template <class Real>
inline Rotation<Real> quick_rotation(Real a, Real b) {
    constexpr Real least = std::numeric_limits<Real>::min() / std::numeric_limits<Real>::epsilon() /
                           std::numeric_limits<Real>::epsilon();
    constexpr Real greatest = std::numeric_limits<Real>::max() / 4;
    const Real squares = a * a + b * b;
    if (b == 0 || !(squares >= least && squares <= greatest)) return givens_rotation(a, b);
    const Real larger = std::abs(b) > std::abs(a) ? -b : a;
    const Real factor = std::copysign(std::sqrt(squares) * (1 / squares), larger);
    return {a * factor, -b * factor};
}

// a := c a - s b = r of the rotation that annihilates b.
template <class Real>
inline Rotation<Real> annihilate(Real& a, Real b) {
    const Rotation<Real> g = quick_rotation(a, b);
    a = g.c * a - g.s * b;
    return g;
}

template <class Real>
void step_on_piece(Real* d, Real* f, BidiagonalBlock piece, Rotation<Real>* right,
                   Rotation<Real>* left) {
    const Size last = piece.end - 1;
    const Real size_at_end = std::abs(d[last]) + std::abs(d[last - 1]) + std::abs(f[last - 1]);
    Real y = 0, z = 0;
    first_vector(d, f, piece, y, z);
    Rotation<Real> g = quick_rotation(y, z);
    for (Size j = piece.begin; j < last; ++j) {
        // columns j and j+1:  | d(j)    f(j)   |
        //                     | bulge   d(j+1) |
        right[j] = g;
        const Real dj = d[j];
        const Real fj = f[j];
        d[j] = g.c * dj - g.s * fj;
        f[j] = g.s * dj + g.c * fj;
        const Real below = -g.s * d[j + 1];
        d[j + 1] = g.c * d[j + 1];
        // rows j and j+1:  | d(j)   f(j)     bulge  |
        //                  | 0      d(j+1)   f(j+1) |
        g = annihilate(d[j], below);
        left[j] = g;
        const Real fr = f[j];
        const Real dn = d[j + 1];
        f[j] = g.c * fr - g.s * dn;
        d[j + 1] = g.s * fr + g.c * dn;
        if (j + 1 == last) break;
        const Real beside = -g.s * f[j + 1];
        f[j + 1] = g.c * f[j + 1];
        if (std::abs(beside) < kLeast<Real> && std::abs(f[j]) + size_at_end == size_at_end) {
            first_vector(d, f, {j + 1, piece.end}, y, z);
            g = quick_rotation(y, z);
            continue;
        }
        g = annihilate(f[j], beside);
    }
}

}  // namespace

template <class Real>
void golub_kahan_step(Real* d, Real* f, BidiagonalBlock block, Rotation<Real>* right,
                      Rotation<Real>* left) {
    const Size last = block.end - 1;
    Size begin = block.begin;
    while (begin < last) {
        if (f[begin] == 0) {
            right[begin] = left[begin] = {};
            ++begin;
            continue;
        }
        Size end = begin + 1;
        while (end < last && f[end] != 0) ++end;
        step_on_piece(d, f, {begin, end + 1}, right, left);
        begin = end;
    }
}

template <class Real>
ZeroChase find_zero(const Real* d, const Real* f, BidiagonalBlock block, bool at_inner_ends) {
    for (Size i = block.end - 1; i >= block.begin; --i) {
        if (d[i] != 0) continue;
        if (i + 1 < block.end && f[i] != 0) return {ZeroChase::row, i, i};
        if (i + 1 < block.end && !at_inner_ends) continue;
        if (i > block.begin && f[i - 1] != 0) return {ZeroChase::column, i, i};
    }
    return {};
}

template <class Real>
ZeroChase chase_zero(Real* d, Real* f, BidiagonalBlock block, ZeroChase chase,
                     Rotation<Real>* rotations) {
    if (chase.kind == ZeroChase::none) return chase;
    const bool is_row = chase.kind == ZeroChase::row;
    const Size step = is_row ? 1 : -1;
    const Size end = is_row ? block.end - 1 : block.begin;
    // the element beyond line j in the direction of the chase is f(j) in a row, f(j-1) in a column
    const Size beyond = is_row ? 0 : -1;
    Real driven = f[chase.index + beyond];
    f[chase.index + beyond] = 0;
    Size j = chase.index;
    for (Size i = 0; driven != 0; ++i) {
        j += step;
        rotations[i] = annihilate(d[j], driven);
        if (j == end) break;
        driven = rotations[i].s * f[j + beyond];
        f[j + beyond] *= rotations[i].c;
    }
    chase.last = j;
    return chase;
}

namespace {

template <class Real>
inline void rotate(Real& x, Real& y, Rotation<Real> g) {
    const Real old = x;
    x = g.c * old - g.s * y;
    y = g.s * old + g.c * y;
}

}  // namespace

template <class Real>
void rotate_columns(Real* const* rows, Size count, BidiagonalBlock block,
                    const Rotation<Real>* rotations) {
    for (Size i = 0; i < count; ++i)
        for (Size j = block.begin; j + 1 < block.end; ++j)
            rotate(rows[i][j], rows[i][j + 1], rotations[j]);
}

template <class Real>
void rotate_columns(Real* const* rows, Size count, const ZeroChase& chase,
                    const Rotation<Real>* rotations) {
    for (Size i = 0; i < count; ++i)
        for (Size j = 0; j < chase.count(); ++j)
            rotate(rows[i][chase.line(j)], rows[i][chase.index], rotations[j]);
}

#define NEQUAR_INSTANTIATE(Real)                                                              \
    template Real least_element(Size, const Real*, const Real*);                              \
    template bool deflate(Real*, Real*, BidiagonalBlock, Real);                               \
    template bool find_block(const Real*, BidiagonalBlock&);                                  \
    template void first_vector(const Real*, const Real*, BidiagonalBlock, Real&, Real&);      \
    template void golub_kahan_step(Real*, Real*, BidiagonalBlock, Rotation<Real>*,            \
                                   Rotation<Real>*);                                          \
    template ZeroChase find_zero(const Real*, const Real*, BidiagonalBlock, bool);            \
    template ZeroChase chase_zero(Real*, Real*, BidiagonalBlock, ZeroChase, Rotation<Real>*); \
    template void rotate_columns(Real* const*, Size, BidiagonalBlock, const Rotation<Real>*); \
    template void rotate_columns(Real* const*, Size, const ZeroChase&, const Rotation<Real>*);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
