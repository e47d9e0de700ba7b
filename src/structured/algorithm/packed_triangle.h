// Triangles packed by diagonals, to and from dense storage.
//
// A packed lower trapezoid of height x width keeps its diagonals ("bands") one after another, the
// main diagonal first; within a band the elements run down:
//
//      0  .  .           band d holds the elements (row p + d, column p), p = 0, 1, ...,
//      5  1  .           length(d) = min(height, width, height - d)
//      9  6  2           start(d)  = length(0) + ... + length(d - 1)
//     12 10  7  ...      a(r, c)   = packed[start(r - c) + c],  c <= r
//
// An upper trapezoid is the transposed view of a lower one: pass `a.transposed()`. A symmetric
// matrix is kept as its lower triangle. Packed arrays and views must not overlap. The functions
// read and write the stored triangle alone; the other one, and columns from the height on, are not
// touched unless a comment says so.
#pragma once

#include "core/checked_size.h"
#include "core/view.h"

namespace nequar {

// Where the bands of a packed lower trapezoid lie.
struct PackedShape {
    Size height = 0;
    Size width = 0;  // not above the height: columns further right store nothing

    // Any height and width >= 0 of a lower trapezoid.
    static PackedShape lower(Size height, Size width) {
        return {height, width < height ? width : height};
    }

    Size length(Size d) const { return width < height - d ? width : height - d; }

    Size start(Size d) const {
        const Size full = height - width;  // the bands 0 ... full have the length `width`
        if (d <= full) return width * d;
        // lengths of the bands full ... d-1: width, width - 1, ..., height - d + 1
        const Size terms = d - full;
        const Size ends = width + height - d + 1;
        return width * full + (terms % 2 == 0 ? terms / 2 * ends : ends / 2 * terms);
    }

    Size count() const { return start(height); }
    Size index(Size row, Size column) const { return start(row - column) + column; }

    // The band of a packed index, 0 <= index < count(): start(d) <= index < start(d + 1).
    Size band_of(Size index) const {
        Size low = 0;
        Size high = height;  // start(low) <= index < start(high)
        while (high - low > 1) {
            const Size middle = low + (high - low) / 2;
            (start(middle) <= index ? low : high) = middle;
        }
        return low;
    }

    // visit(column, index) for the stored elements of a row, from the diagonal leftwards;
    // visit(row, index) for those of a column, from the diagonal down.
    template <class Visit>
    void visit_row(Size row, Visit visit) const {
        const Size last = row < width ? row : width - 1;
        Size first_of_band = start(row - last);
        for (Size column = last; column >= 0; --column) {
            visit(column, first_of_band + column);
            first_of_band += length(row - column);
        }
    }
    template <class Visit>
    void visit_column(Size column, Visit visit) const {
        Size first_of_band = 0;
        for (Size row = column; row < height; ++row) {
            visit(row, first_of_band + column);
            first_of_band += length(row - column);
        }
    }
};

// a(r, c) := packed element (r, c), c <= r
template <class Real>
void unpack_lower(const Real* packed, View<Real> a);

// packed element (r, c) := a(r, c), c <= r
template <class Real>
void pack_lower(View<const Real> a, Real* packed);

// a(r, c) := packed element (r, c) or its mirror; every element of the square view is written
template <class Real>
void unpack_symmetric(const Real* packed, View<Real> a);

// packed element (r, c) := (a(r, c) + a(c, r)) / 2, c <= r; the view is square
template <class Real>
void pack_symmetric_average(View<const Real> a, Real* packed);

// a(r, c) := value above the diagonal, r < c
template <class Real>
void fill_above_diagonal(Real value, View<Real> a);

}  // namespace nequar
