// Gauss-Jordan elimination and the condition estimate: the algorithms.
#include <limits>
#include <utility>
#include <vector>

#include "factorization/algorithm/condition.h"
#include "factorization/algorithm/lu_partial.h"
#include "factorization/algorithm/triangular_inverse.h"
#include "frame/views.h"
#include "linear_equation/algorithm/factor_solve.h"
#include "linear_equation/algorithm/gauss_jordan.h"
#include "support/residual.h"
#include "support/stated_schemes.h"
#include "support/twins.h"

namespace nequar::test {
namespace {

TWINS(SolveAlgorithm);

// A and B end as the plain loops leave them, exchanges and negative pivots included.
TWIN_TEST(SolveAlgorithm, GaussJordanFollowsTheScheme) {
    for (const int n : {0, 1, 2, 3, 8, 17, 40}) {
        for (const int k : {0, 1, 5, n}) {
            for (int kind = 0; kind < 3; ++kind) {
                Matrix<Real> a = kind == 0   ? positive_definite_matrix<Real>(n, 50, 5)
                                 : kind == 1 ? dominant_matrix<Real>(n, 6)
                                             : integer_matrix<Real>(n, n, 3, 4);
                if (kind == 2)
                    for (int j = 0; j < n; ++j) a[n / 2][j] = 0;
                if (kind == 1)  // the pivots lie below the diagonal, so that rows are exchanged
                    for (int i = 0; i + 1 < n; ++i)
                        for (int j = 0; j < n; ++j) std::swap(a[i][j], a[i + 1][j]);
                Matrix<Real> b = random_matrix<Real>(n, k, 3), stated_a = a, stated_b = b;
                const Matrix<Real> a0 = a, b0 = b;
                const bool solved = stated_gauss_jordan(stated_a, stated_b);
                EXPECT_EQ(bool(gauss_jordan(view_of(&a), view_of(&b))), solved);
                EXPECT_EQ(solved, kind != 2 || n == 0);
                if (kind == 2) continue;  // what rounding leaves of a singular matrix differs
                const double tolerance = 1e4 * kEpsilon<Real>;
                EXPECT_LE(largest_difference(a, stated_a), tolerance * largest_of(stated_a));
                EXPECT_LE(largest_difference(b, stated_b), tolerance * largest_of(stated_b));
                EXPECT_TRUE(kind != 0 || solution_residual(a0, b, b0) < 10.0);
            }
        }
    }
}

TWIN_TEST(SolveAlgorithm, GaussJordanMeetsExtremeElements) {
    const Real nan = std::numeric_limits<Real>::quiet_NaN();
    const Real infinity = std::numeric_limits<Real>::infinity();
    const Real tiny = std::numeric_limits<Real>::denorm_min();
    Matrix<Real> b = identity_of<Real>(2);
    auto all_nan = constant_matrix<Real>(2, 2, nan);
    EXPECT_EQ(gauss_jordan(view_of(&all_nan), view_of(&b)).kind, OutcomeKind::singular);
    // An infinite pivot scales its row to zero and NaN; it ends, and nothing plausible comes out.
    auto huge = matrix_of<Real>(2, 2, {1, infinity, 0, 1});
    const bool solved = bool(gauss_jordan(view_of(&huge), view_of(&b)));
    EXPECT_TRUE(!solved || std::isnan(largest_of(b)));
    auto small = constant_matrix<Real>(1, 1, 4 * tiny),
         right = constant_matrix<Real>(1, 1, 12 * tiny);
    ASSERT_TRUE(gauss_jordan(view_of(&small), view_of(&right)));
    EXPECT_EQ(right[0][0], Real(3));
}

// The estimate never exceeds the truth by more than rounding, and is close to it.
TWIN_TEST(SolveAlgorithm, ConditionEstimateIsALowerBoundNearTheNorm) {
    for (const int n : {1, 2, 3, 10, 40}) {
        for (int kind = 0; kind < 5; ++kind) {
            const Matrix<Real> a = kind == 0   ? random_matrix<Real>(n, n, 11)
                                   : kind == 1 ? kahan_matrix<Real>(n)
                                   : kind == 2 ? positive_definite_matrix<Real>(n, 1e3, 2)
                                   : kind == 3 ? hilbert_matrix<Real>(std::min(n, 3))
                                               : growing_matrix<Real>(std::min(n, 10));
            Matrix<Real> lu = a;
            std::vector<int> perm(static_cast<std::size_t>(a.mh()));
            int interchanges = 0;
            ASSERT_TRUE(lu_partial_in_place(view_of(&lu), perm.data(), interchanges));
            Real estimate = 0;
            ASSERT_TRUE(estimate_norm1_of_inverse(reading(view_of(&lu)), perm.data(), estimate));
            Matrix<Real> inverse = a;
            ASSERT_TRUE(invert_from_lu(reading(view_of(&lu)), perm.data(), view_of(&inverse), 5));
            const double norm = norm1_of(inverse);
            EXPECT_LT(double(estimate), norm * (1 + 0.01)) << n << ' ' << kind;
            EXPECT_GT(double(estimate), norm / 3) << n << ' ' << kind;
            Real norm_of_a = 0;
            ASSERT_TRUE(norm1(view_of(&a), norm_of_a));
            EXPECT_NEAR(double(norm_of_a), norm1_of(a), n * kEpsilon<Real> * norm_of_a);
        }
    }
    Matrix<Real> bad = identity_of<Real>(5);
    bad[1][2] = std::numeric_limits<Real>::quiet_NaN();
    const std::vector<int> perm{0, 1, 2, 3, 4};
    Real estimate = 0;
    ASSERT_TRUE(estimate_norm1_of_inverse(reading(view_of(&bad)), perm.data(), estimate));
    EXPECT_TRUE(std::isnan(estimate));
    ASSERT_TRUE(norm1(reading(view_of(&bad)), estimate));
    EXPECT_TRUE(std::isnan(estimate));
}

}  // namespace
}  // namespace nequar::test
