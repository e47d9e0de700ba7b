#pragma once

#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/vector.h"
#include "nequar_algebra/frame/vector_set.h"

namespace nequar {

/// A ring of vectors of one length. All its slots hold a vector from the start, filled with the
/// value given when the ring is made; each vector put in takes the place of the oldest. Slots are
/// filled in the order 0, 1, … capacity-1, 0, … Putting a vector in costs one copy of it.
template <class Real>
class NEQUAR_API VectorQueue : public CNqClass {
public:
    VectorQueue();
    VectorQueue(const VectorQueue& other);
    VectorQueue(VectorQueue&& other) noexcept;
    ~VectorQueue() override;
    VectorQueue& operator=(const VectorQueue& other);
    VectorQueue& operator=(VectorQueue&& other) noexcept;
    /// Makes this ring a copy of another. False ("1"), and unchanged, when the memory cannot be
    /// had.
    bool cp_Copy(const VectorQueue* other);

    /// Makes a ring of `capacity` vectors of the given length, every element set to `value`; slot 0
    /// is the oldest. A negative capacity or length ("1") or memory that cannot be had ("2") is
    /// reported and leaves the ring as it was. A capacity of 0 makes an empty ring.
    bool c_Create(int capacity, int length, Real value);
    /// Puts a vector in, in place of the oldest, and gives back the slot that it took (null: not
    /// wanted). Refused ("1", slot untouched) when the length is another or the ring is empty. The
    /// vector may be one of the ring's own.
    bool inv_INput_a_Vector(const Vector<Real>& x, int* slot);

    /// The number of vectors held, which is the capacity of the ring.
    int ne_Number_of_Elements() const noexcept { return vectors_.ne(); }
    int ne() const noexcept { return vectors_.ne(); }
    /// The length of each vector.
    int vs_Vector_Size() const noexcept { return length_; }
    int vs() const noexcept { return length_; }
    /// The vector in a slot; null, and a reported failure ("1"), when there is no such slot.
    const Vector<Real>* gpe_Get_Pointer_of_Element(int slot) const;
    const Vector<Real>* gpe(int slot) const { return gpe_Get_Pointer_of_Element(slot); }
    /// The vector of an age: 0 is the one put in last, capacity-1 the oldest. Fails likewise.
    const Vector<Real>* gpa_Get_Pointer_by_Age(int age) const;
    const Vector<Real>* gpa(int age) const { return gpa_Get_Pointer_by_Age(age); }

private:
    VectorSet<Real> vectors_;
    int length_ = 0;
    int oldest_ = 0;  // the slot that the next vector takes
};

}  // namespace nequar

using CNqQueueCircular_of_Vector = nequar::VectorQueue<double>;
using CNqQueueCircular_of_VectorFloat = nequar::VectorQueue<float>;

extern template class nequar::VectorQueue<double>;
extern template class nequar::VectorQueue<float>;
