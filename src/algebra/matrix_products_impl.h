// AlgebraForMatrix: products of matrices and vectors, both forms. Included by matrix_algebra.cpp
// alone.
//
// A transposed operand is a view with its strides exchanged. The set forms tell the kernel to set,
// instead of clearing the output and adding to it; only a mismatch leaves zeros.
#pragma once

#include "algebra/details.h"
#include "algebra/product_names.h"
#include "algebra/set_product.h"
#include "algebra/temporary.h"
#include "frame/algorithm/bilinear_form.h"
#include "frame/views.h"
#include "kernel/kernel.h"
#include "nequar_algebra/algebra/matrix_algebra.h"

namespace nequar {

template <class Real>
bool product_fits(View<const Real> a, View<const Real> b, const Matrix<Real>* C) {
    return a.width == b.height && C->mh() == a.height && C->mw() == b.width;
}

template <class Real>
bool product_fits(View<const Real> a, const Vector<Real>* x, const Vector<Real>* y) {
    return x->vs() == a.width && y->vs() == a.height;
}

// ---- accumulating ----

template <class Real>
void AlgebraForMatrix<Real>::mmma_Multiply_Matrix_Matrix_and_Accumulate(const MatrixReal* A,
                                                                        const MatrixReal* B,
                                                                        MatrixReal* C) const {
    const View<const Real> a = view_of(A);
    const View<const Real> b = view_of(B);
    if (C == A || C == B) return this->report("1", kMatrixMatrix.accumulate);
    if (!product_fits(a, b, C))
        return this->report(kMatrixMatrix.mismatch, kMatrixMatrix.accumulate);
    kernel::gemm(Real(1), a, b, kernel::Update::accumulate, view_of(C));
}

template <class Real>
void AlgebraForMatrix<Real>::mmta_Multiply_Matrix_Tmatrix_and_Accumulate(const MatrixReal* A,
                                                                         const MatrixReal* B,
                                                                         MatrixReal* C) const {
    const View<const Real> a = view_of(A);
    const View<const Real> b = view_of(B).transposed();
    if (C == A || C == B) return this->report("1", kMatrixTmatrix.accumulate);
    if (!product_fits(a, b, C))
        return this->report(kMatrixTmatrix.mismatch, kMatrixTmatrix.accumulate);
    kernel::gemm(Real(1), a, b, kernel::Update::accumulate, view_of(C));
}

template <class Real>
void AlgebraForMatrix<Real>::mtma_Multiply_Tmatrix_Matrix_and_Accumulate(const MatrixReal* A,
                                                                         const MatrixReal* B,
                                                                         MatrixReal* C) const {
    const View<const Real> a = view_of(A).transposed();
    const View<const Real> b = view_of(B);
    if (C == A || C == B) return this->report("1", kTmatrixMatrix.accumulate);
    if (!product_fits(a, b, C))
        return this->report(kTmatrixMatrix.mismatch, kTmatrixMatrix.accumulate);
    kernel::gemm(Real(1), a, b, kernel::Update::accumulate, view_of(C));
}

template <class Real>
void AlgebraForMatrix<Real>::mmva_Multiply_Matrix_Vector_and_Accumulate(const MatrixReal* A,
                                                                        const VectorReal* x,
                                                                        VectorReal* y) const {
    const View<const Real> a = view_of(A);
    if (y == x) return this->report("1", kMatrixVector.accumulate);
    if (!product_fits(a, x, y))
        return this->report(kMatrixVector.mismatch, kMatrixVector.accumulate);
    kernel::gemv(Real(1), a, view_of(x), kernel::Update::accumulate, view_of(y));
}

template <class Real>
void AlgebraForMatrix<Real>::mvma_Multiply_Vector_Matrix_and_Accumulate(const VectorReal* x,
                                                                        const MatrixReal* A,
                                                                        VectorReal* y) const {
    const View<const Real> a = view_of(A).transposed();
    if (y == x) return this->report("1", kVectorMatrix.accumulate);
    if (!product_fits(a, x, y))
        return this->report(kVectorMatrix.mismatch, kVectorMatrix.accumulate);
    kernel::gemv(Real(1), a, view_of(x), kernel::Update::accumulate, view_of(y));
}

template <class Real>
void AlgebraForMatrix<Real>::mvta_Multiply_Vector_Tmatrix_and_Accumulate(const VectorReal* x,
                                                                         const MatrixReal* A,
                                                                         VectorReal* y) const {
    const View<const Real> a = view_of(A);
    if (y == x) return this->report("1", kVectorTmatrix.accumulate);
    if (!product_fits(a, x, y))
        return this->report(kVectorTmatrix.mismatch, kVectorTmatrix.accumulate);
    kernel::gemv(Real(1), a, view_of(x), kernel::Update::accumulate, view_of(y));
}

template <class Real>
void AlgebraForMatrix<Real>::mvva_Multiply_Vector_Vector_and_Accumulate(const VectorReal* x,
                                                                        const VectorReal* y,
                                                                        MatrixReal* M) const {
    if (M->mh() != x->vs() || M->mw() != y->vs())
        return this->report(kVectorVector.mismatch, kVectorVector.accumulate);
    kernel::ger(Real(1), view_of(x), view_of(y), view_of(M));
}

template <class Real>
void AlgebraForMatrix<Real>::mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate(const VectorReal* x,
                                                                                const MatrixReal* A,
                                                                                const VectorReal* y,
                                                                                Real& s) const {
    if (x->vs() != A->mh() || y->vs() != A->mw())
        return this->report(kVectorMatrixVector.mismatch, kVectorMatrixVector.accumulate);
    s += bilinear_form(view_of(x), view_of(A), view_of(y));
}

// ---- setting ----

template <class Real>
void AlgebraForMatrix<Real>::report_product(const ProductName& name, ProductFault fault,
                                            const CNqClass& output) const {
    switch (fault) {
        case ProductFault::none:
            return;
        case ProductFault::mismatch:
            return this->report(name.mismatch, name.accumulate);
        case ProductFault::not_sized:
            return this->report_sizing(output, name.set);
        case ProductFault::no_memory:
            return this->report(kOutOfMemory, name.set);
    }
}

template <class Real>
void AlgebraForMatrix<Real>::mmm_Multiply_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B,
                                                        MatrixReal* C) const {
    const ProductFault fault = C == A || C == B ? set_product_of_copies(A, false, B, false, C)
                                                : set_product(view_of(A), view_of(B), C);
    if (fault != ProductFault::none) report_product(kMatrixMatrix, fault, *C);
}

template <class Real>
void AlgebraForMatrix<Real>::mmt_Multiply_Matrix_Tmatrix(const MatrixReal* A, const MatrixReal* B,
                                                         MatrixReal* C) const {
    const ProductFault fault = C == A || C == B
                                   ? set_product_of_copies(A, false, B, true, C)
                                   : set_product(view_of(A), view_of(B).transposed(), C);
    if (fault != ProductFault::none) report_product(kMatrixTmatrix, fault, *C);
}

template <class Real>
void AlgebraForMatrix<Real>::mtm_Multiply_Tmatrix_Matrix(const MatrixReal* A, const MatrixReal* B,
                                                         MatrixReal* C) const {
    const ProductFault fault = C == A || C == B
                                   ? set_product_of_copies(A, true, B, false, C)
                                   : set_product(view_of(A).transposed(), view_of(B), C);
    if (fault != ProductFault::none) report_product(kTmatrixMatrix, fault, *C);
}

template <class Real>
void AlgebraForMatrix<Real>::mmv_Multiply_Matrix_Vector(const MatrixReal* A, const VectorReal* x,
                                                        VectorReal* y) const {
    const ProductFault fault =
        y == x ? set_product_of_copy(view_of(A), y) : set_product(view_of(A), view_of(x), y);
    if (fault != ProductFault::none) report_product(kMatrixVector, fault, *y);
}

template <class Real>
void AlgebraForMatrix<Real>::mvm_Multiply_Vector_Matrix(const VectorReal* x, const MatrixReal* A,
                                                        VectorReal* y) const {
    const ProductFault fault = y == x ? set_product_of_copy(view_of(A).transposed(), y)
                                      : set_product(view_of(A).transposed(), view_of(x), y);
    if (fault != ProductFault::none) report_product(kVectorMatrix, fault, *y);
}

template <class Real>
void AlgebraForMatrix<Real>::mvt_Multiply_Vector_Tmatrix(const VectorReal* x, const MatrixReal* A,
                                                         VectorReal* y) const {
    const ProductFault fault =
        y == x ? set_product_of_copy(view_of(A), y) : set_product(view_of(A), view_of(x), y);
    if (fault != ProductFault::none) report_product(kVectorTmatrix, fault, *y);
}

template <class Real>
void AlgebraForMatrix<Real>::mvv_Multiply_Vector_Vector(const VectorReal* x, const VectorReal* y,
                                                        MatrixReal* M) const {
    if (!size_to(x->vs(), y->vs(), M)) return this->report_sizing(*M, kVectorVector.set);
    // M(i, :) = x_i y^T
    for (int i = 0; i < x->vs(); ++i) kernel::scale(Size(y->vs()), y->p(), (*x)[i], (*M)[i]);
}

template <class Real>
void AlgebraForMatrix<Real>::mvmv_Multiply_Vector_Matrix_Vector(const VectorReal* x,
                                                                const MatrixReal* A,
                                                                const VectorReal* y,
                                                                Real& s) const {
    // s may be an element of an operand: it is not touched before the form is known.
    Real form = 0;
    mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate(x, A, y, form);
    s = form;
}

}  // namespace nequar
