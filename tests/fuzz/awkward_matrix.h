// Matrices of any values, and measures of what a decomposition has left of them.
#pragma once

#include <algorithm>
#include <cmath>

#include "fuzz/input.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"

namespace nequar::fuzz {

using test::Wide;

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

// Whether |A - B| <= kBound n eps scale, subnormal roundings allowed for; NaN says no.
inline constexpr long double kBound = 30;

template <class Real>
bool agree(const Wide& a, const Wide& b, long double scale) {
    using L = std::numeric_limits<Real>;
    const long double n = std::max(a.height, a.width);
    return (a - b).largest() <= kBound * n * (scale * L::epsilon() + L::denorm_min());
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
