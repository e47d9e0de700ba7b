// nequar info A.mtx: what a matrix file holds, without making the matrix dense.
#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "command.h"
#include "commands/describe.h"
#include "files/matrix_market_reader.h"
#include "long_step.h"
#include "numbers/norms.h"

namespace program {
namespace {

const char* name_of(Format format) {
    return format == Format::array ? "array" : "coordinate";
}

const char* name_of(Field field) {
    switch (field) {
        case Field::integer:
            return "integer";
        case Field::pattern:
            return "pattern (every stored element is 1)";
        default:
            return "real";
    }
}

const char* name_of(Symmetry symmetry) {
    switch (symmetry) {
        case Symmetry::symmetric:
            return "symmetric";
        case Symmetry::skew:
            return "skew-symmetric";
        default:
            return "general";
    }
}

std::string symmetry_found(const FileMatrix<double>& matrix, const MatrixFacts& facts) {
    if (matrix.height != matrix.width) return "none: not square";
    if (facts.nonzeros == 0) return "symmetric and skew-symmetric: all zero";
    if (facts.symmetric) return "symmetric";
    return facts.skew ? "skew-symmetric" : "unsymmetric";
}

void info(const std::string& path) {
    const FileMatrix<double> matrix = read_matrix_market<double>(path);
    MatrixFacts facts;
    {
        const LongStep step("examining " + path);
        facts = find_facts(matrix);
    }
    const double cells = static_cast<double>(matrix.height) * matrix.width;
    print_line("file", fmt::format("{}: {}, {}, stored as {}", path, name_of(matrix.format),
                                   name_of(matrix.field), name_of(matrix.symmetry)));
    print_line("shape", fmt::format("{} x {}", matrix.height, matrix.width));
    print_line("stored", fmt::format("{} elements", matrix.values.size()));
    print_line("nonzero", fmt::format("{} elements, {:.3g} % of the matrix", facts.nonzeros,
                                      100.0 * static_cast<double>(facts.nonzeros) / cells));
    print_line("symmetry", symmetry_found(matrix, facts));
    print_line("bandwidth", fmt::format("{} below, {} above the diagonal", facts.lower_bandwidth,
                                        facts.upper_bandwidth));
    print_line("norm 1", fmt::format("{:.15g}", facts.norm_1));
    print_line("norm inf", fmt::format("{:.15g}", facts.norm_infinity));
    print_line("norm F", fmt::format("{:.15g}", facts.norm_frobenius));
    print_line("norm max", fmt::format("{:.15g}", facts.norm_max));
}

}  // namespace

Action declare_info(CLI::App& arguments) {
    auto path = std::make_shared<std::string>();
    arguments.add_option("A.mtx", *path, "the matrix")->required();
    return [path] { info(*path); };
}

}  // namespace program
