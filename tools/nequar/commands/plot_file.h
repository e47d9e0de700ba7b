// --plot FILE.svg: the picture of a result.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace program {

void declare_plot_option(CLI::App& arguments, std::string& path, const char* what);

// Throws InputError when no file can be written there; nothing is asked when path is empty.
void require_place_for_plot(const std::string& path);

// Writes the picture whole, says so in a line; nothing is done when path is empty.
void write_plot(const std::string& path, const std::string& svg);

// The values against their number, on a logarithmic scale: magnitudes, negative ones in a series of
// their own.
std::string spectrum_chart(const std::string& title, const char* value_name,
                           const std::vector<double>& values);

}  // namespace program
