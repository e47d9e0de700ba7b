// A matrix as its Matrix Market file holds it: the stored values, and where each belongs.
//
//   coordinate   values[k] at (rows[k], columns[k])
//   array        values down the columns, whole ones or their part in the lower triangle
//
// In a symmetric or skew-symmetric file one stored value stands for two elements; for_each() gives
// both.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace program {

enum class Format { coordinate, array };
enum class Field { real, integer, pattern };
enum class Symmetry { general, symmetric, skew };

template <class Real>
struct FileMatrix {
    std::string path;
    long long size_line = 0;  // the line that states the sizes, for messages about the shape
    int height = 0;
    int width = 0;
    Format format = Format::coordinate;
    Field field = Field::real;
    Symmetry symmetry = Symmetry::general;
    std::vector<Real> values;
    std::vector<int> rows;  // 0-based; empty in an array file
    std::vector<int> columns;

    // visit(row, column, value) for each element that the file determines.
    template <class Visit>
    void for_each(Visit visit) const {
        if (format == Format::coordinate) {
            for (std::size_t k = 0; k < values.size(); ++k)
                visit_with_mirror(rows[k], columns[k], values[k], visit);
            return;
        }
        std::size_t k = 0;
        for (int column = 0; column < width; ++column)
            for (int row = first_row(column); row < height; ++row)
                visit_with_mirror(row, column, values[k++], visit);
    }

    // The first row of a column that an array file stores.
    int first_row(int column) const {
        if (symmetry == Symmetry::general) return 0;
        return symmetry == Symmetry::symmetric ? column : column + 1;
    }

private:
    template <class Visit>
    void visit_with_mirror(int row, int column, Real value, Visit& visit) const {
        visit(row, column, value);
        if (symmetry == Symmetry::general || row == column) return;
        visit(column, row, symmetry == Symmetry::skew ? -value : value);
    }
};

}  // namespace program
