// The singular value decomposition, rank and subspaces: the public operations.
#include <limits>
#include <string>
#include <vector>

#include "nequar_algebra/factorization.h"
#include "support/chain.h"
#include "support/residual.h"
#include "support/twins.h"

namespace nequar::test {
namespace {

template <class Real>
class SingularValues : public testing::Test {
protected:
    bool decompose(const Matrix<Real>& a, int limit = 1000000) {
        return f_.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(&a, &u_, &s_, &v_,
                                                                               limit, steps);
    }

    MatrixFactorization<Real> f_;
    Matrix<Real> u_, v_;
    MatrixDiagonal<Real> s_;
    int steps = -7;
};

TWIN_TEST(SingularValues, Gallery) {
    const std::pair<int, int> shapes[] = {{1, 1}, {3, 2}, {17, 17}, {40, 13}, {66, 66}, {90, 61}};
    for (const auto& [m, n] : shapes) {
        const std::vector<Matrix<Real>> all = hard_matrices<Real>(m, n);
        for (const Matrix<Real>& a : all) {
            SCOPED_TRACE(testing::Message() << m << " x " << n << " " << &a - all.data());
            ASSERT_TRUE(this->decompose(a));
            EXPECT_TRUE(this->s_.mh() == m && this->s_.mw() == n && this->s_.vs() == n);
            EXPECT_LT(orthogonality_error(this->u_), 10);
            EXPECT_LT(orthogonality_error(this->v_), 10);
            for (int i = 0; i < n; ++i)
                EXPECT_TRUE(this->s_[i] >= 0 && (i == 0 || this->s_[i] <= this->s_[i - 1]));
            EXPECT_LT(spectral_error(a, this->u_, this->s_, this->v_), 20);
            Vector<Real> values;
            int alone = 0;
            ASSERT_TRUE(this->f_.u_dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
                &a, nullptr, &values, nullptr, 1 << 30, alone));
            for (int i = 0; i < n; ++i)
                EXPECT_LE(std::abs(values[i] - this->s_[i]),
                          double(this->s_[0]) * n * 4 * kEpsilon<Real>);
            Matrix<Real> b, left, right;
            ASSERT_TRUE(this->f_.bdm_Bidiagonalize_Matrix(&a, &left, &b, &right));
            EXPECT_LT(rebuilding_error(a, left, b, transposed(right)), 10);
            for (int k = 0; k + 1 < n; ++k)  // reflections leave lengths, the last numbers a sign
                EXPECT_TRUE(b[k][k] >= 0 && (k + 2 == n || b[k][k + 1] >= 0));
            MatrixBand<Real> band;
            ASSERT_TRUE(this->f_.bdm_Bidiagonalize_Matrix(&a, nullptr, &band, nullptr));
            EXPECT_TRUE(unpacked(band) == b);
        }
    }
}

TWIN_TEST(SingularValues, KnownValuesSignsAndSteps) {
    Matrix<Real> a = matrix_of<Real>(2, 2, {1, 0, 0, -3});
    ASSERT_TRUE(this->decompose(a, 100));
    EXPECT_TRUE(this->s_[0] == 3 && this->s_[1] == 1 && this->steps == 0);
    EXPECT_TRUE(this->u_[1][0] == 1 && this->v_[1][0] == -1 && this->v_[0][1] == 1);
    const int n = 40;
    a = matrix_of<Real>(n, n, [](int i, int j) {
        return i == j ? 2 : std::abs(i - j) == 1 ? -1 : 0;
    });
    ASSERT_TRUE(this->decompose(a));
    EXPECT_TRUE(this->steps > n / 2 && this->steps < 3 * n) << this->steps;
    // the limit: counted, no failure, and no step at all with 1 or less
    a = random_matrix<Real>(9, 6);
    Matrix<Real> b;
    ASSERT_TRUE(this->f_.bdm_Bidiagonalize_Matrix(&a, nullptr, &b, nullptr));
    for (const int limit : {std::numeric_limits<int>::min(), 0, 1, 3}) {
        ASSERT_TRUE(this->decompose(a, limit));
        EXPECT_EQ(this->steps, std::max(limit, 1));
        Real largest = 0;
        for (int i = 0; i < 6; ++i) largest = std::max(largest, std::abs(b[i][i]));
        EXPECT_TRUE(limit > 1 || std::abs(this->s_[0] - largest) < 1e-5);
    }
    ASSERT_TRUE(this->f_.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
        &(a = random_matrix<Real>(120, 120)), &this->u_, &this->s_, &this->v_));
    EXPECT_GT(spectral_error(a, this->u_, this->s_, this->v_), 1e3)
        << "100 steps cannot do for order 120";
}

TWIN_TEST(SingularValues, StepsOnABlockKeepTheProduct) {
    const auto& ops = this->f_;
    const int n = 7;
    for (const bool has_zeros : {false, true}) {
        auto d = vector_of<Real>({1, 2, 3, 4, 5, 6, 7});
        auto f = vector_of<Real>({0, 1.25, 1.5, 1.75, 2, 2.25});
        if (has_zeros) d[2] = d[6] = f[3] = 0;
        const auto dense = [&] {
            return matrix_of<Real>(n, n, [&](int i, int j) {
                return i == j ? double(d[i]) : j == i + 1 ? double(f[i]) : 0.0;
            });
        };
        const Matrix<Real> b = dense();
        Matrix<Real> u = identity_of<Real>(n), v = u;
        const auto change = [&] { return rebuilding_error(b, u, dense(), transposed(v)); };
        ASSERT_TRUE(ops.mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(&d, &f, 1, n, &u, &v));
        EXPECT_LT(change(), 10);
        EXPECT_TRUE(!has_zeros || (f[1] != 0 && f[2] == 0 && f[5] == 0 && d[6] == 0 && d[2] == 0));
        EXPECT_TRUE(has_zeros || dense() == b);
        Matrix<Real> by_dense = b;
        ASSERT_TRUE(
            ops.mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(&by_dense, nullptr, nullptr));
        EXPECT_TRUE(by_dense == dense());
        for (const auto& [p, q] : {std::pair{-1, n}, {0, n + 1}, {1, 2}, {2, n}, {5, 3}}) {
            EXPECT_TRUE(fails_with(ops,
                                   "n=7, noo=" + std::to_string(p) + ",nzz=" + std::to_string(q),
                                   ops.sgk_SVD_step_by_Golub_Kahan(&d, &f, p, q, &u, &v)));
        }
        const int end = has_zeros ? 3 : n;
        const Real last = std::abs(f[end - 2]);
        for (int k = 0; k < 3; ++k) {
            Matrix<Real> u2 = u, v2 = v;
            Vector<Real> d2 = d, f2 = f;
            ASSERT_TRUE(
                ops.u_sgk_SVD_step_by_Golub_Kahan(n, d2.p(), f2.p(), 1, end, u2.p(), v2.p()));
            ASSERT_TRUE(ops.sgk_SVD_step_by_Golub_Kahan(&d, &f, 1, end, &u, &v));
            EXPECT_TRUE(d == d2 && f == f2 && u == u2 && v == v2);
            EXPECT_LT(change(), 10);
        }
        EXPECT_LT(std::abs(f[end - 2]), last / 100);
        EXPECT_LT(orthogonality_error(u), 10);
    }
}

TWIN_TEST(SingularValues, RefusalsAndAliases) {
    const auto& f = this->f_;
    const std::string svd = "dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization: ";
    Matrix<Real> wide = random_matrix<Real>(2, 3), a = random_matrix<Real>(4, 3);
    const Matrix<Real> input = a;
    EXPECT_TRUE(fails_as(f, "u_" + svd + "(m,n)=(2,3)\n" + svd + "1", this->decompose(wide)));
    EXPECT_TRUE(fails_as(f, "u_" + svd + "1\n" + svd + "1",
                         f.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
                             &a, &this->u_, &this->s_, &this->u_)));
    int made = -1;
    Vector<Real> values;
    EXPECT_FALSE(f.u_dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
        &wide, nullptr, &values, nullptr, 100, made));
    EXPECT_EQ(made, 0);
    const auto bidiagonalize = [&](Matrix<Real>* matrix, Matrix<Real>* q) {
        return f.u_bd_Bidiagonalize_matrix(matrix, q, q);
    };
    EXPECT_TRUE(fails_with(f, "height<width", bidiagonalize(&wide, nullptr)));
    EXPECT_TRUE(fails_with(f, "1", bidiagonalize(&a, &this->u_)));
    for (const Real bad :
         {std::numeric_limits<Real>::quiet_NaN(), std::numeric_limits<Real>::infinity()})
        for (int place = 0; place < 12; ++place) {
            Matrix<Real> spoilt = a;
            spoilt[place / 3][place % 3] = bad;
            this->u_.c_Create(1, 1, 5);
            EXPECT_FALSE(this->decompose(spoilt));
            EXPECT_EQ(this->u_[0][0], 5);
            EXPECT_TRUE(fails_with(f, place % 3 == 0 ? "2" : "3", bidiagonalize(&spoilt, nullptr)));
            int rank = -1;
            EXPECT_FALSE(f.r_Rank(&spoilt, Real(1e-3), rank));
            EXPECT_EQ(rank, -1);
            EXPECT_EQ(f.rsv_Rank_based_on_Singular_Value_decomposition(&spoilt, Real(1e-3)), 0);
            Vector<Real> x;
            EXPECT_FALSE(f.shle_Solve_Homogeneous_Linear_Equation(&spoilt, &x));
        }
    ASSERT_TRUE(this->decompose(a));
    const Matrix<Real> u = this->u_, v = this->v_;
    for (Matrix<Real>* factor : {&this->u_, &this->v_}) {
        *factor = input;
        ASSERT_TRUE(this->decompose(*factor));
        EXPECT_TRUE(this->u_ == u && this->v_ == v);
    }
    // reconstruction
    Matrix<Real> out;
    const auto reconstruct = [&](auto... arguments) {
        return f.rsv_Reconstruct_matrix_via_Singular_Value_decomposition(arguments...);
    };
    EXPECT_TRUE(reconstruct(&a, Real(0), &out));
    EXPECT_LT(rebuilding_error(a, out, identity_of<Real>(3)), 10);
    const Real middle = (this->s_[1] + this->s_[0]) / (2 * this->s_[0]);
    EXPECT_TRUE(reconstruct(&this->u_, &this->s_, &this->v_, middle, true, &this->v_));
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 3; ++j)
            EXPECT_NEAR(this->v_[i][j], u[i][0] * this->s_[0] * v[j][0], 10 * kEpsilon<Real>);
    EXPECT_TRUE(fails_with(f, "2", reconstruct(&this->u_, &this->s_, &u, Real(0), true, &out)));
    EXPECT_TRUE(fails_with(f, "1", reconstruct(&a, Real(1), &out)));
}

TWIN_TEST(SingularValues, RankByEveryRoute) {
    const auto& f = this->f_;
    const auto by_svd = [&](const Matrix<Real>& a, double tolerance) {
        const int rank = f.rsv_Rank_based_on_Singular_Value_decomposition(&a, Real(tolerance));
        EXPECT_EQ(f.r_Rank(&a, Real(tolerance)), rank);
        return rank;
    };
    const auto by_evd = [&](const Matrix<Real>& a, double tolerance) {
        return f.rev_Rank_based_on_Eigen_Value_decomposition(&a, Real(tolerance));
    };
    const auto by_qr = [&](const Matrix<Real>& a) {
        return f.rqr_Rank_based_on_QR_decomposition_with_column_pivoting(&a);
    };
    for (const auto& [m, n] : {std::pair{12, 7}, {7, 12}, {30, 30}, {14, 40}})
        for (const int rank : {1, 4, 7}) {
            const Matrix<Real> a = rank_deficient_matrix<Real>(m, n, rank, 8);
            EXPECT_EQ(by_svd(a, 1e-4), rank) << m << " x " << n;
            EXPECT_EQ(by_evd(a, 2e-3), rank) << m << " x " << n;
        }
    const auto a = matrix_of<Real>(2, 2, {1, 0, 0, 1e-3});
    EXPECT_TRUE(by_svd(a, 1e-2) == 1 && by_svd(a, 1e-4) == 2);
    EXPECT_TRUE(by_evd(a, 1e-2) == 1 && by_qr(a) == 2);
    const double end = sizeof(Real) == 4 ? 1e30 : 1e200;
    for (const double scale : {end, 1 / end})
        EXPECT_EQ(by_evd(matrix_of<Real>(2, 2, {scale, 0, 0, 3e-3 * scale}), 2e-3), 2);
    for (const int n : {3, 12}) {
        Matrix<Real> spoilt = identity_of<Real>(n);
        spoilt[1][2] = std::numeric_limits<Real>::quiet_NaN();
        int rank = -1;
        EXPECT_TRUE(
            fails_with(f, n < 10 ? "1" : "2",
                       f.rev_Rank_based_on_Eigen_Value_decomposition(&spoilt, Real(0.1), rank)));
        EXPECT_TRUE(fails_with(
            f, "1", f.rqr_Rank_based_on_QR_decomposition_with_column_pivoting(&spoilt, rank)));
        EXPECT_EQ(rank, -1);
    }
    EXPECT_TRUE(fails_with(f, "1", f.r_Rank(&a, std::numeric_limits<Real>::quiet_NaN()) != 0));
    const auto zero = constant_matrix<Real>(5, 3);
    EXPECT_TRUE(by_svd(zero, 0) == 0 && by_evd(zero, 0) == 0 && by_qr(zero) == 0);
    EXPECT_EQ(by_qr(matrix_of<Real>(2, 3, {1, 1, 1, 1, 1, 3})), 2);
}

TWIN_TEST(SingularValues, FourSubspaces) {
    for (const auto& [m, n] : {std::pair{9, 5}, {5, 9}, {6, 6}, {80, 75}})
        for (const int rank : {0, 1, 3, 5}) {
            SCOPED_TRACE(testing::Message() << m << " x " << n << " rank " << rank);
            const auto a =
                rank > 0 ? rank_deficient_matrix<Real>(m, n, rank, 6) : constant_matrix<Real>(m, n);
            const Real th = Real(1e-4);
            Matrix<Real> domain, null, range, unreached, u, v, alone;
            MatrixDiagonal<Real> s;
            int found = -1, again = -1;
            ASSERT_TRUE(this->f_.fidn_Find_Input_Domain_and_Null_vector_spaces(
                &a, th, found, &domain, &null, &u, &s, &v));
            ASSERT_TRUE(this->f_.foru_Find_Output_Range_and_Unreached_vector_space(
                &a, th, again, &range, &unreached, nullptr, nullptr, nullptr));
            EXPECT_TRUE(found == rank && again == rank);
            EXPECT_TRUE(domain.mh() == n && domain.mw() == rank && null.mw() == n - rank);
            EXPECT_TRUE(range.mh() == m && range.mw() == rank && unreached.mw() == m - rank);
            EXPECT_TRUE(u.mw() == m && v.mw() == n && s.mh() == m && s.mw() == n);
            const double size = norm1_of(a) * 20 * kEpsilon<Real>;
            EXPECT_LE(largest_of(product(a, null)), size);
            EXPECT_LE(largest_of(product(transposed(a), unreached)), size);
            for (const Matrix<Real>* q : {&domain, &null, &range, &unreached, &u, &v})
                EXPECT_LT(orthogonality_error(*q), 10);
            EXPECT_LT(spectral_error(a, u, s, v), 20);
            ASSERT_TRUE(this->f_.for_Find_Output_Range_vector_space(&a, th, again, &alone, nullptr,
                                                                    nullptr, nullptr));
            EXPECT_LT(largest_difference(product(range, transposed(range)),
                                         product(alone, transposed(alone))),
                      30 * m * kEpsilon<Real>);
            Vector<Real> x;
            Real sigma = -1;
            ASSERT_TRUE(this->f_.shle_Solve_Homogeneous_Linear_Equation(&a, th, &x, again));
            EXPECT_TRUE(again == rank && x.vs() == n);
            ASSERT_TRUE(this->f_.fib_Find_an_Input_Basis_vector(&a, th, n - 1, again, sigma, &x,
                                                                nullptr, nullptr, nullptr));
            EXPECT_LE(std::abs(sigma - (n <= m ? s[n - 1] : 0)), size);
            ASSERT_TRUE(this->f_.fob_Find_an_Output_Basis_vector(&a, th, 0, again, sigma, &x,
                                                                 nullptr, nullptr, nullptr));
            EXPECT_TRUE(x.vs() == m && std::abs(sigma - s[0]) <= size);
        }
}

TWIN_TEST(SingularValues, SubspaceRefusals) {
    const Matrix<Real> a = random_matrix<Real>(4, 3);
    Matrix<Real> m;
    Vector<Real> x;
    Real sigma = 0;
    int rank = 0;
    const auto& f = this->f_;
    Matrix<Real>* const none = nullptr;
    for (const int ndx : {-1, 3})
        EXPECT_TRUE(fails_with(f, "ndx=" + std::to_string(ndx),
                               f.fib_Find_an_Input_Basis_vector(&a, Real(0.1), ndx, rank, sigma, &x,
                                                                none, nullptr, none)));
    const auto spaces = [&](Real th, Matrix<Real>* domain, Matrix<Real>* null) {
        return f.fidn_Find_Input_Domain_and_Null_vector_spaces(&a, th, rank, domain, null, none,
                                                               nullptr, none);
    };
    EXPECT_TRUE(fails_with(f, "th=1.000000e+00", spaces(1, &m, none)));
    EXPECT_TRUE(fails_with(f, "1", spaces(0, &m, &m)));
    EXPECT_TRUE(fails_with(
        f, "1",
        f.fin_Find_Input_Null_vector_space(&a, Real(0.1), rank, none, none, nullptr, none)));
    EXPECT_TRUE(fails_with(
        f, "2",
        f.fou_Find_Output_Unreached_vector_space(&a, Real(-1), rank, &m, none, nullptr, none)));
}

}  // namespace
}  // namespace nequar::test
