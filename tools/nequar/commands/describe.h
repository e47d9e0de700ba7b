// How results are worded, alike in all commands.
#pragma once

#include <string>

#include "files/file_matrix.h"

namespace program {

// "A.mtx: 13 x 13, 33 stored elements, symmetric"
template <class Real>
std::string describe(const FileMatrix<Real>& matrix);

extern template std::string describe(const FileMatrix<double>&);
extern template std::string describe(const FileMatrix<float>&);

// "12.3 us", "4.56 ms", "7.89 s"
std::string describe_seconds(double seconds);

// A line "name      value".
void print_line(const char* name, const std::string& value);

// A remark that the reader should not miss.
void print_warning(const std::string& text);

}  // namespace program
