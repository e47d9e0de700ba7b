// What every solver has to do, whatever its method: solve for matrices, vectors and raw arrays of
// right-hand sides, invert, and allow any output to be any input. Solutions are judged by
// solution_residual() against a bound.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "support/matrix_gallery.h"
#include "support/residual.h"

namespace nequar::test {

// solve(a, b, x) and invert(a, x), for matrices as right-hand sides and for vectors. Solvers that
// hold their factors already ignore a.
template <class Real, class Solve>
void expect_solves(const Matrix<Real>& a, int k, double bound, const Solve& solve) {
    const int n = a.mh();
    SCOPED_TRACE(::testing::Message() << "n = " << n << ", k = " << k);
    const Matrix<Real> b = random_matrix<Real>(n, k, 8);
    const Matrix<Real> given = a;
    Matrix<Real> x, same = b;
    ASSERT_TRUE(solve(&given, &b, &x));
    EXPECT_TRUE(given == a);
    EXPECT_LT(solution_residual(a, x, b), bound);
    ASSERT_TRUE(solve(&given, &same, &same));
    EXPECT_TRUE(same == x);
    same = a;
    ASSERT_TRUE(solve(&same, &b, &same));
    EXPECT_TRUE(same == x);
    Vector<Real> right, y;
    b.gc_Get_Column(k - 1, 0, n, &right);
    ASSERT_TRUE(solve(&given, &right, &y));
    EXPECT_LT(solution_residual(a, column_of(y), column_of(right)), bound);
    ASSERT_TRUE(solve(&given, &right, &right));
    EXPECT_TRUE(right == y);
}

template <class Real, class Invert>
void expect_inverts(const Matrix<Real>& a, double bound, const Invert& invert) {
    SCOPED_TRACE(::testing::Message() << "n = " << a.mh());
    const Matrix<Real> given = a;
    Matrix<Real> inverse, same = a;
    ASSERT_TRUE(invert(&given, &inverse));
    EXPECT_TRUE(given == a);
    EXPECT_LT(solution_residual(a, inverse, identity_of<Real>(a.mh())), bound);
    ASSERT_TRUE(invert(&same, &same));
    EXPECT_TRUE(same == inverse);
}

// A X A = A, X A X = X, both products symmetric: within bound eps |A| |X|, times what is rebuilt.
template <class Real>
void expect_pseudo_inverse(const Matrix<Real>& a, const Matrix<Real>& x, double bound) {
    const Matrix<Real> ax = product(a, x), xa = product(x, a);
    const double size = largest_of(a) * largest_of(x) * bound * kEpsilon<Real>;
    EXPECT_LE(largest_difference(ax, transposed(ax)), size);
    EXPECT_LE(largest_difference(xa, transposed(xa)), size);
    EXPECT_LE(largest_difference(product(ax, a), a), size * largest_of(a));
    EXPECT_LE(largest_difference(product(xa, x), x), size * largest_of(x));
}

// solve(data, row_major, k, n), in place; what lies behind the data stays.
template <class Real, class Solve>
void expect_solves_arrays(const Matrix<Real>& a, int k, double bound, const Solve& solve) {
    const int n = a.mh();
    const Matrix<Real> b = random_matrix<Real>(n, k, 8);
    for (const bool row_major : {true, false}) {
        SCOPED_TRACE(::testing::Message() << "n = " << n << ", by rows: " << row_major);
        const Matrix<Real> laid = row_major ? b : transposed(b);
        std::vector<Real> data(laid.p()[0], laid.p()[0] + n * k);
        data.push_back(77);
        ASSERT_TRUE(solve(data.data(), row_major, k, n));
        EXPECT_EQ(data.back(), 77);
        const auto x = matrix_of<Real>(n, k, [&](int i, int j) {
            return data[static_cast<std::size_t>(row_major ? i * k + j : i + n * j)];
        });
        EXPECT_LT(solution_residual(a, x, b), bound);
    }
}

}  // namespace nequar::test
