// Where the elements of a band matrix lie in its packed vector.
//
// The bands lie one after another, the lowest sub-diagonal first; band k holds the elements with
// column - row = d = k - p by increasing min(column, row):
//
//      5  9  .  .        4 x 4, p = 2, q = 1: bands of lengths 2, 3, 4, 3, which start
//      2  6 10  .        at 0, 2, 5, 9
//      0  3  7 11
//      .  1  4  8
//
//   length(d) = min(height, width, height + d, width - d)
//   start(k)  = length(-p) + ... + length(k - 1 - p)
//   a(y, x)   = packed[start(x - y + p) + min(x, y)]
//
// Below the diagonal the bands are those of a packed lower trapezoid in backward order, from it on
// those of the transposed one in its own order, so the sums of lengths are taken from there.
#pragma once

#include "structured/algorithm/packed_triangle.h"

namespace nequar {

struct BandShape {
    Size height = 0;
    Size width = 0;
    Size p = 0;  // sub-diagonals,   0 <= p < height
    Size q = 0;  // super-diagonals, 0 <= q < width

    Size band_count() const { return p + q + 1; }

    Size length(Size k) const { return k < p ? below().length(p - k) : above().length(k - p); }
    // 0 <= k <= p + q + 1; the last is the number of stored elements.
    Size start(Size k) const {
        const PackedShape lower = below();
        const Size from_end = lower.start(p + 1);
        if (k <= p) return from_end - lower.start(p - k + 1);
        return from_end - lower.start(1) + above().start(k - p);
    }
    Size count() const { return start(band_count()); }

    // The band of a packed index, 0 <= index < count(): start(k) <= index < start(k + 1).
    Size band_of(Size index) const {
        Size low = 0;
        Size high = band_count();
        while (high - low > 1) {
            const Size middle = low + (high - low) / 2;
            (start(middle) <= index ? low : high) = middle;
        }
        return low;
    }

    bool contains(Size x, Size y) const { return x - y <= q && y - x <= p; }
    Size index(Size x, Size y) const { return start(x - y + p) + (x < y ? x : y); }

    // The columns of a row that lie in the band are first ... last; none when first > last.
    Size first_of_row(Size r) const { return r > p ? r - p : 0; }
    Size last_of_row(Size r) const { return r + q < width ? r + q : width - 1; }

    BandShape transposed() const { return {width, height, q, p}; }

private:
    PackedShape below() const { return PackedShape::lower(height, width); }
    PackedShape above() const { return PackedShape::lower(width, height); }
};

}  // namespace nequar
