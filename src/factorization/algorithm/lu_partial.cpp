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

// A row of a panel and the padding behind it: an odd number of cache lines, so that the rows do not
// meet in the same sets of the cache.
template <class Real>
Size panel_stride(Size m) {
    constexpr Size kLine = 64 / Size(sizeof(Real));
    return ((m + kernel::kPanelPadding + kLine - 1) / kLine | 1) * kLine;
}

template <class Real>
class Factorization {
public:
    Factorization(kernel::Rounding rounding, Size panel_width, Real* panel)
        : rounding_(rounding), panel_width_(panel_width), panel_(panel) {}

    // Factors the m x n view, m >= n; pivots[k] >= k is the row exchanged with row k. Answers the
    // first column without a pivot, or -1.
    Size factor(View<Real> a, int* pivots) {
        const Size m = a.height;
        const Size n = a.width;
        if (n <= panel_width_) {
            const View<Real> t(panel_, n, m, panel_stride<Real>(m));
            kernel::transpose(reading(a), t);
            const Size zero = kernel::lu_panel(rounding_, t, pivots);
            kernel::transpose(reading(t), a);
            return zero;
        }
        const Size n1 = split_of(n, panel_width_);
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

    kernel::Rounding rounding_;
    Size panel_width_;
    Real* panel_;
};

// False when there is no memory for the panel.
template <class Real>
[[gnu::noinline]] bool factor_by_panels(View<Real> a, int* pivots,
                                        const LuPartialBlocking& blocking, Size& zero) {
    const Size n = a.height;
    const bool is_plain = n <= blocking.plain;
    const Size width = is_plain ? n : std::min(n, blocking.panel);
    Workspace<Real, 16384> panel(width * panel_stride<Real>(n));
    if (!panel) return false;
    const auto rounding = is_plain ? kernel::Rounding::separate : kernel::Rounding::fused;
    zero = Factorization<Real>(rounding, width, panel.data()).factor(a, pivots);
    return true;
}

}  // namespace

template <class Real>
Outcome lu_partial_in_place(View<Real> a, int* perm, int& interchanges,
                            LuPartialBlocking blocking) {
    const Size n = a.height;
    Workspace<int, 1024> pivots(n);
    if (!pivots) return {OutcomeKind::no_memory};
    Size zero = -1;
    if (n <= std::min(blocking.rows, blocking.plain)) {
        zero = kernel::lu_pivoted_small(a, pivots.data());
    } else if (!factor_by_panels(a, pivots.data(), blocking, zero)) {
        return {OutcomeKind::no_memory};
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
