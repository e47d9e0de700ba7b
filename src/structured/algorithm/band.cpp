#include "structured/algorithm/band.h"

#include "kernel/kernel.h"

namespace nequar {

namespace {

// The diagonal of `a` at distance d below (d > 0) or above (d < 0) the main one.
template <class Real>
Strided<Real> diagonal_below(View<Real> a, Size d) {
    if (d >= 0) return a.block(d, 0, a.height - d, a.width).diagonal();
    return a.block(0, -d, a.height, a.width + d).diagonal();
}

}  // namespace

template <class Real>
void pack_band(const BandShape& shape, View<const Real> a, Real* packed) {
    for (Size k = 0; k < shape.band_count(); ++k) {
        const Size length = shape.length(k);
        kernel::copy(diagonal_below(a, shape.p - k), Strided<Real>(packed, length));
        packed += length;
    }
}

template <class Real>
void unpack_band(const BandShape& shape, const Real* packed, View<Real> a) {
    for (Size k = 0; k < shape.band_count(); ++k) {
        const Size length = shape.length(k);
        kernel::copy(Strided<const Real>(packed, length), diagonal_below(a, shape.p - k));
        packed += length;
    }
}

template <class Real>
void add_product_of_bands(const BandShape& a_shape, const Real* a, const BandShape& b_shape,
                          const Real* b, View<Real> c) {
    const auto above = [](Size d) { return d > 0 ? d : 0; };
    for (Size k = 0; k < a_shape.band_count(); ++k) {
        const Size d = k - a_shape.p;
        const Real* const a_band = a + a_shape.start(k);
        for (Size l = 0; l < b_shape.band_count(); ++l) {
            const Size e = l - b_shape.p;
            const Real* const b_band = b + b_shape.start(l);
            // element p of a band stands in row p + max(0, -d)
            const Size a_row = above(-d);
            const Size b_row = above(-e);
            const Size first = a_row > b_row - d ? a_row : b_row - d;
            const Size a_end = a_row + a_shape.length(k);
            const Size b_end = b_row - d + b_shape.length(l);
            const Size end = a_end < b_end ? a_end : b_end;
            for (Size i = first; i < end; ++i)
                c(i, i + d + e) += a_band[i - a_row] * b_band[i + d - b_row];
        }
    }
}

template <class Real>
void pack_lower_band(Size b, View<const Real> a, Real* packed) {
    for (Size d = 0; d <= b; ++d) {
        kernel::copy(diagonal_below(a, d), Strided<Real>(packed, a.height - d));
        packed += a.height - d;
    }
}

template <class Real>
void pack_symmetric_band_average(Size b, View<const Real> a, Real* packed) {
    for (Size d = 0; d <= b; ++d) {
        const Strided<Real> band(packed, a.height - d);
        kernel::copy(diagonal_below(a, d), band);
        kernel::axpy(Real(1), diagonal_below(a, -d), band);
        kernel::scale(Real(0.5), band);
        packed += a.height - d;
    }
}

template <class Real>
void unpack_symmetric_band(Size b, const Real* packed, View<Real> a) {
    for (Size d = 0; d <= b; ++d) {
        const Strided<const Real> band(packed, a.height - d);
        kernel::copy(band, diagonal_below(a, d));
        if (d > 0) kernel::copy(band, diagonal_below(a, -d));
        packed += a.height - d;
    }
}

#define NEQUAR_INSTANTIATE(Real)                                                        \
    template void pack_band(const BandShape&, View<const Real>, Real*);                 \
    template void unpack_band(const BandShape&, const Real*, View<Real>);               \
    template void add_product_of_bands(const BandShape&, const Real*, const BandShape&, \
                                       const Real*, View<Real>);                        \
    template void pack_lower_band(Size, View<const Real>, Real*);                       \
    template void pack_symmetric_band_average(Size, View<const Real>, Real*);           \
    template void unpack_symmetric_band(Size, const Real*, View<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
