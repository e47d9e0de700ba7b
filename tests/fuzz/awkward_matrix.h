// Matrices of any values, and measures of what a decomposition has left of them.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "fuzz/input.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"

namespace nequar::fuzz {

// A size of at most `largest`; now and then one that reaches the blocked algorithms.
inline int some_order(Input& input, int largest = 6) {
    const int choice = input.byte();
    return choice < 250 ? 1 + choice % largest : 40 + choice % 40;
}

// Small ones element by element, large ones of a few values mixed with plain ones.
template <class Real>
Matrix<Real> some_matrix(Input& input, int height, int width) {
    if (height * width <= 64)
        return test::matrix_of<Real>(height, width, [&](int, int) { return input.value<Real>(); });
    const auto values = some_matrix<Real>(input, 1, 8);
    test::Uniform uniform(static_cast<std::uint64_t>(input.byte()));
    const int share = input.byte();
    return test::matrix_of<Real>(height, width, [&](int i, int j) -> double {
        const double plain = uniform();
        return std::abs(uniform()) * 255 < share ? values[0][(i * 5 + j * 3) % 8] : plain;
    });
}

template <class Real>
void make_symmetric(Matrix<Real>& a) {
    for (int i = 0; i < a.mh(); ++i)
        for (int j = 0; j < i; ++j) a[i][j] = a[j][i];
}

template <class Real>
bool is_finite(const Matrix<Real>& a) {
    return std::isfinite(test::largest_of(a));
}

template <class Real>
bool has_nan(const Matrix<Real>& a) {
    return std::isnan(test::largest_of(a));
}

// Products in long double, which has the range and the digits for them.
struct Wide {
    int height = 0;
    int width = 0;
    std::vector<long double> elements;

    Wide(int h, int w) : height(h), width(w), elements(std::size_t(h) * std::size_t(w)) {}
    template <class Real>
    Wide(const Matrix<Real>& a) : Wide(a.mh(), a.mw()) {
        for (int i = 0; i < height; ++i)
            for (int j = 0; j < width; ++j) at(i, j) = a[i][j];
    }
    long double& at(int i, int j) { return elements[std::size_t(i * width + j)]; }
    long double at(int i, int j) const { return elements[std::size_t(i * width + j)]; }
    long double largest() const {
        long double most = 0;
        for (const long double e : elements)
            most = std::isnan(e) || !(std::abs(e) <= most) ? std::abs(e) : most;
        return most;
    }
    Wide magnitudes() const {
        Wide m = *this;
        for (long double& e : m.elements) e = std::abs(e);
        return m;
    }
    Wide transposed() const {
        Wide t(width, height);
        for (int i = 0; i < height; ++i)
            for (int j = 0; j < width; ++j) t.at(j, i) = at(i, j);
        return t;
    }
};

inline Wide operator*(const Wide& a, const Wide& b) {
    NEQUAR_REQUIRE(a.width == b.height);
    Wide c(a.height, b.width);
    for (int i = 0; i < a.height; ++i)
        for (int k = 0; k < a.width; ++k)
            for (int j = 0; j < b.width; ++j) c.at(i, j) += a.at(i, k) * b.at(k, j);
    return c;
}

// Whether |A - B| <= kBound n eps scale, subnormal roundings allowed for; NaN says no.
inline constexpr long double kBound = 30;

template <class Real>
bool agree(const Wide& a, const Wide& b, long double scale) {
    if (a.height != b.height || a.width != b.width) return false;
    using L = std::numeric_limits<Real>;
    const long double n = std::max(a.height, a.width);
    const long double bound = kBound * n * (scale * L::epsilon() + L::denorm_min());
    for (std::size_t k = 0; k < a.elements.size(); ++k)
        if (!(std::abs(a.elements[k] - b.elements[k]) <= bound)) return false;
    return true;
}

template <class Real>
bool agree(const Matrix<Real>& a, const Wide& b) {
    return agree<Real>(a, b, Wide(a).largest());
}

template <class Real>
bool is_orthogonal(const Matrix<Real>& q) {
    return test::orthogonality_error(q) < double(kBound);
}

}  // namespace nequar::fuzz
