// Gathering elements into compressed columns by counting: one pass over a source counts the
// elements of each column, another puts them in their places.
//
// A source knows the number of columns that it fills, and calls visit(row, column, value) for each
// element, those of a column by increasing row. Sources:
//
//     DenseHalf     non-zeros of one triangle of a dense matrix, as a lower triangle
//     ColumnsHalf   elements of one triangle of a sparse matrix, as a lower triangle
//     FullBlock     a block of the symmetric matrix of which the lower half is stored
//
// The upper triangle is mirrored: element (r, c), r <= c, is visited as row c of column r.
#pragma once

#include <algorithm>

#include "sparse/algorithm/columns.h"
#include "sparse/algorithm/nonzeros.h"

namespace nequar {

enum class Half { lower, upper };

template <class Real>
struct DenseHalf {
    View<const Real> a;  // square, row by row
    Half half;

    Size width() const { return a.width; }
    template <class Visit>
    void each(const Visit& visit) const {
        for (Size r = 0; r < a.height; ++r) {
            const Real* const row = a.data + r * a.row_stride;
            if (half == Half::lower)
                for_nonzeros(row, r + 1, [&](Size c) { visit(r, c, row[c]); });
            else
                for_nonzeros(row + r, a.width - r, [&](Size k) { visit(r + k, r, row[r + k]); });
        }
    }
};

template <class Real>
struct ColumnsHalf {
    Columns<Real> a;  // square
    Half half;

    Size width() const { return a.width; }
    template <class Visit>
    void each(const Visit& visit) const {
        const bool lower = half == Half::lower;
        Size end = 0;
        for (Size c = 0; c < a.width; ++c) {
            const Range column{end, a.end_after(end, c)};
            end = column.end;
            const Size first = lower ? c : 0;
            const Size last = lower ? a.height : c + 1;
            const Range part = part_between(a.rows, column, first, last);
            for (Size k = part.begin; k < part.end; ++k) {
                const Size r = a.rows[k];
                if (r >= first && r < last)
                    lower ? visit(r, c, a.values[k]) : visit(c, r, a.values[k]);
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
    template <class Visit>
    void each(const Visit& visit) const {
        const Size right = x + block_width;
        const Size bottom = y + block_height;
        Size end = 0;
        for (Size c = std::min(x, y); c < std::min(right, bottom); ++c) {
            const Size begin = std::max(end, a.range(c).begin);
            const Range column{begin, a.end_after(begin, c)};
            end = column.end;
            if (c >= y)
                each_between(column, std::max(x, c + 1), right,
                             [&](Size r, Real v) { visit(c - y, r - x, v); });
            if (c >= x)
                each_between(column, y, bottom, [&](Size r, Real v) { visit(r - y, c - x, v); });
        }
    }

private:
    template <class Visit>
    void each_between(Range column, Size first, Size last, const Visit& visit) const {
        const Range part = part_between(a.rows, column, first, last);
        for (Size k = part.begin; k < part.end; ++k) {
            const Size r = a.rows[k];
            if (r >= first && r < last && (with_zeros || a.values[k] != Real(0)))
                visit(r, a.values[k]);
        }
    }
};

// start[c + 1] := the number of elements of column c, start[0] := 0; answers their sum.
template <class Source>
Size count_elements(const Source& source, int* start) {
    std::fill(start, start + source.width() + 1, 0);
    Size total = 0;
    source.each([&total, start](Size, Size column, auto) {
        ++start[column + 1];
        ++total;
    });
    return total;
}

// Fills rows and values from what count_elements found; start[c + 1] becomes the end of column c.
template <class Source, class Real>
void put_elements(const Source& source, int* start, int* rows, Real* values) {
    int begin = 0;
    for (Size c = 0; c < source.width(); ++c) {
        const int length = start[c + 1];
        start[c + 1] = begin;
        begin += length;
    }
    source.each([start, rows, values](Size row, Size column, Real value) {
        const int to = start[column + 1]++;
        rows[to] = static_cast<int>(row);
        values[to] = value;
    });
}

}  // namespace nequar
