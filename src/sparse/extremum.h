// The largest or smallest element of a sparse matrix, general or symmetric.
#pragma once

#include "sparse/algorithm/reduce.h"
#include "sparse/inside.h"

namespace nequar {

// Gives the element and its place (x, y); `impossible` when the zero element that should be it is
// not found.
template <class Real, class Sparse>
Real find_extremum(const Sparse& a, bool largest, int* x, int* y, bool& impossible) {
    const auto give_place = [x, y](int column, int row) {
        give(x, column);
        give(y, row);
    };
    const Columns<Real> columns = SparseInside<Real>::columns(a);
    if (columns.count == 0) {
        give_place(0, 0);
        return Real(0);
    }
    const Size at = largest ? position_of_largest(columns.values, columns.count)
                            : position_of_smallest(columns.values, columns.count);
    const Real value = columns.values[at];
    if ((largest ? value < Real(0) : value > Real(0)) && a.itze()) {
        int column = 0;
        int row = 0;
        if (a.fize(column, row))
            give_place(column, row);
        else
            impossible = true;
        return Real(0);
    }
    if (x != nullptr || y != nullptr)
        give_place(static_cast<int>(column_of(columns, at)), columns.rows[at]);
    return value;
}

}  // namespace nequar
