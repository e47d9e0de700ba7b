#include <utility>

#include "factorization/algorithm/pivoted_qr.h"
#include "factorization/orthogonal_checks.h"
#include "support/twins.h"

namespace nequar::test {
namespace {

template <class Real>
struct Pivoted {
    Matrix<Real> a, q;
    std::vector<int> perm;
    PivotedQrResult result;
};

// The steps as they are stated.
template <class Real>
Pivoted<Real> factor_as_stated(const Matrix<Real>& input) {
    const int m = input.mh(), n = input.mw();
    Pivoted<Real> p{input, identity_of<Real>(m), {}, {}};
    std::vector<Real> c(std::size_t(n), 0);
    for (int j = 0; j < n; ++j) {
        p.perm.push_back(j);
        for (int i = 0; i < m; ++i) c[std::size_t(j)] += std::abs(input[i][j]);
    }
    for (auto k = std::size_t(0); k < c.size(); ++k, ++p.result.rank) {
        std::size_t pivot = k;
        for (std::size_t j = k; j < c.size(); ++j)
            if (c[j] > c[pivot]) pivot = j;
        if (!(c[pivot] > 0)) break;
        if (pivot != k) {
            ++p.result.interchanges;
            std::swap(p.perm[k], p.perm[pivot]);
            std::swap(c[k], c[pivot]);
            for (int i = 0; i < m; ++i) std::swap(p.a[i][k], p.a[i][pivot]);
        }
        StatedReflection<Real>(view_of(&p.a), Size(k), Size(k), view_of(&p.q));
        for (std::size_t j = k + 1; j < c.size(); ++j)
            c[j] = std::max(Real(0), c[j] - std::abs(p.a[int(k)][j]));
    }
    return p;
}

template <class Real>
void expect_same_choices(const Pivoted<Real>& p, const Pivoted<Real>& other) {
    EXPECT_EQ(p.perm, other.perm);
    EXPECT_EQ(p.result.rank, other.result.rank);
    EXPECT_EQ(p.result.interchanges, other.result.interchanges);
}

template <class Real>
Pivoted<Real> factor(const Matrix<Real>& input, QrBlocking blocking) {
    const int m = input.mh();
    Pivoted<Real> p{
        input, constant_matrix<Real>(m, m, 7), std::vector<int>(std::size_t(input.mw())), {}};
    Pivoted<Real> alone = p;
    const View<Real> q = view_of(&p.q);
    EXPECT_TRUE(pivoted_qr(view_of(&p.a), &q, p.perm.data(), p.result, blocking));
    EXPECT_TRUE(
        pivoted_qr<Real>(view_of(&alone.a), nullptr, alone.perm.data(), alone.result, blocking));
    expect_same_choices(alone, p);
    return p;
}

TWINS(PivotedQr);

const QrBlocking kBlockings[] = {{1, 1}, {2, 1}, {4, 2}, {7, 2}, {32, 4}};

// Every blocking makes the stated choices and leaves the stated elements, whether the steps go on
// to the last column or stop before it.
TWIN_TEST(PivotedQr, EqualsTheStatedSteps) {
    const std::pair<int, int> shapes[] = {{1, 1}, {3, 3}, {9, 4}, {8, 8}, {23, 16}, {40, 40}};
    for (const auto& [m, n] : shapes)
        for (const bool deficient : {false, true}) {
            Matrix<Real> input = random_matrix<Real>(m, n, 5);
            for (int j = 0; deficient && j < n; j += 3)
                for (int i = 0; i < m; ++i) input[i][j] = 0;
            const Pivoted<Real> stated = factor_as_stated(input);
            for (const QrBlocking& blocking : kBlockings) {
                SCOPED_TRACE(::testing::Message() << m << 'x' << n << " deficient " << deficient
                                                  << " block " << blocking.block);
                const Pivoted<Real> p = factor(input, blocking);
                expect_same_choices(p, stated);
                const double bound = 30 * (m + n) * kEpsilon<Real>;
                ASSERT_LE(largest_difference(p.a, stated.a), bound);
                ASSERT_LE(largest_difference(p.q, stated.q), bound);
            }
        }
}

// The rank rests on downdated 1-norms and misses what a person would call the rank. A column with a
// NaN is never chosen and stays NaN; one with an infinity is chosen first and makes no reflection.
TWIN_TEST(PivotedQr, CountsColumnsByTheDowndatedNorms) {
    const auto dependent = matrix_of<Real>(2, 2, {1, 2, 2, 4});
    const auto axis = matrix_of<Real>(2, 2, {0, 0, 1, 2});
    Matrix<Real> spoilt = random_matrix<Real>(9, 6);
    for (const QrBlocking& blocking : kBlockings) {
        const Pivoted<Real> p = factor(dependent, blocking);
        EXPECT_EQ(p.result.rank, 2);
        EXPECT_EQ(p.perm, (std::vector<int>{1, 0}));
        EXPECT_EQ(factor(axis, blocking).result.rank, 1);
        EXPECT_EQ(factor(constant_matrix<Real>(3, 3, 1), blocking).perm[0], 0);
        EXPECT_EQ(factor(constant_matrix<Real>(4, 2), blocking).result.rank, 0);
        spoilt[4][2] = std::numeric_limits<Real>::quiet_NaN();
        const Pivoted<Real> nan = factor(spoilt, blocking);
        EXPECT_EQ(nan.result.rank, 5);
        EXPECT_EQ(nan.perm[5], 2);
        EXPECT_TRUE(std::isnan(nan.a[0][5]) && std::isnan(nan.a[8][5]));
        EXPECT_LT(orthogonality_error(nan.q), 30);
        spoilt[4][2] = std::numeric_limits<Real>::infinity();
        const Pivoted<Real> infinite = factor(spoilt, blocking);
        EXPECT_EQ(infinite.perm[0], 2);
        EXPECT_TRUE(std::isinf(infinite.a[4][0]));
    }
}

}  // namespace
}  // namespace nequar::test
