// QR from every corner, blocked and not, and the Hessenberg form.
#include <utility>

#include "factorization/algorithm/hessenberg.h"
#include "factorization/algorithm/qr.h"
#include "factorization/algorithm/rotation.h"
#include "factorization/orthogonal_checks.h"
#include "support/twins.h"

namespace nequar::test {
namespace {

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

TWIN_TEST(QrAlgorithm, HessenbergEqualsTheStatedSteps) {
    for (const int n : {1, 2, 3, 4, 9, 20, 67})
        for (const bool has_zeros : {false, true}) {
            Matrix<Real> input = random_matrix<Real>(n, n);
            for (int i = 0; has_zeros && i < n; ++i)
                for (int j = 0; j + 1 < i; j += 2) input[i][j] = 0;
            Matrix<Real> stated = input, stated_q = identity_of<Real>(n);
            const View<Real> h = view_of(&stated);
            for (Size k = 0; k + 2 < n; ++k)
                StatedReflection<Real>(h, k + 1, k, view_of(&stated_q)).apply_from_right(h);
            for (const Size block : {1, 2, 5, 16, 0}) {
                SCOPED_TRACE(::testing::Message() << n << " block " << block);
                Matrix<Real> a = input, alone = input, q = constant_matrix<Real>(n, n, 7);
                const View<Real> q_view = view_of(&q);
                ASSERT_TRUE(hessenberg(view_of(&a), &q_view, block));
                const double bound = 200 * n * kEpsilon<Real>;
                ASSERT_LE(largest_difference(a, stated), bound);
                ASSERT_LE(largest_difference(q, stated_q), bound);
                EXPECT_LT(orthogonality_error(q), 30);
                ASSERT_TRUE(hessenberg<Real>(view_of(&alone), nullptr, block));
                EXPECT_EQ(alone, a);
            }
        }
}

TWIN_TEST(QrAlgorithm, RotationsAnnihilateAcrossTheRange) {
    const Real large = std::numeric_limits<Real>::max() / 4;
    const Real least = std::numeric_limits<Real>::denorm_min();
    const Real values[] = {0, 1, Real(-3), 4, large, -large, least, Real(1e-30)};
    for (const Real a : values)
        for (const Real b : values) {
            const Rotation<Real> g = givens_rotation(a, b);
            EXPECT_NEAR(g.c * g.c + g.s * g.s, 1, 1e-6);
            EXPECT_LE(std::abs(g.s * (a / 2) + g.c * (b / 2)),
                      std::hypot(a / 2, b / 2) * 4 * std::numeric_limits<Real>::epsilon() + least);
            EXPECT_TRUE(b != 0 || (g.c == 1 && g.s == 0));
        }
}

}  // namespace
}  // namespace nequar::test
