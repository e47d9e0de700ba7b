// P A = L U with partial pivoting where the cost of each step's start decides: n <= kSmallOrder.
//
// Row by row, one pivot after another. Rows are not moved: they are reached through a list that is
// exchanged. What the search for the next pivot looks at, column k + 1, is computed ahead, element
// by element, so that it does not wait for the rows:
//
//      | .  .  .      f = a(i, k) / pivot,  v(i) = a(i, k+1) - f u(k, k+1)    the search goes on
//      | .  u  u      a(i, :) := a(i, :) - f u(k, :)                          vectors
//      | .  f  a
//
// An element is diminished by its products in the order of the pivots; product and difference are
// rounded one by one, to the last bit as in plain loops.
#pragma once

#include "kernel/simd/factor.h"

namespace nequar::kernel::NEQUAR_UNIT {

// The first largest magnitude so far; NaN is never it.
template <class Real>
struct PivotSearch {
    Real largest = 0;
    Size place;

    NEQUAR_INLINE explicit PivotSearch(Size first) : place(first) {}
    NEQUAR_INLINE void look_at(Real value, Size i) {
        const Real size = magnitude_of(value);
        place = size > largest ? i : place;
        largest = size > largest ? size : largest;
    }
};

template <class Real>
NEQUAR_INLINE Vector<Real> lane_numbers() {
    Vector<Real> numbers;
    NEQUAR_UNROLL for (Size lane = 0; lane < kLanes<Real>; ++lane) numbers[lane] = Real(lane);
    return numbers;
}

// row := row - f u from column k + 1 on, f itself in column k; the vector that holds column k is x.
template <class Real>
NEQUAR_INLINE void eliminate_row(Size k, Size n, Real factor, Vector<Real> column_of_lane,
                                 Vector<Real> x, const Real* u, Real* row) {
    constexpr Size lanes = kLanes<Real>;
    const Vector<Real> f = broadcast(factor);
    const Vector<Real> here = broadcast(Real(k % lanes));
    Size j = k / lanes * lanes;
    const Vector<Real> old = load(static_cast<const Real*>(row + j));
    const Vector<Real> kept = column_of_lane == here ? f : old;
    store(row + j, column_of_lane > here ? old - f * x : kept);
    for (j += lanes; j < n; j += lanes) {
        store(row + j, load(static_cast<const Real*>(row + j)) - f * load(u + j));
    }
}

template <class Real>
Size lu_pivoted_small(Size n, const Block<Real>& a, int* pivots) {
    constexpr Size lanes = kLanes<Real>;
    Square<Real> square;
    const Size stride = stride_of_square<Real>(n);
    Real* rows[kSmallOrder];
    Real column[kSmallOrder];
    if (n <= 0) return -1;
    const FirstLanes<Real> last = first_lanes<Real>((n - 1) % lanes + 1);
    const Vector<Real> numbers = lane_numbers<Real>();
    PivotSearch<Real> search(0);
    for (Size i = 0; i < n; ++i) {
        const Real* from = a.data + i * a.row_stride;
        rows[i] = square.elements + i * stride;
        take_row(0, n, from, a.column_stride, rows[i], last);
        column[i] = *from;
        search.look_at(column[i], i);
    }
    Size zero = -1;
    for (Size k = 0; k < n; ++k) {
        const Size r = search.place;
        pivots[k] = static_cast<int>(r);
        Real* const u = rows[r];
        rows[r] = rows[k];
        rows[k] = u;
        const Real pivot = column[r];
        column[r] = column[k];
        if (pivot == 0 && zero < 0) zero = k;
        if (k + 1 == n) break;
        // A column without a pivot is passed over as it stands.
        const Real reciprocal = pivot == 0 ? Real(1) : 1 / pivot;
        const bool divide = is_infinite(reciprocal);
        const Real next = u[k + 1];
        const Vector<Real> x = load(static_cast<const Real*>(u + k / lanes * lanes));
        search = PivotSearch<Real>(k + 1);
        for (Size i = k + 1; i < n; ++i) {
            const Real factor = divide ? column[i] / pivot : column[i] * reciprocal;
            column[i] = rows[i][k + 1] - factor * next;
            search.look_at(column[i], i);
            eliminate_row(k, n, factor, numbers, x, static_cast<const Real*>(u), rows[i]);
        }
    }
    for (Size i = 0; i < n; ++i) {
        give_row(0, n, static_cast<const Real*>(rows[i]), a.data + i * a.row_stride,
                 a.column_stride);
    }
    return zero;
}

}  // namespace nequar::kernel::NEQUAR_UNIT
