// nequar determinant A.mtx: from the LU factorization with partial pivoting; where the determinant
// leaves the range of double, its logarithm is shown.
#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "command.h"
#include "commands/describe.h"
#include "errors.h"
#include "files/matrix_market_reader.h"
#include "long_step.h"
#include "numbers/dense.h"

namespace program {
namespace {

// mantissa * 2^exponent with 1/2 <= |mantissa| < 1: a product that neither over- nor underflows.
struct ScaledProduct {
    double mantissa = 1;
    long long exponent = 0;

    void multiply(double factor) {
        int of_factor = 0, of_product = 0;
        mantissa = std::frexp(mantissa * std::frexp(factor, &of_factor), &of_product);
        exponent += of_factor + of_product;
    }
};

std::string describe(const ScaledProduct& product) {
    constexpr long long shift_to_zero_or_infinity = 100000;
    const double value = std::ldexp(
        product.mantissa, static_cast<int>(std::clamp(product.exponent, -shift_to_zero_or_infinity,
                                                      shift_to_zero_or_infinity)));
    if (std::isnormal(value)) return fmt::format("{:.17g}", value);
    const double power = std::log10(std::fabs(product.mantissa)) +
                         static_cast<double>(product.exponent) * std::log10(2.0);
    return fmt::format("{}10^{:.12g}, beyond the range of double precision",
                       product.mantissa < 0 ? "-" : "", power);
}

// P A = L U  =>  det A = (-1)^interchanges u_11 u_22 ... u_nn
void determinant(const std::string& path) {
    const FileMatrix<double> file = read_matrix_market<double>(path);
    require_square(file, "determinant");
    require_memory(file, 2);
    CNqMatrix a;
    make_dense(file, a);
    print_line("matrix", describe(file));

    const LongStep step("factoring P A = L U");
    LCNqUtility_for_Linear_Equation solver;
    CNqVectorInt perm;
    int interchanges = 0;
    if (!solver.u_dlup_Decompose_into_LU_matrices_with_Partial_pivoting(&a, &perm, interchanges)) {
        if (!(solver.ged_Get_Error_Detail() == "singular"))
            throw Failure(std::string("the determinant cannot be computed:\n") +
                          solver.gft_Get_Failure_Trace().c_str());
        print_line("determinant", "0, a pivot is exactly zero");
        return;
    }
    ScaledProduct product;
    for (int i = 0; i < a.mh(); ++i) product.multiply(a[i][i]);
    if (interchanges % 2 != 0) product.mantissa = -product.mantissa;
    if (!std::isfinite(product.mantissa))
        throw Failure("the determinant is not finite: LU overflowed");
    print_line("determinant", describe(product));
}

}  // namespace

Action declare_determinant(CLI::App& arguments) {
    auto path = std::make_shared<std::string>();
    arguments.add_option("A.mtx", *path, "the square matrix")->required();
    return [path] { determinant(*path); };
}

}  // namespace program
