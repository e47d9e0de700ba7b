#include "nequar_algebra/frame/matrix.h"

#include <algorithm>
#include <cstring>
#include <ostream>
#include <type_traits>

#include "core/checked_size.h"
#include "core/wrap.h"
#include "frame/print.h"

void CNqMatrix_Base::ms_Matrix_Width_Height(int& width, int& height) const noexcept {
    width = width_;
    height = height_;
}

void CNqMatrix_Base::mcc_Modify_Coordinate_of_Column(int& x) const noexcept {
    x = nequar::wrapped(x, width_);
}

void CNqMatrix_Base::mcr_Modify_Coordinate_of_Row(int& y) const noexcept {
    y = nequar::wrapped(y, height_);
}

namespace nequar {
namespace {

template <class Element>
constexpr const char* name_of_matrix() {
    if constexpr (std::is_same_v<Element, double>) return "CNqMatrix";
    if constexpr (std::is_same_v<Element, float>) return "CNqMatrixFloat";
    if constexpr (std::is_same_v<Element, int>) return "CNqMatrixInt";
}

bool is_part(int start, int count, int size) {
    return start >= 0 && count >= 0 && start <= size && count <= size - start;
}

}  // namespace

template <class Element>
Matrix<Element>::Matrix() {
    set_class_name(name_of_matrix<Element>());
}

template <class Element>
Matrix<Element>::Matrix(const Matrix& other) : CNqMatrix_Base(other) {
    width_ = 0;
    height_ = 0;
    cp_Copy(&other);
}

template <class Element>
Matrix<Element>::Matrix(Matrix&& other) noexcept
    : CNqMatrix_Base(std::move(other)),
      storage_(std::move(other.storage_)),
      rows_(std::move(other.rows_)) {
    other.width_ = 0;
    other.height_ = 0;
}

template <class Element>
Matrix<Element>::~Matrix() = default;

template <class Element>
Matrix<Element>& Matrix<Element>::operator=(const Matrix& other) {
    CNqClass::operator=(other);
    cp_Copy(&other);
    return *this;
}

template <class Element>
Matrix<Element>& Matrix<Element>::operator=(Matrix&& other) noexcept {
    if (this == &other) return *this;
    CNqMatrix_Base::operator=(std::move(other));
    storage_ = std::move(other.storage_);
    rows_ = std::move(other.rows_);
    other.become_empty();
    return *this;
}

// Keeps the storage; no row pointer may be left that looks like a row.
template <class Element>
void Matrix<Element>::become_empty() noexcept {
    width_ = 0;
    height_ = 0;
    if (rows_.data() != nullptr) rows_.data()[0] = nullptr;
}

// Needs checked sizes. Keeps the elements when the storage does not move.
template <class Element>
bool Matrix<Element>::resize(std::ptrdiff_t height, std::ptrdiff_t width) noexcept {
    if (height > 0 && !rows_.reserve(height)) return false;
    Element* const before = storage_.data();
    if (!storage_.reserve(std::max<std::ptrdiff_t>(height * width, 1))) {
        // The row pointers may have moved: they are made again for the old shape.
        for (std::ptrdiff_t y = 0; y < height_; ++y) rows_.data()[y] = before + y * width_;
        if (height_ == 0 && rows_.data() != nullptr) rows_.data()[0] = nullptr;
        return false;
    }
    height_ = static_cast<int>(height);
    width_ = static_cast<int>(width);
    Element* row = storage_.data();
    for (std::ptrdiff_t y = 0; y < height; ++y, row += width) rows_.data()[y] = row;
    if (height == 0 && rows_.data() != nullptr) rows_.data()[0] = nullptr;
    return true;
}

template <class Element>
Element** Matrix<Element>::c_Create(int height, int width) {
    if (height == height_ && width == width_ && storage_.data() != nullptr) return p();
    Size count = 0;
    if (!checked_element_count(height, width, sizeof(Element), count)) {
        report("1", "c_Create");
        return nullptr;
    }
    if (!resize(height, width)) {
        report("2", "c_Create");
        return nullptr;
    }
    return p();
}

template <class Element>
Element** Matrix<Element>::c_Create(int height, int width, Element value) {
    Element** const rows = c_Create(height, width);
    if (rows != nullptr) std::fill_n(rows[0], std::ptrdiff_t(height) * width, value);
    return rows;
}

template <class Element>
Element** Matrix<Element>::cp_Copy(const Matrix* other) {
    if (other == this) return p();
    Element** const rows = c_Create(other->height_, other->width_);
    const std::ptrdiff_t count = std::ptrdiff_t(height_) * width_;
    if (rows != nullptr && count > 0)
        std::memcpy(rows[0], other->p()[0], static_cast<std::size_t>(count) * sizeof(Element));
    return rows;
}

template <class Element>
void Matrix<Element>::gr_Get_Row(int row, int start, int count, Vector<Element>* out) const {
    if (height_ == 0 || !is_part(start, count, width_)) return report("1", "gr_Get_Row");
    mcr(row);
    Element* const elements = out->c_Create(count);
    if (elements == nullptr) {
        adopt_failure_of(*out);
        return report("2", "gr_Get_Row");
    }
    std::copy_n(p()[row] + start, count, elements);
}

template <class Element>
void Matrix<Element>::gc_Get_Column(int column, int start, int count, Vector<Element>* out) const {
    if (width_ == 0 || !is_part(start, count, height_)) return report("1", "gc_Get_Column");
    mcc(column);
    Element* const elements = out->c_Create(count);
    if (elements == nullptr) {
        adopt_failure_of(*out);
        return report("2", "gc_Get_Column");
    }
    for (int i = 0; i < count; ++i) elements[i] = p()[start + i][column];
}

template <class Element>
bool Matrix<Element>::operator==(const Matrix& other) const noexcept {
    if (height_ != other.height_ || width_ != other.width_) return false;
    const std::ptrdiff_t count = std::ptrdiff_t(height_) * width_;
    return count == 0 || std::equal(p()[0], p()[0] + count, other.p()[0]);
}

template <class Element>
std::ostream& operator<<(std::ostream& out, const Matrix<Element>& matrix) {
    return print_matrix(out, matrix.mh(), matrix.mw(),
                        [&matrix](int y, int x) { return matrix[y][x]; });
}

#define NEQUAR_INSTANTIATE(Element) \
    template class Matrix<Element>; \
    template NEQUAR_API std::ostream& operator<<(std::ostream&, const Matrix<Element>&);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
NEQUAR_INSTANTIATE(int)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
