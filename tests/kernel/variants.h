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

template <class Real>
void PrintTo(const Table<Real>* table, std::ostream* out) {
    *out << table->name;
}

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

// How the elements of an operand lie in memory; and how that, and the table in use, are shown.
enum class Layout { rows, columns, rows_reversed, columns_reversed, spread };
inline void PrintTo(Layout layout, std::ostream* out) {
    *out << "layout " << int(layout);
}
inline constexpr Layout kLayouts[] = {Layout::rows, Layout::columns, Layout::rows_reversed,
                                      Layout::columns_reversed, Layout::spread};

// Calls check with every combination of elements of the lists; failures name theirs.
template <class Check, class... Lists>
void with_each(const Check& check, const Lists&... lists) {
    if constexpr (sizeof...(Lists) == 0) {
        check();
    } else {
        const auto first = [&check](const auto& list, const auto&... others) {
            for (const auto& item : list) {
                SCOPED_TRACE(::testing::PrintToString(item));
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
// The elements are NaN too, or random with a seed.
template <class Real>
class Operand {
public:
    Operand(Size height, Size width, Layout layout, unsigned seed = 0, Size gap = 3)
        : height_(height), width_(width) {
        column_ = layout == Layout::spread ? 2 : 1;
        row_ = column_ * width + gap;
        if (layout == Layout::columns || layout == Layout::columns_reversed) {
            row_ = 1;
            column_ = height + gap;
        }
        const Size extent = height * row_ + width * column_ + 2 * kMargin;
        cells_.assign(static_cast<std::size_t>(extent), kNaN<Real>);
        if (layout == Layout::rows_reversed || layout == Layout::columns_reversed) {
            start_ += std::max<Size>(height - 1, 0) * row_;
            row_ = -row_;
        }
        if (layout == Layout::columns_reversed) {  // both dimensions turned round
            start_ += std::max<Size>(width - 1, 0) * column_;
            column_ = -column_;
        }
        if (seed > 0) randomize(seed);
    }

    Real* data() { return cells_.data() + start_; }
    Size row_stride() const { return row_; }
    Size column_stride() const { return column_; }
    View<Real> view() { return {data(), height_, width_, row_, column_}; }
    Block<Real> block() { return {data(), row_, column_}; }
    Block<const Real> reading() { return {data(), row_, column_}; }
    Real& operator()(Size i, Size j) { return view()(i, j); }

    template <class Element>
    Operand& assign(const Element& element) {
        for (Size i = 0; i < height_; ++i)
            for (Size j = 0; j < width_; ++j) (*this)(i, j) = element(i, j);
        return *this;
    }
    Operand& randomize(unsigned seed) {
        std::mt19937 generator(seed);
        std::uniform_real_distribution<Real> uniform(Real(-1), Real(1));
        return assign([&](Size, Size) { return uniform(generator); });
    }
    // How many places (i, j) are wrong(i, j).
    template <class Wrong>
    Size count(const Wrong& wrong) const {
        Size sum = 0;
        for (Size i = 0; i < height_; ++i)
            for (Size j = 0; j < width_; ++j) sum += wrong(i, j);
        return sum;
    }
    // Whether all that is not an element is as it was.
    bool guards_stand() const {
        Operand copy = *this;
        copy.assign([](Size, Size) { return kNaN<Real>; });
        return std::all_of(copy.cells_.begin(), copy.cells_.end(),
                           [](Real cell) { return std::isnan(cell); });
    }
    // The largest |a - b|; NaN against NaN and equal infinities count as equal, NaN against a
    // number as infinitely far.
    friend Real largest_difference(Operand& a, Operand& b) {
        Real largest = 0;
        a.count([&](Size i, Size j) {
            const Real x = a(i, j), y = b(i, j);
            if (x == y || (std::isnan(x) && std::isnan(y))) return false;
            const Real difference = std::abs(x - y);
            largest = std::isnan(difference) ? kInfinity<Real> : std::max(largest, difference);
            return true;
        });
        return largest;
    }

private:
    static constexpr Size kMargin = 20;
    Size height_;
    Size width_;
    Size start_ = kMargin;
    Size row_ = 0;
    Size column_ = 0;
    std::vector<Real> cells_;
};

// run(table, operand) leaves the same in the operand as with the plain table, and writes no guard.
template <class Real, class Run>
void expect_agreement(const Table<Real>* table, const Operand<Real>& before, Real bound,
                      const Run& run) {
    Operand<Real> expected = before, actual = before;
    run(plain<Real>(), expected);
    run(*table, actual);
    EXPECT_LE(largest_difference(expected, actual), bound);
    EXPECT_TRUE(actual.guards_stand());
}

// A random triangle near 2 I; NaN where it must not be read.
template <class Real>
Operand<Real> triangle(Size n, Layout layout, bool lower, bool unit) {
    Operand<Real> t(n, n, layout, 5);
    return t.assign([&](Size i, Size j) {
        if (i == j) return unit ? kNaN<Real> : 2 + t(i, i) / Real(n);
        return (lower ? j > i : j < i) ? kNaN<Real> : t(i, j) / Real(n);
    });
}

}  // namespace testing
}  // namespace nequar::kernel
