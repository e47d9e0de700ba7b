#include "factorization/algorithm/bidiagonal.h"

#include <cmath>

#include "core/workspace.h"
#include "factorization/algorithm/range.h"
#include "factorization/algorithm/reflector.h"
#include "factorization/algorithm/scratch.h"
#include "kernel/kernel.h"

namespace nequar {

using kernel::Update;

namespace {

constexpr Size kSmallestBlockedSize = 72;

// Columns that stay in the first-level cache between their two uses.
template <class Real>
Size columns_at_hand(Size height) {
    constexpr Size bytes = Size(32) * 1024;
    const Size columns = bytes / (height * Size(sizeof(Real)) + 1) / 4 * 4;
    return columns < 4 ? 4 : columns > 64 ? 64 : columns;
}

// The reflector of row or column `line`, into `vector` and the store; answers its image.
template <class Real>
Reflection<Real> reflector_of(Strided<const Real> line, Strided<Real> vector,
                              const ReflectorStore<Real>* store, Size k) {
    const Reflection<Real> reflection = make_reflector(line, vector);
    if (store != nullptr)
        kernel::copy(reading(vector), store->vectors.column(k).part(k, vector.size));
    return reflection;
}

template <class Real>
Outcome bidiagonalize_plain(View<Real> a, Real* d, Real* f, const BidiagonalStores<Real>& stores) {
    const Size m = a.height;
    const Size n = a.width;
    using S = Scratch<Real>;
    Workspace<Real> work(2 * S::rounded(m));
    if (!work) return {OutcomeKind::no_memory};
    Real* const elements = work.data();
    Real* const w = elements + S::rounded(m);
    for (Size k = 0; k < n; ++k) {
        const Size rows = m - k;
        const Size columns = n - k - 1;
        const Strided<Real> u(elements, rows);
        const Reflection<Real> on_left =
            reflector_of(reading(a.column(k).part(k, rows)), u, stores.left, k);
        d[k] = on_left.image;
        if (columns == 0) break;
        if (!on_left.is_none)
            reflect_from_left(reading(u), a.block(k, k + 1, rows, columns),
                              Strided<Real>(w, columns));
        const Strided<Real> row = a.row(k).part(k + 1, columns);
        if (columns == 1) {
            f[k] = row(0);
            continue;
        }
        const Strided<Real> v(elements, columns);
        const Reflection<Real> on_right = reflector_of(reading(row), v, stores.right, k);
        f[k] = on_right.image;
        if (!on_right.is_none)
            reflect_from_left(reading(v), a.block(k + 1, k + 1, rows - 1, columns).transposed(),
                              Strided<Real>(w, rows - 1));
    }
    return Outcome::success();
}

// One panel: the matrix from its corner on, P and Q with two columns for each reflector, and
// vectors of 2 block and n elements.
template <class Real>
struct Panel {
    View<Real> a, p, q;
    Real* t;
    Real* row;
};

// y, the row and the sum of the row's columns beyond its first, in one walk over the columns from
// j + 1 on: y = A^T u - Q t, row -= Q s + y u(0), x = sum of row(i) A e_i.
template <class Real>
void walk_columns(const Panel<Real>& panel, Size j, Strided<const Real> u, Strided<const Real> t,
                  Strided<const Real> s, Strided<Real> row, Strided<Real> x) {
    const Size columns = row.size;
    const View<Real> right = panel.a.block(j, j + 1, u.size, columns);
    const View<const Real> q = panel.q.block(j + 1, 0, columns, 2 * j);
    const Strided<Real> y = panel.q.column(2 * j).part(j + 1, columns);
    const Size step = columns_at_hand<Real>(u.size);
    kernel::gemv(Real(-1), q, s, Update::accumulate, row);
    kernel::gemv(Real(-1), q, t, Update::set, y);
    bool is_first = true;
    for (Size first = 0; first < columns; first += step) {
        const Size count = columns - first < step ? columns - first : step;
        const View<const Real> part = right.columns(first, count);
        const Strided<Real> y_part = y.part(first, count);
        kernel::gemv(Real(1), part.transposed(), u, Update::accumulate, y_part);
        const Size skipped = first == 0 ? 1 : 0;
        for (Size i = 0; i < count; ++i) row(first + i) -= y_part(i) * u(0);
        if (count == skipped) continue;
        kernel::gemv(Real(1), part.block(1, skipped, x.size, count - skipped),
                     reading(row.part(first + skipped, count - skipped)),
                     is_first ? Update::set : Update::accumulate, x);
        is_first = false;
    }
}

// x = A v from the sum that the walk made, or, where v is no multiple of the row, anew.
template <class Real>
void scale_sum(View<const Real> below, Real factor, Strided<const Real> v, Strided<Real> x) {
    if (factor == 0) {
        kernel::gemv(Real(1), below, v, Update::set, x);
        return;
    }
    kernel::scale(factor, x);
    kernel::axpy(v(0), below.column(0), x);
}

// Column j and row j of the panel are reduced; k is their place in the whole.
template <class Real>
void reduce_one(const Panel<Real>& panel, Size j, Size k, Real* d, Real* f,
                const BidiagonalStores<Real>& stores) {
    const View<Real>& a = panel.a;
    const Size rows = a.height - j;
    const Size columns = a.width - j - 1;
    const View<const Real> p = panel.p.block(j, 0, rows, 2 * j);
    const Strided<Real> column = a.column(j).part(j, rows);
    kernel::gemv(Real(-1), p, reading(panel.q.row(j).part(0, 2 * j)), Update::accumulate, column);
    const Strided<Real> u = panel.p.column(2 * j).part(j, rows);
    d[k] = reflector_of(reading(column), u, stores.left, k).image;
    if (columns == 0) return;

    const Strided<Real> t(panel.t, 2 * j);
    kernel::gemv(Real(1), p.transposed(), reading(u), Update::set, t);
    const Strided<Real> row(panel.row, columns);
    const Strided<Real> x = panel.p.column(2 * j + 1).part(j + 1, rows - 1);
    kernel::copy(reading(a.row(j).part(j + 1, columns)), row);
    walk_columns(panel, j, reading(u), reading(t), p.row(0), row, x);
    const Strided<Real> v = panel.q.column(2 * j + 1).part(j + 1, columns);
    if (columns == 1) {
        f[k] = row(0);
        v(0) = 0;
        for (Size i = 0; i < x.size; ++i) x(i) = 0;
        return;
    }
    const Reflection<Real> reflection = reflector_of(reading(row), v, stores.right, k);
    f[k] = reflection.image;
    if (reflection.is_none) {
        for (Size i = 0; i < x.size; ++i) x(i) = 0;
        return;
    }
    scale_sum(reading(a.block(j + 1, j + 1, rows - 1, columns)), reflection.factor, reading(v), x);
    const Strided<Real> s(panel.t, 2 * j + 1);
    kernel::gemv(Real(1), reading(panel.q.block(j + 1, 0, columns, 2 * j + 1).transposed()),
                 reading(v), Update::set, s);
    kernel::gemv(Real(-1), reading(panel.p.block(j + 1, 0, rows - 1, 2 * j + 1)), reading(s),
                 Update::accumulate, x);
}

template <class Real>
Outcome bidiagonalize_blocked(View<Real> a, Real* d, Real* f, const BidiagonalStores<Real>& stores,
                              Size block) {
    const Size m = a.height;
    const Size n = a.width;
    using S = Scratch<Real>;
    const Size p_size = 2 * block * padded_length(m);
    const Size q_size = 2 * block * padded_length(n);
    Workspace<Real> work(S::rounded(p_size) + S::rounded(q_size) + S::rounded(2 * block) +
                         S::rounded(n));
    if (!work) return {OutcomeKind::no_memory};
    S scratch(work.data());
    Real* const p_elements = scratch.take(p_size);
    Real* const q_elements = scratch.take(q_size);
    Real* const t = scratch.take(2 * block);
    Real* const row = scratch.take(n);
    for (Size k = 0; k < n; k += block) {
        const Size width = n - k < block ? n - k : block;
        const Panel<Real> panel{a.block(k, k, m - k, n - k),
                                scratch_by_columns(p_elements, m - k, 2 * width, a.row_stride),
                                scratch_by_columns(q_elements, n - k, 2 * width, a.column_stride),
                                t, row};
        for (Size j = 0; j < width; ++j) reduce_one(panel, j, k + j, d, f, stores);
        const Size rows = m - k - width;
        const Size columns = n - k - width;
        if (columns > 0)
            kernel::gemm(Real(-1), reading(panel.p.rows(width, rows)),
                         reading(panel.q.rows(width, columns).transposed()), Update::accumulate,
                         panel.a.block(width, width, rows, columns));
    }
    return Outcome::success();
}

}  // namespace

Size block_of_bidiagonal(Size n) {
    return n < kSmallestBlockedSize ? 1 : n < 800 ? 8 : 16;
}

Size block_of_reflectors(Size n) {
    return n < 24 ? 1 : n < 200 ? 16 : n < 600 ? 32 : 48;
}

template <class Real>
Outcome bidiagonalize(View<Real> a, Real* d, Real* f, const BidiagonalStores<Real>& stores,
                      Size block) {
    const Outcome outcome = block <= 1 ? bidiagonalize_plain(a, d, f, stores)
                                       : bidiagonalize_blocked(a, d, f, stores, block);
    if (!outcome) return outcome;
    if (stores.left != nullptr) finish_store(*stores.left);
    if (stores.right != nullptr) finish_store(*stores.right);
    return Outcome::success();
}

namespace {

// Q := the product of the reflectors that lie in its first columns
template <class Real>
Outcome form_from_columns(const ReflectorStore<Real>& store, View<Real> q) {
    if (store.block > 1) return form_orthogonal(store, q);
    Workspace<Real> work(2 * Scratch<Real>::rounded(q.height));
    if (!work) return {OutcomeKind::no_memory};
    form_orthogonal_plain(reading(store.vectors), q, Scratch<Real>(work.data()));
    return Outcome::success();
}

}  // namespace

template <class Real>
Outcome bidiagonalize_in_place(View<Real> a, Real largest, const View<Real>* u, const View<Real>* v,
                               Size block) {
    const Size n = a.width;
    const Size panel = block > 0 ? block : block_of_bidiagonal(n);
    if (block == 0) block = block_of_reflectors(n);
    const Size on_right = right_reflections(n);
    using S = Scratch<Real>;
    const Size copied = S::rounded(n * padded_length(a.height));
    Workspace<Real> work(2 * S::rounded(n) + S::rounded(block * n) + S::rounded(block * on_right) +
                         copied);
    if (!work) return {OutcomeKind::no_memory};
    S scratch(work.data());
    Real* const d = scratch.take(n);
    Real* const f = scratch.take(n);
    ReflectorStore<Real> left, right;
    BidiagonalStores<Real> stores;
    View<Real> inner;  // of V: rows and columns from 1 on
    if (u != nullptr) {
        left = {u->columns(0, n), View<Real>(scratch.take(block * n), block, n, n), block};
        stores.left = &left;
    }
    if (v != nullptr && n > 1) {
        inner = v->block(1, 1, n - 1, n - 1);
        right = {inner.columns(0, on_right),
                 View<Real>(scratch.take(block * on_right), block, on_right, on_right), block};
        stores.right = &right;
    }
    const int exponent = exponent_near_ends(largest);
    const View<Real> columns = scratch_by_columns(scratch.take(copied), a.height, n, Size(1));
    kernel::copy(reading(a), columns);
    scale_by_power_of_two(columns, -exponent);
    Outcome outcome = bidiagonalize(columns, d, f, stores, panel);
    if (outcome && u != nullptr) outcome = form_from_columns(left, *u);
    if (outcome && v != nullptr && n > 1) outcome = form_from_columns(right, inner);
    if (!outcome) return outcome;
    for (Size i = 0; v != nullptr && i < n; ++i) (*v)(0, i) = (*v)(i, 0) = i == 0;
    kernel::fill(Real(0), a);
    for (Size i = 0; i < n; ++i) {
        a(i, i) = std::scalbn(d[i], exponent);
        if (i + 1 < n) a(i, i + 1) = std::scalbn(f[i], exponent);
    }
    return Outcome::success();
}

#define NEQUAR_INSTANTIATE(Real)                                                                   \
    template Outcome bidiagonalize(View<Real>, Real*, Real*, const BidiagonalStores<Real>&, Size); \
    template Outcome bidiagonalize_in_place(View<Real>, Real, const View<Real>*,                   \
                                            const View<Real>*, Size);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
