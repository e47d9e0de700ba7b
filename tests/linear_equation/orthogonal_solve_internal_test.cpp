#include "factorization/orthogonal_checks.h"
#include "linear_equation/algorithm/orthogonal_solve.h"
#include "support/twins.h"

namespace nequar {
namespace {

using testing::Dense;
using testing::random_dense;

TWINS(OrthogonalSolve);

const OrthogonalForm kForms[] = {OrthogonalForm::qr, OrthogonalForm::ql, OrthogonalForm::rq,
                                 OrthogonalForm::lq};

// Every form and blocking solves for one and for several right-hand sides in either layout, and
// inverts.
TWIN_TEST(OrthogonalSolve, SolvesAndInverts) {
    for (const OrthogonalForm form : kForms)
        for (const Size n : {0, 1, 2, 7, 33, 70})
            for (const QrBlocking& blocking : {QrBlocking{1, 1}, {3, 2}, {16, 4}, {0, 4}})
                for (const Size k : {1, 5}) {
                    SCOPED_TRACE(::testing::Message() << "form " << int(form) << " n " << n
                                                      << " block " << blocking.block);
                    const Dense<Real> input = random_dense<Real>(n, n);
                    const Dense<Real> b = random_dense<Real>(n, k, 2);
                    Dense<Real> a = input, x = b, inverse(n, n);
                    ASSERT_TRUE(solve_by_orthogonal<Real>(form, a.view(), x.view(), blocking));
                    const double size = 1 + testing::largest_magnitude<Real>(x.view());
                    EXPECT_LT(testing::product_residual<Real>(b.view(), input.view(), x.view()),
                              10 * size);
                    Dense<Real> columns(k, n);  // the other layout
                    const View<Real> y = columns.view().transposed();
                    for (Size i = 0; i < n; ++i)
                        for (Size c = 0; c < k; ++c) y(i, c) = b(i, c);
                    a = input;
                    ASSERT_TRUE(solve_by_orthogonal<Real>(form, a.view(), y, blocking));
                    EXPECT_LT(testing::product_residual<Real>(b.view(), input.view(), y),
                              10 * size);
                    a = input;
                    ASSERT_TRUE(invert_by_orthogonal(form, a.view(), inverse.view(), blocking));
                    Dense<Real> identity(n, n);
                    testing::set_identity(identity.view());
                    EXPECT_LT(testing::product_residual<Real>(identity.view(), input.view(),
                                                              inverse.view()),
                              10 * (1 + testing::largest_magnitude<Real>(inverse.view())));
                }
}

TWIN_TEST(OrthogonalSolve, AZeroOnTheDiagonalOfTheTriangleIsSingular) {
    for (const OrthogonalForm form : kForms) {
        Dense<Real> a(3, 3), b(3, 1, 1), inverse(3, 3);
        a.elements = {1, 0, 0, 0, 0, 0, 0, 0, 2};
        const Dense<Real> input = a;
        const Outcome outcome = solve_by_orthogonal<Real>(form, a.view(), b.view());
        EXPECT_EQ(outcome.kind, OutcomeKind::singular);
        EXPECT_EQ(outcome.index, 1);
        a = input;
        EXPECT_EQ(invert_by_orthogonal(form, a.view(), inverse.view()).kind, OutcomeKind::singular);
        a = input;
        a(1, 1) = std::numeric_limits<Real>::denorm_min();
        EXPECT_TRUE(solve_by_orthogonal<Real>(form, a.view(), b.view()));
    }
}

}  // namespace
}  // namespace nequar
