#include "nequar_algebra/frame/growable_vector.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <type_traits>
#include <utility>

#include "frame/detached.h"
#include "frame/growth.h"

namespace nequar {
namespace {

template <class Element>
constexpr const char* name_of_growable_vector() {
    if constexpr (std::is_same_v<Element, double>) return "CNqXvector";
    if constexpr (std::is_same_v<Element, float>) return "CNqXvectorFloat";
    if constexpr (std::is_same_v<Element, int>) return "CNqXvectorInt";
}

// The two ranges may overlap, and may be empty, with null for their start.
template <class Element>
void move_elements(const Element* from, std::ptrdiff_t count, Element* to) {
    if (count > 0) std::memmove(to, from, static_cast<std::size_t>(count) * sizeof(Element));
}

}  // namespace

template <class Element>
GrowableVector<Element>::GrowableVector() {
    set_class_name(name_of_growable_vector<Element>());
}

template <class Element>
GrowableVector<Element>::GrowableVector(const GrowableVector& other) : CNqClass(other) {
    cp_Copy(&other);
}

template <class Element>
GrowableVector<Element>::GrowableVector(GrowableVector&& other) noexcept
    : CNqClass(std::move(other)),
      count_(std::exchange(other.count_, 0)),
      room_(std::exchange(other.room_, 0)) {
    storage_.swap(other.storage_);
}

template <class Element>
GrowableVector<Element>::~GrowableVector() = default;

template <class Element>
GrowableVector<Element>& GrowableVector<Element>::operator=(const GrowableVector& other) {
    CNqClass::operator=(other);
    cp_Copy(&other);
    return *this;
}

template <class Element>
GrowableVector<Element>& GrowableVector<Element>::operator=(GrowableVector&& other) noexcept {
    if (this == &other) return *this;
    CNqClass::operator=(std::move(other));
    storage_.swap(other.storage_);
    count_ = std::exchange(other.count_, 0);
    room_ = std::exchange(other.room_, 0);
    GrowableStorage<Element>().swap(other.storage_);
    return *this;
}

template <class Element>
bool GrowableVector<Element>::cp_Copy(const GrowableVector* other) {
    assert(other != nullptr);
    if (other == this) return true;
    if (other->room_ > storage_.capacity() && !move_to(other->room_, 0))
        return fail("2", "cp_Copy");
    change_count(other->count_);
    room_ = other->room_;
    move_elements(other->p(), count_, storage_.data());
    return true;
}

// ---- room ---------------------------------------------------------------------------------------

// A new block of `room` elements; the first `kept` come along, as far as they hold something.
template <class Element>
bool GrowableVector<Element>::move_to(std::ptrdiff_t room, std::ptrdiff_t kept) {
    GrowableStorage<Element> fresh;
    if (!fresh.take(room)) return false;
    kept = std::min(kept, std::max<Size>(count_, storage_.defined()));
    move_elements(storage_.data(), kept, fresh.data());
    fresh.set_defined(std::max(fresh.defined(), kept));
    storage_.swap(fresh);
    room_ = static_cast<int>(room);
    return true;
}

// Room for `needed` elements; when it has to grow it grows by more, if that can be had.
template <class Element>
bool GrowableVector<Element>::make_room(std::ptrdiff_t needed) {
    if (needed <= room_) return true;
    if (needed > kLargestIntCount) return false;
    for (const Size room : {grown_room(room_, needed), Size(needed)}) {
        if (room <= storage_.capacity()) {
            room_ = static_cast<int>(room);
            return true;
        }
        if (move_to(room, room_)) return true;
    }
    return false;
}

template <class Element>
bool GrowableVector<Element>::make_room_for_one(const char* method) {
    return make_room(std::ptrdiff_t(count_) + 1) || fail("2", method);
}

// Needs room for `count`, and elements in those that come in. Those that go become zero: now when
// the blank space behind them is defined, else when it is cleared.
template <class Element>
void GrowableVector<Element>::change_count(std::ptrdiff_t count) noexcept {
    if (count < count_ && storage_.defined() >= count_)
        std::fill(storage_.data() + count, storage_.data() + count_, Element(0));
    else if (count < storage_.defined() && count < count_)
        storage_.set_defined(count);
    count_ = static_cast<int>(count);
}

// Zero wherever the blank space before `end` is not defined yet.
template <class Element>
void GrowableVector<Element>::clear_blank_space_to(std::ptrdiff_t end) noexcept {
    const Size defined = std::max<Size>(storage_.defined(), count_);
    if (end > defined) std::fill(storage_.data() + defined, storage_.data() + end, Element(0));
    storage_.set_defined(std::max(end, defined));
}

template <class Element>
bool GrowableVector<Element>::in_Initialize(int expected) {
    if (expected < 0) return fail("1", "in_Initialize");
    if (expected > storage_.capacity()) {
        if (!move_to(expected, 0)) return fail("2", "in_Initialize");
        count_ = 0;
    }
    change_count(0);
    room_ = expected;
    return true;
}

template <class Element>
bool GrowableVector<Element>::is_Initialize_Space(int expected) {
    if (expected < 0) return fail("1", "is_Initialize_Space");
    if (expected <= room_) return true;
    if (expected > storage_.capacity() && !move_to(expected, room_))
        return fail("2", "is_Initialize_Space");
    room_ = expected;
    return true;
}

template <class Element>
bool GrowableVector<Element>::mbs_Modify_Blank_Space(int n) {
    if (n < 0) return fail("1", "mbs_Modify_Blank_Space");
    const Size room = Size(count_) + n;
    if (room > kLargestIntCount) return fail("2", "mbs_Modify_Blank_Space");
    // A smaller block that cannot be had is no failure: the larger one serves as well.
    if (room != storage_.capacity() && !move_to(room, std::min<Size>(room, room_)) &&
        room > storage_.capacity())
        return fail("2", "mbs_Modify_Blank_Space");
    room_ = static_cast<int>(room);
    return true;
}

template <class Element>
bool GrowableVector<Element>::z_cne_Change_Number_of_Elements(int n) {
    if (n < 0) return fail("1", "z_cne_Change_Number_of_Elements");
    if (!make_room(n)) return fail("2", "z_cne_Change_Number_of_Elements");
    if (n > count_) clear_blank_space_to(n);
    change_count(n);
    return true;
}

// ---- appending, reading, writing ----------------------------------------------------------------

template <class Element>
bool GrowableVector<Element>::ap_Append(const Vector<Element>* x, int count) {
    assert(x != nullptr);
    if (count > x->vs()) return fail("1", "ap_Append");
    return ap_Append(x->p(), count);
}

template <class Element>
bool GrowableVector<Element>::ap_Append(const GrowableVector* x, int count) {
    assert(x != nullptr);
    if (count > x->count_) return fail("1", "ap_Append");
    return ap_Append(x->p(), count);
}

template <class Element>
bool GrowableVector<Element>::ap_Append(const Element* elements, int count) {
    if (count < 0) return fail("1", "ap_Append");
    const Detached<Element> detached(elements, count, storage_.data(),
                                     room_ * Size(sizeof(Element)));
    const Size total = Size(count_) + count;
    if (!detached || !make_room(total)) return fail("2", "ap_Append");
    move_elements(detached.data(), count, storage_.data() + count_);
    count_ = static_cast<int>(total);
    return true;
}

template <class Element>
Element GrowableVector<Element>::ge_Get_Element(int i) const {
    if (i >= 0 && i < count_) return storage_.data()[i];
    fail("1", "ge_Get_Element");
    return Element(0);
}

template <class Element>
bool GrowableVector<Element>::se_Set_Element(int i, Element value) {
    if (i < 0 || i >= count_) return fail("1", "se_Set_Element");
    storage_.data()[i] = value;
    return true;
}

// ---- insertion ----------------------------------------------------------------------------------

template <class Element>
bool GrowableVector<Element>::i_Insert(int position, Element value) {
    if (position < 0 || position > count_) return fail("1", "i_Insert");
    if (!make_room(Size(count_) + 1)) return fail("2", "i_Insert");
    replace_run(position, 0, &value, 1);
    return true;
}

// From the end: the elements from positions[k] on that have not moved yet go k + 1 places up, and
// values[k] goes to positions[k] + k.
template <class Element>
bool GrowableVector<Element>::i_Insert(const Element* values, const int* positions, int count) {
    if (count < 0 || !are_increasing(positions, count, Size(count_) + 1, false))
        return fail("1", "i_Insert");
    const Size bytes = room_ * Size(sizeof(Element));
    const Detached<Element> new_values(values, count, storage_.data(), bytes);
    const Detached<int> places(positions, count, storage_.data(), bytes);
    const Size total = Size(count_) + count;
    if (!new_values || !places || !make_room(total)) return fail("2", "i_Insert");
    Element* const elements = storage_.data();
    Size end = count_;
    for (Size k = count - 1; k >= 0; --k) {
        const Size place = places.data()[k];
        move_elements(elements + place, end - place, elements + place + k + 1);
        elements[place + k] = new_values.data()[k];
        end = place;
    }
    count_ = static_cast<int>(total);
    return true;
}

template <class Element>
bool GrowableVector<Element>::i_Insert(const Vector<Element>* values,
                                       const Vector<int>* positions) {
    assert(values != nullptr && positions != nullptr);
    if (values->vs() != positions->vs()) return fail("1", "i_Insert");
    return i_Insert(values->p(), positions->p(), values->vs());
}

template <class Element>
bool GrowableVector<Element>::i_Insert(const GrowableVector* values,
                                       const GrowableVector<int>* positions) {
    assert(values != nullptr && positions != nullptr);
    if (values->nee() != positions->nee()) return fail("1", "i_Insert");
    return i_Insert(values->p(), positions->p(), values->nee());
}

// ---- deletion and replacement -------------------------------------------------------------------

template <class Element>
bool GrowableVector<Element>::d_Delete(int position) {
    if (position < 0 || position >= count_) return fail("1", "d_Delete");
    replace_run(position, 1, nullptr, 0);
    return true;
}

// From the start: what stands between two deleted positions goes down by as many as were deleted
// before it.
template <class Element>
bool GrowableVector<Element>::d_Delete(const int* positions, int count) {
    if (count < 0 || !are_increasing(positions, count, count_, true)) return fail("1", "d_Delete");
    if (count == 0) return true;
    const Detached<int> places(positions, count, storage_.data(), room_ * Size(sizeof(Element)));
    if (!places) return fail("2", "d_Delete");
    Element* const elements = storage_.data();
    for (Size k = 0; k < count; ++k) {
        const Size first = Size(places.data()[k]) + 1;
        const Size next = k + 1 < count ? places.data()[k + 1] : count_;
        move_elements(elements + first, next - first, elements + first - (k + 1));
    }
    change_count(Size(count_) - count);
    return true;
}

template <class Element>
bool GrowableVector<Element>::d_Delete(const Vector<int>* positions) {
    assert(positions != nullptr);
    return d_Delete(positions->p(), positions->vs());
}

template <class Element>
bool GrowableVector<Element>::d_Delete(const GrowableVector<int>* positions) {
    assert(positions != nullptr);
    return d_Delete(positions->p(), positions->nee());
}

// Needs room, a run that is stored, and values that lie elsewhere.
template <class Element>
void GrowableVector<Element>::replace_run(std::ptrdiff_t start, std::ptrdiff_t count,
                                          const Element* values,
                                          std::ptrdiff_t number_of_values) noexcept {
    if (count == 0 && number_of_values == 0) return;
    Element* const run = storage_.data() + start;
    move_elements(run + count, count_ - start - count, run + number_of_values);
    move_elements(values, number_of_values, run);
    change_count(count_ - count + number_of_values);
}

template <class Element>
bool GrowableVector<Element>::r_Replace(int start, int count, const Element* values,
                                        int number_of_values) {
    if (start < 0 || count < 0 || number_of_values < 0 || start > count_ || count > count_ - start)
        return fail("1", "r_Replace");
    const Detached<Element> detached(values, number_of_values, storage_.data(),
                                     room_ * Size(sizeof(Element)));
    if (!detached || !make_room(Size(count_) - count + number_of_values))
        return fail("2", "r_Replace");
    replace_run(start, count, detached.data(), number_of_values);
    return true;
}

template <class Element>
bool GrowableVector<Element>::r_Replace(int start, int count, const Vector<Element>* values) {
    assert(values != nullptr);
    return r_Replace(start, count, values->p(), values->vs());
}

template <class Element>
bool GrowableVector<Element>::r_Replace(int start, int count, const GrowableVector* values) {
    assert(values != nullptr);
    return r_Replace(start, count, values->p(), values->nee());
}

template <class Element>
bool GrowableVector<Element>::operator==(const GrowableVector& other) const noexcept {
    return count_ == other.count_ &&
           std::equal(storage_.data(), storage_.data() + count_, other.p());
}

template class GrowableVector<double>;
template class GrowableVector<float>;
template class GrowableVector<int>;

}  // namespace nequar
