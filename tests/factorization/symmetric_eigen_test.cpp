// Symmetric eigenvalues: every route on hard matrices, the stated counts, failures, and inputs that
// are no numbers.
#include <climits>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "nequar_algebra/factorization.h"
#include "support/chain.h"
#include "support/residual.h"
#include "support/twins.h"

namespace nequar::test {
namespace {

constexpr int kByQr = 9;  // beside the Jacobi modes 0, 1, 2

template <class Real>
class SymmetricEigen : public testing::Test {
protected:
    // By the upper triangle of A; `limit` sweeps of Jacobi or steps of QR.
    bool decompose(int route, const Matrix<Real>& a, Matrix<Real>* vectors, int limit,
                   double tolerance) {
        const MatrixSymmetric<Real> s = packed_of(a);
        if (route == kByQr)
            return f_.devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(&s, vectors, &d_,
                                                                                 limit, count_);
        return f_.devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(
            route, &s, vectors, &d_, limit, Real(tolerance), count_, annihilated_);
    }
    bool decompose(int route, const Matrix<Real>& a, bool has_vectors = true) {
        return decompose(route, a, has_vectors ? &v_ : nullptr, route == kByQr ? INT_MAX : 100,
                         route == 0 ? 0 : 1e-32);  // mode 0's tolerance is absolute
    }

    MatrixFactorization<Real> f_;
    Matrix<Real> v_;
    MatrixDiagonal<Real> d_;
    int count_ = -1;
    int annihilated_ = -1;
};

// The worst of the residual and of the loss of orthogonality, and infinity when the values do not
// descend. The upper triangle of A counts.
template <class Real>
double eigen_error(const Matrix<Real>& a, const Matrix<Real>& v, const MatrixDiagonal<Real>& d) {
    for (int k = 0; k + 1 < d.vs(); ++k)
        if (!(d[k] >= d[k + 1])) return std::numeric_limits<double>::infinity();
    return worse(spectral_error(unpacked(packed_of(a)), v, d, v), orthogonality_error(v));
}

template <class Real>
std::vector<Matrix<Real>> gallery() {
    std::vector<Matrix<Real>> list;
    for (const int n : {1, 2, 3, 5, 8, 15, 16, 17, 31, 33, 34, 65, 130})
        list.push_back(random_matrix<Real>(n, n, std::uint64_t(n)));
    const auto spectrum = [&](int n, std::function<double(int)> value) {
        std::vector<double> values;
        for (int i = 0; i < n; ++i) values.push_back(value(i));
        list.push_back(symmetric_with_spectrum<Real>(values));
    };
    spectrum(40, [](int) { return 3.0; });
    spectrum(40, [](int i) { return i < 20 ? 1.0 : -1.0; });
    spectrum(40, [](int i) { return 1 + i * 1e-14; });
    spectrum(40, [](int i) { return i < 30 ? 0.0 : i; });
    spectrum(40, [](int i) { return std::pow(10.0, -i / 2.0); });
    list.push_back(graded_matrix<Real>(40, 12));
    list.push_back(hilbert_matrix<Real>(20));
    list.push_back(constant_matrix<Real>(7, 7));
    list.push_back(matrix_of<Real>(7, 7, [](int i, int j) { return i == j ? i : 0.0; }));
    list.push_back(matrix_of<Real>(6, 6, [](int i, int j) { return i + j == 5 ? 1.0 : 0.0; }));
    // Wilkinson 21, glued three times by a tiny element
    list.push_back(matrix_of<Real>(63, 63, [](int i, int j) {
        if (i == j) return std::abs(i % 21 - 10.0);
        return std::abs(i - j) != 1 ? 0.0 : std::min(i, j) % 21 == 20 ? 1e-10 : 1.0;
    }));
    // off-diagonals so small that a bulge made of two of them vanishes
    const double smallest = double(std::numeric_limits<Real>::min());
    const double off[] = {std::pow(smallest, 0.43), std::pow(smallest, 0.63), 1};
    list.push_back(matrix_of<Real>(
        4, 4, [&](int i, int j) { return std::abs(i - j) == 1 ? off[std::min(i, j)] : 0.0; }));
    for (const double size : {1e150, 1e-150, 1e30, 1e-30}) {
        if (sizeof(Real) == 4 && (size > 1e35 || size < 1e-35)) continue;
        list.push_back(matrix_of<Real>(
            12, 12, [size](int i, int j) { return size * (1 + std::cos(1.0 + i * j)); }));
    }
    return list;
}

TWIN_TEST(SymmetricEigen, ResidualsOnTheGallery) {
    for (const auto& a : gallery<Real>())
        for (const int route : {0, 1, 2, kByQr}) {
            if (route == 0 && a.mh() > 40) continue;
            SCOPED_TRACE(testing::Message() << a.mh() << " route " << route << " a00 " << a[0][0]);
            ASSERT_TRUE(this->decompose(route, a));
            EXPECT_LT(eigen_error(a, this->v_, this->d_), 20);
            const MatrixDiagonal<Real> values = this->d_;
            const int count = this->count_;
            ASSERT_TRUE(this->decompose(route, a, false));
            EXPECT_TRUE(this->d_ == values);
            EXPECT_EQ(this->count_, count);
        }
}

// A diagonal matrix needs no rotation; equal values keep their order; a step is counted before it
// is made, and the count that reaches the limit ends it.
TWIN_TEST(SymmetricEigen, CountsAndLimits) {
    const double diagonal[] = {2, 5, 2, 7, 5};
    const int order[] = {3, 1, 4, 0, 2};
    for (const int route : {kByQr, 0, 1, 2}) {
        this->annihilated_ = 0;
        ASSERT_TRUE(this->decompose(route, matrix_of<Real>(5, 5, [&](int i, int j) {
                                        return i == j ? diagonal[i] : 0.0;
                                    })));
        EXPECT_TRUE(this->count_ == 0 && this->annihilated_ == 0);
        for (int k = 0; k < 5; ++k) {
            EXPECT_EQ(this->d_[k], Real(diagonal[order[k]]));
            EXPECT_EQ(this->v_[order[k]][k], Real(1));
        }
    }
    const auto b = random_matrix<Real>(6, 6, 3);
    for (const int limit : {INT_MIN, -1, 0, 1, 2, 5}) {
        EXPECT_TRUE(this->decompose(kByQr, b, &this->v_, limit, -1));
        EXPECT_EQ(this->count_, std::max(limit, 1));
        for (int mode = 0; mode < 3; ++mode) {
            EXPECT_TRUE(this->decompose(mode, b, &this->v_, limit, -1));
            const int most = std::max(0, limit) * (mode == 0 ? 15 : 1);
            EXPECT_TRUE(limit > 2 ? this->count_ <= most : this->count_ == most);
            EXPECT_TRUE(limit > 0 || this->annihilated_ == 0);
        }
    }
    // Small matrices within the hundred of the short form; the limit form beyond.
    const auto c = packed_of(random_matrix<Real>(40, 40, 3));
    Matrix<Real> v;
    MatrixDiagonal<Real> d;
    ASSERT_TRUE(this->f_.devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(&c, &v, &d));
    ASSERT_TRUE(this->decompose(kByQr, unpacked(c), &this->v_, 100, 0));
    EXPECT_LT(this->count_, 100);
    EXPECT_TRUE(d == this->d_ && v == this->v_);
}

// The cyclic modes make the rotations of the stated scheme: one sweep by the public rotation, in
// row order, gives the same matrix, on the upper triangle alone.
TWIN_TEST(SymmetricEigen, SweepsAreTheRotationsOneByOne) {
    const auto& f = this->f_;
    for (const int n : {2, 5, 16, 17, 18, 33, 50})
        for (const int mode : {1, 2}) {
            auto a = random_matrix<Real>(n, n, std::uint64_t(n));
            std::vector<Real> d;
            double off = 0;
            for (int i = 0; i < n; ++i) {
                d.push_back(a[i][i]);
                for (int j = i + 1; j < n; ++j) off += 2 * double(a[i][j]) * double(a[i][j]);
                for (int j = 0; j < i; ++j) a[i][j] = std::numeric_limits<Real>::quiet_NaN();
            }
            auto input = a;
            auto v = identity_of<Real>(n);
            int expected = 0, sweeps = -1;
            const Real threshold = mode == 1 ? Real(0.2 * off / (n * n)) : Real(0);
            for (int p = 0; p < n; ++p)
                for (int q = p + 1; q < n; ++q)
                    f.u_jru_Jacobi_Rotation_and_Update(a.p(), d.data(), v.p(), n, p, q, threshold,
                                                       expected);
            ASSERT_TRUE(f.u_dsj_Diagonalize_Symmetric_matrix_based_on_Jacobi_rotations(
                mode, &input, &this->v_, &this->d_, 1, Real(0), sweeps, this->annihilated_));
            EXPECT_EQ(sweeps, 1);
            EXPECT_EQ(this->annihilated_, expected);
            std::sort(d.rbegin(), d.rend());
            for (int k = 0; k < n; ++k)
                EXPECT_NEAR(this->d_[k], d[std::size_t(k)], 20 * n * kEpsilon<Real>);
        }
    // Nothing happens at or below the threshold, nor for indices that are no pair.
    auto a = matrix_of<Real>(2, 2, {0, 0.5, 0.5, 1});
    Real d[2] = {0, 1};
    int annihilated = 0;
    for (const auto& [p, q] : {std::pair{0, 1}, {1, 0}, {0, 2}, {-1, 0}, {1, 1}})
        f.u_jru_Jacobi_Rotation_and_Update(a.p(), d, nullptr, 2, p, q, Real(0.5), annihilated);
    EXPECT_EQ(annihilated, 0);
    EXPECT_EQ(a[0][1], Real(0.5));
}

TWIN_TEST(SymmetricEigen, NoNumbersGiveNoNumbers) {
    for (const Real bad :
         {std::numeric_limits<Real>::quiet_NaN(), std::numeric_limits<Real>::infinity()})
        for (const int n : {1, 2, 5, 20})
            for (const int at : {0, n / 2, n - 1}) {
                auto a = random_matrix<Real>(n, n);
                a[0][at] = bad;
                const auto s = packed_of(a);
                EXPECT_FALSE(
                    this->f_.ipde_Is_Positive_Definite_matrix_based_on_Eigen_value_decomposition(
                        &s));
                for (const int route : {0, 1, 2, kByQr}) {
                    ASSERT_TRUE(this->decompose(route, a));
                    for (int k = 0; k < n; ++k)
                        EXPECT_TRUE(std::isnan(this->d_[k]) && std::isnan(this->v_[k][0]));
                }
            }
}

TWIN_TEST(SymmetricEigen, TridiagonalForms) {
    const auto& f = this->f_;
    for (const int n : {1, 2, 3, 4, 17, 40, 140}) {
        SCOPED_TRACE(n);
        const auto a = random_matrix<Real>(n, n, std::uint64_t(n));
        const auto s = packed_of(a);
        Matrix<Real> q, dense, in_place = a, same = a;
        MatrixSymmetric<Real> packed;
        MatrixBand<Real> band;
        Vector<Real> d, e;
        ASSERT_TRUE(f.tdm_Tridiagonalize_Matrix(&s, &q, &dense));
        EXPECT_LT(rebuilding_error(unpacked(s), q, dense, transposed(q)), 10);
        EXPECT_LT(orthogonality_error(q), 10);
        ASSERT_TRUE(f.tdm_Tridiagonalize_Matrix(&a, nullptr, &packed) &&
                    f.tdm_Tridiagonalize_Matrix(&s, nullptr, &band) &&
                    f.u_td_Tridiagonalize_matrix(&in_place, &q) &&
                    f.u_td_Tridiagonalize_matrix(&same, &q, &d, &e));
        EXPECT_TRUE(unpacked(packed) == dense && unpacked(band) == dense && in_place == dense);
        const auto tridiagonal = [&] {
            return matrix_of<Real>(n, n, [&](int i, int j) {
                return i == j ? d[i] : std::abs(i - j) == 1 ? e[std::min(i, j)] : Real(0);
            });
        };
        EXPECT_TRUE(tridiagonal() == dense);

        // T = Q R in every form
        Matrix<Real> r[4] = {dense}, qs[5];
        MatrixBandSymmetric<Real> band_symmetric;
        band_symmetric.i_Import(&packed, n > 1 ? 1 : 0);
        MatrixBand<Real> band_r;
        const auto factor = [&](auto*... arguments) {
            return f.dqrt_Decompose_into_QR_matrices_for_Tridiagonal_matrix(arguments...);
        };
        const auto factor_lower = [&](auto*... arguments) {
            return f.u_dqrt_Decompose_into_QR_matrices_for_Tri_diagonal_matrix(arguments...);
        };
        ASSERT_TRUE(factor_lower(&r[0], &qs[0]) && factor_lower(&d, &e, &qs[1], &r[1]));
        ASSERT_TRUE(factor(&packed, &qs[2], &r[2]) && factor(&band_symmetric, &qs[3], &r[3]) &&
                    factor(&dense, &qs[4], &band_r));
        for (const Matrix<Real>& other : {r[1], r[2], r[3], unpacked(band_r)})
            EXPECT_TRUE(other == r[0]);
        for (const Matrix<Real>& other : qs) EXPECT_TRUE(other == qs[0]);
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < i; ++j) EXPECT_EQ(r[0][i][j], Real(0));
        EXPECT_LT(rebuilding_error(dense, qs[0], r[0]), 10);
        EXPECT_LT(orthogonality_error(qs[0]), 10);

        // A QR step on the last three keeps Q T Q^T; the part before the block stays.
        if (n < 4) continue;
        auto rotated = identity_of<Real>(n);
        const Vector<Real> before = d;
        ASSERT_TRUE(
            f.u_Implicit_Symmetric_QR_step_with_Wilkinson_Shift(&d, &e, n - 3, 3, &rotated));
        EXPECT_EQ(d[0], before[0]);
        const auto stepped = product(product(rotated, tridiagonal()), transposed(rotated));
        for (int i = n - 3; i < n; ++i)
            for (int j = n - 3; j < n; ++j)
                EXPECT_NEAR(stepped[i][j], dense[i][j], 10 * n * kEpsilon<Real>);
    }
}

TWIN_TEST(SymmetricEigen, GeneralizedProblem) {
    const auto& f = this->f_;
    for (const int n : {1, 2, 10, 11, 40}) {
        SCOPED_TRACE(n);
        const auto a = packed_of(random_matrix<Real>(n, n, 5));
        const auto b = packed_of(positive_definite_matrix<Real>(n, 20));
        Matrix<Real> x;
        MatrixDiagonal<Real> d, alone;
        ASSERT_TRUE(f.dgea_Do_Generalized_Eigen_Analysis(&a, &b, &x, &d));
        ASSERT_TRUE(f.dgea_Do_Generalized_Eigen_Analysis(&a, &b, nullptr, &alone));
        EXPECT_TRUE(d == alone);
        // A X = B X D, columns of length one
        Matrix<Real> xd = x;
        for (int i = 0; i < n; ++i)
            for (int k = 0; k < n; ++k) xd[i][k] *= d[k];
        EXPECT_LT(largest_difference(product(unpacked(a), x), product(unpacked(b), xd)),
                  200 * n * n * kEpsilon<Real>);
        const auto xx = product(transposed(x), x);
        for (int k = 0; k < n; ++k) {
            EXPECT_NEAR(xx[k][k], 1, 10 * n * kEpsilon<Real>);
            EXPECT_TRUE(k == 0 || d[k - 1] >= d[k]);
        }
    }
    const auto b = packed_of(constant_matrix<Real>(2, 2, 1));
    const MatrixSymmetric<Real> a;
    Matrix<Real>& x = this->v_;
    MatrixDiagonal<Real>& d = this->d_;
    EXPECT_TRUE(fails_as(f, "dgea_Do_Generalized_Eigen_Analysis: 1",
                         f.dgea_Do_Generalized_Eigen_Analysis(&a, &b, &x, &d)));
    EXPECT_TRUE(fails_as(f,
                         "u_dch_Decompose_matrix_by_Cholesky_algorithm: non-positive definite\n"
                         "dch_Decompose_matrix_by_Cholesky_algorithm: 1\n"
                         "dgea_Do_Generalized_Eigen_Analysis: 2",
                         f.dgea_Do_Generalized_Eigen_Analysis(&b, &b, &x, &d)));
}

TWIN_TEST(SymmetricEigen, RefusalsAndPositiveDefiniteness) {
    const auto& f = this->f_;
    Matrix<Real> a = random_matrix<Real>(3, 2), v;
    const std::string one = "u_dsj_Diagonalize_Symmetric_matrix_based_on_Jacobi_rotations: 1";
    EXPECT_TRUE(fails_as(
        f, one + "\n" + one,
        f.u_dsj_Diagonalize_Symmetric_matrix_based_on_Jacobi_rotations(&a, &v, &this->d_)));
    a = random_matrix<Real>(3, 3);
    const auto s = packed_of(a);
    EXPECT_TRUE(
        fails_as(f, one,
                 f.u_dsj_Diagonalize_Symmetric_matrix_based_on_Jacobi_rotations(
                     2, &a, &a, &this->d_, 100, Real(0), this->count_, this->annihilated_)));
    for (const auto& [mode, tolerance] :
         {std::pair{-1, 0.0}, {3, 0.0}, {2, std::numeric_limits<double>::quiet_NaN()}})
        EXPECT_TRUE(
            fails_as(f, one + "\ndevj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations: 1",
                     this->decompose(mode, a, &v, 100, tolerance)));
    EXPECT_EQ(this->count_, -1);
    EXPECT_EQ(v.mh(), 0);
    EXPECT_TRUE(fails_as(f, "u_td_Tridiagonalize_matrix: 1", f.u_td_Tridiagonalize_matrix(&a, &a)));
    EXPECT_TRUE(fails_as(f, "u_td_Tridiagonalize_matrix: 1\ntdm_Tridiagonalize_Matrix: 1",
                         f.tdm_Tridiagonalize_Matrix(&s, &v, &v)));
    auto diagonal = vector_of<Real>({1, 1, 1, 1}), off = vector_of<Real>({1, 1, 1});
    const auto step = [&](int start, int size, Matrix<Real>* q) {
        return f.u_Implicit_Symmetric_QR_step_with_Wilkinson_Shift(&diagonal, &off, start, size, q);
    };
    for (const auto& [start, size] :
         {std::pair{-1, 2}, {0, 5}, {3, 2}, {0, -1}, {INT_MAX, INT_MAX}, {INT_MIN, INT_MIN}})
        EXPECT_TRUE(fails_as(f, "u_Implicit_Symmetric_QR_step_with_Wilkinson_Shift: 1",
                             step(start, size, nullptr)));
    EXPECT_TRUE(fails_with(f, "2", step(0, 4, &a)));

    const auto definite = packed_of(positive_definite_matrix<Real>(12, 10));
    const auto singular = packed_of(matrix_of<Real>(2, 2, {5, 0, 0, 0}));
    EXPECT_TRUE(f.ipde_Is_Positive_Definite_matrix_based_on_Eigen_value_decomposition(&definite));
    EXPECT_FALSE(f.ipde_Is_Positive_Definite_matrix_based_on_Eigen_value_decomposition(&singular));
}

}  // namespace
}  // namespace nequar::test
