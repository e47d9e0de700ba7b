// nequar_bench: the library's operations beside Eigen and OpenBLAS/LAPACK, on one thread.
#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>
#include <vector>

#include "environment.h"
#include "plots.h"
#include "report.h"

namespace {

struct Options {
    std::vector<bench::Size> sizes{64, 500, 1000};
    std::vector<std::string> types{"double", "float"};
    std::vector<std::string> operations;
    std::string json, plots;
    double seconds = 0.5;
    bool list = false;
};

bool wants(const std::vector<std::string>& names, const std::string& name) {
    if (names.empty()) return true;
    for (const std::string& wanted : names)
        if (name.rfind(wanted, 0) == 0) return true;
    return false;
}

// Fails when an operation's result is wrong.
int run(const Options& options) {
    const bench::Machine machine = bench::this_machine();
    bench::print_head(machine);
    std::vector<bench::Result> results;
    bool all_right = true;
    for (const bench::Row& row : bench::row_table()) {
        if (!wants(options.operations, row.name)) continue;
        for (const char* type : {"double", "float"}) {
            if (!wants(options.types, type)) continue;
            const bool is_double = std::string(type) == "double";
            for (const bench::Size n : options.sizes) {
                const bench::Case one = is_double ? row.in_double(n) : row.in_float(n);
                results.push_back({row.name, type, n, one.flops,
                                   is_double ? machine.peak.in_double : machine.peak.in_float,
                                   bench::measure(one, options.seconds)});
                bench::print_result(results.back());
                all_right = all_right && results.back().ratio() != 0;
            }
        }
    }
    if (!options.json.empty() && !bench::write_json(options.json, machine, results)) {
        fmt::print(stderr, "nequar_bench: {} cannot be written\n", options.json);
        return 2;
    }
    if (!options.plots.empty() && !bench::write_plots(options.plots, results)) {
        fmt::print(stderr, "nequar_bench: no pictures can be written in {}\n", options.plots);
        return 2;
    }
    if (!all_right) fmt::print(stderr, "nequar_bench: a result is wrong\n");
    return all_right ? 0 : 1;
}

}  // namespace

int main(int argument_count, char** arguments) {
    bench::restart_with_environment(arguments);
    Options options;
    CLI::App app("Measures the library beside Eigen and OpenBLAS, on one thread.", "nequar_bench");
    app.add_option("--sizes", options.sizes, "orders of the matrices, for example 64,500,1000")
        ->delimiter(',')
        ->check(CLI::Range(1, 1000000));
    app.add_option("--types", options.types, "double, float")
        ->delimiter(',')
        ->check(CLI::IsMember({"double", "float"}));
    app.add_option("--operations", options.operations, "only rows whose names begin so")
        ->delimiter(',');
    app.add_option("--seconds", options.seconds, "for each contender of each row")
        ->check(CLI::PositiveNumber);
    app.add_option("--json", options.json, "write the same to this file");
    app.add_option("--plots", options.plots, "draw each operation's GF/s against n in this folder")
        ->check(CLI::ExistingDirectory);
    app.add_flag("--list", options.list, "show the rows and stop");
    CLI11_PARSE(app, argument_count, arguments);
    if (options.list) {
        for (const bench::Row& row : bench::row_table())
            fmt::print("{:<14}{}\n", row.name, row.what);
        return 0;
    }
    return run(options);
}
