#include "factorization/algorithm/jacobi.h"

#include <cmath>
#include <limits>

#include "core/checked_size.h"
#include "core/workspace.h"
#include "factorization/algorithm/scratch.h"
#include "kernel/kernel.h"

namespace nequar {

namespace {

constexpr Size kBlock = 16;  // rows q whose angles are found before they are rotated
constexpr Size kRows = 16;   // rows p whose rotations reach V together
constexpr Size kLane = 32;   // columns of V's narrowest strip

template <class Real>
struct Angle {
    Real s = 0;
    Real tau = 0;
};

// Annihilates a_pq: d_p and d_q follow, and the angle for the rest of the rows is answered; none
// when the element is negligible. The element itself is not written.
template <class Real>
Angle<Real> annihilate(Real apq, Real& dp, Real& dq) {
    const Real hundredfold = 100 * std::abs(apq);
    if (std::abs(dp) + hundredfold == std::abs(dp) && std::abs(dq) + hundredfold == std::abs(dq))
        return {};
    const Real theta = Real(0.5) * (dq - dp) / apq;
    const Real magnitude = 1 / (std::abs(theta) + std::sqrt(1 + theta * theta));
    const Real t = theta > 0 ? magnitude : -magnitude;
    const Real c = 1 / std::sqrt(1 + t * t);
    const Real s = t * c;
    dp -= t * apq;
    dq += t * apq;
    return {s, s / (1 + c)};
}

template <class Real>
void rotate(Real& g, Real& h, const Angle<Real>& angle) {
    const Real old = g;
    g = old - angle.s * (h + old * angle.tau);
    h = h + angle.s * (old - h * angle.tau);
}

// a(i, j) is any access to the upper triangle, i < j.
template <class Real, class Element>
void rotate_upper(const Element& a, Size n, Size p, Size q, const Angle<Real>& angle) {
    if (angle.s == 0) return;
    for (Size j = 0; j < p; ++j) rotate(a(j, p), a(j, q), angle);
    for (Size j = p + 1; j < q; ++j) rotate(a(p, j), a(j, q), angle);
    for (Size j = q + 1; j < n; ++j) rotate(a(p, j), a(q, j), angle);
}

// Sum of a_ij^2 over i < j.
template <class Real>
Real sum_above_diagonal(View<const Real> a) {
    Real sum = 0;
    for (Size i = 0; i + 1 < a.height; ++i) {
        const Strided<const Real> row = a.row(i).part(i + 1, a.width - i - 1);
        sum += kernel::dot(row, row);
    }
    return sum;
}

// ---- classical ----------------------------------------------------------------------------------

template <class Real>
void jacobi_classical(View<Real> a, Real* d, const View<Real>* vt, std::int64_t max_rotations,
                      Real tolerance, JacobiCounts& counts) {
    const Size n = a.height;
    for (; counts.sweeps < max_rotations; ++counts.sweeps) {
        Real sum = 0;
        Real largest = -1;
        Size p = 0;
        Size q = 0;
        for (Size i = 0; i + 1 < n; ++i) {
            const Strided<const Real> row = reading(a.row(i)).part(i + 1, n - i - 1);
            const Size j = kernel::index_of_largest_magnitude(row);
            sum += kernel::dot(row, row);
            if (row(j) * row(j) > largest) {
                largest = row(j) * row(j);
                p = i;
                q = i + 1 + j;
            }
        }
        if (std::sqrt(sum) <= tolerance) return;
        const Real apq = a(p, q);
        if (!(std::abs(apq) > 0)) {  // NaN alone is left, and stays
            counts.sweeps = max_rotations;
            return;
        }
        const Angle<Real> angle = annihilate(apq, d[p], d[q]);
        rotate_upper([&a](Size i, Size j) -> Real& { return a(i, j); }, n, p, q, angle);
        a(p, q) = 0;
        ++counts.annihilated;
        if (vt == nullptr) continue;
        const Real pair[2] = {angle.s, angle.tau};
        kernel::rotate_with_rows(pair, vt->row(p).data, vt->rows(q, 1));
    }
}

// ---- cyclic -------------------------------------------------------------------------------------

// The pairs (p, q) of one p and of a block of rows q, as far as they concern the block's own
// columns: the angles come out of these alone.
template <class Real>
bool find_angles(View<Real> square, Real* d, Size p, Size begin, Real* row, Real threshold,
                 Real* pairs, std::int64_t& annihilated) {
    const Size count = square.height;
    bool any = false;
    for (Size i = 0; i < count; ++i) {
        pairs[2 * i] = pairs[2 * i + 1] = 0;
        const Real apq = row[i];
        if (!(std::abs(apq) > threshold)) continue;
        const Angle<Real> angle = annihilate(apq, d[p], d[begin + i]);
        ++annihilated;
        if (angle.s != 0) {
            pairs[2 * i] = angle.s;
            pairs[2 * i + 1] = angle.tau;
            kernel::rotate_with_rows(pairs + 2 * i, row, square.rows(i, 1));
            square(i, i) = 0;
            for (Size r = 0; r < count; ++r) square(r, i) = square(i, r);
            any = true;
        }
        row[i] = 0;
    }
    return any;
}

// All pairs (p, q) of one p; the pairs of s and tau, 2 (n - p - 1) numbers, are kept for V. `lines`
// has room for a block of rows.
template <class Real>
void rotate_row(View<Real> a, Real* d, Size p, Real threshold, Real* pairs, View<Real> lines,
                std::int64_t& annihilated) {
    const Size n = a.height;
    Real* const row = a.row(p).data;
    Real elements[kBlock * kBlock];
    for (Size begin = p + 1; begin < n; begin += kBlock) {
        const Size height = n - begin < kBlock ? n - begin : kBlock;
        const Size end = begin + height;
        Real* const angles = pairs + 2 * (begin - p - 1);
        const View<Real> square(elements, height, height, kBlock);
        for (Size i = 0; i < height; ++i) {
            square(i, i) = 0;
            for (Size j = i + 1; j < height; ++j)
                square(i, j) = square(j, i) = a(begin + i, begin + j);
        }
        if (!find_angles(square, d, p, begin, row + begin, threshold, angles, annihilated))
            continue;
        for (Size i = 0; i < height; ++i)
            for (Size j = i + 1; j < height; ++j) a(begin + i, begin + j) = square(i, j);
        kernel::rotate_with_rows(angles, row, a.block(begin, 0, height, p));
        kernel::rotate_with_rows(angles, row + end, a.block(begin, end, height, n - end));
        const Size between = begin - p - 1;
        if (between == 0) continue;
        const View<Real> columns = a.block(p + 1, begin, between, height);
        const View<Real> turned = lines.block(0, 0, height, between);
        kernel::transpose(reading(columns), turned);
        kernel::rotate_with_rows(angles, row + p + 1, turned);
        kernel::transpose(reading(turned), columns);
    }
    for (Size i = p + 1; i < n; ++i) a(i, p) = row[i];
}

// The rotations of `count` rows p = first, first + 1, ..., each with all rows below it, on V^T:
// strip by strip, so that V goes through the cache once for all of them.
template <class Real>
void rotate_vectors(View<Real> vt, Size first, Size count, const Real* pairs, Size pairs_of_row) {
    constexpr Size strip_bytes = Size(1) << 18;
    const Size n = vt.height;
    const Size fitting = strip_bytes / Size(sizeof(Real)) / n / kLane * kLane;
    const Size strip = fitting < kLane ? kLane : fitting;
    for (Size j = 0; j < n; j += strip) {
        const View<Real> part = vt.columns(j, n - j < strip ? n - j : strip);
        for (Size i = 0; i < count; ++i) {
            const Size p = first + i;
            kernel::rotate_with_rows(pairs + i * pairs_of_row, part.row(p).data,
                                     part.rows(p + 1, n - p - 1));
        }
    }
}

// Takes the lower triangle, where the sweep has left what is current, to the upper.
template <class Real>
void finish_sweep(View<Real> a) {
    for (Size i = 0; i < a.height; i += kBlock) {
        const Size height = a.height - i < kBlock ? a.height - i : kBlock;
        const Size next = i + height;
        const Size rest = a.height - next;
        kernel::transpose(reading(a.block(next, i, rest, height)), a.block(i, next, height, rest));
        for (Size r = i; r < next; ++r)
            for (Size c = r + 1; c < next; ++c) a(r, c) = a(c, r);
    }
}

}  // namespace

template <class Real>
Outcome jacobi(JacobiMode mode, View<Real> a, Real* d, const View<Real>* vt,
               std::int64_t max_sweeps, Real tolerance, Real unit, JacobiCounts& counts) {
    const Size n = a.height;
    counts = {};
    if (!(tolerance > 0)) tolerance = 0;
    for (Size i = 0; i < n; ++i) d[i] = a(i, i);
    if (vt != nullptr) {
        kernel::fill(Real(0), *vt);
        for (Size i = 0; i < n; ++i) (*vt)(i, i) = 1;
    }
    if (mode == JacobiMode::classical) {
        std::int64_t rotations = 0;
        if (max_sweeps > 0 && !checked_product(max_sweeps, n * (n - 1) / 2, rotations))
            rotations = std::numeric_limits<std::int64_t>::max();
        jacobi_classical(a, d, vt, rotations, tolerance * unit, counts);
        return Outcome::success();
    }
    const Size stride = padded_length(n);
    Workspace<Real> work(2 * n * kRows + kBlock * stride);
    if (!work) return {OutcomeKind::no_memory};
    Real* const pairs = work.data() + kBlock * stride;
    const View<Real> lines(work.data(), kBlock, n, stride);
    Real off = 2 * sum_above_diagonal(reading(a));
    if (mode == JacobiMode::relative) {
        const Strided<const Real> diagonal(d, n);
        tolerance *= std::sqrt(off + kernel::dot(diagonal, diagonal));
    }
    for (; counts.sweeps < max_sweeps; ++counts.sweeps) {
        if (mode == JacobiMode::relative ? std::sqrt(off) <= tolerance : off == 0) break;
        Real threshold = 0;
        if (mode == JacobiMode::threshold && counts.sweeps < 3)
            threshold = Real(0.2) * off / (Real(n) * Real(n)) / unit;
        const std::int64_t before = counts.annihilated;
        for (Size p = 0; p + 1 < n; p += kRows) {
            const Size count = n - 1 - p < kRows ? n - 1 - p : kRows;
            for (Size i = 0; i < count; ++i)
                rotate_row(a, d, p + i, threshold, pairs + i * 2 * n, lines, counts.annihilated);
            if (vt != nullptr) rotate_vectors(*vt, p, count, pairs, 2 * n);
        }
        if (threshold == 0 && counts.annihilated == before) {
            // NaN alone is left: the sweeps that remain would change nothing.
            counts.sweeps = max_sweeps;
            break;
        }
        finish_sweep(a);
        off = 2 * sum_above_diagonal(reading(a));
    }
    return Outcome::success();
}

template <class Real>
bool jacobi_rotate(Real* const* a, Real* d, Real* const* v, Size n, Size p, Size q,
                   Real threshold) {
    if (!(std::abs(a[p][q]) > threshold)) return false;
    const Angle<Real> angle = annihilate(a[p][q], d[p], d[q]);
    rotate_upper([a](Size i, Size j) -> Real& { return a[i][j]; }, n, p, q, angle);
    if (v != nullptr && angle.s != 0)
        for (Size i = 0; i < n; ++i) rotate(v[i][p], v[i][q], angle);
    a[p][q] = 0;
    return true;
}

#define NEQUAR_INSTANTIATE(Real)                                                                  \
    template Outcome jacobi(JacobiMode, View<Real>, Real*, const View<Real>*, std::int64_t, Real, \
                            Real, JacobiCounts&);                                                 \
    template bool jacobi_rotate(Real* const*, Real*, Real* const*, Size, Size, Size, Real);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
