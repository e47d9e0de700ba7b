#include "factorization/algorithm/hessenberg.h"
#include "factorization/algorithm/rotation.h"
#include "factorization/algorithm/rq3.h"
#include "factorization/orthogonal_checks.h"
#include "support/twins.h"

namespace nequar {
namespace {

using testing::Dense;
using testing::product_residual;
using testing::random_dense;

TWINS(OrthogonalAlgorithms);

// The steps as they are stated.
template <class Real>
void reduce_as_stated(View<Real> a, View<Real> q) {
    testing::set_identity(q);
    for (Size k = 0; k + 2 < a.height; ++k)
        testing::StatedReflection<Real>(a, k + 1, k, q).apply_from_right(a);
}

TWIN_TEST(OrthogonalAlgorithms, HessenbergEqualsTheStatedSteps) {
    for (const Size n : {1, 2, 3, 4, 9, 20, 67})
        for (const bool has_zeros : {false, true}) {
            Dense<Real> input = random_dense<Real>(n, n);
            for (Size i = 0; has_zeros && i < n; ++i)
                for (Size j = 0; j + 1 < i; j += 2) input(i, j) = 0;
            Dense<Real> stated = input, stated_q(n, n);
            reduce_as_stated(stated.view(), stated_q.view());
            for (const Size block : {1, 2, 5, 16, 0}) {
                SCOPED_TRACE(::testing::Message() << n << " block " << block);
                Dense<Real> a = input, q(n, n, Real(7));
                const View<Real> q_view = q.view();
                ASSERT_TRUE(hessenberg(a.view(), &q_view, block));
                const double bound = 200 * double(n) * double(std::numeric_limits<Real>::epsilon());
                ASSERT_LE(testing::largest_gap(a, stated), bound);
                ASSERT_LE(testing::largest_gap(q, stated_q), bound);
                EXPECT_LT(testing::orthogonality<Real>(q.view()), 30);
                Dense<Real> alone = input;
                ASSERT_TRUE(hessenberg<Real>(alone.view(), nullptr, block));
                EXPECT_EQ(alone.elements, a.elements);
            }
        }
}

TWIN_TEST(OrthogonalAlgorithms, RotationsAnnihilateAcrossTheRange) {
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

TWIN_TEST(OrthogonalAlgorithms, RqOf3x3) {
    const double tiny = sizeof(Real) == 4 ? 1e-40 : 1e-312;
    for (const double scale : {1.0, 1e-30, 1e30, tiny})
        for (unsigned seed = 0; seed < 8; ++seed) {
            Dense<Real> a = random_dense<Real>(3, 3, seed), qx(3, 3), qy(3, 3), qz(3, 3);
            for (Real& element : a.elements) element = Real(element * Real(scale));
            if (seed & 1) a(2, 1) = 0;
            if (seed & 2) a(2, 0) = 0;
            if (seed & 4) a(1, 0) = 0;
            const Dense<Real> input = a;
            const Rq3<Real> angles = rq3(a.view(), qx.view(), qy.view(), qz.view());
            EXPECT_TRUE(a(1, 0) == 0 && a(2, 0) == 0 && a(2, 1) == 0);
            EXPECT_TRUE(seed != 7 || a.elements == input.elements);
            EXPECT_NEAR(qx(1, 1), std::cos(angles.angle_x), 1e-6);
            EXPECT_NEAR(qx(2, 1), -std::sin(angles.angle_x), 1e-6);
            EXPECT_NEAR(qy(0, 0), std::cos(angles.angle_y), 1e-6);
            EXPECT_NEAR(qy(0, 2), -std::sin(angles.angle_y), 1e-6);
            EXPECT_NEAR(qz(0, 0), std::cos(angles.angle_z), 1e-6);
            EXPECT_NEAR(qz(1, 0), -std::sin(angles.angle_z), 1e-6);
            Dense<Real> q(3, 3);
            for (Size i = 0; i < 3; ++i)
                for (Size j = 0; j < 3; ++j)
                    for (Size k = 0; k < 3; ++k)
                        for (Size l = 0; l < 3; ++l) q(i, j) += qz(i, k) * qy(k, l) * qx(l, j);
            EXPECT_LT(testing::orthogonality<Real>(q.view()), 10) << scale;
            const double step = double(std::numeric_limits<Real>::denorm_min()) /
                                double(std::numeric_limits<Real>::epsilon()) /
                                testing::largest_magnitude<Real>(input.view());
            EXPECT_LT(product_residual<Real>(input.view(), a.view(), q.view()), 10 * (1 + step));
        }
}

}  // namespace
}  // namespace nequar
