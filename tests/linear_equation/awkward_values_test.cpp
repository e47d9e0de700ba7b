// Small matrices full of zeros, subnormal and huge numbers, infinities and NaN: every operation
// ends, what is finite has good residuals, and nothing plausible comes out of what is not finite.
#include <nequar_algebra/nequar_algebra.h>

#include <cmath>
#include <limits>
#include <random>

#include "support/residual.h"
#include "support/twins.h"

namespace nequar::test {
namespace {

constexpr double kBound = 30;
enum Style { integers, tiny, huge, not_finite, spread };
constexpr unsigned kStyles = 5;

template <class Real>
class Awkward {
public:
    Awkward(unsigned seed, Style style) : engine_(seed), style_(style) {}

    int below(int n) { return static_cast<int>(engine_() % static_cast<unsigned>(n)); }
    Real value() {
        using L = std::numeric_limits<Real>;
        const int kind = below(12);
        const Real plain = static_cast<Real>(below(2000001) - 1000000) / 1000000;
        if (kind < 3) return 0;
        if (style_ == integers) return static_cast<Real>(below(7) - 3);
        if (style_ == tiny)
            return kind == 3   ? L::denorm_min() * static_cast<Real>(1 + below(5))
                   : kind == 4 ? L::min()
                               : plain;
        if (style_ == spread)
            return plain *
                   std::pow(Real(10), static_cast<Real>(below(2 * kDecades + 1) - kDecades));
        if (style_ == huge) return kind == 3 ? std::sqrt(L::max()) : plain * (L::max() / 1024);
        return kind == 3 ? L::quiet_NaN() : kind == 4 ? L::infinity() : plain;
    }
    void fill(Matrix<Real>& a, int height, int width) {
        a.c_Create(height, width);
        for (int i = 0; i < height; ++i)
            for (int j = 0; j < width; ++j) a[i][j] = value();
    }

private:
    static constexpr int kDecades = std::numeric_limits<Real>::max_exponent10 - 3;
    std::mt19937 engine_;
    Style style_;
};

template <class Real>
bool is_finite(const Matrix<Real>& a) {
    for (int i = 0; i < a.mh(); ++i)
        for (int j = 0; j < a.mw(); ++j)
            if (!std::isfinite(a[i][j])) return false;
    return true;
}
template <class Real>
bool is_finite(const MatrixDiagonal<Real>& d) {
    for (int i = 0; i < d.vs(); ++i)
        if (!std::isfinite(d[i])) return false;
    return true;
}

TWINS(AwkwardValues);

TWIN_TEST(AwkwardValues, SpectralDecompositionsRebuildOrRefuse) {
    constexpr int limit = 100000;
    const LinearEquation<Real> solver;
    for (unsigned seed = 0; seed < 6000; ++seed) {
        const auto style = static_cast<Style>(seed % kStyles);
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Awkward<Real> source(seed, style);
        const int n = 1 + source.below(seed % 50 == 0 ? 30 : 6), m = n + source.below(3);
        Matrix<Real> a, u, v;
        MatrixDiagonal<Real> d;
        int steps = 0;
        source.fill(a, m, n);
        const bool ended = solver.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
            &a, &u, &d, &v, limit, steps);
        EXPECT_EQ(ended, is_finite(a));
        if (ended) {
            EXPECT_LT(steps, limit);
            EXPECT_LT(spectral_error(a, u, d, v), kBound);
            EXPECT_LT(orthogonality_error(u), kBound);
            EXPECT_LT(orthogonality_error(v), kBound);
        }
        source.fill(a, n, n);
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < i; ++j) a[i][j] = a[j][i];
        MatrixSymmetric<Real> s;
        s.i_Import(&a);
        s.e_Export(&a);
        for (int mode = 0; mode < 4; ++mode) {
            SCOPED_TRACE(testing::Message() << "mode " << mode);
            int sweeps = 0, annihilated = 0;  // the tolerance of mode 0 is absolute
            const bool done =
                mode < 3 ? solver.devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(
                               mode, &s, &v, &d, 100, mode == 0 ? Real(0) : Real(1e-32), sweeps,
                               annihilated)
                         : solver.devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(
                               &s, &v, &d, limit, steps);
            if (!is_finite(a)) {
                EXPECT_TRUE(!done || !is_finite(d));
                continue;
            }
            ASSERT_TRUE(done);
            EXPECT_LT(spectral_error(a, v, d, v), kBound);
            EXPECT_LT(orthogonality_error(v), kBound);
        }
    }
}

// The largest singular value overflows though no element does: nothing may be counted beside it.
TWIN_TEST(AwkwardValues, SingularValuesThatOverflowGiveNoRank) {
    const LinearEquation<Real> solver;
    Matrix<Real> a, x, n;
    a.c_Create(3, 3, std::numeric_limits<Real>::max() / 2);
    int rank = -1;
    EXPECT_FALSE(solver.r_Rank(&a, Real(1e-3), rank));
    EXPECT_FALSE(solver.fin_Find_Input_Null_vector_space(&a, Real(1e-3), rank, &n, nullptr, nullptr,
                                                         nullptr));
    EXPECT_FALSE(solver.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, Real(1e-3), &x));
    EXPECT_TRUE(rank == -1 && n.mh() == 0 && x.mh() == 0);
}

// Nothing is expected of the values: every call ends, and a NaN is never lost.
TWIN_TEST(AwkwardValues, SolversEndAndCarryNanThrough) {
    LinearEquation<Real> solver;
    for (unsigned seed = 0; seed < 3000; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Awkward<Real> source(seed, static_cast<Style>(seed % kStyles));
        const int m = 1 + source.below(6), n = seed % 3 == 0 ? 1 + source.below(6) : m;
        Matrix<Real> a, b, x;
        Vector<Real> y;
        source.fill(a, m, n);
        source.fill(b, m, 2);
        bool has_nan = false;
        for (int i = 0; i < m; ++i)
            for (int j = 0; j < n; ++j) has_nan = has_nan || std::isnan(a[i][j]);
        MatrixSymmetric<Real> s;
        if (m == n) s.i_Import(&a);
        for (int code = -1; code <= 10; ++code) {
            if (solver.sle_Solve_Linear_Equation(code, &a, &b, &x) && has_nan) {
                EXPECT_FALSE(is_finite(x)) << "solve " << code;
            }
            if (solver.im_Inverse_Matrix(code, &a, &x) && has_nan) {
                EXPECT_FALSE(is_finite(x)) << "invert " << code;
            }
            if (m != n) continue;
            solver.sle_Solve_Linear_Equation(code, &s, &b, &x);
            solver.im_Inverse_Matrix(code, &s, &x);
        }
        const auto tolerance = static_cast<Real>(1e-4);
        int rank = 0;
        if (solver.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, tolerance, &x) && has_nan) {
            EXPECT_FALSE(is_finite(x));
        }
        solver.rev_Rank_based_on_Eigen_Value_decomposition(&a, tolerance, rank);
        solver.rqr_Rank_based_on_QR_decomposition_with_column_pivoting(&a, rank);
        solver.fou_Find_Output_Unreached_vector_space(&a, tolerance, rank, &x, nullptr, nullptr,
                                                      nullptr);
        solver.shle_Solve_Homogeneous_Linear_Equation(&a, &y);
        solver.shle_c0_Solve_Homogeneous_Linear_Equation_with_Cx_is_0(&a, &a, tolerance, &y);
        solver.shle_gh_Solve_Homogeneous_Linear_Equation_with_x_is_Gx_hat(&a, &a, tolerance, &y,
                                                                          nullptr);
    }
}

}  // namespace
}  // namespace nequar::test
