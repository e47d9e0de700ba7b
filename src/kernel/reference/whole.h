// Whole matrices, as plain loops: B := A on any strides (a transpose is a copy with exchanged
// strides), A := A^T, A := value.
#pragma once

#include "kernel/reference/level2.h"

namespace nequar::kernel::reference {

template <class Real>
void copy_matrix(Size m, Size n, Block<const Real> a, Block<Real> b) {
    for (Size i = 0; i < m; ++i) {
        for (Size j = 0; j < n; ++j) at(b, i, j) = at(a, i, j);
    }
}

template <class Real>
void transpose_in_place(Size n, Block<Real> a) {
    for (Size i = 0; i < n; ++i) {
        for (Size j = 0; j < i; ++j) {
            const Real old = at(a, i, j);
            at(a, i, j) = at(a, j, i);
            at(a, j, i) = old;
        }
    }
}

template <class Real>
void fill_matrix(Size m, Size n, Real value, Block<Real> a) {
    for (Size i = 0; i < m; ++i) {
        for (Size j = 0; j < n; ++j) at(a, i, j) = value;
    }
}

}  // namespace nequar::kernel::reference
