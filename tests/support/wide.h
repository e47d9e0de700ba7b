// Matrices in long double, which has the digits and the range for products of others.
#pragma once

#include <cmath>
#include <limits>
#include <vector>

#include "nequar_algebra/frame.h"

namespace nequar::test {

struct Wide {
    int height = 0;
    int width = 0;
    std::vector<long double> elements;

    Wide(int h, int w, long double value = 0)
        : height(h), width(w), elements(std::size_t(h) * std::size_t(w), value) {}
    template <class Real>
    Wide(const Matrix<Real>& a) : Wide(a.mh(), a.mw()) {
        for (int i = 0; i < height; ++i)
            for (int j = 0; j < width; ++j) at(i, j) = a[i][j];
    }
    long double& at(int i, int j) { return elements[std::size_t(i * width + j)]; }
    long double at(int i, int j) const { return elements[std::size_t(i * width + j)]; }
    long double largest() const {  // NaN if any is
        long double most = 0;
        for (const long double e : elements)
            most = std::isnan(most) || std::abs(e) <= most ? most : std::abs(e);
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

// One NaN where the shapes do not fit.
inline Wide operator*(const Wide& a, const Wide& b) {
    if (a.width != b.height) return {1, 1, std::numeric_limits<long double>::quiet_NaN()};
    Wide c(a.height, b.width);
    for (int i = 0; i < a.height; ++i)
        for (int k = 0; k < a.width; ++k)
            for (int j = 0; j < b.width; ++j) c.at(i, j) += a.at(i, k) * b.at(k, j);
    return c;
}
inline Wide combination(Wide a, long double factor, const Wide& b) {
    if (a.height != b.height || a.width != b.width)
        return {1, 1, std::numeric_limits<long double>::quiet_NaN()};
    for (std::size_t k = 0; k < a.elements.size(); ++k) a.elements[k] += factor * b.elements[k];
    return a;
}
inline Wide operator+(const Wide& a, const Wide& b) {
    return combination(a, 1, b);
}
inline Wide operator-(const Wide& a, const Wide& b) {
    return combination(a, -1, b);
}

}  // namespace nequar::test
