// Solves, inverses and pseudo-inverses of symmetric matrices by their eigenvalues; band products.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "nequar_algebra/algebra.h"
#include "nequar_algebra/linear_equation.h"
#include "support/chain.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"

namespace nequar {
namespace {

using test::kEpsilon;
using test::packed_of;
using test::product;

template <class Real>
class EigenSolves : public testing::Test {
protected:
    const LinearEquation<Real> f;

    std::string failures() {
        return test::records_of(f);
    }
};
using Reals = testing::Types<double, float>;
TYPED_TEST_SUITE(EigenSolves, Reals);

// Indefinite, of a condition near 10.
template <class Real>
Matrix<Real> indefinite_matrix(int n, int zeros = 0) {
    std::vector<double> values;
    for (int i = 0; i < n; ++i)
        values.push_back(i < zeros ? 0.0 : (i % 2 == 0 ? 1.0 : -1.0) * (1 + 9.0 * i / n));
    return test::symmetric_with_spectrum<Real>(values);
}

TYPED_TEST(EigenSolves, SolvesAndInverses) {
    using Real = TypeParam;
    for (const int n : {1, 2, 9, 10, 40, 120}) {
        SCOPED_TRACE(n);
        const auto a = indefinite_matrix<Real>(n);
        const auto s = packed_of(a);
        const auto b = test::random_matrix<Real>(n, 3, 7);
        Matrix<Real> x;
        ASSERT_TRUE(this->f.sev_Solve_based_on_EVD(&s, Real(1e-4), &b, &x));
        EXPECT_LT(test::solution_residual(a, x, b), 30.0);
        auto in_place = b;
        ASSERT_TRUE(this->f.sev_Solve_based_on_EVD(&s, Real(1e-4), &in_place, &in_place));
        EXPECT_TRUE(in_place == x);
        Vector<Real> right;
        Vector<Real> solution;
        b.gc_Get_Column(1, 0, n, &right);
        ASSERT_TRUE(this->f.sev_Solve_based_on_EVD(&s, Real(0), &right, &solution));
        for (int i = 0; i < n; ++i) EXPECT_NEAR(solution[i], x[i][1], 100 * n * kEpsilon<Real>);
        Matrix<Real> v;
        MatrixDiagonal<Real> values;
        ASSERT_TRUE(this->f.u_dev_Decompose_to_find_Eigen_Values(&s, &v, &values));
        for (const bool row_major : {true, false}) {
            std::vector<Real> data(std::size_t(3 * n));
            for (int i = 0; i < n; ++i)
                for (int c = 0; c < 3; ++c)
                    data[std::size_t(row_major ? i * 3 + c : c * n + i)] = b[i][c];
            ASSERT_TRUE(this->f.u_sev_Solve_based_on_EVD(&v, &values, Real(0), data.data(),
                                                         row_major, 3, n));
            for (int i = 0; i < n; ++i)
                for (int c = 0; c < 3; ++c)
                    EXPECT_EQ(data[std::size_t(row_major ? i * 3 + c : c * n + i)], x[i][c]);
        }
        Matrix<Real> inverse;
        Matrix<Real> pseudo;
        ASSERT_TRUE(this->f.iev_Inverse_matrix_based_on_EVD(&s, Real(1e-4), &inverse));
        EXPECT_LT(test::solution_residual(a, inverse, test::identity_of<Real>(n)), 30.0);
        ASSERT_TRUE(this->f.piev_Pseudo_Inverse_matrix_based_on_EVD(&s, Real(1e-4), &pseudo));
        EXPECT_TRUE(pseudo == inverse);
        ASSERT_TRUE(this->f.u_iev_Inverse_matrix_based_on_EVD(&v, &values, Real(0), &v));
        EXPECT_TRUE(v == inverse);
    }
}

// A X A = A, X A X = X, and both products symmetric, which X is by its making.
TYPED_TEST(EigenSolves, PseudoInverseOfDeficientRank) {
    using Real = TypeParam;
    for (const int n : {3, 9, 30}) {
        const auto a = indefinite_matrix<Real>(n, n / 3);
        const auto s = packed_of(a);
        Matrix<Real> x;
        ASSERT_TRUE(this->f.piev_Pseudo_Inverse_matrix_based_on_EVD(&s, Real(1e-4), &x));
        const double bound = 500 * n * kEpsilon<Real>;
        const auto ax = product(a, x);
        EXPECT_LT(test::largest_difference(product(ax, a), a), bound);
        EXPECT_LT(test::largest_difference(product(x, ax), x), bound);
        EXPECT_LT(test::largest_difference(ax, test::transposed(ax)), bound);
        Matrix<Real> b;
        b.c_Create(n, 1, Real(1));
        const auto before = b;
        EXPECT_FALSE(this->f.sev_Solve_based_on_EVD(&s, Real(1e-4), &b, &b));
        EXPECT_EQ(this->failures(),
                  "u_tce_Test_Components_from_EVD: 2\n"
                  "u_sev_Solve_based_on_EVD: 1\nsev_Solve_based_on_EVD: 2");
        EXPECT_FALSE(this->f.iev_Inverse_matrix_based_on_EVD(&s, Real(1e-4), &b));
        EXPECT_EQ(this->failures(),
                  "u_tce_Test_Components_from_EVD: 2\n"
                  "u_iev_Inverse_matrix_based_on_EVD: 1\n"
                  "iev_Inverse_matrix_based_on_EVD: 2");
        EXPECT_TRUE(b == before);
    }
    MatrixSymmetric<Real> zero;
    zero.c_Create(4, 4, Real(0));
    Matrix<Real> x;
    ASSERT_TRUE(this->f.piev_Pseudo_Inverse_matrix_based_on_EVD(&zero, Real(0), &x));
    EXPECT_EQ(test::largest_of(x), 0.0);
}

TYPED_TEST(EigenSolves, RanksAndRefusals) {
    using Real = TypeParam;
    Vector<Real> values;
    const std::string rev = "u_rev_Rank_based_on_EVD: ";
    const Real nan = std::numeric_limits<Real>::quiet_NaN();
    const auto rank_of = [&](const std::vector<double>& list, Real tolerance, bool check) {
        values.c_Create(int(list.size()));
        for (std::size_t i = 0; i < list.size(); ++i) values[int(i)] = Real(list[i]);
        int rank = -1;
        return this->f.u_rev_Rank_based_on_EVD(&values, tolerance, check, rank) ? rank : -1;
    };
    EXPECT_EQ(rank_of({2, 1, 1e-3, -4}, Real(1e-2), true), 3);
    EXPECT_EQ(rank_of({1, 2, 0}, Real(0), false), 2);
    EXPECT_EQ(rank_of({0, 0}, Real(0), true), 0);
    EXPECT_EQ(rank_of({}, Real(0), true), 0);
    EXPECT_EQ(rank_of({1, 2}, Real(0), true), -1);
    EXPECT_EQ(this->failures(), rev + "incorrect ordering");
    EXPECT_EQ(rank_of({1, std::nan(""), 0}, Real(0), true), -1);
    EXPECT_EQ(this->failures(), rev + "not finite");
    for (const Real tolerance : {Real(1), Real(-0.1), nan}) {
        EXPECT_EQ(rank_of({1, 0}, tolerance, true), -1);
        EXPECT_EQ(this->failures(), rev + "1");
        const auto s = packed_of(indefinite_matrix<Real>(3));
        Matrix<Real> x;
        EXPECT_FALSE(this->f.piev_Pseudo_Inverse_matrix_based_on_EVD(&s, tolerance, &x));
        EXPECT_EQ(this->failures(),
                  "u_piev_Pseudo_Inverse_matrix_based_on_EVD: 1\n"
                  "piev_Pseudo_Inverse_matrix_based_on_EVD: 2");
    }
    // No numbers in, no inverse out.
    for (const int n : {3, 12}) {
        auto a = indefinite_matrix<Real>(n);
        a[0][n - 1] = nan;
        const auto s = packed_of(a);
        Matrix<Real> x;
        EXPECT_FALSE(this->f.piev_Pseudo_Inverse_matrix_based_on_EVD(&s, Real(0), &x));
        EXPECT_FALSE(this->f.iev_Inverse_matrix_based_on_EVD(&s, Real(0), &x));
        EXPECT_EQ(x.mh(), 0);
        this->failures();
    }
    Matrix<Real> v;
    MatrixDiagonal<Real> d;
    v.c_Create(3, 3, Real(0));
    d.c_Create(3, 4, Real(1));
    int rank = -1;
    EXPECT_FALSE(this->f.u_tce_Test_Components_from_EVD(&v, &d, Real(0), rank));
    EXPECT_EQ(this->failures(), "u_tce_Test_Components_from_EVD: 3");
    EXPECT_EQ(rank, 3);
    Matrix<Real> b;
    b.c_Create(2, 1, Real(1));
    d.c_Create(3, 3, Real(1));
    EXPECT_FALSE(this->f.u_sev_Solve_based_on_EVD(&v, &d, Real(0), &b, &b));
    EXPECT_EQ(this->failures(), "u_sev_Solve_based_on_EVD: 2");
}

TYPED_TEST(EigenSolves, BandProducts) {
    using Real = TypeParam;
    const AlgebraForMatrixSpecial<Real> algebra;
    for (const auto& [m, k, n] : {std::array{1, 1, 1}, {4, 6, 3}, {6, 3, 5}, {5, 5, 5}})
        for (const auto& [p, q, r, s] : {std::array{0, 0, 0, 0},
                                         {m - 1, 0, 0, n - 1},
                                         {m / 2, k / 2, k / 3, n / 2},
                                         {m - 1, k - 1, k - 1, n - 1}}) {
            const auto x = test::integer_matrix<Real>(m, k, 5, 1);
            const auto y = test::integer_matrix<Real>(k, n, 5, 2);
            MatrixBand<Real> a;
            MatrixBand<Real> b;
            a.i_Import(&x, p, q);
            b.i_Import(&y, r, s);
            Matrix<Real> left;
            Matrix<Real> right;
            a.e_Export(&left, true);
            b.e_Export(&right, true);
            Matrix<Real> c;
            ASSERT_TRUE(algebra.mbb_Multiply_Bmatrix_Bmatrix(&a, &b, &c));
            EXPECT_TRUE(c == product(left, right));
            ASSERT_TRUE(algebra.mbba_Multiply_Bmatrix_Bmatrix_and_Accumulate(&a, &b, &c));
            for (int i = 0; i < m; ++i)
                for (int j = 0; j < n; ++j) EXPECT_EQ(c[i][j], 2 * product(left, right)[i][j]);
        }
    MatrixBand<Real> a;
    a.c_Create(2, 3, 0, 0, Real(1));
    Matrix<Real> c;
    EXPECT_FALSE(algebra.mbb_Multiply_Bmatrix_Bmatrix(&a, &a, &c));
    MatrixBand<Real> b;
    b.c_Create(3, 2, 0, 0, Real(1));
    EXPECT_FALSE(algebra.mbba_Multiply_Bmatrix_Bmatrix_and_Accumulate(&a, &b, &c));
    EXPECT_EQ(std::string(algebra.ged_Get_Error_Detail().c_str()), "1");
    EXPECT_EQ(c.mh(), 0);
}

}  // namespace
}  // namespace nequar
