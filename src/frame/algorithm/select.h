// Selection: rearranges a[0 … n-1] so that
//
//        a[0 … rank-1]  <=  a[rank]  <=  a[rank+1 … n-1]
//
// Introselect: quickselect with the pivot drawn from nine elements; once the partitions have cost
// more than a fixed multiple of n, the pivot is the median of medians of five, which bounds the
// whole by O(n) (Blum, Floyd, Pratt, Rivest, Tarjan 1973; Musser 1997).
#pragma once

#include <utility>

#include "core/view.h"

namespace nequar {

inline constexpr Size kSelectBySorting = 24;  // ranges up to this length are simply sorted

// The partition without branches on the data: the item goes to the end of the left part, which then
// grows or does not.
//
//     | goes left | goes right | not yet seen |
//                 left         i
//
template <class Item, class GoesLeft>
Size partition(Item* a, Size n, GoesLeft goes_left) {
    Size left = 0;
    for (Size i = 0; i < n; ++i) {
        const Item item = a[i];
        a[i] = a[left];
        a[left] = item;
        left += goes_left(item) ? 1 : 0;
    }
    return left;
}

template <class Item>
void sort_few(Item* a, Size n) {
    for (Size i = 1; i < n; ++i) {
        const Item item = a[i];
        Size j = i;
        for (; j > 0 && item < a[j - 1]; --j) a[j] = a[j - 1];
        a[j] = item;
    }
}

template <class Item>
Item median_of_three(const Item& a, const Item& b, const Item& c) {
    if (b < a) return c < b ? b : (c < a ? c : a);
    return c < a ? a : (c < b ? c : b);
}

// The median of three medians of three, spread over the range.
template <class Item>
Item median_of_nine(const Item* a, Size n) {
    const Size step = (n - 1) / 8;
    return median_of_three(median_of_three(a[0], a[step], a[2 * step]),
                           median_of_three(a[3 * step], a[4 * step], a[5 * step]),
                           median_of_three(a[6 * step], a[7 * step], a[8 * step]));
}

template <class Item>
void select_in_worst_case(Item* a, Size n, Size rank);

// Gathers the medians of five at the front and selects theirs: at least 3/10 of the items lie on
// either side of it.
template <class Item>
Item median_of_medians(Item* a, Size n) {
    Size groups = 0;
    for (Size i = 0; i + 5 <= n; i += 5) {
        sort_few(a + i, 5);
        std::swap(a[groups++], a[i + 2]);
    }
    select_in_worst_case(a, groups, groups / 2);
    return a[groups / 2];
}

// One step: false when a[rank] has been found, else the range narrowed to the part that holds it.
template <class Item>
bool narrow(Item*& a, Size& n, Size& rank, const Item& pivot) {
    const Size smaller = partition(a, n, [&pivot](const Item& x) { return x < pivot; });
    if (rank < smaller) {
        n = smaller;
        return true;
    }
    a += smaller;
    n -= smaller;
    rank -= smaller;
    const Size equal = partition(a, n, [&pivot](const Item& x) { return !(pivot < x); });
    if (rank < equal) return false;
    a += equal;
    n -= equal;
    rank -= equal;
    return true;
}

template <class Item>
void select_in_worst_case(Item* a, Size n, Size rank) {
    while (n > kSelectBySorting)
        if (!narrow(a, n, rank, median_of_medians(a, n))) return;
    sort_few(a, n);
}

// Needs 0 <= rank < n, and `<` a strict weak order. `work_per_item` bounds the partitions by
// quickselect's pivots.
template <class Item>
void select(Item* a, Size n, Size rank, Size work_per_item = 8) {
    Size work = work_per_item * n;
    while (n > kSelectBySorting) {
        if (work <= 0) return select_in_worst_case(a, n, rank);
        work -= n;
        if (!narrow(a, n, rank, median_of_nine(a, n))) return;
    }
    sort_few(a, n);
}

}  // namespace nequar
