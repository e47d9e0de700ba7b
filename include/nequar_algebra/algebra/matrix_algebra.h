#pragma once

#include "nequar_algebra/algebra/vector_algebra.h"
#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/frame/vector.h"

namespace nequar {

struct ProductName;
enum class ProductFault;

/// Matrix arithmetic: weighted sums, products in every pattern of transposition and with diagonal
/// matrices, operations on rows and columns, permutations, transposition, raw arrays, Gram-Schmidt
/// and tests of structure; with the vector arithmetic of its base.
///
/// In the names, Matrix is a matrix as it is, Tmatrix one that is used transposed (no transposed
/// copy is made), Vector a vector (a column to the right of a matrix, a row to its left), and
/// Dmatrix a diagonal matrix D given by the vector d of its diagonal. D may be rectangular; d has
/// min(height, width) elements or more, of which the first are used. A is hA x wA, and so on.
///
/// Inputs come first, then scalars, then the output, which is sized here. Unless stated otherwise
/// all checks are made before anything is written, a failed check leaves the output as it was, and
/// the failure is reported with `zet_pme` and the detail given. An output that cannot be sized, or
/// memory that cannot be had for a temporary, is reported with the detail "cannot size the output"
/// or "out of memory", and ends the operation.
///
/// The output may be any of the inputs, except in the products that accumulate. An elementwise
/// operation then works in place and does not size it; a product or a transpose copies the input
/// first.
///
/// Cost: one pass over the elements for sums, transposition, conversion and the tests of structure;
/// 2 hA wA n operations for a product with a matrix of n columns, 2 hA wA for one with a vector,
/// one pass over A for one with a diagonal matrix. An operation on columns or rows touches these
/// alone; relocations move each line once.
template <class Real>
class NEQUAR_API AlgebraForMatrix : public AlgebraForVector<Real> {
public:
    /// The matrices of this twin.
    using MatrixReal = Matrix<Real>;
    /// The vectors of this twin.
    using VectorReal = Vector<Real>;

    AlgebraForMatrix();
    AlgebraForMatrix(const AlgebraForMatrix&) = default;
    AlgebraForMatrix(AlgebraForMatrix&&) noexcept = default;
    ~AlgebraForMatrix() override;
    AlgebraForMatrix& operator=(const AlgebraForMatrix&) = default;
    AlgebraForMatrix& operator=(AlgebraForMatrix&&) noexcept = default;

    // ---- sums, element by element ----

    /// out = A + c, c added to every element.
    void amc_Add_Matrix_Constant(const MatrixReal* A, Real c, MatrixReal* out) const;
    /// out = c A.
    void mmc_Multiply_Matrix_Constant(const MatrixReal* A, Real c, MatrixReal* out) const;
    /// out = A + B. "1": the shapes differ.
    void amm_Add_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B, MatrixReal* out) const;
    /// out = (A + B) + C, and ((A + B) + C) + D. Every operand is checked before out is written;
    /// out may be any of them. "1": the shapes differ.
    void amm_Add_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B, const MatrixReal* C,
                               MatrixReal* out) const;
    void amm_Add_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B, const MatrixReal* C,
                               const MatrixReal* D, MatrixReal* out) const;
    /// out = A - B. "1": the shapes differ.
    void smm_Subtract_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B,
                                    MatrixReal* out) const;
    /// out = wa A + wb B. "1": the shapes differ.
    void ammw_Add_Matrix_Matrix_with_Weight(const MatrixReal* A, const MatrixReal* B, Real wa,
                                            Real wb, MatrixReal* out) const;
    /// Weighted sums of three and four, with the rules of `amm_Add_Matrix_Matrix`.
    void ammw_Add_Matrix_Matrix_with_Weight(const MatrixReal* A, const MatrixReal* B,
                                            const MatrixReal* C, Real wa, Real wb, Real wc,
                                            MatrixReal* out) const;
    void ammw_Add_Matrix_Matrix_with_Weight(const MatrixReal* A, const MatrixReal* B,
                                            const MatrixReal* C, const MatrixReal* D, Real wa,
                                            Real wb, Real wc, Real wd, MatrixReal* out) const;
    /// out = wa A + wb B^T. "1": B is not wA x hA.
    void amtw_Add_Matrix_Tmatrix_with_Weight(const MatrixReal* A, const MatrixReal* B, Real wa,
                                             Real wb, MatrixReal* out) const;
    /// out = wa A + wd D, D of A's shape. "1": d has fewer than min(hA, wA) elements.
    void amdw_Add_Matrix_Dmatrix_with_Weight(const MatrixReal* A, const VectorReal* d, Real wa,
                                             Real wd, MatrixReal* out) const;
    /// out = A o B, element by element. "1": the shapes differ.
    void mmme_Multiply_Matrix_Elementwise(const MatrixReal* A, const MatrixReal* B,
                                          MatrixReal* out) const;

    // ---- products that accumulate ----
    //
    // The output must have the right size, and must not be an input.

    /// C += A B. "1": C is A or B, or the sizes do not fit. 2 hA wA wB operations, as for the two
    /// that follow.
    void mmma_Multiply_Matrix_Matrix_and_Accumulate(const MatrixReal* A, const MatrixReal* B,
                                                    MatrixReal* C) const;
    /// C += A B^T. "1": C is A or B. "2": the sizes do not fit.
    void mmta_Multiply_Matrix_Tmatrix_and_Accumulate(const MatrixReal* A, const MatrixReal* B,
                                                     MatrixReal* C) const;
    /// C += A^T B. "1": C is A or B. "2": the sizes do not fit.
    void mtma_Multiply_Tmatrix_Matrix_and_Accumulate(const MatrixReal* A, const MatrixReal* B,
                                                     MatrixReal* C) const;
    /// y += A x. "1": y is x. "2": the sizes do not fit.
    void mmva_Multiply_Matrix_Vector_and_Accumulate(const MatrixReal* A, const VectorReal* x,
                                                    VectorReal* y) const;
    /// y^T += x^T A. "1": y is x. "2": the sizes do not fit.
    void mvma_Multiply_Vector_Matrix_and_Accumulate(const VectorReal* x, const MatrixReal* A,
                                                    VectorReal* y) const;
    /// y^T += x^T A^T. "1": y is x. "2": the sizes do not fit.
    void mvta_Multiply_Vector_Tmatrix_and_Accumulate(const VectorReal* x, const MatrixReal* A,
                                                     VectorReal* y) const;
    /// M += x y^T; x and y may be one vector. "1": M is not as high as x or as wide as y.
    void mvva_Multiply_Vector_Vector_and_Accumulate(const VectorReal* x, const VectorReal* y,
                                                    MatrixReal* M) const;
    /// s += x^T A y. "1": the sizes do not fit.
    void mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate(const VectorReal* x,
                                                            const MatrixReal* A,
                                                            const VectorReal* y, Real& s) const;
    /// C += A D, D of height wA and width wD. "1": C is A, C is not hA x wD, or d has fewer than
    /// min(wA, wD) elements.
    void mmda_Multiply_Matrix_Dmatrix_and_Accumulate(int wD, const MatrixReal* A,
                                                     const VectorReal* d, MatrixReal* C) const;
    /// y^T += x^T D, D hD x wD. "1": y is x or d. "2": x, y or d does not have the size.
    void mvda_Multiply_Vector_Dmatrix_and_Accumulate(int hD, int wD, const VectorReal* x,
                                                     const VectorReal* d, VectorReal* y) const;
    /// s += x^T D y, D hD x wD. "1": x, y or d does not have the size.
    void mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate(int hD, int wD, const VectorReal* x,
                                                             const VectorReal* d,
                                                             const VectorReal* y, Real& s) const;

    // ---- products that set the output ----
    //
    // The output is sized here and may be an input. The checks are those of the accumulating form,
    // which is also the one that reports: when they fail, the output STAYS SIZED AND ALL ZERO (a
    // scalar is 0), and the failure bears the accumulating form's name and detail.

    /// C = A B, hA x wB.
    void mmm_Multiply_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B, MatrixReal* C) const;
    /// C = A B^T, hA x hB.
    void mmt_Multiply_Matrix_Tmatrix(const MatrixReal* A, const MatrixReal* B, MatrixReal* C) const;
    /// C = A^T B, wA x wB.
    void mtm_Multiply_Tmatrix_Matrix(const MatrixReal* A, const MatrixReal* B, MatrixReal* C) const;
    /// y = A x.
    void mmv_Multiply_Matrix_Vector(const MatrixReal* A, const VectorReal* x, VectorReal* y) const;
    /// y^T = x^T A.
    void mvm_Multiply_Vector_Matrix(const VectorReal* x, const MatrixReal* A, VectorReal* y) const;
    /// y^T = x^T A^T.
    void mvt_Multiply_Vector_Tmatrix(const VectorReal* x, const MatrixReal* A, VectorReal* y) const;
    /// M = x y^T.
    void mvv_Multiply_Vector_Vector(const VectorReal* x, const VectorReal* y, MatrixReal* M) const;
    /// s = x^T A y.
    void mvmv_Multiply_Vector_Matrix_Vector(const VectorReal* x, const MatrixReal* A,
                                            const VectorReal* y, Real& s) const;
    /// C = A D, hA x wD, D of height wA and width wD.
    void mmd_Multiply_Matrix_Dmatrix(int wD, const MatrixReal* A, const VectorReal* d,
                                     MatrixReal* C) const;
    /// y^T = x^T D, D hD x wD.
    void mvd_Multiply_Vector_Dmatrix(int hD, int wD, const VectorReal* x, const VectorReal* d,
                                     VectorReal* y) const;
    /// s = x^T D y, D hD x wD.
    void mvdv_Multiply_Vector_Dmatrix_Vector(int hD, int wD, const VectorReal* x,
                                             const VectorReal* d, const VectorReal* y,
                                             Real& s) const;

    // ---- chains of products ----
    //
    // Set forms, in the order of evaluation that the parentheses show. Every operand is checked
    // first; then as above: on a mismatch anywhere the output is sized and all zero, and the
    // accumulating form of the product that does not fit is what is reported. The output may be any
    // operand.

    /// out = (A B) C.
    void mmm_Multiply_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B, const MatrixReal* C,
                                    MatrixReal* out) const;
    /// out = (A B) (C D).
    void mmm_Multiply_Matrix_Matrix(const MatrixReal* A, const MatrixReal* B, const MatrixReal* C,
                                    const MatrixReal* D, MatrixReal* out) const;
    /// y = A (B x), A (B (C x)), A (B (C (D x))).
    void mmv_Multiply_Matrix_Vector(const MatrixReal* A, const MatrixReal* B, const VectorReal* x,
                                    VectorReal* y) const;
    void mmv_Multiply_Matrix_Vector(const MatrixReal* A, const MatrixReal* B, const MatrixReal* C,
                                    const VectorReal* x, VectorReal* y) const;
    void mmv_Multiply_Matrix_Vector(const MatrixReal* A, const MatrixReal* B, const MatrixReal* C,
                                    const MatrixReal* D, const VectorReal* x, VectorReal* y) const;
    /// y^T = (x^T A) B, ((x^T A) B) C.
    void mvm_Multiply_Vector_Matrix(const VectorReal* x, const MatrixReal* A, const MatrixReal* B,
                                    VectorReal* y) const;
    void mvm_Multiply_Vector_Matrix(const VectorReal* x, const MatrixReal* A, const MatrixReal* B,
                                    const MatrixReal* C, VectorReal* y) const;
    /// out = (A D) B, D wA x hB.
    void mmdm_Multiply_Matrix_Dmatrix_Matrix(const MatrixReal* A, const VectorReal* d,
                                             const MatrixReal* B, MatrixReal* out) const;
    /// out = (A D) B^T, D wA x wB.
    void mmdt_Multiply_Matrix_Dmatrix_Tmatrix(const MatrixReal* A, const VectorReal* d,
                                              const MatrixReal* B, MatrixReal* out) const;

    // ---- transposition and conversion ----

    /// out = A^T, wA x hA.
    void tpm_Transpose_Matrix(const MatrixReal* A, MatrixReal* out) const;
    /// A := A^T. "1": A is not square.
    void tpms_Transpose_Matrix_Square(MatrixReal* A) const;
    /// out = the h x w matrix with d on its diagonal. "1": d has fewer than min(h, w) elements.
    void cdm_Convert_Dmatrix_to_Matrix(int h, int w, const VectorReal* d, MatrixReal* out) const;
    /// out = the n x n identity. False, reported, when out cannot be sized so.
    bool ci_Create_Identity_matrix(int n, MatrixReal* out) const;

    /// out, h x w, from a raw array: out[y][x] = src[y w + x] when row_order is true, src[x h + y]
    /// when it is false. Either side may be double or float; the array may lie within out.
    ///
    /// The names are seen from the matrix's side turned around: "export" fills a matrix from an
    /// array, "import" fills an array from a matrix.
    void em_Export_Matrix(bool row_order, int h, int w, const double* src,
                          Matrix<double>* out) const;
    void em_Export_Matrix(bool row_order, int h, int w, const double* src,
                          Matrix<float>* out) const;
    void em_Export_Matrix(bool row_order, int h, int w, const float* src,
                          Matrix<double>* out) const;
    void em_Export_Matrix(bool row_order, int h, int w, const float* src, Matrix<float>* out) const;
    /// h and w = the height and the width of A; then A into a raw array: dst[y w + x] = A[y][x]
    /// when row_order is true, dst[x h + y] when it is false.
    void im_Import_Matrix(bool row_order, const Matrix<double>* A, double* dst, int& h,
                          int& w) const;
    void im_Import_Matrix(bool row_order, const Matrix<double>* A, float* dst, int& h,
                          int& w) const;
    void im_Import_Matrix(bool row_order, const Matrix<float>* A, double* dst, int& h,
                          int& w) const;
    void im_Import_Matrix(bool row_order, const Matrix<float>* A, float* dst, int& h, int& w) const;

    // ---- tests of structure ----
    //
    // False for a matrix that is not square, without a report. The tolerance bounds the magnitude
    // of what should vanish: as it stands when `relative` is false, times the largest magnitude in
    // A when it is true. Exact zeros always pass, NaN never does; an empty matrix has every
    // structure.

    /// Whether the elements above the diagonal vanish.
    bool il_Is_Lower_matrix(const MatrixReal* A, Real tolerance, bool relative) const;
    /// Whether the elements below the diagonal vanish.
    bool iu_Is_Upper_matrix(const MatrixReal* A, Real tolerance, bool relative) const;
    /// Whether the differences a_ij - a_ji vanish.
    bool isy_Is_Symmetric_matrix(const MatrixReal* A, Real tolerance, bool relative) const;
    /// Whether A is symmetric in that sense and its lower triangle has a Cholesky factorization
    /// with pivots above zero; n^3 / 3 operations on a copy.
    bool ispd_Is_Symmetric_and_Positive_Definite_matrix(const MatrixReal* A, Real tolerance,
                                                        bool relative) const;
    /// Whether |a_ii| exceeds the sum of the other magnitudes in every row.
    bool isdd_Is_Strictly_Diagonal_Dominant(const MatrixReal* A) const;

    // ---- operations on columns and rows, in place ----
    //
    // Every index is wrapped into its range (-1 is the last column), so none is out of range; on an
    // empty matrix nothing happens. k may be i or j.

    /// Column k = column i + column j.
    void oac_Add_Columns(MatrixReal* A, int i, int j, int k) const;
    /// Column k = wi column i + wj column j.
    void oacw_Add_Columns_with_Weight(MatrixReal* A, int i, int j, int k, Real wi, Real wj) const;
    /// Column k = column i - column j.
    void osc_Subtract_Columns(MatrixReal* A, int i, int j, int k) const;
    /// Column j = c column i.
    void omcc_Multiply_Column_with_Constant(MatrixReal* A, int i, int j, Real c) const;
    /// Column j = column i, which stays as it is.
    void orc_Relocate_Column(MatrixReal* A, int i, int j) const;
    /// Exchanges columns i and j.
    void opc_Permute_Columns(MatrixReal* A, int i, int j) const;

    /// Row k = row i + row j.
    void oar_Add_Rows(MatrixReal* A, int i, int j, int k) const;
    /// Row k = wi row i + wj row j.
    void oarw_Add_Rows_with_Weight(MatrixReal* A, int i, int j, int k, Real wi, Real wj) const;
    /// Row k = row i - row j.
    void osr_Subtract_Rows(MatrixReal* A, int i, int j, int k) const;
    /// Row j = c row i.
    void omrc_Multiply_Row_with_Constant(MatrixReal* A, int i, int j, Real c) const;
    /// Row j = row i, which stays as it is.
    void orr_Relocate_Row(MatrixReal* A, int i, int j) const;
    /// Exchanges rows i and j.
    void opr_Permute_Rows(MatrixReal* A, int i, int j) const;

    // ---- lists of interchanges, as pivoting produces them ----
    //
    // Indices wrap around as above, so a list may be longer than the matrix is wide.

    /// For k = 0, 1, …: exchanges columns k and p[k].
    void opc_Permute_Columns(MatrixReal* A, const CNqVectorInt* p) const;
    /// The same exchanges in the reverse order, which undoes `opc_Permute_Columns`.
    void opci_Permute_Columns_Inverse(MatrixReal* A, const CNqVectorInt* p) const;
    /// For each column k of P, a matrix of height 2, from the first (inverse: from the last) on:
    /// exchanges columns P[0][k] and P[1][k]. "1": P does not have height 2.
    void opc_Permute_Columns(MatrixReal* A, const CNqMatrixInt* P) const;
    void opci_Permute_Columns_Inverse(MatrixReal* A, const CNqMatrixInt* P) const;

    /// For k = 0, 1, …: exchanges rows k and p[k].
    void opr_Permute_Rows(MatrixReal* A, const CNqVectorInt* p) const;
    /// The same exchanges in the reverse order, which undoes `opr_Permute_Rows`.
    void opri_Permute_Rows_Inverse(MatrixReal* A, const CNqVectorInt* p) const;
    /// For each column k of P, a matrix of height 2, from the first (inverse: from the last) on:
    /// exchanges rows P[0][k] and P[1][k]. "1": P does not have height 2.
    void opr_Permute_Rows(MatrixReal* A, const CNqMatrixInt* P) const;
    void opri_Permute_Rows_Inverse(MatrixReal* A, const CNqMatrixInt* P) const;

    // ---- relocations by a permutation r: line k moves to position r[k] ----
    //
    // "1": r does not have as many elements as A has lines. "2": an element of r is not in
    // 0 … lines - 1 (nothing is wrapped here). "3": an element occurs twice.

    /// Column r[k] of out = column k of A, for every k with r[k] different from k.
    ///
    /// out is sized as A BEFORE the checks, and a column with r[k] = k is NOT WRITTEN: in a
    /// distinct out it holds what sizing left there (what it held before, if out had A's shape
    /// already).
    void orc_Relocate_Columns(const MatrixReal* A, const CNqVectorInt* r, MatrixReal* out) const;
    /// The same within A, where fixed columns keep their values.
    void orc_Relocate_Columns(MatrixReal* A, const CNqVectorInt* r) const;
    /// Column k = column r[k] of A as it was, which undoes `orc_Relocate_Columns`. A failed check
    /// is recorded with `zsm` and answered with false.
    bool orci_Relocate_Columns_Inverse(MatrixReal* A, const CNqVectorInt* r) const;

    /// The relocations on rows: row r[k] of out = row k of A; here the inverse answers nothing and
    /// reports with `zet_pme`.
    void orr_Relocate_Rows(const MatrixReal* A, const CNqVectorInt* r, MatrixReal* out) const;
    void orr_Relocate_Rows(MatrixReal* A, const CNqVectorInt* r) const;
    void orri_Relocate_Rows_Inverse(MatrixReal* A, const CNqVectorInt* r) const;

    // ---- orthogonalization ----

    /// Q = A with its columns made orthonormal by the classical Gram-Schmidt scheme: from each
    /// column a_j its parts along the columns of Q before it are taken away, with the coefficients
    /// a_j^T q_k of the column as it was given, and what is left is scaled to length one.
    ///
    /// "1": nothing is left of a column (it is exactly zero, at any scale of A: a column of 1e-200
    /// is not). The columns before it are then done, it is zero itself, those after it are as
    /// sizing left them. A column that is dependent but for rounding is NOT found; its q_j is
    /// noise. The columns are orthogonal up to the square of A's condition number times the
    /// rounding unit. A column with NaN or infinity becomes NaN. 2 hA wA^2 operations. Golub & Van
    /// Loan, Matrix Computations, 5.2.7.
    void gso_Gram_Schmidt_Orthogonalization(const MatrixReal* A, MatrixReal* Q) const;

private:
    void report_product(const ProductName& name, ProductFault fault, const CNqClass& output) const;
};

}  // namespace nequar

using LCNqAlgebra_for_Matrix = nequar::AlgebraForMatrix<double>;
using LCNqAlgebra_for_MatrixFloat = nequar::AlgebraForMatrix<float>;

extern template class nequar::AlgebraForMatrix<double>;
extern template class nequar::AlgebraForMatrix<float>;
