#include "kernel/kernel.h"
#include "variants.h"

namespace nequar::kernel::testing {
namespace {

// Around one vector, one group of vectors, and the stretches of longer loops.
const Size kLengths[] = {0,  1,  2,  3,  4,  5,  7,   8,   9,   15,  16,
                         17, 31, 33, 63, 64, 65, 127, 130, 511, 513, 1100};

template <class Real>
class Level1 : public ::testing::Test {};
using Reals = ::testing::Types<double, float>;
TYPED_TEST_SUITE(Level1, Reals);

TYPED_TEST(Level1, ContiguousLoopsAgreeWithThePlainOnesAlsoInPlace) {
    using Real = TypeParam;
    for (const Table<Real>* table : variants<Real>()) {
        for (const Size n : kLengths) {
            Operand<Real> a(1, n, Layout::rows), b(1, n, Layout::rows);
            a.randomize(1);
            b.randomize(2);
            const auto check = [&](auto run, const char* what) {
                for (const bool in_place : {false, true}) {
                    Operand<Real> expected = b, actual = b;
                    run(plain<Real>(), in_place ? expected.block().data : b.block().data,
                        expected.block().data);
                    run(*table, in_place ? actual.block().data : b.block().data,
                        actual.block().data);
                    EXPECT_LE(largest_difference(expected, actual), 2 * kEps<Real>)
                        << table->name << ' ' << what << ' ' << n;
                    EXPECT_TRUE(actual.guards_stand()) << table->name << ' ' << what << ' ' << n;
                }
            };
            const Real* pa = a.block().data;
            check([&](const Table<Real>& t, const Real* pb, Real* out) { t.add(n, pa, pb, out); },
                  "add");
            check([&](const Table<Real>& t, const Real* pb,
                      Real* out) { t.subtract(n, pa, pb, out); },
                  "subtract");
            check([&](const Table<Real>& t, const Real* pb,
                      Real* out) { t.add_weighted(n, pa, pb, Real(0.7), Real(-1.3), out); },
                  "add_weighted");
            check([&](const Table<Real>& t, const Real* pb,
                      Real* out) { t.add_constant(n, pb, Real(2.5), out); },
                  "add_constant");
            check([&](const Table<Real>& t, const Real* pb,
                      Real* out) { t.multiply_by(n, pb, Real(2.5), out); },
                  "multiply_by");
            check([&](const Table<Real>& t, const Real* pb,
                      Real* out) { t.multiply_elementwise(n, pa, pb, out); },
                  "multiply_elementwise");
            check([&](const Table<Real>& t, const Real*, Real* out) { t.fill(n, Real(4), out); },
                  "fill");
            check([&](const Table<Real>& t, const Real*,
                      Real* out) { t.add_reversed(n, Real(-0.7), out); },
                  "add_reversed");
        }
    }
}

TYPED_TEST(Level1, StridedLoopsAgreeWithThePlainOnes) {
    using Real = TypeParam;
    for (const Table<Real>* table : variants<Real>()) {
        for (const Size n : kLengths) {
            for (const Layout lx : {Layout::rows, Layout::spread, Layout::columns_reversed}) {
                for (const Layout ly : {Layout::rows, Layout::spread, Layout::columns_reversed}) {
                    Operand<Real> x(1, n, lx), y(1, n, ly);
                    x.randomize(3);
                    y.randomize(4);
                    const Real bound = Real(n + 4) * kEps<Real>;
                    const auto sx = x.block().column_stride;
                    const auto sy = y.block().column_stride;
                    const auto sum = [&](auto run, const char* what) {
                        const Real expected = run(plain<Real>());
                        EXPECT_LE(std::abs(run(*table) - expected),
                                  bound * (1 + std::abs(expected)))
                            << table->name << ' ' << what << ' ' << n;
                    };
                    const Real* px = x.block().data;
                    const Real* py = y.block().data;
                    sum([&](const Table<Real>& t) { return t.dot(n, px, sx, py, sy); }, "dot");
                    sum([&](const Table<Real>& t) { return t.sum_of_magnitudes(n, px, sx); },
                        "sum_of_magnitudes");
                    sum([&](const Table<Real>& t) { return t.sum_of_squares(n, px, sx); },
                        "sum_of_squares");
                    sum([&](const Table<Real>& t) { return t.distance_squared(n, px, sx, py, sy); },
                        "distance_squared");
                    EXPECT_EQ(table->index_of_largest_magnitude(n, px, sx),
                              plain<Real>().index_of_largest_magnitude(n, px, sx))
                        << table->name << ' ' << n;
                    const auto change = [&](auto run, const char* what) {
                        Operand<Real> x1 = x, y1 = y, x2 = x, y2 = y;
                        run(plain<Real>(), x1.block().data, y1.block().data);
                        run(*table, x2.block().data, y2.block().data);
                        EXPECT_LE(largest_difference(x1, x2), 2 * kEps<Real>)
                            << table->name << ' ' << what << ' ' << n;
                        EXPECT_LE(largest_difference(y1, y2), 2 * kEps<Real>)
                            << table->name << ' ' << what << ' ' << n;
                        EXPECT_TRUE(x2.guards_stand() && y2.guards_stand())
                            << table->name << ' ' << what << ' ' << n;
                    };
                    change([&](const Table<Real>& t, Real* p,
                               Real* q) { t.axpy(n, Real(-1.7), p, sx, q, sy); },
                           "axpy");
                    change([&](const Table<Real>& t, Real* p,
                               Real*) { t.scale(n, Real(-1.7), p, sx); },
                           "scale");
                    change([&](const Table<Real>& t, Real* p, Real* q) { t.copy(n, p, sx, q, sy); },
                           "copy");
                    change([&](const Table<Real>& t, Real* p, Real* q) { t.swap(n, p, sx, q, sy); },
                           "swap");
                    change([&](const Table<Real>& t, Real* p,
                               Real* q) { t.rotate(n, p, sx, q, sy, Real(0.6), Real(0.8)); },
                           "rotate");
                }
            }
        }
    }
}

// A zero stride is one element met again and again, in order.
TYPED_TEST(Level1, ZeroStridesRepeatOneElement) {
    using Real = TypeParam;
    for (const Table<Real>* table : variants<Real>()) {
        Real x[20], sum = 1;
        const Real two = 2;
        for (int i = 0; i < 20; ++i) x[i] = Real(i);
        EXPECT_EQ(table->dot(20, x, 1, &two, 0), Real(380)) << table->name;
        table->axpy(20, Real(1), x, 1, &sum, 0);
        EXPECT_EQ(sum, Real(191)) << table->name;
    }
}

TYPED_TEST(Level1, NaNAndInfinityPassThrough) {
    using Real = TypeParam;
    for (const Table<Real>* table : variants<Real>()) {
        for (const Size n : {1, 7, 40, 130}) {
            for (Size at = 0; at < n; at += n / 3 + 1) {
                std::vector<Real> x(static_cast<std::size_t>(n), Real(1)), zero(x.size(), Real(0)),
                    out(x.size());
                Real& odd = x[static_cast<std::size_t>(at)];
                odd = kInfinity<Real>;
                EXPECT_TRUE(std::isnan(table->dot(n, x.data(), 1, zero.data(), 1)))
                    << table->name << " inf 0";
                EXPECT_EQ(table->sum_of_squares(n, x.data(), 1), kInfinity<Real>);
                EXPECT_EQ(table->index_of_largest_magnitude(n, x.data(), 1), at);
                odd = kNaN<Real>;
                EXPECT_TRUE(std::isnan(table->sum_of_squares(n, x.data(), 1)));
                EXPECT_TRUE(std::isnan(table->sum_of_magnitudes(n, x.data(), 1)));
                EXPECT_TRUE(std::isnan(table->distance_squared(n, x.data(), 1, zero.data(), 1)));
                EXPECT_NE(table->index_of_largest_magnitude(n, x.data(), 1), n > 1 ? at : -2);
                table->multiply_by(n, x.data(), Real(0), out.data());
                for (Size i = 0; i < n; ++i)
                    EXPECT_EQ(std::isnan(out[static_cast<std::size_t>(i)]), i == at);
            }
        }
    }
}

TYPED_TEST(Level1, TheFirstOfTheLargestMagnitudesWinsAndNaNNeverDoes) {
    using Real = TypeParam;
    for (const Table<Real>* table : variants<Real>()) {
        for (const Size n : {1, 5, 64, 600, 1100}) {
            std::vector<Real> x(static_cast<std::size_t>(n), kNaN<Real>);
            EXPECT_EQ(table->index_of_largest_magnitude(n, x.data(), 1), 0) << table->name;
            x.back() = 0;
            EXPECT_EQ(table->index_of_largest_magnitude(n, x.data(), 1), n - 1) << table->name;
            for (Real& e : x) e = -3;
            EXPECT_EQ(table->index_of_largest_magnitude(n, x.data(), 1), 0) << table->name;
            x[static_cast<std::size_t>(n / 2)] = Real(3.5);
            x[static_cast<std::size_t>(n - 1)] = Real(-3.5);
            EXPECT_EQ(table->index_of_largest_magnitude(n, x.data(), 1), n / 2) << table->name;
        }
    }
}

TYPED_TEST(Level1, NormsSurviveBothEndsOfTheRange) {
    using Real = TypeParam;
    const Real huge = std::numeric_limits<Real>::max() / 64;
    const Real tiny = std::numeric_limits<Real>::min() * 8;
    const Real subnormal = std::numeric_limits<Real>::denorm_min() * 1024;
    for (const Size n : {1, 2, 37}) {
        const Real root = std::sqrt(Real(n));
        for (const Real size : {huge, tiny, subnormal, Real(1)}) {
            std::vector<Real> x(static_cast<std::size_t>(n), size), y(x.size(), -size);
            const Strided<const Real> vx(x.data(), n), vy(y.data(), n);
            const Real bound = (size == subnormal ? Real(0.002) : 16 * kEps<Real>)*root;
            EXPECT_LE(std::abs(norm2(vx) / size - root), bound) << size << ' ' << n;
            EXPECT_LE(std::abs(distance2(vx, vy) / size - 2 * root), bound) << size << ' ' << n;
        }
    }
    const Real mixed[] = {huge, tiny, 0, kInfinity<Real>, kNaN<Real>, -kInfinity<Real>};
    EXPECT_EQ(norm2(Strided<const Real>(mixed, 2)), huge);
    EXPECT_EQ(norm2(Strided<const Real>(mixed, 4)), kInfinity<Real>);
    EXPECT_TRUE(std::isnan(norm2(Strided<const Real>(mixed, 5))));
    EXPECT_EQ(norm2(Strided<const Real>(mixed, 0)), Real(0));
    EXPECT_EQ(norm2(Strided<const Real>(mixed + 2, 1)), Real(0));
    EXPECT_EQ(distance2(Strided<const Real>(mixed + 3, 1), Strided<const Real>(mixed + 5, 1)),
              kInfinity<Real>);
    EXPECT_TRUE(std::isnan(
        distance2(Strided<const Real>(mixed + 3, 1), Strided<const Real>(mixed + 3, 1))));
}

}  // namespace
}  // namespace nequar::kernel::testing
