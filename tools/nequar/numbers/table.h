// From a table of samples to the library's matrix, one sample a row.
#pragma once

#include "errors.h"
#include "files/csv_reader.h"
#include "numbers/twin.h"

namespace program {

template <class Real>
void make_matrix(const Table<Real>& table, typename Twin<Real>::Matrix& matrix) {
    if (matrix.c_Create(table.height, table.width) == nullptr)
        throw Failure("there is not enough memory for the table of " + table.path);
    for (int row = 0; row < table.height; ++row)
        for (int column = 0; column < table.width; ++column)
            matrix[row][column] = table.at(row, column);
}

template <class Real>
typename Twin<Real>::Vector row_of(const Table<Real>& table, int row) {
    typename Twin<Real>::Vector vector;
    if (vector.c_Create(table.width) == nullptr)
        throw Failure("there is not enough memory for the table of " + table.path);
    for (int column = 0; column < table.width; ++column) vector[column] = table.at(row, column);
    return vector;
}

// "data.csv: 150 lines of 4 numbers"
template <class Real>
std::string describe(const Table<Real>& table) {
    return table.path + ": " + std::to_string(table.height) + " lines of " +
           std::to_string(table.width) + " numbers";
}

}  // namespace program
