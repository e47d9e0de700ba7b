#include <array>

#include "variants.h"

namespace nequar::kernel::testing {
namespace {

TWINS(Level3);

using Shape = std::array<Size, 3>;

template <class Real>
void expect_product(const Table<Real>* table, const Shape& shape, Layout la, Layout lb, Layout lc,
                    bool accumulate, Size gap = 3) {
    const auto [m, n, k] = shape;
    Operand<Real> a(m, k, la, gap), b(k, n, lb, gap), c(m, n, lc, gap);
    a.randomize(1);
    b.randomize(2);
    if (accumulate) c.randomize(3);  // else NaN, which must vanish
    Operand<Real> expected = c;
    const Real alpha = Real(-0.75);
    plain<Real>().gemm(m, n, k, alpha, a.reading(), b.reading(), accumulate, expected.block());
    table->gemm(m, n, k, alpha, a.reading(), b.reading(), accumulate, c.block());
    EXPECT_LE(largest_difference(expected, c), Real(k + 8) * kEps<Real>);
    EXPECT_TRUE(c.guards_stand());
}

TWIN_TEST(Level3, ProductsAgreeInEveryLayout) {
    // Every tile height and width.
    with_each(
        [](const Table<Real>* table, Size m, Size n, Size k, Layout lb, Layout lc) {
            expect_product(table, {m, n, k}, kLayouts[(m + n) % 5], lb, lc, n % 2);
        },
        variants<Real>(), Sizes{1, 2, 3, 5, 7, 12, 14, 27},
        Sizes{1, 2, 3, 4, 6, 9, 16, 17, 31, 49, 71}, Sizes{0, 1, 6}, kLayouts, kLayouts);
    // Nothing at all; then packed blocks, their edges, and shapes that are thin one way.
    const Shape shapes[] = {{0, 0, 3},       {0, 5, 3},     {5, 0, 3},      {5, 4, 0},
                            {130, 131, 129}, {97, 33, 601}, {13, 290, 301}, {301, 7, 290},
                            {5, 517, 90},    {517, 5, 90},  {260, 250, 3},  {40, 3, 70},
                            {17, 8, 300},    {21, 4, 1100}, {30, 60, 530}};
    with_each(
        [](const Table<Real>* table, const Shape& shape, Layout la, Layout lb) {
            expect_product(table, shape, la, lb, kLayouts[(int(la) + int(lb)) % 5], int(la) % 2);
        },
        variants<Real>(), shapes, kLayouts, kLayouts);
    // Strides that put every row on the same sets of the cache take other ways through the blocks.
    const Shape powers_of_two[] = {{64, 512, 64}, {128, 128, 512}};
    with_each(
        [](const Table<Real>* table, const Shape& shape, Layout la, Layout lb) {
            expect_product(table, shape, la, lb, Layout::rows, shape[0] == 64, 0);
        },
        variants<Real>(), powers_of_two, std::array{Layout::rows, Layout::columns},
        std::array{Layout::rows, Layout::columns});
}

TWIN_TEST(Level3, NaNAndInfinityReachExactlyTheirRowsAndColumns) {
    with_each(
        [](const Table<Real>* table, std::array<Size, 2> shape, Layout layout) {
            const auto [n, w] = shape;
            Operand<Real> a(n, n, layout), b(n, w, layout), c(n, w, Layout::rows);
            a.randomize(1);
            b.randomize(2);
            for (Size j = 0; j < w; ++j) b(n - 1, j) = 0;
            a(n / 2, n - 1) = kInfinity<Real>;  // infinity times zero
            b(2, w - 3) = kNaN<Real>;
            table->gemm(n, w, n, Real(1), a.reading(), b.reading(), false, c.block());
            Size wrong = 0;
            for (Size i = 0; i < n; ++i)
                for (Size j = 0; j < w; ++j)
                    wrong += std::isnan(c(i, j)) != (i == n / 2 || j == w - 3);
            EXPECT_EQ(wrong, 0);
            Operand<Real> again(n, w, Layout::rows);  // what is computed twice is the same bits
            table->gemm(n, w, n, Real(1), a.reading(), b.reading(), false, again.block());
            EXPECT_EQ(largest_difference(c, again), Real(0));
            table->gemm(n, w, n, Real(0), a.reading(), b.reading(), true, c.block());
            EXPECT_TRUE(std::isnan(c(n / 2, 0))) << "alpha = 0 skips nothing";
        },
        variants<Real>(),
        std::array<std::array<Size, 2>, 4>{{{9, 9}, {40, 40}, {150, 150}, {150, 3}}},
        std::array{Layout::rows, Layout::columns, Layout::spread});
}

TWIN_TEST(Level3, TriangularProductsWriteTheirTriangleAlone) {
    with_each(
        [](const Table<Real>* table, Size n, Size k, Layout lc, bool lower) {
            const bool accumulate = (n + k) % 2;
            Operand<Real> a(n, k, kLayouts[n % 5]), b(k, n, kLayouts[k % 5]), c(n, n, lc);
            a.randomize(1);
            b.randomize(2);
            c.randomize(3);
            for (Size i = 0; !accumulate && i < n; ++i) c(i, i) = kNaN<Real>;
            Operand<Real> expected = c, other = c;
            plain<Real>().gemmt(lower, n, k, Real(1.25), a.reading(), b.reading(), accumulate,
                                expected.block());
            table->gemmt(lower, n, k, Real(1.25), a.reading(), b.reading(), accumulate, c.block());
            EXPECT_LE(largest_difference(expected, c), Real(k + 8) * kEps<Real>);
            EXPECT_TRUE(c.guards_stand());
            Size touched = 0;
            for (Size i = 0; i < n; ++i)
                for (Size j = 0; j < n; ++j)
                    touched += (lower ? j > i : j < i) && c(i, j) != other(i, j);
            EXPECT_EQ(touched, 0);
        },
        variants<Real>(), Sizes{1, 2, 7, 25, 70, 150}, Sizes{0, 3, 40, 300}, kLayouts, kBoth);
}

// A triangle near 2 I; NaN where it must not be read.
TWIN_TEST(Level3, TriangularSolvesAndProductsAgree) {
    with_each(
        [](const Table<Real>* table, Size m, Size n, Layout lt, bool lower, bool unit) {
            Operand<Real> t(m, m, lt), b(m, n, kLayouts[(m + n + int(lt)) % 5]);
            t.randomize(5);
            b.randomize(6);
            for (Size i = 0; i < m; ++i) {
                for (Size j = 0; j < m; ++j)
                    t(i, j) = (lower ? j > i : j < i) ? kNaN<Real> : t(i, j) / Real(m);
                t(i, i) = unit ? kNaN<Real> : Real(2);
            }
            for (const bool solve : {true, false}) {
                SCOPED_TRACE(solve ? "trsm" : "trmm");
                Operand<Real> expected = b, actual = b;
                const Table<Real>& p = plain<Real>();
                (solve ? p.trsm : p.trmm)(lower, unit, m, n, t.reading(), expected.block());
                (solve ? table->trsm : table->trmm)(lower, unit, m, n, t.reading(), actual.block());
                EXPECT_LE(largest_difference(expected, actual), 32 * kEps<Real>);
                EXPECT_TRUE(actual.guards_stand());
            }
        },
        variants<Real>(), Sizes{1, 2, 3, 6, 7, 13, 50, 64, 65, 140}, Sizes{1, 2, 5, 8, 17, 50},
        kLayouts, kBoth, kBoth);
}

// Reciprocals of a subnormal diagonal overflow; the solution itself does not.
TWIN_TEST(Level3, TriangularSolvesDivideBySubnormalPivots) {
    const Real size = std::numeric_limits<Real>::denorm_min() * 64;
    for (const Table<Real>* table : variants<Real>()) {
        Operand<Real> t(20, 20, Layout::rows), b(20, 9, Layout::rows), quotient = b;
        for (Size i = 0; i < 20; ++i) {
            for (Size j = 0; j < 20; ++j) t(i, j) = i == j ? size : Real(0);
            for (Size j = 0; j < 9; ++j) b(i, j) = size * (quotient(i, j) = Real(j));
        }
        table->trsm(true, false, 20, 9, t.reading(), b.block());
        EXPECT_EQ(largest_difference(b, quotient), Real(0)) << table->name;
        // A zero on the diagonal gives infinities and NaN, never a plausible number.
        t(3, 3) = 0;
        table->trsm(true, false, 20, 9, t.reading(), b.randomize(2).block());
        EXPECT_FALSE(std::isfinite(b(3, 4))) << table->name;
    }
}

}  // namespace
}  // namespace nequar::kernel::testing
