#include "factorization/algorithm/rotation_sweeps.h"

#include "factorization/algorithm/scratch.h"
#include "kernel/kernel.h"

namespace nequar {

// A strip of half a megabyte stays in a second-level cache; four cache lines across are
// what a wave of the kernel works on.
template <class Real>
Size RotationSweeps<Real>::width_of_strip(Size rows) {
    constexpr Size narrow = 256 / Size(sizeof(Real));
    const Size fitting = (Size(1) << 19) / Size(sizeof(Real)) / (rows > 0 ? rows : 1);
    if (fitting < 2 * narrow) return narrow;
    return fitting < 4 * narrow ? 2 * narrow : 4 * narrow;
}

template <class Real>
Size RotationSweeps<Real>::scratch(Size rows) {
    using S = Scratch<Real>;
    return S::rounded(2 * rows * capacity_of(rows)) + S::rounded(rows * width_of_strip(rows));
}

template <class Real>
RotationSweeps<Real>::RotationSweeps(Real* elements, Size rows) : rows_(rows) {
    Scratch<Real> scratch(elements);
    pairs_ = scratch.take(stride() * capacity_of(rows));
    strip_ = scratch.take(rows * width_of_strip(rows));
}

template <class Real>
Real* RotationSweeps<Real>::begin(Size first, Size last) {
    ranges_[count_] = {first, last};
    return pairs_ + stride() * count_++;
}

// The rotations that the sweeps begin ... end - 1 reach.
template <class Real>
auto RotationSweeps<Real>::range_of(Size begin, Size end) const -> Range {
    Range range = ranges_[begin];
    for (Size r = begin + 1; r < end; ++r) {
        if (ranges_[r].first < range.first) range.first = ranges_[r].first;
        if (ranges_[r].last > range.last) range.last = ranges_[r].last;
    }
    return range;
}

template <class Real>
void RotationSweeps<Real>::fill_with_identity(Size sweep, Size first, Size last) {
    Real* const pairs = pairs_ + sweep * stride();
    for (Size i = 2 * first; i < 2 * last; ++i) pairs[i] = 0;
}

// (c, s) -> (s / (1 + c), s), the form that the kernel takes.
template <class Real>
void RotationSweeps<Real>::turn_into_shears(Size sweep, Size first, Size last) {
    Real* const pairs = pairs_ + sweep * stride();
    for (Size i = first; i < last; ++i) pairs[2 * i] = pairs[2 * i + 1] / (1 + pairs[2 * i]);
}

//   column   j          Rows i with i + 1 + reach < j have nothing but zeros in the strip from
//     | x x  .  . |     column j on, and neither has row i + 1: there is nothing to rotate.
//     | x x  x  . |
//     | x x  x  x |
template <class Real>
void RotationSweeps<Real>::apply(View<Real> a, Size reach) {
    if (count_ == 0) return;
    for (Size r = 0; r < count_; r += kGroup) {
        const Size end = r + kGroup < count_ ? r + kGroup : count_;
        const Range group = range_of(r, end);
        for (Size k = r; k < end; ++k) {
            fill_with_identity(k, group.first, ranges_[k].first);
            turn_into_shears(k, ranges_[k].first, ranges_[k].last);
            fill_with_identity(k, ranges_[k].last, group.last);
        }
    }
    const Range whole = range_of(0, count_);
    const Size strip = width_of_strip(rows_);
    for (Size j = 0; j < a.width; j += strip) {
        const auto first_of = [=](Size first, Size sweeps) {
            const Size reached = j - reach - sweeps - 1;
            return first > reached ? first : reached;
        };
        const Size top = first_of(whole.first, count_);
        if (top >= whole.last) continue;
        const Size width = a.width - j < strip ? a.width - j : strip;
        const Size rows = whole.last - top + 1;
        const View<Real> part = a.block(top, j, rows, width);
        const View<Real> gathered(strip_, rows, width, strip);
        kernel::copy(reading(part), gathered);
        for (Size r = 0; r < count_; r += kGroup) {
            const Size end = r + kGroup < count_ ? r + kGroup : count_;
            const Range group = range_of(r, end);
            const Size first = first_of(group.first, end);
            if (first >= group.last) continue;
            const View<const Real> pairs(pairs_ + r * stride() + 2 * first, end - r,
                                         2 * (group.last - first), stride());
            kernel::rotate_rows(pairs, gathered.rows(first - top, group.last - first + 1));
        }
        kernel::copy(reading(gathered), part);
    }
    count_ = 0;
}

template class RotationSweeps<double>;
template class RotationSweeps<float>;

}  // namespace nequar
