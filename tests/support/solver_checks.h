// What every solver has to do, whatever its method: solve for matrices, vectors and raw arrays of
// right-hand sides, invert, and allow any output to be any input. Solutions are judged by
// solution_residual() against a bound.
#pragma once

#include <gtest/gtest.h>

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
    Matrix<Real> x;
    Matrix<Real> same = b;
    ASSERT_TRUE(solve(&given, &b, &x));
    EXPECT_TRUE(given == a);
    EXPECT_LT(solution_residual(a, x, b), bound);
    ASSERT_TRUE(solve(&given, &same, &same));
    EXPECT_TRUE(same == x);
    same = a;
    ASSERT_TRUE(solve(&same, &b, &same));
    EXPECT_TRUE(same == x);
    Vector<Real> right;
    Vector<Real> y;
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
    Matrix<Real> inverse;
    ASSERT_TRUE(invert(&given, &inverse));
    EXPECT_TRUE(given == a);
    EXPECT_LT(solution_residual(a, inverse, identity_of<Real>(a.mh())), bound);
    Matrix<Real> same = a;
    ASSERT_TRUE(invert(&same, &same));
    EXPECT_TRUE(same == inverse);
}

// solve(data, row_major, k, n), in place.
template <class Real, class Solve>
void expect_solves_arrays(const Matrix<Real>& a, int k, double bound, const Solve& solve) {
    const Matrix<Real> b = random_matrix<Real>(a.mh(), k, 8);
    for (const bool row_major : {true, false}) {
        SCOPED_TRACE(::testing::Message() << "n = " << a.mh() << ", by rows: " << row_major);
        Matrix<Real> data = row_major ? b : transposed(b);
        ASSERT_TRUE(solve(data.p()[0], row_major, k, a.mh()));
        EXPECT_LT(solution_residual(a, row_major ? data : transposed(data), b), bound);
    }
}

}  // namespace nequar::test
