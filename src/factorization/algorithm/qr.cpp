#include "factorization/algorithm/qr.h"

#include "core/workspace.h"
#include "factorization/algorithm/reflector.h"
#include "factorization/algorithm/scratch.h"
#include "kernel/kernel.h"

namespace nequar {

using kernel::Update;

namespace {

// Blocks pay when the trailing matrix is large beside a panel.
constexpr Size kSmallestBlockedSize = 48;

// Where a factorization leaves its reflectors (nowhere when `store` is null), and what else is
// multiplied by Q^T on the way (nothing when it has no column).
template <class Real>
struct QrTargets {
    const ReflectorStore<Real>* store = nullptr;
    View<Real> right_side;
};

template <class Real>
Outcome qr_plain(View<Real> a, const QrTargets<Real>& targets) {
    const Size m = a.height;
    const Size n = a.width;
    const Size count = reflections_of_qr(m, n);
    const View<Real>& b = targets.right_side;
    Workspace<Real> elements(m + (n > b.width ? n : b.width));
    if (!elements) return {OutcomeKind::no_memory};
    Real* const w = elements.data() + m;
    for (Size k = 0; k < count; ++k) {
        const Size height = m - k;
        const Strided<Real> u(elements.data(), height);
        const Reflection<Real> reflection = make_reflector(reading(a.column(k).part(k, height)), u);
        if (targets.store != nullptr)
            kernel::copy(reading(u), targets.store->vectors.column(k).part(k, height));
        if (reflection.is_none) continue;
        a(k, k) = reflection.image;
        const Size right = n - k - 1;
        reflect_from_left(reading(u), a.block(k, k + 1, height, right), Strided<Real>(w, right));
        if (b.width > 0)
            reflect_from_left(reading(u), b.rows(k, height), Strided<Real>(w, b.width));
    }
    return Outcome::success();
}

// P (rows x width) := R with leftovers, U its reflectors, S their coupling (strictly upper).
template <class Real>
void qr_panel(View<Real> p, View<Real> u, View<Real> s, Size leaf, Real* w) {
    const Size rows = p.height;
    const Size width = p.width;
    if (width <= leaf) {
        for (Size j = 0; j < width; ++j) {
            kernel::fill(Real(0), u.block(0, j, j, 1));
            const Strided<Real> vector = u.column(j).part(j, rows - j);
            const Reflection<Real> reflection =
                make_reflector(reading(p.column(j).part(j, rows - j)), vector);
            if (reflection.is_none) continue;
            p(j, j) = reflection.image;
            if (j + 1 == width) continue;
            reflect_from_left(reading(vector), p.block(j, j + 1, rows - j, width - j - 1),
                              Strided<Real>(w, width - j - 1));
        }
        couple_reflectors(reading(u), s);
        return;
    }
    //   | P1  P2 |     P1 first; P2 := Q1^T P2; then P2 below the first rows
    const Size first = (width / 2 + leaf - 1) / leaf * leaf;
    const Size second = width - first;
    const View<Real> u1 = u.columns(0, first);
    const View<Real> u2 = u.block(first, first, rows - first, second);
    const View<Real> s1 = s.block(0, 0, first, first);
    const View<Real> p2 = p.columns(first, second);
    qr_panel(p.columns(0, first), u1, s1, leaf, w);
    apply_block_reflector(Side::q_transposed, reading(u1), reading(s1), p2,
                          View<Real>(w, first, second, second));
    qr_panel(p2.rows(first, rows - first), u2, s.block(first, first, second, second), leaf, w);
    kernel::fill(Real(0), u.block(0, first, first, second));
    // S12 = U1^T U2, where U2 is zero in the first rows
    kernel::gemm(Real(1), reading(u1.rows(first, rows - first).transposed()), reading(u2),
                 Update::set, s.block(0, first, first, second));
}

template <class Real>
Outcome qr_blocked(View<Real> a, const QrTargets<Real>& targets, Size block, Size leaf) {
    const Size m = a.height;
    const Size n = a.width;
    const Size count = reflections_of_qr(m, n);
    const View<Real>& b = targets.right_side;
    const Size widest = n > b.width ? n : b.width;
    Workspace<Real> panel_elements(2 * block * padded_length(m));
    Workspace<Real> w_elements(block * padded_length(widest > block ? widest : block));
    Workspace<Real> s_elements(block * block);
    if (!panel_elements || !w_elements || !s_elements) return {OutcomeKind::no_memory};

    for (Size k = 0; k < count; k += block) {
        const Size width = count - k < block ? count - k : block;
        const Size height = m - k;
        const View<Real> panel = a.block(k, k, height, width);
        const View<Real> p = scratch_by_columns(panel_elements.data(), height, width, a.row_stride);
        const View<Real> u = scratch_by_columns(panel_elements.data() + block * padded_length(m),
                                                height, width, a.row_stride);
        const View<Real> s(s_elements.data(), width, width, width);
        kernel::copy(reading(panel), p);
        qr_panel(p, u, s, leaf, w_elements.data());
        kernel::copy(reading(p), panel);

        const Size right = n - k - width;
        apply_block_reflector(Side::q_transposed, reading(u), reading(s),
                              a.block(k, k + width, height, right),
                              scratch_by_rows(w_elements.data(), width, right, a.column_stride));
        apply_block_reflector(Side::q_transposed, reading(u), reading(s), b.rows(k, height),
                              scratch_by_rows(w_elements.data(), width, b.width, b.column_stride));
        if (targets.store != nullptr) {
            kernel::copy(reading(u), targets.store->vectors_of_block(k));
            kernel::copy(reading(s), targets.store->coupling_of_block(k));
        }
    }
    return Outcome::success();
}

template <class Real>
Outcome qr_into(View<Real> a, const QrTargets<Real>& targets, Size block, Size leaf) {
    if (block <= 1) return qr_plain(a, targets);
    return qr_blocked(a, targets, block, leaf);
}

}  // namespace

Size block_of_qr(Size height, Size width, QrBlocking blocking) {
    const Size count = reflections_of_qr(height, width);
    if (blocking.block > 0) return blocking.block;
    if (count < kSmallestBlockedSize) return 1;
    return count < 400 ? 32 : 64;
}

template <class Real>
Outcome qr(View<Real> a, QrBlocking blocking) {
    return qr_into(a, QrTargets<Real>{}, block_of_qr(a.height, a.width, blocking), blocking.leaf);
}

template <class Real>
Outcome qr(View<Real> a, View<Real> q, QrBlocking blocking) {
    const Size count = reflections_of_qr(a.height, a.width);
    const Size block = block_of_qr(a.height, a.width, blocking);
    Workspace<Real> couplings(block > 1 ? block * count : 0);
    if (!couplings) return {OutcomeKind::no_memory};
    const ReflectorStore<Real> store{q.columns(0, count),
                                     View<Real>(couplings.data(), block, count, count), block};
    const Outcome outcome = qr_into(a, {&store, {}}, block, blocking.leaf);
    if (!outcome) return outcome;
    if (block <= 1) return form_orthogonal_plain(reading(store.vectors), q);
    return form_orthogonal(store, q);
}

template <class Real>
Outcome qr_with_right_side(View<Real> a, View<Real> b, QrBlocking blocking) {
    return qr_into(a, {nullptr, b}, block_of_qr(a.height, a.width, blocking), blocking.leaf);
}

template <class Real>
Outcome qr_keeping_reflectors(View<Real> a, const ReflectorStore<Real>& store,
                              QrBlocking blocking) {
    return qr_blocked(a, {&store, {}}, store.block, blocking.leaf);
}

#define NEQUAR_INSTANTIATE(Real)                                             \
    template Outcome qr(View<Real>, QrBlocking);                             \
    template Outcome qr(View<Real>, View<Real>, QrBlocking);                 \
    template Outcome qr_with_right_side(View<Real>, View<Real>, QrBlocking); \
    template Outcome qr_keeping_reflectors(View<Real>, const ReflectorStore<Real>&, QrBlocking);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
