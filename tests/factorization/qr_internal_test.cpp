#include "factorization/algorithm/qr.h"
#include "factorization/algorithm/scratch.h"
#include "factorization/orthogonal_checks.h"
#include "support/twins.h"

namespace nequar {
namespace {

using testing::Dense;
using testing::random_dense;

// The four corners from which the same code factors a matrix.
enum class Corner { qr, ql, lq, rq };

template <class Real>
View<Real> seen_from(Corner corner, View<Real> a) {
    switch (corner) {
        case Corner::qr:
            return a;
        case Corner::ql:
            return a.reversed();
        case Corner::lq:
            return a.transposed();
        case Corner::rq:
            return a.reversed().transposed();
    }
    return a;
}

struct Shape {
    Size height, width;
};
const Shape kShapes[] = {{1, 1},   {2, 2}, {3, 3}, {5, 5}, {9, 4}, {4, 9},   {17, 17}, {33, 12},
                         {12, 33}, {1, 6}, {6, 1}, {7, 6}, {6, 7}, {64, 64}, {65, 50}, {130, 70}};
const QrBlocking kBlockings[] = {{1, 1}, {2, 1}, {3, 2}, {5, 2}, {8, 3}, {16, 4}, {0, 4}};

// The steps as they are stated, one reflection after the other in the unit form.
template <class Real>
void factor_as_stated(View<Real> a, View<Real> q) {
    testing::set_identity(q);
    for (Size k = 0; k < reflections_of_qr(a.height, a.width); ++k)
        testing::StatedReflection<Real>(a, k, k, q);
}

TWINS(QrAlgorithm);

// Every corner, shape and blocking gives the stated R, leftovers and Q.
TWIN_TEST(QrAlgorithm, EqualsTheStatedSteps) {
    for (const Shape& shape : kShapes)
        for (const Corner corner : {Corner::qr, Corner::ql, Corner::lq, Corner::rq}) {
            const Dense<Real> input = random_dense<Real>(shape.height, shape.width);
            Dense<Real> stated = input;
            const View<Real> stated_a = seen_from(corner, stated.view());
            Dense<Real> stated_q(stated_a.height, stated_a.height);
            factor_as_stated(stated_a, seen_from(corner, stated_q.view()));
            for (const QrBlocking& blocking : kBlockings) {
                SCOPED_TRACE(::testing::Message()
                             << shape.height << 'x' << shape.width << " corner " << int(corner)
                             << " block " << blocking.block << " leaf " << blocking.leaf);
                Dense<Real> a = input;
                Dense<Real> q(stated_a.height, stated_a.height, Real(7));
                const View<Real> seen = seen_from(corner, a.view());
                ASSERT_TRUE(qr(seen, seen_from(corner, q.view()), blocking));
                const double bound = 30 * double(seen.height + seen.width) *
                                     double(std::numeric_limits<Real>::epsilon());
                ASSERT_LE(testing::largest_gap(a, stated), bound);
                ASSERT_LE(testing::largest_gap(q, stated_q), bound);
                Dense<Real> without_q = input;
                ASSERT_TRUE(qr(seen_from(corner, without_q.view()), blocking));
                EXPECT_EQ(without_q.elements, a.elements);
            }
        }
}

// Beside A the right-hand side becomes Q^T B, and kept reflectors apply Q and Q^T.
TWIN_TEST(QrAlgorithm, AppliesQWithoutFormingIt) {
    for (const Shape& shape : kShapes)
        for (const QrBlocking& blocking : kBlockings) {
            const Size m = shape.height;
            const Dense<Real> input = random_dense<Real>(m, shape.width);
            const Dense<Real> b = random_dense<Real>(m, 3, 2);
            Dense<Real> a = input, q(m, m), other = input, c = b;
            ASSERT_TRUE(qr(a.view(), q.view(), blocking));
            std::vector<Real> work(std::size_t(scratch_of_qr<Real>(m, shape.width, 3, blocking)));
            qr_into(other.view(), {nullptr, c.view()}, blocking, Scratch<Real>(work.data()));
            EXPECT_EQ(a.elements, other.elements);
            EXPECT_LT(testing::product_residual<Real>(b.view(), q.view(), c.view()), 30);

            const Size count = reflections_of_qr(m, shape.width);
            const Size block = block_of_qr(m, shape.width, blocking);
            if (block == 1) continue;
            Dense<Real> vectors(m, count), couplings(block, count), w(block, 3);
            const ReflectorStore<Real> store{vectors.view(), couplings.view(), block};
            other = input;
            qr_into(other.view(), {&store, {}}, blocking, Scratch<Real>(work.data()));
            Dense<Real> d = b;
            apply_reflectors(Side::q_transposed, store, d.view(), w.view());
            EXPECT_LT(testing::product_residual<Real>(b.view(), q.view(), d.view()), 30);
            apply_reflectors(Side::q, store, d.view(), w.view());
            EXPECT_LE(testing::largest_gap(d, b),
                      100 * double(m) * double(std::numeric_limits<Real>::epsilon()));
        }
}

TWIN_TEST(QrAlgorithm, SurvivesTheEndsOfTheRange) {
    const bool narrow = sizeof(Real) == 4;
    const double scales[] = {narrow ? 1e25 : 1e200, narrow ? 1e-25 : 1e-200, narrow ? 3e36 : 3e306,
                             narrow ? 1e-42 : 1e-318};
    for (const double scale : scales)
        for (const QrBlocking& blocking : {QrBlocking{1, 1}, QrBlocking{4, 2}}) {
            Dense<Real> input = random_dense<Real>(11, 7);
            for (Real& element : input.elements) element = Real(element * Real(scale));
            input(3, 0) = input(5, 1) = 0;
            Dense<Real> a = input, q(11, 11);
            ASSERT_TRUE(qr(a.view(), q.view(), blocking));
            EXPECT_LT(testing::orthogonality<Real>(q.view()), 30) << scale;
            const Dense<Real> r = testing::upper_triangle_of<Real>(a.view());
            // subnormal results are rounded to a multiple of the smallest number
            const double step = double(std::numeric_limits<Real>::denorm_min()) /
                                double(std::numeric_limits<Real>::epsilon()) /
                                testing::largest_magnitude<Real>(input.view());
            EXPECT_LT(testing::product_residual<Real>(input.view(), q.view(), r.view()),
                      30 * (1 + step))
                << scale;
        }
}

// Columns whose remainder is anything from negligible to all of them, beside leading elements of
// both signs, leave Q orthogonal.
TWIN_TEST(QrAlgorithm, ShortRemaindersKeepQOrthogonal) {
    const int least = std::numeric_limits<Real>::min_exponent - std::numeric_limits<Real>::digits;
    for (int exponent = 2; exponent >= least; --exponent)
        for (const Real lead : {Real(1), Real(-1)}) {
            Dense<Real> a(3, 2), q(3, 3);
            a(0, 0) = lead;
            a(1, 0) = a(2, 0) = std::ldexp(Real(1), exponent);
            a(0, 1) = a(1, 1) = Real(0.5);
            const Dense<Real> input = a;
            ASSERT_TRUE(qr(a.view(), q.view()));
            EXPECT_LT(testing::orthogonality<Real>(q.view()), 10) << exponent;
            const Dense<Real> r = testing::upper_triangle_of<Real>(a.view());
            EXPECT_LT(testing::product_residual<Real>(input.view(), q.view(), r.view()), 10)
                << exponent;

            Real x[] = {lead, std::ldexp(Real(1), exponent)};
            const Real beta = householder_vector(Strided<Real>(x, 2), Size(0));
            EXPECT_EQ(x[0], 1);
            const double rest = std::sqrt(double(beta)) * double(x[1]);
            EXPECT_NEAR(double(beta) + rest * rest, beta == 0 ? 0 : 2, 1e-6) << exponent;
            EXPECT_TRUE(beta > 0 || lead > 0) << exponent;
        }
}

TWIN_TEST(QrAlgorithm, NanAndInfinityComeThroughAndAZeroColumnMakesNoReflection) {
    const Real nan = std::numeric_limits<Real>::quiet_NaN();
    for (const Real bad : {nan, std::numeric_limits<Real>::infinity()})
        for (const QrBlocking& blocking : {QrBlocking{1, 1}, QrBlocking{4, 2}}) {
            Dense<Real> a = random_dense<Real>(10, 10), q(10, 10);
            a(6, 3) = bad;
            const Dense<Real> input = a;
            ASSERT_TRUE(qr(a.view(), q.view(), blocking));
            EXPECT_EQ(a(0, 0) > 0, true);
            EXPECT_TRUE(std::isnan(a(9, 9)));
            EXPECT_TRUE(std::isnan(q(9, 9)));
        }
    Dense<Real> a = random_dense<Real>(6, 6), q(6, 6);
    for (Size i = 0; i < 6; ++i) a(i, 2) = 0;
    const Dense<Real> input = a;
    ASSERT_TRUE(qr(a.view(), q.view(), {2, 1}));
    const Dense<Real> r = testing::upper_triangle_of<Real>(a.view());
    EXPECT_LT(testing::product_residual<Real>(input.view(), q.view(), r.view()), 30);
    EXPECT_EQ(a(2, 2), 0);
}

}  // namespace
}  // namespace nequar
