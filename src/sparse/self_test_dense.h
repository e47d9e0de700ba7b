// The dense twins' side of the self-tests of matrices.
#pragma once

#include <algorithm>

#include "frame/views.h"
#include "kernel/kernel.h"
#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/sparse/sparse_vector.h"

namespace nequar {

// Whether a sparse matrix, general or symmetric, exports to exactly the dense one.
template <class Sparse, class Real>
bool holds(const Sparse& s, const Matrix<Real>& a) {
    Matrix<Real> exported;
    return s.ex(&exported) && exported == a;
}

// The height x width part of a that begins at (x, y).
template <class Real>
Matrix<Real> dense_part(const Matrix<Real>& a, int x, int y, int width, int height) {
    Matrix<Real> part;
    part.c_Create(height, width);
    kernel::copy<Real>(view_of(&a).block(y, x, height, width), view_of(&part));
    return part;
}

template <class Real>
Matrix<Real> dense_line(const SparseVector<Real>& v, bool is_row) {
    Vector<Real> exported;
    Matrix<Real> line;
    v.ex(&exported);
    line.c_Create(is_row ? 1 : exported.vs(), is_row ? exported.vs() : 1);
    std::copy(exported.p(), exported.p() + exported.vs(), line.p()[0]);
    return line;
}

template <class Real, class Operation>
Matrix<Real> dense_result(const Matrix<Real>& a, const Matrix<Real>& b,
                          const Operation& operation) {
    Matrix<Real> result;
    result.c_Create(a.mh(), a.mw());
    for (Size i = 0; i < element_count(&a); ++i)
        result.p()[0][i] = operation(a.p()[0][i], b.p()[0][i]);
    return result;
}

}  // namespace nequar
