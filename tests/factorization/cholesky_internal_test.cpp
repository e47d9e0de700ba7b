// Cholesky and the symmetry test: the algorithms, blocked and not.
#include <limits>

#include "factorization/algorithm/cholesky.h"
#include "factorization/algorithm/symmetry.h"
#include "frame/views.h"
#include "support/residual.h"
#include "support/twins.h"

namespace nequar::test {
namespace {

using kernel::Triangle;

TWINS(CholeskyAlgorithm);

// The reversed matrix: element (i, j) becomes (n-1-i, n-1-j).
template <class Real>
Matrix<Real> reversed(const Matrix<Real>& a) {
    const int n = a.mh();
    return matrix_of<Real>(n, n, [&](int i, int j) { return a[n - 1 - i][n - 1 - j]; });
}

// Input is read above the diagonal only, and kept there; the upper form is the lower one reversed.
TWIN_TEST(CholeskyAlgorithm, FactorsFromOneTriangleAndKeepsIt) {
    const Real nan = std::numeric_limits<Real>::quiet_NaN();
    for (const int n : {0, 1, 2, 3, 7, 16, 31, 32, 33, 64, 65, 100, 130}) {
        const Matrix<Real> a = positive_definite_matrix<Real>(n, 1e3, 3);
        for (const Size base : {1, 3, 16, 32, 64}) {
            SCOPED_TRACE(testing::Message() << "n = " << n << ", base " << base);
            Matrix<Real> f =
                matrix_of<Real>(n, n, [&](int i, int j) { return i <= j ? a[i][j] : nan; });
            Matrix<Real> g = reversed(f);
            ASSERT_TRUE(cholesky_from_opposite(Triangle::lower, view_of(&f), {base, base}));
            ASSERT_TRUE(cholesky_from_opposite(Triangle::upper, view_of(&g), {base, base}));
            const auto l =
                matrix_of<Real>(n, n, [&](int i, int j) { return i >= j ? f[i][j] : Real(0); });
            EXPECT_LT(componentwise_product_error(a, l, transposed(l)), 1.0);
            EXPECT_LT(largest_difference(reversed(g), f), 1e3 * n * kEpsilon<Real> + 1e-300);
            for (int i = 0; i < n; ++i)
                for (int j = i + 1; j < n; ++j) EXPECT_EQ(f[i][j], a[i][j]);
        }
    }
}

TWIN_TEST(CholeskyAlgorithm, StopsAtThePivotThatIsNotAboveZero) {
    const Real nan = std::numeric_limits<Real>::quiet_NaN();
    for (const int n : {1, 5, 33, 100})
        for (const int at : {0, n / 2, n - 1})
            for (const Real bad : {Real(-1), Real(0), nan})
                for (const Size base : {2, 32}) {
                    Matrix<Real> a = dominant_matrix<Real>(n, 3);
                    for (int i = 0; i < n; ++i) {
                        a[i][i] = std::abs(a[i][i]);
                        if (i != at) a[std::min(i, at)][std::max(i, at)] = 0;
                    }
                    a[at][at] = bad;  // its row is zero, so nothing changes it before its turn
                    const Matrix<Real> input = a;
                    const Outcome outcome =
                        cholesky_from_opposite(Triangle::lower, view_of(&a), {base, base});
                    EXPECT_EQ(outcome.kind, OutcomeKind::not_positive_definite);
                    EXPECT_EQ(outcome.index, at) << "n = " << n << ", base " << base;
                    for (int i = 0; i < n; ++i)
                        for (int j = i; j < n; ++j)
                            EXPECT_TRUE(a[i][j] == input[i][j] || (i == at && j == at));
                }
}

TWIN_TEST(CholeskyAlgorithm, SymmetryIsExact) {
    const Real nan = std::numeric_limits<Real>::quiet_NaN();
    for (const int n : {0, 1, 2, 31, 32, 33, 70}) {
        Matrix<Real> a = positive_definite_matrix<Real>(n, 10, 3);
        for (int i = 0; i < n; ++i) a[i][i] = nan;
        EXPECT_TRUE(is_symmetric(reading(view_of(&a))));
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < i; ++j) {
                Matrix<Real> b = a;
                b[i][j] = std::nextafter(b[i][j], Real(9));
                ASSERT_FALSE(is_symmetric(reading(view_of(&b)))) << i << ' ' << j;
                b[i][j] = b[j][i] = nan;
                ASSERT_FALSE(is_symmetric(reading(view_of(&b))));
            }
    }
}

}  // namespace
}  // namespace nequar::test
