// Strided views: how the algorithm layer sees matrices and vectors.
//
//   View(i, j)   = data[i * row_stride + j * column_stride],   0 <= i < height, 0 <= j < width
//   Strided(i)   = data[i * stride],                           0 <= i < size
//
// A view owns nothing. A transpose exchanges the strides, a block moves the start: both cost
// nothing, so a blocked algorithm reads like the drawing of its partition. Reversing a dimension is
// a negative stride, which turns an upper triangle into a lower one.
#pragma once

#include <cstddef>
#include <type_traits>

namespace nequar {

using Size = std::ptrdiff_t;

template <class Real>
struct Strided {
    Real* data = nullptr;
    Size size = 0;
    Size stride = 1;

    Strided() = default;
    Strided(Real* first, Size count, Size step = 1) : data(first), size(count), stride(step) {}

    template <class Other>
    requires(std::is_same_v<const Other, Real> && !std::is_same_v<Other, Real>)
        Strided(const Strided<Other>& other)
        : data(other.data), size(other.size), stride(other.stride) {}

    Real& operator()(Size i) const { return data[i * stride]; }

    Strided part(Size start, Size count) const { return {data + start * stride, count, stride}; }
};

template <class Real>
struct View {
    Real* data = nullptr;
    Size height = 0;
    Size width = 0;
    Size row_stride = 0;
    Size column_stride = 1;

    View() = default;

    View(Real* first, Size rows, Size columns, Size step_of_row, Size step_of_column = 1)
        : data(first),
          height(rows),
          width(columns),
          row_stride(step_of_row),
          column_stride(step_of_column) {}

    template <class Other>
    requires(std::is_same_v<const Other, Real> && !std::is_same_v<Other, Real>)
        View(const View<Other>& other)
        : data(other.data),
          height(other.height),
          width(other.width),
          row_stride(other.row_stride),
          column_stride(other.column_stride) {}

    Real& operator()(Size row, Size column) const {
        return data[row * row_stride + column * column_stride];
    }

    View block(Size row, Size column, Size rows, Size columns) const {
        return {data + row * row_stride + column * column_stride, rows, columns, row_stride,
                column_stride};
    }
    View rows(Size first, Size count) const { return block(first, 0, count, width); }
    View columns(Size first, Size count) const { return block(0, first, height, count); }

    View transposed() const { return {data, width, height, column_stride, row_stride}; }

    // Both dimensions reversed: element (i, j) becomes (height-1-i, width-1-j).
    View reversed() const {
        if (height == 0 || width == 0) return *this;
        return {data + (height - 1) * row_stride + (width - 1) * column_stride, height, width,
                -row_stride, -column_stride};
    }

    Strided<Real> row(Size i) const { return {data + i * row_stride, width, column_stride}; }
    Strided<Real> column(Size j) const { return {data + j * column_stride, height, row_stride}; }
    Strided<Real> diagonal() const {
        return {data, height < width ? height : width, row_stride + column_stride};
    }

    bool is_empty() const { return height == 0 || width == 0; }
};

// A view for reading whatever may be written through the given one; used where template argument
// deduction would otherwise need the conversion spelled out.
template <class Real>
View<const Real> reading(const View<Real>& view) {
    return view;
}
template <class Real>
Strided<const Real> reading(const Strided<Real>& vector) {
    return vector;
}

}  // namespace nequar
