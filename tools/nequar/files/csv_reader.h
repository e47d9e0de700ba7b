// Reads a table of numbers from a CSV file:
//
//   [name,name,...]        a header: the first line, where not all of its fields are numbers
//   number,number,...      one sample a line
//
// Fields stand between commas, or between semicolons or tabs where the first line has those and no
// comma; blanks around a field and double quotes around it do not count. Empty lines and lines that
// begin with # are passed over. What is refused, always with the line: a field that is not a finite
// number, lines of different lengths, a file without numbers.
#pragma once

#include <string>
#include <vector>

namespace program {

template <class Real>
struct Table {
    std::string path;
    std::vector<std::string> names;  // of the columns; empty without a header
    int height = 0;
    int width = 0;
    std::vector<Real> values;  // line by line

    Real at(int row, int column) const {
        return values[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(column)];
    }
};

template <class Real>
Table<Real> read_csv(const std::string& path);

extern template Table<double> read_csv(const std::string&);
extern template Table<float> read_csv(const std::string&);

}  // namespace program
