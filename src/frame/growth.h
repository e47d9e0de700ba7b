// How growable containers grow.
#pragma once

#include <algorithm>
#include <limits>

#include "core/view.h"

namespace nequar {

inline constexpr Size kLargestIntCount = std::numeric_limits<int>::max();

// The room to take when `needed` elements do not fit into `room`: at least twice the old room, so
// that n appended elements are moved O(n) times in all; never more than an int counts.
inline Size grown_room(Size room, Size needed) {
    constexpr Size kSmallestRoom = 4;
    return std::max(needed, std::min(std::max(2 * room, kSmallestRoom), kLargestIntCount));
}

// Whether the positions lie in 0 … limit-1 and increase: strictly, or else without decreasing.
inline bool are_increasing(const int* positions, Size count, Size limit, bool strictly) {
    Size least = 0;
    for (Size k = 0; k < count; ++k) {
        if (positions[k] < least || positions[k] >= limit) return false;
        least = Size(positions[k]) + (strictly ? 1 : 0);
    }
    return true;
}

}  // namespace nequar
