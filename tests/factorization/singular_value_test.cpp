// The singular value decomposition, rank and subspaces: the public operations.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "nequar_algebra/factorization.h"
#include "support/data_files.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"

namespace nequar {
namespace {

using test::kEpsilon;
using test::product;

template <class Real>
double residual(const Matrix<Real>& a, const Matrix<Real>& b, const Matrix<Real>& c) {
    if (b.mw() != c.mh() || a.mh() != b.mh() || a.mw() != c.mw()) return std::nan("");
    double largest = 0;
    const double scale = test::largest_of(a);
    for (int i = 0; i < a.mh(); ++i)
        for (int j = 0; j < a.mw(); ++j) {
            long double difference = a[i][j];
            for (int k = 0; k < b.mw(); ++k)
                difference -= static_cast<long double>(b[i][k]) * c[k][j];
            largest = test::worse(double(std::abs(difference)), largest);
        }
    return largest == 0 ? 0 : largest / (scale * std::max(a.mh(), a.mw()) * kEpsilon<Real>);
}

template <class Real>
double orthogonality(const Matrix<Real>& q) {
    if (q.mw() == 0) return 0;
    return residual(test::identity_of<Real>(q.mw()), test::transposed(q), q);
}

// U S V^T, S with as many elements as wanted
template <class Real>
Matrix<Real> rebuilt(const Matrix<Real>& u, const Vector<Real>& s, const Matrix<Real>& v) {
    return test::matrix_of<Real>(u.mh(), v.mh(), [&](int i, int j) {
        long double sum = 0;
        for (int k = 0; k < s.vs(); ++k) sum += static_cast<long double>(u[i][k]) * s[k] * v[j][k];
        return double(sum);
    });
}

template <class Real>
class SingularValues : public testing::Test {
protected:
    std::string detail() const { return f_.ged_Get_Error_Detail().c_str(); }
    std::string trace() const { return f_.gft_Get_Failure_Trace().c_str(); }
    bool decompose(const Matrix<Real>& a, int limit = 1000000) {
        return f_.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(&a, &u_, &s_, &v_,
                                                                               limit, steps);
    }
    static constexpr const char* kSvd =
        "dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization";

    MatrixFactorization<Real> f_;
    Matrix<Real> u_, v_;
    MatrixDiagonal<Real> s_;
    int steps = -7;
};

using Reals = testing::Types<double, float>;
TYPED_TEST_SUITE(SingularValues, Reals);

TYPED_TEST(SingularValues, Gallery) {
    using Real = TypeParam;
    const std::pair<int, int> shapes[] = {{1, 1}, {3, 2}, {17, 17}, {40, 13}, {66, 66}, {90, 61}};
    for (const auto& [m, n] : shapes) {
        std::vector<Matrix<Real>> all = {test::random_matrix<Real>(m, n, 3),
                                         test::integer_matrix<Real>(m, n, 1, 4),
                                         test::rank_deficient_matrix<Real>(m, n, (n + 2) / 3, 5)};
        if (m == n) {
            all.push_back(test::hilbert_matrix<Real>(n));
            all.push_back(test::kahan_matrix<Real>(n));
            all.push_back(test::growing_matrix<Real>(n));
            all.push_back(test::graded_matrix<Real>(n, sizeof(Real) == 4 ? 12 : 60));
            all.push_back(test::identity_of<Real>(n));
        }
        for (const Matrix<Real>& a : all) {
            SCOPED_TRACE(testing::Message() << m << " x " << n << " " << &a - all.data());
            ASSERT_TRUE(this->decompose(a));
            EXPECT_TRUE(this->s_.mh() == m && this->s_.mw() == n && this->s_.vs() == n);
            EXPECT_LT(orthogonality(this->u_), 10);
            EXPECT_LT(orthogonality(this->v_), 10);
            for (int i = 0; i < n; ++i)
                EXPECT_TRUE(this->s_[i] >= 0 && (i == 0 || this->s_[i] <= this->s_[i - 1]));
            EXPECT_LT(residual(a, rebuilt<Real>(this->u_, this->s_, this->v_),
                               test::identity_of<Real>(n)),
                      20);
            Vector<Real> values;
            int alone = 0;
            ASSERT_TRUE(this->f_.u_dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
                &a, nullptr, &values, nullptr, 1 << 30, alone));
            for (int i = 0; i < n; ++i)
                EXPECT_LE(std::abs(values[i] - this->s_[i]),
                          double(this->s_[0]) * n * 4 * kEpsilon<Real>);
            Matrix<Real> b, left, right;
            ASSERT_TRUE(this->f_.bdm_Bidiagonalize_Matrix(&a, &left, &b, &right));
            EXPECT_LT(residual(a, product(left, b), test::transposed(right)), 10);
            MatrixBand<Real> band;
            Matrix<Real> from_band;
            ASSERT_TRUE(this->f_.bdm_Bidiagonalize_Matrix(&a, nullptr, &band, nullptr));
            band.e_Export(&from_band, true);
            EXPECT_TRUE(from_band == b);
        }
    }
}

TYPED_TEST(SingularValues, KnownValuesSignsAndSteps) {
    using Real = TypeParam;
    Matrix<Real> a = test::matrix_of<Real>(2, 2, [](int i, int j) {
        return i != j ? 0 : i ? -3 : 1;
    });
    ASSERT_TRUE(this->decompose(a, 100));
    EXPECT_TRUE(this->s_[0] == 3 && this->s_[1] == 1 && this->steps == 0);
    EXPECT_TRUE(this->u_[1][0] == 1 && this->v_[1][0] == -1 && this->v_[0][1] == 1);
    // (-1, 2, -1): eigenvalues 4 sin^2(k pi / 2(n+1))
    const int n = 40;
    a = test::matrix_of<Real>(n, n, [](int i, int j) {
        return i == j ? 2 : std::abs(i - j) == 1 ? -1 : 0;
    });
    ASSERT_TRUE(this->decompose(a));
    for (int k = 0; k < n; ++k) {
        const double root = std::sin((n - k) * std::acos(-1.0) / (2 * n + 2));
        EXPECT_NEAR(this->s_[k], 4 * root * root, 40 * kEpsilon<Real>);
    }
    EXPECT_TRUE(this->steps > n / 2 && this->steps < 3 * n) << this->steps;
    // the limit: counted, no failure, and no step at all with 1 or less
    a = test::random_matrix<Real>(9, 6);
    Matrix<Real> b;
    ASSERT_TRUE(this->f_.bdm_Bidiagonalize_Matrix(&a, nullptr, &b, nullptr));
    for (const int limit : {std::numeric_limits<int>::min(), 0, 1, 3}) {
        ASSERT_TRUE(this->decompose(a, limit));
        EXPECT_EQ(this->steps, std::max(limit, 1));
        double largest = 0;
        for (int i = 0; i < 6; ++i) largest = std::max(largest, std::abs(double(b[i][i])));
        EXPECT_TRUE(limit > 1 || std::abs(double(this->s_[0]) - largest) < 1e-5);
    }
    ASSERT_TRUE(this->f_.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
        &(a = test::random_matrix<Real>(120, 120)), &this->u_, &this->s_, &this->v_));
    EXPECT_GT(
        residual(a, rebuilt<Real>(this->u_, this->s_, this->v_), test::identity_of<Real>(120)), 1e3)
        << "100 steps cannot do for order 120";
}

TYPED_TEST(SingularValues, StepsOnABlockKeepTheProduct) {
    using Real = TypeParam;
    const int n = 7;
    for (const bool has_zeros : {false, true}) {
        Vector<Real> d, f;
        d.c_Create(n);
        f.c_Create(n - 1);
        for (int i = 0; i < n; ++i) d[i] = Real(i + 1);
        for (int i = 0; i + 1 < n; ++i) f[i] = Real(1 + 0.25 * i);
        f[0] = 0;
        if (has_zeros) d[2] = d[6] = f[3] = 0;
        const auto dense = [&] {
            return test::matrix_of<Real>(n, n, [&](int i, int j) {
                return i == j ? double(d[i]) : j == i + 1 ? double(f[i]) : 0.0;
            });
        };
        const Matrix<Real> b = dense();
        Matrix<Real> u = test::identity_of<Real>(n), v = u;
        const auto change = [&] { return residual(b, product(u, dense()), test::transposed(v)); };
        ASSERT_TRUE(this->f_.mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(&d, &f, 1, n, &u, &v));
        EXPECT_LT(change(), 10);
        EXPECT_TRUE(!has_zeros || (f[1] != 0 && f[2] == 0 && f[5] == 0 && d[6] == 0 && d[2] == 0));
        EXPECT_TRUE(has_zeros || dense() == b);
        Matrix<Real> by_dense = b;
        ASSERT_TRUE(
            this->f_.mzr_Make_Zero_Row_for_upper_bi_diagonal_matrix(&by_dense, nullptr, nullptr));
        EXPECT_TRUE(by_dense == dense());
        for (const auto& [p, q] : {std::pair{-1, n}, {0, n + 1}, {1, 2}, {2, n}, {5, 3}}) {
            EXPECT_FALSE(this->f_.sgk_SVD_step_by_Golub_Kahan(&d, &f, p, q, &u, &v));
            EXPECT_EQ(this->detail(),
                      "n=7, noo=" + std::to_string(p) + ",nzz=" + std::to_string(q));
        }
        const int end = has_zeros ? 3 : n;
        const Real last = std::abs(f[end - 2]);
        for (int k = 0; k < 3; ++k) {
            Matrix<Real> u2 = u, v2 = v;
            Vector<Real> d2 = d, f2 = f;
            ASSERT_TRUE(
                this->f_.u_sgk_SVD_step_by_Golub_Kahan(n, d2.p(), f2.p(), 1, end, u2.p(), v2.p()));
            ASSERT_TRUE(this->f_.sgk_SVD_step_by_Golub_Kahan(&d, &f, 1, end, &u, &v));
            EXPECT_TRUE(d == d2 && f == f2 && u == u2 && v == v2);
            EXPECT_LT(change(), 10);
        }
        EXPECT_LT(std::abs(f[end - 2]), last / 100);
        EXPECT_LT(orthogonality(u), 10);
    }
}

TYPED_TEST(SingularValues, RefusalsAndAliases) {
    using Real = TypeParam;
    const std::string name = this->f_.gcn_Get_Class_Name().c_str();
    Matrix<Real> wide = test::random_matrix<Real>(2, 3), a = test::random_matrix<Real>(4, 3);
    const Matrix<Real> input = a;
    EXPECT_FALSE(this->decompose(wide));
    EXPECT_EQ(this->trace(),
              name + "::u_" + this->kSvd + ": (m,n)=(2,3)\n" + name + "::" + this->kSvd + ": 1");
    EXPECT_FALSE(this->f_.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
        &a, &this->u_, &this->s_, &this->u_));
    EXPECT_EQ(this->trace(),
              name + "::u_" + this->kSvd + ": 1\n" + name + "::" + this->kSvd + ": 1");
    int made = -1;
    Vector<Real> values;
    EXPECT_FALSE(this->f_.u_dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
        &wide, nullptr, &values, nullptr, 100, made));
    EXPECT_EQ(made, 0);
    EXPECT_FALSE(this->f_.u_bd_Bidiagonalize_matrix(&wide, nullptr, nullptr));
    EXPECT_EQ(this->detail(), "height<width");
    EXPECT_FALSE(this->f_.u_bd_Bidiagonalize_matrix(&a, &this->u_, &this->u_));
    EXPECT_EQ(this->detail(), "1");
    for (const Real bad :
         {std::numeric_limits<Real>::quiet_NaN(), std::numeric_limits<Real>::infinity()})
        for (int place = 0; place < 12; ++place) {
            Matrix<Real> spoilt = a;
            spoilt[place / 3][place % 3] = bad;
            this->u_.c_Create(1, 1, 5);
            EXPECT_FALSE(this->decompose(spoilt));
            EXPECT_EQ(this->u_[0][0], 5);
            EXPECT_FALSE(this->f_.u_bd_Bidiagonalize_matrix(&spoilt, nullptr, nullptr));
            EXPECT_EQ(this->detail(), place % 3 == 0 ? "2" : "3");
            int rank = -1;
            EXPECT_FALSE(this->f_.r_Rank(&spoilt, Real(1e-3), rank));
            EXPECT_EQ(rank, -1);
            EXPECT_EQ(this->f_.rsv_Rank_based_on_Singular_Value_decomposition(&spoilt, Real(1e-3)),
                      0);
            Vector<Real> x;
            EXPECT_FALSE(this->f_.shle_Solve_Homogeneous_Linear_Equation(&spoilt, &x));
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
    EXPECT_TRUE(
        this->f_.rsv_Reconstruct_matrix_via_Singular_Value_decomposition(&a, Real(0), &out));
    EXPECT_LT(residual(a, out, test::identity_of<Real>(3)), 10);
    const Real middle = (this->s_[1] + this->s_[0]) / (2 * this->s_[0]);
    EXPECT_TRUE(this->f_.rsv_Reconstruct_matrix_via_Singular_Value_decomposition(
        &this->u_, &this->s_, &this->v_, middle, true, &this->v_));
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 3; ++j)
            EXPECT_NEAR(this->v_[i][j], u[i][0] * this->s_[0] * v[j][0], 10 * kEpsilon<Real>);
    EXPECT_FALSE(this->f_.rsv_Reconstruct_matrix_via_Singular_Value_decomposition(
        &this->u_, &this->s_, &u, Real(0), true, &out));
    EXPECT_EQ(this->detail(), "2");
    EXPECT_FALSE(
        this->f_.rsv_Reconstruct_matrix_via_Singular_Value_decomposition(&a, Real(1), &out));
    EXPECT_EQ(this->detail(), "1");
}

TYPED_TEST(SingularValues, RankByEveryRoute) {
    using Real = TypeParam;
    for (const auto& [m, n] : {std::pair{12, 7}, {7, 12}, {30, 30}, {14, 40}})
        for (const int rank : {1, 4, 7}) {
            const Matrix<Real> a = test::rank_deficient_matrix<Real>(m, n, rank, 8);
            EXPECT_EQ(this->f_.r_Rank(&a, Real(1e-4)), rank) << m << " x " << n;
            EXPECT_EQ(this->f_.rsv_Rank_based_on_Singular_Value_decomposition(&a, Real(1e-4)),
                      rank);
            EXPECT_EQ(this->f_.rev_Rank_based_on_Eigen_Value_decomposition(&a, Real(2e-3)), rank);
        }
    Matrix<Real> a = test::matrix_of<Real>(2, 2, [](int i, int j) {
        return i != j ? 0 : i ? 1e-3 : 1;
    });
    EXPECT_EQ(this->f_.r_Rank(&a, Real(1e-2)), 1);
    EXPECT_EQ(this->f_.r_Rank(&a, Real(1e-4)), 2);
    EXPECT_EQ(this->f_.rev_Rank_based_on_Eigen_Value_decomposition(&a, Real(1e-2)), 1);
    const Real end = sizeof(Real) == 4 ? Real(1e30) : Real(1e200);
    for (const Real scale : {end, 1 / end}) {
        Matrix<Real> scaled = a;
        scaled[0][0] *= scale;
        scaled[1][1] *= 3 * scale;
        EXPECT_EQ(this->f_.rev_Rank_based_on_Eigen_Value_decomposition(&scaled, Real(2e-3)), 2);
    }
    for (const int n : {3, 12}) {
        Matrix<Real> spoilt = test::identity_of<Real>(n);
        spoilt[1][2] = std::numeric_limits<Real>::quiet_NaN();
        int rank = -1;
        EXPECT_FALSE(
            this->f_.rev_Rank_based_on_Eigen_Value_decomposition(&spoilt, Real(0.1), rank));
        EXPECT_TRUE(this->detail() == (n < 10 ? "1" : "2") && rank == -1);
        EXPECT_FALSE(
            this->f_.rqr_Rank_based_on_QR_decomposition_with_column_pivoting(&spoilt, rank));
        EXPECT_TRUE(this->detail() == "1" && rank == -1);
    }
    EXPECT_EQ(this->f_.r_Rank(&a, std::numeric_limits<Real>::quiet_NaN()), 0);
    EXPECT_EQ(this->detail(), "1");
    EXPECT_EQ(this->f_.rqr_Rank_based_on_QR_decomposition_with_column_pivoting(&a), 2);
    a.c_Create(5, 3, 0);
    EXPECT_EQ(this->f_.rev_Rank_based_on_Eigen_Value_decomposition(&a, Real(0)), 0);
    EXPECT_EQ(this->f_.r_Rank(&a, Real(0)), 0);
    EXPECT_EQ(this->f_.rqr_Rank_based_on_QR_decomposition_with_column_pivoting(&a), 0);
    a.c_Create(2, 3, 1);
    a[1][2] = 3;
    EXPECT_EQ(this->f_.rqr_Rank_based_on_QR_decomposition_with_column_pivoting(&a), 2);
}

TYPED_TEST(SingularValues, FourSubspaces) {
    using Real = TypeParam;
    for (const auto& [m, n] : {std::pair{9, 5}, {5, 9}, {6, 6}, {80, 75}})
        for (const int rank : {0, 1, 3, 5}) {
            SCOPED_TRACE(testing::Message() << m << " x " << n << " rank " << rank);
            Matrix<Real> a = test::rank_deficient_matrix<Real>(m, n, std::max(rank, 1), 6);
            if (rank == 0) a.c_Create(m, n, 0);
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
            const auto zero = [](int h, int w) {
                Matrix<Real> z;
                z.c_Create(h, w, 0);
                return z;
            };
            const double size = test::norm1_of(a) * 20 * kEpsilon<Real>;
            EXPECT_LE(test::largest_difference(product(a, null), zero(m, n - rank)), size);
            EXPECT_LE(test::largest_difference(product(test::transposed(a), unreached),
                                               zero(n, m - rank)),
                      size);
            for (const Matrix<Real>* q : {&domain, &null, &range, &unreached, &u, &v})
                EXPECT_LT(orthogonality(*q), 10);
            EXPECT_LT(residual(a, rebuilt<Real>(u, s, v), test::identity_of<Real>(n)), 20);
            ASSERT_TRUE(this->f_.for_Find_Output_Range_vector_space(&a, th, again, &alone, nullptr,
                                                                    nullptr, nullptr));
            EXPECT_LT(residual(rank ? product(range, test::transposed(range)) : zero(m, m),
                               product(alone, test::transposed(alone)), test::identity_of<Real>(m)),
                      30);
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

TYPED_TEST(SingularValues, SubspaceRefusals) {
    using Real = TypeParam;
    Matrix<Real> a = test::random_matrix<Real>(4, 3), m;
    Vector<Real> x;
    Real sigma = 0;
    int rank = 0;
    for (const int ndx : {-1, 3}) {
        EXPECT_FALSE(this->f_.fib_Find_an_Input_Basis_vector(&a, Real(0.1), ndx, rank, sigma, &x,
                                                             nullptr, nullptr, nullptr));
        EXPECT_EQ(this->detail(), "ndx=" + std::to_string(ndx));
    }
    EXPECT_FALSE(this->f_.fidn_Find_Input_Domain_and_Null_vector_spaces(
        &a, Real(1), rank, &m, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(this->detail(), "th=1.000000e+00");
    EXPECT_FALSE(this->f_.fin_Find_Input_Null_vector_space(&a, Real(0.1), rank, nullptr, nullptr,
                                                           nullptr, nullptr));
    EXPECT_EQ(this->detail(), "1");
    EXPECT_FALSE(this->f_.fou_Find_Output_Unreached_vector_space(&a, Real(-1), rank, &m, nullptr,
                                                                 nullptr, nullptr));
    EXPECT_EQ(this->detail(), "2");
    EXPECT_FALSE(this->f_.fidn_Find_Input_Domain_and_Null_vector_spaces(&a, Real(0), rank, &m, &m,
                                                                        nullptr, nullptr, nullptr));
    EXPECT_EQ(this->detail(), "1");
}

}  // namespace
}  // namespace nequar
