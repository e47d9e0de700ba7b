// Solving and inverting by a method's code, and homogeneous equations under a constraint.
#include <climits>
#include <string>

#include "nequar_algebra/linear_equation.h"
#include "support/chain.h"
#include "support/solver_checks.h"
#include "support/twins.h"

namespace nequar {
namespace {

using namespace test;

template <class Real>
class MethodChoice : public testing::Test {
protected:
    LinearEquation<Real> f_;
    Matrix<Real> x_;
};

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

TWIN_TEST(MethodChoice, EveryCodeSolvesAndInverts) {
    const int n = 12;
    const Matrix<Real> a = positive_definite_matrix<Real>(n, 20, 3);
    const auto skew = matrix_of<Real>(
        n, n, [&](int i, int j) { return a[i][j] + Real(0.03125) * Real((i > j) - (i < j)); });
    const MatrixSymmetric<Real> s = packed_of(a);
    const Matrix<Real> b = random_matrix<Real>(n, 2, 4), none;
    const auto& f = this->f_;
    Vector<Real> right, y;
    b.gc_Get_Column(0, 0, n, &right);
    for (const int code : kCodes) {
        SCOPED_TRACE(code);
        // 7, 8 and 9 take the symmetric part of a dense matrix.
        const auto solve = [&](auto* given, auto* rhs, auto* x) {
            return f.sle_Solve_Linear_Equation(code, given, rhs, x);
        };
        const auto invert = [&](auto* given, auto* x) {
            return f.im_Inverse_Matrix(code, given, x);
        };
        if (code >= 7 && code <= 9) {
            ASSERT_TRUE(solve(&skew, &b, &this->x_));
            EXPECT_LT(solution_residual(a, this->x_, b), 30);
            ASSERT_TRUE(invert(&skew, &this->x_));
            EXPECT_LT(solution_residual(a, this->x_, identity_of<Real>(n)), 200);
        } else {
            expect_solves(skew, 2, 30, solve);
            expect_inverts(skew, 200, invert);
        }
        if (code < 10) {
            expect_solves(a, 2, 30, [&](auto*, auto* rhs, auto* x) { return solve(&s, rhs, x); });
            expect_inverts(a, 200, [&](auto*, auto* x) { return invert(&s, x); });
        } else {  // no method has this code
            EXPECT_TRUE(fails_with(f, "10", solve(&s, &b, &this->x_)));
            EXPECT_TRUE(fails_with(f, "10", solve(&s, &right, &y)));
            EXPECT_TRUE(fails_with(f, "10", invert(&s, &this->x_)));
            EXPECT_FALSE(solve(&s, &none, &this->x_));
        }
    }
}

// The methods that are reached and the details, on a matrix that all of them refuse.
TWIN_TEST(MethodChoice, TheWholeTableOfFailures) {
    const Matrix<Real> b = random_matrix<Real>(3, 2), tall = b, zero = constant_matrix<Real>(3, 3);
    const MatrixSymmetric<Real> s = packed_of(zero);
    MatrixSymmetric<Real> damaged = s;  // no longer there
    static_cast<Vector<Real>&>(damaged).c_Create(2, 1);
    const auto right = vector_of<Real>({1, 1, 1});
    Vector<Real> y;
    const auto& f = this->f_;
    for (const Row& row : kTable) {
        SCOPED_TRACE(row.code);
        // The method is reached, and its failure is passed on under this name with this detail.
        const auto expect = [&](bool done, const std::string& method, const std::string& detail,
                                const std::string& name) {
            EXPECT_TRUE(fails_with(f, detail, done));
            const std::string records = records_of(f);
            EXPECT_NE(records.find("\n" + method), std::string::npos) << records;
            EXPECT_NE(records.find(name + ": " + detail), std::string::npos) << records;
        };
        const auto solve = [&](auto* matrix, auto* rhs, auto* x) {
            return f.sle_Solve_Linear_Equation(row.code, matrix, rhs, x);
        };
        const auto invert = [&](auto* matrix) {
            return f.im_Inverse_Matrix(row.code, matrix, &this->x_);
        };
        const auto expect_all = [&](auto* matrix, auto* unfit, const std::string& method,
                                    const char* detail) {
            expect(solve(matrix, &b, &this->x_), method, detail, "sle_Solve_Linear_Equation");
            expect(solve(matrix, &right, &y), method, detail, "sle_Solve_Linear_Equation");
            expect(invert(matrix), "i" + method.substr(1), detail, "im_Inverse_Matrix");
            EXPECT_TRUE(fails_with(f, detail, solve(unfit, &b, &this->x_)));
            EXPECT_TRUE(fails_with(f, detail, invert(unfit)));
        };
        expect_all(&zero, &tall, row.solve, row.detail);
        expect_all(&s, &damaged, row.symmetric_solve, row.symmetric_detail);
    }
}

TWIN_TEST(MethodChoice, HomogeneousUnderAConstraint) {
    const auto& f = this->f_;
    const auto constrained = [&](const Matrix<Real>& a, const Matrix<Real>& c, double tolerance,
                                 Vector<Real>* x) {
        return f.shle_c0_Solve_Homogeneous_Linear_Equation_with_Cx_is_0(&a, &c, Real(tolerance), x);
    };
    const auto in_range = [&](const Matrix<Real>& a, const Matrix<Real>& g, double tolerance,
                              Vector<Real>* x, Vector<Real>* x_hat) {
        return f.shle_gh_Solve_Homogeneous_Linear_Equation_with_x_is_Gx_hat(&a, &g, Real(tolerance),
                                                                            x, x_hat);
    };
    Vector<Real> found, found_hat;
    for (const auto& [m, n] : {std::pair{9, 6}, {4, 6}, {40, 30}})
        for (const int p : {1, 3, 5}) {
            SCOPED_TRACE(testing::Message() << m << " x " << n << " constraints " << p);
            const Matrix<Real> a = random_matrix<Real>(m, n, 5);
            const Matrix<Real> c = rank_deficient_matrix<Real>(p + 1, n, p, 7);
            ASSERT_TRUE(constrained(a, c, 1e-4, &found));
            const Matrix<Real> x = column_of(found);
            const double least = norm_of(product(a, x));
            EXPECT_LT(norm_of(product(c, x)), 300 * kEpsilon<Real>);
            EXPECT_NEAR(norm_of(x), 1, 100 * kEpsilon<Real>);
            // no unit vector in a basis of the space does better
            Matrix<Real> space;
            int rank = 0;
            ASSERT_TRUE(f.fin_Find_Input_Null_vector_space(&c, Real(1e-4), rank, &space, nullptr,
                                                           nullptr, nullptr));
            for (unsigned k = 0; k < 20; ++k) {
                const auto other = product(space, random_matrix<Real>(space.mw(), 1, k));
                EXPECT_LE(least, norm_of(product(a, other)) / norm_of(other) + 1e-4);
            }
            // the same space as the range of its basis, twice over
            Matrix<Real> g;
            g.c_Create(n, 2 * space.mw());
            for (int i = 0; i < n; ++i)
                for (int j = 0; j < g.mw(); ++j) g[i][j] = space[i][j / 2] * Real(j + 1);
            ASSERT_TRUE(in_range(a, g, 1e-4, &found, &found_hat));
            EXPECT_EQ(found_hat.vs(), g.mw());
            EXPECT_NEAR(norm_of(product(a, column_of(found))), least, 1e4 * kEpsilon<Real>);
            EXPECT_LT(largest_difference(product(g, column_of(found_hat)), column_of(found)),
                      1e3 * kEpsilon<Real>);
            ASSERT_TRUE(in_range(a, g, 1e-4, &found, nullptr));
        }
    const Matrix<Real> a = random_matrix<Real>(4, 3), identity = identity_of<Real>(3);
    EXPECT_TRUE(fails_with(f, "2", constrained(a, identity, 0, &found)));
    EXPECT_TRUE(fails_with(f, "1", constrained(a, identity, 2, &found)));
    EXPECT_TRUE(fails_with(f, "2", in_range(a, constant_matrix<Real>(3, 3), 0, &found, nullptr)));
    EXPECT_TRUE(fails_with(f, "1", in_range(a, identity, 0, &found, &found)));
}

}  // namespace
}  // namespace nequar
