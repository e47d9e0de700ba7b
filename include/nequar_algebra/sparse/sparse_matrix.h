#pragma once

#include "nequar_algebra/sparse/compressed_columns.h"
#include "nequar_algebra/sparse/sparse_vector.h"

namespace nequar {

/// A mostly-zero matrix: of each column only the stored elements are kept, by increasing row (see
/// `CompressedColumns`).
///
/// The name of a failure is the long name of the operation. An output may be the object itself, and
/// so may an operand. Sizes and counts are computed in 64 bits; one that does not fit is refused.
template <class Real>
class NEQUAR_API SparseMatrix : public CompressedColumns<Real> {
public:
    /// A 1 x 1 zero matrix with room for one element.
    SparseMatrix();
    SparseMatrix(const SparseMatrix& other);
    SparseMatrix(SparseMatrix&& other) noexcept;
    ~SparseMatrix() override;
    SparseMatrix& operator=(const SparseMatrix& other);
    SparseMatrix& operator=(SparseMatrix&& other) noexcept;
    /// Makes this matrix a copy of another, blank space included; nothing when it is the same.
    bool cp_Copy(const SparseMatrix* source);

    // ---- creation -------------------------------------------------------------------------------

    /// height x width without stored elements, with room for the expected number:
    /// "number_of_expected_non_zero_elements<0", "bad matrix size" (also for a width of which the
    /// pointers cannot be counted), "1", "2", "3" when values, row numbers, pointers cannot be had.
    bool czm(int height, int width, int number_of_expected_non_zero_elements);
    bool czm_Create_Zero_Matrix(int height, int width, int number_of_expected_non_zero_elements) {
        return czm(height, width, number_of_expected_non_zero_elements);
    }
    /// The n x n identity with `extra` positions of blank space: "matrix_width_or_height <= 0",
    /// "number_of_expected_non_zeros < matrix_width_or_height" (extra < 0), "czm", "z_cne".
    bool cim(int n, int extra);
    bool cim_Create_Identity_Matrix(int n, int extra) { return cim(n, extra); }

    // ---- import, export -------------------------------------------------------------------------

    /// Whether the arrays hold a matrix of that height, by these tests in this order: "height<=0";
    /// "bad row-index 0" (unequal counts); "bad start-pointer 0" (the first pointer is not 0, the
    /// last not the number of values, or there is no column); from the last column down "decreasing
    /// start pointers", "bad start-pointer" (more than height elements); from the first element up
    /// "bad row-index", "not increasing order". Saves its message only.
    bool tip(int height, const GrowableVector<Real>* values, const GrowableVector<int>* rows,
             const Vector<int>* start) const;
    bool tip_Test_Input_Parameters(int height, const GrowableVector<Real>* values,
                                   const GrowableVector<int>* rows,
                                   const Vector<int>* start) const {
        return tip(height, values, rows, start);
    }
    /// Copies the arrays in when `tip` finds them good, else "bad Input(s)".
    bool im(int height, const GrowableVector<Real>* values, const GrowableVector<int>* rows,
            const Vector<int>* start);
    bool im_Import(int height, const GrowableVector<Real>* values, const GrowableVector<int>* rows,
                   const Vector<int>* start) {
        return im(height, values, rows, start);
    }
    /// Takes the elements other than 0.0 of a dense matrix (a NaN is one), and reserves four
    /// positions more: "1" when the matrix cannot be made, "3" when its elements cannot be counted
    /// in. O(height width).
    bool im(const Matrix<Real>* a);
    bool im_Import(const Matrix<Real>* a) { return im(a); }
    /// Makes a dense matrix of this one; "1" when it cannot be sized.
    bool ex(Matrix<Real>* a) const;
    bool ex_Export(Matrix<Real>* a) const { return ex(a); }

    // ---- elements -------------------------------------------------------------------------------

    /// Element (column x, row y); outside of the matrix 0.0 and "bad index". O(log of the column).
    bool ge(int x, int y, Real* value) const;
    bool ge_Get_Element(int x, int y, Real* value) const { return ge(x, y, value); }
    /// Overwrites a stored element, by 0.0 too; inserts one that is not stored unless v is 0.0.
    /// "bad index"; "1" and "2" when it cannot be inserted. Building a matrix in the order of its
    /// columns and rows costs O(1) for each element; inserting elsewhere moves what stands behind.
    bool se(int x, int y, Real v);
    bool se_Set_Element(int x, int y, Real v) { return se(x, y, v); }
    /// Despite its name the same as `se…`: the stored value is replaced by v, not increased.
    bool ace(int x, int y, Real v);
    bool ace_Add_Constant_to_an_Element(int x, int y, Real v) { return ace(x, y, v); }
    /// Whether an element, stored or not, is 0.0.
    bool itze() const;
    bool itze_Ise_There_a_Zero_Element() const { return itze(); }
    /// Gives a zero element: in the first column that is not full the first row not stored, else
    /// the first stored 0.0. False, and x and y unchanged, when there is none.
    bool fize(int& x, int& y) const;
    bool fize_Find_Coordinates_of_a_Zero_Element(int& x, int& y) const { return fize(x, y); }

    // ---- columns, rows, blocks ------------------------------------------------------------------

    /// Rows y … y+dy-1 of column x, explicit zeros included; room for four more elements than the
    /// column has. "bad index range", "czv", "z_cne". O(log of the column + elements found).
    bool gc(int x, int y, int dy, SparseVector<Real>* out) const;
    bool gc_Get_Column(int x, int y, int dy, SparseVector<Real>* out) const {
        return gc(x, y, dy, out);
    }
    /// Columns x … x+dx-1 of row y, explicit zeros included: "bad index range", "czv", "z_cne".
    /// O(dx log of a column).
    bool gr(int x, int y, int dx, SparseVector<Real>* out) const;
    bool gr_Get_Row(int x, int y, int dx, SparseVector<Real>* out) const {
        return gr(x, y, dx, out);
    }
    /// The dy x dx block whose first element is (x, y), without explicit zeros: "bad index range",
    /// "czm", "11" ("s1[in_dx1]!=k1", a failed check of the count, does not occur). O(dx log of a
    /// column + elements found).
    bool gb(int x, int y, int dx, int dy, SparseMatrix* out) const;
    bool gb_Get_Block(int x, int y, int dx, int dy, SparseMatrix* out) const {
        return gb(x, y, dx, dy, out);
    }
    /// Replaces rows y … y+m-1 of column x by what a vector of dimension m stores, explicit zeros
    /// included: "bad index range", "r_Replace 1", "r_Replace 2". What stands behind is moved:
    /// O(stored + width).
    bool sc(int x, int y, const SparseVector<Real>* v);
    bool sc_Set_Column(int x, int y, const SparseVector<Real>* v) { return sc(x, y, v); }
    /// Makes columns x … x+m-1 of row y equal to a vector of dimension m: stored elements are
    /// overwritten and stay stored, by 0.0 where v stores nothing; others are inserted where v is
    /// not 0.0. "bad index range", "i_Insert 1", "i_Insert 2". O(stored + width + m), in one pass.
    bool sr(int x, int y, const SparseVector<Real>* v);
    bool sr_Set_Row(int x, int y, const SparseVector<Real>* v) { return sr(x, y, v); }
    /// The same for the block whose first element is (x, y), in one pass.
    bool sb(int x, int y, const SparseMatrix* b);
    bool sb_Set_Block(int x, int y, const SparseMatrix* b) { return sb(x, y, b); }

    // ---- operations -----------------------------------------------------------------------------

    /// out = this^T, with four positions of blank space; explicit zeros stay. "czm", "z_cne".
    /// O(stored + width + height), a counting sort by row.
    bool t(SparseMatrix* out) const;
    bool t_Transpose(SparseMatrix* out) const { return t(out); }
    /// this += b, this += w b, this -= b: "different dimensions", "i_Insert 1", "i_Insert 2".
    /// Explicit zeros of b are passed over; a sum that is 0.0 stays stored, and so does a product w
    /// b that is (all of them with w = 0.0). O(stored elements of both + width).
    bool amm(const SparseMatrix* b);
    bool amm_Add_Matrix_Matrix(const SparseMatrix* b) { return amm(b); }
    bool ammw(const SparseMatrix* b, Real w);
    bool ammw_Add_Matrix_Matrix_with_Weight(const SparseMatrix* b, Real w) { return ammw(b, w); }
    bool smm(const SparseMatrix* b);
    bool smm_Subtract_Matrix_Matrix(const SparseMatrix* b) { return smm(b); }
    /// this += u v^T over the stored non-zeros of u (dimension height) and v (dimension width):
    /// "dim1!=hh", "dim2!=ww", "i_Insert 1", "i_Insert 2". O(stored + width + products).
    bool mvva(const SparseVector<Real>* u, const SparseVector<Real>* v);
    bool mvva_Multiply_Vector_Vector_and_Accumulate(const SparseVector<Real>* u,
                                                    const SparseVector<Real>* v) {
        return mvva(u, v);
    }
    /// this(x, y) *= b(x, y); what b does not store becomes an explicit zero. "different
    /// dimensions".
    bool mmme(const SparseMatrix* b);
    bool mmme_Multiply_Matrix_Matrix_Elementwise(const SparseMatrix* b) { return mmme(b); }
    /// A matrix of the same structure, explicit zeros included: "czm", "z_cne", "divide by zero"
    /// recorded on this object; a failure gives a matrix of this shape that stores nothing.
    SparseMatrix operator*(Real c) const;
    SparseMatrix operator/(Real c) const;
    /// Equal shape and equal elements, a stored 0.0 being equal to an element that is not stored. A
    /// matrix is equal to itself; else a NaN equals nothing.
    bool operator==(const SparseMatrix& b) const;

    // ---- statistics -----------------------------------------------------------------------------

    /// Mean of the squared differences of all elements: "different width or height", and 0.0.
    Real mse(const SparseMatrix* b) const;
    Real mse_Mean_Squared_Error(const SparseMatrix* b) const { return mse(b); }
    /// Mean of all elements, those that are not stored included.
    Real m() const;
    Real m_Mean() const { return m(); }
    /// The mean, and the population deviation of all elements, those that are not stored included.
    Real mst(Real& stdev) const;
    Real mst_Mean_and_Stdev(Real& stdev) const { return mst(stdev); }
    /// Frobenius norm, right where the squares over- or underflow.
    Real nf() const;
    Real nf_Norm_Frobenius() const { return nf(); }
    /// The largest (smallest) element and its place. Among equal stored ones the first stored
    /// element wins, else the last. A negative maximum (positive minimum) gives way to a zero
    /// element, at the place of `fize…`. NaN is chosen only as first stored element. Nothing
    /// stored: 0.0 at (0, 0). The pointers may be null.
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
    // Each makes random sparse matrices with dense twins, carries out its operations on both and
    // compares. False: a code tells which check failed. Sizes d1 x d2 (height x width), density 0 …
    // 1 of non-zeros, values min … max, number of repetitions. The codes of bad parameters are "2"
    // and "3" (sizes below 1), "4" (density), "5" (repetitions), "6" (range).

    /// A random matrix: `number_of_non_zeros` positions, drawn with repetition, get values of
    /// min … max. s and its dense twin a may be null. "1": sizes or number; "2": range; "3", "4":
    /// the matrices cannot be made. The seed is taken from the time once in the process.
    bool u_mrsm_Make_a_Random_Sparse_Matrix(int d1, int d2, int number_of_non_zeros, double min,
                                            double max, SparseMatrix* s, Matrix<Real>* a) const;
    /// Elements, statistics, norms, scalar operators with the constant given (if it is 0.0,
    /// division has to fail); a constant that is not finite is refused ("1").
    bool u_toe_Test_Operations_Elementary(int d1, int d2, double density, double min, double max,
                                          double constant, int repetitions);
    /// Every part of a column (row, block) read, and written into another matrix.
    bool u_toc_Test_Operations_for_Columns(int d1, int d2, double density, double min, double max,
                                           int repetitions);
    bool u_tor_Test_Operations_for_Rows(int d1, int d2, double density, double min, double max,
                                        int repetitions);
    bool u_tob_Test_Operations_for_Blocks(int d1, int d2, double density, double min, double max,
                                          int repetitions);
    /// Sums, products and distances of two matrices, the rank-one update, the transpose.
    bool u_tom_Test_Operations_with_Matrices(int d1, int d2, double density, double min, double max,
                                             int repetitions);
    /// All of them in this order, each with its repetitions, to the first that fails; its name is
    /// the error detail.
    bool u_tot_Test_Operations_Total(int d1, int d2, double density, double min, double max,
                                     double constant, int repetitions_elementary,
                                     int repetitions_columns, int repetitions_rows,
                                     int repetitions_blocks, int repetitions_matrices);

private:
    bool write(int x, int y, Real v, const char* method);
    Real extremum(bool largest, int* x, int* y, const char* method) const;
};

}  // namespace nequar

using CNqSmatrix = nequar::SparseMatrix<double>;
using CNqSmatrixFloat = nequar::SparseMatrix<float>;

extern template class nequar::SparseMatrix<double>;
extern template class nequar::SparseMatrix<float>;
