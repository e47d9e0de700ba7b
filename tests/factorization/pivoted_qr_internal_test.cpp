#include <utility>

#include "factorization/algorithm/complete_orthogonal.h"
#include "factorization/algorithm/pivoted_qr.h"
#include "factorization/orthogonal_checks.h"
#include "support/twins.h"

namespace nequar {
namespace {

using testing::Dense;
using testing::product_residual;
using testing::random_dense;

template <class Real>
struct Pivoted {
    Dense<Real> a, q;
    std::vector<int> perm;
    PivotedQrResult result;
};

// The steps as they are stated.
template <class Real>
Pivoted<Real> factor_as_stated(const Dense<Real>& input) {
    Pivoted<Real> p{input, Dense<Real>(input.height, input.height), {}, {}};
    const Size m = input.height, n = input.width;
    std::vector<Real> c(std::size_t(n), 0);
    testing::set_identity(p.q.view());
    for (int j = 0; j < n; ++j) {
        p.perm.push_back(j);
        for (Size i = 0; i < m; ++i) c[std::size_t(j)] += std::abs(input(i, j));
    }
    Size k = 0;
    for (; k < n; ++k) {
        Size pivot = k;
        for (Size j = k; j < n; ++j)
            if (c[std::size_t(j)] > c[std::size_t(pivot)]) pivot = j;
        if (!(c[std::size_t(pivot)] > 0)) break;
        if (pivot != k) {
            ++p.result.interchanges;
            std::swap(p.perm[std::size_t(k)], p.perm[std::size_t(pivot)]);
            std::swap(c[std::size_t(k)], c[std::size_t(pivot)]);
            for (Size i = 0; i < m; ++i) std::swap(p.a(i, k), p.a(i, pivot));
        }
        testing::StatedReflection<Real>(p.a.view(), k, k, p.q.view());
        for (Size j = k + 1; j < n; ++j)
            c[std::size_t(j)] = std::max(Real(0), c[std::size_t(j)] - std::abs(p.a(k, j)));
    }
    p.result.rank = int(k);
    return p;
}

template <class Real>
Pivoted<Real> factor(const Dense<Real>& input, QrBlocking blocking) {
    Pivoted<Real> p{input,
                    Dense<Real>(input.height, input.height, Real(7)),
                    std::vector<int>(std::size_t(input.width)),
                    {}};
    const View<Real> q = p.q.view();
    EXPECT_TRUE(pivoted_qr(p.a.view(), &q, p.perm.data(), p.result, blocking));
    Dense<Real> without_q = input;
    std::vector<int> perm(p.perm.size());
    PivotedQrResult result;
    EXPECT_TRUE(pivoted_qr<Real>(without_q.view(), nullptr, perm.data(), result, blocking));
    EXPECT_EQ(perm, p.perm);
    EXPECT_EQ(result.rank, p.result.rank);
    EXPECT_EQ(result.interchanges, p.result.interchanges);
    return p;
}

TWINS(PivotedQr);

const QrBlocking kBlockings[] = {{1, 1}, {2, 1}, {4, 2}, {7, 2}, {32, 4}};

// Every blocking makes the stated choices and leaves the stated elements, whether the steps go on
// to the last column or stop before it.
TWIN_TEST(PivotedQr, EqualsTheStatedSteps) {
    const std::pair<Size, Size> shapes[] = {{1, 1}, {3, 3}, {9, 4}, {8, 8}, {23, 16}, {40, 40}};
    for (const auto& [m, n] : shapes)
        for (const bool deficient : {false, true}) {
            Dense<Real> input = random_dense<Real>(m, n, 5);
            for (Size j = 0; deficient && j < n; j += 3)
                for (Size i = 0; i < m; ++i) input(i, j) = 0;
            const Pivoted<Real> stated = factor_as_stated(input);
            for (const QrBlocking& blocking : kBlockings) {
                SCOPED_TRACE(::testing::Message() << m << 'x' << n << " deficient " << deficient
                                                  << " block " << blocking.block);
                const Pivoted<Real> p = factor(input, blocking);
                ASSERT_EQ(p.perm, stated.perm);
                EXPECT_EQ(p.result.rank, stated.result.rank);
                EXPECT_EQ(p.result.interchanges, stated.result.interchanges);
                const double bound =
                    30 * double(m + n) * double(std::numeric_limits<Real>::epsilon());
                ASSERT_LE(testing::largest_gap(p.a, stated.a), bound);
                ASSERT_LE(testing::largest_gap(p.q, stated.q), bound);
            }
        }
}

// The rank rests on downdated 1-norms and misses what a person would call the rank.
TWIN_TEST(PivotedQr, CountsColumnsByTheDowndatedNorms) {
    Dense<Real> dependent(2, 2);
    dependent.elements = {1, 2, 2, 4};
    Dense<Real> equal(3, 3, 1), zero(4, 2), one_zero_column = random_dense<Real>(5, 3);
    for (Size i = 0; i < 5; ++i) one_zero_column(i, 0) = 0;
    Dense<Real> axis(2, 2);
    axis.elements = {0, 0, 1, 2};
    for (const QrBlocking& blocking : kBlockings) {
        const Pivoted<Real> p = factor(dependent, blocking);
        EXPECT_EQ(p.result.rank, 2);
        EXPECT_EQ(p.perm, (std::vector<int>{1, 0}));
        EXPECT_EQ(factor(axis, blocking).result.rank, 1);
        EXPECT_EQ(factor(equal, blocking).perm[0], 0);
        EXPECT_EQ(factor(zero, blocking).result.rank, 0);
        const Pivoted<Real> last = factor(one_zero_column, blocking);
        EXPECT_EQ(last.result.rank, 2);
        EXPECT_EQ(last.perm[2], 0);
    }
}

// A column with a NaN is never chosen and stays NaN; one with an infinity is chosen first and makes
// no reflection. Both end.
TWIN_TEST(PivotedQr, NanAndInfinityStayVisible) {
    for (const QrBlocking& blocking : kBlockings) {
        Dense<Real> input = random_dense<Real>(9, 6);
        input(4, 2) = std::numeric_limits<Real>::quiet_NaN();
        const Pivoted<Real> p = factor(input, blocking);
        EXPECT_EQ(p.result.rank, 5);
        EXPECT_EQ(p.perm[5], 2);
        EXPECT_TRUE(std::isnan(p.a(0, 5)) && std::isnan(p.a(8, 5)));
        EXPECT_LT(testing::orthogonality<Real>(p.q.view()), 30);
        input(4, 2) = std::numeric_limits<Real>::infinity();
        const Pivoted<Real> infinite = factor(input, blocking);
        EXPECT_EQ(infinite.perm[0], 2);
        EXPECT_TRUE(std::isinf(infinite.a(4, 0)));
    }
}

TWIN_TEST(PivotedQr, CompleteOrthogonalDecompositionRebuildsTheMatrix) {
    const std::pair<Size, Size> shapes[] = {{1, 1}, {4, 4}, {9, 5}, {12, 12}, {30, 21}};
    for (const auto& [m, n] : shapes)
        for (const Size kept : {n, (n + 1) / 2, Size(0)})
            for (const QrBlocking& blocking : kBlockings) {
                SCOPED_TRACE(::testing::Message()
                             << m << 'x' << n << " rank " << kept << " block " << blocking.block);
                // columns that repeat coordinate directions: the stated rank is judged right
                Dense<Real> input(m, n);
                for (Size j = 0; j < n; ++j)
                    for (Size i = 0; i < m && kept > 0; ++i)
                        if (kept == n || i == j % kept) input(i, j) = Real(1 + (i + 2 * j) % 5);
                if (kept == n) {
                    const Dense<Real> noise = random_dense<Real>(m, n);
                    for (Size i = 0; i < m; ++i)
                        for (Size j = 0; j < n; ++j)
                            input(i, j) += (i == j ? 300 : 0) + noise(i, j);
                }
                Dense<Real> a = input, q(m, m), z(n, n);
                const View<Real> q_view = q.view(), z_view = z.view();
                std::vector<int> perm(static_cast<std::size_t>(n));
                int rank = -1;
                ASSERT_TRUE(
                    complete_orthogonal(a.view(), &q_view, &z_view, perm.data(), rank, blocking));
                EXPECT_EQ(rank, kept);
                for (Size i = 0; i < m; ++i)
                    for (Size j = 0; j < n; ++j)
                        if (j > i || i >= rank) {
                            ASSERT_EQ(a(i, j), 0) << i << ' ' << j;
                        }
                EXPECT_LT(testing::orthogonality<Real>(q.view()), 30);
                EXPECT_LT(testing::orthogonality<Real>(z.view()), 30);
                Dense<Real> qt(m, n);
                for (Size i = 0; i < m; ++i)
                    for (Size j = 0; j < n; ++j)
                        for (Size k = 0; k < n; ++k) qt(i, j) += q(i, k) * a(k, j);
                EXPECT_LT(product_residual<Real>(input.view(), qt.view(), z.view().transposed()),
                          30);
                Dense<Real> alone = input;
                ASSERT_TRUE(complete_orthogonal<Real>(alone.view(), nullptr, nullptr, perm.data(),
                                                      rank, blocking));
                EXPECT_EQ(alone.elements, a.elements);
            }
}

}  // namespace
}  // namespace nequar
