// The ways in which `nequar inverse` can invert a matrix, by the names of the ways to solve.
#pragma once

#include <string>
#include <vector>

#include "numbers/twin.h"

namespace program {

// The names, the default first.
std::vector<std::string> inverse_methods();

// Throws InputError for a matrix that is not symmetric where the method needs that, Failure with
// the library's trace where the matrix cannot be inverted in this way.
template <class Real>
void invert_by(const std::string& method, const typename Twin<Real>::Matrix& a,
               typename Twin<Real>::Matrix& inverse);

extern template void invert_by<double>(const std::string&, const CNqMatrix&, CNqMatrix&);
extern template void invert_by<float>(const std::string&, const CNqMatrixFloat&, CNqMatrixFloat&);

}  // namespace program
