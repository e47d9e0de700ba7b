#pragma once

#include <iosfwd>

#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/storage.h"

/// What vectors of every element type share: their size.
class NEQUAR_API CNqVector_Base : public CNqClass {
public:
    /// The number of elements.
    int vs() const noexcept { return size_; }
    int vs_Vector_Size() const noexcept { return size_; }

protected:
    CNqVector_Base() = default;
    CNqVector_Base(const CNqVector_Base&) = default;
    CNqVector_Base(CNqVector_Base&&) noexcept = default;
    CNqVector_Base& operator=(const CNqVector_Base&) = default;
    CNqVector_Base& operator=(CNqVector_Base&&) noexcept = default;

    int size_ = 0;
};

namespace nequar {

/// A dense vector: one contiguous array of elements, aligned to 64 bytes.
///
/// The object owns its elements: copies are deep, moves are cheap and leave an empty vector, and
/// the storage is kept when `c_Create` asks for a size that fits it. Sizing touches no element
/// unless a value is given; elements and sizes cost O(1), the rest one pass.
template <class Element>
class NEQUAR_API Vector : public CNqVector_Base {
public:
    Vector();
    Vector(const Vector& other);
    Vector(Vector&& other) noexcept;
    ~Vector() override;
    Vector& operator=(const Vector& other);
    Vector& operator=(Vector&& other) noexcept;

    /// Makes the vector `size` long and answers its elements. What they hold is not specified; an
    /// equal size keeps them. A negative size (detail "1") or memory that cannot be had ("2") is
    /// reported as "c_Create", answers null and leaves the vector as it was.
    Element* c_Create(int size);
    /// As above, with every element set to `value`; a refused create fills nothing.
    Element* c_Create(int size, Element value);
    /// Makes this vector an exact copy of the elements of another; answers null, as `c_Create`
    /// does, when memory cannot be had. Nothing when the source is the object itself.
    Element* cp_Copy(const Vector* other);

    /// Element i, unchecked.
    Element& operator[](int i) noexcept { return storage_.data()[i]; }
    const Element& operator[](int i) const noexcept { return storage_.data()[i]; }
    /// The elements; null for a vector that never held any.
    Element* p() noexcept { return storage_.data(); }
    const Element* p() const noexcept { return storage_.data(); }

    /// Same size and exactly equal elements (a NaN equals nothing).
    bool operator==(const Vector& other) const noexcept;

private:
    Storage<Element> storage_;
};

/// Prints the elements in one line, a long vector abbreviated.
template <class Element>
NEQUAR_API std::ostream& operator<<(std::ostream& out, const Vector<Element>& vector);

}  // namespace nequar

using CNqVector = nequar::Vector<double>;
using CNqVectorFloat = nequar::Vector<float>;
using CNqVectorInt = nequar::Vector<int>;
using CNqVectorBool = nequar::Vector<bool>;
using CNqVectorChar = nequar::Vector<char>;
using CNqVectorUchar = nequar::Vector<unsigned char>;
using CNqVectorShort = nequar::Vector<short>;

extern template class nequar::Vector<double>;
extern template class nequar::Vector<float>;
extern template class nequar::Vector<int>;
extern template class nequar::Vector<bool>;
extern template class nequar::Vector<char>;
extern template class nequar::Vector<unsigned char>;
extern template class nequar::Vector<short>;
