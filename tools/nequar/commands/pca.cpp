// nequar pca data.csv: the principal components of a table of samples.
#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "commands/describe.h"
#include "commands/plot_file.h"
#include "errors.h"
#include "files/csv_reader.h"
#include "files/matrix_market_writer.h"
#include "files/output_file.h"
#include "long_step.h"
#include "numbers/stopwatch.h"
#include "numbers/table.h"
#include "plot/chart.h"

namespace program {
namespace {

struct PcaOptions {
    std::string data, plot, output;
    double ratio = 1e-10, residual = 0.05;
    bool in_float = false;
};

// What the first kept component explains, and the second: projections of every sample.
template <class Real>
Series projections(const typename Twin<Real>::Pca& pca, const Table<Real>& table) {
    Series series;
    for (int row = 0; row < table.height; ++row) {
        typename Twin<Real>::Vector coefficients;
        int count = std::min(2, pca.nbev_NumBer_of_Eigen_Vectors());
        if (!pca.dar_Do_Analysis_and_Reconstruction(row_of(table, row), count, &coefficients,
                                                    nullptr, nullptr, nullptr, nullptr, nullptr))
            fail("the projection", pca);
        series.x.push_back(static_cast<double>(coefficients[0]));
        series.y.push_back(coefficients.vs() > 1 ? static_cast<double>(coefficients[1]) : 0);
    }
    return series;
}

// The mean over all samples of |x - reconstruction|^2, by that of |x - mean|^2.
template <class Real>
double reconstruction_error(const typename Twin<Real>::Pca& pca, const Table<Real>& table,
                            int components) {
    double residual = 0, all = 0;
    for (int row = 0; row < table.height; ++row) {
        Real deviation_squared = 0, residual_squared = 0;
        int count = components;
        if (!pca.dar_Do_Analysis_and_Reconstruction(row_of(table, row), count, nullptr, nullptr,
                                                    &deviation_squared, &residual_squared, nullptr,
                                                    nullptr))
            fail("the reconstruction", pca);
        residual += static_cast<double>(residual_squared);
        all += static_cast<double>(deviation_squared);
    }
    return all == 0 ? 0 : residual / all;
}

std::string two_charts(const std::string& data, const std::vector<double>& values,
                       const Series& samples) {
    const std::string scree =
        spectrum_chart("Eigenvalues of the scatter of " + data, "eigenvalue", values);
    Chart plane;
    plane.title = "Samples by the first two components";
    plane.x_name = "first component";
    plane.y_name = "second component";
    plane.same_scale = true;
    plane.series = {samples};
    return above(scree, svg_of(plane));
}

template <class Real>
void pca(const PcaOptions& options) {
    require_place_for_plot(options.plot);
    std::unique_ptr<OutputFile> output;
    if (!options.output.empty()) output = std::make_unique<OutputFile>(options.output);
    const Table<Real> table = read_csv<Real>(options.data);
    if (table.height < 2) throw InputError(table.path + ": at least two samples are needed");
    typename Twin<Real>::Pca pca;
    double seconds = 0;
    {
        const LongStep step("finding the principal components");
        const Stopwatch watch;
        if (!pca.c_Create(table.height, table.width, static_cast<Real>(options.ratio),
                          static_cast<Real>(options.residual)))
            fail("the analysis", pca);
        for (int row = 0; row < table.height; ++row)
            if (!pca.inv_INput_a_Vector(row_of(table, row), nullptr)) fail("the analysis", pca);
        if (!pca.cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix())
            fail("the analysis", pca);
        seconds = watch.seconds();
    }
    const int kept = pca.nbev_NumBer_of_Eigen_Vectors();
    print_line("table", describe(table));
    print_line("precision", Twin<Real>::precision);
    print_line("time", describe_seconds(seconds));
    print_line("kept",
               fmt::format("{} eigenvalues above {:g} of the largest", kept, options.ratio));
    if (kept == 0) {
        fmt::print("All samples are equal: there is no component.\n");
        return;
    }
    std::vector<double> values;
    typename Twin<Real>::Matrix components;
    if (components.c_Create(table.width, kept) == nullptr)
        throw Failure("there is not enough memory for the components");
    double total = 0;
    for (int k = 0; k < kept; ++k) {
        typename Twin<Real>::Vector component;
        Real value = 0;
        if (!pca.gipc_Get_Information_about_a_Principal_Component(k, &component, &value))
            fail("the analysis", pca);
        values.push_back(static_cast<double>(value));
        total += values.back();
        for (int i = 0; i < table.width; ++i) components[i][k] = component[i];
    }
    const int wanted = std::min(pca.nbpc_NumBer_of_Principal_Components() + 1, kept);
    constexpr int shown = 12;
    fmt::print("\n{:>10}{:>20}{:>14}{:>14}   direction\n", "component", "variance", "share",
               "cumulated");
    double cumulated = 0;
    for (int k = 0; k < kept; ++k) {
        cumulated += values[static_cast<std::size_t>(k)];
        if (k >= shown) continue;
        std::string direction;
        for (int i = 0; i < table.width && i < 6; ++i)
            direction += fmt::format("{}{:.4g}", i == 0 ? "" : ", ", components[i][k]);
        fmt::print("{:>10}{:>20.10g}{:>13.3f}%{:>13.3f}%   ({}{})\n", k + 1,
                   values[static_cast<std::size_t>(k)] / (table.height - 1),
                   100 * values[static_cast<std::size_t>(k)] / total, 100 * cumulated / total,
                   direction, table.width > 6 ? ", ..." : "");
    }
    if (kept > shown) fmt::print("Shown in part; -o FILE writes all {} components.\n", kept);
    fmt::print("\n");
    print_line("enough", fmt::format("{} component{} explain{} more than {:g} % of the variance",
                                     wanted, wanted == 1 ? "" : "s", wanted == 1 ? "s" : "",
                                     100 * (1 - options.residual)));
    {
        const LongStep step("reconstructing the samples");
        print_line("error", fmt::format("{:.6g} of the variance is lost by reconstructing from "
                                        "{} component{}",
                                        reconstruction_error<Real>(pca, table, wanted), wanted,
                                        wanted == 1 ? "" : "s"));
    }
    if (output) {
        write_matrix_market(*output, "principal components of " + options.data + " by nequar",
                            components.mh(), components.mw(), components.p()[0]);
        output->commit();
        print_line("written to", options.output);
    }
    if (!options.plot.empty())
        write_plot(options.plot, two_charts(options.data, values, projections<Real>(pca, table)));
}

}  // namespace

Action declare_pca(CLI::App& arguments) {
    auto options = std::make_shared<PcaOptions>();
    arguments.add_option("data.csv", options->data, "samples, one a line")->required();
    arguments
        .add_option("--ratio", options->ratio,
                    "keep eigenvalues above this share of the largest; at most 0.1")
        ->check(CLI::Range(1e-300, 0.1))
        ->capture_default_str();
    arguments
        .add_option("--residual", options->residual,
                    "share of the variance that may stay unexplained")
        ->check([](const std::string& text) {
            double value = 0;
            return CLI::detail::lexical_cast(text, value) && value > 0 && value < 1
                       ? ""
                       : "the share must be above 0 and below 1";
        })
        ->capture_default_str();
    arguments.add_option("-o,--output", options->output, "write the components, one a column");
    arguments.add_flag("--float", options->in_float, "compute in single precision");
    declare_plot_option(arguments, options->plot,
                        "draw the eigenvalues, and the samples by the first two components");
    return [=] { options->in_float ? pca<float>(*options) : pca<double>(*options); };
}

}  // namespace program
