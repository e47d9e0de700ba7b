#include "variants.h"

namespace nequar::kernel::testing {
namespace {

template <class Real>
class Level2 : public ::testing::Test {};
using Reals = ::testing::Types<double, float>;
TYPED_TEST_SUITE(Level2, Reals);

struct Shape {
    Size m;
    Size n;
};
const Shape kShapes[] = {{0, 3}, {3, 0}, {1, 1},   {1, 70},  {70, 1},  {3, 5},    {4, 8},
                         {5, 9}, {8, 4}, {17, 33}, {33, 17}, {65, 70}, {2100, 3}, {3, 2100}};

TYPED_TEST(Level2, ProductsAgreeWithThePlainOnesInEveryLayout) {
    using Real = TypeParam;
    for (const Table<Real>* table : variants<Real>()) {
        for (const auto& [m, n] : kShapes) {
            for (const Layout layout : kLayouts) {
                for (const Layout vector :
                     {Layout::columns, Layout::spread, Layout::columns_reversed}) {
                    for (const bool accumulate : {false, true}) {
                        Operand<Real> a(m, n, layout), x(n, 1, vector), y(m, 1, vector);
                        a.randomize(1);
                        x.randomize(2);
                        if (accumulate) y.randomize(3);  // else NaN, which must vanish
                        Operand<Real> expected = y;
                        plain<Real>().gemv(m, n, Real(-1.5), a.reading(), x.block().data,
                                           x.block().row_stride, accumulate, expected.block().data,
                                           y.block().row_stride);
                        table->gemv(m, n, Real(-1.5), a.reading(), x.block().data,
                                    x.block().row_stride, accumulate, y.block().data,
                                    y.block().row_stride);
                        EXPECT_LE(largest_difference(expected, y), Real(n + 8) * kEps<Real>)
                            << table->name << ' ' << m << 'x' << n << " layout " << int(layout)
                            << ' ' << int(vector);
                        EXPECT_TRUE(y.guards_stand()) << table->name << ' ' << m << 'x' << n;

                        Operand<Real> updated = a, by_table = a;
                        plain<Real>().ger(m, n, Real(0.5), y.block().data, y.block().row_stride,
                                          x.block().data, x.block().row_stride, updated.block());
                        table->ger(m, n, Real(0.5), y.block().data, y.block().row_stride,
                                   x.block().data, x.block().row_stride, by_table.block());
                        EXPECT_LE(largest_difference(updated, by_table),
                                  Real(2 * n + 8) * kEps<Real>)
                            << table->name << " ger " << m << 'x' << n << " layout " << int(layout);
                        EXPECT_TRUE(by_table.guards_stand())
                            << table->name << " ger " << m << 'x' << n;
                    }
                }
            }
        }
    }
}

TYPED_TEST(Level2, NaNAndInfinityReachExactlyTheirRows) {
    using Real = TypeParam;
    for (const Table<Real>* table : variants<Real>()) {
        for (const Layout layout : kLayouts) {
            Operand<Real> a(37, 41, layout), x(41, 1, Layout::columns), y(37, 1, Layout::columns);
            a.randomize(1);
            x.randomize(2);
            a(5, 40) = kNaN<Real>;
            a(36, 0) = kInfinity<Real>;
            x(0, 0) = 0;
            table->gemv(37, 41, Real(1), a.reading(), x.block().data, 1, false, y.block().data, 1);
            for (Size i = 0; i < 37; ++i)
                EXPECT_EQ(std::isnan(y(i, 0)), i == 5 || i == 36) << table->name << ' ' << i;
        }
    }
}

// T x = b, judged by the residual row by row; the triangle that is not named holds NaN.
TYPED_TEST(Level2, TriangularSolvesLeaveASmallResidual) {
    using Real = TypeParam;
    for (const Table<Real>* table : variants<Real>()) {
        for (const Size n : {0, 1, 2, 5, 15, 16, 17, 33, 100}) {
            for (const Layout layout : kLayouts) {
                for (const int flags : {0, 1, 2, 3}) {
                    const bool lower = flags & 1;
                    const bool unit = flags & 2;
                    Operand<Real> t(n, n, layout), x(n, 1, layout);
                    t.randomize(5);
                    x.randomize(6);
                    for (Size i = 0; i < n; ++i) {
                        for (Size j = 0; j < n; ++j) {
                            if (lower ? j > i : j < i) t(i, j) = kNaN<Real>;
                            if (i != j) t(i, j) /= Real(n);
                        }
                        t(i, i) = unit ? kNaN<Real> : 2 + t(i, i);
                    }
                    Operand<Real> b = x;
                    table->trsv(lower, unit, n, t.reading(), x.block().data, x.block().row_stride);
                    for (Size i = 0; i < n; ++i) {
                        Real residual = (unit ? x(i, 0) : t(i, i) * x(i, 0)) - b(i, 0);
                        for (Size j = lower ? 0 : i + 1; j < (lower ? i : n); ++j)
                            residual += t(i, j) * x(j, 0);
                        EXPECT_LE(std::abs(residual), 16 * kEps<Real>)
                            << table->name << ' ' << n << " layout " << int(layout) << " flags "
                            << flags << " row " << i;
                    }
                    EXPECT_TRUE(x.guards_stand());
                }
            }
        }
    }
}

}  // namespace
}  // namespace nequar::kernel::testing
