#include "algebra/algorithm/gram_schmidt.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/checked_size.h"
#include "core/workspace.h"
#include "frame/algorithm/norm.h"
#include "kernel/kernel.h"

namespace nequar {
namespace {

using kernel::Update;

// w := w / ||w||; false when w is zero. A column that holds NaN or infinity has no direction and
// becomes NaN.
template <class Real>
bool make_unit(Strided<Real> w) {
    if (normalize(w)) return true;
    for (Size i = 0; i < w.size; ++i) {
        if (w(i) == 0) continue;
        for (Size p = 0; p < w.size; ++p) w(p) = std::numeric_limits<Real>::quiet_NaN();
        return true;
    }
    return false;
}

}  // namespace

template <class Real>
Outcome gram_schmidt_unblocked(View<const Real> a, View<Real> q) {
    const Workspace<Real> work(q.width);
    if (!work) return {OutcomeKind::no_memory};
    Real* const r = work.data();
    for (Size j = 0; j < q.width; ++j) {
        // All coefficients in one walk along the rows; each is still summed from the top down.
        std::fill_n(r, j, Real(0));
        for (Size i = 0; i < q.height; ++i)
            for (Size k = 0; k < j; ++k) r[k] += a(i, j) * q(i, k);
        for (Size i = 0; i < q.height; ++i) {
            Real w = a(i, j);
            for (Size k = 0; k < j; ++k) w -= r[k] * q(i, k);
            q(i, j) = w;
        }
        if (!make_unit(q.column(j))) return {OutcomeKind::zero_column, j};
    }
    return Outcome::success();
}

template <class Real>
Outcome gram_schmidt_blocked(View<const Real> a, View<Real> q, Size block) {
    const Size m = q.height;
    const Size n = q.width;
    block = std::min(block, n);
    // The block's columns lie in the rows of a_block (as given) and w (reduced).
    Size size = 0;
    if (!checked_product(2 * m + n + 1, block, size)) return {OutcomeKind::no_memory};
    const Workspace<Real> work(size);
    if (!work) return {OutcomeKind::no_memory};
    for (Size j0 = 0; j0 < n; j0 += block) {
        const Size width = std::min(block, n - j0);
        const View<Real> a_block(work.data(), width, m, m);
        const View<Real> w(work.data() + block * m, width, m, m);
        const View<Real> r(work.data() + 2 * block * m, width, j0, j0);
        const Strided<Real> coefficients(work.data() + block * (2 * m + n), width);
        const View<const Real> q0 = q.columns(0, j0);

        kernel::transpose(a.columns(j0, width), a_block);
        kernel::copy(reading(a_block), w);
        if (j0 > 0) {
            kernel::gemm(Real(1), reading(a_block), q0, Update::set, r);
            kernel::gemm(Real(-1), reading(r), q0.transposed(), Update::accumulate, w);
        }
        Size done = 0;
        for (; done < width; ++done) {
            const View<const Real> before = w.rows(0, done);
            if (done > 0) {
                const Strided<Real> c = coefficients.part(0, done);
                kernel::gemv(Real(1), before, reading(a_block.row(done)), Update::set, c);
                kernel::gemv(Real(-1), before.transposed(), reading(c), Update::accumulate,
                             w.row(done));
            }
            if (!make_unit(w.row(done))) break;
        }
        const Size written = std::min(done + 1, width);
        kernel::transpose(reading(w.rows(0, written)), q.columns(j0, written));
        if (done < width) return {OutcomeKind::zero_column, j0 + done};
    }
    return Outcome::success();
}

template <class Real>
Outcome gram_schmidt(View<const Real> a, View<Real> q) {
    constexpr Size kSmall = 20;
    const bool is_small =
        q.width <= kSmall && q.height * q.width * q.width <= kSmall * kSmall * kSmall;
    return is_small ? gram_schmidt_unblocked(a, q) : gram_schmidt_blocked(a, q);
}

#define NEQUAR_INSTANTIATE(Real)                                               \
    template Outcome gram_schmidt_unblocked(View<const Real>, View<Real>);     \
    template Outcome gram_schmidt_blocked(View<const Real>, View<Real>, Size); \
    template Outcome gram_schmidt(View<const Real>, View<Real>);

NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)

}  // namespace nequar
