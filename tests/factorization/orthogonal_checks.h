// What the tests of the orthogonal factorizations share: dense matrices that can be looked at from
// any corner, and residuals in units of size * epsilon. A NaN anywhere makes a residual NaN, which
// is below no bound.
#pragma once

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "core/view.h"

namespace nequar::testing {

template <class Real>
struct Dense {
    Size height = 0;
    Size width = 0;
    std::vector<Real> elements;

    Dense() = default;
    Dense(Size rows, Size columns, Real value = 0)
        : height(rows), width(columns), elements(std::size_t(rows * columns), value) {}

    Real& operator()(Size i, Size j) { return elements[std::size_t(i * width + j)]; }
    Real operator()(Size i, Size j) const { return elements[std::size_t(i * width + j)]; }
    View<Real> view() { return {elements.data(), height, width, width}; }
    View<const Real> view() const { return {elements.data(), height, width, width}; }
};

template <class Real>
Dense<Real> dense_of(View<const Real> a) {
    Dense<Real> result(a.height, a.width);
    for (Size i = 0; i < a.height; ++i)
        for (Size j = 0; j < a.width; ++j) result(i, j) = a(i, j);
    return result;
}

template <class Real>
Dense<Real> random_dense(Size height, Size width, unsigned seed = 1) {
    std::mt19937 bits(seed);
    std::uniform_real_distribution<double> uniform(-1, 1);
    Dense<Real> result(height, width);
    for (Real& element : result.elements) element = Real(uniform(bits));
    return result;
}

template <class Real>
double largest_magnitude(View<const Real> a) {
    double largest = 0;
    for (Size i = 0; i < a.height; ++i)
        for (Size j = 0; j < a.width; ++j) {
            const double magnitude = std::abs(double(a(i, j)));
            if (!(magnitude <= largest)) largest = magnitude;
            if (std::isnan(largest)) return largest;
        }
    return largest;
}

// max |A - B C| / (max |A| size eps), all of them scaled so that nothing leaves the range
template <class Real>
double product_residual(View<const Real> a, View<const Real> b, View<const Real> c) {
    using Wide = long double;
    Wide scale = Wide(largest_magnitude(a));
    Wide worst = 0;
    for (Size i = 0; i < a.height; ++i)
        for (Size j = 0; j < a.width; ++j) {
            Wide difference = a(i, j);
            for (Size k = 0; k < b.width; ++k) difference -= Wide(b(i, k)) * Wide(c(k, j));
            if (!(std::abs(difference) <= worst)) worst = std::abs(difference);
            if (std::isnan(worst)) return double(worst);
        }
    if (scale == 0) scale = 1;
    const Size size = a.height > a.width ? a.height : a.width;
    return double(worst / scale / Wide(size + 1) / Wide(std::numeric_limits<Real>::epsilon()));
}

// max |Q^T Q - I| / (size eps)
template <class Real>
double orthogonality(View<const Real> q) {
    Dense<Real> identity(q.width, q.width);
    for (Size i = 0; i < q.width; ++i) identity(i, i) = 1;
    if (q.width == 0) return 0;
    return product_residual<Real>(identity.view(), q.transposed(), q) * double(q.width + 1) /
           double(q.height + 1);
}

// The matrix whose elements on and above the diagonal are those of R.
template <class Real>
Dense<Real> upper_triangle_of(View<const Real> r) {
    Dense<Real> result = dense_of(r);
    for (Size i = 0; i < r.height; ++i)
        for (Size j = 0; j < r.width && j < i; ++j) result(i, j) = 0;
    return result;
}

}  // namespace nequar::testing
