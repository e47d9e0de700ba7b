// Lower trapezoids packed by diagonals, as plain loops: diagonal d holds a(p + d, p), p = 0, 1, ...
#pragma once

#include "kernel/reference/level2.h"

namespace nequar::kernel::reference {

template <class Real>
void unpack_lower(Size height, Size width, const Real* packed, Block<Real> a) {
    for (Size d = 0; d < height; ++d) {
        for (Size p = 0; p < width && p + d < height; ++p) at(a, p + d, p) = *packed++;
    }
}

template <class Real>
void pack_lower(Size height, Size width, Block<const Real> a, Real* packed) {
    for (Size d = 0; d < height; ++d) {
        for (Size p = 0; p < width && p + d < height; ++p) *packed++ = at(a, p + d, p);
    }
}

template <class Real>
void unpack_symmetric(Size n, const Real* packed, Block<Real> a) {
    for (Size d = 0; d < n; ++d) {
        for (Size p = 0; p + d < n; ++p) at(a, p + d, p) = at(a, p, p + d) = *packed++;
    }
}

template <class Real>
void pack_symmetric(Size n, Block<const Real> a, Real* packed) {
    for (Size d = 0; d < n; ++d) {
        for (Size p = 0; p + d < n; ++p)
            *packed++ = (at(a, p + d, p) + at(a, p, p + d)) * Real(0.5);
    }
}

}  // namespace nequar::kernel::reference
