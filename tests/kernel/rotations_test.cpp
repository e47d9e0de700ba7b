// Rotations of rows and the symmetric product: every variant against the plain loops.
#include "variants.h"

namespace nequar::kernel::testing {
namespace {

TWINS(Rotations);

// Pairs (tan half the angle, sin), some of them the identity.
template <class Real>
std::vector<Real> rotations(Size count, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<Real> angle(Real(-2.3), Real(2.3));
    std::vector<Real> pairs;
    for (Size i = 0; i < count; ++i) {
        const Real phi = i % 5 == 3 ? Real(0) : angle(generator);
        pairs.push_back(std::tan(phi / 2));
        pairs.push_back(std::sin(phi));
    }
    return pairs;
}

TWIN_TEST(Rotations, PairsOfTheReferenceAreRotations) {
    const Real phi = Real(2.1);
    const Real pair[2] = {std::tan(phi / 2), std::sin(phi)};
    Real rows[2] = {3, -2};
    plain<Real>().rotate_rows(1, 1, 1, pair, 2, rows, 1);
    EXPECT_NEAR(rows[0], 3 * std::cos(phi) + 2 * std::sin(phi), 8 * kEps<Real>);
    EXPECT_NEAR(rows[1], 3 * std::sin(phi) - 2 * std::cos(phi), 8 * kEps<Real>);
}

TWIN_TEST(Rotations, SweepsOverRows) {
    for (const auto* table : variants<Real>())
        for (const Size sweeps : {1, 2, 3, 4, 5, 9})
            for (const Size count : {0, 1, 2, 3, 4, 5, 6, 11, 23})
                for (const Size n : {1, 3, 8, 16, 17, 33, 66, 150}) {
                    SCOPED_TRACE(::testing::Message() << table->name << ' ' << sweeps << " sweeps "
                                                      << count << " x " << n);
                    Operand<Real> a(count + 1, n, Layout::rows);
                    Operand<Real> b(count + 1, n, Layout::rows);
                    a.randomize(5);
                    b.randomize(5);
                    const Size stride = 2 * count + 4;
                    const auto pairs = rotations<Real>(sweeps * (count + 2), 7);
                    table->rotate_rows(sweeps, count, n, pairs.data(), stride, a.view().data,
                                       a.view().row_stride);
                    plain<Real>().rotate_rows(sweeps, count, n, pairs.data(), stride, b.view().data,
                                              b.view().row_stride);
                    EXPECT_LE(largest_difference(a, b), Real(4) * Real(sweeps + 1) * kEps<Real>);
                    EXPECT_TRUE(a.guards_stand());
                }
}

TWIN_TEST(Rotations, OneRowWithMany) {
    for (const auto* table : variants<Real>())
        for (const Size count : {0, 1, 4, 9})
            for (const Size n : {1, 7, 16, 65, 140}) {
                SCOPED_TRACE(::testing::Message() << table->name << ' ' << count << " x " << n);
                Operand<Real> a(count + 1, n, Layout::rows);
                Operand<Real> b(count + 1, n, Layout::rows);
                a.randomize(3);
                b.randomize(3);
                auto pairs = rotations<Real>(count, 11);
                for (Size q = 0; q < count; ++q)  // s, tau = s / (1 + c)
                    std::swap(pairs[std::size_t(2 * q)], pairs[std::size_t(2 * q + 1)]);
                for (auto* const operand : {&a, &b}) {
                    const View<Real> v = operand->view();
                    (operand == &a ? table : &plain<Real>())
                        ->rotate_with_rows(count, n, v.data, v.data + v.row_stride, v.row_stride,
                                           pairs.data());
                }
                EXPECT_LE(largest_difference(a, b), Real(20) * kEps<Real>);
                EXPECT_TRUE(a.guards_stand());
            }
}

TWIN_TEST(Rotations, SymmetricProductReadsTheUpperTriangle) {
    for (const auto* table : variants<Real>())
        for (const Size n : {0, 1, 2, 3, 4, 5, 8, 13, 16, 31, 37, 70, 133}) {
            SCOPED_TRACE(::testing::Message() << table->name << ' ' << n);
            Operand<Real> a(n, n, Layout::rows);
            Operand<Real> x(1, n, Layout::rows);
            Operand<Real> y(1, n, Layout::rows);
            Operand<Real> z(1, n, Layout::rows);
            a.randomize(1);
            x.randomize(2);
            for (Size i = 0; i < n; ++i)
                for (Size j = 0; j < i; ++j) a(i, j) = kNaN<Real>;
            const auto block = a.reading();
            table->symv_upper(n, block.data, block.row_stride, x.view().data, y.view().data);
            plain<Real>().symv_upper(n, block.data, block.row_stride, x.view().data, z.view().data);
            EXPECT_LE(largest_difference(y, z), Real(n) * kEps<Real>);
            EXPECT_TRUE(y.guards_stand());
        }
}

}  // namespace
}  // namespace nequar::kernel::testing
