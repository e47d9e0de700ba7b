// The messages of the validity tests.
#pragma once

#include "sparse/algorithm/validity.h"

namespace nequar {

inline const char* text_of_column_fault(SparseFault fault) {
    switch (fault) {
        case SparseFault::bad_ends:
            return "bad start-pointer 0";
        case SparseFault::decreasing:
            return "decreasing start pointers";
        case SparseFault::too_many:
            return "bad start-pointer";
        case SparseFault::not_increasing:
            return "not increasing order";
        default:
            return "bad row-index";
    }
}

inline const char* text_of_half_fault(SparseFault fault) {
    switch (fault) {
        case SparseFault::index_too_large:
            return "r[k]>=hh";
        case SparseFault::above_diagonal:
            return "r[k]<x";
        default:
            return text_of_column_fault(fault);
    }
}

inline const char* text_of_run_fault(SparseFault fault) {
    switch (fault) {
        case SparseFault::index_negative:
            return "negative index";
        case SparseFault::index_too_large:
            return "index is greater than dimension";
        default:
            return "not increasing order";
    }
}

}  // namespace nequar
