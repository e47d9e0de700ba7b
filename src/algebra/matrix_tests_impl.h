// AlgebraForMatrix: tests of structure, and Gram-Schmidt. Included by matrix_algebra.cpp alone.
#pragma once

#include "algebra/algorithm/gram_schmidt.h"
#include "algebra/details.h"
#include "algebra/temporary.h"
#include "frame/views.h"
#include "nequar_algebra/algebra/matrix_algebra.h"

namespace nequar {

template <class Real>
bool is_square(const Matrix<Real>* A) {
    return A->mh() == A->mw();
}

template <class Real>
bool AlgebraForMatrix<Real>::il_Is_Lower_matrix(const MatrixReal* A, Real tolerance,
                                                bool relative) const {
    return is_square(A) &&
           this->basic_.il_Is_Lower_matrix(true, A->mh(), A->p()[0], tolerance, relative);
}

template <class Real>
bool AlgebraForMatrix<Real>::iu_Is_Upper_matrix(const MatrixReal* A, Real tolerance,
                                                bool relative) const {
    return is_square(A) &&
           this->basic_.iu_Is_Upper_matrix(true, A->mh(), A->p()[0], tolerance, relative);
}

template <class Real>
bool AlgebraForMatrix<Real>::isy_Is_Symmetric_matrix(const MatrixReal* A, Real tolerance,
                                                     bool relative) const {
    return is_square(A) &&
           this->basic_.isy_Is_Symmetric_matrix(A->mh(), A->p()[0], tolerance, relative);
}

template <class Real>
bool AlgebraForMatrix<Real>::ispd_Is_Symmetric_and_Positive_Definite_matrix(const MatrixReal* A,
                                                                            Real tolerance,
                                                                            bool relative) const {
    return is_square(A) && this->basic_.ispd_Is_Symmetric_and_Positive_Definite_matrix(
                               A->mh(), A->p()[0], tolerance, relative);
}

template <class Real>
bool AlgebraForMatrix<Real>::isdd_Is_Strictly_Diagonal_Dominant(const MatrixReal* A) const {
    return is_square(A) && this->basic_.isdd_Is_Strictly_Diagonal_Dominant(A->mh(), A->p()[0]);
}

template <class Real>
void AlgebraForMatrix<Real>::gso_Gram_Schmidt_Orthogonalization(const MatrixReal* A,
                                                                MatrixReal* Q) const {
    constexpr const char* kName = "gso_Gram_Schmidt_Orthogonalization";
    if (!size_as(A, Q)) return this->report_sizing(*Q, kName);
    const Outcome outcome = gram_schmidt(view_of(A), view_of(Q));
    if (outcome.kind == OutcomeKind::zero_column) return this->report("1", kName);
    if (!outcome) this->report(kOutOfMemory, kName);
}

}  // namespace nequar
