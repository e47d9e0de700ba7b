// Writing sorted runs of elements into the columns of a matrix, in place and in one pass from the
// end. What has to be made room for is counted first:
//
//     target   1 3     7        rows of a column
//     source     3 4 6 7        rows of the run that is written into it
//     absent       4 6          source elements to be inserted: two
//
//     |1 3 7|. .|   ->   |1 3 4 6 7|      7 is moved first, then 6, 4, 3, 1 follow
//
// No element is moved twice, none before it was read, and both passes cost the sum of the lengths.
// A rule says what becomes of elements: `alone` of those that only the target has, `both` of those
// stored in both, `inserts` and `inserted` of those that only the source has. A source run may be
// the target's own run.
#pragma once

#include <cstring>

#include "sparse/algorithm/columns.h"

namespace nequar {

// target += factor source. Zeros of the source are passed over; a result that is zero stays.
template <class Real>
struct AddRule {
    Real factor;

    static constexpr bool keeps_alone = true;
    bool inserts(Real b) const { return b != Real(0); }
    Real inserted(Real b) const { return factor * b; }
    Real both(Real a, Real b) const { return b != Real(0) ? a + factor * b : a; }
    Real alone(Real a) const { return a; }
};

// target += factor source, element by element: only a product other than zero is inserted.
template <class Real>
struct AddElementsRule {
    Real factor;

    static constexpr bool keeps_alone = true;
    bool inserts(Real b) const { return factor * b != Real(0); }
    Real inserted(Real b) const { return factor * b; }
    Real both(Real a, Real b) const { return a + factor * b; }
    Real alone(Real a) const { return a; }
};

// target := source. What only the target stores becomes a stored zero.
template <class Real>
struct WriteRule {
    static constexpr bool keeps_alone = false;
    bool inserts(Real b) const { return b != Real(0); }
    Real inserted(Real b) const { return b; }
    Real both(Real, Real b) const { return b; }
    Real alone(Real) const { return Real(0); }
};

// How many elements of the source, each moved down by `shift` rows, are to be inserted among the
// sorted rows of the target.
template <class Rule, class Real>
Size count_absent(const Rule& rule, const int* rows, Size count, const Run<Real>& source,
                  Size shift) {
    Size wanted = 0;
    for (Size j = 0; j < source.count; ++j) wanted += rule.inserts(source.values[j]);
    Size found = 0;
    for (Size i = 0, j = 0; i < count && j < source.count;) {
        const Size in_target = rows[i];
        const Size in_source = source.indices[j] + shift;
        found += (in_target == in_source) & rule.inserts(source.values[j]);
        i += in_target <= in_source;
        j += in_source <= in_target;
    }
    return wanted - found;
}

template <class Element>
void move_up(Element* elements, Size begin, Size end, Size by) {
    if (by != 0 && begin < end)
        std::memmove(elements + begin + by, elements + begin,
                     static_cast<std::size_t>(end - begin) * sizeof(Element));
}

// Writes the source into the target's elements [part.begin, part.end); the result ends where the
// part did, `room` places further up. Answers the room that is left below the result.
template <class Rule, class Real>
Size merge_from_end(const Rule& rule, int* rows, Real* values, Range part, Size room,
                    const Run<Real>& source, Size shift) {
    Size i = part.end - 1;
    Size j = source.count - 1;
    Size to = part.end + room - 1;
    while (i >= part.begin && j >= 0) {
        const Size in_target = rows[i];
        const Size in_source = source.indices[j] + shift;
        const Real b = source.values[j];
        if (in_target > in_source) {
            rows[to] = rows[i];
            values[to] = rule.alone(values[i]);
            --to, --i;
        } else if (in_target == in_source) {
            rows[to] = rows[i];
            values[to] = rule.both(values[i], b);
            --to, --i, --j;
        } else {
            if (rule.inserts(b)) {
                rows[to] = static_cast<int>(in_source);
                values[to] = rule.inserted(b);
                --to;
            }
            --j;
        }
    }
    for (; j >= 0; --j) {
        const Real b = source.values[j];
        if (!rule.inserts(b)) continue;
        rows[to] = static_cast<int>(source.indices[j] + shift);
        values[to] = rule.inserted(b);
        --to;
    }
    const Size left = to - i;
    if constexpr (Rule::keeps_alone) {
        move_up(values, part.begin, i + 1, left);
    } else {
        for (Size k = i; k >= part.begin; --k) values[k + left] = rule.alone(values[k]);
    }
    move_up(rows, part.begin, i + 1, left);
    return left;
}

// The number of elements to be inserted into columns first … last-1 of the target: part_of(rows,
// range) is the part of a column that is written, source_of(c) the run that is written into column
// c, shifted.
template <class Rule, class Real, class PartOf, class SourceOf>
Size count_absent(const Rule& rule, const Columns<Real>& target, Size first, Size last,
                  const PartOf& part_of, const SourceOf& source_of, Size shift) {
    Size absent = 0;
    for (Size c = first; c < last; ++c) {
        const Range part = part_of(target.rows, target.range(c));
        absent += count_absent(rule, target.rows + part.begin, part.length(), source_of(c), shift);
    }
    return absent;
}

// Carries it out. `count` elements were stored, the arrays have room for `absent` more, and the
// start pointers are in order. The columns are asked for from last-1 down to first.
template <class Rule, class Real, class PartOf, class SourceOf>
void merge_columns(const Rule& rule, Size width, int* start, int* rows, Real* values, Size count,
                   Size absent, Size first, Size last, const PartOf& part_of,
                   const SourceOf& source_of, Size shift) {
    Size room = absent;
    move_up(values, start[last], count, room);
    move_up(rows, start[last], count, room);
    if (room != 0)
        for (Size c = last + 1; c <= width; ++c) start[c] += static_cast<int>(room);
    Size end = start[last];
    for (Size c = last - 1; c >= first; --c) {
        const Size begin = start[c];
        const Range part = part_of(rows, Range{begin, end});
        start[c + 1] = static_cast<int>(end + room);
        move_up(values, part.end, end, room);
        move_up(rows, part.end, end, room);
        room = merge_from_end(rule, rows, values, part, room, source_of(c), shift);
        move_up(values, begin, part.begin, room);
        move_up(rows, begin, part.begin, room);
        end = begin;
    }
}

}  // namespace nequar
