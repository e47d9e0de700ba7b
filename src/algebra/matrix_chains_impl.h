// AlgebraForMatrix: chains of products. Included by matrix_algebra.cpp alone.
#pragma once

#include <array>

#include "algebra/product_names.h"
#include "algebra/set_product.h"
#include "algebra/temporary.h"
#include "frame/algorithm/diagonal.h"
#include "frame/views.h"
#include "kernel/kernel.h"
#include "nequar_algebra/algebra/matrix_algebra.h"

namespace nequar {

// out := (A B) C
template <class Real>
ProductFault set_chain(const Matrix<Real>* A, const Matrix<Real>* B, const Matrix<Real>* C,
                       Matrix<Real>* out) {
    if (A->mw() != B->mh() || B->mw() != C->mh()) return refuse_product(A->mh(), C->mw(), out);
    const TemporaryMatrix<Real> ab(A->mh(), B->mw());
    const KeptMatrix<Real> c(C, out);
    if (!ab || !c) return ProductFault::no_memory;
    kernel::gemm(Real(1), view_of(A), view_of(B), kernel::Update::set, ab.view());
    return set_product(reading(ab.view()), c.view(), out);
}

// out := (A B) (C D)
template <class Real>
ProductFault set_chain(const Matrix<Real>* A, const Matrix<Real>* B, const Matrix<Real>* C,
                       const Matrix<Real>* D, Matrix<Real>* out) {
    if (A->mw() != B->mh() || B->mw() != C->mh() || C->mw() != D->mh())
        return refuse_product(A->mh(), D->mw(), out);
    const TemporaryMatrix<Real> ab(A->mh(), B->mw());
    const TemporaryMatrix<Real> cd(C->mh(), D->mw());
    if (!ab || !cd) return ProductFault::no_memory;
    kernel::gemm(Real(1), view_of(A), view_of(B), kernel::Update::set, ab.view());
    kernel::gemm(Real(1), view_of(C), view_of(D), kernel::Update::set, cd.view());
    return set_product(reading(ab.view()), reading(cd.view()), out);
}

// out := F_0 (F_1 (… x)), from the last factor to the first; the products before the last one
// change places between two halves of a workspace. out may be x.
template <class Real, std::size_t Count>
ProductFault set_chain(const std::array<View<const Real>, Count>& factors, const Vector<Real>* x,
                       Vector<Real>* out) {
    bool fits = factors[Count - 1].width == x->vs();
    Size longest = 0;
    for (std::size_t k = 1; k < Count; ++k) {
        fits = fits && factors[k - 1].width == factors[k].height;
        longest = std::max(longest, factors[k].height);
    }
    if (!fits) return refuse_product(factors[0].height, out);
    const Workspace<Real> work(2 * longest);
    if (!work) return ProductFault::no_memory;
    Strided<const Real> product = view_of(x);
    for (std::size_t k = Count - 1; k > 0; --k) {
        Real* const half = k % 2 == 0 ? work.data() : work.data() + longest;
        const Strided<Real> next(half, factors[k].height);
        kernel::gemv(Real(1), factors[k], product, kernel::Update::set, next);
        product = next;
    }
    return set_product(factors[0], product, out);
}

template <class Real>
void AlgebraForMatrix<Real>::mmm_Multiply_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B,
                                                        const MatrixReal* C,
                                                        MatrixReal* out) const {
    report_product(kMatrixMatrix, set_chain(A, B, C, out), *out);
}

template <class Real>
void AlgebraForMatrix<Real>::mmm_Multiply_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B,
                                                        const MatrixReal* C, const MatrixReal* D,
                                                        MatrixReal* out) const {
    report_product(kMatrixMatrix, set_chain(A, B, C, D, out), *out);
}

template <class Real>
void AlgebraForMatrix<Real>::mmv_Multiply_Matrix_Vector(const MatrixReal* A, const MatrixReal* B,
                                                        const VectorReal* x, VectorReal* y) const {
    const std::array<View<const Real>, 2> factors{view_of(A), view_of(B)};
    report_product(kMatrixVector, set_chain(factors, x, y), *y);
}

template <class Real>
void AlgebraForMatrix<Real>::mmv_Multiply_Matrix_Vector(const MatrixReal* A, const MatrixReal* B,
                                                        const MatrixReal* C, const VectorReal* x,
                                                        VectorReal* y) const {
    const std::array<View<const Real>, 3> factors{view_of(A), view_of(B), view_of(C)};
    report_product(kMatrixVector, set_chain(factors, x, y), *y);
}

template <class Real>
void AlgebraForMatrix<Real>::mmv_Multiply_Matrix_Vector(const MatrixReal* A, const MatrixReal* B,
                                                        const MatrixReal* C, const MatrixReal* D,
                                                        const VectorReal* x, VectorReal* y) const {
    const std::array<View<const Real>, 4> factors{view_of(A), view_of(B), view_of(C), view_of(D)};
    report_product(kMatrixVector, set_chain(factors, x, y), *y);
}

// (x^T A) B is B^T (A^T x), transposed.
template <class Real>
void AlgebraForMatrix<Real>::mvm_Multiply_Vector_Matrix(const VectorReal* x, const MatrixReal* A,
                                                        const MatrixReal* B, VectorReal* y) const {
    const std::array<View<const Real>, 2> factors{view_of(B).transposed(), view_of(A).transposed()};
    report_product(kVectorMatrix, set_chain(factors, x, y), *y);
}

template <class Real>
void AlgebraForMatrix<Real>::mvm_Multiply_Vector_Matrix(const VectorReal* x, const MatrixReal* A,
                                                        const MatrixReal* B, const MatrixReal* C,
                                                        VectorReal* y) const {
    const std::array<View<const Real>, 3> factors{view_of(C).transposed(), view_of(B).transposed(),
                                                  view_of(A).transposed()};
    report_product(kVectorMatrix, set_chain(factors, x, y), *y);
}

// out := (A D) B, D of height wA and as wide as B is high. A D is formed as `mmd` forms it, and
// `mmd` refuses a diagonal that is too short.
template <class Real>
ProductFault set_diagonal_chain(const Matrix<Real>* A, const Vector<Real>* d,
                                const View<const Real>& b, Matrix<Real>* out) {
    const TemporaryMatrix<Real> ad(A->mh(), b.height);
    if (!ad) return ProductFault::no_memory;
    multiply_by_diagonal(view_of(A), d->p(), kernel::Update::set, ad.view());
    return set_product(reading(ad.view()), b, out);
}

template <class Real>
void AlgebraForMatrix<Real>::mmdm_Multiply_Matrix_Dmatrix_Matrix(const MatrixReal* A,
                                                                 const VectorReal* d,
                                                                 const MatrixReal* B,
                                                                 MatrixReal* out) const {
    if (d->vs() < std::min(A->mw(), B->mh()))
        return report_product(kMatrixDmatrix, refuse_product(A->mh(), B->mw(), out), *out);
    const KeptMatrix<Real> b(B, out);
    const ProductFault fault =
        b ? set_diagonal_chain(A, d, b.view(), out) : ProductFault::no_memory;
    report_product(kMatrixMatrix, fault, *out);
}

template <class Real>
void AlgebraForMatrix<Real>::mmdt_Multiply_Matrix_Dmatrix_Tmatrix(const MatrixReal* A,
                                                                  const VectorReal* d,
                                                                  const MatrixReal* B,
                                                                  MatrixReal* out) const {
    if (d->vs() < std::min(A->mw(), B->mw()))
        return report_product(kMatrixDmatrix, refuse_product(A->mh(), B->mh(), out), *out);
    const KeptMatrix<Real> b(B, out);
    const ProductFault fault =
        b ? set_diagonal_chain(A, d, b.view().transposed(), out) : ProductFault::no_memory;
    report_product(kMatrixTmatrix, fault, *out);
}

}  // namespace nequar
