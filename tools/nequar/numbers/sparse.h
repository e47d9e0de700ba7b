// From a file's matrix to the library's sparse one, and to a coordinate file.
#pragma once

#include <string>

#include "files/file_matrix.h"
#include "files/output_file.h"
#include "numbers/twin.h"

namespace program {

// Every element that the file determines, both of a mirrored pair; explicit zeros stay stored.
// Throws Failure when memory is short, InputError when there are more elements than an int counts.
template <class Real>
void make_sparse(const FileMatrix<Real>& from, typename Twin<Real>::Sparse& to);

// A coordinate file, columns in order and rows within them.
template <class Real>
void write_coordinates(OutputFile& file, const std::string& comment,
                       const typename Twin<Real>::Sparse& matrix);

extern template void make_sparse(const FileMatrix<double>&, CNqSmatrix&);
extern template void make_sparse(const FileMatrix<float>&, CNqSmatrixFloat&);
extern template void write_coordinates<double>(OutputFile&, const std::string&, const CNqSmatrix&);
extern template void write_coordinates<float>(OutputFile&, const std::string&,
                                              const CNqSmatrixFloat&);

}  // namespace program
