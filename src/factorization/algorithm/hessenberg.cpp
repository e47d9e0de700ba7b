#include "factorization/algorithm/hessenberg.h"

#include "core/workspace.h"
#include "factorization/algorithm/block_reflector.h"
#include "factorization/algorithm/reflector.h"
#include "factorization/algorithm/scratch.h"
#include "kernel/kernel.h"

namespace nequar {

using kernel::Diagonal;
using kernel::Triangle;
using kernel::Update;

namespace {

constexpr Size kSmallestBlockedSize = 56;

template <class Real>
void set_border_of_identity(View<Real> q) {
    for (Size i = 0; i < q.height; ++i) q(i, 0) = q(0, i) = 0;
    q(0, 0) = 1;
}

// The part of Q that the reflectors reach: rows and columns from 1 on.
template <class Real>
View<Real> reflected_part(View<Real> q) {
    return q.block(1, 1, q.height - 1, q.width - 1);
}

template <class Real>
Outcome hessenberg_plain(View<Real> a, const View<Real>* q) {
    const Size n = a.height;
    const Size count = n - 2;
    Workspace<Real> elements(2 * Scratch<Real>::rounded(n));
    if (!elements) return {OutcomeKind::no_memory};
    Real* const w = elements.data() + n;
    for (Size k = 0; k < count; ++k) {
        const Size height = n - k - 1;
        const Strided<Real> u(elements.data(), height);
        const Reflection<Real> reflection =
            make_reflector(reading(a.column(k).part(k + 1, height)), u);
        if (q != nullptr) kernel::copy(reading(u), q->column(k + 1).part(k + 1, height));
        if (reflection.is_none) continue;
        a(k + 1, k) = reflection.image;
        reflect_from_left(reading(u), a.block(k + 1, k + 1, height, height),
                          Strided<Real>(w, height));
        reflect_from_left(reading(u), a.block(0, k + 1, n, height).transposed(),
                          Strided<Real>(w, n));
    }
    if (q == nullptr) return Outcome::success();
    const View<Real> part = reflected_part(*q);
    const Outcome outcome = form_orthogonal(part, count);
    set_border_of_identity(*q);
    return outcome;
}

// Scratch of one panel: U and Y n x block, S block x block, and vectors.
template <class Real>
struct Panel {
    View<Real> u, y, s;
    Real* t;
};

// Columns k ... k + width of A are brought to Hessenberg form below row k, and U, S and the rows
// of Y below row k are found. U and Y are counted from row k + 1 on.
template <class Real>
void find_reflectors(View<Real> a, Size k, const Panel<Real>& panel) {
    const Size n = a.height;
    const Size width = panel.u.width;
    const Size rows = n - k - 1;
    for (Size j = 0; j < width; ++j) {
        const Strided<Real> b = a.column(k + j).part(k + 1, rows);
        const View<const Real> u = panel.u.columns(0, j);
        const View<const Real> y = panel.y.columns(0, j);
        const View<const Real> s = panel.s.block(0, 0, j, j);
        const Strided<Real> t(panel.t, j);
        if (j > 0) {
            // row j - 1 of U is row k + j of A
            kernel::gemv(Real(-1), y, u.row(j - 1), Update::accumulate, b);
            kernel::gemv(Real(1), u.transposed(), reading(b), Update::set, t);
            kernel::trsv(Triangle::lower, Diagonal::unit, s.transposed(), t);
            kernel::gemv(Real(-1), u, reading(t), Update::accumulate, b);
        }
        const Strided<Real> column = panel.u.column(j);
        kernel::fill(Real(0), panel.u.block(0, j, j, 1));
        const Strided<Real> uj = column.part(j, rows - j);
        const Reflection<Real> reflection = make_reflector(reading(b.part(j, rows - j)), uj);
        if (!reflection.is_none) b(j) = reflection.image;
        // s_j = U^T u_j,  y_j = A u_j - Y s_j
        const Strided<Real> sj = panel.s.column(j).part(0, j);
        kernel::gemv(Real(1), u.rows(j, rows - j).transposed(), reading(uj), Update::set, sj);
        const Strided<Real> yj = panel.y.column(j);
        kernel::gemv(Real(1), reading(a.block(k + 1, k + 1 + j, rows, rows - j)), reading(uj),
                     Update::set, yj);
        kernel::gemv(Real(-1), y, reading(sj), Update::accumulate, yj);
    }
}

template <class Real>
Outcome hessenberg_blocked(View<Real> a, const View<Real>* q, Size block) {
    const Size n = a.height;
    const Size count = n - 2;
    using S = Scratch<Real>;
    const Size panel_size = 2 * block * padded_length(n);
    const Size kept = q != nullptr ? count : block;
    Workspace<Real> work(2 * S::rounded(panel_size) + S::rounded(block * kept) +
                         S::rounded(block * block) + block);
    if (!work) return {OutcomeKind::no_memory};
    S scratch(work.data());
    Real* const uy_elements = scratch.take(panel_size);
    Real* const w_elements = scratch.take(panel_size);
    const View<Real> couplings(scratch.take(block * kept), block, kept, kept);
    Real* const uy_products = scratch.take(block * block);
    Real* const t = scratch.take(block);

    for (Size k = 0; k < count; k += block) {
        const Size width = count - k < block ? count - k : block;
        const Size rows = n - k - 1;
        const View<Real> uy = scratch_by_columns(uy_elements, rows, 2 * width, a.row_stride);
        const View<Real> u = uy.columns(0, width);
        const View<Real> y = uy.columns(width, width);
        const View<Real> s = couplings.block(0, q != nullptr ? k : 0, width, width);
        find_reflectors(a, k, {u, y, s, t});

        // Rows above: Y = A U T, and A := A - Y U^T for the columns from k + 1 on. Column k + 1 + i
        // belongs to row i of U.
        const View<Real> above = a.block(0, k + 1, k + 1, rows);
        const View<Real> y_above = scratch_by_columns(w_elements, k + 1, width, a.row_stride);
        kernel::gemm(Real(1), reading(above), reading(u), Update::set, y_above);
        // Y := Y T, the transposed problem
        kernel::trsm(Triangle::lower, Diagonal::unit, reading(s.transposed()),
                     y_above.transposed());
        kernel::gemm(Real(-1), reading(y_above), reading(u.transposed()), Update::accumulate,
                     above);

        // The trailing columns below row k, from both sides at once; columns of the panel are done.
        // With U2 the rows of U that belong to them,
        //   (I - U T U^T)^T (A - Y U2^T) = A - | U Y | | W   |,   W = T^T (U^T A - (U^T Y) U2^T)
        //                                              | U2^T |
        const Size right = rows - width + 1;
        const View<Real> trailing = a.block(k + 1, k + width, rows, right);
        const View<Real> factors = scratch_by_rows(w_elements, 2 * width, right, a.column_stride);
        const View<Real> w = factors.rows(0, width);
        const View<Real> u2 = factors.rows(width, width);
        const View<Real> uty(uy_products, width, width, width);
        kernel::transpose(reading(u.rows(width - 1, right)), u2);
        kernel::gemm(Real(1), reading(u.transposed()), reading(y), Update::set, uty);
        kernel::gemm(Real(1), reading(u.transposed()), reading(trailing), Update::set, w);
        kernel::gemm(Real(-1), reading(uty), reading(u2), Update::accumulate, w);
        kernel::trsm(Triangle::lower, Diagonal::unit, reading(s.transposed()), w);
        kernel::gemm(Real(-1), reading(uy), reading(factors), Update::accumulate, trailing);
        if (q != nullptr) kernel::copy(reading(u), q->block(k + 1, k + 1, rows, width));
    }
    if (q == nullptr) return Outcome::success();
    const View<Real> part = reflected_part(*q);
    const Outcome outcome =
        form_orthogonal(ReflectorStore<Real>{part.columns(0, count), couplings, block}, part);
    set_border_of_identity(*q);
    return outcome;
}

}  // namespace

template <class Real>
Outcome hessenberg(View<Real> a, const View<Real>* q, Size block) {
    const Size n = a.height;
    if (n <= 2) {
        if (q != nullptr)
            for (Size i = 0; i < n; ++i)
                for (Size j = 0; j < n; ++j) (*q)(i, j) = i == j;
        return Outcome::success();
    }
    if (block == 0)
        block = n < kSmallestBlockedSize ? 1 : n < 80 ? 8 : n < 300 ? 16 : n < 768 ? 32 : 48;
    return block == 1 ? hessenberg_plain(a, q) : hessenberg_blocked(a, q, block);
}

#define NEQUAR_INSTANTIATE(Real) template Outcome hessenberg(View<Real>, const View<Real>*, Size);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
