// Gram-Schmidt: the blocked form against the loops, at block borders, any scale, and where it
// stops.
#include <cmath>
#include <limits>

#include "algebra/algorithm/gram_schmidt.h"
#include "algebra/plain.h"
#include "frame/views.h"

namespace {

using namespace plain;
using nequar::Outcome;
using nequar::OutcomeKind;
using nequar::view_of;

template <class Real>
class GramSchmidtTest : public ::testing::Test {
protected:
    // Q^T Q = I, and A = Q R with R = Q^T A
    static void expect_orthogonalized(const nequar::Matrix<Real>& A,
                                      const nequar::Matrix<Real>& Q) {
        namespace test = nequar::test;
        EXPECT_LT(test::orthogonality_error(Q), 100);
        EXPECT_LT(test::rebuilding_error(A, Q, test::product(test::transposed(Q), A)), 100);
    }

    // Well conditioned: random with a strong diagonal.
    static nequar::Matrix<Real> well_conditioned(int h, int w, Real scale) {
        auto A = random_matrix<Real>(h, w, 3);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) A[y][x] = scale * (A[y][x] / Real(w) + Real(y == x));
        return A;
    }
};

TWIN_TEST(GramSchmidtTest, BlockedAndUnblockedAtAnyScale) {
    const Real huge = sizeof(Real) == 8 ? Real(1e200) : Real(1e25);
    for (const Real scale : {Real(1), huge, 1 / huge})
        for (const auto& shape : {std::array{1, 1}, {9, 9}, {40, 23}, {70, 70}}) {
            const int h = shape[0], w = shape[1];

            const auto A = this->well_conditioned(h, w, scale);
            nequar::Matrix<Real> Q;
            Q.c_Create(h, w);
            EXPECT_TRUE(nequar::gram_schmidt_unblocked<Real>(view_of(&A), view_of(&Q)));
            this->expect_orthogonalized(A, Q);
            for (const int block : {1, 4, 23, 32}) {
                Q.c_Create(h, w, 9);
                EXPECT_TRUE(nequar::gram_schmidt_blocked<Real>(view_of(&A), view_of(&Q), block));
                this->expect_orthogonalized(A, Q);
            }
            Q = A;  // in place
            EXPECT_TRUE(nequar::gram_schmidt_blocked<Real>(view_of(&Q), view_of(&Q), 4));
            this->expect_orthogonalized(A, Q);
        }
}

TWIN_TEST(GramSchmidtTest, ClassicalCoefficients) {
    // Columns (1, e, 0, …), (1, 0, e, 0, …), … with e^2 below the rounding unit: the classical
    // scheme gives q_i . q_j = 1/2 for 0 < i < j, where the modified one would stay near zero.
    constexpr int n = 5;
    const double e = std::sqrt(double(std::numeric_limits<Real>::epsilon())) / 4;
    nequar::Matrix<Real> A;
    A.c_Create(n + 1, n, 0);
    for (int j = 0; j < n; ++j) {
        A[0][j] = 1;
        A[j + 1][j] = Real(e);
    }
    for (const int block : {0, 1, 2, 3}) {
        nequar::Matrix<Real> Q;
        Q.c_Create(n + 1, n);
        const Outcome outcome =
            block == 0 ? nequar::gram_schmidt_unblocked<Real>(view_of(&A), view_of(&Q))
                       : nequar::gram_schmidt_blocked<Real>(view_of(&A), view_of(&Q), block);
        EXPECT_TRUE(outcome);
        const Element dot = product(transpose_of(Q), of(Q), n + 1);
        for (int j = 2; j < n; ++j)
            for (int i = 1; i < j; ++i) EXPECT_LT(std::abs(dot(i, j) - 0.5), 1e-3) << block;
    }
}

TWIN_TEST(GramSchmidtTest, StopsAtAZeroColumn) {
    for (const int zero : {0, 3, 4, 7}) {
        auto A = this->well_conditioned(9, 8, 1);
        for (int y = 0; y < 9; ++y) A[y][zero] = 0;
        for (const int block : {0, 4}) {
            nequar::Matrix<Real> Q;
            Q.c_Create(9, 8, 9);
            const Outcome outcome =
                block == 0 ? nequar::gram_schmidt_unblocked<Real>(view_of(&A), view_of(&Q))
                           : nequar::gram_schmidt_blocked<Real>(view_of(&A), view_of(&Q), block);
            EXPECT_TRUE(outcome.kind == OutcomeKind::zero_column && outcome.index == zero);
            for (int x = 0; x < 8; ++x) {
                double norm = 0;
                for (int y = 0; y < 9; ++y) norm += double(Q[y][x]) * Q[y][x];
                const double expected = x < zero ? 1 : x == zero ? 0 : 9 * 81;
                EXPECT_LT(std::abs(norm - expected), bound<Real>(20)) << x << ' ' << block;
            }
        }
    }
}

TWIN_TEST(GramSchmidtTest, TheOperationReportsAndWorksInPlace) {
    const nequar::AlgebraForMatrix<Real> al;
    nequar::Matrix<Real> Q;
    for (const int n : {0, 3, 60}) {
        const auto A = this->well_conditioned(n, n, 1);
        al.gso_Gram_Schmidt_Orthogonalization(&A, &Q);
        this->expect_orthogonalized(A, Q);
        auto B = A;
        al.gso_Gram_Schmidt_Orthogonalization(&B, &B);
        EXPECT_TRUE(B == Q);
    }
    EXPECT_TRUE(never_failed(al));
    // The second column is a multiple of the first.
    const auto A = matrix<Real>(2, 3, {3, 6, 1, 4, 8, 1});
    Q.c_Create(2, 3, 9);
    al.gso_Gram_Schmidt_Orthogonalization(&A, &Q);
    EXPECT_TRUE(failed_with(al, "gso_Gram_Schmidt_Orthogonalization", "1"));
    EXPECT_TRUE(Q == matrix<Real>(2, 3, {0.6, 0, 9, 0.8, 0, 9}));
    // NaN and infinity are no zero: the columns become NaN.
    const Real infinity = std::numeric_limits<Real>::infinity();
    for (const Real x : {infinity - infinity, infinity}) {
        auto B = this->well_conditioned(40, 3, 1);
        B[7][1] = x;
        al.gso_Gram_Schmidt_Orthogonalization(&B, &Q);
        EXPECT_TRUE(std::isfinite(Q[0][0]) && std::isnan(Q[0][1]) && std::isnan(Q[39][2]));
    }
}

}  // namespace
