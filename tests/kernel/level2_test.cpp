#include "variants.h"

namespace nequar::kernel::testing {
namespace {

TWINS(Level2);

TWIN_TEST(Level2, ProductsAgreeWithThePlainOnesInEveryLayout) {
    const std::array<Size, 2> shapes[] = {{0, 3},   {3, 0},   {1, 1},    {1, 70},  {70, 1},
                                          {3, 5},   {4, 8},   {5, 9},    {8, 4},   {17, 33},
                                          {33, 17}, {65, 70}, {2100, 3}, {3, 2100}};
    const auto compare = [](auto* table, const auto& shape, Layout layout, Layout vector,
                            bool accumulate) {
        const Size m = shape[0], n = shape[1];
        Operand<Real> a(m, n, layout, 1), x(n, 1, vector, 2), z(m, 1, vector, 4);
        // The output is NaN, which must vanish, or accumulates.
        const Operand<Real> y(m, 1, vector, accumulate ? 3 : 0);
        expect_agreement(table, y, Real(n + 8) * kEps<Real>, [&](auto& t, auto& out) {
            t.gemv(m, n, Real(-1.5), a.reading(), x.data(), x.row_stride(), accumulate, out.data(),
                   out.row_stride());
        });
        expect_agreement(table, a, 2 * kEps<Real>, [&](auto& t, auto& out) {
            t.ger(m, n, Real(0.5), z.data(), z.row_stride(), x.data(), x.row_stride(), out.block());
        });
    };
    with_each(compare, variants<Real>(), shapes, kLayouts,
              std::array{Layout::columns, Layout::spread, Layout::columns_reversed}, kBoth);
}

TWIN_TEST(Level2, NaNAndInfinityReachExactlyTheirRows) {
    const auto compare = [](auto* table, Layout layout) {
        Operand<Real> a(37, 41, layout, 1), x(41, 1, Layout::columns, 2), y(37, 1, Layout::columns);
        a(5, 40) = kNaN<Real>;
        a(36, 0) = kInfinity<Real>;
        x(0, 0) = 0;
        table->gemv(37, 41, Real(1), a.reading(), x.data(), 1, false, y.data(), 1);
        for (Size i = 0; i < 37; ++i) EXPECT_EQ(std::isnan(y(i, 0)), i == 5 || i == 36) << i;
    };
    with_each(compare, variants<Real>(), kLayouts);
}

TWIN_TEST(Level2, TriangularSolvesAgree) {
    const auto compare = [](auto* table, Size n, Layout layout, bool lower, bool unit) {
        Operand<Real> t = triangle<Real>(n, layout, lower, unit);
        const Operand<Real> b(n, 1, layout, 6);
        expect_agreement(table, b, 16 * kEps<Real>, [&](auto& tried, auto& x) {
            tried.trsv(lower, unit, n, t.reading(), x.data(), x.row_stride());
        });
    };
    with_each(compare, variants<Real>(), Sizes{0, 1, 2, 5, 15, 16, 17, 33, 100}, kLayouts, kBoth,
              kBoth);
}

}  // namespace
}  // namespace nequar::kernel::testing
