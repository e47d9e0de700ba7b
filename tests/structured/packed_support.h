// What the tests of packed matrices share: the two twins as type parameters, the failures of a call
// as text, and a plain enumeration of the stored elements to hold every index rule against.
#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "nequar_algebra/frame.h"
#include "nequar_algebra/structured.h"

namespace packed_test {

// The failures of the last failing call, innermost first, as "method: detail" lines without the
// name of the class; the record is cleared.
template <class Object>
std::string failures_of(Object& object) {
    const std::string trace = object.gft_Get_Failure_Trace().c_str();
    const std::string prefix = std::string(object.gcn_Get_Class_Name().c_str()) + "::";
    object.cr_Clear_Record();
    std::string text;
    for (std::size_t at = 0; at < trace.size();) {
        std::size_t end = trace.find('\n', at);
        if (end == std::string::npos) end = trace.size();
        std::string line = trace.substr(at, end - at);
        if (line.compare(0, prefix.size(), prefix) == 0) line.erase(0, prefix.size());
        text += (text.empty() ? "" : "\n") + line;
        at = end + 1;
    }
    return text;
}

inline const std::string kRefused = "zivs_Initialize_and_Vector_Size: 1\nc_Create: 1";

struct Position {
    int x;
    int y;
};

// Every position inside height x width at distance d below (above) the diagonal, d = 0, 1, ...,
// running down within each d.
inline std::vector<Position> stored_positions(bool lower, int height, int width) {
    std::vector<Position> positions;
    for (int d = 0; d < (lower ? height : width); ++d) {
        for (int p = 0;; ++p) {
            const Position at = lower ? Position{p, p + d} : Position{p + d, p};
            if (at.x >= width || at.y >= height) break;
            positions.push_back(at);
        }
    }
    return positions;
}

// A dense height x width matrix of different numbers, row by row.
template <class Real>
std::vector<Real> numbered(int height, int width) {
    std::vector<Real> elements;
    for (int i = 0; i < height * width; ++i) elements.push_back(Real(1 + i));
    return elements;
}

template <class Real>
nequar::Matrix<Real> dense_of(int height, int width, const std::vector<Real>& elements) {
    nequar::Matrix<Real> matrix;
    matrix.c_Create(height, width);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) matrix[y][x] = elements[std::size_t(y * width + x)];
    return matrix;
}

template <class Real>
std::vector<Real> transposed(int height, int width, const std::vector<Real>& elements) {
    std::vector<Real> result;
    for (int x = 0; x < width; ++x)
        for (int y = 0; y < height; ++y) result.push_back(elements[std::size_t(y * width + x)]);
    return result;
}

}  // namespace packed_test
