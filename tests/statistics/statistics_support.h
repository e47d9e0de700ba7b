// What the tests of the statistics share.
#pragma once

#include <initializer_list>
#include <limits>
#include <string>

#include "nequar_algebra/statistics.h"
#include "support/chain.h"
#include "support/matrix_gallery.h"

namespace statistics_test {

using namespace nequar;
using namespace nequar::test;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

inline CNqVectorBool mask_of(std::initializer_list<double> values) {
    return vector_of<bool>(values);
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
