// nequar rank|null|range|pinv|inverse: what a matrix reaches, what it loses, and how to undo it.
#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "command.h"
#include "commands/describe.h"
#include "commands/factor_report.h"
#include "errors.h"
#include "long_step.h"
#include "numbers/dense.h"
#include "numbers/factors.h"
#include "numbers/inverses.h"
#include "numbers/residual.h"
#include "numbers/stopwatch.h"
#include "numbers/tolerance.h"

namespace program {
namespace {

template <class Real>
using Matrix = typename Twin<Real>::Matrix;

constexpr double kNotGiven = -1;

struct SpaceOptions : FactorOptions {
    double tolerance = kNotGiven;
    std::string method;

    template <class Real>
    Real tolerance_for(const Matrix<Real>& of) const {
        return static_cast<Real>(tolerance == kNotGiven ? rounding_tolerance<Real>(of.mh(), of.mw())
                                                        : tolerance);
    }
};

// With as many steps as the order asks for; the library's own rank makes at most 100.
template <class Real>
bool rank_by_singular_values(const typename Twin<Real>::Solver& solver, const Matrix<Real>& a,
                             Real tolerance, int& found) {
    const typename Twin<Real>::Algebra algebra;
    Matrix<Real> tall;
    typename Twin<Real>::Vector values;
    if (a.mh() < a.mw()) algebra.tpm_Transpose_Matrix(&a, &tall);
    const int limit = iteration_limit(std::min(a.mh(), a.mw()));
    int iterations = 0;
    if (!solver.u_dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
            a.mh() < a.mw() ? &tall : &a, nullptr, &values, nullptr, limit, iterations))
        return false;
    if (iterations >= limit) throw Failure("the singular values did not converge");
    return solver.u_rsv_Rank_based_on_SVD(&values, tolerance, true, found);
}

template <class Real>
void rank(const SpaceOptions& options) {
    const typename Twin<Real>::Solver solver;
    Matrix<Real> a;
    read_dense<Real>(options.a, 4, a);
    const Real tolerance = options.tolerance_for<Real>(a);
    int found = 0;
    double seconds = 0;
    {
        const LongStep step("finding the rank");
        const Stopwatch watch;
        const bool done =
            options.method == "evd"
                ? solver.rev_Rank_based_on_Eigen_Value_decomposition(&a, tolerance, found)
            : options.method == "qr"
                ? solver.rqr_Rank_based_on_QR_decomposition_with_column_pivoting(&a, found)
                : rank_by_singular_values<Real>(solver, a, tolerance, found);
        if (!done) fail("the rank", solver);
        seconds = watch.seconds();
    }
    print_line("method", options.method);
    print_line("precision", Twin<Real>::precision);
    print_line("time", describe_seconds(seconds));
    if (options.method != "qr")
        print_line("tolerance", fmt::format("{:.3g} of the largest", tolerance));
    else
        print_warning("the falling 1-norms of pivoted QR misjudge the rank often; svd is reliable");
    print_line("rank", fmt::format("{} of {}", found, std::min(a.mh(), a.mw())));
}

// One basis of a subspace: the null space or the range.
template <class Real>
void basis(const SpaceOptions& options, bool is_null_space) {
    const char* name = is_null_space ? "N" : "R";
    require_place_for(options, {name});
    const typename Twin<Real>::Solver solver;
    const typename Twin<Real>::Algebra algebra;
    Matrix<Real> a, found;
    read_dense<Real>(options.a, 6, a);
    const Real tolerance = options.tolerance_for<Real>(a);
    int rank = 0;
    double seconds = 0;
    {
        const LongStep step(is_null_space ? "finding the null space" : "finding the range");
        const Stopwatch watch;
        const bool done = is_null_space
                              ? solver.fin_Find_Input_Null_vector_space(&a, tolerance, rank, &found,
                                                                        nullptr, nullptr, nullptr)
                              : solver.for_Find_Output_Range_vector_space(
                                    &a, tolerance, rank, &found, nullptr, nullptr, nullptr);
        if (!done) fail(is_null_space ? "the null space" : "the range", solver);
        seconds = watch.seconds();
    }
    print_line("precision", Twin<Real>::precision);
    print_line("time", describe_seconds(seconds));
    print_line("tolerance", fmt::format("{:.3g} of the largest singular value", tolerance));
    print_line("rank", std::to_string(rank));
    print_line("dimension",
               fmt::format("{} of the {}", found.mw(), is_null_space ? "null space" : "range"));
    if (found.mw() == 0) {
        fmt::print("It holds the zero vector alone.\n");
        return;
    }
    if (is_null_space) {
        Matrix<Real> image;
        algebra.mmm_Multiply_Matrix_Matrix(&a, &found, &image);
        print_line("residual",
                   fmt::format("{:.3g} = |A N| / (|A| |N|)", relative_size<Real>(image, a, found)));
    }
    print_line("orthogonal", fmt::format("{:.3g} = |I - {}'{}| / sqrt(columns)",
                                         distance_from_orthogonal<Real>(found), name, name));
    hand_out<Real>(options, {{name, found}});
}

template <class Real>
void null_space(const SpaceOptions& options) {
    basis<Real>(options, true);
}

template <class Real>
void range(const SpaceOptions& options) {
    basis<Real>(options, false);
}

template <class Real>
void pseudo_inverse(const SpaceOptions& options) {
    require_place_for(options, {"pinv"});
    const typename Twin<Real>::Solver solver;
    const typename Twin<Real>::Algebra algebra;
    Matrix<Real> a, inverse;
    read_dense<Real>(options.a, 6, a);
    const Real tolerance = options.tolerance_for<Real>(a);
    double seconds = 0;
    {
        const LongStep step("finding the pseudo-inverse");
        const Stopwatch watch;
        if (!solver.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, tolerance, &inverse))
            fail("the pseudo-inverse", solver);
        seconds = watch.seconds();
    }
    print_line("precision", Twin<Real>::precision);
    print_line("time", describe_seconds(seconds));
    print_line("tolerance", fmt::format("{:.3g} of the largest singular value", tolerance));
    Matrix<Real> product, rebuilt;
    algebra.mmm_Multiply_Matrix_Matrix(&a, &inverse, &product);
    algebra.mmm_Multiply_Matrix_Matrix(&product, &a, &rebuilt);
    print_line("residual",
               fmt::format("{:.3g} = |A - A A+ A| / |A|", relative_difference<Real>(a, rebuilt)));
    hand_out<Real>(options, {{"pinv", inverse}});
}

template <class Real>
void inverse(const SpaceOptions& options) {
    require_place_for(options, {"inverse"});
    Matrix<Real> a, inverse;
    const FileMatrix<Real> file = read_dense<Real>(options.a, 4, a);
    require_square(file, "inverse");
    double seconds = 0;
    {
        const LongStep step("inverting");
        const Stopwatch watch;
        invert_by<Real>(options.method, a, inverse);
        seconds = watch.seconds();
    }
    print_line("method", options.method);
    print_line("precision", Twin<Real>::precision);
    print_line("time", describe_seconds(seconds));
    const double residual = distance_from_inverse<Real>(a, inverse);
    const bool good = residual <= largest_good_residual<Real>(a.mh());
    print_line("residual",
               fmt::format("{:.3g} = |A X - I| / (|A| |X|), {}", residual, good ? "good" : "BAD"));
    if (!good)
        print_warning(
            "this is not the inverse to working precision; --method lup or qrd may find "
            "it");
    hand_out<Real>(options, {{"inverse", inverse}});
}

using Run = void (*)(const SpaceOptions&);

Action declare(CLI::App& arguments, bool with_tolerance, Run in_double, Run in_float,
               const std::vector<std::string>& methods) {
    auto options = std::make_shared<SpaceOptions>();
    declare_factor_options(arguments, *options);
    if (with_tolerance)
        arguments
            .add_option("--tolerance", options->tolerance,
                        "values up to this share of the largest count as zero; by default the "
                        "larger dimension times the rounding unit")
            ->check([](const std::string& text) {
                double value = -1;
                return CLI::detail::lexical_cast(text, value) && value >= 0 && value < 1
                           ? ""
                           : "the tolerance must be at least 0 and below 1";
            });
    if (!methods.empty()) {
        options->method = methods.front();
        arguments.add_option("--method", options->method, "how")
            ->check(CLI::IsMember(methods))
            ->capture_default_str();
    }
    return [=] { options->in_float ? in_float(*options) : in_double(*options); };
}

}  // namespace

Action declare_rank(CLI::App& arguments) {
    return declare(arguments, true, rank<double>, rank<float>, {"svd", "evd", "qr"});
}
Action declare_null(CLI::App& arguments) {
    return declare(arguments, true, null_space<double>, null_space<float>, {});
}
Action declare_range(CLI::App& arguments) {
    return declare(arguments, true, range<double>, range<float>, {});
}
Action declare_pinv(CLI::App& arguments) {
    return declare(arguments, true, pseudo_inverse<double>, pseudo_inverse<float>, {});
}
Action declare_inverse(CLI::App& arguments) {
    return declare(arguments, false, inverse<double>, inverse<float>, inverse_methods());
}

}  // namespace program
