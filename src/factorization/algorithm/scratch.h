// Scratch matrices laid out for the kernels. A view may run backwards in memory (a reversed
// matrix); scratch that takes part in its products runs the same way, so that the kernels, which
// turn whole products round, never walk one operand against the other.
#pragma once

#include "core/view.h"

namespace nequar {

// The distance of the rows or columns of a scratch matrix: a multiple of a cache line that is not
// a multiple of a page, where the same element of all rows would fall into one cache set.
inline Size padded_length(Size length) {
    if (length < 32) return length;
    const Size lines = (length + 7) / 8;
    return (lines % 64 == 0 ? lines + 1 : lines) * 8;
}

// Scratch of a whole operation is taken from one block: many blocks that come and go make the
// system hand out and take back pages at every call.
template <class Real>
class Scratch {
public:
    explicit Scratch(Real* elements) : next_(elements) {}

    Real* take(Size count) {
        Real* const taken = next_;
        next_ += rounded(count);
        return taken;
    }
    // What `take` needs for so many elements: whole cache lines.
    static Size rounded(Size count) {
        constexpr Size line = 64 / Size(sizeof(Real));
        return (count + line - 1) / line * line;
    }

private:
    Real* next_;
};

// height x width, rows contiguous, its columns running the way of `column_stride`.
template <class Real>
View<Real> scratch_by_rows(Real* elements, Size height, Size width, Size column_stride) {
    const Size distance = padded_length(width);
    if (column_stride >= 0) return {elements, height, width, distance, 1};
    return {elements + (width > 0 ? width - 1 : 0), height, width, distance, -1};
}

// height x width, columns contiguous, its rows running the way of `row_stride`.
template <class Real>
View<Real> scratch_by_columns(Real* elements, Size height, Size width, Size row_stride) {
    return scratch_by_rows(elements, width, height, row_stride).transposed();
}

}  // namespace nequar
