// What the kernel tests share: the variants that this CPU can run, operands with guard cells around
// every element, and the comparison with the reference.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "core/view.h"
#include "kernel/dispatch.h"
#include "support/twins.h"

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
#if !defined(NEQUAR_WITHOUT_WIDE_UNIT)
    if constexpr (std::is_same_v<Real, double>)
        tables.push_back(&wide::table_of_double());
    else
        tables.push_back(&wide::table_of_float());
#endif
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

inline std::string described(Layout layout) {
    return "layout " + std::to_string(int(layout));
}
inline std::string described(Size number) {
    return std::to_string(number);
}
template <class Real>
std::string described(const Table<Real>* table) {
    return table->name;
}
template <std::size_t rank>
std::string described(const std::array<Size, rank>& shape) {
    std::string text;
    for (const Size size : shape) text += (text.empty() ? "" : "x") + std::to_string(size);
    return text;
}

// Calls check with every combination of elements of the lists; failures name theirs.
template <class Check, class... Lists>
void with_each(const Check& check, const Lists&... lists) {
    if constexpr (sizeof...(Lists) == 0) {
        check();
    } else {
        const auto first = [&check](const auto& list, const auto&... others) {
            for (const auto& item : list) {
                SCOPED_TRACE(described(item));
                with_each([&](const auto&... rest) { check(item, rest...); }, others...);
            }
        };
        first(lists...);
    }
}
using Sizes = std::vector<Size>;
inline constexpr bool kBoth[] = {false, true};

// A height x width operand whose neighbours, before, between and after its elements, are guard
// cells. A guard is NaN, so that a kernel that uses one spoils its result; and none may be written.
template <class Real>
class Operand {
public:
    Operand(Size height, Size width, Layout layout, Size gap = 3) : height_(height), width_(width) {
        Size row = 0;
        Size column = 0;
        if (layout == Layout::rows || layout == Layout::rows_reversed) {
            row = width + gap;
            column = 1;
        } else if (layout == Layout::spread) {
            row = 2 * width + gap;
            column = 2;
        } else {
            row = 1;
            column = height + gap;
        }
        const Size extent = height * row + width * column;
        cells_.assign(static_cast<std::size_t>(extent + 2 * kMargin), kNaN<Real>);
        start_ = kMargin;
        row_ = row;
        column_ = column;
        const bool both = layout == Layout::columns_reversed;  // both dimensions turned round
        if (both || layout == Layout::rows_reversed) {         // the last row comes first
            start_ += std::max<Size>(height - 1, 0) * row;
            row_ = -row;
        }
        if (both) {
            start_ += std::max<Size>(width - 1, 0) * column;
            column_ = -column;
        }
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
        for (Size i = 0; i < height_; ++i)
            for (Size j = 0; j < width_; ++j) (*this)(i, j) = uniform(generator);
        return *this;
    }

    // Whether all that is not an element is as it was.
    bool guards_stand() {
        std::vector<Real> copy = cells_;
        const Real* base = cells_.data();
        for (Size i = 0; i < height_; ++i)
            for (Size j = 0; j < width_; ++j)
                copy[static_cast<std::size_t>(&(*this)(i, j) - base)] = kNaN<Real>;
        return std::all_of(copy.begin(), copy.end(), [](Real cell) { return std::isnan(cell); });
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
    for (Size i = 0; i < a.height(); ++i)
        for (Size j = 0; j < a.width(); ++j) {
            const Real x = a(i, j);
            const Real y = b(i, j);
            if (x == y || (std::isnan(x) && std::isnan(y))) continue;
            const Real difference = std::abs(x - y);
            if (!(difference <= largest))
                largest = std::isnan(difference) ? kInfinity<Real> : difference;
        }
    return largest;
}

}  // namespace testing
}  // namespace nequar::kernel
