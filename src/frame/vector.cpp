#include "nequar_algebra/frame/vector.h"

#include <algorithm>
#include <cstring>
#include <ostream>
#include <type_traits>

namespace nequar {
namespace {

template <class Element>
constexpr const char* name_of_vector() {
    if constexpr (std::is_same_v<Element, double>) return "CNqVector";
    if constexpr (std::is_same_v<Element, float>) return "CNqVectorFloat";
    if constexpr (std::is_same_v<Element, int>) return "CNqVectorInt";
    if constexpr (std::is_same_v<Element, bool>) return "CNqVectorBool";
    if constexpr (std::is_same_v<Element, char>) return "CNqVectorChar";
    if constexpr (std::is_same_v<Element, unsigned char>) return "CNqVectorUchar";
    if constexpr (std::is_same_v<Element, short>) return "CNqVectorShort";
}

}  // namespace

template <class Element>
Vector<Element>::Vector() {
    set_class_name(name_of_vector<Element>());
}

template <class Element>
Vector<Element>::Vector(const Vector& other) : CNqVector_Base(other) {
    size_ = 0;
    cp_Copy(&other);
}

template <class Element>
Vector<Element>::Vector(Vector&& other) noexcept
    : CNqVector_Base(std::move(other)), storage_(std::move(other.storage_)) {
    other.size_ = 0;
}

template <class Element>
Vector<Element>::~Vector() = default;

template <class Element>
Vector<Element>& Vector<Element>::operator=(const Vector& other) {
    CNqClass::operator=(other);
    cp_Copy(&other);
    return *this;
}

template <class Element>
Vector<Element>& Vector<Element>::operator=(Vector&& other) noexcept {
    if (this == &other) return *this;
    CNqVector_Base::operator=(std::move(other));
    storage_ = std::move(other.storage_);
    other.size_ = 0;
    return *this;
}

template <class Element>
Element* Vector<Element>::c_Create(int size) {
    if (size < 0) {
        report("1", "c_Create");
        return nullptr;
    }
    // One element at least, so that an empty vector too answers its elements, and null says
    // refused.
    if (!storage_.reserve(std::max(size, 1))) {
        report("2", "c_Create");
        return nullptr;
    }
    size_ = size;
    return storage_.data();
}

template <class Element>
Element* Vector<Element>::c_Create(int size, Element value) {
    Element* const elements = c_Create(size);
    if (elements != nullptr) std::fill_n(elements, size, value);
    return elements;
}

template <class Element>
Element* Vector<Element>::cp_Copy(const Vector* other) {
    if (other == this) return storage_.data();
    Element* const elements = c_Create(other->size_);
    if (elements != nullptr && size_ > 0)
        std::memcpy(elements, other->p(), static_cast<std::size_t>(size_) * sizeof(Element));
    return elements;
}

template <class Element>
bool Vector<Element>::operator==(const Vector& other) const noexcept {
    return size_ == other.size_ && std::equal(p(), p() + size_, other.p());
}

template <class Element>
std::ostream& operator<<(std::ostream& out, const Vector<Element>& vector) {
    constexpr int kShown = 8;  // elements printed at either end of a long vector
    const int size = vector.vs();
    const bool abbreviate = size > 2 * kShown + 1;
    out << '[';
    for (int i = 0; i < size; ++i) {
        if (i > 0) out << ", ";
        if (abbreviate && i == kShown) {
            out << "...";
            i = size - kShown - 1;
            continue;
        }
        out << +vector[i];
    }
    out << ']';
    if (abbreviate) out << " (" << size << ')';
    return out;
}

#define NEQUAR_INSTANTIATE(Element) \
    template class Vector<Element>; \
    template NEQUAR_API std::ostream& operator<<(std::ostream&, const Vector<Element>&);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
NEQUAR_INSTANTIATE(int)
NEQUAR_INSTANTIATE(bool)
NEQUAR_INSTANTIATE(char)
NEQUAR_INSTANTIATE(unsigned char)
NEQUAR_INSTANTIATE(short)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
