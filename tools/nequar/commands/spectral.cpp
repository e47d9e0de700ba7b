// nequar svd|eig|geig: singular values and eigenvalues, with their vectors.
#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "commands/describe.h"
#include "commands/factor_report.h"
#include "commands/plot_file.h"
#include "errors.h"
#include "long_step.h"
#include "numbers/dense.h"
#include "numbers/factors.h"
#include "numbers/residual.h"
#include "numbers/stopwatch.h"
#include "numbers/tolerance.h"

namespace program {
namespace {

template <class Real>
using Matrix = typename Twin<Real>::Matrix;

struct SpectralOptions : FactorOptions {
    std::string plot, b, method = "tridiagonal";
    bool values_only = false;
};

template <class Real>
std::vector<double> values_of(const typename Twin<Real>::Diagonal& diagonal) {
    std::vector<double> values;
    for (int i = 0; i < diagonal.vs(); ++i) values.push_back(static_cast<double>(diagonal[i]));
    return values;
}

// "12.3, 4.5, ... 0.6 (100 values)"
std::string listed(const std::vector<double>& values) {
    constexpr std::size_t at_each_end = 5;
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (values.size() > 2 * at_each_end && i == at_each_end) {
            text += "... ";
            i = values.size() - at_each_end;
        }
        text += fmt::format("{:.10g}{}", values[i], i + 1 < values.size() ? ", " : "");
    }
    return text + fmt::format(" ({} value{})", values.size(), values.size() == 1 ? "" : "s");
}

template <class Real>
Matrix<Real> column_of(const std::vector<double>& values) {
    Matrix<Real> column;
    if (column.c_Create(static_cast<int>(values.size()), 1) == nullptr)
        throw Failure("there is not enough memory for the values");
    for (std::size_t i = 0; i < values.size(); ++i)
        column[static_cast<int>(i)][0] = static_cast<Real>(values[i]);
    return column;
}

void print_iterations(int iterations, int limit) {
    print_line("iterations", std::to_string(iterations));
    if (iterations >= limit)
        print_warning("the limit of the iterations was reached: what is shown has not converged");
}

template <class Real>
void svd(const SpectralOptions& options) {
    if (options.values_only)
        require_place_for(options, {"S"});
    else
        require_place_for(options, {"U", "S", "V"});
    require_place_for_plot(options.plot);
    const typename Twin<Real>::Algebra algebra;
    const typename Twin<Real>::Solver solver;
    Matrix<Real> a, u, v;
    typename Twin<Real>::Diagonal s;
    read_dense<Real>(options.a, 6, a);
    const bool is_wide = a.mh() < a.mw();
    const int limit = iteration_limit(std::min(a.mh(), a.mw())), height = a.mh(), width = a.mw();
    int iterations = 0;
    double seconds = 0;
    {
        const LongStep step("decomposing A = U S V'");
        const Stopwatch watch;
        // A wide matrix by its transpose: A' = V S' U'
        Matrix<Real> tall;
        if (is_wide) algebra.tpm_Transpose_Matrix(&a, &tall);
        Matrix<Real>* left = options.values_only ? nullptr : is_wide ? &v : &u;
        Matrix<Real>* right = options.values_only ? nullptr : is_wide ? &u : &v;
        if (!solver.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
                is_wide ? &tall : &a, left, &s, right, limit, iterations))
            throw Failure(std::string("the decomposition failed:\n") +
                          solver.gft_Get_Failure_Trace().c_str());
        seconds = watch.seconds();
    }
    const std::vector<double> values = values_of<Real>(s);
    print_line("values", listed(values));
    const double tolerance = rounding_tolerance<Real>(height, width);
    std::size_t rank = 0;
    while (rank < values.size() && values[rank] > tolerance * values[0]) ++rank;
    print_line("rank", fmt::format("{} (values above {:.3g} of the largest)", rank, tolerance));
    if (rank == values.size())
        print_line("condition", fmt::format("{:.6g}", values.front() / values.back()));
    print_iterations(iterations, limit);
    if (options.values_only) {
        print_line("precision", Twin<Real>::precision);
        print_line("time", describe_seconds(seconds));
        if (!options.prefix.empty()) hand_out<Real>(options, {{"S", column_of<Real>(values)}});
    } else {
        Matrix<Real> scaled;
        if (scaled.c_Create(height, width, Real(0)) == nullptr)
            throw Failure("there is not enough memory for the product");
        for (std::size_t k = 0; k < values.size(); ++k)
            scaled[static_cast<int>(k)][static_cast<int>(k)] = s[static_cast<int>(k)];
        Matrix<Real> us, product;
        algebra.mmm_Multiply_Matrix_Matrix(&u, &scaled, &us);
        algebra.mmt_Multiply_Matrix_Tmatrix(&us, &v, &product);
        report_factors<Real>(options, "A = U S V'", a, product,
                             {{"U", u, true}, {"S", column_of<Real>(values)}, {"V", v, true}},
                             seconds);
    }
    write_plot(options.plot,
               spectrum_chart("Singular values of " + options.a, "singular value", values));
}

// Reads a symmetric matrix, whose upper triangle must equal the lower one.
template <class Real>
void read_symmetric(const std::string& path, Matrix<Real>& a, typename Twin<Real>::Symmetric& s) {
    const FileMatrix<Real> file = read_dense<Real>(path, 5, a);
    require_square(file, "this command");
    for (int y = 0; y < a.mh(); ++y)
        for (int x = 0; x < y; ++x)
            if (a[y][x] != a[x][y])
                throw InputError(file.path, file.size_line,
                                 fmt::format("a symmetric matrix is needed, and element ({}, {}) = "
                                             "{} differs from ({}, {}) = {}",
                                             y + 1, x + 1, a[y][x], x + 1, y + 1, a[x][y]));
    s.i_Import(&a);
    if (s.mh_Matrix_Height() != a.mh()) throw Failure("there is not enough memory");
}

template <class Real>
void eig(const SpectralOptions& options) {
    if (options.values_only)
        require_place_for(options, {"D"});
    else
        require_place_for(options, {"V", "D"});
    require_place_for_plot(options.plot);
    const typename Twin<Real>::Solver solver;
    Matrix<Real> a, v;
    typename Twin<Real>::Symmetric packed;
    typename Twin<Real>::Diagonal d;
    read_symmetric<Real>(options.a, a, packed);
    Matrix<Real>* vectors = options.values_only ? nullptr : &v;
    double seconds = 0;
    {
        const LongStep step("decomposing A = V D V'");
        const Stopwatch watch;
        bool done = false;
        if (options.method == "jacobi") {
            done = solver.devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(&packed,
                                                                                     vectors, &d);
        } else {
            const int limit = iteration_limit(a.mh());
            int iterations = 0;
            done = solver.devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(
                &packed, vectors, &d, limit, iterations);
            if (done) print_iterations(iterations, limit);
        }
        if (!done)
            throw Failure(std::string("the decomposition failed:\n") +
                          solver.gft_Get_Failure_Trace().c_str());
        seconds = watch.seconds();
    }
    const std::vector<double> values = values_of<Real>(d);
    print_line("values", listed(values));
    if (options.values_only) {
        print_line("precision", Twin<Real>::precision);
        print_line("time", describe_seconds(seconds));
        if (!options.prefix.empty()) hand_out<Real>(options, {{"D", column_of<Real>(values)}});
    } else {
        const typename Twin<Real>::Algebra algebra;
        Matrix<Real> scaled(v), product;
        for (int i = 0; i < scaled.mh(); ++i)
            for (int j = 0; j < scaled.mw(); ++j) scaled[i][j] *= d[j];
        algebra.mmt_Multiply_Matrix_Tmatrix(&scaled, &v, &product);
        report_factors<Real>(options, "A = V D V'", a, product,
                             {{"V", v, true}, {"D", column_of<Real>(values)}}, seconds);
    }
    write_plot(options.plot, spectrum_chart("Eigenvalues of " + options.a, "eigenvalue", values));
}

template <class Real>
void geig(const SpectralOptions& options) {
    require_place_for(options, {"X", "D"});
    require_place_for_plot(options.plot);
    const typename Twin<Real>::Solver solver;
    const typename Twin<Real>::Algebra algebra;
    Matrix<Real> a, b, x;
    typename Twin<Real>::Symmetric packed_a, packed_b;
    typename Twin<Real>::Diagonal d;
    read_symmetric<Real>(options.a, a, packed_a);
    read_symmetric<Real>(options.b, b, packed_b);
    if (a.mh() != b.mh())
        throw InputError(fmt::format("{}: B must be {} x {} as A is, it is {} x {}", options.b,
                                     a.mh(), a.mw(), b.mh(), b.mw()));
    double seconds = 0;
    {
        const LongStep step("solving A x = lambda B x");
        const Stopwatch watch;
        if (!solver.dgea_Do_Generalized_Eigen_Analysis(&packed_a, &packed_b, &x, &d))
            throw Failure(std::string("the generalized eigenvalues could not be found (B must be "
                                      "positive definite):\n") +
                          solver.gft_Get_Failure_Trace().c_str());
        seconds = watch.seconds();
    }
    const std::vector<double> values = values_of<Real>(d);
    print_line("values", listed(values));
    print_line("precision", Twin<Real>::precision);
    print_line("time", describe_seconds(seconds));
    Matrix<Real> ax, bx;
    algebra.mmm_Multiply_Matrix_Matrix(&a, &x, &ax);
    algebra.mmm_Multiply_Matrix_Matrix(&b, &x, &bx);
    for (int i = 0; i < bx.mh(); ++i)
        for (int j = 0; j < bx.mw(); ++j) bx[i][j] *= d[j];
    print_line("residual",
               fmt::format("{:.3g} = |A X - B X D| / |A X|", relative_difference<Real>(ax, bx)));
    hand_out<Real>(options, {{"X", x}, {"D", column_of<Real>(values)}});
    write_plot(options.plot,
               spectrum_chart(fmt::format("Eigenvalues of {} against {}", options.a, options.b),
                              "eigenvalue", values));
}

using Run = void (*)(const SpectralOptions&);

Action action(const std::shared_ptr<SpectralOptions>& options, Run in_double, Run in_float) {
    return [=] { options->in_float ? in_float(*options) : in_double(*options); };
}

}  // namespace

Action declare_svd(CLI::App& arguments) {
    auto options = std::make_shared<SpectralOptions>();
    declare_factor_options(arguments, *options);
    arguments.add_flag("--values", options->values_only, "only the singular values");
    declare_plot_option(arguments, options->plot, "draw the singular values, logarithmically");
    return action(options, svd<double>, svd<float>);
}

Action declare_eig(CLI::App& arguments) {
    auto options = std::make_shared<SpectralOptions>();
    declare_factor_options(arguments, *options);
    arguments.add_flag("--values", options->values_only, "only the eigenvalues");
    arguments.add_option("--method", options->method, "tridiagonal or jacobi")
        ->check(CLI::IsMember({"tridiagonal", "jacobi"}))
        ->capture_default_str();
    declare_plot_option(arguments, options->plot, "draw the eigenvalues, logarithmically");
    return action(options, eig<double>, eig<float>);
}

Action declare_geig(CLI::App& arguments) {
    auto options = std::make_shared<SpectralOptions>();
    declare_factor_options(arguments, *options);
    arguments.add_option("B.mtx", options->b, "the symmetric positive definite matrix")->required();
    declare_plot_option(arguments, options->plot, "draw the eigenvalues, logarithmically");
    return action(options, geig<double>, geig<float>);
}

}  // namespace program
