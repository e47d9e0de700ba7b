// Band matrices, to and from dense storage: a band is a diagonal of the dense matrix,
//
//   packed[start(k) + i] = a(i + max(0, p - k), i + max(0, k - p)),   k = 0 ... p + q
//
// Packed arrays and views must not overlap. What lies outside the band is neither read nor written.
#pragma once

#include "core/view.h"
#include "structured/algorithm/band_shape.h"

namespace nequar {

template <class Real>
void pack_band(const BandShape& shape, View<const Real> a, Real* packed);

template <class Real>
void unpack_band(const BandShape& shape, const Real* packed, View<Real> a);

// C += A B for two bands, A's width being B's height. Band d of A and band d' of B make up part of
// band d + d' of C: (A B)(i, i + d + d') = sum of a(i, i + d) b(i + d, i + d + d').
template <class Real>
void add_product_of_bands(const BandShape& a_shape, const Real* a, const BandShape& b_shape,
                          const Real* b, View<Real> c);

// ---- the bands 0 ... b of the lower triangle of an n x n matrix, the main diagonal first --------

// packed (r, c) := a(r, c), 0 <= r - c <= b
template <class Real>
void pack_lower_band(Size b, View<const Real> a, Real* packed);

// packed (r, c) := (a(r, c) + a(c, r)) * 0.5
template <class Real>
void pack_symmetric_band_average(Size b, View<const Real> a, Real* packed);

// a(r, c) and a(c, r) := packed (r, c)
template <class Real>
void unpack_symmetric_band(Size b, const Real* packed, View<Real> a);

}  // namespace nequar
