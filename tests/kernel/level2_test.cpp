#include <array>

#include "variants.h"

namespace nequar::kernel::testing {
namespace {

TWINS(Level2);

TWIN_TEST(Level2, ProductsAgreeWithThePlainOnesInEveryLayout) {
    const std::array<Size, 2> shapes[] = {{0, 3},   {3, 0},   {1, 1},    {1, 70},  {70, 1},
                                          {3, 5},   {4, 8},   {5, 9},    {8, 4},   {17, 33},
                                          {33, 17}, {65, 70}, {2100, 3}, {3, 2100}};
    with_each(
        [](const Table<Real>* table, const auto& shape, Layout layout, Layout vector,
           bool accumulate) {
            const auto [m, n] = shape;
            Operand<Real> a(m, n, layout), x(n, 1, vector), y(m, 1, vector);
            a.randomize(1);
            x.randomize(2);
            if (accumulate) y.randomize(3);  // else NaN, which must vanish
            const auto step = [](Operand<Real>& v) { return v.block().row_stride; };
            Operand<Real> expected = y;
            const auto gemv = [&, m = m, n = n](const Table<Real>& t, Operand<Real>& out) {
                t.gemv(m, n, Real(-1.5), a.reading(), x.block().data, step(x), accumulate,
                       out.block().data, step(out));
            };
            gemv(plain<Real>(), expected);
            gemv(*table, y);
            EXPECT_LE(largest_difference(expected, y), Real(n + 8) * kEps<Real>);
            EXPECT_TRUE(y.guards_stand());

            Operand<Real> updated = a, by_table = a;
            const auto ger = [&, m = m, n = n](const Table<Real>& t, Operand<Real>& out) {
                t.ger(m, n, Real(0.5), y.block().data, step(y), x.block().data, step(x),
                      out.block());
            };
            ger(plain<Real>(), updated);
            ger(*table, by_table);
            EXPECT_LE(largest_difference(updated, by_table), Real(2 * n + 8) * kEps<Real>);
            EXPECT_TRUE(by_table.guards_stand());
        },
        variants<Real>(), shapes, kLayouts,
        std::array{Layout::columns, Layout::spread, Layout::columns_reversed}, kBoth);
}

TWIN_TEST(Level2, NaNAndInfinityReachExactlyTheirRows) {
    with_each(
        [](const Table<Real>* table, Layout layout) {
            Operand<Real> a(37, 41, layout), x(41, 1, Layout::columns), y(37, 1, Layout::columns);
            a.randomize(1);
            x.randomize(2);
            a(5, 40) = kNaN<Real>;
            a(36, 0) = kInfinity<Real>;
            x(0, 0) = 0;
            table->gemv(37, 41, Real(1), a.reading(), x.block().data, 1, false, y.block().data, 1);
            for (Size i = 0; i < 37; ++i) EXPECT_EQ(std::isnan(y(i, 0)), i == 5 || i == 36) << i;
        },
        variants<Real>(), kLayouts);
}

// T x = b, judged by the residual row by row; the triangle that is not named holds NaN.
TWIN_TEST(Level2, TriangularSolvesLeaveASmallResidual) {
    with_each(
        [](const Table<Real>* table, Size n, Layout layout, bool lower, bool unit) {
            Operand<Real> t(n, n, layout), x(n, 1, layout);
            t.randomize(5);
            x.randomize(6);
            for (Size i = 0; i < n; ++i) {
                for (Size j = 0; j < n; ++j)
                    t(i, j) = (lower ? j > i : j < i) ? kNaN<Real> : t(i, j) / Real(n);
                t(i, i) = unit ? kNaN<Real> : 2 + t(i, i);
            }
            Operand<Real> b = x;
            table->trsv(lower, unit, n, t.reading(), x.block().data, x.block().row_stride);
            for (Size i = 0; i < n; ++i) {
                Real residual = (unit ? x(i, 0) : t(i, i) * x(i, 0)) - b(i, 0);
                for (Size j = lower ? 0 : i + 1; j < (lower ? i : n); ++j)
                    residual += t(i, j) * x(j, 0);
                EXPECT_LE(std::abs(residual), 16 * kEps<Real>) << "row " << i;
            }
            EXPECT_TRUE(x.guards_stand());
        },
        variants<Real>(), Sizes{0, 1, 2, 5, 15, 16, 17, 33, 100}, kLayouts, kBoth, kBoth);
}

}  // namespace
}  // namespace nequar::kernel::testing
