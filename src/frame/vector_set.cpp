#include "nequar_algebra/frame/vector_set.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <new>
#include <utility>

#include "core/twin_name.h"

namespace nequar {

template <class Real>
VectorSet<Real>::VectorSet() {
    set_class_name(twin_name<Real>("CNqSet_of_Vector", "CNqSet_of_VectorFloat"));
}

template <class Real>
VectorSet<Real>::VectorSet(const VectorSet& other) : CNqClass(other) {
    cp_Copy(&other);
}

template <class Real>
VectorSet<Real>::VectorSet(VectorSet&& other) noexcept : CNqClass(std::move(other)) {
    swap_members(other);
}

template <class Real>
VectorSet<Real>::~VectorSet() {
    delete[] vectors_;
}

template <class Real>
VectorSet<Real>& VectorSet<Real>::operator=(const VectorSet& other) {
    CNqClass::operator=(other);
    cp_Copy(&other);
    return *this;
}

template <class Real>
VectorSet<Real>& VectorSet<Real>::operator=(VectorSet&& other) noexcept {
    if (this == &other) return *this;
    CNqClass::operator=(std::move(other));
    swap_members(other);
    other.count_ = 0;
    return *this;
}

template <class Real>
void VectorSet<Real>::swap_members(VectorSet& other) noexcept {
    std::swap(vectors_, other.vectors_);
    std::swap(count_, other.count_);
    std::swap(capacity_, other.capacity_);
}

template <class Real>
bool VectorSet<Real>::cp_Copy(const VectorSet* other) {
    assert(other != nullptr);
    if (other == this) return true;
    VectorSet copy;
    if (copy.c_Create(other->count_) == nullptr && other->count_ > 0) return fail("1", "cp_Copy");
    for (int i = 0; i < other->count_; ++i) {
        const Vector<Real>& source = other->vectors_[i];
        if (copy.vectors_[i].cp_Copy(&source) == nullptr && source.vs() > 0)
            return fail("1", "cp_Copy");
    }
    swap_members(copy);
    return true;
}

template <class Real>
Vector<Real>* VectorSet<Real>::c_Create(int count) {
    if (count < 0) {
        report("1", "c_Create");
        return nullptr;
    }
    if (count > capacity_) {
        Vector<Real>* const fresh = new (std::nothrow) Vector<Real>[std::size_t(count)];
        if (fresh == nullptr) {
            report("2", "c_Create");
            return nullptr;
        }
        delete[] vectors_;
        vectors_ = fresh;
        capacity_ = count;
    }
    count_ = count;
    return count > 0 ? vectors_ : nullptr;
}

template <class Real>
const Vector<Real>* VectorSet<Real>::gpe_Get_Pointer_of_Element(int index) const {
    if (index >= 0 && index < count_) return vectors_ + index;
    report("1", "gpe_Get_Pointer_of_Element");
    return nullptr;
}

template <class Real>
Vector<Real>* VectorSet<Real>::gpe_Get_Pointer_of_Element(int index) {
    return const_cast<Vector<Real>*>(std::as_const(*this).gpe_Get_Pointer_of_Element(index));
}

template <class Real>
bool VectorSet<Real>::operator==(const VectorSet& other) const noexcept {
    return count_ == other.count_ && std::equal(vectors_, vectors_ + count_, other.vectors_);
}

template class VectorSet<double>;
template class VectorSet<float>;

}  // namespace nequar
