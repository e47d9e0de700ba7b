#pragma once

#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/growable_storage.h"
#include "nequar_algebra/frame/vector.h"

namespace nequar {

/// A vector that grows: stored ("enrolled") elements 0 … count-1, followed by blank space that is
/// reserved for more.
///
///     | e0 e1 ... e(count-1) | blank space |
///
/// Appending costs O(1) on average: when the blank space is used up the room at least doubles. The
/// blank space depends only on the operations made, never on the element type or on memory used
/// before, so a vector of values and a vector of indices that are treated alike keep equal blank
/// spaces.
///
/// The blank space reads as zero until something is written into it through the element pointer.
/// Elements and positions handed to an operation may lie in the vector's own storage. Every
/// operation that answers bool leaves the vector as it was when it answers false; the detail is
/// "1" for an argument that is out of range, "2" for room that cannot be had (memory, or more
/// elements than an int counts), unless it says otherwise.
template <class Element>
class NEQUAR_API GrowableVector : public CNqClass {
public:
    GrowableVector();
    /// Copies elements and the size of the blank space.
    GrowableVector(const GrowableVector& other);
    GrowableVector(GrowableVector&& other) noexcept;
    ~GrowableVector() override;
    GrowableVector& operator=(const GrowableVector& other);
    GrowableVector& operator=(GrowableVector&& other) noexcept;
    /// Makes this vector a copy of another, elements and size of the blank space.
    bool cp_Copy(const GrowableVector* other);

    /// Empties the vector and reserves room for `expected` elements, neither more nor less.
    bool in_Initialize(int expected);
    /// Makes room for at least `expected` elements in all; what is stored stays.
    bool is_Initialize_Space(int expected);
    /// Makes the blank space n elements long, giving memory back where it shrinks.
    bool mbs_Modify_Blank_Space(int n);
    bool mbs(int n) { return mbs_Modify_Blank_Space(n); }
    /// The size of the blank space.
    int sbs_Size_of_Blank_Space() const noexcept { return room_ - count_; }
    int sbs() const noexcept { return room_ - count_; }
    /// The number of stored elements.
    int nee_Number_of_Enrolled_Elements() const noexcept { return count_; }
    int nee() const noexcept { return count_; }
    /// Makes the number of elements n. Elements that come in from the blank space are what was
    /// written there through the element pointer, and zero where nothing was; elements that go
    /// become blank space, and zero.
    bool z_cne_Change_Number_of_Elements(int n);
    bool z_cne(int n) { return z_cne_Change_Number_of_Elements(n); }

    /// Appends one element ("2" when there is no room).
    bool ae_Append_Element(Element value) {
        if (count_ == room_ && !make_room_for_one("ae_Append_Element")) return false;
        storage_.data()[count_++] = value;
        return true;
    }
    /// Appends the first `count` elements of x; "1" when it has fewer.
    bool ap_Append(const Vector<Element>* x, int count);
    bool ap_Append(const GrowableVector* x, int count);
    bool ap_Append(const Element* elements, int count);

    /// Element i; when it is not stored, zero and a reported failure ("1").
    Element ge_Get_Element(int i) const;
    /// Overwrites element i; when it is not stored nothing is written.
    bool se_Set_Element(int i, Element value);

    /// Inserts one element before the one at `position`; the position `nee()` appends.
    bool i_Insert(int position, Element value);
    /// Inserts many elements at once: values[k] comes before the element that stands at
    /// positions[k] now, before any insertion. The positions must not decrease and must lie in
    /// 0 … nee(); values with equal positions keep their order. One pass from the end, O(stored +
    /// inserted). The two lists must have the same length ("1").
    bool i_Insert(const Element* values, const int* positions, int count);
    bool i_Insert(const Vector<Element>* values, const Vector<int>* positions);
    bool i_Insert(const GrowableVector* values, const GrowableVector<int>* positions);

    /// Deletes the element at `position`.
    bool d_Delete(int position);
    /// Deletes many elements at once: those at the given positions, which must increase strictly
    /// and lie in 0 … nee()-1. One pass, O(stored).
    bool d_Delete(const int* positions, int count);
    bool d_Delete(const Vector<int>* positions);
    bool d_Delete(const GrowableVector<int>* positions);

    /// Replaces the run of `count` elements from `start` on by other elements, as many as there
    /// are: a run of length 0 inserts, a replacement of length 0 deletes.
    bool r_Replace(int start, int count, const Element* values, int number_of_values);
    bool r_Replace(int start, int count, const Vector<Element>* values);
    bool r_Replace(int start, int count, const GrowableVector* values);

    /// The element pointer, and the number of elements through the reference. The pointer reaches
    /// the blank space too; it holds until the vector is next changed.
    Element* z_vpne_Vector_Pointer_and_Number_of_Elements(int& count) noexcept {
        count = count_;
        return p();
    }
    const Element* z_vpne_Vector_Pointer_and_Number_of_Elements(int& count) const noexcept {
        count = count_;
        return storage_.data();
    }
    Element* z_vpne(int& count) noexcept {
        return z_vpne_Vector_Pointer_and_Number_of_Elements(count);
    }
    const Element* z_vpne(int& count) const noexcept {
        return z_vpne_Vector_Pointer_and_Number_of_Elements(count);
    }
    /// The elements, unchecked; null for a vector that never held any.
    Element* p() noexcept {
        if (storage_.defined() < room_) clear_blank_space_to(room_);
        return storage_.data();
    }
    const Element* p() const noexcept { return storage_.data(); }
    Element& operator[](int i) noexcept { return storage_.data()[i]; }
    const Element& operator[](int i) const noexcept { return storage_.data()[i]; }

    /// Same number of elements and exactly equal ones (a NaN equals nothing); the blank space does
    /// not count.
    bool operator==(const GrowableVector& other) const noexcept;

private:
    bool make_room_for_one(const char* method);
    bool make_room(std::ptrdiff_t needed);
    bool move_to(std::ptrdiff_t room, std::ptrdiff_t kept);
    void change_count(std::ptrdiff_t count) noexcept;
    void clear_blank_space_to(std::ptrdiff_t end) noexcept;
    void replace_run(std::ptrdiff_t start, std::ptrdiff_t count, const Element* values,
                     std::ptrdiff_t number_of_values) noexcept;

    GrowableStorage<Element> storage_;
    int count_ = 0;
    int room_ = 0;  // at most the capacity of the storage
};

}  // namespace nequar

using CNqXvector = nequar::GrowableVector<double>;
using CNqXvectorFloat = nequar::GrowableVector<float>;
using CNqXvectorInt = nequar::GrowableVector<int>;

extern template class nequar::GrowableVector<double>;
extern template class nequar::GrowableVector<float>;
extern template class nequar::GrowableVector<int>;
