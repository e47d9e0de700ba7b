#include "factorization/algorithm/lu_partial.h"

#include <algorithm>
#include <utility>

#include "core/workspace.h"
#include "factorization/algorithm/elimination.h"
#include "kernel/kernel.h"

namespace nequar {
namespace {

using kernel::Diagonal;
using kernel::Triangle;
using kernel::Update;

// A small square matrix, row by row. While the rows are updated, the next column's largest element
// is found.
template <class Real>
Size eliminate_small(View<Real> a, int* pivots) {
    const Size n = a.height;
    Size zero = -1;
    for (Size k = 0; k < n; ++k) {
        const Size r = k + kernel::index_of_largest_magnitude(reading(a.column(k).part(k, n - k)));
        pivots[k] = static_cast<int>(r);
        if (r != k) kernel::swap(a.row(r), a.row(k));
        const Real pivot = a(k, k);
        if (pivot == 0) {
            if (zero < 0) zero = k;
            continue;
        }
        divide_by_pivot(pivot, a.column(k).part(k + 1, n - k - 1));
        const Strided<const Real> pivot_row = reading(a.row(k).part(k + 1, n - k - 1));
        for (Size i = k + 1; i < n; ++i)
            subtract_multiple(a(i, k), pivot_row, a.row(i).part(k + 1, n - k - 1));
    }
    return zero;
}

// An m x w panel, m >= w, held transposed: row c of t is column c of the panel.
template <class Real>
Size eliminate_panel(View<Real> t, int* pivots) {
    const Size w = t.height;
    const Size m = t.width;
    Size zero = -1;
    for (Size k = 0; k < w; ++k) {
        const Size r = k + kernel::index_of_largest_magnitude(reading(t.row(k).part(k, m - k)));
        pivots[k] = static_cast<int>(r);
        if (r != k) kernel::swap(t.column(r), t.column(k));
        const Real pivot = t(k, k);
        if (pivot == 0) {
            if (zero < 0) zero = k;
            continue;
        }
        const Strided<Real> multipliers = t.row(k).part(k + 1, m - k - 1);
        if (reciprocal_overflows(pivot))
            divide_by_pivot(pivot, multipliers);
        else
            kernel::scale(1 / pivot, multipliers);
        kernel::ger(Real(-1), reading(t.column(k).part(k + 1, w - k - 1)), reading(multipliers),
                    t.block(k + 1, k + 1, w - k - 1, m - k - 1));
    }
    return zero;
}

template <class Real>
class Factorization {
public:
    Factorization(LuPartialBlocking blocking, Real* panel) : blocking_(blocking), panel_(panel) {}

    // Factors the m x n view, m >= n; pivots[k] >= k is the row exchanged with row k. Answers the
    // first column without a pivot, or -1.
    Size factor(View<Real> a, int* pivots) {
        const Size m = a.height;
        const Size n = a.width;
        if (n <= blocking_.panel) {
            const View<Real> t(panel_, n, m, m);
            kernel::transpose(reading(a), t);
            const Size zero = eliminate_panel(t, pivots);
            kernel::transpose(reading(t), a);
            return zero;
        }
        const Size n1 = split_of(n, blocking_.panel);
        const Size n2 = n - n1;
        const View<Real> left = a.columns(0, n1);
        const View<Real> right = a.columns(n1, n2);
        const Size zero = factor(left, pivots);
        exchange_rows(right, pivots, 0, n1);
        const View<Real> a12 = right.rows(0, n1);
        const View<Real> a22 = right.rows(n1, m - n1);
        kernel::trsm(Triangle::lower, Diagonal::unit, reading(left.rows(0, n1)), a12);
        kernel::gemm(Real(-1), reading(left.rows(n1, m - n1)), reading(a12), Update::accumulate,
                     a22);
        const Size later_zero = factor(a22, pivots + n1);
        exchange_rows(left.rows(n1, m - n1), pivots + n1, 0, n2);
        for (Size k = n1; k < n; ++k) pivots[k] += static_cast<int>(n1);
        if (zero >= 0) return zero;
        return later_zero >= 0 ? n1 + later_zero : -1;
    }

private:
    static void exchange_rows(View<Real> a, const int* pivots, Size first, Size last) {
        for (Size k = first; k < last; ++k)
            if (pivots[k] != k) kernel::swap(a.row(k), a.row(pivots[k]));
    }

    LuPartialBlocking blocking_;
    Real* panel_;
};

}  // namespace

template <class Real>
Outcome lu_partial_in_place(View<Real> a, int* perm, int& interchanges,
                            LuPartialBlocking blocking) {
    const Size n = a.height;
    Workspace<int, 1024> pivots(n);
    if (!pivots) return {OutcomeKind::no_memory};
    Size zero = -1;
    if (n <= blocking.plain) {
        zero = eliminate_small(a, pivots.data());
    } else {
        Workspace<Real> panel(std::min(n, blocking.panel) * n);
        if (!panel) return {OutcomeKind::no_memory};
        zero = Factorization<Real>(blocking, panel.data()).factor(a, pivots.data());
    }
    interchanges = 0;
    for (Size i = 0; i < n; ++i) perm[i] = static_cast<int>(i);
    for (Size k = 0; k < n; ++k) {
        const int r = pivots.data()[k];
        if (r == k) continue;
        std::swap(perm[k], perm[r]);
        ++interchanges;
    }
    if (zero >= 0) return {OutcomeKind::singular, zero};
    return Outcome::success();
}

#define NEQUAR_INSTANTIATE(Real) \
    template Outcome lu_partial_in_place(View<Real>, int*, int&, LuPartialBlocking);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
