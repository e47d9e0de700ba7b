#include "nequar_algebra/structured/packed.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

#include "core/wrap.h"

namespace nequar {

template <class Real>
PackedMatrix<Real>::PackedMatrix(const char* class_name) {
    this->set_class_name(class_name);
}

template <class Real>
PackedMatrix<Real>::PackedMatrix(const PackedMatrix& other) : Vector<Real>() {
    CNqClass::operator=(other);
    copy_packed(other);
}

template <class Real>
PackedMatrix<Real>::PackedMatrix(PackedMatrix&& other) noexcept : Vector<Real>(std::move(other)) {
    set_shape(other.shape());
    other.set_shape({});
}

template <class Real>
PackedMatrix<Real>::~PackedMatrix() = default;

template <class Real>
PackedMatrix<Real>& PackedMatrix<Real>::operator=(const PackedMatrix& other) {
    CNqClass::operator=(other);
    copy_packed(other);
    return *this;
}

template <class Real>
PackedMatrix<Real>& PackedMatrix<Real>::operator=(PackedMatrix&& other) noexcept {
    if (this == &other) return *this;
    Vector<Real>::operator=(std::move(other));
    set_shape(other.shape());
    other.set_shape({});
    return *this;
}

template <class Real>
void PackedMatrix<Real>::set_shape(const Shape& shape) noexcept {
    height_ = shape.height;
    width_ = shape.width;
    count_ = shape.count;
}

template <class Real>
void PackedMatrix<Real>::ms_Matrix_Width_Height(int& width, int& height) const noexcept {
    width = width_;
    height = height_;
}

template <class Real>
void PackedMatrix<Real>::mce_Modify_Coordinates_of_Element(int& x, int& y) const noexcept {
    mcc(x);
    mcr(y);
}

template <class Real>
void PackedMatrix<Real>::mcc_Modify_Coordinate_of_Column(int& x) const noexcept {
    x = wrapped(x, width_);
}

template <class Real>
void PackedMatrix<Real>::mcr_Modify_Coordinate_of_Row(int& y) const noexcept {
    y = wrapped(y, height_);
}

template <class Real>
int PackedMatrix<Real>::read_run(int first, int last, Real* out) const noexcept {
    const int count = last - first + 1;
    std::memmove(out, this->p() + first, static_cast<std::size_t>(count) * sizeof(Real));
    return count;
}

template <class Real>
int PackedMatrix<Real>::fill_run(int first, int last, Real value) noexcept {
    const int count = last - first + 1;
    std::fill_n(this->p() + first, count, value);
    return count;
}

template <class Real>
int PackedMatrix<Real>::write_run(int first, int last, const Real* values) noexcept {
    const int count = last - first + 1;
    std::memmove(this->p() + first, values, static_cast<std::size_t>(count) * sizeof(Real));
    return count;
}

template <class Real>
bool PackedMatrix<Real>::create_packed(int count, const Shape& before) {
    if (count < 1) {
        this->report("1", "c_Create");
        return false;
    }
    if (Vector<Real>::c_Create(count) == nullptr) {
        set_shape(before);
        return false;
    }
    return true;
}

// What a source that was shortened through its vector no longer holds is copied as 0.
template <class Real>
void PackedMatrix<Real>::copy_packed(const PackedMatrix& other) {
    if (this == &other || Vector<Real>::c_Create(other.count_) == nullptr) return;
    set_shape(other.shape());
    const int held = std::min(count_, other.vs());
    if (held > 0) std::memcpy(this->p(), other.p(), static_cast<std::size_t>(held) * sizeof(Real));
    std::fill(this->p() + held, this->p() + count_, Real(0));
}

template <class Real>
bool PackedMatrix<Real>::has_equal_elements(const PackedMatrix& other) const noexcept {
    if (height_ != other.height_ || width_ != other.width_) return false;
    const int held = std::min(count_, this->vs());
    return held == std::min(other.count_, other.vs()) &&
           std::equal(this->p(), this->p() + held, other.p());
}

template <class Real>
bool PackedMatrix<Real>::size_dense(Matrix<Real>* dense, int height, int width,
                                    const char* method) const {
    if (dense->c_Create(height, width) != nullptr) return true;
    this->adopt_failure_of(*dense);
    this->report("1", method);
    return false;
}

namespace {

template <class Real>
bool lies_in(const Real* element, const Real* first, int size) {
    const std::less<const Real*> before;  // a total order over all pointers
    return size > 0 && !before(element, first) && before(element, first + size);
}

}  // namespace

template <class Real>
auto PackedMatrix<Real>::keep_if_inside(const Real* elements) const noexcept -> Kept {
    Kept kept;
    if (!lies_in(elements, this->p(), this->vs())) return kept;
    kept.failed_ = !kept.copy_.reserve(this->vs());
    if (kept.failed_) return kept;
    kept.original_ = this->p();
    kept.size_ = this->vs();
    std::memcpy(kept.copy_.data(), kept.original_,
                static_cast<std::size_t>(kept.size_) * sizeof(Real));
    return kept;
}

template <class Real>
const Real* PackedMatrix<Real>::Kept::moved(const Real* element) const noexcept {
    return lies_in(element, original_, size_) ? copy_.data() + (element - original_) : element;
}

template class PackedMatrix<double>;
template class PackedMatrix<float>;

}  // namespace nequar
