// nequar sparse-info|transpose|add: matrices that are never made dense.
#include "numbers/sparse.h"

#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "command.h"
#include "commands/describe.h"
#include "commands/plot_file.h"
#include "errors.h"
#include "files/matrix_market_reader.h"
#include "files/output_file.h"
#include "long_step.h"
#include "numbers/norms.h"
#include "numbers/stopwatch.h"
#include "plot/chart.h"

namespace program {
namespace {

struct SparseOptions {
    std::string a, b, output, plot;
    double weight = 1;
    bool in_float = false;
};

void sparse_info(const SparseOptions& options) {
    require_place_for_plot(options.plot);
    const FileMatrix<double> file = read_matrix_market<double>(options.a);
    CNqSmatrix matrix;
    make_sparse(file, matrix);
    MatrixFacts facts;
    {
        const LongStep step("examining " + options.a);
        facts = find_facts(file);
    }
    const int height = matrix.mh_Matrix_Height(), width = matrix.mw_Matrix_Width();
    const int stored = matrix.nee_Number_of_Enrolled_Elements();
    print_line("matrix", describe(file));
    print_line("stored", fmt::format("{} elements, both of a mirrored pair; {:.3g} on average in a "
                                     "column",
                                     stored, static_cast<double>(stored) / width));
    print_line("density",
               fmt::format("{:.4g} % of {:.6g} elements", 100.0 * stored / height / width,
                           static_cast<double>(height) * width));
    if (facts.nonzeros < static_cast<std::size_t>(stored))
        print_line("zeros", fmt::format("{} stored elements are zero",
                                        static_cast<std::size_t>(stored) - facts.nonzeros));
    print_line("bandwidth", fmt::format("{} below, {} above the diagonal", facts.lower_bandwidth,
                                        facts.upper_bandwidth));
    print_line("symmetry", height != width   ? "none: not square"
                           : facts.symmetric ? "symmetric"
                           : facts.skew      ? "skew-symmetric"
                                             : "unsymmetric");
    double deviation = 0, smallest = 0;
    int x_max = 0, y_max = 0, x_min = 0, y_min = 0;
    const double mean = matrix.mst_Mean_and_Stdev(deviation);
    const double largest =
        matrix.maxmin_Maximum_and_Minimum(smallest, &x_max, &y_max, &x_min, &y_min);
    print_line("mean", fmt::format("{:.10g}, standard deviation {:.10g}", mean, deviation));
    print_line("maximum",
               fmt::format("{:.15g} at row {}, column {}", largest, y_max + 1, x_max + 1));
    print_line("minimum",
               fmt::format("{:.15g} at row {}, column {}", smallest, y_min + 1, x_min + 1));
    print_line("norm 1", fmt::format("{:.15g}", facts.norm_1));
    print_line("norm inf", fmt::format("{:.15g}", facts.norm_infinity));
    print_line("norm F", fmt::format("{:.15g}", matrix.nf_Norm_Frobenius()));
    if (options.plot.empty()) return;
    PatternPicture picture(
        fmt::format("{}: {} x {}, {} stored elements", options.a, height, width, stored), height,
        width);
    file.for_each([&](int row, int column, double) { picture.mark(row, column); });
    write_plot(options.plot, picture.svg());
}

template <class Real>
void write_result(const SparseOptions& options, const std::string& what, OutputFile& output,
                  const typename Twin<Real>::Sparse& matrix, double seconds) {
    print_line("result",
               fmt::format("{} x {}, {} stored elements", matrix.mh_Matrix_Height(),
                           matrix.mw_Matrix_Width(), matrix.nee_Number_of_Enrolled_Elements()));
    print_line("time", describe_seconds(seconds));
    write_coordinates<Real>(output, what + " by nequar", matrix);
    output.commit();
    print_line("written to", options.output);
}

template <class Real>
void transpose(const SparseOptions& options) {
    OutputFile output(options.output);
    const FileMatrix<Real> file = read_matrix_market<Real>(options.a);
    typename Twin<Real>::Sparse a, t;
    make_sparse(file, a);
    print_line("matrix", describe(file));
    const Stopwatch watch;
    if (!a.t_Transpose(&t)) fail("the transposition", a);
    write_result<Real>(options, "transpose of " + options.a, output, t, watch.seconds());
}

template <class Real>
void add(const SparseOptions& options) {
    OutputFile output(options.output);
    const FileMatrix<Real> file = read_matrix_market<Real>(options.a);
    const FileMatrix<Real> file_b = read_matrix_market<Real>(options.b);
    if (file.height != file_b.height || file.width != file_b.width)
        throw InputError(file_b.path, file_b.size_line,
                         fmt::format("B must be {} x {} as A is, this is {} x {}", file.height,
                                     file.width, file_b.height, file_b.width));
    typename Twin<Real>::Sparse a, b;
    make_sparse(file, a);
    make_sparse(file_b, b);
    print_line("matrix", describe(file));
    print_line("matrix", describe(file_b));
    const Stopwatch watch;
    if (!(options.weight == 1
              ? a.amm_Add_Matrix_Matrix(&b)
              : a.ammw_Add_Matrix_Matrix_with_Weight(&b, static_cast<Real>(options.weight))))
        fail("the addition", a);
    const double seconds = watch.seconds();
    write_result<Real>(options, fmt::format("{} + {} {}", options.a, options.weight, options.b),
                       output, a, seconds);
}

using Run = void (*)(const SparseOptions&);

Action action(const std::shared_ptr<SparseOptions>& options, Run in_double, Run in_float) {
    return [=] { options->in_float ? in_float(*options) : in_double(*options); };
}

void declare_output(CLI::App& arguments, SparseOptions& options) {
    arguments.add_flag("--float", options.in_float, "compute in single precision");
    arguments.add_option("-o,--output", options.output, "write the result to this file")
        ->required()
        ->check([](const std::string& name) {
            return name.empty() ? "the name of the file is empty" : "";
        });
}

}  // namespace

Action declare_sparse_info(CLI::App& arguments) {
    auto options = std::make_shared<SparseOptions>();
    arguments.add_option("A.mtx", options->a, "the matrix")->required();
    declare_plot_option(arguments, options->plot, "draw where elements are stored");
    return [options] { sparse_info(*options); };
}

Action declare_transpose(CLI::App& arguments) {
    auto options = std::make_shared<SparseOptions>();
    arguments.add_option("A.mtx", options->a, "the matrix")->required();
    declare_output(arguments, *options);
    return action(options, transpose<double>, transpose<float>);
}

Action declare_add(CLI::App& arguments) {
    auto options = std::make_shared<SparseOptions>();
    arguments.add_option("A.mtx", options->a, "the first matrix")->required();
    arguments.add_option("B.mtx", options->b, "the second matrix, of the same shape")->required();
    arguments.add_option("--weight", options->weight, "A + weight B")
        ->check([](const std::string& text) {
            double value = 0;
            return CLI::detail::lexical_cast(text, value) && value - value == 0
                       ? ""
                       : "the weight must be a finite number";
        });
    declare_output(arguments, *options);
    return action(options, add<double>, add<float>);
}

}  // namespace program
