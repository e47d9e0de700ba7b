// nequar stats|density: what a table of samples says about its columns, and about the density of
// the population behind it.
#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <limits>
#include <memory>
#include <string>

#include "command.h"
#include "commands/describe.h"
#include "errors.h"
#include "files/csv_reader.h"
#include "files/output_file.h"
#include "long_step.h"
#include "numbers/table.h"

namespace program {
namespace {

struct StatisticsOptions {
    std::string data, at, output, method = "knn";
    int k = 0;
    double h = 0;
    bool in_float = false;
};

template <class Real>
void stats(const StatisticsOptions& options) {
    const Table<Real> table = read_csv<Real>(options.data);
    const typename Twin<Real>::Random statistics;
    print_line("table", describe(table));
    print_line("precision", Twin<Real>::precision);
    fmt::print("\n{:<16}{:>10}{:>24}{:>24}{:>16}{:>16}\n", "column", "count", "mean",
               "standard deviation", "minimum", "maximum");
    constexpr int digits = std::numeric_limits<Real>::max_digits10 - 1;
    for (int column = 0; column < table.width; ++column) {
        typename Twin<Real>::Vector values;
        if (values.c_Create(table.height) == nullptr)
            throw Failure("there is not enough memory for a column");
        Real low = table.at(0, column), high = low;
        for (int row = 0; row < table.height; ++row) {
            values[row] = table.at(row, column);
            low = std::min(low, values[row]);
            high = std::max(high, values[row]);
        }
        int count = 0;
        Real mean = 0, variance = 0;
        if (!statistics.csn_Compute_Statistics_of_random_Numbers(values, nullptr, 0, table.height,
                                                                 &count, &mean, &variance))
            fail("the statistics", statistics);
        // of a sample: the sum of squares by count - 1
        const double deviation =
            count > 1 ? std::sqrt(static_cast<double>(variance) * count / (count - 1)) : 0;
        const std::string name = table.names.empty()
                                     ? std::to_string(column + 1)
                                     : table.names[static_cast<std::size_t>(column)];
        fmt::print("{:<16}{:>10}{:>24.{}g}{:>24.{}g}{:>16.8g}{:>16.8g}\n", name, count, mean,
                   digits, deviation, digits, low, high);
    }
    fmt::print("The standard deviation is the sample's: squares summed, by count - 1.\n");
}

template <class Real>
void density(const StatisticsOptions& options) {
    std::unique_ptr<OutputFile> output;
    if (!options.output.empty()) output = std::make_unique<OutputFile>(options.output);
    const Table<Real> samples = read_csv<Real>(options.data);
    const Table<Real> points = options.at.empty() ? samples : read_csv<Real>(options.at);
    if (points.width != samples.width)
        throw InputError(
            fmt::format("{}: each point needs {} numbers as the samples have, these "
                        "have {}",
                        points.path, samples.width, points.width));
    const bool is_knn = options.method == "knn";
    const int k = options.k > 0
                      ? options.k
                      : std::max(1, static_cast<int>(std::lround(std::sqrt(samples.height))));
    if (is_knn && k > samples.height)
        throw InputError(fmt::format("{}: there are {} samples, fewer than k = {} neighbours",
                                     samples.path, samples.height, k));
    if (!is_knn && !(options.h > 0))
        throw InputError("--method parzen needs a radius above zero, --h RADIUS");
    typename Twin<Real>::Matrix population, queries;
    make_matrix(samples, population);
    make_matrix(points, queries);
    typename Twin<Real>::Random statistics;
    typename Twin<Real>::Vector p;
    {
        const LongStep step("estimating the density");
        const bool done =
            is_knn ? statistics.epknne_Estimated_Pdf_based_on_K_Nearest_Neighbor_Estimation(
                         queries, population, false, k, p)
                   : statistics.eppwh_Estimate_Pdf_based_on_Parzen_Window_with_Hypercube_window(
                         queries, population, false, static_cast<Real>(options.h), p);
        if (!done) fail("the estimate", statistics);
    }
    print_line("samples", describe(samples));
    print_line("points", options.at.empty() ? "the samples themselves" : describe(points));
    print_line("method", is_knn ? fmt::format("knn: the ball that holds the {} nearest", k)
                                : fmt::format("parzen: a ball of radius {:g}", options.h));
    print_line("precision", Twin<Real>::precision);
    if (output) {
        std::string text;
        for (int i = 0; i < p.vs(); ++i) text += fmt::format("{}\n", p[i]);
        output->write(text);
        output->commit();
        print_line("written to", options.output);
        return;
    }
    constexpr int shown = 20;
    fmt::print("\n{:>8}{:>24}  point\n", "", "density");
    for (int i = 0; i < p.vs() && i < shown; ++i) {
        std::string point;
        for (int j = 0; j < points.width && j < 6; ++j)
            point += fmt::format("{}{:g}", j == 0 ? "" : ", ", points.at(i, j));
        fmt::print("{:>8}{:>24.10g}  ({}{})\n", i + 1, p[i], point,
                   points.width > 6 ? ", ..." : "");
    }
    if (p.vs() > shown) fmt::print("Shown in part; -o FILE writes all {} densities.\n", p.vs());
}

}  // namespace

Action declare_stats(CLI::App& arguments) {
    auto options = std::make_shared<StatisticsOptions>();
    arguments.add_option("data.csv", options->data, "samples, one a line")->required();
    arguments.add_flag("--float", options->in_float, "compute in single precision");
    return [=] { options->in_float ? stats<float>(*options) : stats<double>(*options); };
}

Action declare_density(CLI::App& arguments) {
    auto options = std::make_shared<StatisticsOptions>();
    arguments.add_option("data.csv", options->data, "samples, one a line")->required();
    arguments.add_option("--at", options->at, "points, one a line; without them, the samples");
    arguments.add_option("--method", options->method, "knn or parzen")
        ->check(CLI::IsMember({"knn", "parzen"}))
        ->capture_default_str();
    arguments
        .add_option("--k", options->k, "neighbours for knn; the root of the samples without it")
        ->check(CLI::Range(1, std::numeric_limits<int>::max()));
    arguments.add_option("--h", options->h, "radius for parzen")->check(CLI::PositiveNumber);
    arguments.add_option("-o,--output", options->output, "write the densities, one a line");
    arguments.add_flag("--float", options->in_float, "compute in single precision");
    return [=] { options->in_float ? density<float>(*options) : density<double>(*options); };
}

}  // namespace program
