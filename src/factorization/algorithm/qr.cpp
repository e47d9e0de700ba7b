#include "factorization/algorithm/qr.h"

#include "core/workspace.h"
#include "factorization/algorithm/reflector.h"
#include "factorization/algorithm/scratch.h"
#include "kernel/kernel.h"

namespace nequar {

namespace {

// Blocks pay when the trailing matrix is large beside a panel.
constexpr Size kSmallestBlockedSize = 32;
constexpr Size kTall = 100;  // so high, columns are worth copying out whatever the width
// So few columns are reduced one by one: coupling their reflectors would cost more than it saves.
constexpr Size kNarrow = 12;

Size largest(Size a, Size b, Size c) {
    const Size of_two = a > b ? a : b;
    return of_two > c ? of_two : c;
}

template <class Real>
void qr_plain(View<Real> a, const QrTargets<Real>& targets, Scratch<Real> scratch) {
    const Size m = a.height;
    const Size n = a.width;
    const Size count = reflections_of_qr(m, n);
    const View<Real>& b = targets.right_side;
    Real* const elements = scratch.take(m);
    Real* const w = scratch.take(n > b.width ? n : b.width);
    for (Size k = 0; k < count; ++k) {
        const Size height = m - k;
        const Strided<Real> u(elements, height);
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
}

// The same on a copy of A that is stored column by column.
template <class Real>
void qr_in_columns(View<Real> a, const QrTargets<Real>& targets, Scratch<Real> scratch) {
    const View<Real> columns = scratch_by_columns(scratch.take(a.width * padded_length(a.height)),
                                                  a.height, a.width, a.row_stride);
    kernel::copy(reading(a), columns);
    qr_plain(columns, targets, scratch);
    kernel::copy(reading(columns), a);
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
    couple_blocks(reading(u1.rows(first, rows - first)), reading(u2),
                  s.block(0, first, first, second));
}

template <class Real>
void qr_blocked(View<Real> a, const QrTargets<Real>& targets, Size block, Size leaf,
                Scratch<Real> scratch) {
    const Size m = a.height;
    const Size n = a.width;
    const Size count = reflections_of_qr(m, n);
    const View<Real>& b = targets.right_side;
    Real* const p_elements = scratch.take(block * padded_length(m));
    Real* const u_elements = scratch.take(block * padded_length(m));
    Real* const w_elements = scratch.take(block * padded_length(largest(n, b.width, block)));
    Real* const s_elements = scratch.take(block * block);

    for (Size k = 0; k < count; k += block) {
        const Size width = count - k < block ? count - k : block;
        const Size height = m - k;
        const View<Real> panel = a.block(k, k, height, width);
        const View<Real> p = scratch_by_columns(p_elements, height, width, a.row_stride);
        const View<Real> u = scratch_by_columns(u_elements, height, width, a.row_stride);
        const View<Real> s(s_elements, width, width, width);
        kernel::copy(reading(panel), p);
        qr_panel(p, u, s, leaf, w_elements);
        kernel::copy(reading(p), panel);

        const Size right = n - k - width;
        apply_block_reflector(Side::q_transposed, reading(u), reading(s),
                              a.block(k, k + width, height, right),
                              scratch_by_rows(w_elements, width, right, a.column_stride));
        apply_block_reflector(Side::q_transposed, reading(u), reading(s), b.rows(k, height),
                              scratch_by_rows(w_elements, width, b.width, b.column_stride));
        if (targets.store != nullptr) {
            kernel::copy(reading(u), targets.store->vectors_of_block(k));
            kernel::copy(reading(s), targets.store->coupling_of_block(k));
        }
    }
}

}  // namespace

Size block_of_qr(Size height, Size width, QrBlocking blocking) {
    const Size count = reflections_of_qr(height, width);
    if (blocking.block > 0) return blocking.block;
    if (count < kSmallestBlockedSize) return height < kTall ? 1 : 16;
    const bool is_long = height > 4 * width;
    if (count < 112) return is_long && count >= 80 ? 32 : 16;
    if (count < 384) return 32;
    // The trailing matrix of a long one is beyond the caches: few ways through it.
    if (count < 768) return is_long ? 64 : 48;
    return is_long ? 128 : 64;
}

template <class Real>
Size scratch_of_qr(Size height, Size width, Size right_sides, QrBlocking blocking) {
    using S = Scratch<Real>;
    const Size block = block_of_qr(height, width, blocking);
    if (block <= 1) return S::rounded(height) + S::rounded(largest(width, right_sides, 1));
    return 2 * S::rounded(block * padded_length(height)) +
           S::rounded(block * padded_length(largest(width, right_sides, block))) +
           S::rounded(block * block);
}

template <class Real>
void qr_into(View<Real> a, const QrTargets<Real>& targets, QrBlocking blocking,
             Scratch<Real> scratch) {
    const Size block = block_of_qr(a.height, a.width, blocking);
    if (block > 1 && (a.width > kNarrow || blocking.block > 0)) {
        qr_blocked(a, targets, block, blocking.leaf > 0 ? blocking.leaf : 64 / Size(sizeof(Real)),
                   scratch);
        return;
    }
    if (block <= 1 || a.row_stride == 1 || a.row_stride == -1)
        qr_plain(a, targets, scratch);
    else
        qr_in_columns(a, targets, scratch);
    if (block > 1 && targets.store != nullptr) finish_store(*targets.store);
}

template <class Real>
Outcome qr(View<Real> a, QrBlocking blocking) {
    Workspace<Real> work(scratch_of_qr<Real>(a.height, a.width, 0, blocking));
    if (!work) return {OutcomeKind::no_memory};
    qr_into(a, QrTargets<Real>{}, blocking, Scratch<Real>(work.data()));
    return Outcome::success();
}

template <class Real>
Outcome qr(View<Real> a, View<Real> q, QrBlocking blocking) {
    const Size m = a.height;
    const Size count = reflections_of_qr(m, a.width);
    const Size block = block_of_qr(m, a.width, blocking);
    const Size to_reduce = scratch_of_qr<Real>(m, a.width, 0, blocking);
    const Size to_form = block > 1 ? scratch_to_form_orthogonal<Real>(m, count, block)
                                   : 2 * Scratch<Real>::rounded(m);
    Workspace<Real> work(Scratch<Real>::rounded(block * count) +
                         (to_reduce > to_form ? to_reduce : to_form));
    if (!work) return {OutcomeKind::no_memory};
    Scratch<Real> scratch(work.data());
    const View<Real> couplings(scratch.take(block * count), block, count, count);
    const ReflectorStore<Real> store{q.columns(0, count), couplings, block};
    qr_into(a, {&store, {}}, blocking, scratch);
    if (block > 1)
        form_orthogonal(store, q, scratch);
    else
        form_orthogonal_plain(reading(store.vectors), q, scratch);
    return Outcome::success();
}

#define NEQUAR_INSTANTIATE(Real)                                     \
    template Outcome qr(View<Real>, QrBlocking);                     \
    template Outcome qr(View<Real>, View<Real>, QrBlocking);         \
    template Size scratch_of_qr<Real>(Size, Size, Size, QrBlocking); \
    template void qr_into(View<Real>, const QrTargets<Real>&, QrBlocking, Scratch<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
