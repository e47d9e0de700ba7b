// Gram-Schmidt: the blocked form against the loops, at block borders, any scale, and where it
// stops.
#include "algebra/algorithm/gram_schmidt.h"
#include "algebra/plain.h"
#include "frame/views.h"

namespace nequar::test {
namespace {

TWINS(GramSchmidt);

// Without blocks when they have no columns.
template <class Real>
Outcome orthogonalize(const Matrix<Real>& A, Matrix<Real>& Q, int block) {
    return block == 0 ? gram_schmidt_unblocked<Real>(view_of(&A), view_of(&Q))
                      : gram_schmidt_blocked<Real>(view_of(&A), view_of(&Q), block);
}

// Q^T Q = I, and A = Q R with R = Q^T A
template <class Real>
void expect_orthogonalized(const Matrix<Real>& A, const Matrix<Real>& Q) {
    EXPECT_LT(orthogonality_error(Q), 100);
    EXPECT_LT(rebuilding_error(A, Q, product(transposed(Q), A)), 100);
}

// Well conditioned: random with a strong diagonal.
template <class Real>
Matrix<Real> well_conditioned(int h, int w, Real scale = 1) {
    const auto A = random_matrix<Real>(h, w, 3);
    return matrix_of<Real>(h, w,
                           [&](int y, int x) { return scale * (A[y][x] / Real(w) + (y == x)); });
}

TWIN_TEST(GramSchmidt, BlockedAndUnblockedAtAnyScale) {
    const Real huge = sizeof(Real) == 8 ? Real(1e200) : Real(1e25);
    for (const Real scale : {Real(1), huge, 1 / huge})
        for (const auto& [h, w] : {std::pair(1, 1), {9, 9}, {40, 23}, {70, 70}}) {
            const auto A = well_conditioned(h, w, scale);
            Matrix<Real> Q;
            for (const int block : {0, 1, 4, 23, 32}) {
                Q.c_Create(h, w, 9);
                EXPECT_TRUE(orthogonalize(A, Q, block));
                expect_orthogonalized(A, Q);
            }
            Q = A;  // in place
            EXPECT_TRUE(orthogonalize(Q, Q, 4));
            expect_orthogonalized(A, Q);
        }
}

TWIN_TEST(GramSchmidt, ClassicalCoefficients) {
    // Columns (1, e, 0, …), (1, 0, e, 0, …), … with e^2 below the rounding unit: the classical
    // scheme gives q_i . q_j = 1/2 for 0 < i < j, where the modified one would stay near zero.
    constexpr int n = 5;
    const double e = std::sqrt(kEpsilon<Real>) / 4;
    const auto A = matrix_of<Real>(n + 1, n, [&](int y, int x) {
        return y == 0 ? 1 : y == x + 1 ? e : 0;
    });
    for (const int block : {0, 1, 2, 3}) {
        auto Q = A;
        EXPECT_TRUE(orthogonalize(A, Q, block));
        const auto dot = product(transposed(Q), Q);
        for (int j = 2; j < n; ++j)
            for (int i = 1; i < j; ++i) EXPECT_LT(std::abs(dot[i][j] - 0.5), 1e-3) << block;
    }
}

TWIN_TEST(GramSchmidt, StopsAtAZeroColumn) {
    for (const int zero : {0, 3, 4, 7})
        for (const int block : {0, 4}) {
            auto A = well_conditioned<Real>(9, 8);
            for (int y = 0; y < 9; ++y) A[y][zero] = 0;
            Matrix<Real> Q;
            Q.c_Create(9, 8, 9);
            const Outcome outcome = orthogonalize(A, Q, block);
            EXPECT_TRUE(outcome.kind == OutcomeKind::zero_column && outcome.index == zero);
            const auto dot = product(transposed(Q), Q);
            for (int x = 0; x < 8; ++x)
                EXPECT_LT(std::abs(dot[x][x] - (x < zero    ? 1
                                                : x == zero ? 0
                                                            : 9 * 81)),
                          bound<Real>(20))
                    << x << ' ' << block;
        }
}

TWIN_TEST(GramSchmidt, TheOperationReportsAndWorksInPlace) {
    AlgebraForMatrix<Real> al;
    Matrix<Real> Q;
    for (const int n : {0, 3, 60}) {
        const auto A = well_conditioned<Real>(n, n);
        al.gso_Gram_Schmidt_Orthogonalization(&A, &Q);
        expect_orthogonalized(A, Q);
        auto B = A;
        al.gso_Gram_Schmidt_Orthogonalization(&B, &B);
        EXPECT_TRUE(B == Q);
    }
    EXPECT_TRUE(never_failed(al));
    // The second column is a multiple of the first.
    const auto A = matrix_of<Real>(2, 3, {3, 6, 1, 4, 8, 1});
    Q.c_Create(2, 3, 9);
    EXPECT_FAILED("1", gso_Gram_Schmidt_Orthogonalization, &A, &Q);
    EXPECT_TRUE(Q == matrix_of<Real>(2, 3, {0.6, 0, 9, 0.8, 0, 9}));
    // NaN and infinity are no zero: the columns become NaN.
    const Real infinity = std::numeric_limits<Real>::infinity();
    for (const Real x : {infinity - infinity, infinity}) {
        auto B = well_conditioned<Real>(40, 3);
        B[7][1] = x;
        al.gso_Gram_Schmidt_Orthogonalization(&B, &Q);
        EXPECT_TRUE(std::isfinite(Q[0][0]) && std::isnan(Q[0][1]) && std::isnan(Q[39][2]));
    }
}

}  // namespace
}  // namespace nequar::test
