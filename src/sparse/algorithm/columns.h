// Sorted runs of stored elements, and matrices made of them, as the algorithms see them.
//
//   Run       values[k] stands at indices[k],  0 <= k < count, indices strictly increasing
//   Columns   column c is the run  start[c] <= k < start[c+1]  of rows and values
//
// A view owns nothing. The start pointers are not trusted: a range is clamped to what is stored, so
// that pointers out of step with the number of elements lead nowhere outside.
#pragma once

#include <algorithm>

#include "core/view.h"

namespace nequar {

struct Range {
    Size begin = 0;
    Size end = 0;

    Size length() const { return end - begin; }
};

template <class Real>
struct Run {
    const int* indices = nullptr;
    const Real* values = nullptr;
    Size count = 0;
};

template <class Real>
struct Columns {
    Size height = 0;
    Size width = 0;
    Size count = 0;
    const int* start = nullptr;  // width + 1 pointers
    const int* rows = nullptr;
    const Real* values = nullptr;

    Range range(Size c) const {
        const Size begin = std::clamp<Size>(start[c], 0, count);
        return {begin, std::clamp<Size>(start[c + 1], begin, count)};
    }
    Run<Real> column(Size c) const {
        const Range k = range(c);
        return {rows + k.begin, values + k.begin, k.length()};
    }
    // The end of column c for a walk over all columns, of which the one before ended at `begin`:
    // the ranges of one walk never overlap.
    Size end_after(Size begin, Size c) const {
        return std::clamp<Size>(start[c + 1], begin, count);
    }
};

inline constexpr Size kFewElements = 16;

// The first k of [begin, end) with sorted[k] >= bound, or end: bisection down to a few elements, of
// which the smaller ones are counted. No branch depends on what is found.
inline Size first_not_below(const int* sorted, Size begin, Size end, Size bound) {
    while (end - begin > kFewElements) {
        const Size half = (end - begin) / 2;
        const bool is_below = sorted[begin + half - 1] < bound;
        begin = is_below ? begin + half : begin;
        end = is_below ? end : begin + half;
    }
    Size below = 0;
    for (Size k = begin; k < end; ++k) below += sorted[k] < bound;
    return begin + below;
}

// The part of a sorted range whose elements lie in [first, last).
inline Range part_between(const int* sorted, Range range, Size first, Size last) {
    if (range.length() <= kFewElements) {
        Size below_first = 0;
        Size below_last = 0;
        for (Size k = range.begin; k < range.end; ++k) {
            below_first += sorted[k] < first;
            below_last += sorted[k] < last;
        }
        return {range.begin + below_first, range.begin + below_last};
    }
    const Size begin = first_not_below(sorted, range.begin, range.end, first);
    return {begin, first_not_below(sorted, begin, range.end, last)};
}

// Looks up indices of a run that are asked for in order, upwards or downwards: each costs O(1) on
// average.
template <class Real>
class RunCursor {
public:
    explicit RunCursor(const Run<Real>& run) : run_(run) {}

    // The position of index i, or -1.
    Size find(Size i) {
        while (at_ < run_.count && run_.indices[at_] < i) ++at_;
        while (at_ > 0 && (at_ == run_.count || run_.indices[at_] > i)) --at_;
        return at_ < run_.count && run_.indices[at_] == i ? at_ : -1;
    }

private:
    Run<Real> run_;
    Size at_ = 0;
};

// The column in which element k lies: the last whose start pointer is not above k.
template <class Real>
Size column_of(const Columns<Real>& a, Size k) {
    return std::max<Size>(0, first_not_below(a.start, 0, a.width, k + 1) - 1);
}

}  // namespace nequar
