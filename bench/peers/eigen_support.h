// Eigen's matrices for the benchmark's problems.
#pragma once

#include <Eigen/Dense>
#include <vector>

#include "problem.h"

namespace bench {

template <class Real>
using Dense = Eigen::Matrix<Real, Eigen::Dynamic, Eigen::Dynamic>;
template <class Real>
using Column = Eigen::Matrix<Real, Eigen::Dynamic, 1>;

template <class Real>
Dense<Real> dense(const Problem<Real>& a) {
    return Eigen::Map<const Dense<Real>>(a.columns.data(), a.height, a.width);
}

template <class Real>
std::vector<Real> rows_of(const Dense<Real>& a) {
    Problem<Real> result(a.rows(), a.cols());
    Eigen::Map<Dense<Real>>(result.columns.data(), a.rows(), a.cols()) = a;
    result.rows_from_columns();
    return result.rows;
}

}  // namespace bench
