// Gathering elements into compressed columns by counting: one pass over a source counts the
// elements of each column, another puts them in their places.
//
// A source knows the number of columns that it fills, and hands its elements to a visitor, those of
// a column by increasing row: visit.element(row, column, value), or visit.run(column, run, shift)
// for stored elements that stand together, of which the row numbers are counted from `shift`.
//
//     DenseHalf     non-zeros of one triangle of a dense matrix, as a lower triangle
//     ColumnsHalf   elements of one triangle of a sparse matrix, as a lower triangle
//     FullBlock     a block of the symmetric matrix of which the lower half is stored
//     FullColumn    a part of one of its columns
//     FullMatrix    all of it
//
// The upper triangle is mirrored: element (r, c), r <= c, is visited as row c of column r.
#pragma once

#include <algorithm>

#include "sparse/algorithm/columns.h"
#include "sparse/algorithm/nonzeros.h"

namespace nequar {

enum class Half { lower, upper };

template <class Real>
Run<Real> run_of(const Columns<Real>& a, Range part) {
    return {a.rows + part.begin, a.values + part.begin, part.length()};
}

// The part of column c, stored from its diagonal down, that lies in rows first … last-1.
template <class Real>
Range part_of_half(const Columns<Real>& lower, Range column, Size c, Size first, Size last) {
    const int* const rows = lower.rows;
    if (first == c + 1 && column.length() > 0)
        column.begin += rows[column.begin] == c;
    else if (first > c)
        column.begin = first_not_below(rows, column.begin, column.end, first);
    if (last < lower.height) column.end = first_not_below(rows, column.begin, column.end, last);
    return column;
}

template <class Real>
struct DenseHalf {
    View<const Real> a;  // square, row by row
    Half half;

    Size width() const { return a.width; }
    template <class Visitor>
    void each(Visitor& visit) const {
        for (Size r = 0; r < a.height; ++r) {
            const Real* const row = a.data + r * a.row_stride;
            if (half == Half::lower)
                for_nonzeros(row, r + 1, [&](Size c) { visit.element(r, c, row[c]); });
            else
                for_nonzeros(row + r, a.width - r,
                             [&](Size k) { visit.element(r + k, r, row[r + k]); });
        }
    }
};

template <class Real>
struct ColumnsHalf {
    Columns<Real> a;  // square
    Half half;

    Size width() const { return a.width; }
    template <class Visitor>
    void each(Visitor& visit) const {
        Size end = 0;
        for (Size c = 0; c < a.width; ++c) {
            const Range column{end, a.end_after(end, c)};
            end = column.end;
            if (half == Half::lower) {
                const Size first = first_not_below(a.rows, column.begin, column.end, c);
                visit.run(c, run_of(a, {first, column.end}), 0);
                continue;
            }
            for (Size k = column.begin; k < column.end; ++k) {
                const Size r = a.rows[k];
                if (r > c) break;
                if (r >= 0) visit.element(c, r, a.values[k]);
            }
        }
    }
};

// Column c of the full matrix is made of mirrored elements of the columns before c, then of its
// own. Columns are walked upwards, so that the rows of every column of the block increase:
//
//     . . x . .
//     . . x . .      the block's column x: elements of rows y … x-1 stand in column "row" as row x,
//     - - d . .      those from the diagonal down in column x itself
//     . . o . .
template <class Real>
struct FullBlock {
    Columns<Real> a;  // the lower half
    Size x;
    Size y;
    Size block_width;
    Size block_height;
    bool with_zeros;  // whether explicit zeros are elements

    Size width() const { return block_width; }
    template <class Visitor>
    void each(Visitor& visit) const {
        const Size right = x + block_width;
        const Size bottom = y + block_height;
        Size end = 0;
        for (Size c = std::min(x, y); c < std::min(right, bottom); ++c) {
            const Size begin = std::max(end, a.range(c).begin);
            const Range column{begin, a.end_after(begin, c)};
            end = column.end;
            if (c >= y) {
                const Range mirrored = part_of_half(a, column, c, std::max(x, c + 1), right);
                for (Size k = mirrored.begin; k < mirrored.end; ++k) {
                    const Size at = a.rows[k] - x;
                    if (at >= 0 && at < block_width && is_wanted(k))
                        visit.element(c - y, at, a.values[k]);
                }
            }
            if (c >= x) {
                const Range own = part_of_half(a, column, c, y, bottom);
                if (with_zeros) {
                    visit.run(c - x, run_of(a, own), y);
                    continue;
                }
                for (Size k = own.begin; k < own.end; ++k)
                    if (is_wanted(k)) visit.element(a.rows[k] - y, c - x, a.values[k]);
            }
        }
    }

private:
    bool is_wanted(Size k) const { return with_zeros || a.values[k] != Real(0); }
};

// Rows y … y+height-1 of column x. Row x is looked for in the columns before x by bisection, or,
// where they hold so few elements that this is faster, among all their elements in the order in
// which they lie.
template <class Real>
struct FullColumn {
    Columns<Real> a;  // the lower half
    Size x;
    Size y;
    Size height;

    Size width() const { return 1; }
    template <class Visitor>
    void each(Visitor& visit) const {
        constexpr Size kFew = 256;  // elements of a column
        const Size last = std::min(x, y + height);
        if (y < last) {
            const Size begin = a.range(y).begin;
            const Range part{begin, a.end_after(begin, last - 1)};
            if (part.length() < kFew * (last - y))
                each_in_order(part, last, visit);
            else
                each_by_bisection(last, visit);
        }
        if (x < y + height)
            visit.run(0, run_of(a, part_of_half(a, a.range(x), x, y, y + height)), y);
    }

private:
    template <class Visitor>
    void each_in_order(Range part, Size last, Visitor& visit) const {
        constexpr Size kBlock = 64;
        const int row = static_cast<int>(x);
        for (Size first = part.begin; first < part.end; first += kBlock) {
            const Size end = std::min(first + kBlock, part.end);
            int hits = 0;
            for (Size k = first; k < end; ++k) hits += a.rows[k] == row;
            for (Size k = first; hits > 0; ++k) {
                if (a.rows[k] != row) continue;
                const Size c = first_not_below(a.start, y + 1, last, k + 1) - 1;
                visit.element(c - y, 0, a.values[k]);
                --hits;
            }
        }
    }
    template <class Visitor>
    void each_by_bisection(Size last, Visitor& visit) const {
        for (Size c = y; c < last; ++c) {
            const Range column = a.range(c);
            const Size k = first_not_below(a.rows, column.begin, column.end, x);
            if (k < column.end && a.rows[k] == x) visit.element(c - y, 0, a.values[k]);
        }
    }
};

// The full matrix, where the columns of the half lie without gaps (`is_gapless`). Its elements are
// counted in the order in which they lie, and placed in one walk: loops over single short columns
// would cost more than what they do.
template <class Real>
struct FullMatrix {
    Columns<Real> a;

    Size width() const { return a.width; }
};

template <class Real>
bool is_gapless(const Columns<Real>& a) {
    bool ordered = a.start[0] == 0 && a.start[a.width] == a.count;
    for (Size c = 0; c < a.width; ++c) ordered &= a.start[c] <= a.start[c + 1];
    return ordered;
}

struct ElementCounter {
    int* start;
    Size total = 0;

    template <class Real>
    void element(Size, Size column, Real) {
        ++start[column + 1];
        ++total;
    }
    template <class Real>
    void run(Size column, const Run<Real>& run, Size) {
        start[column + 1] += static_cast<int>(run.count);
        total += run.count;
    }
};

// start[c + 1] is where the next element of column c goes.
template <class Real>
struct ElementPlacer {
    int* start;
    int* rows;
    Real* values;

    void element(Size row, Size column, Real value) {
        const int to = start[column + 1]++;
        rows[to] = static_cast<int>(row);
        values[to] = value;
    }
    void run(Size column, const Run<Real>& run, Size shift) {
        const int to = start[column + 1];
        for (Size k = 0; k < run.count; ++k) {
            rows[to + k] = static_cast<int>(run.indices[k] - shift);
            values[to + k] = run.values[k];
        }
        start[column + 1] += static_cast<int>(run.count);
    }
};

// start[c + 1] := the number of elements of column c, start[0] := 0; answers their sum.
template <class Source>
Size count_elements(const Source& source, int* start) {
    std::fill(start, start + source.width() + 1, 0);
    ElementCounter counter{start};
    source.each(counter);
    return counter.total;
}

template <class Real>
Size count_elements(const FullMatrix<Real>& full, int* start) {
    const Columns<Real>& a = full.a;
    std::fill(start, start + a.width + 1, 0);
    for (Size k = 0; k < a.count; ++k)
        if (a.rows[k] >= 0 && a.rows[k] < a.width) ++start[a.rows[k] + 1];
    Size total = 0;
    for (Size c = 0; c < a.width; ++c) {
        const int begin = a.start[c];
        const int length = a.start[c + 1] - begin;
        start[c + 1] += length - (length > 0 && a.rows[begin] == c ? 1 : 0);
        total += start[c + 1];
    }
    return total;
}

// From lengths to beginnings.
inline void accumulate_lengths(int* start, Size width) {
    int begin = 0;
    for (Size c = 0; c < width; ++c) {
        const int length = start[c + 1];
        start[c + 1] = begin;
        begin += length;
    }
}

// When its own elements are placed, the mirrored ones of a column stand. An element of the diagonal
// is its own mirror image.
template <class Real>
void put_elements(const FullMatrix<Real>& full, int* start, int* rows, Real* values) {
    const Columns<Real>& a = full.a;
    accumulate_lengths(start, a.width);
    int k = 0;
    for (int c = 0; c < a.width; ++c) {
        int own = start[c + 1];
        const int end = a.start[c + 1];
        start[c + 1] += end - k;
        for (; k < end; ++k, ++own) {
            const int row = a.rows[k];
            const Real value = a.values[k];
            rows[own] = row;
            values[own] = value;
            if (row < 0 || row >= a.width) continue;
            const int to = row == c ? own : start[row + 1];
            start[row + 1] += row == c ? 0 : 1;
            rows[to] = c;
            values[to] = value;
        }
    }
}

// Fills rows and values from what count_elements found; start[c + 1] becomes the end of column c.
template <class Source, class Real>
void put_elements(const Source& source, int* start, int* rows, Real* values) {
    accumulate_lengths(start, source.width());
    ElementPlacer<Real> placer{start, rows, values};
    source.each(placer);
}

}  // namespace nequar
