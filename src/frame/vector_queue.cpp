#include "nequar_algebra/frame/vector_queue.h"

#include <cassert>
#include <cstring>
#include <utility>

#include "core/twin_name.h"

namespace nequar {

template <class Real>
VectorQueue<Real>::VectorQueue() {
    set_class_name(
        twin_name<Real>("CNqQueueCircular_of_Vector", "CNqQueueCircular_of_VectorFloat"));
}

template <class Real>
VectorQueue<Real>::VectorQueue(const VectorQueue& other) : CNqClass(other) {
    cp_Copy(&other);
}

template <class Real>
VectorQueue<Real>::VectorQueue(VectorQueue&& other) noexcept
    : CNqClass(std::move(other)),
      vectors_(std::move(other.vectors_)),
      length_(std::exchange(other.length_, 0)),
      oldest_(std::exchange(other.oldest_, 0)) {}

template <class Real>
VectorQueue<Real>::~VectorQueue() = default;

template <class Real>
VectorQueue<Real>& VectorQueue<Real>::operator=(const VectorQueue& other) {
    CNqClass::operator=(other);
    cp_Copy(&other);
    return *this;
}

template <class Real>
VectorQueue<Real>& VectorQueue<Real>::operator=(VectorQueue&& other) noexcept {
    if (this == &other) return *this;
    CNqClass::operator=(std::move(other));
    vectors_ = std::move(other.vectors_);
    length_ = std::exchange(other.length_, 0);
    oldest_ = std::exchange(other.oldest_, 0);
    return *this;
}

template <class Real>
bool VectorQueue<Real>::cp_Copy(const VectorQueue* other) {
    assert(other != nullptr);
    if (other == this) return true;
    if (!vectors_.cp_Copy(&other->vectors_)) {
        adopt_failure_of(vectors_);
        return fail("1", "cp_Copy");
    }
    length_ = other->length_;
    oldest_ = other->oldest_;
    return true;
}

template <class Real>
bool VectorQueue<Real>::c_Create(int capacity, int length, Real value) {
    if (capacity < 0 || length < 0) return fail("1", "c_Create");
    VectorSet<Real> fresh;
    bool is_complete = capacity == 0 || fresh.c_Create(capacity) != nullptr;
    for (int slot = 0; is_complete && slot < capacity; ++slot)
        is_complete = fresh.gpe(slot)->c_Create(length, value) != nullptr;
    if (!is_complete) return fail("2", "c_Create");
    vectors_ = std::move(fresh);
    length_ = length;
    oldest_ = 0;
    return true;
}

template <class Real>
bool VectorQueue<Real>::inv_INput_a_Vector(const Vector<Real>& x, int* slot) {
    if (ne() == 0 || x.vs() != length_) return fail("1", "inv_INput_a_Vector");
    if (length_ > 0)
        std::memmove(vectors_.gpe(oldest_)->p(), x.p(),
                     static_cast<std::size_t>(length_) * sizeof(Real));
    if (slot != nullptr) *slot = oldest_;
    oldest_ = oldest_ + 1 < ne() ? oldest_ + 1 : 0;
    return true;
}

template <class Real>
const Vector<Real>* VectorQueue<Real>::gpe_Get_Pointer_of_Element(int slot) const {
    if (slot >= 0 && slot < ne()) return vectors_.gpe(slot);
    report("1", "gpe_Get_Pointer_of_Element");
    return nullptr;
}

template <class Real>
const Vector<Real>* VectorQueue<Real>::gpa_Get_Pointer_by_Age(int age) const {
    if (age < 0 || age >= ne()) {
        report("1", "gpa_Get_Pointer_by_Age");
        return nullptr;
    }
    const int slot = oldest_ - 1 - age;
    return vectors_.gpe(slot >= 0 ? slot : slot + ne());
}

template class VectorQueue<double>;
template class VectorQueue<float>;

}  // namespace nequar
