// B := A^T by counting sort, O(stored + width + height): a column of B is filled in the order in
// which the columns of A are visited, so its rows increase.
#pragma once

#include "sparse/algorithm/columns.h"

namespace nequar {

// The number of elements in the columns of a, as one walk over them finds it.
template <class Real>
Size stored_in_columns(const Columns<Real>& a);

// An element on its way, and how many of them a transposition of so many elements needs room for; 0
// when it goes without.
template <class Real>
struct Traveller {
    int row;
    int column;
    Real value;
};
template <class Real>
Size travellers(Size count, Size height);

// B has a.width rows and a.height columns; `start` has a.height + 1 pointers, `rows` and `values`
// room for the elements. All row numbers of A have to lie in 0 … a.height-1. `scratch` holds what
// `travellers` said, or is null.
template <class Real>
void transpose(const Columns<Real>& a, Traveller<Real>* scratch, int* start, int* rows,
               Real* values);

}  // namespace nequar
