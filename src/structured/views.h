// From packed objects to the raw packed elements that the algorithm layer works on.
#pragma once

#include "frame/views.h"
#include "nequar_algebra/structured.h"
#include "structured/algorithm/band_shape.h"
#include "structured/algorithm/packed_triangle.h"

namespace nequar {

// How a symmetric or triangular matrix lies in its vector: the shape of the packed lower trapezoid
// that it is, or of which it is the transpose.
template <class Real>
PackedShape packed_shape(const MatrixSymmetric<Real>* matrix) {
    return PackedShape::lower(matrix->mh(), matrix->mw());
}
template <class Real, TriangleSide side>
PackedShape packed_shape(const MatrixTriangular<Real, side>* matrix) {
    return side == TriangleSide::lower ? PackedShape::lower(matrix->mh(), matrix->mw())
                                       : PackedShape::lower(matrix->mw(), matrix->mh());
}

// How a band matrix lies in its vector.
template <class Real>
BandShape band_shape_of(const MatrixBand<Real>* matrix) {
    int width = 0;
    int height = 0;
    int p = 0;
    int q = 0;
    matrix->msb_Matrix_Width_Height_Bands(width, height, p, q);
    return {height, width, p, q};
}

// Whether the vector still holds the elements of the shape: anyone may have resized it through its
// own interface. To be asked before `p()` is read as packed elements.
template <class Packed>
bool holds_its_elements(const Packed* matrix) {
    return matrix->vs() >= packed_shape(matrix).count();
}
template <class Real>
bool holds_its_elements(const MatrixDiagonal<Real>* matrix) {
    return matrix->vs() >= matrix->mh() || matrix->vs() >= matrix->mw();
}

// Sizes a packed output, whose `c_Create` answers nothing; false when that was refused.
template <class Packed>
[[nodiscard]] bool size_packed(Packed* matrix, int height, int width) {
    matrix->c_Create(height, width);
    return matrix->mh() == height && matrix->mw() == width && holds_its_elements(matrix);
}

// The view in which the named triangle is a lower one.
template <class Real>
View<Real> as_lower(TriangleSide side, View<Real> a) {
    return side == TriangleSide::lower ? a : a.transposed();
}

}  // namespace nequar
