#include "factorization/algorithm/pivoted_qr.h"

#include <cmath>

#include "core/workspace.h"
#include "factorization/algorithm/reflector.h"
#include "factorization/algorithm/scratch.h"
#include "kernel/kernel.h"

namespace nequar {

using kernel::Update;

namespace {

constexpr Size kSmallestBlockedSize = 80;

// The running column norms and what they choose.
template <class Real>
struct Pivoting {
    Real* c;
    int* perm;
    Size n;
    PivotedQrResult* result;
    Size pivot = 0;
    Real largest = -1;

    void choose(Size first) {
        largest = -1;
        pivot = first;
        for (Size j = first; j < n; ++j)
            if (c[j] > largest) {  // false for NaN
                largest = c[j];
                pivot = j;
            }
    }

    void start(View<const Real> a) {
        for (Size j = 0; j < n; ++j) {
            perm[j] = static_cast<int>(j);
            c[j] = 0;
        }
        for (Size i = 0; i < a.height; ++i) {
            const Strided<const Real> row = a.row(i);
            for (Size j = 0; j < n; ++j) c[j] += std::abs(row(j));
        }
        choose(0);
    }

    bool goes_on() const { return largest > 0; }

    // Brings the pivot column to column k of A.
    void exchange(Size k, View<Real> a) {
        if (pivot == k) return;
        ++result->interchanges;
        std::swap(perm[k], perm[pivot]);
        std::swap(c[k], c[pivot]);
        kernel::swap(a.column(k), a.column(pivot));
    }

    // Row k of R is done.
    void downdate(Size k, Strided<const Real> row) {
        for (Size j = k + 1; j < n; ++j) {
            c[j] -= std::abs(row(j));
            if (c[j] < 0) c[j] = 0;
        }
        choose(k + 1);
    }
};

// A reflection is made when beta > 0 only; NaN makes none.
template <class Real>
bool reflect_column(Strided<Real> x, Strided<Real> u) {
    const Reflection<Real> reflection = make_reflector(reading(x), u);
    if (!(u(0) > 0)) {
        for (Size i = 0; i < u.size; ++i) u(i) = 0;
        return false;
    }
    x(0) = reflection.image;
    return true;
}

template <class Real>
Outcome pivoted_qr_plain(View<Real> a, const View<Real>* q, Pivoting<Real> pivoting) {
    const Size m = a.height;
    const Size n = a.width;
    Workspace<Real> elements(2 * Scratch<Real>::rounded(m) + n);
    if (!elements) return {OutcomeKind::no_memory};
    Size k = 0;
    for (; k < n && pivoting.goes_on(); ++k) {
        pivoting.exchange(k, a);
        const Size right = n - k - 1;
        const Strided<Real> u(elements.data(), m - k);
        if (reflect_column(a.column(k).part(k, m - k), u))
            reflect_from_left(reading(u), a.block(k, k + 1, m - k, right),
                              Strided<Real>(elements.data() + m, right));
        if (q != nullptr) kernel::copy(reading(u), q->column(k).part(k, m - k));
        pivoting.downdate(k, reading(a.row(k)));
    }
    pivoting.result->rank = static_cast<int>(k);
    if (q == nullptr) return Outcome::success();
    return form_orthogonal(*q, k);
}

// The steps from column `first` on, at most `block` of them; answers how many were made. The
// trailing matrix is up to date before and after.
//
//   U (m - first) x block, F (n - first) x block;  columns j are step first + j
template <class Real>
Size factor_panel(View<Real> a, Size first, Size block, View<Real> u, View<Real> f, Real* coupling,
                  Pivoting<Real>& pivoting) {
    const Size m = a.height;
    const Size n = a.width;
    Size made = 0;
    for (; made < block && first + made < n && pivoting.goes_on(); ++made) {
        const Size j = made;
        const Size k = first + j;
        const Size height = m - k;
        const Size right = n - k - 1;
        if (pivoting.pivot != k)
            kernel::swap(f.row(j).part(0, j), f.row(pivoting.pivot - first).part(0, j));
        pivoting.exchange(k, a);

        const Strided<Real> column = a.column(k).part(k, height);
        const View<const Real> u_before = u.block(j, 0, height, j);
        kernel::gemv(Real(-1), u_before, reading(f.row(j).part(0, j)), Update::accumulate, column);

        const Strided<Real> uj = u.column(j).part(j, height);
        kernel::fill(Real(0), u.block(0, j, j, 1));
        const Strided<Real> fj = f.column(j).part(j + 1, right);
        if (reflect_column(column, uj)) {
            // f_j = A^T u_j - F (U^T u_j)
            const Strided<Real> t(coupling, j);
            kernel::gemv(Real(1), reading(a.block(k, k + 1, height, right).transposed()),
                         reading(uj), Update::set, fj);
            kernel::gemv(Real(1), u_before.transposed(), reading(uj), Update::set, t);
            kernel::gemv(Real(-1), reading(f.block(j + 1, 0, right, j)), reading(t),
                         Update::accumulate, fj);
        } else {
            for (Size i = 0; i < right; ++i) fj(i) = 0;
        }
        kernel::gemv(Real(-1), reading(f.block(j + 1, 0, right, j + 1)),
                     reading(u.row(j).part(0, j + 1)), Update::accumulate,
                     a.row(k).part(k + 1, right));
        pivoting.downdate(k, reading(a.row(k)));
    }
    const Size done = first + made;
    kernel::gemm(Real(-1), reading(u.block(made, 0, m - done, made)),
                 reading(f.block(made, 0, n - done, made).transposed()), Update::accumulate,
                 a.block(done, done, m - done, n - done));
    return made;
}

template <class Real>
Outcome pivoted_qr_blocked(View<Real> a, const View<Real>* q, Pivoting<Real> pivoting, Size block) {
    const Size m = a.height;
    const Size n = a.width;
    Workspace<Real> u_elements(block * padded_length(m));
    Workspace<Real> f_elements(block * padded_length(n) + block);
    Workspace<Real> s_elements(q != nullptr ? block * n : 0);
    if (!u_elements || !f_elements || !s_elements) return {OutcomeKind::no_memory};
    Real* const coupling = f_elements.data() + block * padded_length(n);
    const View<Real> couplings(s_elements.data(), block, n, n);

    Size k = 0;
    for (Size made = block; made == block;) {
        const View<Real> u = scratch_by_columns(u_elements.data(), m - k, block, a.row_stride);
        const View<Real> f = scratch_by_columns(f_elements.data(), n - k, block, a.column_stride);
        made = factor_panel(a, k, block, u, f, coupling, pivoting);
        if (q != nullptr && made > 0) {
            const View<Real> made_u = u.columns(0, made);
            kernel::copy(reading(made_u), q->block(k, k, m - k, made));
            couple_reflectors(reading(made_u), couplings.block(0, k, made, made));
        }
        k += made;
    }
    pivoting.result->rank = static_cast<int>(k);
    if (q == nullptr) return Outcome::success();
    return form_orthogonal(ReflectorStore<Real>{q->columns(0, k), couplings.columns(0, k), block},
                           *q);
}

}  // namespace

template <class Real>
Outcome pivoted_qr(View<Real> a, const View<Real>* q, int* perm, PivotedQrResult& result,
                   QrBlocking blocking) {
    const Size n = a.width;
    Workspace<Real> norms(n);
    if (!norms) return {OutcomeKind::no_memory};
    result = {};
    Pivoting<Real> pivoting{norms.data(), perm, n, &result};
    pivoting.start(reading(a));
    const Size block = blocking.block > 0         ? blocking.block
                       : n < kSmallestBlockedSize ? 1
                       : n < 300                  ? 16
                       : n < 768                  ? 32
                                                  : 48;
    return block == 1 ? pivoted_qr_plain(a, q, pivoting)
                      : pivoted_qr_blocked(a, q, pivoting, block);
}

#define NEQUAR_INSTANTIATE(Real) \
    template Outcome pivoted_qr(View<Real>, const View<Real>*, int*, PivotedQrResult&, QrBlocking);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
