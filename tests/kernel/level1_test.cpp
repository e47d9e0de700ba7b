#include "variants.h"

namespace nequar::kernel::testing {
namespace {

// Around one vector, one group of vectors, and the stretches of longer loops.
const Sizes kLengths = {0,  1,  2,  3,  4,  5,  7,   8,   9,   15,  16,
                        17, 31, 33, 63, 64, 65, 127, 130, 511, 513, 1100};

TWINS(Level1);

TWIN_TEST(Level1, ContiguousLoopsAgreeWithThePlainOnesAlsoInPlace) {
    const auto compare = [](auto* table, Size n, bool in_place) {
        Operand<Real> a(1, n, Layout::rows, 1), b(1, n, Layout::rows, 2);
        const Table<Real>* t = table;
        const Real *const pa = a.data(), *pb = b.data();
        Real* out = nullptr;
        const auto check = [&](const char* what, auto run) {
            SCOPED_TRACE(what);
            expect_agreement(table, b, 2 * kEps<Real>, [&](auto& tried, auto& result) {
                t = &tried;
                out = result.data();
                pb = in_place ? out : b.data();
                run();
            });
        };
        check("add", [&] { t->add(n, pa, pb, out); });
        check("subtract", [&] { t->subtract(n, pa, pb, out); });
        check("add_weighted", [&] { t->add_weighted(n, pa, pb, Real(0.7), Real(-1.3), out); });
        check("add_constant", [&] { t->add_constant(n, pb, Real(2.5), out); });
        check("multiply_by", [&] { t->multiply_by(n, pb, Real(2.5), out); });
        check("multiply_elementwise", [&] { t->multiply_elementwise(n, pa, pb, out); });
        check("add_reversed", [&] { t->add_reversed(n, Real(-0.7), out); });
        check("fill", [&] { t->fill(n, Real(4), out); });
    };
    with_each(compare, variants<Real>(), kLengths, kBoth);
}

TWIN_TEST(Level1, SumsAndExtremaOfContiguousValues) {
    const auto compare = [](auto* table, Size n, bool with_nan) {
        Operand<Real> operand(1, n, Layout::rows, 5);
        for (Size i = 1; with_nan && i < n; i += 3) operand(0, i) = kNaN<Real>;
        const Real* const x = operand.data();
        const auto& p = plain<Real>();
        for (const Real other : {Real(-9), Real(0), Real(9)}) {
            EXPECT_EQ(table->largest(n, x, other), p.largest(n, x, other));
            EXPECT_EQ(table->smallest(n, x, other), p.smallest(n, x, other));
        }
        if (with_nan) return;
        const Real bound = Real(n + 4) * kEps<Real> * Real(10 + n);
        EXPECT_NEAR(table->sum(n, x), p.sum(n, x), bound);
        EXPECT_NEAR(table->squares_about(n, x, Real(1.5)), p.squares_about(n, x, Real(1.5)), bound);
    };
    with_each(compare, variants<Real>(), kLengths, kBoth);
}

TWIN_TEST(Level1, StridedLoopsAgreeWithThePlainOnes) {
    const Layout layouts[] = {Layout::rows, Layout::spread, Layout::columns_reversed};
    const auto compare = [](auto* table, Size n, Layout lx, Layout ly) {
        Operand<Real> x(1, n, lx, 3), y(1, n, ly, 4);
        const Real* const px = x.data();
        const Real* const py = y.data();
        const Size sx = x.column_stride(), sy = y.column_stride();
        const auto sum = [&](const char* what, auto run) {
            const Real expected = run(plain<Real>());
            EXPECT_LE(std::abs(run(*table) - expected),
                      Real(n + 4) * kEps<Real> * (1 + std::abs(expected)))
                << what;
        };
        sum("dot", [&](auto& t) { return t.dot(n, px, sx, py, sy); });
        sum("sum_of_magnitudes", [&](auto& t) { return t.sum_of_magnitudes(n, px, sx); });
        sum("sum_of_squares", [&](auto& t) { return t.sum_of_squares(n, px, sx); });
        sum("distance_squared", [&](auto& t) { return t.distance_squared(n, px, sx, py, sy); });
        EXPECT_EQ(table->index_of_largest_magnitude(n, px, sx),
                  plain<Real>().index_of_largest_magnitude(n, px, sx));
        const auto change = [&](const char* what, auto run) {
            Operand<Real> x1 = x, y1 = y, x2 = x, y2 = y;
            run(plain<Real>(), x1.data(), y1.data());
            run(*table, x2.data(), y2.data());
            EXPECT_LE(largest_difference(x1, x2), 2 * kEps<Real>) << what;
            EXPECT_LE(largest_difference(y1, y2), 2 * kEps<Real>) << what;
            EXPECT_TRUE(x2.guards_stand() && y2.guards_stand()) << what;
        };
        change("axpy", [&](auto& t, Real* p, Real* q) { t.axpy(n, Real(-1.7), p, sx, q, sy); });
        change("scale", [&](auto& t, Real* p, Real*) { t.scale(n, Real(-1.7), p, sx); });
        change("copy", [&](auto& t, Real* p, Real* q) { t.copy(n, p, sx, q, sy); });
        change("swap", [&](auto& t, Real* p, Real* q) { t.swap(n, p, sx, q, sy); });
        change("rotate",
               [&](auto& t, Real* p, Real* q) { t.rotate(n, p, sx, q, sy, Real(0.6), Real(0.8)); });
    };
    with_each(compare, variants<Real>(), kLengths, layouts, layouts);
}

// Either of rows and columns contiguous, or neither; groups of rows, stretches of columns.
TWIN_TEST(Level1, DistancesFromAPointToManySamples) {
    const auto compare = [](auto* table, Size n, Size d, Layout layout) {
        Operand<Real> samples(n, d, layout, 1), x(1, d, Layout::rows, 2);
        expect_agreement(table, Operand<Real>(1, n, Layout::rows), Real(4 * (d + 1)) * kEps<Real>,
                         [&](auto& t, auto& out) {
                             t.squared_distances(n, d, x.data(), samples.reading(), out.data());
                         });
    };
    with_each(compare, variants<Real>(), Sizes{1, 3, 4, 5, 17, 1050}, Sizes{0, 1, 2, 7, 8, 9, 33},
              kLayouts);
}

TWIN_TEST(Level1, NaNAndInfinityPassThrough) {
    const auto compare = [](auto* table, Size n) {
        const auto count = static_cast<std::size_t>(n);
        const std::vector<Real> zero(count), ones(count, 1), threes(count, -3);
        const std::vector<Real> nans(count, kNaN<Real>);
        const auto largest = [&](const std::vector<Real>& x) {
            return table->index_of_largest_magnitude(n, x.data(), 1);
        };
        for (std::size_t at = 0; at < count; at += count / 3 + 1) {
            auto x = ones, out = ones;
            x[at] = kInfinity<Real>;
            EXPECT_TRUE(std::isnan(table->dot(n, x.data(), 1, zero.data(), 1)));
            EXPECT_EQ(table->sum_of_squares(n, x.data(), 1), kInfinity<Real>);
            EXPECT_EQ(largest(x), Size(at));
            x[at] = kNaN<Real>;
            EXPECT_TRUE(std::isnan(table->sum_of_squares(n, x.data(), 1)));
            EXPECT_TRUE(std::isnan(table->sum_of_magnitudes(n, x.data(), 1)));
            EXPECT_TRUE(std::isnan(table->distance_squared(n, x.data(), 1, zero.data(), 1)));
            EXPECT_TRUE(n == 1 || largest(x) != Size(at));
            table->multiply_by(n, x.data(), Real(0), out.data());
            for (std::size_t i = 0; i < count; ++i) EXPECT_EQ(std::isnan(out[i]), i == at);
        }
        // The first of the largest magnitudes wins; NaN never does.
        const auto largest_with = [&](std::vector<Real> x, Real at_middle, Real at_end) {
            x[count / 2] = at_middle;
            x.back() = at_end;
            return largest(x);
        };
        EXPECT_EQ(largest(nans), 0);
        EXPECT_EQ(largest_with(nans, kNaN<Real>, 0), n - 1);
        EXPECT_EQ(largest_with(threes, -3, 3), 0);
        EXPECT_EQ(largest_with(threes, Real(3.5), Real(-3.5)), n / 2);
        // A zero stride is one element met again and again, in order.
        Real sum = 1;
        table->axpy(n, Real(1), threes.data(), 1, &sum, 0);
        EXPECT_EQ(sum, Real(1 - 3 * n));
        EXPECT_EQ(table->dot(n, threes.data(), 1, &sum, 0), Real(-3 * n) * sum);
    };
    with_each(compare, variants<Real>(), Sizes{1, 5, 7, 40, 64, 130, 600, 1100});
}

}  // namespace
}  // namespace nequar::kernel::testing
