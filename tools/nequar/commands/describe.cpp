#include "commands/describe.h"

#include <fmt/core.h>

namespace program {

template <class Real>
std::string describe(const FileMatrix<Real>& matrix) {
    std::string text =
        fmt::format("{}: {} x {}, {} stored element{}", matrix.path, matrix.height, matrix.width,
                    matrix.values.size(), matrix.values.size() == 1 ? "" : "s");
    if (matrix.symmetry == Symmetry::symmetric) text += ", symmetric";
    if (matrix.symmetry == Symmetry::skew) text += ", skew-symmetric";
    return text;
}

template std::string describe(const FileMatrix<double>&);
template std::string describe(const FileMatrix<float>&);

std::string describe_seconds(double seconds) {
    if (seconds < 1e-3) return fmt::format("{:.3g} us", seconds * 1e6);
    if (seconds < 1) return fmt::format("{:.3g} ms", seconds * 1e3);
    return fmt::format("{:.2f} s", seconds);
}

void print_line(const char* name, const std::string& value) {
    fmt::print("{:<11} {}\n", name, value);
}

void print_warning(const std::string& text) {
    fmt::print("warning     {}\n", text);
}

}  // namespace program
