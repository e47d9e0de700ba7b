// AlgebraForMatrix: sums and scalings. Included by matrix_algebra.cpp alone.
#pragma once

#include "algebra/algorithm/sums.h"
#include "algebra/details.h"
#include "algebra/temporary.h"
#include "frame/views.h"
#include "kernel/kernel.h"
#include "nequar_algebra/algebra/matrix_algebra.h"

namespace nequar {

template <class Real, class... Others>
bool same_shape(const Matrix<Real>* A, const Others*... others) {
    return ((A->mh() == others->mh() && A->mw() == others->mw()) && ...);
}

template <class Real>
void AlgebraForMatrix<Real>::amc_Add_Matrix_Constant(const MatrixReal* A, Real c,
                                                     MatrixReal* out) const {
    if (!size_as(A, out)) return this->report_sizing(*out, "amc_Add_Matrix_Constant");
    kernel::add_constant(element_count(A), A->p()[0], c, out->p()[0]);
}

template <class Real>
void AlgebraForMatrix<Real>::mmc_Multiply_Matrix_Constant(const MatrixReal* A, Real c,
                                                          MatrixReal* out) const {
    if (!size_as(A, out)) return this->report_sizing(*out, "mmc_Multiply_Matrix_Constant");
    kernel::scale(element_count(A), A->p()[0], c, out->p()[0]);
}

template <class Real>
void AlgebraForMatrix<Real>::amm_Add_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B,
                                                   MatrixReal* out) const {
    constexpr const char* kName = "amm_Add_Matrix_Matrix";
    if (!same_shape(A, B)) return this->report("1", kName);
    if (!size_as(A, out)) return this->report_sizing(*out, kName);
    kernel::add(element_count(A), A->p()[0], B->p()[0], out->p()[0]);
}

template <class Real>
void AlgebraForMatrix<Real>::amm_Add_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B,
                                                   const MatrixReal* C, MatrixReal* out) const {
    constexpr const char* kName = "amm_Add_Matrix_Matrix";
    if (!same_shape(A, B, C)) return this->report("1", kName);
    if (!size_as(A, out)) return this->report_sizing(*out, kName);
    sum<Real, 3>(element_count(A), {A->p()[0], B->p()[0], C->p()[0]}, out->p()[0]);
}

template <class Real>
void AlgebraForMatrix<Real>::amm_Add_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B,
                                                   const MatrixReal* C, const MatrixReal* D,
                                                   MatrixReal* out) const {
    constexpr const char* kName = "amm_Add_Matrix_Matrix";
    if (!same_shape(A, B, C, D)) return this->report("1", kName);
    if (!size_as(A, out)) return this->report_sizing(*out, kName);
    sum<Real, 4>(element_count(A), {A->p()[0], B->p()[0], C->p()[0], D->p()[0]}, out->p()[0]);
}

template <class Real>
void AlgebraForMatrix<Real>::smm_Subtract_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B,
                                                        MatrixReal* out) const {
    constexpr const char* kName = "smm_Subtract_Matrix_Matrix";
    if (!same_shape(A, B)) return this->report("1", kName);
    if (!size_as(A, out)) return this->report_sizing(*out, kName);
    kernel::subtract(element_count(A), A->p()[0], B->p()[0], out->p()[0]);
}

template <class Real>
void AlgebraForMatrix<Real>::ammw_Add_Matrix_Matrix_with_Weight(const MatrixReal* A,
                                                                const MatrixReal* B, Real wa,
                                                                Real wb, MatrixReal* out) const {
    constexpr const char* kName = "ammw_Add_Matrix_Matrix_with_Weight";
    if (!same_shape(A, B)) return this->report("1", kName);
    if (!size_as(A, out)) return this->report_sizing(*out, kName);
    kernel::add_weighted(element_count(A), A->p()[0], B->p()[0], wa, wb, out->p()[0]);
}

template <class Real>
void AlgebraForMatrix<Real>::ammw_Add_Matrix_Matrix_with_Weight(const MatrixReal* A,
                                                                const MatrixReal* B,
                                                                const MatrixReal* C, Real wa,
                                                                Real wb, Real wc,
                                                                MatrixReal* out) const {
    constexpr const char* kName = "ammw_Add_Matrix_Matrix_with_Weight";
    if (!same_shape(A, B, C)) return this->report("1", kName);
    if (!size_as(A, out)) return this->report_sizing(*out, kName);
    weighted_sum<Real, 3>(element_count(A), {A->p()[0], B->p()[0], C->p()[0]}, {wa, wb, wc},
                          out->p()[0]);
}

template <class Real>
void AlgebraForMatrix<Real>::ammw_Add_Matrix_Matrix_with_Weight(
    const MatrixReal* A, const MatrixReal* B, const MatrixReal* C, const MatrixReal* D, Real wa,
    Real wb, Real wc, Real wd, MatrixReal* out) const {
    constexpr const char* kName = "ammw_Add_Matrix_Matrix_with_Weight";
    if (!same_shape(A, B, C, D)) return this->report("1", kName);
    if (!size_as(A, out)) return this->report_sizing(*out, kName);
    weighted_sum<Real, 4>(element_count(A), {A->p()[0], B->p()[0], C->p()[0], D->p()[0]},
                          {wa, wb, wc, wd}, out->p()[0]);
}

template <class Real>
void AlgebraForMatrix<Real>::amtw_Add_Matrix_Tmatrix_with_Weight(const MatrixReal* A,
                                                                 const MatrixReal* B, Real wa,
                                                                 Real wb, MatrixReal* out) const {
    constexpr const char* kName = "amtw_Add_Matrix_Tmatrix_with_Weight";
    if (B->mw() != A->mh() || B->mh() != A->mw()) return this->report("1", kName);
    const KeptMatrix<Real> b(B, out);
    if (!b) return this->report(kOutOfMemory, kName);
    if (!size_as(A, out)) return this->report_sizing(*out, kName);
    this->basic_.amtw_Add_Matrix_Tmatrix_with_Weight(true, A->mh(), A->mw(), A->p()[0],
                                                     b.view().data, wa, wb, out->p()[0]);
}

template <class Real>
void AlgebraForMatrix<Real>::amdw_Add_Matrix_Dmatrix_with_Weight(const MatrixReal* A,
                                                                 const VectorReal* d, Real wa,
                                                                 Real wd, MatrixReal* out) const {
    constexpr const char* kName = "amdw_Add_Matrix_Dmatrix_with_Weight";
    if (d->vs() < std::min(A->mh(), A->mw())) return this->report("1", kName);
    if (!size_as(A, out)) return this->report_sizing(*out, kName);
    this->basic_.amdw_Add_Matrix_Dmatrix_with_Weight(true, A->mh(), A->mw(), A->p()[0], d->p(), wa,
                                                     wd, out->p()[0]);
}

template <class Real>
void AlgebraForMatrix<Real>::mmme_Multiply_Matrix_Elementwise(const MatrixReal* A,
                                                              const MatrixReal* B,
                                                              MatrixReal* out) const {
    constexpr const char* kName = "mmme_Multiply_Matrix_Elementwise";
    if (!same_shape(A, B)) return this->report("1", kName);
    if (!size_as(A, out)) return this->report_sizing(*out, kName);
    kernel::multiply_elementwise(element_count(A), A->p()[0], B->p()[0], out->p()[0]);
}

}  // namespace nequar
