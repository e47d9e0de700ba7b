// Real data that lies beside the project, for tests that skip by name where it is missing.
#pragma once

#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/matrix_gallery.h"

namespace nequar::test {

inline std::filesystem::path data_file(const std::string& name) {
    return std::filesystem::path(NEQUAR_DATA) / name;
}

// A real general Matrix Market file, coordinate or array.
template <class Real>
Matrix<Real> read_matrix_market(const std::string& name) {
    std::ifstream file(data_file(name));
    std::string line;
    std::getline(file, line);
    const bool is_sparse = line.find("coordinate") != std::string::npos;
    while (file.peek() == '%') std::getline(file, line);
    int height = 0;
    int width = 0;
    long count = 0;
    file >> height >> width;
    if (is_sparse) file >> count;
    Matrix<Real> a;
    a.c_Create(height, width, Real(0));
    if (is_sparse) {
        for (long k = 0; k < count; ++k) {
            int i = 0;
            int j = 0;
            double value = 0;
            file >> i >> j >> value;
            a[i - 1][j - 1] = static_cast<Real>(value);
        }
    } else {
        for (int j = 0; j < width; ++j)
            for (int i = 0; i < height; ++i) {
                double value = 0;
                file >> value;
                a[i][j] = static_cast<Real>(value);
            }
    }
    return a;
}

// The certified coefficients and the data lines of a linear regression of NIST's reference sets.
struct Regression {
    std::vector<double> coefficients;
    std::vector<std::vector<double>> data;  // y, x1, x2, ...
};

inline Regression read_regression(const std::string& name) {
    std::ifstream file(data_file(name));
    Regression regression;
    std::string line;
    bool in_data = false;
    for (int number = 1; std::getline(file, line); ++number) {
        std::istringstream words(line);
        std::string first;
        if (!(words >> first)) continue;
        if (number > 55 && first == "Data:") {
            in_data = true;
        } else if (in_data) {
            std::istringstream numbers(line);
            regression.data.emplace_back();
            for (double value = 0; numbers >> value;) regression.data.back().push_back(value);
        } else if (number >= 31 && first.size() > 1 && first[0] == 'B' &&
                   std::isdigit(static_cast<unsigned char>(first[1])) != 0) {
            double value = 0;
            words >> value;
            regression.coefficients.push_back(value);
        }
    }
    return regression;
}

}  // namespace nequar::test
