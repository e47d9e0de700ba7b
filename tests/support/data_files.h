// Real data that lies beside the project, for tests that skip by name where it is missing.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

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

}  // namespace nequar::test
