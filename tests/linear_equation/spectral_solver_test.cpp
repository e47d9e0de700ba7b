// Solving and inverting by singular values, pseudo-inverses.
#include <algorithm>
#include <cmath>
#include <limits>

#include "nequar_algebra/linear_equation.h"
#include "support/chain.h"
#include "support/solver_checks.h"
#include "support/twins.h"

namespace nequar {
namespace {

using namespace test;

template <class Real>
class SpectralSolvers : public testing::Test {
protected:
    LinearEquation<Real> f_;
    Matrix<Real> u_, v_, x_;
    MatrixDiagonal<Real> s_;
};

TWIN_TEST(SpectralSolvers, SolveAndInvert) {
    const auto& f = this->f_;
    const Real tolerance = Real(1e-6);
    for (const int n : {1, 2, 9, 30, 70}) {
        const Matrix<Real> a = random_matrix<Real>(n, n, 3);
        expect_solves(a, 3, 10, [&](auto* given, auto* b, auto* x) {
            return f.ssv_Solve_based_on_SVD(given, tolerance, b, x);
        });
        expect_inverts(a, 50, [&](auto* given, auto* x) {
            return f.isv_Inverse_matrix_based_on_SVD(given, tolerance, x);
        });
        int steps = 0;
        ASSERT_TRUE(f.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
            &a, &this->u_, &this->s_, &this->v_, 10000, steps));
        const auto solve = [&](auto... to) {
            return f.u_ssv_Solve_based_on_SVD(&this->u_, &this->s_, &this->v_, tolerance, to...);
        };
        expect_solves(a, 3, 10, [&](auto*, auto* b, auto* x) { return solve(b, x); });
        expect_solves_arrays(a, 3, 10, solve);
        ASSERT_TRUE(f.u_isv_Inverse_matrix_based_on_SVD(&this->u_, &this->s_, &this->v_, tolerance,
                                                        &this->u_));
        EXPECT_LT(solution_residual(a, this->u_, identity_of<Real>(n)), 50);
    }
}

TWIN_TEST(SpectralSolvers, MoorePenroseConditions) {
    for (const auto& [m, n] :
         {std::pair{8, 5}, {5, 8}, {6, 6}, {70, 50}, {50, 70}, {60, 20}, {20, 60}})
        for (const int rank : {1, 3, 5, std::min(m, n)}) {
            SCOPED_TRACE(testing::Message() << m << " x " << n << " rank " << rank);
            const Matrix<Real> a = rank_deficient_matrix<Real>(m, n, rank, 9);
            ASSERT_TRUE(
                this->f_.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, Real(1e-4), &this->x_));
            expect_pseudo_inverse(a, this->x_, 40 * (m + n));
            if (m < n) continue;
            Matrix<Real> again;
            ASSERT_TRUE(this->f_.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
                &a, &this->u_, &this->s_, &this->v_));
            ASSERT_TRUE(this->f_.u_pisv_Pseudo_Inverse_matrix_based_on_SVD(
                &this->u_, &this->s_, &this->v_, Real(1e-4), &again));
            EXPECT_LE(largest_difference(again, this->x_), largest_of(a) * largest_of(this->x_) *
                                                               largest_of(this->x_) * 40 * (m + n) *
                                                               kEpsilon<Real>);
        }
    auto zero = constant_matrix<Real>(3, 2);
    ASSERT_TRUE(this->f_.pisv_Pseudo_Inverse_matrix_based_on_SVD(&zero, Real(0), &zero));
    EXPECT_TRUE(zero == constant_matrix<Real>(2, 3));
}

// 2^e A has 2^-e times the inverse; a singular value in doubt beside the largest changes the way of
// computing, not the result.
TWIN_TEST(SpectralSolvers, EndsOfTheRangeAndDoubtfulRank) {
    const int n = 12;
    const auto& f = this->f_;
    const Matrix<Real> a = random_matrix<Real>(n, n, 5), b = random_matrix<Real>(n, 2, 6);
    Matrix<Real> inverse, solution, x;
    ASSERT_TRUE(f.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, Real(0), &inverse));
    ASSERT_TRUE(f.ssv_Solve_based_on_SVD(&a, Real(0), &b, &solution));
    for (const int sign : {-1, 1}) {
        const int exponent = sign * std::numeric_limits<Real>::max_exponent * 3 / 4;
        const auto times = [exponent](const Matrix<Real>& m) {
            return matrix_of<Real>(m.mh(), m.mw(),
                                   [&](int i, int j) { return std::ldexp(m[i][j], exponent); });
        };
        const auto expect_near = [](const Matrix<Real>& found, const Matrix<Real>& wanted) {
            EXPECT_LE(largest_difference(found, wanted),
                      1000 * n * kEpsilon<Real> * largest_of(wanted));
        };
        const Matrix<Real> scaled = times(a);
        ASSERT_TRUE(f.pisv_Pseudo_Inverse_matrix_based_on_SVD(&scaled, Real(0), &x));
        expect_near(times(x), inverse);
        ASSERT_TRUE(f.ssv_Solve_based_on_SVD(&scaled, Real(0), &b, &x));
        expect_near(times(x), solution);
    }
    const auto doubtful = matrix_of<Real>(n, n, [&](int i, int j) {
        return i != j ? Real(0) : i == 3 ? kEpsilon<Real> : Real(i + 1);
    });
    ASSERT_TRUE(f.ssv_Solve_based_on_SVD(&doubtful, Real(0), &b, &x));
    EXPECT_LT(solution_residual(doubtful, x, b), 10);
    ASSERT_TRUE(f.isv_Inverse_matrix_based_on_SVD(&doubtful, Real(0), &inverse));
    EXPECT_NEAR(inverse[3][3] * kEpsilon<Real>, 1, 10 * kEpsilon<Real>);
    EXPECT_NEAR(inverse[4][4], Real(1) / 5, kEpsilon<Real>);
}

TWIN_TEST(SpectralSolvers, Refusals) {
    Matrix<Real> a = matrix_of<Real>(3, 3, {3, 0, 0, 0, 2, 0, 0, 0, 1e-12});
    const Matrix<Real> b = random_matrix<Real>(3, 1), tall = random_matrix<Real>(4, 3),
                       wide = transposed(tall);
    const auto& f = this->f_;
    Matrix<Real>* const x = &this->x_;
    EXPECT_TRUE(fails_as(f,
                         "u_tcs_Test_Components_from_SVD: 2\nu_ssv_Solve_based_on_SVD: 1\n"
                         "ssv_Solve_based_on_SVD: 2",
                         f.ssv_Solve_based_on_SVD(&a, Real(1e-10), &b, x)));
    EXPECT_TRUE(fails_as(f,
                         "u_rsv_Rank_based_on_SVD: 1\nu_tcs_Test_Components_from_SVD: 1\n"
                         "u_isv_Inverse_matrix_based_on_SVD: 1\n"
                         "isv_Inverse_matrix_based_on_SVD: 2",
                         f.isv_Inverse_matrix_based_on_SVD(&a, Real(1), x)));
    EXPECT_TRUE(f.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, Real(1e-10), x));
    EXPECT_TRUE(fails_as(f,
                         "u_pisv_Pseudo_Inverse_matrix_based_on_SVD: 3\n"
                         "pisv_Pseudo_Inverse_matrix_based_on_SVD: 2",
                         f.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, Real(-0.1), x)));
    EXPECT_TRUE(fails_with(f, "1", f.ssv_Solve_based_on_SVD(&wide, Real(0), &b, x)));
    EXPECT_TRUE(fails_with(f, "2", f.ssv_Solve_based_on_SVD(&tall, Real(0), &b, x)));
    a = random_matrix<Real>(4, 4);
    EXPECT_TRUE(fails_as(f, "u_ssv_Solve_based_on_SVD: 2\nssv_Solve_based_on_SVD: 2",
                         f.ssv_Solve_based_on_SVD(&a, Real(0), &b, x)));
    a[1][2] = std::numeric_limits<Real>::quiet_NaN();
    x->c_Create(1, 1, 5);
    EXPECT_TRUE(fails_with(f, "1", f.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, Real(0), x)));
    EXPECT_EQ((*x)[0][0], 5);

    const Matrix<Real> identity = identity_of<Real>(3), small = identity_of<Real>(2);
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
        const bool tested = f.u_tcs_Test_Components_from_SVD(c.u, &this->s_, c.v, Real(0.01), rank);
        EXPECT_TRUE(*c.test == 0 ? tested : fails_with(f, c.test, tested)) << &c - cases;
        const bool inverted =
            f.u_pisv_Pseudo_Inverse_matrix_based_on_SVD(c.u, &this->s_, c.v, Real(0.01), x);
        EXPECT_TRUE(*c.pseudo == 0 ? inverted : fails_with(f, c.pseudo, inverted)) << &c - cases;
    }
}

// The largest singular value overflows though no element does: nothing may be counted beside it.
TWIN_TEST(SpectralSolvers, SingularValuesThatOverflowGiveNoRank) {
    Matrix<Real> a, n;
    a.c_Create(3, 3, std::numeric_limits<Real>::max() / 2);
    int rank = -1;
    const Real tolerance = Real(1e-3);
    EXPECT_FALSE(this->f_.r_Rank(&a, tolerance, rank));
    EXPECT_FALSE(this->f_.fin_Find_Input_Null_vector_space(&a, tolerance, rank, &n, nullptr,
                                                           nullptr, nullptr));
    EXPECT_FALSE(this->f_.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, tolerance, &this->x_));
    EXPECT_TRUE(rank == -1 && n.mh() == 0 && this->x_.mh() == 0);
}

}  // namespace
}  // namespace nequar
