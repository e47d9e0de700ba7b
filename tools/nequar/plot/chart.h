// Charts as SVG pictures: points against linear or logarithmic axes, and the pattern of a matrix.
//
//   +--------------------------+
//   |  title                   |
//   |   10^0 | * *             |     Points that an axis cannot show (zero or less on a logarithmic
//   |        |     *  *        |     one, NaN, infinity) are left out, and a line below the picture
//   |  10^-8 |          * *    |     says how many.
//   |        +-------------    |
//   |          1   2   3       |
//   +--------------------------+
#pragma once

#include <string>
#include <vector>

namespace program {

struct Series {
    std::string name;  // for the legend; empty: none
    std::vector<double> x, y;
    bool joined = false;  // a line from point to point
};

struct Chart {
    std::string title, x_name, y_name;
    bool logarithmic_y = false;
    bool logarithmic_x = false;
    bool same_scale = false;  // one unit is as long on both axes
    std::vector<Series> series;
};

std::string svg_of(const Chart& chart);

// One picture above another, as one.
std::string above(const std::string& upper_svg, const std::string& lower_svg);

// The pattern of a height x width matrix: one mark for each cell of a raster of at most 400 x 400
// in which an element is stored, the darker the fuller the cell is.
class PatternPicture {
public:
    PatternPicture(std::string title, int height, int width);
    void mark(int row, int column);
    std::string svg() const;

private:
    std::string title_;
    int height_, width_;
    int rows_, columns_;          // of the raster
    std::vector<double> counts_;  // stored elements in each cell
};

}  // namespace program
