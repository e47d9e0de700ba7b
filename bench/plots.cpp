#include "plots.h"

#include <fmt/core.h>

#include <cctype>
#include <fstream>
#include <map>
#include <utility>

#include "plot/chart.h"

namespace bench {
namespace {

std::string file_name(const std::string& operation, const std::string& type) {
    std::string name;
    for (const char c : operation)
        name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '-';
    return fmt::format("{}-{}.svg", name, type);
}

program::Chart chart_of(const std::vector<const Result*>& results) {
    const Result& first = *results.front();
    program::Chart chart{
        .title = fmt::format("{}, {}, one thread", first.operation, first.type),
        .x_name = "n",
        .y_name = "GF/s",
        .logarithmic_y = false,
        .logarithmic_x = true,
        .same_scale = false,
        .series = {},
    };
    for (const Who who : kEverybody) {
        program::Series series;
        series.name = name_of(who);
        series.joined = true;
        for (const Result* result : results) {
            const Timing* timing = result->of(who);
            if (timing == nullptr || !timing->is_right()) continue;
            series.x.push_back(static_cast<double>(result->n));
            series.y.push_back(result->rate(*timing));
        }
        if (!series.x.empty()) chart.series.push_back(series);
    }
    const auto last = static_cast<double>(results.back()->n);
    chart.series.push_back(
        {"peak", {static_cast<double>(first.n), last}, {first.peak, first.peak}, true});
    return chart;
}

}  // namespace

bool write_plots(const std::string& folder, const std::vector<Result>& results) {
    std::map<std::pair<std::string, std::string>, std::vector<const Result*>> rows;
    for (const Result& result : results)
        if (result.flops > 0) rows[{result.operation, result.type}].push_back(&result);
    bool good = true;
    for (const auto& [row, measured] : rows) {
        if (measured.size() < 2) continue;
        std::ofstream file(fmt::format("{}/{}", folder, file_name(row.first, row.second)));
        file << program::svg_of(chart_of(measured));
        file.close();
        good = good && file.good();
    }
    return good;
}

}  // namespace bench
