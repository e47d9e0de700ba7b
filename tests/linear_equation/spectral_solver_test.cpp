// Solving and inverting by singular values, pseudo-inverses.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "nequar_algebra/linear_equation.h"
#include "support/chain.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"

namespace nequar {
namespace {

using test::kEpsilon;
using test::product;

template <class Real>
class SpectralSolvers : public testing::Test {
protected:
    std::string detail() const { return f_.ged_Get_Error_Detail().c_str(); }
    std::string trace() const { return test::records_of(f_); }
    LinearEquation<Real> f_;
    Matrix<Real> u_, v_, x_;
    MatrixDiagonal<Real> s_;
};
using Reals = testing::Types<double, float>;
TYPED_TEST_SUITE(SpectralSolvers, Reals);

TYPED_TEST(SpectralSolvers, SolveAndInvert) {
    using Real = TypeParam;
    for (const int n : {1, 2, 9, 30, 70}) {
        const Matrix<Real> a = test::random_matrix<Real>(n, n, 3),
                           b = test::random_matrix<Real>(n, 3, 4);
        ASSERT_TRUE(this->f_.ssv_Solve_based_on_SVD(&a, Real(1e-6), &b, &this->x_));
        EXPECT_LT(test::solution_residual(a, this->x_, b), 10) << n;
        const Matrix<Real> solution = this->x_;
        Matrix<Real> inverse, again = b;
        int steps = 0;
        ASSERT_TRUE(this->f_.isv_Inverse_matrix_based_on_SVD(&a, Real(1e-6), &inverse));
        EXPECT_LT(test::solution_residual(inverse, a, test::identity_of<Real>(n)), 10);
        ASSERT_TRUE(this->f_.ssv_Solve_based_on_SVD(&a, Real(1e-6), &again, &again));
        EXPECT_TRUE(again == solution);
        // with the decomposition
        ASSERT_TRUE(this->f_.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
            &a, &this->u_, &this->s_, &this->v_, 10000, steps));
        const double bound = 100 * n * kEpsilon<Real> * double(this->s_[0] / this->s_[n - 1]) *
                             test::largest_of(solution);
        again = b;
        ASSERT_TRUE(this->f_.u_ssv_Solve_based_on_SVD(&this->u_, &this->s_, &this->v_, Real(1e-6),
                                                      &again, &again));
        EXPECT_LE(test::largest_difference(again, solution), bound);
        for (const bool row_major : {false, true}) {
            Matrix<Real> data = row_major ? b : test::transposed(b);
            ASSERT_TRUE(this->f_.u_ssv_Solve_based_on_SVD(
                &this->u_, &this->s_, &this->v_, Real(1e-6), data.p()[0], row_major, 3, n));
            EXPECT_TRUE((row_major ? data : test::transposed(data)) == again);
        }
        Vector<Real> right, found;
        b.gc_Get_Column(1, 0, n, &right);
        ASSERT_TRUE(this->f_.u_ssv_Solve_based_on_SVD(&this->u_, &this->s_, &this->v_, Real(1e-6),
                                                      &right, &found));
        ASSERT_TRUE(this->f_.ssv_Solve_based_on_SVD(&a, Real(1e-6), &right, &right));
        for (int i = 0; i < n; ++i) {
            EXPECT_NEAR(right[i], solution[i][1], bound);
            EXPECT_NEAR(found[i], solution[i][1], bound);
        }
        ASSERT_TRUE(this->f_.u_isv_Inverse_matrix_based_on_SVD(&this->u_, &this->s_, &this->v_,
                                                               Real(1e-6), &this->u_));
        EXPECT_LE(test::largest_difference(this->u_, inverse),
                  bound / test::largest_of(solution) * test::largest_of(inverse));
    }
}

// A X A = A, X A X = X, both products symmetric
TYPED_TEST(SpectralSolvers, MoorePenroseConditions) {
    using Real = TypeParam;
    for (const auto& [m, n] :
         {std::pair{8, 5}, {5, 8}, {6, 6}, {70, 50}, {50, 70}, {60, 20}, {20, 60}})
        for (const int rank : {1, 3, 5, std::min(m, n)}) {
            SCOPED_TRACE(testing::Message() << m << " x " << n << " rank " << rank);
            const Matrix<Real> a = test::rank_deficient_matrix<Real>(m, n, rank, 9);
            ASSERT_TRUE(
                this->f_.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, Real(1e-4), &this->x_));
            const Matrix<Real> ax = product(a, this->x_), xa = product(this->x_, a);
            const double size =
                test::largest_of(a) * test::largest_of(this->x_) * 40 * (m + n) * kEpsilon<Real>;
            EXPECT_LE(test::largest_difference(ax, test::transposed(ax)), size);
            EXPECT_LE(test::largest_difference(xa, test::transposed(xa)), size);
            EXPECT_LE(test::largest_difference(product(ax, a), a), size * test::largest_of(a));
            EXPECT_LE(test::largest_difference(product(xa, this->x_), this->x_),
                      size * test::largest_of(this->x_));
            if (m < n) continue;
            Matrix<Real> again;
            ASSERT_TRUE(this->f_.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
                &a, &this->u_, &this->s_, &this->v_));
            ASSERT_TRUE(this->f_.u_pisv_Pseudo_Inverse_matrix_based_on_SVD(
                &this->u_, &this->s_, &this->v_, Real(1e-4), &again));
            EXPECT_LE(test::largest_difference(again, this->x_), size * test::largest_of(this->x_));
        }
    Matrix<Real> zero;
    zero.c_Create(3, 2, 0);
    ASSERT_TRUE(this->f_.pisv_Pseudo_Inverse_matrix_based_on_SVD(&zero, Real(0), &zero));
    EXPECT_TRUE(zero == test::matrix_of<Real>(2, 3, [](int, int) { return 0; }));
}

// 2^e A has 2^-e times the inverse; a singular value in doubt beside the largest changes the way of
// computing, not the result.
TYPED_TEST(SpectralSolvers, EndsOfTheRangeAndDoubtfulRank) {
    using Real = TypeParam;
    const int n = 12;
    const Matrix<Real> a = test::random_matrix<Real>(n, n, 5),
                       b = test::random_matrix<Real>(n, 2, 6);
    Matrix<Real> inverse, solution;
    ASSERT_TRUE(this->f_.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, Real(0), &inverse));
    ASSERT_TRUE(this->f_.ssv_Solve_based_on_SVD(&a, Real(0), &b, &solution));
    for (const int sign : {-1, 1}) {
        const Real factor =
            std::ldexp(Real(1), sign * std::numeric_limits<Real>::max_exponent * 3 / 4);
        const Matrix<Real> scaled =
            test::matrix_of<Real>(n, n, [&](int i, int j) { return factor * a[i][j]; });
        ASSERT_TRUE(this->f_.pisv_Pseudo_Inverse_matrix_based_on_SVD(&scaled, Real(0), &this->x_));
        const Matrix<Real> back =
            test::matrix_of<Real>(n, n, [&](int i, int j) { return factor * this->x_[i][j]; });
        EXPECT_LE(test::largest_difference(back, inverse),
                  1000 * n * kEpsilon<Real> * test::largest_of(inverse));
        ASSERT_TRUE(this->f_.ssv_Solve_based_on_SVD(&scaled, Real(0), &b, &this->x_));
        const Matrix<Real> x =
            test::matrix_of<Real>(n, 2, [&](int i, int j) { return factor * this->x_[i][j]; });
        EXPECT_LE(test::largest_difference(x, solution),
                  1000 * n * kEpsilon<Real> * test::largest_of(solution));
    }
    const Matrix<Real> doubtful = test::matrix_of<Real>(n, n, [&](int i, int j) {
        return i != j ? Real(0) : i == 3 ? kEpsilon<Real> : Real(i + 1);
    });
    ASSERT_TRUE(this->f_.ssv_Solve_based_on_SVD(&doubtful, Real(0), &b, &this->x_));
    EXPECT_LT(test::solution_residual(doubtful, this->x_, b), 10);
    ASSERT_TRUE(this->f_.isv_Inverse_matrix_based_on_SVD(&doubtful, Real(0), &inverse));
    EXPECT_NEAR(inverse[3][3] * kEpsilon<Real>, 1, 10 * kEpsilon<Real>);
    EXPECT_NEAR(inverse[4][4], Real(1) / 5, kEpsilon<Real>);
}

TYPED_TEST(SpectralSolvers, Refusals) {
    using Real = TypeParam;
    Matrix<Real> a = test::matrix_of<Real>(3, 3, [](int i, int j) {
        return i != j ? 0 : i == 2 ? 1e-12 : 3 - i;
    });
    const Matrix<Real> b = test::random_matrix<Real>(3, 1), tall = test::random_matrix<Real>(4, 3),
                       wide = test::transposed(tall);
    EXPECT_FALSE(this->f_.ssv_Solve_based_on_SVD(&a, Real(1e-10), &b, &this->x_));
    EXPECT_EQ(this->trace(),
              "u_tcs_Test_Components_from_SVD: 2\nu_ssv_Solve_based_on_SVD: "
              "1\nssv_Solve_based_on_SVD: 2");
    EXPECT_FALSE(this->f_.isv_Inverse_matrix_based_on_SVD(&a, Real(1), &this->x_));
    EXPECT_EQ(this->trace(),
              "u_rsv_Rank_based_on_SVD: 1\nu_tcs_Test_Components_from_SVD: 1\n"
              "u_isv_Inverse_matrix_based_on_SVD: 1\nisv_Inverse_matrix_based_on_SVD: 2");
    EXPECT_TRUE(this->f_.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, Real(1e-10), &this->x_));
    EXPECT_FALSE(this->f_.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, Real(-0.1), &this->x_));
    EXPECT_EQ(
        this->trace(),
        "u_pisv_Pseudo_Inverse_matrix_based_on_SVD: 3\npisv_Pseudo_Inverse_matrix_based_on_SVD: 2");
    EXPECT_FALSE(this->f_.ssv_Solve_based_on_SVD(&wide, Real(0), &b, &this->x_));
    EXPECT_EQ(this->detail(), "1");
    EXPECT_FALSE(this->f_.ssv_Solve_based_on_SVD(&tall, Real(0), &b, &this->x_));
    EXPECT_EQ(this->detail(), "2");
    a = test::random_matrix<Real>(4, 4);
    EXPECT_FALSE(this->f_.ssv_Solve_based_on_SVD(&a, Real(0), &b, &this->x_));
    EXPECT_EQ(this->trace(), "u_ssv_Solve_based_on_SVD: 2\nssv_Solve_based_on_SVD: 2");
    a[1][2] = std::numeric_limits<Real>::quiet_NaN();
    this->x_.c_Create(1, 1, 5);
    EXPECT_FALSE(this->f_.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, Real(0), &this->x_));
    EXPECT_TRUE(this->detail() == "1" && this->x_[0][0] == 5);

    const Matrix<Real> identity = test::identity_of<Real>(3), small = test::identity_of<Real>(2);
    int rank = -1;
    struct Case {
        double s[3];
        const Matrix<Real>* u;
        const Matrix<Real>* v;
        int order;
        const char* test;
        const char* pseudo;
    };
    const Case cases[] = {{{3, 2, 1}, &identity, &identity, 3, "", ""},
                          {{3, 2, 0}, &identity, &identity, 3, "2", ""},
                          {{1, 2, 1}, &identity, &identity, 3, "1", "incorrect ordering"},
                          {{1, 0, -1}, &identity, &identity, 3, "1", "negative value"},
                          {{3, 2, 1}, &small, &identity, 3, "2", "1"},
                          {{3, 2, 1}, &identity, &small, 3, "3", "2"},
                          {{3, 2, 1}, &identity, &identity, 4, "4", ""}};
    for (const Case& c : cases) {
        this->s_.c_Create(c.order, 3);
        for (int i = 0; i < 3; ++i) this->s_[i] = Real(c.s[i]);
        this->f_.cr_Clear_Record();
        EXPECT_EQ(this->f_.u_tcs_Test_Components_from_SVD(c.u, &this->s_, c.v, Real(0.01), rank),
                  *c.test == 0);
        EXPECT_TRUE(*c.test == 0 || this->detail() == c.test) << &c - cases << this->detail();
        EXPECT_EQ(this->f_.u_pisv_Pseudo_Inverse_matrix_based_on_SVD(c.u, &this->s_, c.v,
                                                                     Real(0.01), &this->x_),
                  *c.pseudo == 0);
        EXPECT_TRUE(*c.pseudo == 0 || this->detail() == c.pseudo) << &c - cases << this->detail();
    }
}

}  // namespace
}  // namespace nequar
