// Writes a dense matrix as a Matrix Market array file, each value with the fewest digits that read
// back to the same bits.
#pragma once

#include <string>

#include "files/output_file.h"

namespace program {

// values in row order, height x width.
template <class Real>
void write_matrix_market(OutputFile& file, const std::string& comment, int height, int width,
                         const Real* values);

extern template void write_matrix_market(OutputFile&, const std::string&, int, int, const double*);
extern template void write_matrix_market(OutputFile&, const std::string&, int, int, const float*);

}  // namespace program
