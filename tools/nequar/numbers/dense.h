// From a file's matrix to the library's dense one.
#pragma once

#include "errors.h"
#include "files/file_matrix.h"
#include "numbers/twin.h"

namespace program {

// The bytes of this machine's memory.
double memory_of_this_machine();

// Throws InputError, with the line of the sizes, unless the matrix is square.
template <class Real>
void require_square(const FileMatrix<Real>& matrix, const char* command) {
    if (matrix.height == matrix.width) return;
    throw InputError(matrix.path, matrix.size_line,
                     std::string(command) + " needs a square matrix, this one is " +
                         std::to_string(matrix.height) + " x " + std::to_string(matrix.width));
}

// Throws InputError, with the line of the sizes, when `copies` dense matrices of this shape do not
// fit the memory of this machine.
template <class Real>
void require_memory(const FileMatrix<Real>& matrix, double copies) {
    const double bytes = copies * sizeof(Real) * matrix.height * matrix.width;
    if (bytes <= memory_of_this_machine()) return;
    throw InputError(matrix.path, matrix.size_line,
                     "as dense matrices of " + std::to_string(matrix.height) + " x " +
                         std::to_string(matrix.width) +
                         " elements this needs more memory than this machine has");
}

// The dense matrix; the elements that the file does not give are zero.
template <class Real>
void make_dense(const FileMatrix<Real>& from, typename Twin<Real>::Matrix& to) {
    if (to.c_Create(from.height, from.width, Real(0)) == nullptr)
        throw Failure("there is not enough memory for the matrix of " + from.path);
    Real* const* rows = to.p();
    from.for_each([rows](int row, int column, Real value) { rows[row][column] = value; });
}

}  // namespace program
