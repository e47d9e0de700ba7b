#include "factorization/algorithm/block_reflector.h"

#include "core/workspace.h"
#include "factorization/algorithm/reflector.h"
#include "factorization/algorithm/scratch.h"
#include "kernel/kernel.h"

namespace nequar {

using kernel::Diagonal;
using kernel::Triangle;
using kernel::Update;

namespace {

template <class Real>
void add_identity(View<Real> a) {
    const Strided<Real> diagonal = a.diagonal();
    for (Size i = 0; i < diagonal.size; ++i) diagonal(i) += 1;
}

template <class Real>
void set_identity(View<Real> a) {
    kernel::fill(Real(0), a);
    add_identity(a);
}

// Products that make a coupling are summed by chunks of rows. In one long sum of nearly equal terms
// all roundings go the same way, and nearly parallel reflectors (those of Kahan's matrix are)
// multiply that error by the condition of T, a loss of orthogonality of 50 n eps where it is 5.
template <class Add>
void by_chunks(Size height, Add add) {
    constexpr Size kSmallest = 32, kMost = 16;
    const Size chunk = height > kSmallest * kMost ? (height + kMost - 1) / kMost : kSmallest;
    add(0, height < chunk ? height : chunk, Update::set);
    for (Size first = chunk; first < height; first += chunk)
        add(first, height - first < chunk ? height - first : chunk, Update::accumulate);
}

// W := T W or T^T W
template <class Real>
void apply_triangle(Side side, View<const Real> s, View<Real> w) {
    if (side == Side::q)
        kernel::trsm(Triangle::upper, Diagonal::unit, s, w);
    else
        kernel::trsm(Triangle::lower, Diagonal::unit, s.transposed(), w);
}

// The first column of the blocks that are worth treating as one when Q starts from the identity.
// I - U T U^T costs 2 h^2 g there, h the remaining height and g the remaining columns, and the
// coupling of the whole another 2 h g^2; block by block it is 4 h^2 g.
Size start_of_tail(Size height, Size count, Size block) {
    const Size wanted = 2 * count > height ? 2 * count - height : 0;
    const Size last_block = (count - 1) / block * block;
    const Size start = (wanted + block - 1) / block * block;
    return start < last_block ? start : last_block;
}

}  // namespace

template <class Real>
void couple_reflectors(View<const Real> u, View<Real> s) {
    by_chunks(u.height, [&](Size first, Size rows, Update update) {
        const View<const Real> part = u.rows(first, rows);
        kernel::gemmt(Triangle::upper, Real(1), part.transposed(), part, update, s);
    });
}

template <class Real>
void couple_blocks(View<const Real> u1, View<const Real> u2, View<Real> s12) {
    by_chunks(u1.height, [&](Size first, Size rows, Update update) {
        kernel::gemm(Real(1), u1.rows(first, rows).transposed(), u2.rows(first, rows), update, s12);
    });
}

template <class Real>
void apply_block_reflector(Side side, View<const Real> u, View<const Real> s, View<Real> c,
                           View<Real> w) {
    if (c.is_empty() || u.width == 0) return;
    kernel::gemm(Real(1), u.transposed(), reading(c), Update::set, w);
    apply_triangle(side, s, w);
    kernel::gemm(Real(-1), u, reading(w), Update::accumulate, c);
}

template <class Real>
void finish_store(const ReflectorStore<Real>& store) {
    for (Size k = 0; k < store.count(); k += store.block) {
        const View<Real> u = store.vectors_of_block(k);
        for (Size j = 1; j < u.width; ++j) kernel::fill(Real(0), u.block(0, j, j, 1));
        couple_reflectors(reading(u), store.coupling_of_block(k));
    }
}

template <class Real>
void apply_reflectors(Side side, const ReflectorStore<Real>& store, View<Real> c, View<Real> w) {
    const Size count = store.count();
    const Size blocks = (count + store.block - 1) / store.block;
    for (Size step = 0; step < blocks; ++step) {
        const Size k = (side == Side::q ? blocks - 1 - step : step) * store.block;
        apply_block_reflector(side, reading(store.vectors_of_block(k)),
                              reading(store.coupling_of_block(k)), c.rows(k, c.height - k),
                              w.rows(0, store.width_of_block(k)));
    }
}

template <class Real>
void apply_reflectors_plain(Side side, View<const Real> vectors, View<Real> c, Strided<Real> w) {
    const Size count = vectors.width;
    for (Size step = 0; step < count; ++step) {
        const Size k = side == Side::q ? count - 1 - step : step;
        const Size height = c.height - k;
        reflect_from_left(vectors.column(k).part(k, height), c.rows(k, height), w);
    }
}

//  Q(k:, k:)  =  | I    0  |     before block k,  U = | U1 |   k ... k + b
//                | 0   Q22 |                          | U2 |   k + b ...
//
//  Q U-block:    | I - U1 T U1^T     -U1 W      |
//                |   - U2 T U1^T   Q22 - U2 W   |,   W = T U2^T Q22
template <class Real>
Size scratch_to_form_orthogonal(Size height, Size count, Size block) {
    if (count == 0) return 0;
    const Size tail = count - start_of_tail(height, count, block);
    const Size widest = tail > block ? tail : block;
    return 2 * Scratch<Real>::rounded(widest * padded_length(height)) +
           (tail > block ? tail * tail : 0);
}

template <class Real>
Outcome form_orthogonal(const ReflectorStore<Real>& store, View<Real> q) {
    Workspace<Real> work(scratch_to_form_orthogonal<Real>(q.height, store.count(), store.block));
    if (!work) return {OutcomeKind::no_memory};
    form_orthogonal(store, q, Scratch<Real>(work.data()));
    return Outcome::success();
}

template <class Real>
void form_orthogonal(const ReflectorStore<Real>& store, View<Real> q, Scratch<Real> scratch) {
    const Size m = q.height;
    const Size count = store.count();
    if (count == 0) return set_identity(q);
    const Size tail = start_of_tail(m, count, store.block);
    const Size widest = count - tail > store.block ? count - tail : store.block;
    Real* const u_elements = scratch.take(widest * padded_length(m));
    Real* const w_elements = scratch.take(widest * padded_length(m));

    {  // Q(tail:, tail:) = I - U (T U^T)
        const Size height = m - tail;
        const Size width = count - tail;
        const View<Real> u = scratch_by_columns(u_elements, height, width, q.row_stride);
        const View<Real> w = scratch_by_rows(w_elements, width, height, q.column_stride);
        kernel::copy(reading(q.block(tail, tail, height, width)), u);
        for (Size k = store.block; k < width; k += store.block)
            kernel::fill(Real(0),
                         u.block(0, k, k, width - k < store.block ? width - k : store.block));
        kernel::transpose(reading(u), w);
        if (width > store.block) {
            const View<Real> s(scratch.take(width * width), width, width, width);
            couple_reflectors(reading(u), s);
            apply_triangle(Side::q, reading(s), w);
        } else {
            apply_triangle(Side::q, reading(store.coupling_of_block(tail)), w);
        }
        const View<Real> target = q.block(tail, tail, height, height);
        kernel::gemm(Real(-1), reading(u), reading(w), Update::set, target);
        add_identity(target);
    }
    for (Size k = tail - store.block; k >= 0; k -= store.block) {
        const Size height = m - k;
        const Size width = store.block;
        const View<Real> u = scratch_by_columns(u_elements, height, width, q.row_stride);
        const View<const Real> top = u.rows(0, width);
        const View<const Real> below = u.rows(width, height - width);
        const View<const Real> s = store.coupling_of_block(k);
        kernel::copy(reading(q.block(k, k, height, width)), u);

        const View<Real> right = q.block(k + width, k + width, height - width, height - width);
        const View<Real> w = scratch_by_rows(w_elements, width, height - width, q.column_stride);
        kernel::gemm(Real(1), below.transposed(), reading(right), Update::set, w);
        apply_triangle(Side::q, s, w);
        kernel::gemm(Real(-1), top, reading(w), Update::set,
                     q.block(k, k + width, width, height - width));
        kernel::gemm(Real(-1), below, reading(w), Update::accumulate, right);

        const View<Real> left_w = scratch_by_rows(w_elements, width, width, q.column_stride);
        kernel::transpose(top, left_w);
        apply_triangle(Side::q, s, left_w);
        const View<Real> left = q.block(k, k, height, width);
        kernel::gemm(Real(-1), reading(u), reading(left_w), Update::set, left);
        add_identity(left);
    }
}

template <class Real>
Outcome form_orthogonal(View<Real> q, Size count) {
    constexpr Size kFewest = 32, kBlock = 16;
    if (count < kFewest) {
        Workspace<Real, 2048> work(2 * Scratch<Real>::rounded(q.height));
        if (!work) return {OutcomeKind::no_memory};
        form_orthogonal_plain(reading(q.columns(0, count)), q, Scratch<Real>(work.data()));
        return Outcome::success();
    }
    Workspace<Real> couplings(kBlock * count);
    if (!couplings) return {OutcomeKind::no_memory};
    const ReflectorStore<Real> store{q.columns(0, count),
                                     View<Real>(couplings.data(), kBlock, count, count), kBlock};
    finish_store(store);
    return form_orthogonal(store, q);
}

template <class Real>
void form_orthogonal_plain(View<const Real> vectors, View<Real> q, Scratch<Real> scratch) {
    const Size m = q.height;
    const Size count = vectors.width;
    Real* const u_elements = scratch.take(m);
    Real* const w_elements = scratch.take(m);
    set_identity(q.block(count, count, m - count, m - count));
    kernel::fill(Real(0), q.block(0, count, count, m - count));
    for (Size k = count - 1; k >= 0; --k) {
        //  | 1    0  |      | 1 - u0 u0    -u0 w^T      |
        //  | 0   Q22 |  ->  |   - u1 u0   Q22 - u1 w^T  |,   w = Q22^T u1
        const Size rest = m - k - 1;
        const Strided<Real> u(u_elements, m - k);
        const Strided<Real> u1 = u.part(1, rest);
        const Strided<Real> w(w_elements, rest);
        const Strided<Real> column = q.column(k);
        const View<Real> q22 = q.block(k + 1, k + 1, rest, rest);
        kernel::copy(vectors.column(k).part(k, m - k), u);
        const Real head = u(0);
        reflect_from_left(reading(u1), q22, w);
        for (Size j = 0; j < rest; ++j) q(k, k + 1 + j) = -head * w(j);
        for (Size i = 0; i < k; ++i) column(i) = 0;
        column(k) = 1 - head * head;
        for (Size i = 0; i < rest; ++i) column(k + 1 + i) = -head * u1(i);
    }
}

#define NEQUAR_INSTANTIATE(Real)                                                               \
    template void couple_reflectors(View<const Real>, View<Real>);                             \
    template void couple_blocks(View<const Real>, View<const Real>, View<Real>);               \
    template void apply_block_reflector(Side, View<const Real>, View<const Real>, View<Real>,  \
                                        View<Real>);                                           \
    template void finish_store(const ReflectorStore<Real>&);                                   \
    template void apply_reflectors(Side, const ReflectorStore<Real>&, View<Real>, View<Real>); \
    template void apply_reflectors_plain(Side, View<const Real>, View<Real>, Strided<Real>);   \
    template void form_orthogonal(const ReflectorStore<Real>&, View<Real>, Scratch<Real>);     \
    template Outcome form_orthogonal(const ReflectorStore<Real>&, View<Real>);                 \
    template Outcome form_orthogonal(View<Real>, Size);                                        \
    template Size scratch_to_form_orthogonal<Real>(Size, Size, Size);                          \
    template void form_orthogonal_plain(View<const Real>, View<Real>, Scratch<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
