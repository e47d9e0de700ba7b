#include "commands/plot_file.h"

#include <CLI/CLI.hpp>
#include <cmath>

#include "commands/describe.h"
#include "files/output_file.h"
#include "plot/chart.h"

namespace program {

void declare_plot_option(CLI::App& arguments, std::string& path, const char* what) {
    arguments.add_option("--plot", path, what)
        ->type_name("FILE.svg")
        ->check([](const std::string& name) {
            return name.empty() ? "the name of the picture is empty" : "";
        });
}

void require_place_for_plot(const std::string& path) {
    if (!path.empty()) const OutputFile trial(path);
}

void write_plot(const std::string& path, const std::string& svg) {
    if (path.empty()) return;
    OutputFile file(path);
    file.write(svg);
    file.commit();
    print_line("picture", path);
}

std::string spectrum_chart(const std::string& title, const char* value_name,
                           const std::vector<double>& values) {
    Chart chart;
    chart.title = title;
    chart.x_name = "number";
    chart.y_name = value_name;
    chart.logarithmic_y = true;
    Series positive{"", {}, {}, false}, negative{"", {}, {}, false};
    for (std::size_t i = 0; i < values.size(); ++i) {
        Series& series = values[i] < 0 ? negative : positive;
        series.x.push_back(static_cast<double>(i + 1));
        series.y.push_back(std::fabs(values[i]));
    }
    if (!negative.x.empty()) {
        positive.name = "positive";
        negative.name = "negative, by magnitude";
    }
    chart.series = {positive, negative};
    return svg_of(chart);
}

}  // namespace program
