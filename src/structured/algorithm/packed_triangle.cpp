#include "structured/algorithm/packed_triangle.h"

#include "kernel/kernel.h"

namespace nequar {

template <class Real>
void unpack_lower(const Real* packed, View<Real> a) {
    kernel::unpack_lower(packed, a);
}

template <class Real>
void pack_lower(View<const Real> a, Real* packed) {
    kernel::pack_lower(a, packed);
}

template <class Real>
void unpack_symmetric(const Real* packed, View<Real> a) {
    kernel::unpack_symmetric(packed, a);
}

template <class Real>
void pack_symmetric_average(View<const Real> a, Real* packed) {
    kernel::pack_symmetric(a, packed);
}

// Along whichever of rows and columns are contiguous.
template <class Real>
void fill_above_diagonal(Real value, View<Real> a) {
    if (a.column_stride == 1) {
        for (Size i = 0; i < a.height && i + 1 < a.width; ++i)
            kernel::fill(a.width - i - 1, value, &a(i, i + 1));
    } else if (a.row_stride == 1) {
        for (Size j = 1; j < a.width; ++j)
            kernel::fill(j < a.height ? j : a.height, value, &a(0, j));
    } else {
        for (Size i = 0; i < a.height && i + 1 < a.width; ++i)
            kernel::fill(value, a.block(i, i + 1, 1, a.width - i - 1));
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
