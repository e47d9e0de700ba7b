#include "factorization/algorithm/tridiagonalization.h"

#include "core/workspace.h"
#include "factorization/algorithm/block_reflector.h"
#include "factorization/algorithm/reflector.h"
#include "factorization/algorithm/scratch.h"
#include "kernel/kernel.h"

namespace nequar {

using kernel::Triangle;
using kernel::Update;

namespace {

// The vectors of a panel as rows over all n columns, u and w by turns, and once more exchanged:
// uw = (u_0; w_0; u_1; w_1; ...), wu = (w_0; u_0; w_1; u_1; ...).
template <class Real>
struct Panel {
    View<Real> uw;
    View<Real> wu;
    Real* products;  // 2 block
};

// Row i of A, i = k + j being row j of the panel, is brought up to date and reduced; u_j, w_j are
// found.
template <class Real>
void reduce_row(View<Real> a, Size i, Size j, const Panel<Real>& panel, Strided<Real> d,
                Strided<Real> e) {
    const Size n = a.height;
    const View<const Real> uw = panel.uw.rows(0, 2 * j);
    const View<const Real> wu = panel.wu.rows(0, 2 * j);
    if (j > 0)
        kernel::gemv(Real(-1), uw.columns(i, n - i).transposed(), wu.column(i), Update::accumulate,
                     a.row(i).part(i, n - i));
    d(i) = a(i, i);
    if (i + 1 == n) return;
    const Size rest = n - i - 1;
    const Strided<Real> u = panel.uw.row(2 * j).part(i + 1, rest);
    const Reflection<Real> reflection = make_reflector(reading(a.row(i).part(i + 1, rest)), u);
    e(i) = reflection.image;
    const Strided<Real> w = panel.uw.row(2 * j + 1).part(i + 1, rest);
    if (reflection.is_none) {
        for (Size l = 0; l < rest; ++l) w(l) = 0;
    } else {
        kernel::symv_upper(reading(a.block(i + 1, i + 1, rest, rest)), u.data, w.data);
        if (j > 0) {
            const Strided<Real> products(panel.products, 2 * j);
            kernel::gemv(Real(1), uw.columns(i + 1, rest), reading(u), Update::set, products);
            kernel::gemv(Real(-1), wu.columns(i + 1, rest).transposed(), reading(products),
                         Update::accumulate, w);
        }
        kernel::axpy(-kernel::dot(reading(w), reading(u)) / 2, reading(u), w);
    }
    kernel::copy(reading(w), panel.wu.row(2 * j).part(i + 1, rest));
    kernel::copy(reading(u), panel.wu.row(2 * j + 1).part(i + 1, rest));
}

}  // namespace

template <class Real>
Outcome tridiagonalize(View<Real> a, Strided<Real> d, Strided<Real> e, Size block) {
    const Size n = a.height;
    if (n == 0) return Outcome::success();
    if (block == 0) block = n < 128 ? 16 : 32;
    if (block > n) block = n;
    const Size stride = padded_length(n);
    using S = Scratch<Real>;
    Workspace<Real> work(2 * S::rounded(2 * block * stride) + S::rounded(2 * block));
    if (!work) return {OutcomeKind::no_memory};
    S scratch(work.data());
    const View<Real> uw(scratch.take(2 * block * stride), 2 * block, n, stride);
    const View<Real> wu(scratch.take(2 * block * stride), 2 * block, n, stride);
    const Panel<Real> panel = {uw, wu, scratch.take(2 * block)};

    for (Size k = 0; k < n; k += block) {
        const Size height = n - k < block ? n - k : block;
        for (Size j = 0; j < height; ++j) reduce_row(a, k + j, j, panel, d, e);
        const Size next = k + height;
        const Size rest = n - next;
        if (rest > 0)
            kernel::gemmt(Triangle::upper, Real(-1),
                          reading(uw.block(0, next, 2 * height, rest).transposed()),
                          reading(wu.block(0, next, 2 * height, rest)), Update::accumulate,
                          a.block(next, next, rest, rest));
        for (Size i = k; i < next && i + 1 < n; ++i)
            kernel::copy(reading(uw.row(2 * (i - k)).part(i + 1, n - i - 1)),
                         a.row(i).part(i + 1, n - i - 1));
    }
    return Outcome::success();
}

template <class Real>
ReflectorStore<Real> tridiagonal_store(View<Real> a, View<Real> couplings) {
    const Size n = a.height;
    const Size count = tridiagonal_reflections(n);
    const View<Real> vectors = a.block(0, n > 0 ? 1 : 0, count, n > 0 ? n - 1 : 0).transposed();
    const ReflectorStore<Real> store{vectors, couplings, couplings.height};
    finish_store(store);
    return store;
}

template <class Real>
Outcome tridiagonalize(View<Real> a, Strided<Real> d, Strided<Real> e, const View<Real>* q,
                       Size block) {
    const Outcome outcome = tridiagonalize(a, d, e, block);
    const Size n = a.height;
    if (!outcome || q == nullptr || n == 0) return outcome;
    kernel::fill(Real(0), q->block(0, 0, 1, n));
    kernel::fill(Real(0), q->block(0, 0, n, 1));
    (*q)(0, 0) = 1;
    if (n == 1) return Outcome::success();
    constexpr Size kTogether = 32;
    const Size count = tridiagonal_reflections(n);
    Workspace<Real> elements(kTogether * count);
    if (!elements) return {OutcomeKind::no_memory};
    const View<Real> couplings(elements.data(), kTogether, count, count);
    const ReflectorStore<Real> in_rows = tridiagonal_store(a, couplings);
    const View<Real> part = q->block(1, 1, n - 1, n - 1);
    kernel::copy(reading(in_rows.vectors), part.columns(0, count));
    return form_orthogonal(ReflectorStore<Real>{part.columns(0, count), couplings, kTogether},
                           part);
}

#define NEQUAR_INSTANTIATE(Real)                                                                 \
    template Outcome tridiagonalize(View<Real>, Strided<Real>, Strided<Real>, Size);             \
    template ReflectorStore<Real> tridiagonal_store(View<Real>, View<Real>);                     \
    template Outcome tridiagonalize(View<Real>, Strided<Real>, Strided<Real>, const View<Real>*, \
                                    Size);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
