// AlgebraForMatrix: chains of products. Included by matrix_algebra.cpp alone.
#pragma once

#include "algebra/details.h"
#include "algebra/product_names.h"
#include "algebra/temporary.h"
#include "frame/algorithm/diagonal.h"
#include "frame/views.h"
#include "kernel/kernel.h"
#include "nequar_algebra/algebra/matrix_algebra.h"

namespace nequar {

template <class Real>
void AlgebraForMatrix<Real>::mmm_Multiply_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B,
                                                        const MatrixReal* C,
                                                        MatrixReal* out) const {
    if (A->mw() != B->mh() || B->mw() != C->mh())
        return refuse_product(kMatrixMatrix, A->mh(), C->mw(), out);
    const TemporaryMatrix<Real> ab(A->mh(), B->mw());
    const KeptMatrix<Real> c(C, out);
    if (!ab || !c) return this->report(kOutOfMemory, kMatrixMatrix.set);
    kernel::gemm(Real(1), view_of(A), view_of(B), kernel::Update::set, ab.view());
    set_product(kMatrixMatrix, ab.view(), c.view(), out);
}

template <class Real>
void AlgebraForMatrix<Real>::mmm_Multiply_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B,
                                                        const MatrixReal* C, const MatrixReal* D,
                                                        MatrixReal* out) const {
    if (A->mw() != B->mh() || B->mw() != C->mh() || C->mw() != D->mh())
        return refuse_product(kMatrixMatrix, A->mh(), D->mw(), out);
    const TemporaryMatrix<Real> ab(A->mh(), B->mw());
    const TemporaryMatrix<Real> cd(C->mh(), D->mw());
    if (!ab || !cd) return this->report(kOutOfMemory, kMatrixMatrix.set);
    kernel::gemm(Real(1), view_of(A), view_of(B), kernel::Update::set, ab.view());
    kernel::gemm(Real(1), view_of(C), view_of(D), kernel::Update::set, cd.view());
    set_product(kMatrixMatrix, ab.view(), cd.view(), out);
}

// From the last factor to the first; the products before the last one change places between two
// halves of a workspace.
template <class Real>
void AlgebraForMatrix<Real>::set_chain(const ProductName& name, const View<const Real>* factors,
                                       int count, const VectorReal* x, VectorReal* out) const {
    bool fits = factors[count - 1].width == x->vs();
    Size longest = 0;
    for (int k = 1; k < count; ++k) {
        fits = fits && factors[k - 1].width == factors[k].height;
        longest = std::max(longest, factors[k].height);
    }
    if (!fits) return refuse_product(name, static_cast<int>(factors[0].height), out);
    const Workspace<Real> work(2 * longest);
    if (!work) return this->report(kOutOfMemory, name.set);
    Strided<const Real> product = view_of(x);
    for (int k = count - 1; k > 0; --k) {
        const Strided<Real> next(work.data() + (k % 2) * longest, factors[k].height);
        kernel::gemv(Real(1), factors[k], product, kernel::Update::set, next);
        product = next;
    }
    set_product(name, factors[0], product, out);
}

template <class Real>
void AlgebraForMatrix<Real>::mmv_Multiply_Matrix_Vector(const MatrixReal* A, const MatrixReal* B,
                                                        const VectorReal* x, VectorReal* y) const {
    const View<const Real> factors[] = {view_of(A), view_of(B)};
    set_chain(kMatrixVector, factors, 2, x, y);
}

template <class Real>
void AlgebraForMatrix<Real>::mmv_Multiply_Matrix_Vector(const MatrixReal* A, const MatrixReal* B,
                                                        const MatrixReal* C, const VectorReal* x,
                                                        VectorReal* y) const {
    const View<const Real> factors[] = {view_of(A), view_of(B), view_of(C)};
    set_chain(kMatrixVector, factors, 3, x, y);
}

template <class Real>
void AlgebraForMatrix<Real>::mmv_Multiply_Matrix_Vector(const MatrixReal* A, const MatrixReal* B,
                                                        const MatrixReal* C, const MatrixReal* D,
                                                        const VectorReal* x, VectorReal* y) const {
    const View<const Real> factors[] = {view_of(A), view_of(B), view_of(C), view_of(D)};
    set_chain(kMatrixVector, factors, 4, x, y);
}

// (x^T A) B is B^T (A^T x), transposed.
template <class Real>
void AlgebraForMatrix<Real>::mvm_Multiply_Vector_Matrix(const VectorReal* x, const MatrixReal* A,
                                                        const MatrixReal* B, VectorReal* y) const {
    const View<const Real> factors[] = {view_of(B).transposed(), view_of(A).transposed()};
    set_chain(kVectorMatrix, factors, 2, x, y);
}

template <class Real>
void AlgebraForMatrix<Real>::mvm_Multiply_Vector_Matrix(const VectorReal* x, const MatrixReal* A,
                                                        const MatrixReal* B, const MatrixReal* C,
                                                        VectorReal* y) const {
    const View<const Real> factors[] = {view_of(C).transposed(), view_of(B).transposed(),
                                        view_of(A).transposed()};
    set_chain(kVectorMatrix, factors, 3, x, y);
}

template <class Real>
void AlgebraForMatrix<Real>::mmdm_Multiply_Matrix_Dmatrix_Matrix(const MatrixReal* A,
                                                                 const VectorReal* d,
                                                                 const MatrixReal* B,
                                                                 MatrixReal* out) const {
    constexpr const char* kName = "mmdm_Multiply_Matrix_Dmatrix_Matrix";
    if (d->vs() < std::min(A->mw(), B->mh()))
        return refuse_product(kMatrixDmatrix, A->mh(), B->mw(), out);
    const TemporaryMatrix<Real> ad(A->mh(), B->mh());
    const KeptMatrix<Real> b(B, out);
    if (!ad || !b) return this->report(kOutOfMemory, kName);
    multiply_by_diagonal(view_of(A), d->p(), kernel::Update::set, ad.view());
    set_product(kMatrixMatrix, ad.view(), b.view(), out);
}

template <class Real>
void AlgebraForMatrix<Real>::mmdt_Multiply_Matrix_Dmatrix_Tmatrix(const MatrixReal* A,
                                                                  const VectorReal* d,
                                                                  const MatrixReal* B,
                                                                  MatrixReal* out) const {
    constexpr const char* kName = "mmdt_Multiply_Matrix_Dmatrix_Tmatrix";
    if (d->vs() < std::min(A->mw(), B->mw()))
        return refuse_product(kMatrixDmatrix, A->mh(), B->mh(), out);
    const TemporaryMatrix<Real> ad(A->mh(), B->mw());
    const KeptMatrix<Real> b(B, out);
    if (!ad || !b) return this->report(kOutOfMemory, kName);
    multiply_by_diagonal(view_of(A), d->p(), kernel::Update::set, ad.view());
    set_product(kMatrixTmatrix, ad.view(), b.view().transposed(), out);
}

}  // namespace nequar
