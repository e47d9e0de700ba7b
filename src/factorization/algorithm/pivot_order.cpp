#include "factorization/algorithm/pivot_order.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kernel/kernel.h"

namespace nequar {
namespace {

// A panel takes one cache line of every row.
template <class Real>
constexpr std::size_t kPanelWidth = 64 / sizeof(Real);

constexpr Size kSmallOrder = 20;  // up to here a walk down each column is faster

void exchange(int* perm, Size i, Size r, int& interchanges) {
    if (i == r) return;
    std::swap(perm[i], perm[r]);
    ++interchanges;
}

// The last of the largest among the rows perm[first], ...; `first` when nothing is a number.
template <class Real>
Size search_column(View<const Real> a, Size column, const int* perm, Size first, Size last) {
    Size pivot = first;
    Real largest = 0;
    for (Size i = first; i < last; ++i) {
        const Real magnitude = std::abs(a(perm[i], column));
        const bool wins = magnitude >= largest;  // false for NaN
        pivot = wins ? i : pivot;
        largest = wins ? magnitude : largest;
    }
    return pivot;
}

template <class Real>
void choose_by_columns(View<const Real> a, int* perm, int& interchanges) {
    for (Size j = 0; j < a.width; ++j)
        exchange(perm, j, search_column(a, j, perm, j, a.height), interchanges);
}

constexpr Size kNone = -1;  // nothing but NaN
constexpr Size kLost = -2;  // to be sought again

// The winners of all columns of a panel are found in one sweep over the rows that are still in the
// race, which reads a cache line of each, and kept up to date as rows change places.
template <class Real>
class Panel {
public:
    Panel(View<const Real> a, Size first, Size width, int* perm)
        : columns_(a.columns(first, width)), first_(first), perm_(perm) {}

    void choose(int& interchanges) {
        sweep(first_);
        for (Size c = 0; c < columns_.width; ++c) {
            const Size j = first_ + c;
            if (winner_[c] == kLost) sweep(j);
            const Size r = winner_[c] == kNone ? j : winner_[c];
            for (Size k = c + 1; k < columns_.width; ++k) follow(k, j, r);
            exchange(perm_, j, r, interchanges);
        }
    }

private:
    void sweep(Size from) {
        Real place[kPanelWidth<Real>];
        kernel::last_largest_of_columns(columns_, perm_ + from, columns_.height - from, largest_,
                                        place);
        for (Size k = 0; k < columns_.width; ++k)
            winner_[k] = place[k] < 0 ? kNone : from + static_cast<Size>(place[k]);
    }

    // What the step that takes row r out, and moves row j to its place, does to the winner of a
    // later column: it has left; it is the row that moves; or the row that moves now stands behind
    // it and equals it.
    void follow(Size k, Size j, Size r) {
        Size& winner = winner_[k];
        if (winner < 0) return;
        if (winner == r)
            winner = kLost;
        else if (winner == j || (r > winner && std::abs(columns_(perm_[j], k)) == largest_[k]))
            winner = r;
    }

    View<const Real> columns_;
    Size first_;
    int* perm_;
    Real largest_[kPanelWidth<Real>];
    Size winner_[kPanelWidth<Real>];
};

template <class Real>
void choose_by_panels(View<const Real> a, int* perm, int& interchanges) {
    constexpr Size kWidth = Size(kPanelWidth<Real>);
    for (Size first = 0; first < a.width; first += kWidth)
        Panel<Real>(a, first, std::min(kWidth, a.width - first), perm).choose(interchanges);
}

}  // namespace

template <class Real>
Size last_largest_magnitude(Strided<const Real> candidates) {
    const Size last = candidates.size - 1;
    const Strided<const Real> reversed(&candidates(last), candidates.size, -candidates.stride);
    const Size at = kernel::index_of_largest_magnitude(reversed);
    return std::isnan(reversed(at)) ? 0 : last - at;
}

template <class Real>
void choose_pivots_before_update(View<const Real> a, int* perm, int& interchanges) {
    for (Size i = 0; i < a.height; ++i) perm[i] = static_cast<int>(i);
    interchanges = 0;
    if (a.column_stride == 1 && a.height > kSmallOrder)
        choose_by_panels(a, perm, interchanges);
    else
        choose_by_columns(a, perm, interchanges);
}

template Size last_largest_magnitude(Strided<const double>);
template Size last_largest_magnitude(Strided<const float>);
template void choose_pivots_before_update(View<const double>, int*, int&);
template void choose_pivots_before_update(View<const float>, int*, int&);

}  // namespace nequar
