// Whether arrays hold what they should.
#pragma once

#include "core/view.h"

namespace nequar {

enum class SparseFault {
    none,
    bad_ends,         // the first start pointer is not 0, or the last not the number of elements
    decreasing,       // start pointers decrease
    too_many,         // a column has more elements than there are rows
    index_negative,   // of a row or an element of a vector
    index_too_large,  // likewise
    above_diagonal,   // in a column of which only the lower half may be stored
    not_increasing,   // row numbers of a column, indices of a vector
};

enum class StoredHalf { both, lower };

// The first fault, in this order: the ends; then the start pointers from the last column down; then
// the elements from the first one up, each against its bounds and then against the one before it.
SparseFault find_column_fault(Size height, Size width, const int* start, const int* rows,
                              Size count, StoredHalf half);

SparseFault find_run_fault(Size dimension, const int* indices, Size count);

// Whether all indices lie in 0 … bound-1; one pass without branches.
bool are_within(const int* indices, Size count, Size bound);

// Makes the start pointers increase from 0 to at most count. Answers the last of them.
Size put_in_order(int* start, Size width, Size count);

}  // namespace nequar
