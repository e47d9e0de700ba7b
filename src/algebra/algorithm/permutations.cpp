#include "algebra/algorithm/permutations.h"

#include <algorithm>

#include "core/wrap.h"
#include "kernel/kernel.h"

namespace nequar {
namespace {

// Calls exchange(i, j) for the wrapped indices of every interchange that changes something.
template <class Exchange>
void for_each_interchange(const Interchanges& list, int lines, Exchange exchange) {
    for (int step = 0; step < list.count; ++step) {
        const int k = list.backwards ? list.count - 1 - step : step;
        const int i = wrapped(list.first != nullptr ? list.first[k] : k, lines);
        const int j = wrapped(list.second[k], lines);
        if (i != j) exchange(i, j);
    }
}

}  // namespace

template <class Real>
void interchange_rows(View<Real> a, const Interchanges& list) {
    if (a.is_empty()) return;
    for_each_interchange(list, static_cast<int>(a.height),
                         [a](int i, int j) { kernel::swap(a.row(i), a.row(j)); });
}

// A panel of rows takes the whole list while it is in the cache.
template <class Real>
void interchange_columns(View<Real> a, const Interchanges& list) {
    constexpr Size kPanel = 8;
    if (a.is_empty()) return;
    for (Size start = 0; start < a.height; start += kPanel) {
        const View<Real> panel = a.rows(start, std::min(kPanel, a.height - start));
        for_each_interchange(list, static_cast<int>(a.width), [panel](int i, int j) {
            for (Size y = 0; y < panel.height; ++y) std::swap(panel(y, i), panel(y, j));
        });
    }
}

RelocationFault check_relocation(int n, const int* r, bool* seen) {
    for (int k = 0; k < n; ++k)
        if (r[k] < 0 || r[k] >= n) return RelocationFault::out_of_range;
    std::fill_n(seen, n, false);
    for (int k = 0; k < n; ++k) {
        if (seen[r[k]]) return RelocationFault::repeated;
        seen[r[k]] = true;
    }
    return RelocationFault::none;
}

template <class Real>
void relocate_columns(View<const Real> a, const int* r, View<Real> b) {
    for (Size y = 0; y < a.height; ++y) {
        const Real* const from = a.row(y).data;
        Real* const to = b.row(y).data;
        for (Size k = 0; k < a.width; ++k)
            if (r[k] != k) to[r[k]] = from[k];
    }
}

template <class Real>
void relocate_rows(View<const Real> a, const int* r, View<Real> b) {
    for (Size k = 0; k < a.height; ++k)
        if (r[k] != k) kernel::copy(a.row(k), b.row(r[k]));
}

template <class Real>
void relocate_columns_in_place(View<Real> a, const int* r, Real* row) {
    for (Size y = 0; y < a.height; ++y) {
        Real* const line = a.row(y).data;
        std::copy_n(line, a.width, row);
        for (Size k = 0; k < a.width; ++k) line[r[k]] = row[k];
    }
}

template <class Real>
void relocate_columns_back(View<Real> a, const int* r, Real* row) {
    for (Size y = 0; y < a.height; ++y) {
        Real* const line = a.row(y).data;
        std::copy_n(line, a.width, row);
        for (Size k = 0; k < a.width; ++k) line[k] = row[r[k]];
    }
}

// Cycle by cycle: k -> r_k -> r_(r_k) … -> k, with the row on its way in `row`.
template <class Real>
void relocate_rows_in_place(View<Real> a, const int* r, Real* row, bool* moved) {
    const Strided<Real> carried(row, a.width);
    std::fill_n(moved, a.height, false);
    for (Size k = 0; k < a.height; ++k) {
        if (moved[k] || r[k] == k) continue;
        kernel::copy(reading(a.row(k)), carried);
        for (Size to = r[k]; to != k; to = r[to]) {
            kernel::swap(carried, a.row(to));
            moved[to] = true;
        }
        kernel::copy(reading(carried), a.row(k));
    }
}

template <class Real>
void relocate_rows_back(View<Real> a, const int* r, Real* row, bool* moved) {
    const Strided<Real> first(row, a.width);
    std::fill_n(moved, a.height, false);
    for (Size k = 0; k < a.height; ++k) {
        if (moved[k] || r[k] == k) continue;
        kernel::copy(reading(a.row(k)), first);
        Size to = k;
        for (; r[to] != k; to = r[to]) {
            kernel::copy(reading(a.row(r[to])), a.row(to));
            moved[to] = true;
        }
        kernel::copy(reading(first), a.row(to));
        moved[to] = true;
    }
}

#define NEQUAR_INSTANTIATE(Real)                                                \
    template void interchange_rows(View<Real>, const Interchanges&);            \
    template void interchange_columns(View<Real>, const Interchanges&);         \
    template void relocate_columns(View<const Real>, const int*, View<Real>);   \
    template void relocate_rows(View<const Real>, const int*, View<Real>);      \
    template void relocate_columns_in_place(View<Real>, const int*, Real*);     \
    template void relocate_columns_back(View<Real>, const int*, Real*);         \
    template void relocate_rows_in_place(View<Real>, const int*, Real*, bool*); \
    template void relocate_rows_back(View<Real>, const int*, Real*, bool*);

NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)

}  // namespace nequar
