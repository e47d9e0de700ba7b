// nequar solve A.mtx [b.mtx]: solves A x = b, prints how, how well, and x.
#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "command.h"
#include "commands/describe.h"
#include "errors.h"
#include "files/matrix_market_reader.h"
#include "files/matrix_market_writer.h"
#include "files/output_file.h"
#include "long_step.h"
#include "numbers/dense.h"
#include "numbers/methods.h"
#include "numbers/residual.h"

namespace program {
namespace {

struct SolveOptions {
    std::string a, b, output, expected;
    std::string method = "auto";
    bool in_float = false;
};

// Growth beyond this costs more than three digits.
constexpr double kLargeGrowth = 1e3;
// Rows that are printed of a long solution, from its start and from its end.
constexpr int kShownAtEachEnd = 10;

// Reads the right-hand sides (or the known solution) of a system of order n.
template <class Real>
void read_columns(const std::string& path, int n, const char* what,
                  typename Twin<Real>::Matrix& columns) {
    const FileMatrix<Real> file = read_matrix_market<Real>(path);
    if (file.height != n)
        throw InputError(file.path, file.size_line,
                         fmt::format("{} must have {} rows as the matrix has, this has {}", what, n,
                                     file.height));
    require_memory(file, 2);
    make_dense(file, columns);
}

template <class Real>
void require_symmetric(const FileMatrix<Real>& file, const typename Twin<Real>::Matrix& a,
                       const std::string& method) {
    for (int y = 0; y < a.mh(); ++y)
        for (int x = 0; x < y; ++x)
            if (a[y][x] != a[x][y])
                throw InputError(
                    file.path, file.size_line,
                    fmt::format("--method {} needs a symmetric matrix, and element ({}, {}) = {} "
                                "differs from ({}, {}) = {}",
                                method, y + 1, x + 1, a[y][x], x + 1, y + 1, a[x][y]));
}

template <class Real>
void print_how(const Solution<Real>& solution, const SolveOptions& options) {
    std::string how = fmt::format("{}, {}", solution.method->name, solution.method->equation);
    if (options.method == "auto") how += fmt::format(" (auto: {})", solution.reason);
    print_line("method", how);
    print_line("precision", Twin<Real>::precision);
    std::string time = "solve " + describe_seconds(solution.solve_seconds);
    if (solution.factor_seconds >= 0)
        time = "factor " + describe_seconds(solution.factor_seconds) + ", " + time;
    print_line("time", time);
}

template <class Real>
void print_how_well(const Solution<Real>& solution, int n, double residual) {
    const bool is_bad = !(residual <= largest_good_residual<Real>(n));
    const bool is_large_growth = std::isnan(solution.growth) || solution.growth > kLargeGrowth;
    if (solution.growth == -1)
        print_line("growth", "not known: this method keeps no factors");
    else
        print_line("growth", fmt::format("{:.3g} = {}{}", solution.growth, solution.growth_is,
                                         is_large_growth ? ", LARGE" : ""));
    print_line("residual", fmt::format("{:.3g} = |Ax - b| / (|A| |x| + |b|), {}", residual,
                                       is_bad ? "BAD" : "good"));
    const bool is_pivoted = solution.method->name == std::string("lup");
    const char* better = is_pivoted ? "an orthogonal factorization (qrd)"
                                    : "partial pivoting (lup) or an orthogonal factorization (qrd)";
    if (is_bad)
        print_warning(
            fmt::format("the residual is bad: x does not solve this system to working "
                        "precision; {} may",
                        better));
    else if (is_large_growth)
        print_warning(
            fmt::format("the factors grew by much and digits may be lost; {} is safer", better));
}

// Of a solution's digits about log10(condition x backward error) are lost.
template <class Real>
void print_condition(double condition, double residual) {
    constexpr int all = std::numeric_limits<Real>::digits10;
    const double unit = static_cast<double>(std::numeric_limits<Real>::epsilon());
    const double relative_error = condition * std::max(residual, unit);
    const int digits =
        relative_error < 1 ? std::min(all, static_cast<int>(-std::log10(relative_error))) : 0;
    print_line("condition", fmt::format("{:.3g} (1-norm, estimate): about {} of {} digits of x are "
                                        "right",
                                        condition, digits, all));
    if (!(condition * unit < 1))
        print_warning("the matrix is singular to working precision: x may have no right digit");
    else if (condition * std::sqrt(unit) > 1)
        print_warning("the matrix is nearly singular: small changes of A or b change x by much");
}

// Rows of x, beside the known ones when there are any.
template <class Real>
void print_solution(const typename Twin<Real>::Matrix& x,
                    const std::optional<typename Twin<Real>::Matrix>& known) {
    constexpr int width = std::numeric_limits<Real>::max_digits10 + 8;
    constexpr int shown_columns = 4;
    const int n = x.mh(), columns = std::min(x.mw(), shown_columns);
    std::string head = fmt::format("\n{:>8}", "");
    for (int c = 0; c < columns; ++c) {
        head += fmt::format("{:>{}}", x.mw() == 1 ? "x" : fmt::format("x{}", c + 1), width);
        if (known) head += fmt::format("{:>{}}{:>12}", "known", width, "difference");
    }
    fmt::print("{}\n", head);
    for (int i = 0; i < n; ++i) {
        if (n > 2 * kShownAtEachEnd && i == kShownAtEachEnd) {
            fmt::print("{:>8}\n", "...");
            i = n - kShownAtEachEnd;
        }
        std::string line = fmt::format("{:>8}", i + 1);
        for (int c = 0; c < columns; ++c) {
            line += fmt::format("{:>{}}", x[i][c], width);
            if (known)
                line += fmt::format("{:>{}}{:>12.1e}", (*known)[i][c], width,
                                    static_cast<double>(x[i][c]) - (*known)[i][c]);
        }
        fmt::print("{}\n", line);
    }
    if (n > 2 * kShownAtEachEnd || columns < x.mw())
        fmt::print("Shown in part; -o FILE writes all {} x {} elements.\n", n, x.mw());
}

// max |x - known| / max |known|
template <class Real>
double largest_difference(const typename Twin<Real>::Matrix& x,
                          const typename Twin<Real>::Matrix& known) {
    double difference = 0, size = 0;
    for (int i = 0; i < x.mh(); ++i) {
        for (int c = 0; c < x.mw(); ++c) {
            difference =
                std::max(difference, std::fabs(static_cast<double>(x[i][c]) - known[i][c]));
            size = std::max(size, std::fabs(static_cast<double>(known[i][c])));
        }
    }
    return difference == 0 ? 0 : difference / size;
}

template <class Real>
bool is_finite(const typename Twin<Real>::Matrix& x) {
    for (int i = 0; i < x.mh(); ++i)
        for (int c = 0; c < x.mw(); ++c)
            if (!std::isfinite(x[i][c])) return false;
    return true;
}

template <class Real>
void solve(const SolveOptions& options) {
    using Matrix = typename Twin<Real>::Matrix;
    std::optional<OutputFile> output;  // first, so that no work is lost for want of a place
    if (!options.output.empty()) output.emplace(options.output);
    const FileMatrix<Real> file = read_matrix_market<Real>(options.a);
    require_square(file, "solve");
    require_memory(file, 3);  // the matrix, its factors, and the library's working copy
    const int n = file.height;

    Matrix b;
    if (options.b.empty()) {
        if (b.c_Create(n, 1, Real(1)) == nullptr) throw Failure("there is not enough memory for b");
    } else {
        read_columns<Real>(options.b, n, "the right-hand side", b);
    }
    std::optional<Matrix> known;
    if (!options.expected.empty()) {
        read_columns<Real>(options.expected, n, "the known solution", known.emplace());
        if (known->mw() != b.mw())
            throw InputError(options.expected +
                             ": the known solution must have as many columns as "
                             "the right-hand side");
    }
    Matrix a;
    make_dense(file, a);
    const Method* method = find_method(options.method);
    if (method != nullptr && method->needs_symmetry) require_symmetric(file, a, options.method);

    print_line("matrix", describe(file));
    print_line("right side",
               options.b.empty() ? "ones" : fmt::format("{}: {} x {}", options.b, n, b.mw()));
    const Solution<Real> solution = solve_by<Real>(options.method, a, b);
    if (!is_finite<Real>(solution.x))
        throw Failure(
            fmt::format("the solution by {} overflowed: it is not finite. An orthogonal "
                        "factorization (qrd) or double precision may have it",
                        solution.method->name));
    print_how(solution, options);
    double residual = 0;
    {
        const LongStep step("computing the residual");
        residual = relative_residual(file, solution.x.p()[0], b.p()[0], b.mw());
    }
    print_how_well(solution, n, residual);
    print_condition<Real>(estimate_condition<Real>(a), residual);

    if (output) {
        const LongStep step("writing " + options.output);
        write_matrix_market(
            *output, "solution of A x = b by nequar, method " + std::string(solution.method->name),
            n, b.mw(), solution.x.p()[0]);
        output->commit();
        print_line("written to", options.output);
    }
    if (!output || known) print_solution<Real>(solution.x, known);
    if (known) {
        const double difference = largest_difference<Real>(solution.x, *known);
        const double allowed = std::sqrt(static_cast<double>(std::numeric_limits<Real>::epsilon()));
        const bool agrees = difference <= allowed;
        fmt::print(
            "\nThe solution {} the known one; the largest difference is {:.2g} of its size.\n",
            agrees ? "reproduces" : "DIFFERS from", difference);
        if (!agrees) throw Failure("the solution differs from the known one");
    }
}

std::string describe_methods() {
    std::string text =
        "Methods:\n  auto   llt for a symmetric positive definite matrix, otherwise lup\n";
    for (const Method& method : method_table())
        text += fmt::format("  {:<6} {}: {}\n", method.name, method.equation, method.summary);
    text +=
        "  0..9   the library's own numbers: gje, lud, qrd, qld, rqd, lqd, svd, llt, uut, evd\n";
    return text;
}

}  // namespace

Action declare_solve(CLI::App& arguments) {
    auto options = std::make_shared<SolveOptions>();
    std::vector<std::string> names{"auto"};
    for (const Method& method : method_table()) names.emplace_back(method.name);
    for (char number = '0'; number <= '9'; ++number) names.emplace_back(1, number);

    const auto not_empty = [](const std::string& name) {
        return name.empty() ? "the name of the file is empty" : "";
    };
    arguments.add_option("A.mtx", options->a, "the square matrix")->required();
    arguments.add_option("b.mtx", options->b, "right-hand sides, one a column; without them, ones");
    arguments.add_option("--method", options->method, "how to solve, see below")
        ->check(CLI::IsMember(names))
        ->capture_default_str();
    arguments.add_flag("--float", options->in_float, "compute in single precision");
    arguments.add_option("-o,--output", options->output, "write x to this file")->check(not_empty);
    arguments
        .add_option("--expect", options->expected,
                    "compare x with the known solution in this file; status 1 if they differ")
        ->check(not_empty);
    arguments.footer(describe_methods());
    return [options] { options->in_float ? solve<float>(*options) : solve<double>(*options); };
}

}  // namespace program
