#pragma once

#include <iosfwd>

#include "nequar_algebra/structured/packed.h"

namespace nequar {

struct BandShape;

/// A height x width matrix whose elements differ from zero only within p sub-diagonals and q
/// super-diagonals, of which only these are stored: row - column <= p, column - row <= q.
///
/// The diagonals ("bands") lie one after another, the lowest sub-diagonal first. Band k, 0 <= k <=
/// p + q, holds the elements with column - row = d = k - p by increasing min(column, row); it has
/// length min(height, width, height + d, width - d) and starts where the lengths of the bands
/// before it end. So (x, y) is element start[x - y + p] + min(x, y) of the vector.
///
/// Failures are reported under the name of the operation and leave everything as it was. An
/// operation that finds the vector shorter than the shape needs reports that with detail "3".
template <class Real>
class NEQUAR_API MatrixBand : public PackedMatrix<Real> {
public:
    /// A 1 x 1 matrix that holds zero.
    MatrixBand();
    MatrixBand(const MatrixBand& other);
    MatrixBand(MatrixBand&& other) noexcept;
    ~MatrixBand() override;
    MatrixBand& operator=(const MatrixBand& other);
    MatrixBand& operator=(MatrixBand&& other) noexcept;

    /// Makes the matrix height x width with p sub- and q super-diagonals; what the elements hold is
    /// not specified. It takes height > 0, width > 0, 0 <= p < height and 0 <= q < width; anything
    /// else, and a number of elements that is no int, is reported as
    /// "zivs_Initialize_and_Vector_Size" ("1") and then as "c_Create" ("1"); memory that cannot be
    /// had as "c_Create" ("2").
    void c_Create(int height, int width, int p, int q);
    /// As above, with every stored element set to `value`; a refused create fills nothing.
    void c_Create(int height, int width, int p, int q, Real value);
    /// Makes this matrix a copy of another; nothing when the source is the object itself.
    void cp_Copy(const MatrixBand* source);

    /// The shape, the width first, and the numbers of sub- and super-diagonals.
    void msb_Matrix_Width_Height_Bands(int& width, int& height, int& p, int& q) const noexcept;

    /// Wraps x and y and gives the index in the vector of element (x, y). Detail "1": below the
    /// lowest sub-diagonal; "2": above the highest super-diagonal. The index is then not written.
    void fi_Find_Index_of_element(int& x, int& y, int& index) const;
    /// The inverse. Detail "1": the index is not that of a stored element; x and y are then not
    /// written.
    void fp_Find_Position_of_element(int index, int& x, int& y) const;
    /// Wraps x and y and gives the indices of the first and last element of the whole band through
    /// (x, y). The details are the reverse of those of `fi_…`, deliberately: "2" below the lowest
    /// sub-diagonal, "1" above the highest super-diagonal.
    void fib_Find_Index_range_of_a_Band(int& x, int& y, int& first, int& last) const;

    /// Wraps r and gives the first and last column of row r that are stored. Detail "1": the row
    /// has none.
    void fvr_Find_Valid_range_of_Row(int& r, int& first, int& last) const;
    /// Wraps c and gives the first and last row of column c that are stored; likewise.
    void fvc_Find_Valid_range_of_Column(int& c, int& first, int& last) const;

    /// The stored element at (column x, row y). Outside the band it fails as `fi_…` does, under
    /// that name, and answers 0.0.
    Real ge_Get_Element(int x, int y) const;
    /// Sets the stored element at (x, y); outside the band it fails likewise and does nothing.
    void se_Set_Element(int x, int y, Real value);

    /// Copies the whole band through (x, y) to out[0 … count-1]. Fails as `fib_…` does and under
    /// its name.
    void gb_Get_Band(int x, int y, Real* out, int& count) const;
    /// Sets that band to a value, or from values[0 … count-1]; count is its length.
    void sb_Set_Band(int x, int y, Real value, int& count);
    void sb_Set_Band(int x, int y, const Real* values, int& count);

    /// Copies row r (wrapped) to out[0 … width-1], zeros outside the band; first and last are as
    /// `fvr_…` gives them. A row that stores nothing fails as `fvr_…` does and under its name, and
    /// nothing is written.
    void gr_Get_Row(int r, Real* out, int& first, int& last) const;
    /// Copies column c (wrapped) to out[0 … height-1]; likewise.
    void gc_Get_Column(int c, Real* out, int& first, int& last) const;
    /// Sets the stored elements of row r to a value, or from an array indexed by the column.
    void sr_Set_Row(int r, Real value, int& first, int& last);
    void sr_Set_Row(int r, const Real* values, int& first, int& last);
    /// Sets the stored elements of column c to a value, or from an array indexed by the row.
    void sc_Set_Column(int c, Real value, int& first, int& last);
    void sc_Set_Column(int c, const Real* values, int& first, int& last);

    /// Takes the shape and the named bands of a dense matrix; what is outside is ignored. A shape
    /// that `c_Create` refuses is reported as "i_Import" ("1") in the end.
    void i_Import(const Matrix<Real>* dense, int p, int q);
    /// The same from an array: element (row r, column c) is elements[r * width + c] when row_major
    /// is true, elements[c * height + r] when it is false.
    void i_Import(bool row_major, int height, int width, const Real* elements, int p, int q);

    /// Sizes a dense matrix to this shape and writes the band into it; with zero_fill everything
    /// else becomes zero, without it the other cells keep what they held, as far as the
    /// destination had that shape before. Detail "1": the destination cannot be sized.
    void e_Export(Matrix<Real>* dense, bool zero_fill) const;
    /// The same into an array of height * width elements, whose sizes come back.
    void e_Export(bool row_major, int* height, int* width, Real* elements, bool zero_fill) const;

    /// Same shape, same bands and exactly equal elements (a NaN equals nothing).
    bool operator==(const MatrixBand& other) const noexcept;

protected:
    /// Checks and takes the shape; answers the number of stored elements, or -1 on failure.
    int zivs_Initialize_and_Vector_Size(int height, int width, int p, int q);

private:
    BandShape band_shape() const noexcept;
    bool create(int height, int width, int p, int q);
    bool find_index(int& x, int& y, int& index) const;
    bool find_band(int& x, int& y, int& first, int& last) const;
    bool find_range(bool of_row, int& line, int& first, int& last) const;
    void get_line(bool of_row, int line, Real* out, int& first, int& last) const;
    template <class Values>
    void set_line(bool of_row, int line, const Values& values, int& first, int& last);
    void set_line_from(bool of_row, int line, const Real* values, int& first, int& last);

    int p_ = 0;
    int q_ = 0;
};

/// Prints the matrix like a dense one.
template <class Real>
NEQUAR_API std::ostream& operator<<(std::ostream& out, const MatrixBand<Real>& matrix);

}  // namespace nequar

using CNqMatrix_Band = nequar::MatrixBand<double>;
using CNqMatrixFloat_Band = nequar::MatrixBand<float>;

extern template class nequar::MatrixBand<double>;
extern template class nequar::MatrixBand<float>;
