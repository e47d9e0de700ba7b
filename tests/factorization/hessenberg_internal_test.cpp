#include "factorization/algorithm/hessenberg.h"
#include "factorization/algorithm/rotation.h"
#include "factorization/orthogonal_checks.h"
#include "support/twins.h"

namespace nequar {
namespace {

using namespace test;

TWINS(OrthogonalAlgorithms);

TWIN_TEST(OrthogonalAlgorithms, HessenbergEqualsTheStatedSteps) {
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

}  // namespace
}  // namespace nequar
