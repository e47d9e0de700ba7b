// Triangular solves, inverses and packed products: the public operations.
#include <limits>

#include "nequar_algebra/algebra.h"
#include "support/chain.h"
#include "support/solver_checks.h"
#include "support/twins.h"

namespace nequar {
namespace {

using namespace test;

template <class Real>
class TriangularAlgebra : public testing::Test {
protected:
    using Lower = MatrixTriangular<Real, TriangleSide::lower>;
    using Upper = MatrixTriangular<Real, TriangleSide::upper>;

    template <class... Arguments>
    bool solve(Arguments... arguments) const {
        return special.slet_Solve_Linear_Equation_for_Triangular_matrix(arguments...);
    }
    template <class... Arguments>
    bool invert(Arguments... arguments) const {
        return special.imt_Inverse_Matrix_for_Triangular_matrix(arguments...);
    }

    // Well conditioned, with NaN in the triangle that nobody may read.
    static Matrix<Real> triangle(bool lower, int n) {
        Matrix<Real> t = dominant_matrix<Real>(n, 5);
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j)
                if (lower ? j > i : j < i) t[i][j] = std::numeric_limits<Real>::quiet_NaN();
        return t;
    }
    static Matrix<Real> cleared(bool lower, Matrix<Real> t) {
        for (int i = 0; i < t.mh(); ++i)
            for (int j = 0; j < t.mw(); ++j)
                if (lower ? j > i : j < i) t[i][j] = 0;
        return t;
    }

    AlgebraForMatrixSpecial<Real> special;
};

TWIN_TEST(TriangularAlgebra, SolvesAndInverts) {
    for (const bool lower : {true, false})
        for (const int n : {1, 2, 17, 64, 130}) {
            SCOPED_TRACE(testing::Message() << "lower " << lower);
            const Matrix<Real> t = this->triangle(lower, n), clear = this->cleared(lower, t);
            const Matrix<Real> b = random_matrix<Real>(n, 5, 6);
            Matrix<Real> x, y = t, inverse;
            expect_solves(clear, 5, 30, [&](auto* given, auto* right, auto* out) {
                return this->solve(lower, given, right, out);
            });
            expect_inverts(clear, 30,
                           [&](auto* given, auto* out) { return this->invert(lower, given, out); });
            expect_solves_arrays(clear, 5, 30, [&](auto... arguments) {
                return this->solve(lower, &t, arguments...);
            });
            // What is not a number in the other triangle is not read, and may be overwritten.
            ASSERT_TRUE(this->solve(lower, &t, &b, &x) && this->solve(lower, &y, &b, &y));
            EXPECT_TRUE(y == x);
            EXPECT_LT(solution_residual(clear, x, b), 30);
            y = t;
            ASSERT_TRUE(this->invert(lower, &t, &inverse) && this->invert(lower, &y, &y));
            EXPECT_TRUE(y == inverse && inverse == this->cleared(lower, inverse));
            y = clear;  // an array that is the matrix itself
            ASSERT_TRUE(this->solve(lower, &y, y.p()[0], true, n, n));
            for (int i = 0; i < n; ++i) EXPECT_NEAR(y[i][i], 1, 1e-4);

            const auto check_packed = [&](auto packed) {
                packed.i_Import(&t);
                expect_solves(clear, 5, 30, [&](auto*, auto* right, auto* out) {
                    return this->solve(&packed, right, out);
                });
                ASSERT_TRUE(this->solve(&packed, &b, &y));
                EXPECT_TRUE(y == x);
                ASSERT_TRUE(this->invert(&packed, &y));
                EXPECT_TRUE(y == inverse);
            };
            if (lower)
                check_packed(typename TestFixture::Lower());
            else
                check_packed(typename TestFixture::Upper());
        }
}

TWIN_TEST(TriangularAlgebra, Refusals) {
    Matrix<Real> t = this->triangle(true, 3), b = random_matrix<Real>(3, 2), x, inverse;
    t[1][1] = 0;
    const Matrix<Real> before = b;
    EXPECT_TRUE(fails_with(this->special, "2", this->solve(true, &t, b.p()[0], true, 2, 3)));
    EXPECT_TRUE(b == before);
    EXPECT_FALSE(this->solve(true, &t, &b, &x));
    EXPECT_TRUE(x == b);
    EXPECT_TRUE(fails_with(this->special, "2", this->invert(true, &t, &inverse)));
    EXPECT_TRUE(inverse == identity_of<Real>(3));
    t = random_matrix<Real>(3, 2);
    EXPECT_TRUE(fails_with(this->special, "1", this->solve(false, &t, &b, &x)));
    EXPECT_TRUE(fails_with(this->special, "1", this->solve(true, &t, b.p()[0], false, 1, -1)));
    EXPECT_TRUE(this->solve(true, &b, b.p()[0], true, 0, 2) == false);
    t = random_matrix<Real>(1, 1);
    t[0][0] = 4;
    ASSERT_TRUE(this->invert(true, &t, &inverse));
    EXPECT_EQ(inverse[0][0], Real(0.25));
    typename TestFixture::Lower trapezoid;
    trapezoid.c_Create(3, 2, Real(1));
    EXPECT_TRUE(fails_with(this->special, "1", this->solve(&trapezoid, &b, &x)));
    EXPECT_TRUE(fails_with(this->special, "2", this->invert(&trapezoid, &inverse)));
}

TWIN_TEST(TriangularAlgebra, PackedProducts) {
    for (const int n : {1, 3, 33, 100}) {
        const Matrix<Real> a = random_matrix<Real>(n, n, 1);
        const Matrix<Real> b = random_matrix<Real>(n, n, 2);
        const auto check = [&](auto left, auto right, bool lower, auto set, auto accumulate) {
            left.i_Import(&a);
            right.i_Import(&b);
            auto c = left;
            ASSERT_TRUE(set(&left, &right, &c));
            Matrix<Real> dense;
            c.e_Export(&dense, true);
            EXPECT_LT(componentwise_product_error(dense, this->cleared(lower, a),
                                                  this->cleared(lower, b)),
                      5);
            auto same = left;
            ASSERT_TRUE(set(&same, &right, &same));
            EXPECT_TRUE(same == c);
            auto sum = c;
            ASSERT_TRUE(accumulate(&left, &right, &sum));
            EXPECT_EQ(sum[0], 2 * c[0]);
            EXPECT_EQ(sum[sum.vs() - 1], 2 * c[c.vs() - 1]);
            EXPECT_TRUE(fails_with(this->special, "1", accumulate(&left, &right, &left)));
            auto other = c;
            other.c_Create(n + 1, n + 1, Real(3));
            EXPECT_FALSE(accumulate(&left, &right, &other));
            EXPECT_TRUE(fails_with(this->special, "1", set(&left, &other, &sum)));
            EXPECT_TRUE(sum.mh() == n && other[0] == 3);
        };
        const auto& s = this->special;
        check(
            typename TestFixture::Lower(), typename TestFixture::Lower(), true,
            [&](auto* x, auto* y, auto* z) { return s.mll_Multiply_Lmatrix_Lmatrix(x, y, z); },
            [&](auto* x, auto* y, auto* z) {
                return s.mlla_Multiply_Lmatrix_Lmatrix_and_Accumulate(x, y, z);
            });
        check(
            typename TestFixture::Upper(), typename TestFixture::Upper(), false,
            [&](auto* x, auto* y, auto* z) { return s.muu_Multiply_Umatrix_Umatrix(x, y, z); },
            [&](auto* x, auto* y, auto* z) {
                return s.muua_Multiply_Umatrix_Umatrix_and_Accumulate(x, y, z);
            });
    }
}

}  // namespace
}  // namespace nequar
