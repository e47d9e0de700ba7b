#include "factorization/algorithm/pivot_order.h"

#include <algorithm>
#include <utility>

#include "core/workspace.h"
#include "kernel/kernel.h"

namespace nequar {
namespace {

constexpr Size kSmallOrder = 32;  // up to here the columns are walked where they stand
constexpr Size kPanelBytes = 64;  // a panel takes one cache line of every row

void exchange(int* perm, Size i, Size r, int& interchanges) {
    if (i == r) return;
    std::swap(perm[i], perm[r]);
    ++interchanges;
}

template <class Real>
void choose_by_columns(View<const Real> a, int* perm, int& interchanges) {
    for (Size j = 0; j < a.width; ++j) {
        const Real* const column = &a(0, j);
        Size pivot = j;
        Real largest = 0;
        for (Size i = j; i < a.height; ++i) {
            const Real element = column[perm[i] * a.row_stride];
            const Real magnitude = element < 0 ? -element : element;
            if (magnitude >= largest) {  // false for NaN
                largest = magnitude;
                pivot = i;
            }
        }
        exchange(perm, j, pivot, interchanges);
    }
}

// The columns j ... j+w-1 of the rows that are still in the race, in their current order, are laid
// out so that each becomes contiguous, from its last row to its first: the first of equals in this
// direction is the last one of the column.
//
//   panel(c, m-1-i) = a(perm[j+i], j+c),   0 <= i < m = n-j
template <class Real>
void choose_by_panels(View<const Real> a, int* perm, int& interchanges, Real* panel) {
    constexpr Size kWidth = kPanelBytes / Size(sizeof(Real));
    const Size n = a.height;
    for (Size j = 0; j < n; j += kWidth) {
        const Size width = std::min(kWidth, n - j);
        const Size m = n - j;
        for (Size i = 0; i < m; ++i) {
            const Real* const row = &a(perm[j + i], j);
            for (Size c = 0; c < width; ++c) panel[c * n + m - 1 - i] = row[c * a.column_stride];
        }
        for (Size c = 0; c < width; ++c) {
            const Strided<const Real> candidates(panel + c * n, m - c);
            Size at = kernel::index_of_largest_magnitude(candidates);
            if (candidates(at) != candidates(at)) at = m - c - 1;  // nothing but NaN
            const Size pivot = m - 1 - at;
            if (pivot == c) continue;
            exchange(perm, j + c, j + pivot, interchanges);
            for (Size k = c + 1; k < width; ++k)
                std::swap(panel[k * n + m - 1 - c], panel[k * n + at]);
        }
    }
}

}  // namespace

template <class Real>
Size last_largest_magnitude(Strided<const Real> candidates) {
    const Size last = candidates.size - 1;
    const Strided<const Real> reversed(&candidates(last), candidates.size, -candidates.stride);
    const Size at = kernel::index_of_largest_magnitude(reversed);
    return reversed(at) != reversed(at) ? 0 : last - at;
}

template <class Real>
Outcome choose_pivots_before_update(View<const Real> a, int* perm, int& interchanges) {
    const Size n = a.height;
    for (Size i = 0; i < n; ++i) perm[i] = static_cast<int>(i);
    interchanges = 0;
    if (n <= kSmallOrder) {
        choose_by_columns(a, perm, interchanges);
        return Outcome::success();
    }
    Workspace<Real, 16384> panel(kPanelBytes / Size(sizeof(Real)) * n);
    if (!panel) return {OutcomeKind::no_memory};
    choose_by_panels(a, perm, interchanges, panel.data());
    return Outcome::success();
}

#define NEQUAR_INSTANTIATE(Real)                               \
    template Size last_largest_magnitude(Strided<const Real>); \
    template Outcome choose_pivots_before_update(View<const Real>, int*, int&);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
