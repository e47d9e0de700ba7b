// Some of a range of numbers or vectors, and their ways into and out of dense storage.
#pragma once

#include "core/view.h"
#include "kernel/kernel.h"

namespace nequar {

// Elements begin ... end-1, or those among them whose mask entry is true.
struct Selection {
    Size begin = 0;
    Size end = 0;
    const bool* mask = nullptr;

    bool has(Size i) const { return mask == nullptr || mask[i]; }
    Size count() const {
        if (mask == nullptr) return end - begin;
        Size selected = 0;
        for (Size i = begin; i < end; ++i) selected += mask[i] ? 1 : 0;
        return selected;
    }

    // Takes the first `wanted` selected elements away: the part of the range that holds them. That
    // many are left.
    Selection take(Size wanted) {
        Selection part{begin, begin, mask};
        for (; wanted > 0; ++part.end) wanted -= has(part.end) ? 1 : 0;
        begin = part.end;
        return part;
    }
};

// out := the selected elements of a, one after another
template <class Real>
void gather_numbers(const Real* a, const Selection& selection, Real* out) {
    for (Size i = selection.begin; i < selection.end; ++i)
        if (selection.has(i)) *out++ = a[i];
}

// The selected columns of one view to the leading columns of another, and back. Row by row where
// rows are contiguous, column by column otherwise.
template <class Real>
void gather_columns(View<const Real> from, const Selection& selection, View<Real> to) {
    if (from.column_stride == 1) {
        for (Size k = 0; k < from.height; ++k) gather_numbers(&from(k, 0), selection, &to(k, 0));
        return;
    }
    Size dense = 0;
    for (Size i = selection.begin; i < selection.end; ++i)
        if (selection.has(i)) kernel::copy(from.column(i), to.column(dense++));
}

template <class Real>
void scatter_columns(View<const Real> from, const Selection& selection, View<Real> to) {
    if (from.column_stride == 1) {
        for (Size k = 0; k < from.height; ++k) {
            const Real* next = &from(k, 0);
            for (Size i = selection.begin; i < selection.end; ++i)
                if (selection.has(i)) to(k, i) = *next++;
        }
        return;
    }
    Size dense = 0;
    for (Size i = selection.begin; i < selection.end; ++i)
        if (selection.has(i)) kernel::copy(from.column(dense++), to.column(i));
}

}  // namespace nequar
