#pragma once

#include "nequar_algebra/sparse/compressed_columns.h"
#include "nequar_algebra/sparse/sparse_matrix.h"
#include "nequar_algebra/sparse/sparse_vector.h"
#include "nequar_algebra/structured/symmetric.h"

namespace nequar {

/// A mostly-zero symmetric n x n matrix of which the lower half is stored: column c keeps only rows
/// r >= c (see `CompressedColumns`).
///
/// Operations on elements take (x, y) = (column, row) and exchange the two where x > y: (x, y) and
/// (y, x) name one stored element. What is read (columns, rows, blocks, statistics, norms) is the
/// full matrix, in which a stored element off the diagonal stands twice; `nee`, `z_gii` and the
/// arithmetic speak of the stored half.
///
/// The name of a failure is the long name of the operation. An operand may be the object itself,
/// and a dense output may be the dense input. Counts are computed in 64 bits; one that does not fit
/// is refused.
template <class Real>
class NEQUAR_API SparseSymmetricMatrix : public CompressedColumns<Real> {
public:
    /// A 1 x 1 zero matrix with room for one element.
    SparseSymmetricMatrix();
    SparseSymmetricMatrix(const SparseSymmetricMatrix& other);
    SparseSymmetricMatrix(SparseSymmetricMatrix&& other) noexcept;
    ~SparseSymmetricMatrix() override;
    SparseSymmetricMatrix& operator=(const SparseSymmetricMatrix& other);
    SparseSymmetricMatrix& operator=(SparseSymmetricMatrix&& other) noexcept;
    /// Makes this matrix a copy of another, blank space included; nothing when it is the same.
    bool cp_Copy(const SparseSymmetricMatrix* source);

    // ---- creation -------------------------------------------------------------------------------

    /// n x n without stored elements, with room for the expected number:
    /// "number_of_expected_non_zero_elements<0", "bad matrix size" (n < 1, or so large that the
    /// pointers cannot be counted), "1", "2", "3" when values, row numbers, pointers cannot be had.
    bool czm(int n, int number_of_expected_non_zero_elements);
    bool czm_Create_Zero_Matrix(int n, int number_of_expected_non_zero_elements) {
        return czm(n, number_of_expected_non_zero_elements);
    }
    /// The n x n identity with `extra` positions of blank space: "matrix_width_or_height <= 0",
    /// "number_of_expected_non_zeros < matrix_width_or_height" (extra < 0), "czm", "z_cne".
    bool cim(int n, int extra);
    bool cim_Create_Identity_Matrix(int n, int extra) { return cim(n, extra); }

    // ---- import, export -------------------------------------------------------------------------

    /// Whether the arrays hold the lower half of an n x n matrix, by these tests in this order:
    /// "height<=0"; "bad row-index 0" (unequal counts); "ww!=hh" (not n columns); "bad
    /// start-pointer 0" (the first pointer is not 0, the last not the number of values); from the
    /// last column down "decreasing start pointers", "bad start-pointer" (more than n elements);
    /// from the first element up "r[k]>=hh", "r[k]<x" (above the diagonal), "not increasing order".
    /// Saves its message only.
    bool tip(int n, const GrowableVector<Real>* values, const GrowableVector<int>* rows,
             const Vector<int>* start) const;
    bool tip_Test_Input_Parameters(int n, const GrowableVector<Real>* values,
                                   const GrowableVector<int>* rows,
                                   const Vector<int>* start) const {
        return tip(n, values, rows, start);
    }
    /// Copies the arrays in when `tip` finds them good, else "bad Input(s)".
    bool im(int n, const GrowableVector<Real>* values, const GrowableVector<int>* rows,
            const Vector<int>* start);
    bool im_Import(int n, const GrowableVector<Real>* values, const GrowableVector<int>* rows,
                   const Vector<int>* start) {
        return im(n, values, rows, start);
    }
    /// Takes the elements other than 0.0 of the lower (upper) triangle of a square dense matrix and
    /// reserves four positions more; the other triangle is not looked at. `symmetric`, which may be
    /// null or `a` itself, becomes the full symmetric matrix. "1": `a` is not square, or this
    /// matrix cannot be made; "2": `symmetric` cannot be sized; "3": the elements cannot be counted
    /// in. O(n^2).
    bool im(const Matrix<Real>* a, bool lower, Matrix<Real>* symmetric = nullptr);
    bool im_Import(const Matrix<Real>* a, bool lower, Matrix<Real>* symmetric = nullptr) {
        return im(a, lower, symmetric);
    }
    /// The same from a packed symmetric matrix, by way of a dense one: "1" after the failure of
    /// either step.
    bool im(const MatrixSymmetric<Real>* s, Matrix<Real>* symmetric = nullptr);
    bool im_Import(const MatrixSymmetric<Real>* s, Matrix<Real>* symmetric = nullptr) {
        return im(s, symmetric);
    }
    /// Takes what a square sparse matrix stores in its lower (upper) half, explicit zeros included,
    /// and reserves four positions more. `symmetric`, if given, becomes the full dense matrix. "4":
    /// m is not square, or this matrix or `symmetric` cannot be made; "z_cne": the elements cannot
    /// be counted in. O(stored + n).
    bool im(const SparseMatrix<Real>* m, bool lower, Matrix<Real>* symmetric = nullptr);
    bool im_Import(const SparseMatrix<Real>* m, bool lower, Matrix<Real>* symmetric = nullptr) {
        return im(m, lower, symmetric);
    }
    /// Makes a general sparse matrix (explicit zeros included, with four positions of blank space)
    /// and a dense one of the full matrix; either may be null. "czm", "z_cne": m cannot be made;
    /// "1": `a` cannot be sized; "2": no memory for scratch. O(stored + n), and O(n^2) for `a`.
    bool ex(SparseMatrix<Real>* m, Matrix<Real>* a) const;
    bool ex_Export(SparseMatrix<Real>* m, Matrix<Real>* a = nullptr) const { return ex(m, a); }
    bool ex(Matrix<Real>* a) const { return ex(nullptr, a); }
    bool ex_Export(Matrix<Real>* a) const { return ex(nullptr, a); }

    // ---- elements -------------------------------------------------------------------------------

    /// Element (x, y); outside of the matrix 0.0 and "bad index". O(log of the column).
    bool ge(int x, int y, Real* value) const;
    bool ge_Get_Element(int x, int y, Real* value) const { return ge(x, y, value); }
    /// Overwrites a stored element, by 0.0 too; inserts one that is not stored unless v is 0.0.
    /// "bad index"; "1" and "2" when it cannot be inserted.
    bool se(int x, int y, Real v);
    bool se_Set_Element(int x, int y, Real v) { return se(x, y, v); }
    /// Despite its name the same as `se…`: the stored value is replaced by v, not increased.
    bool ace(int x, int y, Real v);
    bool ace_Add_Constant_to_an_Element(int x, int y, Real v) { return ace(x, y, v); }
    /// Whether an element of the full matrix, stored or not, is 0.0.
    bool itze() const;
    bool itze_Ise_There_a_Zero_Element() const { return itze(); }
    /// Gives a zero element on or below the diagonal: in the first column whose lower half is not
    /// all stored the first row that is not, else the first stored 0.0. False, and x and y
    /// unchanged, when there is none.
    bool fize(int& x, int& y) const;
    bool fize_Find_Coordinates_of_a_Zero_Element(int& x, int& y) const { return fize(x, y); }

    // ---- columns, rows, blocks of the full matrix -----------------------------------------------

    /// Rows y … y+dy-1 of column x, explicit zeros included, with four positions of blank space:
    /// "bad index range", "czv", "z_cne". What stands above the diagonal is looked for in columns y
    /// … x-1: O(dy log n), less where they hold few elements.
    bool gc(int x, int y, int dy, SparseVector<Real>* out) const;
    bool gc_Get_Column(int x, int y, int dy, SparseVector<Real>* out) const {
        return gc(x, y, dy, out);
    }
    /// Columns x … x+dx-1 of row y: the same part of column y. "1" after the failure of
    /// `gc_Get_Column`.
    bool gr(int x, int y, int dx, SparseVector<Real>* out) const;
    bool gr_Get_Row(int x, int y, int dx, SparseVector<Real>* out) const {
        return gr(x, y, dx, out);
    }
    /// The dy x dx block whose first element is (x, y), without explicit zeros: "1".
    /// O((|x - y| + min(dx, dy)) log n + elements found).
    bool gb(int x, int y, int dx, int dy, SparseMatrix<Real>* out) const;
    bool gb_Get_Block(int x, int y, int dx, int dy, SparseMatrix<Real>* out) const {
        return gb(x, y, dx, dy, out);
    }

    // ---- operations on the stored half ----------------------------------------------------------

    /// this += b, this += w b, this -= b: "different dimensions", "i_Insert 1", "i_Insert 2".
    /// Explicit zeros of b are passed over; a sum that is 0.0 stays stored, and so does a product w
    /// b that is (all of them with w = 0.0). O(stored elements of both + n).
    bool amm(const SparseSymmetricMatrix* b);
    bool amm_Add_Matrix_Matrix(const SparseSymmetricMatrix* b) { return amm(b); }
    bool ammw(const SparseSymmetricMatrix* b, Real w);
    bool ammw_Add_Matrix_Matrix_with_Weight(const SparseSymmetricMatrix* b, Real w) {
        return ammw(b, w);
    }
    bool smm(const SparseSymmetricMatrix* b);
    bool smm_Subtract_Matrix_Matrix(const SparseSymmetricMatrix* b) { return smm(b); }
    /// this += v v^T over the stored non-zeros of v, whose dimension has to be n: "dim1!=hh",
    /// "i_Insert 1", "i_Insert 2".
    bool mvva(const SparseVector<Real>* v);
    bool mvva_Multiply_Vector_Vector_and_Accumulate(const SparseVector<Real>* v) { return mvva(v); }
    /// this(x, y) *= b(x, y); what b does not store becomes an explicit zero. "different
    /// dimensions".
    bool mmme(const SparseSymmetricMatrix* b);
    bool mmme_Multiply_Matrix_Matrix_Elementwise(const SparseSymmetricMatrix* b) { return mmme(b); }
    /// A matrix of the same structure, explicit zeros included: "czm", "z_cne", "divide by zero"
    /// recorded on this object; a failure gives a matrix of this shape that stores nothing.
    SparseSymmetricMatrix operator*(Real c) const;
    SparseSymmetricMatrix operator/(Real c) const;
    /// Equal shape and equal elements, a stored 0.0 being equal to an element that is not stored. A
    /// matrix is equal to itself; else a NaN equals nothing.
    bool operator==(const SparseSymmetricMatrix& b) const;

    // ---- statistics of the full matrix ----------------------------------------------------------

    /// Mean of the squared differences of all n^2 elements: "different width or height", and 0.0.
    Real mse(const SparseSymmetricMatrix* b) const;
    Real mse_Mean_Squared_Error(const SparseSymmetricMatrix* b) const { return mse(b); }
    /// Mean of all n^2 elements; 0.0 when nothing is stored.
    Real m() const;
    Real m_Mean() const { return m(); }
    /// The mean, and the population deviation of all n^2 elements.
    Real mst(Real& stdev) const;
    Real mst_Mean_and_Stdev(Real& stdev) const { return mst(stdev); }
    /// Frobenius norm, right where the squares over- or underflow.
    Real nf() const;
    Real nf_Norm_Frobenius() const { return nf(); }
    /// The largest (smallest) element and its place on or below the diagonal. Among equal stored
    /// ones the first stored element wins, else the last. A negative maximum (positive minimum)
    /// gives way to a zero element, at the place of `fize…`. NaN is chosen only as first stored
    /// element. Nothing stored: 0.0 at (0, 0). The pointers may be null.
    Real max(int* x = nullptr, int* y = nullptr) const;
    Real max_Maximum(int* x = nullptr, int* y = nullptr) const { return max(x, y); }
    Real min(int* x = nullptr, int* y = nullptr) const;
    Real min_Minimum(int* x = nullptr, int* y = nullptr) const { return min(x, y); }
    /// Both: the maximum is returned.
    Real maxmin(Real& minimum, int* xmax = nullptr, int* ymax = nullptr, int* xmin = nullptr,
                int* ymin = nullptr) const;
    Real maxmin_Maximum_and_Minimum(Real& minimum, int* xmax = nullptr, int* ymax = nullptr,
                                    int* xmin = nullptr, int* ymin = nullptr) const {
        return maxmin(minimum, xmax, ymax, xmin, ymin);
    }

    // ---- self-tests -----------------------------------------------------------------------------
    //
    // As those of the sparse matrix, of the size n x n: "2" is the code of n, "4" of the density,
    // "5" of the repetitions, "6" of the range.

    /// A random matrix: `number_of_non_zeros` positions among all n^2, drawn with repetition, get
    /// values of min … max, and so do their mirrors: at most that many elements are stored. s and
    /// its dense twin a may be null. "1": n or number; "2": range; "3", "4": the matrices cannot be
    /// made.
    bool u_mrsm_Make_a_Random_Sparse_Matrix(int n, int number_of_non_zeros, double min, double max,
                                            SparseSymmetricMatrix* s,
                                            Matrix<Real>* a = nullptr) const;
    /// Elements, statistics, norms, scalar operators with the constant given (if it is 0.0,
    /// division has to fail); a constant that is not finite is refused ("1").
    bool u_toe_Test_Operations_Elementary(int n, double density, double min, double max,
                                          double constant, int repetitions);
    /// Every part of a column (row) read, and written into another matrix element by element.
    bool u_toc_Test_Operations_for_Columns(int n, double density, double min, double max,
                                           int repetitions);
    bool u_tor_Test_Operations_for_Rows(int n, double density, double min, double max,
                                        int repetitions);
    /// Every block read; those on the diagonal imported from either half.
    bool u_tob_Test_Operations_for_Blocks(int n, double density, double min, double max,
                                          int repetitions);
    /// Sums, products and distances of two matrices, the rank-one update, imports and exports.
    bool u_tom_Test_Operations_with_Matrices(int n, double density, double min, double max,
                                             int repetitions);
    /// All of them in this order, each with its repetitions, to the first that fails; its name is
    /// the error detail.
    bool u_tot_Test_Operations_Total(int n, double density, double min, double max, double constant,
                                     int repetitions_elementary, int repetitions_columns,
                                     int repetitions_rows, int repetitions_blocks,
                                     int repetitions_matrices);

private:
    Real extremum(bool largest, int* x, int* y, const char* method) const;
};

}  // namespace nequar

using CNqSmatrix_Symmetric = nequar::SparseSymmetricMatrix<double>;
using CNqSmatrixFloat_Symmetric = nequar::SparseSymmetricMatrix<float>;

extern template class nequar::SparseSymmetricMatrix<double>;
extern template class nequar::SparseSymmetricMatrix<float>;
