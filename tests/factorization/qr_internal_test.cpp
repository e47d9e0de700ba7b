#include <utility>

#include "factorization/algorithm/qr.h"
#include "factorization/algorithm/scratch.h"
#include "factorization/orthogonal_checks.h"
#include "support/twins.h"

namespace nequar {
namespace {

using namespace test;

const std::pair<int, int> kShapes[] = {{1, 1},   {2, 2},   {3, 3},   {5, 5},   {9, 4}, {4, 9},
                                       {17, 17}, {33, 12}, {12, 33}, {1, 6},   {6, 1}, {7, 6},
                                       {6, 7},   {64, 64}, {65, 50}, {130, 70}};
const QrBlocking kBlockings[] = {{1, 1}, {2, 1}, {3, 2}, {5, 2}, {8, 3}, {16, 4}, {0, 4}};

TWINS(QrAlgorithm);

// Every corner, shape and blocking gives the stated R, leftovers and Q.
TWIN_TEST(QrAlgorithm, EqualsTheStatedSteps) {
    using Form = OrthogonalForm;
    for (const auto& [m, n] : kShapes)
        for (const Form form : {Form::qr, Form::ql, Form::rq, Form::lq}) {
            const auto seen = [form](Matrix<Real>& a) { return seen_by_qr(form, view_of(&a)); };
            const Matrix<Real> input = random_matrix<Real>(m, n);
            Matrix<Real> stated = input;
            const View<Real> r = seen(stated);
            const int order = int(r.height);
            Matrix<Real> stated_q = identity_of<Real>(order);
            for (Size k = 0; k < reflections_of_qr(r.height, r.width); ++k)
                StatedReflection<Real>(r, k, k, seen(stated_q));
            for (const QrBlocking& blocking : kBlockings) {
                SCOPED_TRACE(::testing::Message()
                             << m << 'x' << n << " form " << int(form) << " block "
                             << blocking.block << " leaf " << blocking.leaf);
                Matrix<Real> a = input, alone = input, q = constant_matrix<Real>(order, order, 7);
                ASSERT_TRUE(qr(seen(a), seen(q), blocking));
                const double bound = 30 * (m + n) * kEpsilon<Real>;
                ASSERT_LE(largest_difference(a, stated), bound);
                ASSERT_LE(largest_difference(q, stated_q), bound);
                ASSERT_TRUE(qr(seen(alone), blocking));
                EXPECT_EQ(alone, a);
            }
        }
}

// Beside A the right-hand side becomes Q^T B, and kept reflectors apply Q and Q^T.
TWIN_TEST(QrAlgorithm, AppliesQWithoutFormingIt) {
    for (const auto& [m, n] : kShapes)
        for (const QrBlocking& blocking : kBlockings) {
            const Matrix<Real> input = random_matrix<Real>(m, n), b = random_matrix<Real>(m, 3, 2);
            Matrix<Real> a = input, q = identity_of<Real>(m), other = input, c = b, d = b;
            ASSERT_TRUE(qr(view_of(&a), view_of(&q), blocking));
            std::vector<Real> work(std::size_t(scratch_of_qr<Real>(m, n, 3, blocking)));
            qr_into(view_of(&other), {nullptr, view_of(&c)}, blocking, Scratch<Real>(work.data()));
            EXPECT_EQ(a, other);
            EXPECT_LT(rebuilding_error(b, q, c), 30);

            const int count = int(reflections_of_qr(m, n)),
                      block = int(block_of_qr(m, n, blocking));
            if (block == 1) continue;
            Matrix<Real> vectors = constant_matrix<Real>(m, count),
                         couplings = constant_matrix<Real>(block, count),
                         w = constant_matrix<Real>(block, 3);
            const ReflectorStore<Real> store{view_of(&vectors), view_of(&couplings), block};
            other = input;
            qr_into(view_of(&other), {&store, {}}, blocking, Scratch<Real>(work.data()));
            apply_reflectors(Side::q_transposed, store, view_of(&d), view_of(&w));
            EXPECT_LT(rebuilding_error(b, q, d), 30);
            apply_reflectors(Side::q, store, view_of(&d), view_of(&w));
            EXPECT_LE(largest_difference(d, b), 100 * m * kEpsilon<Real>);
        }
}

// R, with zeros for the leftovers.
template <class Real>
Matrix<Real> expect_rebuilt(const Matrix<Real>& input, double bound, QrBlocking blocking = {}) {
    const int m = input.mh();
    Matrix<Real> r = input, q = constant_matrix<Real>(m, m);
    EXPECT_TRUE(qr(view_of(&r), view_of(&q), blocking));
    for (int i = 0; i < m; ++i)
        for (int j = 0; j < i && j < r.mw(); ++j) r[i][j] = 0;
    EXPECT_LT(orthogonality_error(q), bound);
    EXPECT_LT(rebuilding_error(input, q, r), bound);
    return r;
}

TWIN_TEST(QrAlgorithm, SurvivesTheEndsOfTheRangeAndZeroColumns) {
    const bool narrow = sizeof(Real) == 4;
    for (const double scale : {narrow ? 1e25 : 1e200, narrow ? 1e-25 : 1e-200,
                               narrow ? 3e36 : 3e306, narrow ? 1e-42 : 1e-318})
        for (const QrBlocking& blocking : {QrBlocking{1, 1}, QrBlocking{4, 2}}) {
            SCOPED_TRACE(scale);
            const Matrix<Real> plain = random_matrix<Real>(11, 7);
            Matrix<Real> input =
                matrix_of<Real>(11, 7, [&](int i, int j) { return plain[i][j] * Real(scale); });
            input[3][0] = input[5][1] = 0;
            expect_rebuilt(input, 30, blocking);
        }
    Matrix<Real> a = random_matrix<Real>(6, 6);
    for (int i = 0; i < 6; ++i) a[i][2] = 0;
    EXPECT_EQ(expect_rebuilt(a, 30, {2, 1})[2][2], 0);
}

// Columns whose remainder is anything from negligible to all of them, beside leading elements of
// both signs, leave Q orthogonal.
TWIN_TEST(QrAlgorithm, ShortRemaindersKeepQOrthogonal) {
    const int least = std::numeric_limits<Real>::min_exponent - std::numeric_limits<Real>::digits;
    for (int exponent = 2; exponent >= least; --exponent)
        for (const double lead : {1.0, -1.0}) {
            SCOPED_TRACE(exponent);
            const double rest = std::ldexp(1.0, exponent);
            expect_rebuilt(matrix_of<Real>(3, 2, {lead, 0.5, rest, 0.5, rest, 0}), 10);

            Real x[] = {Real(lead), Real(rest)};
            const Real beta = householder_vector(Strided<Real>(x, 2), Size(0));
            EXPECT_EQ(x[0], 1);
            const double length = double(beta) * (1 + double(x[1]) * double(x[1]));
            EXPECT_NEAR(length, beta == 0 ? 0 : 2, 1e-6);
            EXPECT_TRUE(beta > 0 || lead > 0);
        }
}

TWIN_TEST(QrAlgorithm, NanAndInfinityComeThrough) {
    for (const Real bad :
         {std::numeric_limits<Real>::quiet_NaN(), std::numeric_limits<Real>::infinity()})
        for (const QrBlocking& blocking : {QrBlocking{1, 1}, QrBlocking{4, 2}}) {
            Matrix<Real> a = random_matrix<Real>(10, 10), q = a;
            a[6][3] = bad;
            ASSERT_TRUE(qr(view_of(&a), view_of(&q), blocking));
            EXPECT_GT(a[0][0], 0);
            EXPECT_TRUE(std::isnan(a[9][9]) && std::isnan(q[9][9]));
        }
}

}  // namespace
}  // namespace nequar
