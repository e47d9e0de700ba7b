// AlgebraForMatrix: products with diagonal matrices, both forms. Included by matrix_algebra.cpp
// alone.
#pragma once

#include "algebra/details.h"
#include "algebra/product_names.h"
#include "algebra/set_product.h"
#include "algebra/temporary.h"
#include "frame/algorithm/diagonal.h"
#include "frame/views.h"
#include "nequar_algebra/algebra/matrix_algebra.h"

namespace nequar {

template <class Real>
void AlgebraForMatrix<Real>::mmda_Multiply_Matrix_Dmatrix_and_Accumulate(int wD,
                                                                         const MatrixReal* A,
                                                                         const VectorReal* d,
                                                                         MatrixReal* C) const {
    if (C == A) return this->report("1", kMatrixDmatrix.accumulate);
    if (C->mh() != A->mh() || C->mw() != wD || d->vs() < std::min(wD, A->mw()))
        return this->report(kMatrixDmatrix.mismatch, kMatrixDmatrix.accumulate);
    multiply_by_diagonal(view_of(A), d->p(), kernel::Update::accumulate, view_of(C));
}

template <class Real>
void AlgebraForMatrix<Real>::mvda_Multiply_Vector_Dmatrix_and_Accumulate(int hD, int wD,
                                                                         const VectorReal* x,
                                                                         const VectorReal* d,
                                                                         VectorReal* y) const {
    if (y == x || y == d) return this->report("1", kVectorDmatrix.accumulate);
    if (x->vs() != hD || y->vs() != wD || d->vs() < std::min(hD, wD))
        return this->report(kVectorDmatrix.mismatch, kVectorDmatrix.accumulate);
    multiply_by_diagonal(Size(hD), Size(wD), x->p(), d->p(), kernel::Update::accumulate, y->p());
}

template <class Real>
void AlgebraForMatrix<Real>::mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate(
    int hD, int wD, const VectorReal* x, const VectorReal* d, const VectorReal* y, Real& s) const {
    if (x->vs() != hD || y->vs() != wD || d->vs() < std::min(hD, wD))
        return this->report(kVectorDmatrixVector.mismatch, kVectorDmatrixVector.accumulate);
    s += diagonal_form(Size(std::min(hD, wD)), x->p(), d->p(), y->p());
}

// C := A D; C may be A.
template <class Real>
ProductFault set_diagonal_product(int wD, const Matrix<Real>* A, const Vector<Real>* d,
                                  Matrix<Real>* C) {
    if (d->vs() < std::min(wD, A->mw())) return refuse_product(A->mh(), wD, C);
    if (C == A && wD != A->mw()) {
        const KeptMatrix<Real> a(A, C);
        if (!a) return ProductFault::no_memory;
        if (!size_to(A->mh(), wD, C)) return ProductFault::not_sized;
        multiply_by_diagonal(a.view(), d->p(), kernel::Update::set, view_of(C));
        return ProductFault::none;
    }
    if (!size_to(A->mh(), wD, C)) return ProductFault::not_sized;
    multiply_by_diagonal(view_of(A), d->p(), kernel::Update::set, view_of(C));
    return ProductFault::none;
}

// y^T := x^T D; y may be x or d.
template <class Real>
ProductFault set_diagonal_product(int hD, int wD, const Vector<Real>* x, const Vector<Real>* d,
                                  Vector<Real>* y) {
    if (x->vs() != hD || d->vs() < std::min(hD, wD)) return refuse_product(wD, y);
    const KeptVector<Real> kept_x(x, y);
    const KeptVector<Real> kept_d(d, y);
    if (!kept_x || !kept_d) return ProductFault::no_memory;
    if (!size_to(wD, y)) return ProductFault::not_sized;
    multiply_by_diagonal(Size(hD), Size(wD), kept_x.view().data, kept_d.view().data,
                         kernel::Update::set, y->p());
    return ProductFault::none;
}

template <class Real>
void AlgebraForMatrix<Real>::mmd_Multiply_Matrix_Dmatrix(int wD, const MatrixReal* A,
                                                         const VectorReal* d, MatrixReal* C) const {
    const ProductFault fault = set_diagonal_product(wD, A, d, C);
    if (fault != ProductFault::none) report_product(kMatrixDmatrix, fault, *C);
}

template <class Real>
void AlgebraForMatrix<Real>::mvd_Multiply_Vector_Dmatrix(int hD, int wD, const VectorReal* x,
                                                         const VectorReal* d, VectorReal* y) const {
    const ProductFault fault = set_diagonal_product(hD, wD, x, d, y);
    if (fault != ProductFault::none) report_product(kVectorDmatrix, fault, *y);
}

template <class Real>
void AlgebraForMatrix<Real>::mvdv_Multiply_Vector_Dmatrix_Vector(
    int hD, int wD, const VectorReal* x, const VectorReal* d, const VectorReal* y, Real& s) const {
    // s may be an element of an operand: it is not touched before the form is known.
    Real form = 0;
    mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate(hD, wD, x, d, y, form);
    s = form;
}

}  // namespace nequar
