// nequar toeplitz|interpolate: systems whose structure solves them in quadratic time.
#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <memory>
#include <string>

#include "command.h"
#include "commands/describe.h"
#include "commands/factor_report.h"
#include "errors.h"
#include "files/csv_reader.h"
#include "files/matrix_market_reader.h"
#include "files/matrix_market_writer.h"
#include "long_step.h"
#include "numbers/dense.h"
#include "numbers/factors.h"
#include "numbers/stopwatch.h"

namespace program {
namespace {

struct StructuredOptions : FactorOptions {
    std::string action, b, at;
};

// A file that is one row or one column.
template <class Real>
typename Twin<Real>::Vector read_vector(const std::string& path) {
    const FileMatrix<Real> file = read_matrix_market<Real>(path);
    if (file.height != 1 && file.width != 1)
        throw InputError(file.path, file.size_line,
                         fmt::format("one row or one column is needed, this is {} x {}",
                                     file.height, file.width));
    typename Twin<Real>::Vector vector;
    if (vector.c_Create(std::max(file.height, file.width), Real(0)) == nullptr)
        throw Failure("there is not enough memory for the vector of " + path);
    file.for_each([&](int row, int column, Real value) { vector[std::max(row, column)] = value; });
    return vector;
}

template <class Real>
typename Twin<Real>::Matrix column_of(const typename Twin<Real>::Vector& vector) {
    typename Twin<Real>::Matrix column;
    if (column.c_Create(vector.vs(), 1) == nullptr)
        throw Failure("there is not enough memory for the result");
    for (int i = 0; i < vector.vs(); ++i) column[i][0] = vector[i];
    return column;
}

template <class Real>
void toeplitz(const StructuredOptions& options) {
    const bool is_solve = options.action == "solve";
    const char* name = is_solve ? "x" : "inverse";
    require_place_for(options, {name});
    if (is_solve && options.b.empty())
        throw InputError("toeplitz solve needs a right-hand side: toeplitz solve r.mtx b.mtx");
    if (!is_solve && !options.b.empty())
        throw InputError("toeplitz inverse takes the first row alone");
    const typename Twin<Real>::Vector r = read_vector<Real>(options.a);
    typename Twin<Real>::Toeplitz t;
    if (!t.im_Import(r.vs(), r)) fail("the matrix", t);
    print_line("matrix", fmt::format("{}: symmetric Toeplitz of order {}", options.a, r.vs()));
    typename Twin<Real>::Matrix dense;
    t.ex_Export(&dense, nullptr, nullptr);
    double seconds = 0;
    const typename Twin<Real>::Algebra algebra;
    if (is_solve) {
        const typename Twin<Real>::Vector b = read_vector<Real>(options.b);
        if (b.vs() != r.vs())
            throw InputError(
                fmt::format("{}: {} elements are needed as the matrix has rows, these "
                            "are {}",
                            options.b, r.vs(), b.vs()));
        typename Twin<Real>::Vector x(b), product;
        {
            const LongStep step("solving by Levinson's recursion");
            const Stopwatch watch;
            if (!t.slel_Solve_Linear_Equation_by_Levinson(x))
                fail("Levinson's recursion (every leading block must be positive definite)", t);
            seconds = watch.seconds();
        }
        algebra.mmv_Multiply_Matrix_Vector(&dense, &x, &product);
        print_line("time", describe_seconds(seconds));
        print_line("residual", fmt::format("{:.3g} = |T x - b| / |b|",
                                           relative_difference<Real>(column_of<Real>(b),
                                                                     column_of<Real>(product))));
        hand_out<Real>(options, {{name, column_of<Real>(x)}});
    } else {
        typename Twin<Real>::Matrix inverse;
        {
            const LongStep step("inverting by Trench's algorithm");
            const Stopwatch watch;
            if (!t.fimt_Find_Inverse_Matrix_by_Trench(&inverse, nullptr))
                fail("Trench's algorithm (every leading block must be positive definite)", t);
            seconds = watch.seconds();
        }
        print_line("time", describe_seconds(seconds));
        print_line("residual", fmt::format("{:.3g} = |T X - I| / (|T| |X|)",
                                           distance_from_inverse<Real>(dense, inverse)));
        hand_out<Real>(options, {{name, inverse}});
    }
}

// a0 + t (a1 + t (a2 + ...))
template <class Real>
Real polynomial_at(const typename Twin<Real>::Vector& a, Real t) {
    Real value = 0;
    for (int k = a.vs() - 1; k >= 0; --k) value = value * t + a[k];
    return value;
}

template <class Real>
void interpolate(const StructuredOptions& options) {
    require_place_for(options, {"coefficients"});
    const Table<Real> table = read_csv<Real>(options.a);
    if (table.width != 2)
        throw InputError(fmt::format("{}: two columns are needed, t and p(t), this has {}",
                                     options.a, table.width));
    typename Twin<Real>::Vector nodes, a;
    if (nodes.c_Create(table.height) == nullptr || a.c_Create(table.height) == nullptr)
        throw Failure("there is not enough memory for the points");
    for (int i = 0; i < table.height; ++i) {
        nodes[i] = table.at(i, 0);
        a[i] = table.at(i, 1);
    }
    typename Twin<Real>::Vandermonde v;
    if (!v.im_Import(nodes)) fail("the interpolation (all t must differ)", v);
    if (!v.fcp_Find_Coefficients_of_Polynomial(a)) fail("the interpolation", v);
    print_line("points", fmt::format("{}: {}", options.a, table.height));
    print_line("precision", Twin<Real>::precision);
    double worst = 0, largest = 0;
    for (int i = 0; i < table.height; ++i) {
        worst = std::max(worst, std::fabs(static_cast<double>(polynomial_at<Real>(a, nodes[i])) -
                                          static_cast<double>(table.at(i, 1))));
        largest = std::max(largest, std::fabs(static_cast<double>(table.at(i, 1))));
    }
    const double misses = worst == 0 ? 0 : worst / largest;
    print_line("misses",
               fmt::format("{:.3g} of the largest value, at the worst of the points", misses));
    if (!(misses < 1e-3))
        print_warning("the powers of t lose these points: shift and scale t, or use fewer points");
    hand_out<Real>(options, {{"coefficients", column_of<Real>(a)}});
    if (options.at.empty()) return;
    const Table<Real> at = read_csv<Real>(options.at);
    if (at.width != 1)
        throw InputError(
            fmt::format("{}: one column is needed, this has {}", options.at, at.width));
    fmt::print("\n{:>24}{:>24}\n", "t", "p(t)");
    for (int i = 0; i < at.height; ++i)
        fmt::print("{:>24}{:>24}\n", at.at(i, 0), polynomial_at<Real>(a, at.at(i, 0)));
}

}  // namespace

Action declare_toeplitz(CLI::App& arguments) {
    auto options = std::make_shared<StructuredOptions>();
    arguments.add_option("action", options->action, "solve or inverse")
        ->required()
        ->check(CLI::IsMember({"solve", "inverse"}));
    declare_factor_options(arguments, *options);
    arguments.get_option("A.mtx")->description("r.mtx, the first row of the matrix");
    arguments.add_option("b.mtx", options->b, "the right-hand side");
    return [=] { options->in_float ? toeplitz<float>(*options) : toeplitz<double>(*options); };
}

Action declare_interpolate(CLI::App& arguments) {
    auto options = std::make_shared<StructuredOptions>();
    declare_factor_options(arguments, *options);
    arguments.get_option("A.mtx")->description("points.csv: t and p(t), one point a line");
    arguments.add_option("--at", options->at, "evaluate the polynomial at these t, one a line");
    return
        [=] { options->in_float ? interpolate<float>(*options) : interpolate<double>(*options); };
}

}  // namespace program
