#include "commands/factor_report.h"

#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <limits>
#include <sstream>

#include "commands/describe.h"
#include "files/matrix_market_reader.h"
#include "files/matrix_market_writer.h"
#include "files/output_file.h"
#include "long_step.h"
#include "numbers/dense.h"
#include "numbers/factors.h"
#include "numbers/residual.h"

namespace program {
namespace {

std::string file_of(const FactorOptions& options, const char* name) {
    return options.prefix + "_" + name + ".mtx";
}

const char* verdict(double figure, double bound) {
    return figure <= bound ? "good" : "BAD";
}

}  // namespace

void declare_factor_options(CLI::App& arguments, FactorOptions& options) {
    arguments.add_option("A.mtx", options.a, "the matrix")->required();
    arguments.add_flag("--float", options.in_float, "compute in single precision");
    arguments
        .add_option("-o,--output", options.prefix,
                    "write each result to PREFIX_NAME.mtx, for example PREFIX_Q.mtx")
        ->type_name("PREFIX")
        ->check([](const std::string& name) {
            return name.empty() ? "the prefix of the files is empty" : "";
        });
}

void require_place_for(const FactorOptions& options, const std::vector<const char*>& names) {
    if (options.prefix.empty()) return;
    for (const char* name : names) const OutputFile trial(file_of(options, name));
}

template <class Real>
FileMatrix<Real> read_dense(const std::string& path, double copies,
                            typename Twin<Real>::Matrix& a) {
    FileMatrix<Real> file = read_matrix_market<Real>(path);
    require_memory(file, copies);
    make_dense(file, a);
    print_line("matrix", describe(file));
    return file;
}

template <class Real>
void hand_out(const FactorOptions& options, const std::vector<Factor<Real>>& factors) {
    for (const Factor<Real>& factor : factors) {
        if (options.prefix.empty()) {
            std::ostringstream text;
            text << factor.matrix;
            fmt::print("\n{}\n{}", factor.name, text.str());
            continue;
        }
        const std::string path = file_of(options, factor.name);
        const LongStep step("writing " + path);
        OutputFile file(path);
        write_matrix_market(file, std::string(factor.name) + " of " + options.a + " by nequar",
                            factor.matrix.mh(), factor.matrix.mw(),
                            factor.matrix.mh() == 0 ? nullptr : factor.matrix.p()[0]);
        file.commit();
        print_line("written to", path);
    }
}

template <class Real>
void report_factors(const FactorOptions& options, const char* equation,
                    const typename Twin<Real>::Matrix& a,
                    const typename Twin<Real>::Matrix& product,
                    const std::vector<Factor<Real>>& factors, double seconds) {
    std::string shapes = equation;
    const char* before = ": ";
    for (const Factor<Real>& factor : factors) {
        shapes += fmt::format("{}{} {} x {}", before, factor.name, factor.matrix.mh(),
                              factor.matrix.mw());
        before = ", ";
    }
    print_line("factors", shapes);
    print_line("precision", Twin<Real>::precision);
    print_line("time", describe_seconds(seconds));
    const double bound = largest_good_residual<Real>(std::max(a.mh(), a.mw()));
    {
        const LongStep step("judging the factors");
        const double residual = relative_difference<Real>(a, product);
        const std::string right = std::string(equation).substr(std::string(equation).find('=') + 2);
        print_line("residual", fmt::format("{:.3g} = |A - {}| / |A|, {}", residual, right,
                                           verdict(residual, bound)));
        for (const Factor<Real>& factor : factors) {
            if (!factor.orthogonal) continue;
            const double distance = distance_from_orthogonal<Real>(factor.matrix);
            print_line("orthogonal",
                       fmt::format("{:.3g} = |I - {}'{}| / sqrt(columns), {}", distance,
                                   factor.name, factor.name, verdict(distance, bound)));
        }
    }
    hand_out(options, factors);
}

template FileMatrix<double> read_dense(const std::string&, double, CNqMatrix&);
template FileMatrix<float> read_dense(const std::string&, double, CNqMatrixFloat&);
template void hand_out(const FactorOptions&, const std::vector<Factor<double>>&);
template void hand_out(const FactorOptions&, const std::vector<Factor<float>>&);
template void report_factors<double>(const FactorOptions&, const char*, const CNqMatrix&,
                                     const CNqMatrix&, const std::vector<Factor<double>>&, double);
template void report_factors<float>(const FactorOptions&, const char*, const CNqMatrixFloat&,
                                    const CNqMatrixFloat&, const std::vector<Factor<float>>&,
                                    double);

}  // namespace program
