// What the tests of the statistics share.
#pragma once

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "nequar_algebra/statistics.h"
#include "support/chain.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"
#include "support/twins.h"

namespace statistics_test {

using namespace nequar;
using namespace nequar::test;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// element(i) for every element.
template <class Element, class Function>
Vector<Element> vector_of(int size, Function element) {
    Vector<Element> v;
    v.c_Create(size);
    for (int i = 0; i < size; ++i) v[i] = static_cast<Element>(element(i));
    return v;
}
using nequar::test::vector_of;

// Packed from a dense matrix given by rows.
template <class Real>
MatrixSymmetric<Real> symmetric_of(int n, std::initializer_list<double> values) {
    return packed_of(matrix_of<Real>(n, n, values));
}

// Samples as rows with values between -1 and 1, all different.
template <class Real>
Matrix<Real> waves(int samples, int dimension) {
    return matrix_of<Real>(samples, dimension,
                           [](int i, int k) { return std::sin(i + 2.3 * k + 0.1 * i * k); });
}

}  // namespace statistics_test
