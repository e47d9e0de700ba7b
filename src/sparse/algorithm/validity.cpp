#include "sparse/algorithm/validity.h"

#include <algorithm>

namespace nequar {

SparseFault find_column_fault(Size height, Size width, const int* start, const int* rows,
                              Size count, StoredHalf half) {
    if (start[0] != 0 || start[width] != count) return SparseFault::bad_ends;
    for (Size c = width; c > 0; --c) {
        const Size length = Size(start[c]) - start[c - 1];
        if (length < 0) return SparseFault::decreasing;
        if (length > height) return SparseFault::too_many;
    }
    for (Size c = 0; c < width; ++c) {
        for (Size k = start[c]; k < start[c + 1]; ++k) {
            if (rows[k] >= height) return SparseFault::index_too_large;
            if (half == StoredHalf::lower && rows[k] < c) return SparseFault::above_diagonal;
            if (rows[k] < 0) return SparseFault::index_negative;
            if (k > start[c] && rows[k] <= rows[k - 1]) return SparseFault::not_increasing;
        }
    }
    return SparseFault::none;
}

SparseFault find_run_fault(Size dimension, const int* indices, Size count) {
    for (Size k = 0; k < count; ++k) {
        if (indices[k] < 0) return SparseFault::index_negative;
        if (indices[k] >= dimension) return SparseFault::index_too_large;
        if (k > 0 && indices[k] <= indices[k - 1]) return SparseFault::not_increasing;
    }
    return SparseFault::none;
}

bool are_within(const int* indices, Size count, Size bound) {
    unsigned largest = 0;  // a negative index is a very large one
    for (Size k = 0; k < count; ++k) largest = std::max(largest, static_cast<unsigned>(indices[k]));
    return count == 0 || largest < bound;
}

Size put_in_order(int* start, Size width, Size count) {
    start[0] = 0;
    for (Size c = 1; c <= width; ++c)
        start[c] = static_cast<int>(std::clamp<Size>(start[c], start[c - 1], count));
    return start[width];
}

}  // namespace nequar
