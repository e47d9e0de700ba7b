// What the tests of the statistics share.
#pragma once

#include <initializer_list>
#include <string>

#include "nequar_algebra/statistics.h"
#include "support/chain.h"
#include "support/matrix_gallery.h"

namespace statistics_test {

using namespace nequar;
using test::fails_as;
using test::fails_with;
using test::vector_of;

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

}  // namespace statistics_test
