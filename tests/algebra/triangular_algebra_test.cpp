// Triangular solves, inverses and packed products: the public operations.
#include <limits>
#include <string>

#include "nequar_algebra/algebra.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"
#include "support/twins.h"

namespace nequar {
namespace {

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
    std::string detail() const { return special.ged_Get_Error_Detail().c_str(); }

    // Well conditioned, with NaN in the triangle that nobody may read.
    static Matrix<Real> triangle(bool lower, int n) {
        Matrix<Real> t = test::dominant_matrix<Real>(n, 5);
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
            SCOPED_TRACE(testing::Message() << "lower " << lower << " n " << n);
            const Matrix<Real> t = this->triangle(lower, n), clear = this->cleared(lower, t);
            const Matrix<Real> b = test::random_matrix<Real>(n, 5, 6);
            Matrix<Real> x, y = b, inverse;
            ASSERT_TRUE(this->solve(lower, &t, &b, &x));
            EXPECT_LT(test::solution_residual(clear, x, b), 30);
            ASSERT_TRUE(this->solve(lower, &t, y.p()[0], true, 5, n));
            EXPECT_TRUE(y == x);
            y = test::transposed(b);
            ASSERT_TRUE(this->solve(lower, &t, y.p()[0], false, 5, n));
            EXPECT_LT(test::solution_residual(clear, test::transposed(y), b), 30);
            Vector<Real> v, w;
            v.c_Create(n, Real(1));
            ASSERT_TRUE(this->solve(lower, &t, &v, &w));
            const Matrix<Real> ones = test::matrix_of<Real>(n, 1, [](int, int) { return 1; });
            EXPECT_LT(
                test::solution_residual(
                    clear, test::matrix_of<Real>(n, 1, [&](int i, int) { return w[i]; }), ones),
                30);
            ASSERT_TRUE(this->invert(lower, &t, &inverse));
            EXPECT_LT(test::solution_residual(clear, inverse, test::identity_of<Real>(n)), 30);
            EXPECT_TRUE(inverse == this->cleared(lower, inverse));

            typename TestFixture::Lower l;
            typename TestFixture::Upper u;
            l.i_Import(&t);
            u.i_Import(&t);
            Matrix<Real> packed_x, packed_inverse;
            Vector<Real> packed_w;
            if (lower) {
                ASSERT_TRUE(this->solve(&l, &b, &packed_x) && this->solve(&l, &v, &packed_w));
                ASSERT_TRUE(this->invert(&l, &packed_inverse));
            } else {
                ASSERT_TRUE(this->solve(&u, &b, &packed_x) && this->solve(&u, &v, &packed_w));
                ASSERT_TRUE(this->invert(&u, &packed_inverse));
            }
            EXPECT_TRUE(packed_x == x && packed_inverse == inverse);
            EXPECT_EQ(packed_w[n - 1], w[n - 1]);
            // the triangle may take the result
            y = t;
            ASSERT_TRUE(this->invert(lower, &y, &y));
            EXPECT_TRUE(y == inverse);
            y = t;
            ASSERT_TRUE(this->solve(lower, &y, &b, &y));
            EXPECT_TRUE(y == x);
            y = clear;
            ASSERT_TRUE(this->solve(lower, &y, y.p()[0], true, n, n));
            for (int i = 0; i < n; ++i) EXPECT_NEAR(y[i][i], 1, 1e-4);
        }
}

TWIN_TEST(TriangularAlgebra, Refusals) {
    Matrix<Real> t = this->triangle(true, 3), b = test::random_matrix<Real>(3, 2), x, inverse;
    t[1][1] = 0;
    const Matrix<Real> before = b;
    EXPECT_FALSE(this->solve(true, &t, b.p()[0], true, 2, 3));
    EXPECT_EQ(this->detail(), "2");
    EXPECT_TRUE(b == before);
    EXPECT_FALSE(this->solve(true, &t, &b, &x));
    EXPECT_TRUE(x == b);
    EXPECT_FALSE(this->invert(true, &t, &inverse));
    EXPECT_EQ(this->detail(), "2");
    EXPECT_TRUE(inverse == test::identity_of<Real>(3));
    t = test::random_matrix<Real>(3, 2);
    EXPECT_FALSE(this->solve(false, &t, &b, &x));
    EXPECT_EQ(this->detail(), "1");
    EXPECT_FALSE(this->solve(true, &t, b.p()[0], false, 1, -1));
    EXPECT_EQ(this->detail(), "1");
    EXPECT_TRUE(this->solve(true, &b, b.p()[0], true, 0, 2) == false);
    t = test::random_matrix<Real>(1, 1);
    t[0][0] = 4;
    ASSERT_TRUE(this->invert(true, &t, &inverse));
    EXPECT_EQ(inverse[0][0], Real(0.25));
    typename TestFixture::Lower trapezoid;
    trapezoid.c_Create(3, 2, Real(1));
    EXPECT_FALSE(this->solve(&trapezoid, &b, &x));
    EXPECT_EQ(this->detail(), "1");
    EXPECT_FALSE(this->invert(&trapezoid, &inverse));
    EXPECT_EQ(this->detail(), "2");
}

TWIN_TEST(TriangularAlgebra, PackedProducts) {
    for (const int n : {1, 3, 33, 100}) {
        const Matrix<Real> a = test::random_matrix<Real>(n, n, 1);
        const Matrix<Real> b = test::random_matrix<Real>(n, n, 2);
        const auto check = [&](auto left, auto right, bool lower, auto set, auto accumulate) {
            left.i_Import(&a);
            right.i_Import(&b);
            auto c = left;
            ASSERT_TRUE(set(&left, &right, &c));
            Matrix<Real> dense;
            c.e_Export(&dense, true);
            EXPECT_LT(test::componentwise_product_error(dense, this->cleared(lower, a),
                                                        this->cleared(lower, b)),
                      5);
            auto same = left;
            ASSERT_TRUE(set(&same, &right, &same));
            EXPECT_TRUE(same == c);
            auto sum = c;
            ASSERT_TRUE(accumulate(&left, &right, &sum));
            EXPECT_EQ(sum[0], 2 * c[0]);
            EXPECT_EQ(sum[sum.vs() - 1], 2 * c[c.vs() - 1]);
            EXPECT_FALSE(accumulate(&left, &right, &left));
            EXPECT_EQ(this->detail(), "1");
            auto other = c;
            other.c_Create(n + 1, n + 1, Real(3));
            EXPECT_FALSE(accumulate(&left, &right, &other));
            EXPECT_FALSE(set(&left, &other, &sum));
            EXPECT_EQ(this->detail(), "1");
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
