// Solves, inverses and pseudo-inverses of symmetric matrices by their eigenvalues; band products.
#include <array>
#include <limits>
#include <string>
#include <vector>

#include "nequar_algebra/algebra.h"
#include "nequar_algebra/linear_equation.h"
#include "support/chain.h"
#include "support/solver_checks.h"
#include "support/twins.h"

namespace nequar {
namespace {

using namespace test;

TWINS(EigenSolves);

// Indefinite, of a condition near 10.
template <class Real>
Matrix<Real> indefinite_matrix(int n, int zeros = 0) {
    std::vector<double> values;
    for (int i = 0; i < n; ++i)
        values.push_back(i < zeros ? 0.0 : (i % 2 == 0 ? 1.0 : -1.0) * (1 + 9.0 * i / n));
    return symmetric_with_spectrum<Real>(values);
}

TWIN_TEST(EigenSolves, SolvesAndInverses) {
    const LinearEquation<Real> f;
    for (const int n : {1, 2, 9, 10, 40, 120}) {
        const auto a = indefinite_matrix<Real>(n);
        const auto s = packed_of(a);
        const Real tolerance = Real(1e-4), none = 0;
        expect_solves(a, 3, 30, [&](auto*, auto* b, auto* x) {
            return f.sev_Solve_based_on_EVD(&s, tolerance, b, x);
        });
        expect_inverts(a, 30, [&](auto*, auto* x) {
            return f.iev_Inverse_matrix_based_on_EVD(&s, tolerance, x);
        });
        Matrix<Real> v, inverse, pseudo;
        MatrixDiagonal<Real> values;
        ASSERT_TRUE(f.u_dev_Decompose_to_find_Eigen_Values(&s, &v, &values));
        const auto solve = [&](auto... to) {
            return f.u_sev_Solve_based_on_EVD(&v, &values, none, to...);
        };
        expect_solves(a, 3, 30, [&](auto*, auto* b, auto* x) { return solve(b, x); });
        expect_solves_arrays(a, 3, 30, solve);
        ASSERT_TRUE(f.iev_Inverse_matrix_based_on_EVD(&s, tolerance, &inverse));
        ASSERT_TRUE(f.piev_Pseudo_Inverse_matrix_based_on_EVD(&s, tolerance, &pseudo));
        EXPECT_TRUE(pseudo == inverse);
        ASSERT_TRUE(f.u_iev_Inverse_matrix_based_on_EVD(&v, &values, Real(0), &v));
        EXPECT_TRUE(v == inverse);
    }
}

TWIN_TEST(EigenSolves, PseudoInverseOfDeficientRank) {
    const LinearEquation<Real> f;
    for (const int n : {3, 9, 30}) {
        const auto a = indefinite_matrix<Real>(n, n / 3);
        const auto s = packed_of(a);
        Matrix<Real> x;
        ASSERT_TRUE(f.piev_Pseudo_Inverse_matrix_based_on_EVD(&s, Real(1e-4), &x));
        expect_pseudo_inverse(a, x, 50 * n);
        auto b = constant_matrix<Real>(n, 1, 1);
        const auto before = b;
        EXPECT_TRUE(fails_as(f,
                             "u_tce_Test_Components_from_EVD: 2\nu_sev_Solve_based_on_EVD: 1\n"
                             "sev_Solve_based_on_EVD: 2",
                             f.sev_Solve_based_on_EVD(&s, Real(1e-4), &b, &b)));
        EXPECT_TRUE(fails_as(f,
                             "u_tce_Test_Components_from_EVD: 2\n"
                             "u_iev_Inverse_matrix_based_on_EVD: 1\n"
                             "iev_Inverse_matrix_based_on_EVD: 2",
                             f.iev_Inverse_matrix_based_on_EVD(&s, Real(1e-4), &b)));
        EXPECT_TRUE(b == before);
    }
    const auto zero = packed_of(constant_matrix<Real>(4, 4));
    Matrix<Real> x;
    ASSERT_TRUE(f.piev_Pseudo_Inverse_matrix_based_on_EVD(&zero, Real(0), &x));
    EXPECT_EQ(largest_of(x), 0.0);
}

// The rank by eigenvalues and by singular values, or the detail.
TWIN_TEST(EigenSolves, RanksAndRefusals) {
    const LinearEquation<Real> f;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        std::initializer_list<double> values;
        double tolerance;
        bool check;
        const char *by_evd, *by_svd;
    } cases[] = {
        {{3, 2, 1e-12}, 1e-10, true, "2", "2"},
        {{1, 0.5}, 0.5, true, "1", "1"},
        {{1, 0.5}, 0, true, "2", "2"},
        {{2, 1, 1e-3, -4}, 1e-2, true, "3", "negative value"},
        {{-1, -2}, 0.1, true, "2", "negative value"},
        {{1, 2, 0}, 0, false, "2", "2"},
        {{0, 0}, 0, true, "0", "0"},
        {{}, 0, true, "0", "0"},
        {{1, 2}, 0, true, "incorrect ordering", "incorrect ordering"},
        {{1, nan, 0}, 0, false, "not finite", "not finite"},
        {{1, 0}, 1, true, "detail 1", "detail 1"},
        {{1, 0}, -0.1, true, "detail 1", "detail 1"},
        {{1, 0}, nan, false, "detail 1", "detail 1"},
    };
    for (const auto& c : cases) {
        const auto values = vector_of<Real>(c.values);
        const auto found = [&f](bool done, int rank) -> std::string {
            if (done) return std::to_string(rank);
            EXPECT_EQ(rank, -1);
            const std::string detail = f.ged_Get_Error_Detail().c_str();
            return detail == "1" ? "detail 1" : detail;
        };
        int by_evd = -1, by_svd = -1;
        const Real tolerance = Real(c.tolerance);
        bool done = f.u_rev_Rank_based_on_EVD(&values, tolerance, c.check, by_evd);
        EXPECT_EQ(found(done, by_evd), c.by_evd) << &c - cases;
        done = f.u_rsv_Rank_based_on_SVD(&values, tolerance, c.check, by_svd);
        EXPECT_EQ(found(done, by_svd), c.by_svd) << &c - cases;
    }
    Matrix<Real> x;
    for (const double tolerance : {1.0, -0.1, nan}) {
        const auto s = packed_of(indefinite_matrix<Real>(3));
        EXPECT_TRUE(fails_as(f,
                             "u_piev_Pseudo_Inverse_matrix_based_on_EVD: 1\n"
                             "piev_Pseudo_Inverse_matrix_based_on_EVD: 2",
                             f.piev_Pseudo_Inverse_matrix_based_on_EVD(&s, Real(tolerance), &x)));
    }
    // No numbers in, no inverse out.
    for (const int n : {3, 12}) {
        auto a = indefinite_matrix<Real>(n);
        a[0][n - 1] = Real(nan);
        const auto s = packed_of(a);
        EXPECT_FALSE(f.piev_Pseudo_Inverse_matrix_based_on_EVD(&s, Real(0), &x));
        EXPECT_FALSE(f.iev_Inverse_matrix_based_on_EVD(&s, Real(0), &x));
        EXPECT_EQ(x.mh(), 0);
    }
    const auto v = constant_matrix<Real>(3, 3);
    auto b = constant_matrix<Real>(2, 1, 1);
    MatrixDiagonal<Real> d;
    d.c_Create(3, 4, Real(1));
    int rank = -1;
    EXPECT_TRUE(fails_with(f, "3", f.u_tce_Test_Components_from_EVD(&v, &d, Real(0), rank)));
    EXPECT_EQ(rank, 3);
    d.c_Create(3, 3, Real(1));
    EXPECT_TRUE(fails_with(f, "2", f.u_sev_Solve_based_on_EVD(&v, &d, Real(0), &b, &b)));
}

TWIN_TEST(EigenSolves, BandProducts) {
    const AlgebraForMatrixSpecial<Real> algebra;
    for (const auto& [m, k, n] : {std::array{1, 1, 1}, {4, 6, 3}, {6, 3, 5}, {5, 5, 5}})
        for (const auto& [p, q, r, s] : {std::array{0, 0, 0, 0},
                                         {m - 1, 0, 0, n - 1},
                                         {m / 2, k / 2, k / 3, n / 2},
                                         {m - 1, k - 1, k - 1, n - 1}}) {
            const auto x = integer_matrix<Real>(m, k, 5, 1);
            const auto y = integer_matrix<Real>(k, n, 5, 2);
            MatrixBand<Real> a, b;
            a.i_Import(&x, p, q);
            b.i_Import(&y, r, s);
            Matrix<Real> c;
            const Matrix<Real> once = product(unpacked(a), unpacked(b));
            ASSERT_TRUE(algebra.mbb_Multiply_Bmatrix_Bmatrix(&a, &b, &c));
            EXPECT_TRUE(c == once);
            ASSERT_TRUE(algebra.mbba_Multiply_Bmatrix_Bmatrix_and_Accumulate(&a, &b, &c));
            EXPECT_TRUE(c == product(once, matrix_of<Real>(once.mw(), once.mw(), [](int i, int j) {
                                         return i == j ? 2 : 0;
                                     })));
        }
    MatrixBand<Real> a, b;
    a.c_Create(2, 3, 0, 0, Real(1));
    b.c_Create(3, 2, 0, 0, Real(1));
    Matrix<Real> c;
    EXPECT_FALSE(algebra.mbb_Multiply_Bmatrix_Bmatrix(&a, &a, &c));
    EXPECT_TRUE(
        fails_with(algebra, "1", algebra.mbba_Multiply_Bmatrix_Bmatrix_and_Accumulate(&a, &b, &c)));
    EXPECT_EQ(c.mh(), 0);
}

}  // namespace
}  // namespace nequar
