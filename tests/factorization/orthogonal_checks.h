// What the tests of the orthogonal factorizations share: dense matrices that can be looked at from
// any corner, and their residuals.
#pragma once

#include <random>
#include <vector>

#include "core/view.h"
#include "factorization/algorithm/reflector.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"

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
Dense<Real> random_dense(Size height, Size width, unsigned seed = 1) {
    std::mt19937 bits(seed);
    std::uniform_real_distribution<double> uniform(-1, 1);
    Dense<Real> result(height, width);
    for (Real& element : result.elements) element = Real(uniform(bits));
    return result;
}

template <class Real>
Matrix<Real> matrix_of(View<const Real> a) {
    return test::matrix_of<Real>(int(a.height), int(a.width),
                                 [&](int i, int j) { return a(i, j); });
}

template <class Real>
double product_residual(View<const Real> a, View<const Real> b, View<const Real> c) {
    return test::rebuilding_error(matrix_of(a), matrix_of(b), matrix_of(c));
}
template <class Real>
double orthogonality(View<const Real> q) {
    return test::orthogonality_error(matrix_of(q));
}
template <class Real>
double largest_magnitude(View<const Real> a) {
    return test::largest_of(matrix_of(a));
}
template <class Real>
double largest_gap(const Dense<Real>& a, const Dense<Real>& b) {
    return test::largest_difference(matrix_of(a.view()), matrix_of(b.view()));
}

template <class Real>
void set_identity(View<Real> q) {
    for (Size i = 0; i < q.height; ++i)
        for (Size j = 0; j < q.width; ++j) q(i, j) = i == j;
}

// One step as it is stated: the reflector of column k of A, rows `first` and below, in the unit
// form, applied to the columns from k on and to Q from the right. The elements that it annihilates
// keep their values. Without a reflection nothing changes.
template <class Real>
struct StatedReflection {
    Size first;
    std::vector<Real> v;
    Real beta;

    StatedReflection(View<Real> a, Size first_row, Size k, View<Real> q) : first(first_row) {
        for (Size i = first; i < a.height; ++i) v.push_back(a(i, k));
        beta = householder_vector(Strided<Real>(v.data(), a.height - first), Size(0));
        if (!(beta > 0)) return;
        for (Size j = k; j < a.width; ++j) {
            Real w = 0;
            for (Size i = first; i < a.height; ++i) w += a(i, j) * at(i);
            for (Size i = first; i < a.height; ++i)
                if (i == first || j > k) a(i, j) -= beta * w * at(i);
        }
        apply_from_right(q);
    }
    void apply_from_right(View<Real> a) const {
        for (Size i = 0; i < a.height && beta > 0; ++i) {
            Real w = 0;
            for (Size j = first; j < a.width; ++j) w += a(i, j) * at(j);
            for (Size j = first; j < a.width; ++j) a(i, j) -= beta * w * at(j);
        }
    }
    Real at(Size i) const { return v[std::size_t(i - first)]; }
};

// The matrix whose elements on and above the diagonal are those of R.
template <class Real>
Dense<Real> upper_triangle_of(View<const Real> r) {
    Dense<Real> result(r.height, r.width);
    for (Size i = 0; i < r.height; ++i)
        for (Size j = i; j < r.width; ++j) result(i, j) = r(i, j);
    return result;
}

}  // namespace nequar::testing
