#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <utility>

#include "structured/packed_support.h"

namespace {

using namespace packed_test;

template <class Kind>
class SymmetricTest : public testing::Test {};
using Kinds = testing::Types<Symmetric, SymmetricFloat>;
TYPED_TEST_SUITE(SymmetricTest, Kinds);

// Packed element i = i + 1.
template <class Kind>
typename Kind::Packed numbered_symmetric(int n) {
    typename Kind::Packed s;
    s.c_Create(n, n);
    for (int i = 0; i < s.vs(); ++i) s[i] = typename Kind::Real(i + 1);
    return s;
}

TYPED_TEST(SymmetricTest, EveryElementBandAndRow) {
    using Real = typename TypeParam::Real;
    for (int n = 1; n <= 7; ++n) {
        SCOPED_TRACE(n);
        auto s = numbered_symmetric<TypeParam>(n);
        const auto stored = stored_positions(true, n, n);
        ASSERT_EQ(s.vs(), static_cast<int>(stored.size()));
        std::vector<Real> full(std::size_t(n * n));
        for (int i = 0; i < s.vs(); ++i) {
            const Position at = stored[std::size_t(i)];  // x <= y
            full[std::size_t(at.y * n + at.x)] = full[std::size_t(at.x * n + at.y)] = Real(i + 1);
            int x = -1;
            int y = -1;
            s.fp_Find_Position_of_element(i, x, y);
            EXPECT_EQ(x, at.x);
            EXPECT_EQ(y, at.y);
            for (const bool mirrored : {false, true}) {
                x = (mirrored ? at.y : at.x) + 4 * n;
                y = (mirrored ? at.x : at.y) - 3 * n;
                int index = -1;
                s.fi_Find_Index_of_element(x, y, index);
                EXPECT_EQ(index, i);
                EXPECT_EQ(x, mirrored ? at.y : at.x);
                EXPECT_EQ(y, mirrored ? at.x : at.y);
                EXPECT_EQ(s.ge_Get_Element(x, y), Real(i + 1));
                auto changed = s;
                changed.se_Set_Element(x - n, y, Real(-1));
                EXPECT_EQ(changed[i], Real(-1));

                // The band through (x, y): all stored elements at the same distance.
                const auto is_of_band = [&](int k) {
                    return stored[std::size_t(k)].y - stored[std::size_t(k)].x == at.y - at.x;
                };
                int first = -1;
                int last = -1;
                int count = -1;
                std::vector<Real> band(8, Real(-1));
                s.fib_Find_Index_range_of_a_Band(x, y, first, last);
                s.gb_Get_Band(x, y, band.data(), count);
                EXPECT_EQ(count, n - (at.y - at.x));
                EXPECT_EQ(last - first + 1, count);
                EXPECT_EQ(band[std::size_t(count)], Real(-1));
                for (int k = 0; k < s.vs(); ++k) {
                    EXPECT_EQ(is_of_band(k), first <= k && k <= last);
                    const Real got = is_of_band(k) ? band[std::size_t(k - first)] : s[k];
                    EXPECT_EQ(got, s[k]);
                }
                changed = s;
                count = -1;
                changed.sb_Set_Band(x, y, Real(70), count);
                EXPECT_EQ(count, n - (at.y - at.x));
                for (int k = 0; k < s.vs(); ++k)
                    EXPECT_EQ(changed[k], is_of_band(k) ? Real(70) : s[k]);
                changed.sb_Set_Band(x, y, band.data(), count);
                EXPECT_TRUE(changed == s);
            }
        }
        for (int r = 0; r < n; ++r) {
            std::vector<Real> row(8, Real(-1));
            std::vector<Real> column(8, Real(-1));
            int first = -1;
            int last = -1;
            s.gr_Get_Row(r - n, row.data(), first, last);
            EXPECT_EQ(first, 0);
            EXPECT_EQ(last, n - 1);
            s.gc_Get_Column(r + n, column.data(), first, last);
            EXPECT_EQ(row, column);
            EXPECT_EQ(row[std::size_t(n)], Real(-1));
            for (int x = 0; x < n; ++x)
                EXPECT_EQ(row[std::size_t(x)], full[std::size_t(r * n + x)]);
        }
        nequar::Matrix<Real> dense;
        std::vector<Real> raw(full.size());
        int order = -1;
        s.e_Export(&dense);
        EXPECT_TRUE(dense == dense_of(n, n, full));
        for (const bool row_major : {true, false}) {
            s.e_Export(row_major, &order, raw.data());
            EXPECT_EQ(order, n);
            EXPECT_EQ(raw, full);
        }
        EXPECT_EQ(failures_of(s), "");
    }
}

TYPED_TEST(SymmetricTest, ImportsOfATriangleAndOfTheAverage) {
    using Real = typename TypeParam::Real;
    using Packed = typename TypeParam::Packed;
    for (int n = 1; n <= 7; ++n) {
        SCOPED_TRACE(n);
        auto full = numbered<Real>(n, n);
        full.back() = std::numeric_limits<Real>::quiet_NaN();
        const auto columnwise = transposed(n, n, full);
        const auto matrix = dense_of(n, n, full);
        Packed average[3];
        Packed lower[3];
        Packed upper[3];
        average[0].i_Import(&matrix);
        average[1].i_Import(true, n, full.data());
        average[2].i_Import(false, n, full.data());
        lower[0].il_Import_Lower_part_of(&matrix);
        lower[1].il_Import_Lower_part_of(true, n, full.data());
        lower[2].il_Import_Lower_part_of(false, n, columnwise.data());
        upper[0].iu_Import_Upper_part_of(&matrix);
        upper[1].iu_Import_Upper_part_of(true, n, full.data());
        upper[2].iu_Import_Upper_part_of(false, n, columnwise.data());
        const auto stored = stored_positions(true, n, n);
        for (int form = 0; form < 3; ++form) {
            ASSERT_EQ(lower[form].vs(), static_cast<int>(stored.size()));
            for (int i = 0; i + 1 < n * (n + 1) / 2; ++i) {
                const Position at = stored[std::size_t(i)];
                const Real below = full[std::size_t(at.y * n + at.x)];
                const Real above = full[std::size_t(at.x * n + at.y)];
                if (below != below) continue;
                EXPECT_EQ(lower[form][i], below);
                EXPECT_EQ(upper[form][i], above);
                EXPECT_EQ(average[form][i], (below + above) * Real(0.5));
            }
            EXPECT_NE(average[form][n - 1], average[form][n - 1]);
            EXPECT_NE(lower[form][n - 1], lower[form][n - 1]);
        }
    }
}

TYPED_TEST(SymmetricTest, Refusals) {
    using Real = typename TypeParam::Real;
    typename TypeParam::Packed s;
    s.c_Create(3, 3, Real(4));
    const auto before = s;
    const std::pair<int, int> shapes[] = {
        {3, 4}, {0, 0}, {-2, -2}, {65536, 65536}, {INT_MAX, INT_MAX}, {INT_MIN, INT_MIN}};
    for (const auto& [height, width] : shapes) {
        SCOPED_TRACE(height);
        s.c_Create(height, width, Real(-1));
        EXPECT_EQ(failures_of(s), kRefused);
        EXPECT_TRUE(s == before);
    }
    s.i_Import(true, 0, nullptr);
    EXPECT_EQ(failures_of(s), kRefused + "\ni_Import: 1");
    s.il_Import_Lower_part_of(true, -3, nullptr);
    EXPECT_EQ(failures_of(s), kRefused + "\nil_Import_Lower_part_of: 1");
    s.iu_Import_Upper_part_of(false, 70000, nullptr);
    EXPECT_EQ(failures_of(s), kRefused + "\niu_Import_Upper_part_of: 1");
    nequar::Matrix<Real> dense;
    s.i_Import(&dense);
    EXPECT_EQ(failures_of(s), kRefused + "\ni_Import: 1");
    dense.c_Create(3, 2, Real(1));
    s.i_Import(&dense);
    EXPECT_EQ(failures_of(s), "i_Import<CNqMatrix>: 1");
    s.il_Import_Lower_part_of(&dense);
    EXPECT_EQ(failures_of(s), "il_Import_Lower_part_of <CNqMatrix>: 1");
    s.iu_Import_Upper_part_of(&dense);
    EXPECT_EQ(failures_of(s), "iu_Import_Upper_part_of <CNqMatrix>: 1");
    int x = 7;
    int y = 7;
    for (const int index : {-1, 6, INT_MIN, INT_MAX}) {
        s.fp_Find_Position_of_element(index, x, y);
        EXPECT_EQ(failures_of(s), "fp_Find_Position_of_element: 1");
    }
    EXPECT_EQ(x, 7);
    EXPECT_EQ(y, 7);
    EXPECT_TRUE(s == before);
}

// A moved-from matrix, and one whose vector was shortened.
TYPED_TEST(SymmetricTest, RowsThatAreNotThere) {
    using Real = typename TypeParam::Real;
    auto s = numbered_symmetric<TypeParam>(4);
    auto shortened = s;
    const auto taken = std::move(s);
    static_cast<nequar::Vector<Real>&>(shortened).c_Create(9);
    for (auto* const broken : {&s, &shortened}) {
        Real out[4] = {-1, -1, -1, -1};
        int first = -1;
        int last = -1;
        broken->gr_Get_Row(0, out, first, last);
        EXPECT_EQ(failures_of(*broken), "gr_Get_Row: 2");
        broken->gc_Get_Column(0, out, first, last);
        EXPECT_EQ(failures_of(*broken), "gc_Get_Column: 2");
        EXPECT_EQ(first, -1);
        EXPECT_EQ(out[0], Real(-1));
    }
}

}  // namespace
