// What the kernel tests share: the variants that this CPU can run, operands with guard cells around
// every element, and the comparison with the reference.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "core/view.h"
#include "kernel/dispatch.h"

namespace nequar::kernel {

// The same kernels at 64 bytes a vector in plain compiler vectors: the tiles and masks of AVX-512
// on any machine.
namespace wide {
const Table<double>& table_of_double();
const Table<float>& table_of_float();
}  // namespace wide

namespace testing {

template <class Real>
std::vector<const Table<Real>*> variants() {
    std::vector<const Table<Real>*> tables;
    for (Variant variant : {Variant::baseline, Variant::avx2, Variant::avx512}) {
        if (can_run(variant)) tables.push_back(&table_of<Real>(variant));
    }
    if constexpr (std::is_same_v<Real, double>) {
#if !defined(NEQUAR_WITHOUT_WIDE_UNIT)
        tables.push_back(&wide::table_of_double());
#endif
    } else {
#if !defined(NEQUAR_WITHOUT_WIDE_UNIT)
        tables.push_back(&wide::table_of_float());
#endif
    }
    return tables;
}

template <class Real>
const Table<Real>& plain() {
    return table_of<Real>(Variant::reference);
}

template <class Real>
inline constexpr Real kEps = std::numeric_limits<Real>::epsilon();
template <class Real>
inline constexpr Real kNaN = std::numeric_limits<Real>::quiet_NaN();
template <class Real>
inline constexpr Real kInfinity = std::numeric_limits<Real>::infinity();

// How the elements of an operand lie in memory.
enum class Layout { rows, columns, rows_reversed, columns_reversed, spread };
inline constexpr Layout kLayouts[] = {Layout::rows, Layout::columns, Layout::rows_reversed,
                                      Layout::columns_reversed, Layout::spread};

// A height x width operand whose neighbours, before, between and after its elements, are guard
// cells. A guard is NaN, so that a kernel that uses one spoils its result; and none may be written.
template <class Real>
class Operand {
public:
    Operand(Size height, Size width, Layout layout, Size gap = 3) : height_(height), width_(width) {
        Size row = 0;
        Size column = 0;
        switch (layout) {
            case Layout::rows:
            case Layout::rows_reversed:
                row = width + gap;
                column = 1;
                break;
            case Layout::columns:
            case Layout::columns_reversed:
                row = 1;
                column = height + gap;
                break;
            case Layout::spread:
                row = 2 * width + gap;
                column = 2;
                break;
        }
        const Size extent = height * row + width * column;
        cells_.assign(static_cast<std::size_t>(extent + 2 * kMargin), kNaN<Real>);
        Size start = kMargin;
        if (layout == Layout::rows_reversed && height > 0) {  // the last row comes first
            start += (height - 1) * row;
            row = -row;
        }
        if (layout == Layout::columns_reversed) {  // both dimensions turned round
            if (height > 0) start += (height - 1) * row;
            if (width > 0) start += (width - 1) * column;
            row = -row;
            column = -column;
        }
        start_ = start;
        row_ = row;
        column_ = column;
    }

    View<Real> view() { return {cells_.data() + start_, height_, width_, row_, column_}; }
    Block<Real> block() { return {cells_.data() + start_, row_, column_}; }
    Block<const Real> reading() { return {cells_.data() + start_, row_, column_}; }
    Real& operator()(Size i, Size j) { return view()(i, j); }
    Size height() const { return height_; }
    Size width() const { return width_; }

    Operand& randomize(unsigned seed) {
        std::mt19937 generator(seed);
        std::uniform_real_distribution<Real> uniform(Real(-1), Real(1));
        for (Size i = 0; i < height_; ++i) {
            for (Size j = 0; j < width_; ++j) (*this)(i, j) = uniform(generator);
        }
        return *this;
    }

    // Whether all that is not an element is as it was.
    bool guards_stand() {
        std::vector<Real> copy = cells_;
        const Real* base = cells_.data();
        for (Size i = 0; i < height_; ++i) {
            for (Size j = 0; j < width_; ++j)
                copy[static_cast<std::size_t>(&(*this)(i, j) - base)] = kNaN<Real>;
        }
        for (const Real cell : copy) {
            if (!std::isnan(cell)) return false;
        }
        return true;
    }

private:
    static constexpr Size kMargin = 20;
    Size height_;
    Size width_;
    Size start_ = 0;
    Size row_ = 0;
    Size column_ = 0;
    std::vector<Real> cells_;
};

// The largest |a - b|; NaN against NaN and equal infinities count as equal, NaN against a number as
// infinitely far.
template <class Real>
Real largest_difference(Operand<Real>& a, Operand<Real>& b) {
    Real largest = 0;
    for (Size i = 0; i < a.height(); ++i) {
        for (Size j = 0; j < a.width(); ++j) {
            const Real x = a(i, j);
            const Real y = b(i, j);
            if (x == y || (std::isnan(x) && std::isnan(y))) continue;
            const Real difference = std::abs(x - y);
            if (!(difference <= largest))
                largest = std::isnan(difference) ? kInfinity<Real> : difference;
        }
    }
    return largest;
}

}  // namespace testing
}  // namespace nequar::kernel
