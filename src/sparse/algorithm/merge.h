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

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "sparse/algorithm/columns.h"

namespace nequar {

// target += factor source. Zeros of the source are passed over; a result that is zero stays.
template <class Real>
struct AddRule {
    Real factor;

    static constexpr bool adds = true;
    bool inserts(Real b) const { return b != Real(0); }
    Real inserted(Real b) const { return factor * b; }
};

// target += factor source, element by element: only a product other than zero is inserted.
template <class Real>
struct AddElementsRule {
    Real factor;

    static constexpr bool adds = true;
    bool inserts(Real b) const { return factor * b != Real(0); }
    Real inserted(Real b) const { return factor * b; }
};

// target := source. What only the target stores becomes a stored zero.
template <class Real>
struct WriteRule {
    static constexpr bool adds = false;
    bool inserts(Real b) const { return b != Real(0); }
    Real inserted(Real b) const { return b; }
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

// x, or, if it is not wanted, -0.0, which added to anything leaves it as it is.
template <class Real>
Real if_wanted(Real x, bool is_wanted) {
    using Bits = std::conditional_t<sizeof(Real) == 8, std::uint64_t, std::uint32_t>;
    constexpr Bits kSign = Bits(1) << (8 * sizeof(Bits) - 1);
    const Bits mask = Bits(0) - Bits(is_wanted);
    return std::bit_cast<Real>(((std::bit_cast<Bits>(x) ^ kSign) & mask) ^ kSign);
}

// Adds the source to the target's elements [part.begin, part.end); the result ends where the part
// did, `room` places further up. Answers the room that is left below the result. What comes next is
// a coin toss in each step, so nothing branches on it.
template <class Rule, class Real>
Size add_from_end(const Rule& rule, int* rows, Real* values, Range part, Size room,
                  const Run<Real>& source) {
    Size i = part.end - 1;
    Size j = source.count - 1;
    while (i >= part.begin && j >= 0 && room > 0) {
        const Real b = source.values[j];
        if (!rule.inserts(b)) {  // rare
            --j;
            continue;
        }
        const int in_target = rows[i];
        const int in_source = source.indices[j];
        const bool takes_target = in_target >= in_source;
        const bool takes_source = in_source >= in_target;
        values[i + room] =
            if_wanted(values[i], takes_target) + if_wanted(rule.inserted(b), takes_source);
        rows[i + room] = takes_target ? in_target : in_source;
        i -= takes_target;
        j -= takes_source;
        room -= !takes_target;
    }
    if (room == 0) {  // what is left of the source stands in the target already
        while (i >= part.begin && j >= 0) {
            const Real b = source.values[j];
            const int in_target = rows[i];
            const int in_source = source.indices[j];
            values[i] += if_wanted(rule.inserted(b), in_target == in_source && rule.inserts(b));
            i -= in_target >= in_source;
            j -= in_source >= in_target;
        }
        return 0;
    }
    for (; j >= 0 && room > 0; --j) {
        const Real b = source.values[j];
        if (!rule.inserts(b)) continue;
        rows[i + room] = source.indices[j];
        values[i + room] = rule.inserted(b);
        --room;
    }
    for (; i >= part.begin; --i) {
        rows[i + room] = rows[i];
        values[i + room] = values[i];
    }
    return room;
}

// The same for a source that replaces the target's elements: what it does not store becomes zero.
template <class Rule, class Real>
Size write_from_end(const Rule& rule, int* rows, Real* values, Range part, Size room,
                    const Run<Real>& source, Size shift) {
    Size i = part.end - 1;
    Size j = source.count - 1;
    while (i >= part.begin || (j >= 0 && room > 0)) {
        const Size in_target = i >= part.begin ? rows[i] : PTRDIFF_MIN;
        const Size in_source = j >= 0 ? source.indices[j] + shift : PTRDIFF_MIN;
        if (in_target >= in_source) {
            rows[i + room] = rows[i];
            values[i + room] = in_target == in_source ? source.values[j] : Real(0);
            --i;
            j -= in_target == in_source;
        } else {
            const Real b = source.values[j--];
            if (!rule.inserts(b) || room == 0) continue;
            rows[i + room] = static_cast<int>(in_source);
            values[i + room] = rule.inserted(b);
            --room;
        }
    }
    return room;
}

template <class Rule, class Real>
Size merge_from_end(const Rule& rule, int* rows, Real* values, Range part, Size room,
                    const Run<Real>& source, Size shift) {
    if constexpr (Rule::adds)
        return add_from_end(rule, rows, values, part, room, source);  // adding never shifts
    else
        return write_from_end(rule, rows, values, part, room, source, shift);
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

// Carries it out. `count` elements were stored, the arrays have `room` more, at least as many as
// are absent, and the start pointers are in order. The columns are asked for from last-1 down to
// first. Answers the room that was not needed: the elements of the first column and what follows
// stand that much too high, and so do their start pointers but the first.
template <class Rule, class Real, class PartOf, class SourceOf>
Size merge_columns(const Rule& rule, Size width, int* start, int* rows, Real* values, Size count,
                   Size room, Size first, Size last, const PartOf& part_of,
                   const SourceOf& source_of, Size shift) {
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
    return room;
}

// Takes the room that a merge of all columns left before the elements away.
template <class Real>
void move_down(int* start, Size width, int* rows, Real* values, Size room) {
    if (room == 0) return;
    const auto count = static_cast<std::size_t>(start[width] - room);
    std::memmove(values, values + room, count * sizeof(Real));
    std::memmove(rows, rows + room, count * sizeof(int));
    for (Size c = 1; c <= width; ++c) start[c] -= static_cast<int>(room);
}

// Whether two matrices of one shape store the same places; the first difference ends the search.
template <class Real>
bool have_same_places(const Columns<Real>& a, const Columns<Real>& b) {
    return a.count == b.count && std::equal(a.rows, a.rows + a.count, b.rows) &&
           std::equal(a.start, a.start + a.width + 1, b.start);
}

// values += factor source for equal places; may be the source's own values.
template <class Real>
void add_values(const AddRule<Real>& rule, const Real* source, Size count, Real* values) {
    for (Size k = 0; k < count; ++k)
        values[k] = rule.inserts(source[k]) ? values[k] + rule.inserted(source[k]) : values[k];
}

}  // namespace nequar
