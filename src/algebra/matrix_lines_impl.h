// AlgebraForMatrix: operations on the columns and rows of one matrix, and lists of interchanges.
// Included by matrix_algebra.cpp alone.
#pragma once

#include "algebra/algorithm/lines.h"
#include "algebra/algorithm/permutations.h"
#include "core/wrap.h"
#include "frame/views.h"
#include "kernel/kernel.h"
#include "nequar_algebra/algebra/matrix_algebra.h"

namespace nequar {

// A column (row) named by a wrapped coordinate; nothing of an empty matrix.
template <class Real>
Strided<Real> column_of(Matrix<Real>* A, int x) {
    const View<Real> view = view_of(A);
    return view.is_empty() ? Strided<Real>() : view.column(wrapped(x, A->mw()));
}

template <class Real>
Strided<Real> row_of(Matrix<Real>* A, int y) {
    const View<Real> view = view_of(A);
    return view.is_empty() ? Strided<Real>() : view.row(wrapped(y, A->mh()));
}

// The kernels must not see one line as two.
template <class Real>
void copy_line(Strided<Real> from, Strided<Real> to) {
    if (from.data != to.data) kernel::copy(reading(from), to);
}

template <class Real>
void exchange_lines(Strided<Real> a, Strided<Real> b) {
    if (a.data != b.data) kernel::swap(a, b);
}

template <class Real>
void AlgebraForMatrix<Real>::oac_Add_Columns(MatrixReal* A, int i, int j, int k) const {
    add_lines(reading(column_of(A, i)), reading(column_of(A, j)), column_of(A, k));
}

template <class Real>
void AlgebraForMatrix<Real>::oacw_Add_Columns_with_Weight(MatrixReal* A, int i, int j, int k,
                                                          Real wi, Real wj) const {
    add_lines_weighted(reading(column_of(A, i)), reading(column_of(A, j)), wi, wj, column_of(A, k));
}

template <class Real>
void AlgebraForMatrix<Real>::osc_Subtract_Columns(MatrixReal* A, int i, int j, int k) const {
    subtract_lines(reading(column_of(A, i)), reading(column_of(A, j)), column_of(A, k));
}

template <class Real>
void AlgebraForMatrix<Real>::omcc_Multiply_Column_with_Constant(MatrixReal* A, int i, int j,
                                                                Real c) const {
    scale_line(reading(column_of(A, i)), c, column_of(A, j));
}

template <class Real>
void AlgebraForMatrix<Real>::orc_Relocate_Column(MatrixReal* A, int i, int j) const {
    copy_line(column_of(A, i), column_of(A, j));
}

template <class Real>
void AlgebraForMatrix<Real>::opc_Permute_Columns(MatrixReal* A, int i, int j) const {
    exchange_lines(column_of(A, i), column_of(A, j));
}

template <class Real>
void AlgebraForMatrix<Real>::oar_Add_Rows(MatrixReal* A, int i, int j, int k) const {
    add_lines(reading(row_of(A, i)), reading(row_of(A, j)), row_of(A, k));
}

template <class Real>
void AlgebraForMatrix<Real>::oarw_Add_Rows_with_Weight(MatrixReal* A, int i, int j, int k, Real wi,
                                                       Real wj) const {
    add_lines_weighted(reading(row_of(A, i)), reading(row_of(A, j)), wi, wj, row_of(A, k));
}

template <class Real>
void AlgebraForMatrix<Real>::osr_Subtract_Rows(MatrixReal* A, int i, int j, int k) const {
    subtract_lines(reading(row_of(A, i)), reading(row_of(A, j)), row_of(A, k));
}

template <class Real>
void AlgebraForMatrix<Real>::omrc_Multiply_Row_with_Constant(MatrixReal* A, int i, int j,
                                                             Real c) const {
    scale_line(reading(row_of(A, i)), c, row_of(A, j));
}

template <class Real>
void AlgebraForMatrix<Real>::orr_Relocate_Row(MatrixReal* A, int i, int j) const {
    copy_line(row_of(A, i), row_of(A, j));
}

template <class Real>
void AlgebraForMatrix<Real>::opr_Permute_Rows(MatrixReal* A, int i, int j) const {
    exchange_lines(row_of(A, i), row_of(A, j));
}

// ---- lists of interchanges ----

inline Interchanges interchanges(const CNqVectorInt* p, bool backwards) {
    return {nullptr, p->p(), p->vs(), backwards};
}

inline Interchanges interchanges(const CNqMatrixInt* P, bool backwards) {
    return {(*P)[0], (*P)[1], P->mw(), backwards};
}

template <class Real>
void AlgebraForMatrix<Real>::opc_Permute_Columns(MatrixReal* A, const CNqVectorInt* p) const {
    interchange_columns(view_of(A), interchanges(p, false));
}

template <class Real>
void AlgebraForMatrix<Real>::opci_Permute_Columns_Inverse(MatrixReal* A,
                                                          const CNqVectorInt* p) const {
    interchange_columns(view_of(A), interchanges(p, true));
}

template <class Real>
void AlgebraForMatrix<Real>::opc_Permute_Columns(MatrixReal* A, const CNqMatrixInt* P) const {
    if (P->mh() != 2) return this->report("1", "opc_Permute_Columns");
    interchange_columns(view_of(A), interchanges(P, false));
}

template <class Real>
void AlgebraForMatrix<Real>::opci_Permute_Columns_Inverse(MatrixReal* A,
                                                          const CNqMatrixInt* P) const {
    if (P->mh() != 2) return this->report("1", "opci_Permute_Columns_Inverse");
    interchange_columns(view_of(A), interchanges(P, true));
}

template <class Real>
void AlgebraForMatrix<Real>::opr_Permute_Rows(MatrixReal* A, const CNqVectorInt* p) const {
    interchange_rows(view_of(A), interchanges(p, false));
}

template <class Real>
void AlgebraForMatrix<Real>::opri_Permute_Rows_Inverse(MatrixReal* A, const CNqVectorInt* p) const {
    interchange_rows(view_of(A), interchanges(p, true));
}

template <class Real>
void AlgebraForMatrix<Real>::opr_Permute_Rows(MatrixReal* A, const CNqMatrixInt* P) const {
    if (P->mh() != 2) return this->report("1", "opr_Permute_Rows");
    interchange_rows(view_of(A), interchanges(P, false));
}

template <class Real>
void AlgebraForMatrix<Real>::opri_Permute_Rows_Inverse(MatrixReal* A, const CNqMatrixInt* P) const {
    if (P->mh() != 2) return this->report("1", "opri_Permute_Rows_Inverse");
    interchange_rows(view_of(A), interchanges(P, true));
}

}  // namespace nequar
