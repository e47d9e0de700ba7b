#pragma once

#include <iosfwd>

#include "nequar_algebra/structured/symmetric.h"

namespace nequar {

/// A symmetric n x n matrix whose elements differ from zero only where |x - y| <= b, the half
/// bandwidth; of each mirrored pair within the band one element is stored: setting (x, y) sets
/// (y, x).
///
/// The storage is that of `MatrixSymmetric` cut after band b: the main diagonal, then band d, 1 <=
/// d <= b, with the n - d elements of |x - y| = d by increasing min(x, y). So (x, y) is element
/// (2n + 1 - d) d / 2 + min(x, y) of the vector.
///
/// Failures are reported under the name of the operation and leave everything as it was. An
/// operation that finds the vector shorter than the shape needs reports that with detail "2".
template <class Real>
class NEQUAR_API MatrixBandSymmetric : public PackedMatrix<Real> {
public:
    /// A 1 x 1 matrix that holds zero.
    MatrixBandSymmetric();
    MatrixBandSymmetric(const MatrixBandSymmetric& other);
    MatrixBandSymmetric(MatrixBandSymmetric&& other) noexcept;
    ~MatrixBandSymmetric() override;
    MatrixBandSymmetric& operator=(const MatrixBandSymmetric& other);
    MatrixBandSymmetric& operator=(MatrixBandSymmetric&& other) noexcept;

    /// Makes the matrix n x n with half bandwidth b; what the elements hold is not specified. It
    /// takes n >= 1 and 0 <= b < n; anything else, and a number of elements that is no int, is
    /// reported as "zivs_Initialize_and_Vector_Size" ("1") and then as "c_Create" ("1"); memory
    /// that cannot be had as "c_Create" ("2").
    void c_Create(int n, int b);
    /// As above, with every element set to `value`; a refused create fills nothing.
    void c_Create(int n, int b, Real value);
    /// Makes this matrix a copy of another; nothing when the source is the object itself.
    void cp_Copy(const MatrixBandSymmetric* source);

    /// The order and the half bandwidth.
    void msb_Matrix_Width_Height_Bands(int& n, int& b) const noexcept;

    /// Wraps x and y and gives the index in the vector of element (x, y). Detail "1": outside the
    /// band; the index is then not written.
    void fi_Find_Index_of_element(int& x, int& y, int& index) const;
    /// The inverse: the element at an index, with x <= y. Detail "1": the index is not that of a
    /// stored element; x and y are then not written.
    void fp_Find_Position_of_element(int index, int& x, int& y) const;
    /// Wraps x and y and gives the indices of the first and last element of the whole band through
    /// (x, y). Detail "1": outside the band.
    void fib_Find_Index_range_of_a_Band(int& x, int& y, int& first, int& last) const;

    /// Wraps r and gives the first and last column of row r inside the band; fails, with "2", only
    /// on an empty matrix.
    void fvr_Find_Valid_range_of_Row(int& r, int& first, int& last) const;
    void fvc_Find_Valid_range_of_Column(int& c, int& first, int& last) const;

    /// Element (column x, row y). Outside the band it fails as `fi_…` does, under that name, and
    /// answers 0.0.
    Real ge_Get_Element(int x, int y) const;
    void se_Set_Element(int x, int y, Real value);

    /// Copies the whole band through (x, y) to out[0 … count-1]; count = n - |x - y|. Fails as
    /// `fib_…` does and under its name.
    void gb_Get_Band(int x, int y, Real* out, int& count) const;
    /// Sets that band to a value, or from values[0 … count-1].
    void sb_Set_Band(int x, int y, Real value, int& count);
    void sb_Set_Band(int x, int y, const Real* values, int& count);

    /// Copies row r (wrapped) to out[0 … n-1], zeros outside the band; first and last are as
    /// `fvr_…` gives them. Row r and column r are equal: one operation under two names.
    void gr_Get_Row(int r, Real* out, int& first, int& last) const;
    void gc_Get_Column(int c, Real* out, int& first, int& last) const;

    /// Takes the bands 0 … b of the symmetric part of a square dense matrix: each element becomes
    /// (a(x, y) + a(y, x)) * 0.5. A matrix that is not square is reported as
    /// "i_Import <CNqMatrix>" ("1"), with a blank, in the single-precision class too; a size that
    /// `c_Create` refuses as "i_Import" ("1").
    void i_Import(const Matrix<Real>* dense, int b);
    /// Fills the bands 0 … b of this object as it is: unlike every other import it does not create.
    /// Element (x, y) becomes (elements[x n + y] + elements[y n + x]) * 0.5; n is the stride of the
    /// array only, of which the leading part of this object's order is read. The flag has no
    /// effect. Detail "1": n is below this object's order, or b is negative or above its half
    /// bandwidth. A smaller b leaves the bands beyond as they were.
    void i_Import(bool row_major, int n, const Real* elements, int b);
    /// Takes the bands 0 … b of a symmetric matrix. Detail "1": a bandwidth that `c_Create`
    /// refuses; "2": the source no longer holds its elements.
    void i_Import(const MatrixSymmetric<Real>* symmetric, int b);
    /// Takes the bands of the lower triangle of a square dense matrix. A matrix that is not square
    /// is reported as "il_Import_Lower_part_of <CNqMatrix>" ("1"), a size that `c_Create` refuses
    /// as "il_Import_Lower_part_of" ("1").
    void il_Import_Lower_part_of(const Matrix<Real>* dense, int b);
    /// The same from an array: element (row r, column c) is elements[r * n + c] when row_major is
    /// true, elements[c * n + r] when it is false.
    void il_Import_Lower_part_of(bool row_major, int n, const Real* elements, int b);
    /// Takes the bands of the upper triangle; the names of the failures are
    /// "iu_Import_Upper_part_of <CNqMatrix>" and "iu_Import_Upper_part_of".
    void iu_Import_Upper_part_of(const Matrix<Real>* dense, int b);
    void iu_Import_Upper_part_of(bool row_major, int n, const Real* elements, int b);

    /// Sizes a dense matrix to n x n and writes the band and its mirror into it; with zero_fill
    /// everything else becomes zero, without it the other cells keep what they held, as far as the
    /// destination had that shape before. Detail "1": the destination cannot be sized.
    void e_Export(Matrix<Real>* dense, bool zero_fill) const;
    /// The same into an array of n * n elements; n comes back. The first flag has no effect.
    void e_Export(bool row_major, int* n, Real* elements, bool zero_fill) const;
    /// Makes a symmetric matrix of this order with the bands 0 … b of this one and zeros beyond.
    void e_Export(MatrixSymmetric<Real>* symmetric) const;

    /// Same order, same bandwidth and exactly equal elements (a NaN equals nothing).
    bool operator==(const MatrixBandSymmetric& other) const noexcept;

protected:
    /// Checks and takes the shape; answers the number of stored elements, or -1 on failure.
    int zivs_Initialize_and_Vector_Size(int n, int b);

private:
    bool create(int n, int b);
    bool find_index(int& x, int& y, int& index) const;
    bool find_band(int& x, int& y, int& first, int& last) const;
    bool find_range(int& line, int& first, int& last, const char* method) const;
    void get_line(int r, Real* out, int& first, int& last, const char* method) const;
    bool is_square(const Matrix<Real>* dense, const char* method) const;
    void import_triangle(TriangleSide side, bool row_major, int n, const Real* elements, int b,
                         const char* method);

    int b_ = 0;
};

/// Prints the matrix like a dense one.
template <class Real>
NEQUAR_API std::ostream& operator<<(std::ostream& out, const MatrixBandSymmetric<Real>& matrix);

}  // namespace nequar

using CNqMatrix_Band_Symmetric = nequar::MatrixBandSymmetric<double>;
using CNqMatrixFloat_Band_Symmetric = nequar::MatrixBandSymmetric<float>;

extern template class nequar::MatrixBandSymmetric<double>;
extern template class nequar::MatrixBandSymmetric<float>;
