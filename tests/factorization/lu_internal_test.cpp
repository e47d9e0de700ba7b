// LU with pivots before the update, and with partial pivoting: the algorithms, blocked and not.
#include <limits>
#include <numeric>
#include <vector>

#include "factorization/algorithm/lu.h"
#include "factorization/algorithm/lu_partial.h"
#include "factorization/algorithm/pivot_order.h"
#include "frame/views.h"
#include "support/residual.h"
#include "support/stated_schemes.h"
#include "support/twins.h"

namespace nequar {
namespace {

using namespace test;

template <class Real>
struct Lu {
    Matrix<Real> a;
    std::vector<int> perm;
    int interchanges = -1;
    Outcome outcome;
};

template <class Real, class Factor>
Lu<Real> factored(const Matrix<Real>& input, Factor factor) {
    Lu<Real> lu{input, std::vector<int>(static_cast<std::size_t>(input.mh()), -7), -1, {}};
    lu.outcome = factor(view_of(&lu.a), lu.perm.data(), lu.interchanges);
    return lu;
}
template <class Real>
Lu<Real> lu_of(const Matrix<Real>& input, LuBlocking blocking = {}) {
    return factored(input, [&](auto a, int* perm, int& interchanges) {
        return lu_before_update_in_place(a, perm, interchanges, blocking);
    });
}
template <class Real>
Lu<Real> lu_partial_of(const Matrix<Real>& input, LuPartialBlocking blocking = {}) {
    return factored(input, [&](auto a, int* perm, int& interchanges) {
        return lu_partial_in_place(a, perm, interchanges, blocking);
    });
}

template <class Real>
double error_of(const Matrix<Real>& input, const Lu<Real>& lu) {
    const int n = input.mh();
    const auto l = matrix_of<Real>(
        n, n, [&](int i, int j) { return i == j ? Real(1) : (i > j ? lu.a[i][j] : Real(0)); });
    const auto u =
        matrix_of<Real>(n, n, [&](int i, int j) { return i <= j ? lu.a[i][j] : Real(0); });
    return componentwise_product_error(with_rows(input, lu.perm.data()), l, u);
}

template <class Real>
bool same_bits(const Matrix<Real>& a, const Matrix<Real>& b) {
    for (int i = 0; i < a.mh(); ++i)
        for (int j = 0; j < a.mw(); ++j)
            if (!(a[i][j] == b[i][j] || (std::isnan(a[i][j]) && std::isnan(b[i][j])))) return false;
    return a.mh() == b.mh() && a.mw() == b.mw();
}

TWINS(LuAlgorithm);

// Ties, zero columns, NaN and infinity: the order is that of the scheme on every column.
TWIN_TEST(LuAlgorithm, PivotOrderIsKnownFromTheInput) {
    const Real nan = std::numeric_limits<Real>::quiet_NaN();
    const Real infinity = std::numeric_limits<Real>::infinity();
    for (const int n : {0, 1, 2, 3, 7, 8, 9, 16, 17, 32, 33, 40, 64, 65, 100}) {
        for (int kind = 0; kind < 5; ++kind) {
            Matrix<Real> a =
                kind == 0 ? random_matrix<Real>(n, n, 5) : integer_matrix<Real>(n, n, kind, 9);
            Uniform uniform(3);
            for (int i = 0; i < n && kind >= 2; ++i)
                for (int j = 0; j < n; ++j) {
                    const double u = uniform();
                    if (j % 11 == 3) a[i][j] = 0;
                    if (j % 13 == 5 || u < -0.8) a[i][j] = nan;
                    if (kind == 4 && u > 0.9) a[i][j] = u > 0.95 ? infinity : -infinity;
                }
            // The pivots do not depend on the elimination: the last largest of each bare column.
            std::vector<int> expected(static_cast<std::size_t>(n));
            std::iota(expected.begin(), expected.end(), 0);
            int exchanges = 0;
            for (int j = 0; j < n; ++j) {
                int r = j;
                for (int i = j, best = -1; i < n; ++i) {
                    const Real x = std::abs(a[expected[std::size_t(i)]][j]);
                    if (best < 0 ? x >= 0 : x >= std::abs(a[expected[std::size_t(best)]][j]))
                        r = best = i;
                }
                std::swap(expected[std::size_t(r)], expected[std::size_t(j)]);
                exchanges += r != j;
            }
            std::vector<int> perm(static_cast<std::size_t>(n), -1);
            int interchanges = -1;
            const Matrix<Real>& input = a;
            choose_pivots_before_update(view_of(&input), perm.data(), interchanges);
            EXPECT_EQ(perm, expected) << "n = " << n << ", kind " << kind;
            EXPECT_EQ(interchanges, exchanges) << "n = " << n << ", kind " << kind;
        }
    }
}

// Up to the plain order the result is the scheme's to the last bit, failures included.
TWIN_TEST(LuAlgorithm, SmallMatricesFollowTheSchemeExactly) {
    int failures = 0;
    for (const int n : {1, 2, 3, 4, 5, 8, 13, 16, 31, 32}) {
        for (unsigned seed = 0; seed < 12; ++seed) {
            const Matrix<Real> a =
                seed % 3 == 0   ? random_matrix<Real>(n, n, seed)
                : seed % 3 == 1 ? integer_matrix<Real>(n, n, 2, seed)
                                : rank_deficient_matrix<Real>(n, n, std::max(1, n - 1), seed);
            const StatedLu<Real> stated = stated_crout(a);
            const Lu<Real> lu = lu_of(a);
            EXPECT_EQ(bool(lu.outcome), stated.zero_pivot < 0);
            EXPECT_EQ(lu.outcome.index, stated.zero_pivot);
            EXPECT_EQ(lu.perm, stated.perm);
            EXPECT_EQ(lu.interchanges, stated.interchanges);
            EXPECT_TRUE(same_bits(lu.a, stated.a)) << "n = " << n << ", seed " << seed;
            failures += stated.zero_pivot >= 0;
        }
    }
    EXPECT_GT(failures, 5);  // the states of failures were compared, too
}

TWIN_TEST(LuAlgorithm, BlockedFactorsReproduceTheInput) {
    for (const int n : {1, 2, 3, 5, 8, 17, 33, 64, 65, 100, 130}) {
        for (const LuBlocking blocking : {LuBlocking{0, 1}, {0, 3}, {0, 8}, {0, 32}, {32, 32}}) {
            const Matrix<Real> a = dominant_matrix<Real>(n, 4);
            const Lu<Real> lu = lu_of(a, blocking);
            ASSERT_TRUE(lu.outcome);
            EXPECT_LT(error_of(a, lu), 1.0) << "n = " << n << ", base " << blocking.base;
            // Large factors do not spoil the product relative to |L| |U|.
            const Matrix<Real> b = random_matrix<Real>(n, n, 8);
            const Lu<Real> grown = lu_of(b, blocking);
            ASSERT_TRUE(grown.outcome);
            EXPECT_EQ(grown.perm, stated_crout(b).perm);
            EXPECT_LT(error_of(b, grown), 1.0) << "n = " << n << ", base " << blocking.base;
        }
    }
}

// A zero column survives every rounding, so the blocked form meets the zero pivot where the scheme
// does, and must leave its state: factored before, updated at, untouched after.
TWIN_TEST(LuAlgorithm, ZeroPivotLeavesTheStateOfTheScheme) {
    for (const int n : {5, 12, 40, 100}) {
        for (const int zero : {0, 1, n / 2, n - 1}) {
            Matrix<Real> a = dominant_matrix<Real>(n, 6);
            for (int i = 0; i + 1 < n; ++i) std::swap(a.p()[0][i * n], a.p()[0][(i + 1) * n]);
            for (int i = 0; i < n; ++i) a[i][zero] = 0;
            const StatedLu<Real> stated = stated_crout(a);
            const Lu<Real> lu = lu_of(a, {0, 4});
            EXPECT_EQ(lu.outcome.kind, OutcomeKind::singular);
            EXPECT_EQ(lu.outcome.index, zero);
            EXPECT_EQ(stated.zero_pivot, zero);
            EXPECT_EQ(lu.perm, stated.perm);
            EXPECT_EQ(lu.interchanges, stated.interchanges);
            const double scale = n * kEpsilon<Real> * largest_of(a);
            EXPECT_LT(largest_difference(lu.a, stated.a), 4 * scale);
            for (int i = 0; i < n; ++i)
                for (int j = zero; j < n; ++j) EXPECT_EQ(lu.a[i][j], stated.a[i][j]);
        }
    }
}

TWIN_TEST(LuAlgorithm, SubnormalPivotIsDividedBy) {
    const Real tiny = std::numeric_limits<Real>::denorm_min();
    for (const LuBlocking blocking : {LuBlocking{}, LuBlocking{0, 2}}) {
        Matrix<Real> a = matrix_of<Real>(6, 6, [](int i, int j) { return i == j ? 1 : 0; });
        for (int i = 0; i < 6; ++i) a[i][0] = 4 * tiny * static_cast<Real>(i == 5 ? 2 : 1);
        const Lu<Real> lu = lu_of(a, blocking);
        ASSERT_TRUE(lu.outcome);
        EXPECT_EQ(lu.perm[0], 5);
        for (int i = 1; i < 6; ++i) EXPECT_EQ(lu.a[i][0], Real(0.5));
    }
}

TWIN_TEST(LuAlgorithm, NotANumberPassesThrough) {
    for (const int n : {4, 50}) {
        Matrix<Real> a = dominant_matrix<Real>(n);
        for (int i = 0; i < n; ++i) a[i][1] = std::numeric_limits<Real>::quiet_NaN();
        const Lu<Real> lu = lu_of(a, {8, 8});
        ASSERT_TRUE(lu.outcome);
        EXPECT_EQ(lu.perm, stated_crout(a).perm);
        EXPECT_TRUE(std::isnan(determinant_from_lu(reading(view_of(&lu.a)), lu.interchanges)));
    }
}

TWIN_TEST(LuAlgorithm, PartialPivotingIsBackwardStable) {
    for (const int n : {0, 1, 2, 3, 7, 16, 17, 32, 33, 64, 65, 100, 130}) {
        for (const LuPartialBlocking blocking :
             {LuPartialBlocking{}, {0, 1}, {0, 2}, {0, 7}, {0, 16}}) {
            for (int kind = 0; kind < 4; ++kind) {
                const Matrix<Real> a = kind == 0   ? random_matrix<Real>(n, n, 2)
                                       : kind == 1 ? hilbert_matrix<Real>(n)
                                       : kind == 2 ? graded_matrix<Real>(n, 20, 4)
                                                   : growing_matrix<Real>(std::min(n, 60));
                const Lu<Real> lu = lu_partial_of(a, blocking);
                EXPECT_LT(error_of(a, lu), 1.0) << "n = " << n << ", panel " << blocking.panel;
                double multiplier = 0;
                for (int i = 0; i < a.mh(); ++i)
                    for (int j = 0; j < i; ++j)
                        multiplier = worse(std::abs(double(lu.a[i][j])), multiplier);
                EXPECT_LE(multiplier, 1.0 + 4 * kEpsilon<Real>);
                EXPECT_TRUE(kind == 1 || lu.outcome) << "n = " << n << ", kind " << kind;
            }
        }
    }
}

// The exchanges are counted, the first of equal candidates is taken, and a column without a pivot
// is named while the factorization still holds.
TWIN_TEST(LuAlgorithm, PartialPivotingTakesTheFirstOfEqualsAndFinishesSingularOnes) {
    Matrix<Real> ties = identity_of<Real>(4);
    ties[1][0] = -1;
    ties[3][0] = 1;
    for (const LuPartialBlocking blocking : {LuPartialBlocking{}, {0, 1}, {0, 2}}) {
        const Lu<Real> lu = lu_partial_of(ties, blocking);
        EXPECT_EQ(lu.perm, (std::vector<int>{0, 1, 2, 3}));
        EXPECT_EQ(lu.interchanges, 0);
        for (const int n : {4, 20, 70}) {
            for (const int zero : {0, n / 2, n - 1}) {
                Matrix<Real> a = random_matrix<Real>(n, n, 12);
                for (int i = 0; i < n; ++i) a[i][zero] = 0;
                if (zero + 1 < n)
                    for (int i = 0; i < n; ++i) a[i][n - 1] = 0;
                const Lu<Real> singular = lu_partial_of(a, blocking);
                EXPECT_EQ(singular.outcome.kind, OutcomeKind::singular);
                EXPECT_EQ(singular.outcome.index, zero);
                EXPECT_EQ(singular.a[zero][zero], Real(0));
                EXPECT_LT(error_of(a, singular), 1.0) << "n = " << n;
            }
        }
    }
    Matrix<Real> swapped = identity_of<Real>(33);
    std::swap(swapped[0][0], swapped[0][32]);
    std::swap(swapped[32][32], swapped[32][0]);
    const Lu<Real> lu = lu_partial_of(swapped);
    EXPECT_EQ(lu.interchanges, 1);
    EXPECT_EQ(lu.perm[0], 32);
    EXPECT_EQ(determinant_from_lu(reading(view_of(&lu.a)), lu.interchanges), Real(-1));
}

// Row by row or as a panel: the same operations.
TWIN_TEST(LuAlgorithm, PartialPivotingOfSmallMatricesHasTheBitsOfThePanel) {
    const Real hard[] = {0,
                         1,
                         -1,
                         std::numeric_limits<Real>::denorm_min(),
                         std::numeric_limits<Real>::infinity(),
                         std::numeric_limits<Real>::quiet_NaN()};
    for (int n = 1; n <= 32; ++n) {
        for (int kind = 0; kind < 8; ++kind) {
            Matrix<Real> a = test::random_matrix<Real>(n, n, unsigned(n));
            for (int i = 0; i < n && kind < 6; ++i) a[i][n / 2] = hard[kind];  // a whole column
            if (kind == 6) a[n / 2][n / 3] = hard[5];
            if (kind == 7) a = test::identity_of<Real>(n);
            const Lu<Real> rows = lu_partial_of(a);
            const Lu<Real> panel = lu_partial_of(a, {32, 16, 0});
            EXPECT_TRUE(same_bits(rows.a, panel.a)) << "n = " << n << ", kind " << kind;
            EXPECT_EQ(rows.perm, panel.perm);
            EXPECT_EQ(rows.interchanges, panel.interchanges);
            EXPECT_EQ(rows.outcome.index, panel.outcome.index);
        }
    }
}

}  // namespace
}  // namespace nequar
