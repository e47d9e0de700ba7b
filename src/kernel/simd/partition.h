// Even partitions: `total` items in the fewest parts of at most `most` items, which differ by one
// at most. Tiles of nearly equal height leave no small remainder that would run at a fraction of
// the speed.
#pragma once

#include "kernel/simd/vector.h"

namespace nequar::kernel::NEQUAR_UNIT {

struct Partition {
    Size parts;
    Size small;   // size of a small part; a large one has one item more
    Size larges;  // the first `larges` parts are large
};

NEQUAR_INLINE Partition partition(Size total, Size most) {
    if (total <= most) return {1, total, 0};  // divisions take as long as a small product
    const Size parts = (total + most - 1) / most;
    const Size small = total / parts;
    return {parts, small, total - small * parts};
}

NEQUAR_INLINE Size size_of_part(const Partition& p, Size index) {
    return p.small + (index < p.larges ? 1 : 0);
}

template <class Number>
NEQUAR_INLINE Number smaller(Number a, Number b) {
    return a < b ? a : b;
}

NEQUAR_INLINE Size round_up(Size value, Size multiple) {
    return (value + multiple - 1) / multiple * multiple;
}

}  // namespace nequar::kernel::NEQUAR_UNIT
