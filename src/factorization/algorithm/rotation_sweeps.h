// Plane rotations that are recorded while an iteration runs on two vectors, and applied to a matrix
// later, many sweeps at once.
//
//   sweep r:  for i = first ... last - 1:   (row i, row i + 1) := (c row i - s row i+1,
//                                                                  s row i + c row i+1)
//
// An implicit QR step is one sweep. Applied alone it reads and writes the whole matrix for a few
// operations an element; a batch of sweeps goes over the matrix once, in strips of columns that
// stay in the cache:
//
//            strip
//      | .  . | x  x | .  . |      gathered, all sweeps of the batch applied to it in waves
//      | .  . | x  x | .  . |      (kernel::rotate_rows), scattered back
//
// The rows may have any strides, so columns of V are rotated through `v.transposed()`; V is best
// stored with contiguous rows then, V^T as well. Rotations from the last row up are sweeps of the
// reversed rows: hand over (c, -s) at rows - 2 - i, and the matrix with its rows reversed.
//
//   Workspace<Real> elements(RotationSweeps<Real>::scratch(n));
//   RotationSweeps<Real> sweeps(elements.data(), n);
//   ... if (sweeps.is_full()) sweeps.apply(rows);
//       Real* pairs = sweeps.begin(first, last);  pairs[2 i] = c, pairs[2 i + 1] = s
//   ... sweeps.apply(rows);
//
// Van Zee, van de Geijn, Quintana-Orti, Restructuring the tridiagonal and bidiagonal QR algorithms
// for performance, ACM TOMS 40, 2014.
#pragma once

#include "core/view.h"

namespace nequar {

template <class Real>
class RotationSweeps {
public:
    // Elements of scratch for sweeps over so many rows.
    static Size scratch(Size rows);

    RotationSweeps(Real* elements, Size rows);

    bool is_full() const { return count_ == capacity_of(rows_); }

    // Records one more sweep, of the rotations first ... last - 1, 0 <= first < last < rows, all of
    // which the caller writes: that of rows i and i + 1 to [2 i] and [2 i + 1] of the answer. Not
    // when full. No c is near -1 (the larger of c and s is not negative).
    Real* begin(Size first, Size last);

    // Applies what is recorded to the rows of A, and forgets it.
    void apply(View<Real> a) { apply(a, a.width); }
    // The same to a matrix whose row i is zero beyond column i + reach. Each sweep adds one to the
    // reach, so that after r sweeps on an identity it is r.
    void apply(View<Real> a, Size reach);

private:
    static constexpr Size kCapacity = 192;  // sweeps of a batch
    static constexpr Size kGroup = 12;      // sweeps that go over one range of rows together

    struct Range {
        Size first;
        Size last;
    };

    Size stride() const { return 2 * rows_; }
    Range range_of(Size begin, Size end) const;
    void fill_with_identity(Size sweep, Size first, Size last);
    void turn_into_shears(Size sweep, Size first, Size last);
    // What fits a cache matters less than how often a large matrix is gathered and scattered.
    static Size capacity_of(Size rows) { return rows < 400 ? kCapacity / 2 : kCapacity; }
    static Size width_of_strip(Size rows);

    Real* pairs_;
    Real* strip_;
    Size rows_;
    Size count_ = 0;
    Range ranges_[kCapacity];
};

}  // namespace nequar
