#pragma once

#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/vector.h"

namespace nequar {

/// An indexed set of vectors, each with a size of its own. A member is found in O(1).
template <class Real>
class NEQUAR_API VectorSet : public CNqClass {
public:
    VectorSet();
    VectorSet(const VectorSet& other);
    VectorSet(VectorSet&& other) noexcept;
    ~VectorSet() override;
    VectorSet& operator=(const VectorSet& other);
    VectorSet& operator=(VectorSet&& other) noexcept;
    /// Makes this set a copy of another, vector by vector. False ("1"), and unchanged, when the
    /// memory cannot be had.
    bool cp_Copy(const VectorSet* other);

    /// Makes a set of `count` vectors and answers the first; what size they have and what they hold
    /// is not specified. A negative count ("1") or memory that cannot be had ("2") is reported,
    /// answers null and leaves the set as it was; a count of 0 empties the set and answers null
    /// too.
    Vector<Real>* c_Create(int count);
    /// Pointer to one member; null, and a reported failure ("1"), when there is none at `index`.
    Vector<Real>* gpe_Get_Pointer_of_Element(int index);
    const Vector<Real>* gpe_Get_Pointer_of_Element(int index) const;
    Vector<Real>* gpe(int index) { return gpe_Get_Pointer_of_Element(index); }
    const Vector<Real>* gpe(int index) const { return gpe_Get_Pointer_of_Element(index); }
    /// The number of vectors.
    int ne_Number_of_Elements() const noexcept { return count_; }
    int ne() const noexcept { return count_; }

    /// Same number of vectors, equal one by one.
    bool operator==(const VectorSet& other) const noexcept;

private:
    void swap_members(VectorSet& other) noexcept;

    Vector<Real>* vectors_ = nullptr;
    int count_ = 0;
    int capacity_ = 0;
};

}  // namespace nequar

using CNqSet_of_Vector = nequar::VectorSet<double>;
using CNqSet_of_VectorFloat = nequar::VectorSet<float>;

extern template class nequar::VectorSet<double>;
extern template class nequar::VectorSet<float>;
