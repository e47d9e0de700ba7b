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

#define NEQUAR_INSTANTIATE(Real)                                              \
    template void pack_band(const BandShape&, View<const Real>, Real*);       \
    template void unpack_band(const BandShape&, const Real*, View<Real>);     \
    template void pack_lower_band(Size, View<const Real>, Real*);             \
    template void pack_symmetric_band_average(Size, View<const Real>, Real*); \
    template void unpack_symmetric_band(Size, const Real*, View<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
