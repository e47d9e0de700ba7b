// Reads the Matrix Market exchange format (NIST, R. Boisvert, R. Pozo, K. Remington, 1996):
//
//   %%MatrixMarket matrix coordinate|array real|integer|pattern general|symmetric|skew-symmetric
//   % comments
//   height width [stored elements]
//   row column [value]          (coordinate, counted from 1)
//   value                       (array, down the columns)
//
// The banner is read in any case; blank lines and comment lines may stand anywhere after it. What
// is refused, always with the line: complex files; values that are not finite or do not fit Real;
// an element given twice; an element above the diagonal of a symmetric or skew-symmetric file,
// whose format stores the lower triangle alone; fewer or more elements than declared; anything
// after the numbers of a line; sizes below 1 or beyond an int. A value too small for Real is read
// as zero.
#pragma once

#include <string>

#include "files/file_matrix.h"

namespace program {

template <class Real>
FileMatrix<Real> read_matrix_market(const std::string& path);

extern template FileMatrix<double> read_matrix_market(const std::string&);
extern template FileMatrix<float> read_matrix_market(const std::string&);

}  // namespace program
