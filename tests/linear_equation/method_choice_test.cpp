// Solving and inverting by a method's code, and homogeneous equations under a constraint.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "nequar_algebra/linear_equation.h"
#include "support/chain.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"

namespace nequar {
namespace {

using test::kEpsilon;

template <class Real>
class MethodChoice : public testing::Test {
protected:
    std::string trace() const {
        return test::records_of(f_);
    }
    std::string detail() const { return f_.ged_Get_Error_Detail().c_str(); }
    LinearEquation<Real> f_;
    Matrix<Real> x_;
};
using Reals = testing::Types<double, float>;
TYPED_TEST_SUITE(MethodChoice, Reals);

constexpr int kCodes[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 77, INT_MAX, -1, INT_MIN};

struct Row {
    int code;
    const char* solve;  // what a dense A reaches
    const char* detail;
    const char* symmetric_solve;
    const char* symmetric_detail;
};
constexpr Row kTable[] = {{0, "sgj", "4", "sgj", "4"},   {1, "slu", "8", "slu", "10"},
                          {2, "sqr", "5", "sqr", "5"},   {3, "slu", "8", "sql", "6"},
                          {4, "srq", "6", "srq", "7"},   {5, "slu", "8", "slq", "8"},
                          {6, "ssv", "7", "ssv", "9"},   {7, "sll", "1", "sll", "1"},
                          {8, "suu", "2", "suu", "2"},   {9, "sev", "3", "sev", "3"},
                          {10, "slu", "8", "slu", "10"}, {INT_MAX, "slu", "8", "slu", "10"},
                          {-1, "slu", "8", "slu", "10"}, {INT_MIN, "slu", "8", "slu", "10"}};

TYPED_TEST(MethodChoice, EveryCodeSolvesAndInverts) {
    using Real = TypeParam;
    const int n = 12;
    const Matrix<Real> a = test::positive_definite_matrix<Real>(n, 20, 3);
    Matrix<Real> skew = a;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < i; ++j) {
            skew[i][j] += Real(0.03125);
            skew[j][i] -= Real(0.03125);
        }
    MatrixSymmetric<Real> s;
    s.i_Import(&a);
    const Matrix<Real> b = test::random_matrix<Real>(n, 2, 4),
                       identity = test::identity_of<Real>(n);
    Vector<Real> right, y;
    b.gc_Get_Column(0, 0, n, &right);
    for (const int code : kCodes) {
        SCOPED_TRACE(code);
        const bool is_unfilled = code >= 10;
        const Matrix<Real>& solved = code >= 7 && code <= 9 ? a : skew;
        ASSERT_TRUE(this->f_.sle_Solve_Linear_Equation(code, &skew, &b, &this->x_));
        EXPECT_LT(test::solution_residual(solved, this->x_, b), 30);
        ASSERT_TRUE(this->f_.sle_Solve_Linear_Equation(code, &skew, &right, &y));
        for (int i = 0; i < n; ++i) EXPECT_NEAR(y[i], this->x_[i][0], 1e4 * kEpsilon<Real>);
        ASSERT_TRUE(this->f_.im_Inverse_Matrix(code, &skew, &this->x_));
        EXPECT_LT(test::solution_residual(solved, this->x_, identity), 200);
        EXPECT_EQ(this->f_.sle_Solve_Linear_Equation(code, &s, &b, &this->x_), !is_unfilled);
        if (is_unfilled) {
            EXPECT_EQ(this->detail(), "10");
            EXPECT_FALSE(this->f_.sle_Solve_Linear_Equation(code, &s, &right, &y));
            EXPECT_FALSE(this->f_.im_Inverse_Matrix(code, &s, &this->x_));
            EXPECT_EQ(this->detail(), "10");
            Matrix<Real> none;
            EXPECT_FALSE(this->f_.sle_Solve_Linear_Equation(code, &s, &none, &this->x_));
            continue;
        }
        EXPECT_LT(test::solution_residual(a, this->x_, b), 30);
        ASSERT_TRUE(this->f_.sle_Solve_Linear_Equation(code, &s, &right, &y));
        for (int i = 0; i < n; ++i) EXPECT_NEAR(y[i], this->x_[i][0], 1e4 * kEpsilon<Real>);
        this->x_ = b;
        ASSERT_TRUE(this->f_.sle_Solve_Linear_Equation(code, &s, &this->x_, &this->x_));
        EXPECT_LT(test::solution_residual(a, this->x_, b), 30);
        ASSERT_TRUE(this->f_.im_Inverse_Matrix(code, &s, &this->x_));
        EXPECT_LT(test::solution_residual(a, this->x_, identity), 200);
    }
}

// The methods that are reached and the details, on a matrix that all of them refuse.
TYPED_TEST(MethodChoice, TheWholeTableOfFailures) {
    using Real = TypeParam;
    const Matrix<Real> b = test::random_matrix<Real>(3, 2);
    Matrix<Real> zero;
    zero.c_Create(3, 3, 0);
    MatrixSymmetric<Real> s;
    s.c_Create(3, 3, 0);
    Vector<Real> right, y;
    right.c_Create(3, 1);
    for (const Row& row : kTable) {
        SCOPED_TRACE(row.code);
        const auto expect = [&](bool succeeded, const char* method, const char* detail,
                                const char* name) {
            EXPECT_FALSE(succeeded);
            EXPECT_EQ(this->detail(), detail);
            EXPECT_NE(this->trace().find("\n" + std::string(method)), std::string::npos)
                << this->trace();
            EXPECT_NE(this->trace().find(std::string(name) + ": " + detail), std::string::npos);
        };
        const std::string inverse = "i" + std::string(row.solve + 1),
                          symmetric_inverse = "i" + std::string(row.symmetric_solve + 1);
        expect(this->f_.sle_Solve_Linear_Equation(row.code, &zero, &b, &this->x_), row.solve,
               row.detail, "sle_Solve_Linear_Equation");
        expect(this->f_.sle_Solve_Linear_Equation(row.code, &zero, &right, &y), row.solve,
               row.detail, "sle_Solve_Linear_Equation");
        expect(this->f_.im_Inverse_Matrix(row.code, &zero, &this->x_), inverse.c_str(), row.detail,
               "im_Inverse_Matrix");
        expect(this->f_.sle_Solve_Linear_Equation(row.code, &s, &b, &this->x_), row.symmetric_solve,
               row.symmetric_detail, "sle_Solve_Linear_Equation");
        expect(this->f_.sle_Solve_Linear_Equation(row.code, &s, &right, &y), row.symmetric_solve,
               row.symmetric_detail, "sle_Solve_Linear_Equation");
        expect(this->f_.im_Inverse_Matrix(row.code, &s, &this->x_), symmetric_inverse.c_str(),
               row.symmetric_detail, "im_Inverse_Matrix");
        // not square, and no longer there
        const Matrix<Real> tall = test::random_matrix<Real>(3, 2);
        EXPECT_FALSE(this->f_.sle_Solve_Linear_Equation(row.code, &tall, &b, &this->x_));
        EXPECT_EQ(this->detail(), row.detail);
        EXPECT_FALSE(this->f_.im_Inverse_Matrix(row.code, &tall, &this->x_));
        EXPECT_EQ(this->detail(), row.detail);
        MatrixSymmetric<Real> damaged = s;
        static_cast<Vector<Real>&>(damaged).c_Create(2, 1);
        EXPECT_FALSE(this->f_.sle_Solve_Linear_Equation(row.code, &damaged, &b, &this->x_));
        EXPECT_EQ(this->detail(), row.symmetric_detail);
        EXPECT_FALSE(this->f_.im_Inverse_Matrix(row.code, &damaged, &this->x_));
        EXPECT_EQ(this->detail(), row.symmetric_detail);
    }
}

TYPED_TEST(MethodChoice, HomogeneousUnderAConstraint) {
    using Real = TypeParam;
    for (const auto& [m, n] : {std::pair{9, 6}, {4, 6}, {40, 30}})
        for (const int p : {1, 3, 5}) {
            SCOPED_TRACE(testing::Message() << m << " x " << n << " constraints " << p);
            const Matrix<Real> a = test::random_matrix<Real>(m, n, 5);
            const Matrix<Real> c = test::rank_deficient_matrix<Real>(p + 1, n, p, 7);
            Vector<Real> x, x_hat;
            const auto norm_of = [](const Matrix<Real>& matrix, const Vector<Real>& v) {
                double sum = 0;
                for (int i = 0; i < matrix.mh(); ++i) {
                    double row = 0;
                    for (int j = 0; j < matrix.mw(); ++j)
                        row += double(matrix[i][j]) * double(v[j]);
                    sum += row * row;
                }
                return std::sqrt(sum);
            };
            ASSERT_TRUE(this->f_.shle_c0_Solve_Homogeneous_Linear_Equation_with_Cx_is_0(
                &a, &c, Real(1e-4), &x));
            EXPECT_LT(norm_of(c, x), 300 * kEpsilon<Real>);
            EXPECT_NEAR(norm_of(test::identity_of<Real>(n), x), 1, 100 * kEpsilon<Real>);
            // no unit vector in a basis of the space does better
            Matrix<Real> space;
            int rank = 0;
            ASSERT_TRUE(this->f_.fin_Find_Input_Null_vector_space(&c, Real(1e-4), rank, &space,
                                                                  nullptr, nullptr, nullptr));
            test::Uniform uniform(3);
            for (int k = 0; k < 20; ++k) {
                Vector<Real> other;
                other.c_Create(n, 0);
                double length = 0;
                for (int j = 0; j < space.mw(); ++j) {
                    const double weight = uniform();
                    length += weight * weight;
                    for (int i = 0; i < n; ++i) other[i] += Real(weight) * space[i][j];
                }
                EXPECT_LE(norm_of(a, x), norm_of(a, other) / std::sqrt(length) + 1e-4);
            }
            // the same space as the range of its basis, twice over
            const Matrix<Real> g = test::matrix_of<Real>(
                n, 2 * space.mw(), [&](int i, int j) { return double(space[i][j / 2]) * (j + 1); });
            Vector<Real> again;
            ASSERT_TRUE(this->f_.shle_gh_Solve_Homogeneous_Linear_Equation_with_x_is_Gx_hat(
                &a, &g, Real(1e-4), &again, &x_hat));
            EXPECT_EQ(x_hat.vs(), g.mw());
            EXPECT_NEAR(norm_of(a, again), norm_of(a, x), 1e4 * kEpsilon<Real>);
            for (int i = 0; i < n; ++i) {
                double sum = 0;
                for (int j = 0; j < g.mw(); ++j) sum += double(g[i][j]) * double(x_hat[j]);
                EXPECT_NEAR(sum, again[i], 1e3 * kEpsilon<Real>);
            }
            ASSERT_TRUE(this->f_.shle_gh_Solve_Homogeneous_Linear_Equation_with_x_is_Gx_hat(
                &a, &g, Real(1e-4), &again, nullptr));
        }
    const Matrix<Real> a = test::random_matrix<Real>(4, 3), identity = test::identity_of<Real>(3);
    Matrix<Real> zero;
    zero.c_Create(3, 3, 0);
    Vector<Real> x;
    EXPECT_FALSE(this->f_.shle_c0_Solve_Homogeneous_Linear_Equation_with_Cx_is_0(&a, &identity,
                                                                                 Real(0), &x));
    EXPECT_EQ(this->detail(), "2");
    EXPECT_FALSE(this->f_.shle_c0_Solve_Homogeneous_Linear_Equation_with_Cx_is_0(&a, &identity,
                                                                                 Real(2), &x));
    EXPECT_EQ(this->detail(), "1");
    EXPECT_FALSE(this->f_.shle_gh_Solve_Homogeneous_Linear_Equation_with_x_is_Gx_hat(
        &a, &zero, Real(0), &x, nullptr));
    EXPECT_EQ(this->detail(), "2");
    EXPECT_FALSE(this->f_.shle_gh_Solve_Homogeneous_Linear_Equation_with_x_is_Gx_hat(
        &a, &identity, Real(0), &x, &x));
    EXPECT_EQ(this->detail(), "1");
}

}  // namespace
}  // namespace nequar
