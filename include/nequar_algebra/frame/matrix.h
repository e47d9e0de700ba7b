#pragma once

#include <iosfwd>

#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/storage.h"
#include "nequar_algebra/frame/vector.h"

/// What dense matrices of every element type share: their shape.
class NEQUAR_API CNqMatrix_Base : public CNqClass {
public:
    /// Gives the width, then the height.
    void ms_Matrix_Width_Height(int& width, int& height) const noexcept;
    void ms(int& width, int& height) const noexcept { ms_Matrix_Width_Height(width, height); }
    int mw() const noexcept { return width_; }
    int mw_Matrix_Width() const noexcept { return width_; }
    int mh() const noexcept { return height_; }
    int mh_Matrix_Height() const noexcept { return height_; }

    /// Wraps a column (row) coordinate into 0 … width-1 (height-1): it is reduced modulo the width,
    /// so that -1 names the last column. Without any column the coordinate becomes 0.
    void mcc_Modify_Coordinate_of_Column(int& x) const noexcept;
    void mcc(int& x) const noexcept { mcc_Modify_Coordinate_of_Column(x); }
    void mcr_Modify_Coordinate_of_Row(int& y) const noexcept;
    void mcr(int& y) const noexcept { mcr_Modify_Coordinate_of_Row(y); }

protected:
    CNqMatrix_Base() = default;
    CNqMatrix_Base(const CNqMatrix_Base&) = default;
    CNqMatrix_Base(CNqMatrix_Base&&) noexcept = default;
    CNqMatrix_Base& operator=(const CNqMatrix_Base&) = default;
    CNqMatrix_Base& operator=(CNqMatrix_Base&&) noexcept = default;

    int width_ = 0;
    int height_ = 0;
};

namespace nequar {

/// A dense matrix of height x width: one contiguous row-major block, aligned to 64 bytes, reached
/// through an array of row pointers. Element (row y, column x) is `A[y][x]`, and also
/// `A.p()[0][y * width + x]`.
///
/// The object owns its elements: copies are deep, moves are cheap and leave an empty matrix, and
/// the storage is kept when `c_Create` asks for a size that fits it. Sizing touches no element
/// unless a value is given (and the row pointers); elements and sizes cost O(1), the rest one pass.
template <class Element>
class NEQUAR_API Matrix : public CNqMatrix_Base {
public:
    Matrix();
    Matrix(const Matrix& other);
    Matrix(Matrix&& other) noexcept;
    ~Matrix() override;
    Matrix& operator=(const Matrix& other);
    Matrix& operator=(Matrix&& other) noexcept;

    /// Makes the matrix height x width and answers the row pointers. What the elements hold is not
    /// specified; an equal shape keeps them. A negative size or a product of sizes that does not
    /// fit (detail "1"), or memory that cannot be had ("2"), is reported as "c_Create", answers
    /// null and leaves the matrix as it was.
    Element** c_Create(int height, int width);
    /// As above, with every element set to `value`; a refused create fills nothing.
    Element** c_Create(int height, int width, Element value);
    /// Makes this matrix an exact copy of another, shape and elements; answers null, as `c_Create`
    /// does, when memory cannot be had. Nothing when the source is the object itself.
    Element** cp_Copy(const Matrix* other);

    /// The elements of row y.
    Element* operator[](int y) noexcept { return p()[y]; }
    const Element* operator[](int y) const noexcept { return p()[y]; }
    /// The row-pointer array; `p()[0]` is the contiguous block, null when there is no row.
    Element** p() noexcept { return rows_.data() != nullptr ? rows_.data() : &no_row_; }
    const Element* const* p() const noexcept {
        return rows_.data() != nullptr ? rows_.data() : &no_row_;
    }

    /// Copies `count` elements of a row (of a column), from the one at `start` on, into a vector
    /// that is sized here. The row (column) coordinate is wrapped. A part that does not lie in the
    /// row (column), and an empty matrix, is reported with detail "1" and leaves the vector as it
    /// was; a vector that cannot be sized gives "2".
    void gr_Get_Row(int row, int start, int count, Vector<Element>* out) const;
    void gc_Get_Column(int column, int start, int count, Vector<Element>* out) const;

    /// Same shape and exactly equal elements (a NaN equals nothing).
    bool operator==(const Matrix& other) const noexcept;

private:
    bool resize(std::ptrdiff_t height, std::ptrdiff_t width) noexcept;
    void become_empty() noexcept;

    Storage<Element> storage_;
    Storage<Element*> rows_;
    Element* no_row_ = nullptr;
};

/// Prints the matrix in aligned columns, a large one abbreviated.
template <class Element>
NEQUAR_API std::ostream& operator<<(std::ostream& out, const Matrix<Element>& matrix);

}  // namespace nequar

using CNqMatrix = nequar::Matrix<double>;
using CNqMatrixFloat = nequar::Matrix<float>;
using CNqMatrixInt = nequar::Matrix<int>;

extern template class nequar::Matrix<double>;
extern template class nequar::Matrix<float>;
extern template class nequar::Matrix<int>;
