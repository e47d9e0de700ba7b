// Matrices with known trouble, in either precision.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <type_traits>
#include <utility>
#include <vector>

#include "nequar_algebra/structured.h"

namespace nequar::test {

// A small generator with the same numbers on every machine: uniform in [-1, 1).
class Uniform {
public:
    explicit Uniform(std::uint64_t seed) : state_(seed * 0x9e3779b97f4a7c15u + 1) {}
    double operator()() {
        state_ += 0x9e3779b97f4a7c15u;
        std::uint64_t z = state_;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
        z ^= z >> 31;
        return static_cast<double>(z >> 11) * 0x1p-52 - 1.0;
    }

private:
    std::uint64_t state_;
};

// element(i, j) for every element of a height x width matrix.
template <class Real, class Function>
Matrix<Real> matrix_of(int height, int width, Function element) {
    Matrix<Real> a;
    a.c_Create(height, width);
    for (int i = 0; i < height; ++i)
        for (int j = 0; j < width; ++j) a[i][j] = static_cast<Real>(element(i, j));
    return a;
}

// With these elements, matrices row by row.
template <class Element>
Vector<Element> vector_of(std::initializer_list<double> values) {
    Vector<Element> v;
    v.c_Create(static_cast<int>(values.size()));
    std::transform(values.begin(), values.end(), v.p(),
                   [](double value) { return static_cast<Element>(value); });
    return v;
}
template <class Real>
Matrix<Real> matrix_of(int height, int width, std::initializer_list<double> values) {
    Matrix<Real> a;
    a.c_Create(height, width);
    std::transform(values.begin(), values.end(), a.p()[0],
                   [](double value) { return static_cast<Real>(value); });
    return a;
}

template <class Real>
Matrix<Real> constant_matrix(int height, int width, Real value = 0) {
    Matrix<Real> a;
    a.c_Create(height, width, value);
    return a;
}

// From the upper triangle.
template <class Real>
MatrixSymmetric<Real> packed_of(const Matrix<Real>& a) {
    MatrixSymmetric<Real> s;
    s.iu_Import_Upper_part_of(&a);
    return s;
}

// What a triangular, diagonal, band or symmetric matrix holds, as a dense one.
template <class Packed>
auto unpacked(const Packed& packed) {
    Matrix<std::remove_cvref_t<decltype(packed[0])>> dense;
    if constexpr (requires { packed.e_Export(&dense, true); })
        packed.e_Export(&dense, true);
    else
        packed.e_Export(&dense);
    return dense;
}

// Summed in long double.
template <class Real>
Matrix<Real> product(const Matrix<Real>& p, const Matrix<Real>& q) {
    return matrix_of<Real>(p.mh(), q.mw(), [&](int i, int j) {
        long double sum = 0;
        for (int k = 0; k < p.mw(); ++k) sum += static_cast<long double>(p[i][k]) * q[k][j];
        return double(sum);
    });
}

template <class Real>
Matrix<Real> random_matrix(int height, int width, std::uint64_t seed = 1) {
    Uniform uniform(seed);
    return matrix_of<Real>(height, width, [&](int, int) { return uniform(); });
}

// Small integers: many ties, many exact zeros.
template <class Real>
Matrix<Real> integer_matrix(int height, int width, int largest, std::uint64_t seed = 1) {
    Uniform uniform(seed);
    return matrix_of<Real>(height, width,
                           [&](int, int) { return std::round(uniform() * largest); });
}

// Random with a diagonal that outweighs each row: LU needs no exchange, and growth stays small.
template <class Real>
Matrix<Real> dominant_matrix(int n, std::uint64_t seed = 1) {
    Matrix<Real> a = random_matrix<Real>(n, n, seed);
    for (int i = 0; i < n; ++i) a[i][i] += static_cast<Real>(a[i][i] < 0 ? -n : n);
    return a;
}

template <class Real>
Matrix<Real> hilbert_matrix(int n) {
    return matrix_of<Real>(n, n, [](int i, int j) { return 1.0 / (i + j + 1); });
}

// Kahan's upper triangular matrix: nearly singular without a small diagonal element.
template <class Real>
Matrix<Real> kahan_matrix(int n, double theta = 1.2) {
    const double s = std::sin(theta);
    const double c = std::cos(theta);
    return matrix_of<Real>(
        n, n, [&](int i, int j) { return i > j ? 0.0 : std::pow(s, i) * (i == j ? 1.0 : -c); });
}

// Wilkinson's example: partial pivoting lets its last column grow to 2^(n-1).
template <class Real>
Matrix<Real> growing_matrix(int n) {
    return matrix_of<Real>(
        n, n, [n](int i, int j) { return i == j || j == n - 1 ? 1 : (i > j ? -1 : 0); });
}

// Rows and columns that fall over many orders of magnitude.
template <class Real>
Matrix<Real> graded_matrix(int n, double decades, std::uint64_t seed = 1) {
    Uniform uniform(seed);
    return matrix_of<Real>(n, n, [&](int i, int j) {
        return uniform() * std::pow(10.0, -decades * (i + j) / (2.0 * n));
    });
}

// The product of a height x rank and a rank x width matrix of small integers: exact.
template <class Real>
Matrix<Real> rank_deficient_matrix(int height, int width, int rank, std::uint64_t seed = 1) {
    const Matrix<Real> left = integer_matrix<Real>(height, rank, 4, seed);
    const Matrix<Real> right = integer_matrix<Real>(rank, width, 4, seed + 1);
    return matrix_of<Real>(height, width, [&](int i, int j) {
        double sum = 0;
        for (int k = 0; k < rank; ++k) sum += double(left[i][k]) * double(right[k][j]);
        return sum;
    });
}

// Plain ones, ties and lost rank in any shape; square ones with trouble of every kind.
template <class Real>
std::vector<Matrix<Real>> hard_matrices(int m, int n) {
    std::vector<Matrix<Real>> all = {random_matrix<Real>(m, n, 3), integer_matrix<Real>(m, n, 2, 4),
                                     rank_deficient_matrix<Real>(m, n, (n + 2) / 3, 5)};
    if (m != n) return all;
    all.push_back(hilbert_matrix<Real>(n));
    all.push_back(kahan_matrix<Real>(n));
    all.push_back(growing_matrix<Real>(n));
    all.push_back(graded_matrix<Real>(n, sizeof(Real) == 4 ? 12 : 60));
    all.push_back(matrix_of<Real>(n, n, [](int i, int j) { return i == j; }));
    return all;
}

// Symmetric with the given eigenvalues: a diagonal matrix between three random reflectors.
template <class Real>
Matrix<Real> symmetric_with_spectrum(const std::vector<double>& eigenvalues,
                                     std::uint64_t seed = 1) {
    const int n = static_cast<int>(eigenvalues.size());
    auto a = matrix_of<double>(n, n, [&](int i, int j) {
        return i == j ? eigenvalues[static_cast<std::size_t>(i)] : 0.0;
    });
    Uniform uniform(seed);
    for (int k = 0; k < 3; ++k) {
        const auto v = matrix_of<double>(1, n, [&](int, int) { return uniform(); });
        double square = 0;
        for (int i = 0; i < n; ++i) square += v[0][i] * v[0][i];
        const auto reflector = matrix_of<double>(
            n, n, [&](int i, int j) { return (i == j) - 2 / square * v[0][i] * v[0][j]; });
        a = product(product(reflector, a), reflector);
    }
    return matrix_of<Real>(n, n, [&](int i, int j) { return a[std::min(i, j)][std::max(i, j)]; });
}

// Symmetric positive definite with eigenvalues from 1 down to 1/condition.
template <class Real>
Matrix<Real> positive_definite_matrix(int n, double condition, std::uint64_t seed = 1) {
    std::vector<double> eigenvalues;
    for (int i = 0; i < n; ++i)
        eigenvalues.push_back(std::pow(condition, n > 1 ? -double(i) / (n - 1) : 0.0));
    return symmetric_with_spectrum<Real>(eigenvalues, seed);
}

}  // namespace nequar::test
