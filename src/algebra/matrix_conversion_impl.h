// AlgebraForMatrix: transposition, diagonal matrices and identities made dense, raw arrays.
// Included by matrix_algebra.cpp alone.
#pragma once

#include "algebra/details.h"
#include "algebra/raw_arrays.h"
#include "algebra/temporary.h"
#include "frame/views.h"
#include "kernel/kernel.h"
#include "nequar_algebra/algebra/matrix_algebra.h"

namespace nequar {

template <class Real>
void AlgebraForMatrix<Real>::tpm_Transpose_Matrix(const MatrixReal* A, MatrixReal* out) const {
    constexpr const char* kName = "tpm_Transpose_Matrix";
    const int height = A->mw();
    const int width = A->mh();
    if (out == A) {
        if (height == width) return kernel::transpose_in_place(view_of(out));
        const KeptMatrix<Real> a(A, out);
        if (!a) return this->report(kOutOfMemory, kName);
        if (!size_to(height, width, out)) return this->report_sizing(*out, kName);
        return kernel::transpose(a.view(), view_of(out));
    }
    if (!size_to(height, width, out)) return this->report_sizing(*out, kName);
    kernel::transpose(view_of(A), view_of(out));
}

template <class Real>
void AlgebraForMatrix<Real>::tpms_Transpose_Matrix_Square(MatrixReal* A) const {
    if (A->mh() != A->mw()) return this->report("1", "tpms_Transpose_Matrix_Square");
    kernel::transpose_in_place(view_of(A));
}

template <class Real>
void AlgebraForMatrix<Real>::cdm_Convert_Dmatrix_to_Matrix(int h, int w, const VectorReal* d,
                                                           MatrixReal* out) const {
    constexpr const char* kName = "cdm_Convert_Dmatrix_to_Matrix";
    if (d->vs() < std::min(h, w)) return this->report("1", kName);
    if (out->c_Create(h, w) == nullptr) return this->report_sizing(*out, kName);
    this->basic_.cdm_Convert_Dmatrix_to_Matrix(true, h, w, d->p(), out->p()[0]);
}

template <class Real>
bool AlgebraForMatrix<Real>::ci_Create_Identity_matrix(int n, MatrixReal* out) const {
    if (out->c_Create(n, n) == nullptr) return this->fail_sizing(*out, "ci_Create_Identity_matrix");
    return this->basic_.ci_Create_Identity_matrix(n, out->p()[0]);
}

// What stopped an export; the array may lie within out, whose storage does not move then.
enum class Export { done, not_sized, no_memory };

template <class From, class To>
Export export_matrix(bool row_order, int h, int w, const From* src, Matrix<To>* out) {
    if (out->c_Create(h, w) == nullptr) return Export::not_sized;
    return carry(view_of_array(row_order, h, w, src), view_of(out)) ? Export::done
                                                                    : Export::no_memory;
}

template <class From, class To>
bool import_matrix(bool row_order, const Matrix<From>* A, To* dst, int& h, int& w) {
    h = A->mh();
    w = A->mw();
    return carry(view_of(A), view_of_array(row_order, A->mh(), A->mw(), dst));
}

#define NEQUAR_DEFINE(From, To)                                                                   \
    template <class Real>                                                                         \
    void AlgebraForMatrix<Real>::em_Export_Matrix(bool row_order, int h, int w, const From* src,  \
                                                  Matrix<To>* out) const {                        \
        const Export result = export_matrix(row_order, h, w, src, out);                           \
        if (result == Export::not_sized) this->report_sizing(*out, "em_Export_Matrix");           \
        if (result == Export::no_memory) this->report(kOutOfMemory, "em_Export_Matrix");          \
    }                                                                                             \
    template <class Real>                                                                         \
    void AlgebraForMatrix<Real>::im_Import_Matrix(bool row_order, const Matrix<From>* A, To* dst, \
                                                  int& h, int& w) const {                         \
        if (!import_matrix(row_order, A, dst, h, w))                                              \
            this->report(kOutOfMemory, "im_Import_Matrix");                                       \
    }

NEQUAR_DEFINE(double, double)
NEQUAR_DEFINE(double, float)
NEQUAR_DEFINE(float, double)
NEQUAR_DEFINE(float, float)
#undef NEQUAR_DEFINE

}  // namespace nequar
