#include "variants.h"

namespace nequar::kernel::testing {
namespace {

TWINS(Level3);

using Shape = std::array<Size, 3>;

template <class Real>
void expect_product(const Table<Real>* table, const Shape& shape, Layout la, Layout lb, Layout lc,
                    bool accumulate, Size gap = 3) {
    const Size m = shape[0], n = shape[1], k = shape[2];
    Operand<Real> a(m, k, la, 1, gap), b(k, n, lb, 2, gap);
    // The output is NaN, which must vanish, or accumulates.
    const Operand<Real> c(m, n, lc, accumulate ? 3 : 0, gap);
    expect_agreement(table, c, Real(k + 8) * kEps<Real>, [&](auto& t, auto& out) {
        t.gemm(m, n, k, Real(-0.75), a.reading(), b.reading(), accumulate, out.block());
    });
}

TWIN_TEST(Level3, ProductsAgreeInEveryLayout) {
    // Every tile height and width.
    const auto compare = [](auto* table, Size m, Size n, Size k, Layout lb, Layout lc) {
        expect_product(table, {m, n, k}, kLayouts[(m + n) % 5], lb, lc, n % 2);
    };
    with_each(compare, variants<Real>(), Sizes{1, 2, 3, 5, 7, 12, 14, 27},
              Sizes{1, 2, 3, 4, 6, 9, 16, 17, 31, 49, 71}, Sizes{0, 1, 6}, kLayouts, kLayouts);
    // Nothing at all; then packed blocks, their edges, and shapes that are thin one way.
    const Shape shapes[] = {{0, 0, 3},       {0, 5, 3},     {5, 0, 3},      {5, 4, 0},
                            {130, 131, 129}, {97, 33, 601}, {13, 290, 301}, {301, 7, 290},
                            {5, 517, 90},    {517, 5, 90},  {260, 250, 3},  {40, 3, 70},
                            {17, 8, 300},    {21, 4, 1100}, {30, 60, 530}};
    const auto compare_blocks = [](auto* table, const Shape& shape, Layout la, Layout lb) {
        expect_product(table, shape, la, lb, kLayouts[(int(la) + int(lb)) % 5], int(la) % 2);
    };
    with_each(compare_blocks, variants<Real>(), shapes, kLayouts, kLayouts);
    // Strides that put every row on the same sets of the cache take other ways through the blocks.
    const Layout either[] = {Layout::rows, Layout::columns};
    const auto compare_strides = [](auto* table, const Shape& shape, Layout la, Layout lb) {
        expect_product(table, shape, la, lb, Layout::rows, shape[0] == 64, 0);
    };
    with_each(compare_strides, variants<Real>(),
              std::array<Shape, 2>{{{64, 512, 64}, {128, 128, 512}}}, either, either);
}

TWIN_TEST(Level3, NaNAndInfinityReachExactlyTheirRowsAndColumns) {
    const std::array<Size, 2> shapes[] = {{3, 3}, {9, 9}, {40, 40}, {150, 150}, {150, 3}};
    const auto compare = [](auto* table, const auto& shape, Layout layout) {
        const Size n = shape[0], w = shape[1];
        Operand<Real> a(n, n, layout, 1), b(n, w, layout, 2), c(n, w, Layout::rows), again = c;
        for (Size j = 0; j < w; ++j) b(n - 1, j) = 0;
        a(n / 2, n - 1) = kInfinity<Real>;  // infinity times zero
        b(2, w - 3) = kNaN<Real>;
        table->gemm(n, w, n, Real(1), a.reading(), b.reading(), false, c.block());
        EXPECT_EQ(c.count([&](Size i, Size j) {
            return std::isnan(c(i, j)) != (i == n / 2 || j == w - 3);
        }),
                  0);
        // What is computed twice is the same bits.
        table->gemm(n, w, n, Real(1), a.reading(), b.reading(), false, again.block());
        EXPECT_EQ(largest_difference(c, again), Real(0));
        table->gemm(n, w, n, Real(0), a.reading(), b.reading(), true, c.block());
        EXPECT_TRUE(std::isnan(c(n / 2, 0))) << "alpha = 0 skips nothing";
    };
    with_each(compare, variants<Real>(), shapes,
              std::array{Layout::rows, Layout::columns, Layout::spread});
}

TWIN_TEST(Level3, TriangularProductsWriteTheirTriangleAlone) {
    const auto compare = [](auto* table, Size n, Size k, Layout lc, bool lower) {
        const bool accumulate = (n + k) % 2;
        Operand<Real> a(n, k, kLayouts[n % 5], 1), b(k, n, kLayouts[k % 5], 2), c(n, n, lc, 3);
        for (Size i = 0; !accumulate && i < n; ++i) c(i, i) = kNaN<Real>;
        expect_agreement(table, c, Real(k + 8) * kEps<Real>, [&](auto& t, auto& out) {
            t.gemmt(lower, n, k, Real(1.25), a.reading(), b.reading(), accumulate, out.block());
            EXPECT_EQ(out.count([&](Size i, Size j) {
                return (lower ? j > i : j < i) && c(i, j) != out(i, j);
            }),
                      0);
        });
    };
    with_each(compare, variants<Real>(), Sizes{1, 2, 7, 25, 70, 150}, Sizes{0, 3, 40, 300},
              kLayouts, kBoth);
}

TWIN_TEST(Level3, TriangularSolvesAndProductsAgree) {
    const auto compare = [](auto* table, Size m, Size n, Layout lt, bool lower, bool unit,
                            bool solve) {
        Operand<Real> a = triangle<Real>(m, lt, lower, unit);
        const Operand<Real> b(m, n, kLayouts[(m + n + int(lt)) % 5], 6);
        expect_agreement(table, b, 32 * kEps<Real>, [&](auto& t, auto& out) {
            (solve ? t.trsm : t.trmm)(lower, unit, m, n, a.reading(), out.block());
        });
    };
    with_each(compare, variants<Real>(), Sizes{1, 2, 3, 6, 7, 13, 50, 64, 65, 140},
              Sizes{1, 2, 5, 8, 17, 50}, kLayouts, kBoth, kBoth, kBoth);
}

// Reciprocals of a subnormal diagonal overflow; the solution itself does not.
TWIN_TEST(Level3, TriangularSolvesDivideBySubnormalPivots) {
    const Real size = std::numeric_limits<Real>::denorm_min() * 64;
    for (const Table<Real>* table : variants<Real>()) {
        Operand<Real> t(20, 20, Layout::rows), b(20, 9, Layout::rows), quotient = b;
        t.assign([&](Size i, Size j) { return i == j ? size : Real(0); });
        quotient.assign([](Size, Size j) { return Real(j); });
        b.assign([&](Size, Size j) { return size * Real(j); });
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
