#include "factorization/algorithm/singular_values.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/workspace.h"
#include "factorization/algorithm/bidiagonal.h"
#include "factorization/algorithm/golub_kahan.h"
#include "factorization/algorithm/qr.h"
#include "factorization/algorithm/range.h"
#include "factorization/algorithm/rotation_sweeps.h"
#include "factorization/algorithm/scratch.h"
#include "kernel/kernel.h"

namespace nequar {
namespace {

// The sizes of an SVD, and what it keeps, in the order of its use.
template <class Real>
struct Plan {
    Size m, n;      // of A
    Size height;    // of what is bidiagonalized: m, or n when QR comes first
    Size block;     // of the bidiagonalization
    Size qr_block;  // 0: no QR
    bool has_u, has_v;
    Size full_width;  // columns of U that are asked for
    Size right_sides;

    Plan(View<const Real> a, const SvdTargets<Real>& targets, const SvdInverse<Real>* inverse)
        : m(a.height),
          n(a.width),
          height(a.height),
          block(block_of_reflectors(a.width)),
          qr_block(0),
          has_u(targets.u != nullptr),
          has_v(targets.v != nullptr),
          full_width(has_u ? targets.u->width : 0),
          right_sides(inverse != nullptr && inverse->right_sides != nullptr
                          ? inverse->right_sides->width
                          : 0) {
        constexpr Size narrowest = 8;
        if (2 * m < 3 * n || n < narrowest) return;
        qr_block = block_of_qr(m, n, {});
        height = n;
    }
    bool has_qr() const { return qr_block > 0; }

    Size of_vectors(Size rows, Size columns) const {
        return Scratch<Real>::rounded(columns * padded_length(rows));
    }
    Size of_store(Size rows, Size columns, Size block_size) const {
        return of_vectors(rows, columns) + Scratch<Real>::rounded(block_size * columns);
    }
    Size widest_block() const { return std::max(block, qr_block); }
    Size widest_target() const { return std::max({full_width, n, right_sides}); }

    Size elements() const {
        using S = Scratch<Real>;
        Size sum = of_vectors(m, n) + 4 * S::rounded(n) + S::rounded(4 * n);
        if (has_qr()) sum += of_vectors(n, n) + scratch_of_qr<Real>(m, n, 0, {});
        if (has_qr() && has_u) sum += of_store(m, n, qr_block);
        const Size sweeps = S::rounded(RotationSweeps<Real>::scratch(n));
        if (has_u) sum += of_store(height, n, block) + of_vectors(n, n) + sweeps;
        if (has_v) sum += of_store(n, n, block) + of_vectors(n, n) + sweeps;
        if (has_u || has_v) sum += of_vectors(widest_target(), widest_block());
        return sum;
    }
};

template <class Real>
ReflectorStore<Real> take_store(Scratch<Real>& scratch, Size rows, Size count, Size block) {
    const View<Real> vectors =
        scratch_by_columns(scratch.take(count * padded_length(rows)), rows, count, Size(1));
    return {vectors, View<Real>(scratch.take(block * count), block, count, count), block};
}

template <class Real>
void set_identity(View<Real> a) {
    kernel::fill(Real(0), a);
    for (Size i = 0; i < a.height && i < a.width; ++i) a(i, i) = 1;
}

// A = U_B B V_B^T: the two orthogonal factors as reflectors.
template <class Real>
struct Reflectors {
    ReflectorStore<Real> of_qr, of_left, of_right;
    bool has_qr;
    Real* w;  // scratch

    View<Real> scratch_for(View<Real> c, const ReflectorStore<Real>& store) const {
        return scratch_by_rows(w, store.block, c.width, c.column_stride);
    }
    // C := U_B C or U_B^T C, m rows
    void apply_left(Side side, View<Real> c) const {
        const View<Real> top = c.rows(0, of_left.vectors.height);
        if (has_qr && side == Side::q_transposed)
            apply_reflectors(side, of_qr, c, scratch_for(c, of_qr));
        apply_reflectors(side, of_left, top, scratch_for(top, of_left));
        if (has_qr && side == Side::q) apply_reflectors(side, of_qr, c, scratch_for(c, of_qr));
    }
    // C := V_B C, n rows
    void apply_right(View<Real> c) const {
        if (c.height < 2) return;
        const View<Real> below = c.rows(1, c.height - 1);
        apply_reflectors(Side::q, of_right, below, scratch_for(below, of_right));
    }
    // The same to an upper triangle: rows from i on have nothing left of column i.
    void apply_right_to_triangle(View<Real> c) const {
        const Size count = of_right.count();
        const Size block = of_right.block;
        for (Size k = (count - 1) / block * block; k >= 0 && count > 0; k -= block) {
            const View<Real> part = c.block(k + 1, k + 1, c.height - k - 1, c.width - k - 1);
            apply_block_reflector(Side::q, reading(of_right.vectors_of_block(k)),
                                  reading(of_right.coupling_of_block(k)), part,
                                  scratch_for(part, of_right).rows(0, of_right.width_of_block(k)));
        }
    }
};

// ---- the inverse without vectors ---------------------------------------------------------------

// X := B^-1, both triangles, X's rows contiguous
template <class Real>
void invert_bidiagonal(const Real* d, const Real* f, View<Real> x) {
    const Size n = x.height;
    kernel::fill(Real(0), x);
    for (Size i = n - 1; i >= 0; --i) {
        x(i, i) = 1 / d[i];
        if (i + 1 < n)
            kernel::scale(n - i - 1, x.row(i + 1).data + i + 1, -f[i] / d[i],
                          x.row(i).data + i + 1);
    }
}

// C := B^-1 C
template <class Real>
void solve_bidiagonal(const Real* d, const Real* f, View<Real> c) {
    const Size n = c.height;
    for (Size i = n - 1; i >= 0; --i)
        for (Size j = 0; j < c.width; ++j)
            c(i, j) = (i + 1 < n ? c(i, j) - f[i] * c(i + 1, j) : c(i, j)) / d[i];
}

// X, n x n with contiguous rows, is scratch.
template <class Real>
void divide(const Reflectors<Real>& reflectors, const Real* d, const Real* f, int exponent,
            const View<Real>* right_sides, View<Real> u, View<Real> x) {
    const Size n = x.height;
    if (right_sides != nullptr) {
        const View<Real> solution = right_sides->rows(0, n);
        reflectors.apply_left(Side::q_transposed, *right_sides);
        solve_bidiagonal(d, f, solution);
        reflectors.apply_right(solution);
        scale_by_power_of_two(solution, -exponent);
        return;
    }
    invert_bidiagonal(d, f, x);
    reflectors.apply_right_to_triangle(x);
    kernel::fill(Real(0), u);
    kernel::transpose(reading(x), u.rows(0, n));
    reflectors.apply_left(Side::q, u);
    scale_by_power_of_two(u, -exponent);
}

// ---- the iteration -----------------------------------------------------------------------------

// W^T by rows, the identity at first, and the rotations that are still to be applied to it; without
// elements when nobody wants it.
template <class Real>
class Accumulator {
public:
    Accumulator(View<Real> w, Real* elements) : w_(w), sweeps_(elements, w.height) {}

    static Size scratch(Size n) { return RotationSweeps<Real>::scratch(n); }

    // Where the rotations of a step on the block are to be written: that of rows j, j+1 to [j].
    Rotation<Real>* begin(BidiagonalBlock block, Rotation<Real>* unwanted) {
        if (w_.is_empty()) return unwanted;
        if (sweeps_.is_full()) apply();
        ++recorded_;
        return reinterpret_cast<Rotation<Real>*>(sweeps_.begin(block.begin, block.end - 1));
    }
    void rotate(const ZeroChase& chase, const Rotation<Real>* rotations) {
        if (w_.is_empty()) return;
        apply();
        for (Size i = 0; i < chase.count(); ++i)
            kernel::rotate(w_.row(chase.line(i)), w_.row(chase.index), rotations[i].c,
                           rotations[i].s);
        reach_ = w_.width;
    }
    void apply() {
        if (w_.is_empty()) return;
        sweeps_.apply(w_, reach_);
        reach_ += recorded_;
        recorded_ = 0;
    }

private:
    View<Real> w_;
    RotationSweeps<Real> sweeps_;
    Size reach_ = 0;  // row i is zero beyond column i + reach
    Size recorded_ = 0;
};

// `rotations` has room for two of each row.
template <class Real>
void iterate(Size n, Real* d, Real* f, Accumulator<Real>& wu, Accumulator<Real>& wv,
             Rotation<Real>* rotations, SvdSteps& steps) {
    BidiagonalBlock block{0, n};
    const Real least = least_element(n, d, f);
    steps.made = 0;
    for (;;) {
        const bool has_zero = deflate(d, f, block, least);
        if (!find_block(f, block)) break;
        const ZeroChase zero = has_zero ? find_zero(d, f, block, true) : ZeroChase();
        if (zero.kind != ZeroChase::none) {
            const ZeroChase chase = chase_zero(d, f, block, zero, rotations);
            (chase.kind == ZeroChase::row ? wu : wv).rotate(chase, rotations);
            continue;
        }
        if (++steps.made >= steps.limit) break;
        golub_kahan_step(d, f, block, wv.begin(block, rotations), wu.begin(block, rotations + n));
    }
    steps.has_converged = steps.made < steps.limit;
    wu.apply();
    wv.apply();
}

// Magnitudes of d into sigma, descending, equal ones in their order; signs go into V.
template <class Real>
void sort_into(Size n, Real* d, View<Real> wv, int exponent, int* order, Real* sigma) {
    for (Size i = 0; i < n; ++i) {
        order[i] = static_cast<int>(i);
        if (d[i] < 0 && !wv.is_empty()) kernel::scale(Real(-1), wv.row(i));
        d[i] = std::abs(d[i]);
    }
    std::sort(order, order + n,
              [d](int a, int b) { return d[a] > d[b] || (d[a] == d[b] && a < b); });
    for (Size i = 0; i < n; ++i) sigma[i] = std::scalbn(d[order[i]], exponent);
}

}  // namespace

template <class Real>
Outcome svd(View<const Real> a, Real largest, const SvdTargets<Real>& targets, SvdSteps& steps,
            SvdInverse<Real>* inverse) {
    const Plan<Real> plan(a, targets, inverse);
    const Size m = plan.m;
    const Size n = plan.n;
    Workspace<Real, 8192> work(plan.elements());
    Workspace<int, 512> order(n);
    if (!work || !order) return {OutcomeKind::no_memory};
    Scratch<Real> scratch(work.data());

    const View<Real> copy = scratch_by_columns(scratch.take(plan.of_vectors(m, n)), m, n, Size(1));
    kernel::copy(a, copy);
    const int exponent = exponent_near_ends(largest);
    scale_by_power_of_two(copy, -exponent);

    View<Real> reduced = copy;
    Reflectors<Real> reflectors{{}, {}, {}, plan.has_qr(), nullptr};
    if (plan.has_qr()) {
        if (plan.has_u) reflectors.of_qr = take_store(scratch, m, n, plan.qr_block);
        Scratch<Real> of_reduction = scratch;
        qr_into(copy, {plan.has_u ? &reflectors.of_qr : nullptr, {}}, {}, of_reduction);
        scratch.take(scratch_of_qr<Real>(m, n, 0, {}));
        reduced = scratch_by_columns(scratch.take(plan.of_vectors(n, n)), n, n, Size(1));
        for (Size j = 0; j < n; ++j) {
            kernel::copy(reading(copy.column(j).part(0, j + 1)), reduced.column(j).part(0, j + 1));
            kernel::fill(Real(0), reduced.block(j + 1, j, n - j - 1, 1));
        }
    }
    Real* const d = scratch.take(n);
    Real* const f = scratch.take(n);
    auto* const rotations = reinterpret_cast<Rotation<Real>*>(scratch.take(4 * n));
    BidiagonalStores<Real> stores;
    View<Real> wu, wv;
    if (plan.has_u) {
        reflectors.of_left = take_store(scratch, plan.height, n, plan.block);
        stores.left = &reflectors.of_left;
        wu = scratch_by_rows(scratch.take(plan.of_vectors(n, n)), n, n, Size(1));
    }
    if (plan.has_v) {
        reflectors.of_right =
            take_store(scratch, n > 1 ? n - 1 : 0, right_reflections(n), plan.block);
        stores.right = &reflectors.of_right;
        wv = scratch_by_rows(scratch.take(plan.of_vectors(n, n)), n, n, Size(1));
    }
    if (plan.has_u || plan.has_v)
        reflectors.w = scratch.take(plan.of_vectors(plan.widest_target(), plan.widest_block()));
    const Outcome outcome = bidiagonalize(reduced, d, f, stores, block_of_bidiagonal(n));
    if (!outcome) return outcome;
    if (inverse != nullptr) {
        Real* const values = scratch.take(n);
        Real* const above = scratch.take(n);
        std::copy_n(d, n, values);
        std::copy_n(f, n, above);
        Accumulator<Real> none_left({}, nullptr), none_right({}, nullptr);
        iterate(n, values, above, none_left, none_right, rotations, steps);
        Real* const s = targets.sigma;
        sort_into(n, values, {}, exponent, order.data(), s);
        const Real doubt = Real(n) * std::numeric_limits<Real>::epsilon();
        const Real last = n > 0 ? values[order.data()[n - 1]] : Real(0);
        const Real first = n > 0 ? values[order.data()[0]] : Real(0);
        inverse->is_done =
            steps.has_converged && last > inverse->tolerance * first && last > doubt * first;
        if (inverse->is_done)
            divide(reflectors, d, f, exponent, inverse->right_sides, *targets.u, wv);
        if (inverse->is_done || !steps.has_converged ||
            (inverse->needs_full_rank && !(last > inverse->tolerance * first)))
            return Outcome::success();
    }
    if (plan.has_u) set_identity(wu);
    if (plan.has_v) set_identity(wv);
    {
        Accumulator<Real> on_left(
            wu, plan.has_u ? scratch.take(Accumulator<Real>::scratch(n)) : nullptr);
        Accumulator<Real> on_right(
            wv, plan.has_v ? scratch.take(Accumulator<Real>::scratch(n)) : nullptr);
        iterate(n, d, f, on_left, on_right, rotations, steps);
    }
    sort_into(n, d, wv, exponent, order.data(), targets.sigma);

    // the columns of W in their order, then the reflectors
    const View<Real> sorted(copy.data, n, n, padded_length(n));
    if (plan.has_v) {
        kernel::gather_rows(reading(wv), order.data(), sorted);
        kernel::transpose(reading(sorted), *targets.v);
        reflectors.apply_right(*targets.v);
    }
    if (plan.has_u) {
        const View<Real>& u = *targets.u;
        kernel::gather_rows(reading(wu), order.data(), sorted);
        set_identity(u);
        kernel::transpose(reading(sorted), u.block(0, 0, n, n));
        reflectors.apply_left(Side::q, u);
    }
    return Outcome::success();
}

template <class Real>
RankFault find_rank(Strided<const Real> s, Real tolerance, bool check, int& rank) {
    if (!(tolerance >= 0 && tolerance < 1)) return RankFault::tolerance;
    for (Size i = 0; i < s.size; ++i)
        if (!std::isfinite(s(i))) return RankFault::not_finite;
    for (Size i = 1; check && i < s.size; ++i) {
        if (s(i) > s(i - 1)) return RankFault::ordering;
        if (s(i) < 0) return RankFault::negative;
    }
    Size found = 0;
    if (s.size > 0 && s(0) != 0) {
        const Real threshold = tolerance * s(0);
        found = 1;
        while (found < s.size && !(s(found) <= threshold)) ++found;
    }
    rank = static_cast<int>(found);
    return RankFault::none;
}

template <class Real>
int count_above(Strided<const Real> s, Real tolerance) {
    Size count = s.size;
    while (count > 0 && !(s(count - 1) / s(0) > tolerance)) --count;
    return static_cast<int>(count);
}

template <class Real>
int count_leading(Strided<const Real> s, Real tolerance) {
    Size count = 0;
    while (count < s.size && s(count) > tolerance * s(0)) ++count;
    return static_cast<int>(count);
}

template <class Real>
void scale_columns(Strided<const Real> s, View<Real> a) {
    for (Size i = 0; i < a.height; ++i)
        for (Size j = 0; j < a.width; ++j) a(i, j) *= s(j);
}

#define NEQUAR_INSTANTIATE(Real)                                                     \
    template Outcome svd(View<const Real>, Real, const SvdTargets<Real>&, SvdSteps&, \
                         SvdInverse<Real>*);                                         \
    template RankFault find_rank(Strided<const Real>, Real, bool, int&);             \
    template int count_above(Strided<const Real>, Real);                             \
    template int count_leading(Strided<const Real>, Real);                           \
    template void scale_columns(Strided<const Real>, View<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
