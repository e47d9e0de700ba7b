// From public objects to the views that the algorithm layer works on.
#pragma once

#include "core/view.h"
#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/frame/vector.h"

namespace nequar {

// Where there are no elements, no columns lie beside each other: nothing is added to a null pointer.
template <class Real>
View<Real> view_of(Matrix<Real>* matrix) {
    Real* const elements = matrix->p()[0];
    return {elements, matrix->mh(), matrix->mw(), matrix->mw(), Size(elements != nullptr)};
}
template <class Real>
View<const Real> view_of(const Matrix<Real>* matrix) {
    const Real* const elements = matrix->p()[0];
    return {elements, matrix->mh(), matrix->mw(), matrix->mw(), Size(elements != nullptr)};
}
template <class Real>
Strided<Real> view_of(Vector<Real>* vector) {
    return {vector->p(), vector->vs()};
}
template <class Real>
Strided<const Real> view_of(const Vector<Real>* vector) {
    return {vector->p(), vector->vs()};
}

// Arrays and workspaces: rows one after another, without gaps.
template <class Real>
View<Real> matrix_view(Real* elements, Size height, Size width) {
    return {elements, height, width, width};
}
template <class Real>
View<Real> square_view(Real* elements, Size n) {
    return matrix_view(elements, n, n);
}

// Right-hand sides: a matrix as it is, a vector as its only column.
template <class Real>
View<Real> columns_of(Matrix<Real>* matrix) {
    return view_of(matrix);
}
template <class Real>
View<const Real> columns_of(const Matrix<Real>* matrix) {
    return view_of(matrix);
}
template <class Real>
View<Real> columns_of(Vector<Real>* vector) {
    return {vector->p(), vector->vs(), 1, 1, 1};
}
template <class Real>
View<const Real> columns_of(const Vector<Real>* vector) {
    return {vector->p(), vector->vs(), 1, 1, 1};
}

// A raw array of height x width elements, row by row or column by column.
template <class Real>
View<Real> view_of_array(bool row_major, Size height, Size width, Real* elements) {
    return row_major ? View<Real>(elements, height, width, width, 1)
                     : View<Real>(elements, height, width, 1, height);
}

template <class Real>
Size element_count(const Matrix<Real>* matrix) {
    return Size(matrix->mh()) * matrix->mw();
}

}  // namespace nequar
