// Blocks of a matrix, without their explicit zeros.
#pragma once

#include "sparse/algorithm/columns.h"

namespace nequar {

// The parts of columns x … x+width-1 between row y and the row `bottom`; answers the number of
// their elements other than 0.0.
template <class Real>
Size find_block(const Columns<Real>& a, Size x, Size y, Size width, Size bottom, Range* parts);

// Copies those elements that are not zero, their rows counted from y; answers their number. There
// has to be room for one element more than find_block counted.
template <class Real>
Size copy_block(const Columns<Real>& a, const Range* parts, Size width, Size y, int* start,
                int* rows, Real* values);

}  // namespace nequar
