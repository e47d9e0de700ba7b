// What the tests of the statistics share.
#pragma once

#include <initializer_list>
#include <string>

#include "nequar_algebra/statistics.h"

namespace statistics_test {

using namespace nequar;

template <class Real>
Vector<Real> vector_of(std::initializer_list<double> values) {
    Vector<Real> v;
    v.c_Create(static_cast<int>(values.size()));
    int i = 0;
    for (const double value : values) v[i++] = static_cast<Real>(value);
    return v;
}

inline CNqVectorBool mask_of(std::initializer_list<bool> values) {
    CNqVectorBool v;
    v.c_Create(static_cast<int>(values.size()));
    int i = 0;
    for (const bool value : values) v[i++] = value;
    return v;
}

// By rows, height x width.
template <class Real>
Matrix<Real> matrix_of(int height, int width, std::initializer_list<double> values) {
    Matrix<Real> m;
    m.c_Create(height, width);
    int i = 0;
    for (const double value : values) m.p()[0][i++] = static_cast<Real>(value);
    return m;
}

// Packed from a dense matrix given by rows.
template <class Real>
MatrixSymmetric<Real> symmetric_of(int n, std::initializer_list<double> values) {
    const auto dense = matrix_of<Real>(n, n, values);
    MatrixSymmetric<Real> s;
    s.i_Import(&dense);
    return s;
}

inline std::string detail_of(const CNqClass& object) {
    return object.ged_Get_Error_Detail().c_str();
}

// The failure trace as "method: detail" lines, without the name of the class.
inline std::string trace_of(const CNqClass& object) {
    std::string trace = object.gft_Get_Failure_Trace().c_str();
    const std::string name = std::string(object.gcn_Get_Class_Name().c_str()) + "::";
    for (std::size_t at = 0; (at = trace.find(name, at)) != std::string::npos;)
        trace.erase(at, name.size());
    return trace;
}

}  // namespace statistics_test
