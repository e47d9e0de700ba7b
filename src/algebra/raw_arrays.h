// Elements carried between raw arrays and objects, converted where their types differ.
#pragma once

#include <cstring>
#include <type_traits>

#include "core/overlap.h"
#include "core/view.h"
#include "kernel/kernel.h"

namespace nequar {

// to[i] = from[i]; the arrays may overlap when their types are the same.
template <class From, class To>
void carry(Size n, const From* from, To* to) {
    if constexpr (std::is_same_v<From, To>) {
        if (n > 0) std::memmove(to, from, static_cast<std::size_t>(n) * sizeof(To));
    } else {
        for (Size i = 0; i < n; ++i) to[i] = static_cast<To>(from[i]);
    }
}

// to(i, j) = from(i, j) for matrices without gaps, in any of the two orders; they may overlap when
// their types are the same. False when the copy that this needs cannot be had.
template <class From, class To>
bool carry(View<const From> from, View<To> to) {
    const Size count = to.height * to.width;
    if (from.column_stride == to.column_stride && from.row_stride == to.row_stride) {
        carry(count, from.data, to.data);
        return true;
    }
    if constexpr (std::is_same_v<From, To>) {
        const Apart<From> apart(from.data, count, to.data, count);
        if (!apart) return false;
        from.data = apart.data();
        kernel::copy(from, to);
    } else {
        // Tile by tile, since one of the two is walked across its lines.
        constexpr Size kTile = 16;
        for (Size i0 = 0; i0 < to.height; i0 += kTile)
            for (Size j0 = 0; j0 < to.width; j0 += kTile)
                for (Size i = i0; i < to.height && i < i0 + kTile; ++i)
                    for (Size j = j0; j < to.width && j < j0 + kTile; ++j)
                        to(i, j) = static_cast<To>(from(i, j));
    }
    return true;
}

}  // namespace nequar
