#pragma once

#include <iosfwd>

#include "nequar_algebra/structured/packed.h"

namespace nequar {

/// A rectangular matrix whose only stored elements are those of its main diagonal; every other
/// element is zero. Element i of the vector is the matrix element (i, i), i < min(height, width).
///
/// Failures are reported under the name of the operation and leave everything as it was.
template <class Real>
class NEQUAR_API MatrixDiagonal : public PackedMatrix<Real> {
public:
    /// A 1 x 1 matrix that holds zero.
    MatrixDiagonal();
    MatrixDiagonal(const MatrixDiagonal& other);
    MatrixDiagonal(MatrixDiagonal&& other) noexcept;
    ~MatrixDiagonal() override;
    MatrixDiagonal& operator=(const MatrixDiagonal& other);
    MatrixDiagonal& operator=(MatrixDiagonal&& other) noexcept;

    /// Makes the matrix height x width; what the elements hold is not specified. A size below 1 is
    /// reported as "zivs_Initialize_and_Vector_Size" ("1" when the width is not above the height,
    /// else "2") and then as "c_Create" ("1"); memory that cannot be had as "c_Create" ("2").
    void c_Create(int height, int width);
    /// As above, with every element of the diagonal set to `value`; a refused create fills nothing.
    void c_Create(int height, int width, Real value);
    /// Makes this matrix a copy of another; nothing when the source is the object itself.
    void cp_Copy(const MatrixDiagonal* source);

    /// Element (column x, row y), 0.0 off the diagonal. Detail "1": the vector no longer holds it.
    Real ge_Get_Element(int x, int y) const;
    /// Sets an element of the diagonal. Detail "1": (x, y) is not on it; "2": the vector no longer
    /// holds it.
    void se_Set_Element(int x, int y, Real value);

    /// Copies the diagonal to out[0 … count-1] when (x, y) lies on it; count is its length. Detail
    /// "1": (x, y) is not on the diagonal; "2": the vector no longer holds it.
    void gb_Get_Band(int x, int y, Real* out, int& count) const;
    /// Sets the whole diagonal to a value, or from values[0 … count-1]; details as above.
    void sb_Set_Band(int x, int y, Real value, int& count);
    void sb_Set_Band(int x, int y, const Real* values, int& count);

    /// Takes the shape and the diagonal of a dense matrix or array; what is off the diagonal is
    /// ignored. A shape that `c_Create` refuses is reported as "i_Import" ("1") in the end.
    void i_Import(const Matrix<Real>* dense);
    void i_Import(bool row_major, int height, int width, const Real* elements);

    /// Writes the diagonal into a dense matrix, or into an array of height * width elements, whose
    /// sizes come back; with zero_fill everything else becomes zero. Detail "1": the dense matrix
    /// cannot be sized; "2": the vector no longer holds the diagonal.
    void e_Export(Matrix<Real>* dense, bool zero_fill) const;
    void e_Export(bool row_major, int* height, int* width, Real* elements, bool zero_fill) const;

    /// Same shape and exactly equal elements (a NaN equals nothing).
    bool operator==(const MatrixDiagonal& other) const noexcept;

protected:
    /// Checks and takes the shape; answers min(height, width), or -1 on failure. See `c_Create`.
    int zivs_Initialize_and_Vector_Size(int height, int width);

private:
    bool create(int height, int width);
    bool find_band(int x, int y, const char* method) const;
};

/// Prints the matrix like a dense one.
template <class Real>
NEQUAR_API std::ostream& operator<<(std::ostream& out, const MatrixDiagonal<Real>& matrix);

}  // namespace nequar

using CNqMatrix_Diagonal = nequar::MatrixDiagonal<double>;
using CNqMatrixFloat_Diagonal = nequar::MatrixDiagonal<float>;

extern template class nequar::MatrixDiagonal<double>;
extern template class nequar::MatrixDiagonal<float>;
