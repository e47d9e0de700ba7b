#pragma once

#include <iosfwd>

#include "nequar_algebra/structured/packed.h"

namespace nequar {

/// A symmetric n x n matrix of which each mirrored pair of elements is stored once: setting (x, y)
/// sets (y, x).
///
/// The diagonals ("bands") lie one after another, the main diagonal first. Band d, 0 <= d < n,
/// holds the n - d elements with |x - y| = d by increasing min(x, y), so (x, y) is element
///
///     (2n + 1 - d) d / 2 + min(x, y)
///
/// of the vector, which has n(n+1)/2 elements. Reading a row is therefore a strided walk;
/// `i_Import…` and `e_Export` convert whole matrices quickly.
///
/// Failures are reported under the name of the operation and leave everything as it was. An
/// operation that finds the vector shorter than the shape needs reports that with detail "2".
template <class Real>
class NEQUAR_API MatrixSymmetric : public PackedMatrix<Real> {
public:
    /// A 1 x 1 matrix that holds zero.
    MatrixSymmetric();
    MatrixSymmetric(const MatrixSymmetric& other);
    MatrixSymmetric(MatrixSymmetric&& other) noexcept;
    ~MatrixSymmetric() override;
    MatrixSymmetric& operator=(const MatrixSymmetric& other);
    MatrixSymmetric& operator=(MatrixSymmetric&& other) noexcept;

    /// Makes the matrix height x width, which have to be equal; what the elements hold is not
    /// specified. Unequal sizes, a size below 1, and one for which n(n+1)/2 is no int (n > 65535)
    /// are reported as "zivs_Initialize_and_Vector_Size" ("1") and then as "c_Create" ("1"); memory
    /// that cannot be had as "c_Create" ("2").
    void c_Create(int height, int width);
    /// As above, with every element set to `value`; a refused create fills nothing.
    void c_Create(int height, int width, Real value);
    /// Makes this matrix a copy of another; nothing when the source is the object itself.
    void cp_Copy(const MatrixSymmetric* source);

    /// Wraps x and y and gives the index in the vector of element (x, y). Detail "2": the vector
    /// does not hold it; the index is then not written.
    void fi_Find_Index_of_element(int& x, int& y, int& index) const;
    /// The inverse: the element at an index, with x <= y. Detail "1": the index is not in
    /// 0 … n(n+1)/2 - 1; x and y are then not written.
    void fp_Find_Position_of_element(int index, int& x, int& y) const;
    /// Wraps x and y and gives the indices of the first and last element of the whole band through
    /// (x, y).
    void fib_Find_Index_range_of_a_Band(int& x, int& y, int& first, int& last) const;

    /// Element (column x, row y); it fails, with 0.0, only as `fi_…` does and under its name.
    Real ge_Get_Element(int x, int y) const;
    void se_Set_Element(int x, int y, Real value);

    /// Copies the whole band through (x, y) to out[0 … count-1]; count = n - |x - y|. Fails as
    /// `fib_…` does and under its name.
    void gb_Get_Band(int x, int y, Real* out, int& count) const;
    /// Sets that band to a value, or from values[0 … count-1].
    void sb_Set_Band(int x, int y, Real value, int& count);
    void sb_Set_Band(int x, int y, const Real* values, int& count);

    /// Copies row r (wrapped) to out[0 … n-1]; first = 0, last = n - 1. Row r and column r are
    /// equal: these are one operation under two names.
    void gr_Get_Row(int r, Real* out, int& first, int& last) const;
    void gc_Get_Column(int c, Real* out, int& first, int& last) const;

    /// Takes the symmetric part of a square dense matrix, or of an n x n array whose flag has no
    /// effect: each element becomes (a(x, y) + a(y, x)) * 0.5, which overflows when the sum does. A
    /// matrix that is not square is reported as "i_Import<CNqMatrix>" ("1"), in the
    /// single-precision class too; a size that `c_Create` refuses as "i_Import" ("1").
    void i_Import(const Matrix<Real>* dense);
    void i_Import(bool row_major, int n, const Real* elements);
    /// Takes the lower triangle with the diagonal of a square dense matrix. A matrix that is not
    /// square is reported as "il_Import_Lower_part_of <CNqMatrix>" ("1"), a size that `c_Create`
    /// refuses as "il_Import_Lower_part_of" ("1").
    void il_Import_Lower_part_of(const Matrix<Real>* dense);
    void il_Import_Lower_part_of(bool row_major, int n, const Real* elements);
    /// Takes the upper triangle with the diagonal; the names of the failures are
    /// "iu_Import_Upper_part_of <CNqMatrix>" and "iu_Import_Upper_part_of".
    void iu_Import_Upper_part_of(const Matrix<Real>* dense);
    void iu_Import_Upper_part_of(bool row_major, int n, const Real* elements);

    /// Writes every element of a dense matrix, or of an array of n * n elements whose flag has no
    /// effect; n comes back. Detail "1": the dense matrix cannot be sized.
    void e_Export(Matrix<Real>* dense) const;
    void e_Export(bool row_major, int* n, Real* elements) const;

    /// Same shape and exactly equal elements (a NaN equals nothing).
    bool operator==(const MatrixSymmetric& other) const noexcept;

protected:
    /// Checks and takes the shape; answers n(n+1)/2, or -1 on failure. See `c_Create`.
    int zivs_Initialize_and_Vector_Size(int height, int width);

private:
    bool create(int height, int width);
    bool find_index(int& x, int& y, int& index) const;
    bool find_band(int& x, int& y, int& first, int& last) const;
    void get_line(int r, Real* out, int& first, int& last, const char* method) const;
    bool is_square(const Matrix<Real>* dense, const char* method) const;
    void import_triangle(TriangleSide side, bool row_major, int n, const Real* elements,
                         const char* method);
};

/// Prints the matrix like a dense one.
template <class Real>
NEQUAR_API std::ostream& operator<<(std::ostream& out, const MatrixSymmetric<Real>& matrix);

}  // namespace nequar

using CNqMatrix_Symmetric = nequar::MatrixSymmetric<double>;
using CNqMatrixFloat_Symmetric = nequar::MatrixSymmetric<float>;

extern template class nequar::MatrixSymmetric<double>;
extern template class nequar::MatrixSymmetric<float>;
