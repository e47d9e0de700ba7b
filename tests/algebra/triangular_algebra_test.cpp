// Triangular solves, inverses and packed products: the public operations.
#include <limits>

#include "nequar_algebra/algebra.h"
#include "support/chain.h"
#include "support/solver_checks.h"
#include "support/twins.h"

namespace nequar::test {
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

    static Matrix<Real> cleared(bool lower, const Matrix<Real>& t, double value = 0) {
        return matrix_of<Real>(t.mh(), t.mw(), [&](int i, int j) {
            return (lower ? j > i : j < i) ? value : double(t[i][j]);
        });
    }
    // Well conditioned, with NaN in the triangle that nobody may read.
    static Matrix<Real> triangle(bool lower, int n) {
        return cleared(lower, dominant_matrix<Real>(n, 5), std::nan(""));
    }

    AlgebraForMatrixSpecial<Real> special;
};

TWIN_TEST(TriangularAlgebra, SolvesAndInverts) {
    for (const bool lower : {true, false})
        for (const int n : {1, 2, 17, 64, 130}) {
            SCOPED_TRACE(testing::Message() << "lower " << lower);
            const Matrix<Real> t = this->triangle(lower, n), clear = this->cleared(lower, t);
            const Matrix<Real> b = random_matrix<Real>(n, 5, 6);
            Matrix<Real> x, y = t, inverse = t;
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
            ASSERT_TRUE(this->invert(lower, &inverse, &inverse) && this->invert(lower, &t, &y));
            EXPECT_TRUE(y == inverse && inverse == this->cleared(lower, inverse));
            y = clear;  // an array that is the matrix itself
            ASSERT_TRUE(this->solve(lower, &y, y.p()[0], true, n, n));
            for (int i = 0; i < n; ++i) EXPECT_NEAR(y[i][i], 1, 1e-4);

            const auto check_packed = [&](auto packed) {
                packed.i_Import(&t);
                expect_solves(clear, 5, 30, [&](auto*, auto* right, auto* out) {
                    return this->solve(&packed, right, out);
                });
                EXPECT_TRUE(this->solve(&packed, &b, &y) && y == x);
                EXPECT_TRUE(this->invert(&packed, &y) && y == inverse);
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
    EXPECT_FALSE(this->solve(true, &b, b.p()[0], true, 0, 2));
    typename TestFixture::Lower trapezoid;
    trapezoid.c_Create(3, 2, Real(1));
    EXPECT_TRUE(fails_with(this->special, "1", this->solve(&trapezoid, &b, &x)));
    EXPECT_TRUE(fails_with(this->special, "2", this->invert(&trapezoid, &inverse)));
}

TWIN_TEST(TriangularAlgebra, PackedProducts) {
    using Special = AlgebraForMatrixSpecial<Real>;
    const Special& al = this->special;
    for (const int n : {1, 3, 33, 100}) {
        const Matrix<Real> a = random_matrix<Real>(n, n, 1), b = random_matrix<Real>(n, n, 2);
        const auto check = [&](auto left, bool lower, auto multiply, auto accumulate) {
            auto right = left, c = left;
            left.i_Import(&a);
            right.i_Import(&b);
            ASSERT_TRUE((al.*multiply)(&left, &right, &c));
            Matrix<Real> dense, p = this->cleared(lower, a), q = this->cleared(lower, b);
            c.e_Export(&dense, true);
            EXPECT_LT(componentwise_product_error(dense, p, q), 5);
            auto same = left, sum = c;
            EXPECT_TRUE((al.*multiply)(&same, &right, &same) && same == c);
            ASSERT_TRUE((al.*accumulate)(&left, &right, &sum));
            for (int k = 0; k < c.vs(); ++k) ASSERT_EQ(sum[k], 2 * c[k]);
            EXPECT_TRUE(fails_with(al, "1", (al.*accumulate)(&left, &right, &left)));
            auto other = c;
            other.c_Create(n + 1, n + 1, Real(3));
            EXPECT_FALSE((al.*accumulate)(&left, &right, &other));
            EXPECT_TRUE(fails_with(al, "1", (al.*multiply)(&left, &other, &sum)));
            EXPECT_TRUE(sum.mh() == n && other[0] == 3);
        };
        check(typename TestFixture::Lower(), true, &Special::mll_Multiply_Lmatrix_Lmatrix,
              &Special::mlla_Multiply_Lmatrix_Lmatrix_and_Accumulate);
        check(typename TestFixture::Upper(), false, &Special::muu_Multiply_Umatrix_Umatrix,
              &Special::muua_Multiply_Umatrix_Umatrix_and_Accumulate);
    }
}

}  // namespace
}  // namespace nequar::test
