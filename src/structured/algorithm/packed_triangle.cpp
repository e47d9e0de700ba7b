#include "structured/algorithm/packed_triangle.h"

namespace nequar {

template <class Real>
void unpack_lower(const Real* packed, View<Real> a) {
    const PackedShape shape = PackedShape::lower(a.height, a.width);
    for (Size d = 0; d < shape.height; ++d) {
        const Size length = shape.length(d);
        for (Size p = 0; p < length; ++p) a(p + d, p) = packed[p];
        packed += length;
    }
}

template <class Real>
void pack_lower(View<const Real> a, Real* packed) {
    const PackedShape shape = PackedShape::lower(a.height, a.width);
    for (Size d = 0; d < shape.height; ++d) {
        const Size length = shape.length(d);
        for (Size p = 0; p < length; ++p) packed[p] = a(p + d, p);
        packed += length;
    }
}

template <class Real>
void unpack_symmetric(const Real* packed, View<Real> a) {
    unpack_lower(packed, a);
    unpack_lower(packed, a.transposed());
}

template <class Real>
void pack_symmetric_average(View<const Real> a, Real* packed) {
    for (Size d = 0; d < a.height; ++d) {
        const Size length = a.height - d;
        for (Size p = 0; p < length; ++p) packed[p] = (a(p + d, p) + a(p, p + d)) * Real(0.5);
        packed += length;
    }
}

template <class Real>
void fill_above_diagonal(Real value, View<Real> a) {
    for (Size i = 0; i < a.height && i < a.width; ++i) {
        for (Size j = i + 1; j < a.width; ++j) a(i, j) = value;
    }
}

#define NEQUAR_INSTANTIATE(Real)                                   \
    template void unpack_lower(const Real*, View<Real>);           \
    template void pack_lower(View<const Real>, Real*);             \
    template void unpack_symmetric(const Real*, View<Real>);       \
    template void pack_symmetric_average(View<const Real>, Real*); \
    template void fill_above_diagonal(Real, View<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
