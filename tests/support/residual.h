// Residuals of factorizations and solutions, measured against rounding. Products are made in long
// double. Every measure is NaN when something that is not a number takes part, so tests write
// EXPECT_LT(measure, bound), which NaN fails.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "support/matrix_gallery.h"

namespace nequar::test {

template <class Real>
constexpr double kEpsilon = double(std::numeric_limits<Real>::epsilon());

// The larger one; NaN if either is.
inline double worse(double a, double b) {
    return std::isnan(a) || a > b ? a : b;
}

template <class Real>
double norm1_of(const Matrix<Real>& a) {
    double largest = 0;
    for (int j = 0; j < a.mw(); ++j) {
        double sum = 0;
        for (int i = 0; i < a.mh(); ++i) sum += std::abs(double(a[i][j]));
        largest = worse(sum, largest);
    }
    return largest;
}

inline double largest_of(const Wide& a) {
    return double(a.largest());
}

// The square root of the sum of squares.
template <class Real>
double norm_of(const Matrix<Real>& a) {
    double squares = 0;
    for (int i = 0; i < a.mh(); ++i)
        for (int j = 0; j < a.mw(); ++j) squares += double(a[i][j]) * double(a[i][j]);
    return std::sqrt(squares);
}

// What rounding may do to every element of A: max |A| max(m, n) eps, and a subnormal number.
template <class Real>
double rounding_of(const Matrix<Real>& a) {
    return largest_of(a) * std::max(a.mh(), a.mw()) * kEpsilon<Real> +
           double(std::numeric_limits<Real>::denorm_min());
}

inline double largest_difference(const Wide& a, const Wide& b) {
    return largest_of(a - b);
}

// max |C - A B|(i, j) / (eps k (|C| + |A| |B|)(i, j)), A m x k, B k x n: what every order of
// summation keeps below a small constant.
template <class Real>
double componentwise_product_error(const Matrix<Real>& c, const Matrix<Real>& a,
                                   const Matrix<Real>& b) {
    const Wide error = Wide(c) - Wide(a) * Wide(b);
    const Wide size = Wide(c).magnitudes() + Wide(a).magnitudes() * Wide(b).magnitudes();
    double largest = 0;
    for (std::size_t k = 0; k < error.elements.size(); ++k)
        if (error.elements[k] != 0)
            largest = worse(double(std::abs(error.elements[k]) / size.elements[k]), largest);
    return largest / (kEpsilon<Real> * (a.mw() + 1));
}

// ||A X - B||_1 / (||A||_1 ||X||_1 n eps), the worst column of X
template <class Real>
double solution_residual(const Matrix<Real>& a, const Matrix<Real>& x, const Matrix<Real>& b) {
    const Wide rest = Wide(a) * Wide(x) - Wide(b);
    if (rest.width != x.mw()) return std::nan("");
    const double scale = norm1_of(a) * a.mh() * kEpsilon<Real>;
    double largest = 0;
    for (int j = 0; j < x.mw(); ++j) {
        long double column = 0, size = 0;
        for (int i = 0; i < rest.height; ++i) column += std::abs(rest.at(i, j));
        for (int k = 0; k < x.mh(); ++k) size += std::abs(double(x[k][j]));
        if (column != 0) largest = worse(double(column / (size * scale)), largest);
    }
    return largest;
}

// max |A - B C ...| / (max |A| max(m, n) eps), A m x n; the rounding of subnormal numbers is
// allowed for.
template <class Real, class... Factors>
double rebuilding_error(const Matrix<Real>& a, const Factors&... factors) {
    return largest_difference(a, (Wide(factors) * ...)) / rounding_of(a);
}

// The same of A - U diag(d) V^T, with as many columns of U and V as d has elements.
template <class Real>
double spectral_error(const Matrix<Real>& a, const Matrix<Real>& u, const Vector<Real>& d,
                      const Matrix<Real>& v) {
    if (u.mw() < d.vs() || v.mw() < d.vs()) return std::nan("");
    Wide ud(u.mh(), d.vs()), vt(d.vs(), v.mh());
    for (int k = 0; k < d.vs(); ++k) {
        for (int i = 0; i < u.mh(); ++i) ud.at(i, k) = static_cast<long double>(u[i][k]) * d[k];
        for (int j = 0; j < v.mh(); ++j) vt.at(k, j) = v[j][k];
    }
    return rebuilding_error(a, ud, vt);
}

// max |Q^T Q - I| / (n eps)
template <class Real>
double orthogonality_error(const Matrix<Real>& q) {
    const Wide gram = Wide(q).transposed() * Wide(q);
    return largest_difference(gram, identity_of<Real>(q.mw())) /
           (kEpsilon<Real> * std::max(q.mh(), 1));
}

template <class Real>
Matrix<Real> transposed(const Matrix<Real>& a) {
    return matrix_of<Real>(a.mw(), a.mh(), [&](int i, int j) { return a[j][i]; });
}

// The vector as a matrix of one column.
template <class Real>
Matrix<Real> column_of(const Vector<Real>& v) {
    return matrix_of<Real>(v.vs(), 1, [&](int i, int) { return v[i]; });
}

// The matrix whose row i is row perm[i] of A.
template <class Real>
Matrix<Real> with_rows(const Matrix<Real>& a, const int* perm) {
    return matrix_of<Real>(a.mh(), a.mw(), [&](int i, int j) { return a[perm[i]][j]; });
}

}  // namespace nequar::test
