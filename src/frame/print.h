// Matrices as text: aligned columns, a large matrix abbreviated, the shape at the end.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace nequar {

// Prints the height x width matrix whose element at row y and column x is element(y, x).
template <class Element>
std::ostream& print_matrix(std::ostream& out, int height, int width, const Element& element) {
    constexpr int kShown = 6;  // rows and columns printed at either end of a large matrix
    const auto shown = [](int size) {
        std::vector<int> indices;  // -1 stands for what is left out
        for (int i = 0; i < size; ++i) {
            if (size > 2 * kShown + 1 && i == kShown) {
                indices.push_back(-1);
                i = size - kShown;
            }
            indices.push_back(i);
        }
        return indices;
    };
    const std::vector<int> rows = shown(height);
    const std::vector<int> columns = shown(width);
    std::vector<std::string> texts;
    std::size_t longest = 0;
    for (const int y : rows)
        for (const int x : columns) {
            std::ostringstream text;
            text.flags(out.flags());
            text.precision(out.precision());
            if (y < 0 || x < 0)
                text << "...";
            else
                text << element(y, x);
            texts.push_back(text.str());
            longest = std::max(longest, texts.back().size());
        }
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const bool ends_row = (i + 1) % columns.size() == 0;
        out << std::setw(static_cast<int>(longest)) << texts[i] << (ends_row ? "\n" : "  ");
    }
    return out << '(' << height << " x " << width << ")\n";
}

}  // namespace nequar
