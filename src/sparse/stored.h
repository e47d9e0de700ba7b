// Values and their indices grow and shrink in step: each function changes both or neither. They
// answer which of the two refused.
#pragma once

#include "frame/growth.h"
#include "nequar_algebra/frame/growable_vector.h"

namespace nequar {

enum class Stored { done, values_refused, indices_refused };

inline const char* code_of(Stored outcome) {
    return outcome == Stored::values_refused ? "1" : "2";
}

// Room for that many elements in all; what is stored stays.
template <class Real>
Stored reserve(GrowableVector<Real>& values, GrowableVector<int>& indices, Size room) {
    if (room > kLargestIntCount) return Stored::values_refused;
    const int blank = values.sbs();
    if (!values.is_Initialize_Space(static_cast<int>(room))) return Stored::values_refused;
    if (indices.is_Initialize_Space(static_cast<int>(room))) return Stored::done;
    values.mbs(blank);
    return Stored::indices_refused;
}

template <class Real>
Stored change_count(GrowableVector<Real>& values, GrowableVector<int>& indices, int count) {
    const int before = values.nee();
    if (!values.z_cne(count)) return Stored::values_refused;
    if (indices.z_cne(count)) return Stored::done;
    values.z_cne(before);
    return Stored::indices_refused;
}

template <class Real>
Stored change_blank_space(GrowableVector<Real>& values, GrowableVector<int>& indices, int blank) {
    const int before = values.sbs();
    if (!values.mbs(blank)) return Stored::values_refused;
    if (indices.mbs(blank)) return Stored::done;
    values.mbs(before);
    return Stored::indices_refused;
}

// That many elements more, zero; where the room has to grow it grows by more, if that can be had.
template <class Real>
Stored grow_by(GrowableVector<Real>& values, GrowableVector<int>& indices, Size extra) {
    const Size count = Size(values.nee()) + extra;
    const Size room = Size(values.nee()) + values.sbs();
    if (count > kLargestIntCount) return Stored::values_refused;
    if (count > room && reserve(values, indices, grown_room(room, count)) != Stored::done) {
        const Stored outcome = reserve(values, indices, count);
        if (outcome != Stored::done) return outcome;
    }
    return change_count(values, indices, static_cast<int>(count));
}

// Copies; the source's blank space comes along.
template <class Real>
Stored copy(const GrowableVector<Real>& from_values, const GrowableVector<int>& from_indices,
            GrowableVector<Real>& values, GrowableVector<int>& indices) {
    const Size room = Size(from_values.nee()) + std::max(from_values.sbs(), from_indices.sbs());
    const Stored outcome = reserve(values, indices, room);
    if (outcome != Stored::done) return outcome;
    if (!values.cp_Copy(&from_values)) return Stored::values_refused;
    if (!indices.cp_Copy(&from_indices)) return Stored::indices_refused;
    if (indices.sbs() != values.sbs()) indices.mbs(values.sbs());
    return Stored::done;
}

// One element more, before the one at `position`.
template <class Real>
Stored insert(GrowableVector<Real>& values, GrowableVector<int>& indices, int position, Real value,
              int index) {
    const bool appends = position == values.nee();
    if (!(appends ? values.ae_Append_Element(value) : values.i_Insert(position, value)))
        return Stored::values_refused;
    if (appends ? indices.ae_Append_Element(index) : indices.i_Insert(position, index))
        return Stored::done;
    values.d_Delete(position);
    return Stored::indices_refused;
}

// Replaces the run of `count` elements from `begin` on by others, which must not lie in these
// arrays; `shift` is added to the new indices.
template <class Real>
Stored replace(GrowableVector<Real>& values, GrowableVector<int>& indices, Size begin, Size count,
               const Real* new_values, const int* new_indices, Size new_count, Size shift) {
    const Size total = Size(values.nee()) - count + new_count;
    if (total > kLargestIntCount) return Stored::values_refused;
    const Size room = Size(values.nee()) + values.sbs();
    if (total > room && reserve(values, indices, grown_room(room, total)) != Stored::done) {
        const Stored outcome = reserve(values, indices, total);
        if (outcome != Stored::done) return outcome;
    }
    const int first = static_cast<int>(begin);
    const int old_length = static_cast<int>(count);
    const int new_length = static_cast<int>(new_count);
    if (!values.r_Replace(first, old_length, new_values, new_length)) return Stored::values_refused;
    if (!indices.r_Replace(first, old_length, new_indices, new_length))
        return Stored::indices_refused;
    for (int k = first; k < first + new_length; ++k) indices[k] += static_cast<int>(shift);
    return Stored::done;
}

}  // namespace nequar
