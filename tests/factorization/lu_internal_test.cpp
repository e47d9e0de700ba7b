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

// What a factorization leaves, in the form of the stated one.
template <class Real, class Factor>
StatedLu<Real> factored(const Matrix<Real>& input, Factor factor) {
    StatedLu<Real> lu{input, std::vector<int>(std::size_t(input.mh()), -7), -1, -1};
    const Outcome outcome = factor(view_of(&lu.a), lu.perm.data(), lu.interchanges);
    lu.zero_pivot = int(outcome.index);
    EXPECT_EQ(outcome.kind, outcome.index < 0 ? OutcomeKind::done : OutcomeKind::singular);
    return lu;
}
template <class Real>
StatedLu<Real> lu_of(const Matrix<Real>& input, LuBlocking blocking = {}) {
    return factored(input, [&](auto a, int* perm, int& interchanges) {
        return lu_before_update_in_place(a, perm, interchanges, blocking);
    });
}
template <class Real>
StatedLu<Real> lu_partial_of(const Matrix<Real>& input, LuPartialBlocking blocking = {}) {
    return factored(input, [&](auto a, int* perm, int& interchanges) {
        return lu_partial_in_place(a, perm, interchanges, blocking);
    });
}

template <class Real>
double error_of(const Matrix<Real>& input, const StatedLu<Real>& lu) {
    const int n = input.mh();
    const auto l = matrix_of<Real>(
        n, n, [&](int i, int j) { return i == j ? Real(1) : (i > j ? lu.a[i][j] : Real(0)); });
    const auto u =
        matrix_of<Real>(n, n, [&](int i, int j) { return i <= j ? lu.a[i][j] : Real(0); });
    return componentwise_product_error(with_rows(input, lu.perm.data()), l, u);
}

template <class Real>
void expect_same_choices(const StatedLu<Real>& lu, const StatedLu<Real>& other) {
    EXPECT_EQ(lu.perm, other.perm);
    EXPECT_EQ(lu.interchanges, other.interchanges);
    EXPECT_EQ(lu.zero_pivot, other.zero_pivot);
}
template <class Real>
void expect_same_bits(const StatedLu<Real>& lu, const StatedLu<Real>& other) {
    expect_same_choices(lu, other);
    for (int i = 0; i < lu.a.mh(); ++i)
        for (int j = 0; j < lu.a.mw(); ++j) {
            const Real x = lu.a[i][j], y = other.a[i][j];
            ASSERT_TRUE(x == y || (std::isnan(x) && std::isnan(y))) << i << ' ' << j;
        }
}

TWINS(LuAlgorithm);

// Ties, zero columns, NaN and infinity: the order is that of the scheme on every column.
TWIN_TEST(LuAlgorithm, PivotOrderIsKnownFromTheInput) {
    const Real nan = std::numeric_limits<Real>::quiet_NaN();
    const Real infinity = std::numeric_limits<Real>::infinity();
    for (const int n : {0, 1, 2, 3, 7, 8, 9, 16, 17, 32, 33, 40, 64, 65, 100})
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
            std::vector<int> expected(static_cast<std::size_t>(n)), perm = expected;
            std::iota(expected.begin(), expected.end(), 0);
            int exchanges = 0, interchanges = -1;
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
            choose_pivots_before_update(reading(view_of(&a)), perm.data(), interchanges);
            EXPECT_EQ(perm, expected) << "n = " << n << ", kind " << kind;
            EXPECT_EQ(interchanges, exchanges) << "n = " << n << ", kind " << kind;
        }
}

// Up to the plain order the result is the scheme's to the last bit, failures included.
TWIN_TEST(LuAlgorithm, SmallMatricesFollowTheSchemeExactly) {
    int failures = 0;
    for (const int n : {1, 2, 3, 4, 5, 8, 13, 16, 31, 32})
        for (unsigned seed = 0; seed < 12; ++seed) {
            SCOPED_TRACE(testing::Message() << "n = " << n << ", seed " << seed);
            const Matrix<Real> a =
                seed % 3 == 0   ? random_matrix<Real>(n, n, seed)
                : seed % 3 == 1 ? integer_matrix<Real>(n, n, 2, seed)
                                : rank_deficient_matrix<Real>(n, n, std::max(1, n - 1), seed);
            const StatedLu<Real> stated = stated_crout(a);
            expect_same_bits(lu_of(a), stated);
            failures += stated.zero_pivot >= 0;
        }
    EXPECT_GT(failures, 5);  // the states of failures were compared, too
}

// Large factors do not spoil the product relative to |L| |U|.
TWIN_TEST(LuAlgorithm, BlockedFactorsReproduceTheInput) {
    for (const int n : {1, 2, 3, 5, 8, 17, 33, 64, 65, 100, 130})
        for (const Matrix<Real>& a : {dominant_matrix<Real>(n, 4), random_matrix<Real>(n, n, 8)})
            for (const LuBlocking blocking :
                 {LuBlocking{0, 1}, {0, 3}, {0, 8}, {0, 32}, {32, 32}}) {
                SCOPED_TRACE(testing::Message() << "n = " << n << ", base " << blocking.base);
                const StatedLu<Real> lu = lu_of(a, blocking);
                expect_same_choices(lu, stated_crout(a));
                EXPECT_EQ(lu.zero_pivot, -1);
                EXPECT_LT(error_of(a, lu), 1.0);
            }
}

// A zero column survives every rounding, so the blocked form meets the zero pivot where the scheme
// does, and must leave its state: factored before, updated at, untouched after.
TWIN_TEST(LuAlgorithm, ZeroPivotLeavesTheStateOfTheScheme) {
    for (const int n : {5, 12, 40, 100})
        for (const int zero : {0, 1, n / 2, n - 1}) {
            Matrix<Real> a = dominant_matrix<Real>(n, 6);
            for (int i = 0; i + 1 < n; ++i) std::swap(a.p()[0][i * n], a.p()[0][(i + 1) * n]);
            for (int i = 0; i < n; ++i) a[i][zero] = 0;
            const StatedLu<Real> stated = stated_crout(a), lu = lu_of(a, {0, 4});
            EXPECT_EQ(stated.zero_pivot, zero);
            expect_same_choices(lu, stated);
            EXPECT_LT(largest_difference(lu.a, stated.a), 4 * n * kEpsilon<Real> * largest_of(a));
            for (int i = 0; i < n; ++i)
                for (int j = zero; j < n; ++j) EXPECT_EQ(lu.a[i][j], stated.a[i][j]);
        }
}

// A subnormal pivot, whose reciprocal is infinite, is divided by; NaN passes through.
TWIN_TEST(LuAlgorithm, SubnormalPivotsAndNotANumber) {
    Matrix<Real> tiny = identity_of<Real>(6);
    for (int i = 0; i < 6; ++i)
        tiny[i][0] = std::numeric_limits<Real>::denorm_min() * Real(i == 5 ? 8 : 4);
    for (const LuBlocking blocking : {LuBlocking{}, LuBlocking{0, 2}}) {
        const StatedLu<Real> lu = lu_of(tiny, blocking);
        expect_same_bits(lu, stated_crout(tiny));
        EXPECT_EQ(lu.a[1][0], Real(0.5));
    }
    for (const int n : {4, 50}) {
        Matrix<Real> a = dominant_matrix<Real>(n);
        for (int i = 0; i < n; ++i) a[i][1] = std::numeric_limits<Real>::quiet_NaN();
        const StatedLu<Real> lu = lu_of(a, {8, 8});
        expect_same_choices(lu, stated_crout(a));
        EXPECT_TRUE(std::isnan(determinant_from_lu(reading(view_of(&lu.a)), lu.interchanges)));
    }
}

TWIN_TEST(LuAlgorithm, PartialPivotingIsBackwardStable) {
    for (const int n : {0, 1, 2, 3, 7, 16, 17, 32, 33, 64, 65, 100, 130}) {
        const Matrix<Real> all[] = {random_matrix<Real>(n, n, 2), hilbert_matrix<Real>(n),
                                    graded_matrix<Real>(n, 20, 4),
                                    growing_matrix<Real>(std::min(n, 60))};
        for (const LuPartialBlocking blocking :
             {LuPartialBlocking{}, {0, 1}, {0, 2}, {0, 7}, {0, 16}})
            for (const Matrix<Real>& a : all) {
                SCOPED_TRACE(testing::Message() << "n = " << n << ", panel " << blocking.panel
                                                << ", matrix " << &a - all);
                const StatedLu<Real> lu = lu_partial_of(a, blocking);
                EXPECT_LT(error_of(a, lu), 1.0);
                double multiplier = 0;
                for (int i = 0; i < a.mh(); ++i)
                    for (int j = 0; j < i; ++j)
                        multiplier = worse(std::abs(double(lu.a[i][j])), multiplier);
                EXPECT_LE(multiplier, 1.0 + 4 * kEpsilon<Real>);
                EXPECT_TRUE(&a == all + 1 || lu.zero_pivot < 0);
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
        const StatedLu<Real> lu = lu_partial_of(ties, blocking);
        EXPECT_EQ(lu.perm, (std::vector<int>{0, 1, 2, 3}));
        EXPECT_EQ(lu.interchanges, 0);
        for (const int n : {4, 20, 70})
            for (const int zero : {0, n / 2, n - 1}) {
                Matrix<Real> a = random_matrix<Real>(n, n, 12);
                for (int i = 0; i < n; ++i) a[i][zero] = a[i][n - 1] = 0;
                const StatedLu<Real> singular = lu_partial_of(a, blocking);
                EXPECT_EQ(singular.zero_pivot, zero);
                EXPECT_EQ(singular.a[zero][zero], Real(0));
                EXPECT_LT(error_of(a, singular), 1.0) << "n = " << n;
            }
    }
    Matrix<Real> swapped = identity_of<Real>(33);
    std::swap(swapped[0][0], swapped[0][32]);
    std::swap(swapped[32][32], swapped[32][0]);
    const StatedLu<Real> lu = lu_partial_of(swapped);
    EXPECT_EQ(lu.interchanges, 1);
    EXPECT_EQ(lu.perm[0], 32);
    EXPECT_EQ(determinant_from_lu(reading(view_of(&lu.a)), lu.interchanges), Real(-1));
}

// Row by row or as a panel: the same operations.
TWIN_TEST(LuAlgorithm, PartialPivotingOfSmallMatricesHasTheBitsOfThePanel) {
    using Limits = std::numeric_limits<Real>;
    const Real hard[] = {0, 1, -1, Limits::denorm_min(), Limits::infinity(), Limits::quiet_NaN()};
    for (int n = 1; n <= 32; ++n)
        for (int kind = 0; kind < 8; ++kind) {
            SCOPED_TRACE(testing::Message() << "n = " << n << ", kind " << kind);
            Matrix<Real> a = random_matrix<Real>(n, n, unsigned(n));
            for (int i = 0; i < n && kind < 6; ++i) a[i][n / 2] = hard[kind];  // a whole column
            if (kind == 6) a[n / 2][n / 3] = hard[5];
            if (kind == 7) a = identity_of<Real>(n);
            expect_same_bits(lu_partial_of(a), lu_partial_of(a, {32, 16, 0}));
        }
}

}  // namespace
}  // namespace nequar
