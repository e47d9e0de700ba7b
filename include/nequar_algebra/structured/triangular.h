#pragma once

#include <iosfwd>

#include "nequar_algebra/structured/packed.h"

namespace nequar {

/// A lower or upper triangular (or trapezoidal) height x width matrix of which only the triangle is
/// stored; everything outside it is zero.
///
/// The diagonals ("bands") lie one after another, the main diagonal first, and band d at distance d
/// from it, its positions p = 0, 1, … running down:
///
///     lower   d = 0 … height-1   length min(height, width, height - d)   (x, y) = (p, p + d)
///     upper   d = 0 … width-1    length min(height, width, width - d)    (x, y) = (p + d, p)
///
/// A square matrix has n(n+1)/2 stored elements and its band d starts at index d n - d (d - 1) / 2.
///
/// Not every column of a wide lower matrix stores something, and not every row of a tall upper one:
/// such a row or column is answered with a reported failure.
///
/// Failures are reported with detail "1" under the name of the operation and leave everything as it
/// was. An operation that finds the vector shorter than the shape needs reports that with detail
/// "2".
template <class Real, TriangleSide side>
class NEQUAR_API MatrixTriangular : public PackedMatrix<Real> {
public:
    /// A 1 x 1 matrix that holds zero.
    MatrixTriangular();
    MatrixTriangular(const MatrixTriangular& other);
    MatrixTriangular(MatrixTriangular&& other) noexcept;
    ~MatrixTriangular() override;
    MatrixTriangular& operator=(const MatrixTriangular& other);
    MatrixTriangular& operator=(MatrixTriangular&& other) noexcept;

    /// Makes the matrix height x width; what the elements hold is not specified. A size below 1, or
    /// a number of stored elements that is no int, is reported as
    /// "zivs_Initialize_and_Vector_Size" and then as "c_Create"; memory that cannot be had as
    /// "c_Create" ("2").
    void c_Create(int height, int width);
    /// As above, with every stored element set to `value`; a refused create fills nothing.
    void c_Create(int height, int width, Real value);
    /// Makes this matrix a copy of another; nothing when the source is the object itself.
    void cp_Copy(const MatrixTriangular* source);

    /// The stored element at (column x, row y). Outside the triangle it fails as
    /// `fi_Find_Index_of_element` does, under that name, and answers 0.0.
    Real ge_Get_Element(int x, int y) const;
    /// Sets the stored element at (x, y); outside the triangle it fails likewise and does nothing.
    void se_Set_Element(int x, int y, Real value);

    /// Wraps x and y and gives the index in the vector of element (x, y). It fails outside the
    /// triangle; the index is then not written.
    void fi_Find_Index_of_element(int& x, int& y, int& index) const;
    /// The inverse. It fails when the index is not that of a stored element; x and y are then not
    /// written.
    void fp_Find_Position_of_element(int index, int& x, int& y) const;
    /// Wraps x and y and gives the indices of the first and last element of the whole band through
    /// (x, y). It fails outside the triangle.
    void fib_Find_Index_range_of_a_Band(int& x, int& y, int& first, int& last) const;

    /// Copies the whole band through (x, y) to out[0 … count-1]. Fails as `fib_…` does and under
    /// its name.
    void gb_Get_Band(int x, int y, Real* out, int& count) const;
    /// Sets that band to a value, or from values[0 … count-1]; count is its length.
    void sb_Set_Band(int x, int y, Real value, int& count);
    void sb_Set_Band(int x, int y, const Real* values, int& count);

    /// Wraps y and gives the first and last column of row y that are stored; fails when the row
    /// stores nothing (an upper matrix, y >= width).
    void fvr_Find_Valid_range_of_Row(int& y, int& x_first, int& x_last) const;
    /// Wraps x and gives the first and last row of column x that are stored; fails when the column
    /// stores nothing (a lower matrix, x >= height).
    void fvc_Find_Valid_range_of_Column(int& x, int& y_first, int& y_last) const;

    /// Copies row y (wrapped) to out[0 … width-1], zeros outside the triangle. A row that stores
    /// nothing fails as `fvr_…` does and under its name, and nothing is written.
    void gr_Get_Row(int y, Real* out, int& x_first, int& x_last) const;
    /// Copies column x (wrapped) to out[0 … height-1], zeros outside the triangle; likewise.
    void gc_Get_Column(int x, Real* out, int& y_first, int& y_last) const;
    /// Sets the stored elements of row y to a value, or from an array indexed by the column.
    void sr_Set_Row(int y, Real value, int& x_first, int& x_last);
    void sr_Set_Row(int y, const Real* values, int& x_first, int& x_last);
    /// Sets the stored elements of column x to a value, or from an array indexed by the row.
    void sc_Set_Column(int x, Real value, int& y_first, int& y_last);
    void sc_Set_Column(int x, const Real* values, int& y_first, int& y_last);

    /// Takes the shape and the triangle of a dense matrix or array; what is outside is ignored. A
    /// shape that `c_Create` refuses is reported as "i_Import" in the end.
    void i_Import(const Matrix<Real>* dense);
    void i_Import(bool row_major, int height, int width, const Real* elements);

    /// Writes the triangle into a dense matrix, or into an array of height * width elements, whose
    /// sizes come back; with `clear` everything else becomes zero.
    void e_Export(Matrix<Real>* dense, bool clear) const;
    void e_Export(bool row_major, int* height, int* width, Real* elements, bool clear) const;

    /// Writes the full symmetric matrix of which this square one is a triangle. It fails when this
    /// matrix is not square: the destination is then not written, although the dense form has
    /// already sized it n x n, n being the height. The flag of the array form has no effect.
    void es_Export_as_Symmetric_matrix(Matrix<Real>* dense) const;
    void es_Export_as_Symmetric_matrix(bool row_major, int* n, Real* elements) const;

    /// Same shape and exactly equal elements (a NaN equals nothing).
    bool operator==(const MatrixTriangular& other) const noexcept;

protected:
    /// Checks and takes the shape; answers the number of stored elements, or -1 on failure.
    int zivs_Initialize_and_Vector_Size(int height, int width);

private:
    bool create(int height, int width);
    bool find_index(int& x, int& y, int& index) const;
    bool find_band(int& x, int& y, int& first, int& last) const;
    bool find_range(bool of_row, int& line, int& first, int& last) const;
    template <class Visit>
    void visit_line(bool of_row, int line, Visit visit) const;
    void get_line(bool of_row, int line, Real* out, int& first, int& last) const;
    template <class Values>
    void set_line(bool of_row, int line, const Values& values, int& first, int& last);
    void set_line_from(bool of_row, int line, const Real* values, int& first, int& last);
};

/// Prints the matrix like a dense one.
template <class Real, TriangleSide side>
NEQUAR_API std::ostream& operator<<(std::ostream& out, const MatrixTriangular<Real, side>& matrix);

}  // namespace nequar

using CNqMatrix_TriangularLower = nequar::MatrixTriangular<double, nequar::TriangleSide::lower>;
using CNqMatrix_TriangularUpper = nequar::MatrixTriangular<double, nequar::TriangleSide::upper>;
using CNqMatrixFloat_TriangularLower = nequar::MatrixTriangular<float, nequar::TriangleSide::lower>;
using CNqMatrixFloat_TriangularUpper = nequar::MatrixTriangular<float, nequar::TriangleSide::upper>;

extern template class nequar::MatrixTriangular<double, nequar::TriangleSide::lower>;
extern template class nequar::MatrixTriangular<double, nequar::TriangleSide::upper>;
extern template class nequar::MatrixTriangular<float, nequar::TriangleSide::lower>;
extern template class nequar::MatrixTriangular<float, nequar::TriangleSide::upper>;
