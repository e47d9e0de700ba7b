#pragma once

#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/frame/vector.h"

namespace nequar {

/// Which triangle a `MatrixTriangular` stores.
enum class NEQUAR_API TriangleSide {
    lower,  ///< on and below the diagonal
    upper   ///< on and above the diagonal
};

/// What matrices that keep their elements packed in a vector share: their shape and the rules of
/// their coordinates.
///
/// The stored elements are the elements of the vector, so `vs()`, `p()` and `[i]` are the packed
/// storage. Whoever resizes that vector through its own interface leaves the matrix with its shape
/// but without its elements: what the vector no longer holds is not addressed; reading it gives 0.0
/// and is reported, writing it does nothing and is reported.
///
/// Coordinates are given as (x, y), the column first, from 0. They never are out of range: each is
/// reduced modulo the width (the height), so that -1 names the last column (row).
///
/// Arrays given to the imports and exports are dense: element (row r, column c) of a height x width
/// array is elements[r * width + c] when the flag row_major is true, elements[c * height + r] when
/// it is false. They may lie in the matrix's own vector.
///
/// Exports into a dense matrix size it to this shape. Those with a flag write the stored elements;
/// every other cell becomes zero when the flag is set, and keeps what it held when it is not (as
/// far as the destination had that shape before).
///
/// Copies are deep. A move leaves an empty matrix, 0 x 0 without elements, which may be used like
/// any other.
///
/// Cost: an element is found in O(1), a band is one run of memory, a row or a column one step
/// through memory for each of its elements; the position of an index is searched in O(log order).
/// Imports and exports are one pass over the matrix.
template <class Real>
class NEQUAR_API PackedMatrix : public Vector<Real> {
public:
    /// Gives the width, then the height.
    void ms_Matrix_Width_Height(int& width, int& height) const noexcept;
    void ms(int& width, int& height) const noexcept { ms_Matrix_Width_Height(width, height); }
    int mw_Matrix_Width() const noexcept { return width_; }
    int mw() const noexcept { return width_; }
    int mh_Matrix_Height() const noexcept { return height_; }
    int mh() const noexcept { return height_; }

    /// Wraps the coordinates of an element, of a column, of a row. In an empty matrix they become
    /// 0.
    void mce_Modify_Coordinates_of_Element(int& x, int& y) const noexcept;
    void mce(int& x, int& y) const noexcept { mce_Modify_Coordinates_of_Element(x, y); }
    void mcc_Modify_Coordinate_of_Column(int& x) const noexcept;
    void mcc(int& x) const noexcept { mcc_Modify_Coordinate_of_Column(x); }
    void mcr_Modify_Coordinate_of_Row(int& y) const noexcept;
    void mcr(int& y) const noexcept { mcr_Modify_Coordinate_of_Row(y); }

protected:
    struct Shape {
        int height = 0;
        int width = 0;
        int count = 0;  // stored elements
    };

    explicit PackedMatrix(const char* class_name);
    PackedMatrix(const PackedMatrix& other);
    PackedMatrix(PackedMatrix&& other) noexcept;
    ~PackedMatrix() override;
    PackedMatrix& operator=(const PackedMatrix& other);
    PackedMatrix& operator=(PackedMatrix&& other) noexcept;

    Shape shape() const noexcept { return {height_, width_, count_}; }
    void set_shape(const Shape& shape) noexcept;
    /// The number of stored elements as the shape has it.
    int stored_count() const noexcept { return count_; }
    /// Whether the vector holds the elements of the shape.
    bool is_whole() const noexcept { return this->vs() >= count_; }

    /// Ends `c_Create`: sizes the vector for `count` elements, the answer of
    /// `zivs_Initialize_and_Vector_Size`. When that is below 1 it is reported, and when the vector
    /// cannot be had the shape of before comes back.
    bool create_packed(int count, const Shape& before);
    void copy_packed(const PackedMatrix& other);
    bool has_equal_elements(const PackedMatrix& other) const noexcept;
    /// Sizes a dense matrix for an export; reports a refusal under the name of the export.
    bool size_dense(Matrix<Real>* dense, int height, int width, const char* method) const;

    /// A band's run of stored elements, first … last, read, filled or written; the other array may
    /// overlap it. The answer is the length of the run.
    int read_run(int first, int last, Real* out) const noexcept;
    int fill_run(int first, int last, Real value) noexcept;
    int write_run(int first, int last, const Real* values) noexcept;

    /// A copy of this object's storage, made when an array given from outside lies in it, so that
    /// one can be read while the other is written. False when the copy cannot be had.
    class Kept {
    public:
        explicit operator bool() const noexcept { return !failed_; }
        /// Where an element of the storage, or of any other array, is to be read.
        const Real* moved(const Real* element) const noexcept;

    private:
        friend class PackedMatrix;

        Storage<Real> copy_;
        const Real* original_ = nullptr;
        int size_ = 0;
        bool failed_ = false;
    };
    Kept keep_if_inside(const Real* elements) const noexcept;

private:
    int height_ = 0;
    int width_ = 0;
    int count_ = 0;
};

}  // namespace nequar

extern template class nequar::PackedMatrix<double>;
extern template class nequar::PackedMatrix<float>;
