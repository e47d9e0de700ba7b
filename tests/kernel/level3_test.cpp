#include "variants.h"

namespace nequar::kernel::testing {
namespace {

template <class Real>
class Level3 : public ::testing::Test {};
using Reals = ::testing::Types<double, float>;
TYPED_TEST_SUITE(Level3, Reals);

template <class Real>
void expect_product(const Table<Real>& table, Size m, Size n, Size k, Layout la, Layout lb,
                    Layout lc, bool accumulate, Size gap = 3) {
    Operand<Real> a(m, k, la, gap), b(k, n, lb, gap), c(m, n, lc, gap);
    a.randomize(1);
    b.randomize(2);
    if (accumulate) c.randomize(3);  // else NaN, which must vanish
    Operand<Real> expected = c;
    const Real alpha = Real(-0.75);
    plain<Real>().gemm(m, n, k, alpha, a.reading(), b.reading(), accumulate, expected.block());
    table.gemm(m, n, k, alpha, a.reading(), b.reading(), accumulate, c.block());
    const Real bound = Real(k + 8) * kEps<Real>;
    EXPECT_LE(largest_difference(expected, c), bound)
        << table.name << ' ' << m << 'x' << n << 'x' << k << " layouts " << int(la) << int(lb)
        << int(lc) << " accumulate " << accumulate;
    EXPECT_TRUE(c.guards_stand()) << table.name << ' ' << m << 'x' << n << 'x' << k;
}

// Every tile height and width, in all layouts.
TYPED_TEST(Level3, SmallProductsAgreeInEveryLayout) {
    using Real = TypeParam;
    const Size heights[] = {1, 2, 3, 5, 7, 12, 14, 27};
    const Size widths[] = {1, 2, 3, 4, 6, 9, 16, 17, 31, 49, 71};
    for (const Table<Real>* table : variants<Real>()) {
        for (const Size m : heights) {
            for (const Size n : widths) {
                for (const Size k : {0, 1, 6}) {
                    for (const Layout lb : kLayouts) {
                        for (const Layout lc : kLayouts) {
                            expect_product<Real>(*table, m, n, k, kLayouts[(m + n) % 5], lb, lc,
                                                 n % 2);
                        }
                    }
                }
            }
        }
        for (const Size n : {0, 1, 5}) {
            expect_product<Real>(*table, 0, n, 3, Layout::rows, Layout::rows, Layout::rows, true);
            expect_product<Real>(*table, n, 0, 3, Layout::rows, Layout::rows, Layout::rows, true);
            expect_product<Real>(*table, n, 4, 0, Layout::rows, Layout::rows, Layout::rows, true);
        }
    }
}

// Beyond what is multiplied in place: packed blocks, their edges, and shapes that are thin one way.
TYPED_TEST(Level3, PackedProductsAgreeInEveryLayout) {
    using Real = TypeParam;
    struct Shape {
        Size m, n, k;
    };
    const Shape shapes[] = {{130, 131, 129}, {97, 33, 601}, {13, 290, 301}, {301, 7, 290},
                            {5, 517, 90},    {517, 5, 90},  {260, 250, 3}};
    for (const Table<Real>* table : variants<Real>()) {
        for (const auto& [m, n, k] : shapes) {
            for (const Layout la : kLayouts) {
                for (const Layout lb : kLayouts) {
                    const Layout lc = kLayouts[(int(la) + int(lb)) % 5];
                    expect_product<Real>(*table, m, n, k, la, lb, lc, int(la) % 2);
                }
            }
        }
    }
}

// Strides that put every row on the same sets of the cache take other ways through the blocks.
TYPED_TEST(Level3, ProductsOnPowersOfTwoAgree) {
    using Real = TypeParam;
    for (const Table<Real>* table : variants<Real>()) {
        for (const Layout la : {Layout::rows, Layout::columns}) {
            for (const Layout lb : {Layout::rows, Layout::columns}) {
                expect_product<Real>(*table, 64, 512, 64, la, lb, Layout::rows, true, 0);
                expect_product<Real>(*table, 128, 128, 512, la, lb, Layout::rows, false, 0);
            }
        }
    }
}

TYPED_TEST(Level3, NaNAndInfinityReachExactlyTheirRowsAndColumns) {
    using Real = TypeParam;
    for (const Table<Real>* table : variants<Real>()) {
        for (const Size n : {9, 40, 150}) {
            for (const Layout layout : {Layout::rows, Layout::columns, Layout::spread}) {
                Operand<Real> a(n, n, layout), b(n, n, layout), c(n, n, Layout::rows);
                a.randomize(1);
                b.randomize(2);
                for (Size j = 0; j < n; ++j) b(n - 1, j) = 0;
                a(n / 2, n - 1) = kInfinity<Real>;  // infinity times zero
                b(2, n - 3) = kNaN<Real>;
                table->gemm(n, n, n, Real(1), a.reading(), b.reading(), false, c.block());
                Size wrong = 0;
                for (Size i = 0; i < n; ++i) {
                    for (Size j = 0; j < n; ++j)
                        wrong += std::isnan(c(i, j)) != (i == n / 2 || j == n - 3);
                }
                EXPECT_EQ(wrong, 0) << table->name << ' ' << n << ' ' << int(layout);
                table->gemm(n, n, n, Real(0), a.reading(), b.reading(), true, c.block());
                EXPECT_TRUE(std::isnan(c(n / 2, 0))) << "alpha = 0 skips nothing";
            }
        }
    }
}

TYPED_TEST(Level3, TriangularProductsWriteTheirTriangleAlone) {
    using Real = TypeParam;
    for (const Table<Real>* table : variants<Real>()) {
        for (const Size n : {1, 2, 7, 25, 70, 150}) {
            for (const Size k : {0, 3, 40, 300}) {
                for (const Layout lc : kLayouts) {
                    for (const bool lower : {false, true}) {
                        const bool accumulate = (n + k) % 2;
                        Operand<Real> a(n, k, kLayouts[n % 5]), b(k, n, kLayouts[k % 5]),
                            c(n, n, lc);
                        a.randomize(1);
                        b.randomize(2);
                        c.randomize(3);
                        if (!accumulate) {
                            for (Size i = 0; i < n; ++i) c(i, i) = kNaN<Real>;
                        }
                        Operand<Real> expected = c;
                        plain<Real>().gemmt(lower, n, k, Real(1.25), a.reading(), b.reading(),
                                            accumulate, expected.block());
                        table->gemmt(lower, n, k, Real(1.25), a.reading(), b.reading(), accumulate,
                                     c.block());
                        EXPECT_LE(largest_difference(expected, c), Real(k + 8) * kEps<Real>)
                            << table->name << ' ' << n << 'x' << k << " layout " << int(lc)
                            << " lower " << lower;
                        EXPECT_TRUE(c.guards_stand());
                        Size touched = 0;
                        for (Size i = 0; i < n; ++i) {
                            for (Size j = 0; j < n; ++j)
                                touched += (lower ? j > i : j < i) && c(i, j) != expected(i, j);
                        }
                        EXPECT_EQ(touched, 0);
                    }
                }
            }
        }
    }
}

// A triangle near 2 I in rows scaled by `size`; NaN where it must not be read.
template <class Real>
void make_triangle(Operand<Real>& t, bool lower, bool unit, Real size) {
    const Size n = t.height();
    t.randomize(5);
    for (Size i = 0; i < n; ++i) {
        for (Size j = 0; j < n; ++j)
            t(i, j) = (lower ? j > i : j < i) ? kNaN<Real> : t(i, j) * size / Real(n);
        t(i, i) = unit ? kNaN<Real> : 2 * size;
    }
}

TYPED_TEST(Level3, TriangularSolvesAndProductsAgree) {
    using Real = TypeParam;
    for (const Table<Real>* table : variants<Real>()) {
        for (const Size m : {1, 2, 3, 6, 7, 13, 50, 64, 65, 140}) {
            for (const Size n : {1, 2, 5, 8, 17, 50}) {
                for (const Layout lt : kLayouts) {
                    for (const int flags : {0, 1, 2, 3}) {
                        const bool lower = flags & 1;
                        const bool unit = flags & 2;
                        const Layout lb = kLayouts[(m + n + int(lt)) % 5];
                        Operand<Real> t(m, m, lt), b(m, n, lb);
                        make_triangle(t, lower, unit, Real(1));
                        b.randomize(6);
                        for (const bool solve : {true, false}) {
                            Operand<Real> expected = b, actual = b;
                            const Table<Real>& p = plain<Real>();
                            (solve ? p.trsm : p.trmm)(lower, unit, m, n, t.reading(),
                                                      expected.block());
                            (solve ? table->trsm : table->trmm)(lower, unit, m, n, t.reading(),
                                                                actual.block());
                            EXPECT_LE(largest_difference(expected, actual), 32 * kEps<Real>)
                                << table->name << (solve ? " trsm " : " trmm ") << m << 'x' << n
                                << " layouts " << int(lt) << int(lb) << " flags " << flags;
                            EXPECT_TRUE(actual.guards_stand());
                        }
                    }
                }
            }
        }
    }
}

// Reciprocals of a subnormal diagonal overflow; the solution itself does not.
TYPED_TEST(Level3, TriangularSolvesDivideBySubnormalPivots) {
    using Real = TypeParam;
    const Real size = std::numeric_limits<Real>::denorm_min() * 64;
    for (const Table<Real>* table : variants<Real>()) {
        Operand<Real> t(20, 20, Layout::rows), b(20, 9, Layout::rows);
        t.randomize(1);
        for (Size i = 0; i < 20; ++i) {
            for (Size j = 0; j < 20; ++j) t(i, j) = i == j ? size : Real(0);
            for (Size j = 0; j < 9; ++j) b(i, j) = size * Real(j);
        }
        table->trsm(true, false, 20, 9, t.reading(), b.block());
        Size wrong = 0;
        for (Size i = 0; i < 20; ++i) {
            for (Size j = 0; j < 9; ++j) wrong += b(i, j) != Real(j);
        }
        EXPECT_EQ(wrong, 0) << table->name;
        // A zero on the diagonal gives infinities and NaN, never a plausible number.
        t(3, 3) = 0;
        b.randomize(2);
        table->trsm(true, false, 20, 9, t.reading(), b.block());
        EXPECT_FALSE(std::isfinite(b(3, 4))) << table->name;
    }
}

// What is computed twice is the same bits.
TYPED_TEST(Level3, ProductsRepeatBitForBit) {
    using Real = TypeParam;
    for (const Table<Real>* table : variants<Real>()) {
        Operand<Real> a(150, 170, Layout::rows), b(170, 160, Layout::columns),
            c(150, 160, Layout::rows);
        a.randomize(1);
        b.randomize(2);
        Operand<Real> d = c;
        table->gemm(150, 160, 170, Real(1), a.reading(), b.reading(), false, c.block());
        table->gemm(150, 160, 170, Real(1), a.reading(), b.reading(), false, d.block());
        EXPECT_EQ(largest_difference(c, d), Real(0)) << table->name;
    }
}

}  // namespace
}  // namespace nequar::kernel::testing
