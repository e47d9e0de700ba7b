// Residuals of factorizations and solutions, measured against rounding. Products are accumulated in
// long double. Every measure is NaN when something that is not a number takes part, so tests write
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

template <class Real>
double largest_of(const Matrix<Real>& a) {
    double largest = 0;
    for (int i = 0; i < a.mh(); ++i)
        for (int j = 0; j < a.mw(); ++j) largest = worse(std::abs(double(a[i][j])), largest);
    return largest;
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

template <class Real>
double largest_difference(const Matrix<Real>& a, const Matrix<Real>& b) {
    if (a.mh() != b.mh() || a.mw() != b.mw()) return std::nan("");
    double largest = 0;
    for (int i = 0; i < a.mh(); ++i)
        for (int j = 0; j < a.mw(); ++j)
            largest = worse(std::abs(double(a[i][j]) - double(b[i][j])), largest);
    return largest;
}

// max |C - A B|(i, j) / (eps k (|C| + |A| |B|)(i, j)), A m x k, B k x n: what every order of
// summation keeps below a small constant.
template <class Real>
double componentwise_product_error(const Matrix<Real>& c, const Matrix<Real>& a,
                                   const Matrix<Real>& b) {
    if (c.mh() != a.mh() || c.mw() != b.mw() || a.mw() != b.mh()) return std::nan("");
    double largest = 0;
    for (int i = 0; i < c.mh(); ++i)
        for (int j = 0; j < c.mw(); ++j) {
            long double sum = -static_cast<long double>(c[i][j]);
            long double size = std::abs(sum);
            for (int k = 0; k < a.mw(); ++k) {
                const long double term = static_cast<long double>(a[i][k]) * b[k][j];
                sum += term;
                size += std::abs(term);
            }
            if (sum == 0) continue;
            const long double scale = size * kEpsilon<Real> * (a.mw() + 1);
            largest = worse(double(std::abs(sum) / scale), largest);
        }
    return largest;
}

// ||A X - B||_1 / (||A||_1 ||X||_1 n eps)
template <class Real>
double solution_residual(const Matrix<Real>& a, const Matrix<Real>& x, const Matrix<Real>& b) {
    if (a.mw() != x.mh() || a.mh() != b.mh() || x.mw() != b.mw()) return std::nan("");
    const double norm = norm1_of(a);
    double largest = 0;
    for (int j = 0; j < x.mw(); ++j) {
        double column = 0;
        for (int i = 0; i < a.mh(); ++i) {
            long double sum = -static_cast<long double>(b[i][j]);
            for (int k = 0; k < a.mw(); ++k) sum += static_cast<long double>(a[i][k]) * x[k][j];
            column += double(std::abs(sum));
        }
        double size = 0;
        for (int k = 0; k < x.mh(); ++k) size += std::abs(double(x[k][j]));
        const double scale = norm * size * a.mh() * kEpsilon<Real>;
        if (column == 0) continue;
        largest = worse(column / scale, largest);
    }
    return largest;
}

// max |A - B C ...| / (max |A| max(m, n) eps), A m x n; the rounding of subnormal numbers is
// allowed for. Of several factors the first ones are multiplied to one that is rounded.
template <class Real>
double rebuilding_error(const Matrix<Real>& a, const Matrix<Real>& b, const Matrix<Real>& c) {
    if (b.mw() != c.mh() || a.mh() != b.mh() || a.mw() != c.mw()) return std::nan("");
    double largest = 0;
    for (int i = 0; i < a.mh(); ++i)
        for (int j = 0; j < a.mw(); ++j) {
            long double sum = -static_cast<long double>(a[i][j]);
            for (int k = 0; k < b.mw(); ++k) sum += static_cast<long double>(b[i][k]) * c[k][j];
            largest = worse(double(std::abs(sum)), largest);
        }
    return largest / rounding_of(a);
}
template <class Real, class... Factors>
double rebuilding_error(const Matrix<Real>& a, const Matrix<Real>& b, const Matrix<Real>& c,
                        const Factors&... factors) {
    return rebuilding_error(a, product(b, c), factors...);
}

// The same of A - U diag(d) V^T, with as many columns of U and V as d has elements.
template <class Real>
double spectral_error(const Matrix<Real>& a, const Matrix<Real>& u, const Vector<Real>& d,
                      const Matrix<Real>& v) {
    if (a.mh() != u.mh() || a.mw() != v.mh() || u.mw() < d.vs() || v.mw() < d.vs())
        return std::nan("");
    double largest = 0;
    for (int i = 0; i < a.mh(); ++i)
        for (int j = 0; j < a.mw(); ++j) {
            long double sum = -static_cast<long double>(a[i][j]);
            for (int k = 0; k < d.vs(); ++k)
                sum += static_cast<long double>(u[i][k]) * d[k] * v[j][k];
            largest = worse(double(std::abs(sum)), largest);
        }
    return largest / rounding_of(a);
}

// max |Q^T Q - I| / (n eps)
template <class Real>
double orthogonality_error(const Matrix<Real>& q) {
    double largest = 0;
    for (int i = 0; i < q.mw(); ++i) {
        for (int j = 0; j <= i; ++j) {
            long double sum = i == j ? -1 : 0;
            for (int k = 0; k < q.mh(); ++k) sum += static_cast<long double>(q[k][i]) * q[k][j];
            largest = worse(double(std::abs(sum)), largest);
        }
    }
    return largest / (kEpsilon<Real> * std::max(q.mh(), 1));
}

template <class Real>
Matrix<Real> identity_of(int n) {
    Matrix<Real> identity;
    identity.c_Create(n, n, Real(0));
    for (int i = 0; i < n; ++i) identity[i][i] = 1;
    return identity;
}

template <class Real>
Matrix<Real> transposed(const Matrix<Real>& a) {
    Matrix<Real> b;
    b.c_Create(a.mw(), a.mh());
    for (int i = 0; i < a.mh(); ++i)
        for (int j = 0; j < a.mw(); ++j) b[j][i] = a[i][j];
    return b;
}

// The vector as a matrix of one column.
template <class Real>
Matrix<Real> column_of(const Vector<Real>& v) {
    Matrix<Real> a;
    a.c_Create(v.vs(), 1);
    for (int i = 0; i < v.vs(); ++i) a[i][0] = v[i];
    return a;
}

// The matrix whose row i is row perm[i] of A.
template <class Real>
Matrix<Real> with_rows(const Matrix<Real>& a, const int* perm) {
    Matrix<Real> b;
    b.c_Create(a.mh(), a.mw());
    for (int i = 0; i < a.mh(); ++i)
        for (int j = 0; j < a.mw(); ++j) b[i][j] = a[perm[i]][j];
    return b;
}

}  // namespace nequar::test
