#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <limits>
#include <sstream>
#include <utility>

#include "structured/packed_support.h"

namespace {

using namespace packed_test;

struct Double {
    using Real = double;
    using Packed = CNqMatrix_Symmetric;
    static constexpr const char* name = "CNqMatrix_Symmetric";
};
struct Float {
    using Real = float;
    using Packed = CNqMatrixFloat_Symmetric;
    static constexpr const char* name = "CNqMatrixFloat_Symmetric";
};

template <class Kind>
class Symmetric : public testing::Test {};
using Kinds = testing::Types<Double, Float>;
TYPED_TEST_SUITE(Symmetric, Kinds);

// Packed element i = i + 1.
template <class Kind>
typename Kind::Packed numbered_symmetric(int n) {
    typename Kind::Packed s;
    s.c_Create(n, n);
    for (int i = 0; i < s.vs(); ++i) s[i] = typename Kind::Real(i + 1);
    return s;
}

TYPED_TEST(Symmetric, EveryElementBandAndRow) {
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

TYPED_TEST(Symmetric, ImportsOfATriangleAndOfTheAverage) {
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

TYPED_TEST(Symmetric, Refusals) {
    using Real = typename TypeParam::Real;
    typename TypeParam::Packed s;
    EXPECT_STREQ(s.gcn_Get_Class_Name().c_str(), TypeParam::name);
    EXPECT_EQ(s.vs(), 1);
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

TYPED_TEST(Symmetric, CopiesMovesAndVectorsOfAnotherLength) {
    using Real = typename TypeParam::Real;
    using Packed = typename TypeParam::Packed;
    Packed s = numbered_symmetric<TypeParam>(4);
    const Packed original = s;
    s.cp_Copy(&s);
    EXPECT_TRUE(s == original);
    std::vector<Packed> several(2, s);
    several[0].se_Set_Element(0, 1, Real(-1));
    EXPECT_TRUE(s == original);
    EXPECT_FALSE(several[0] == s);
    several.push_back(std::move(s));
    EXPECT_TRUE(several[2] == original);
    EXPECT_EQ(s.vs() + s.mh() + s.mw(), 0);  // NOLINT: the state of a moved-from object is stated

    // Empty, and shorter than the shape: nothing is read or written out of range.
    Packed shortened = original;
    static_cast<nequar::Vector<Real>&>(shortened).c_Create(0);
    for (Packed* const broken : {&s, &shortened}) {
        Real out[4] = {-1, -1, -1, -1};
        int first = -1;
        int last = -1;
        EXPECT_EQ(broken->ge_Get_Element(0, -1), Real(0));
        EXPECT_EQ(failures_of(*broken), "fi_Find_Index_of_element: 2");
        broken->se_Set_Element(0, 0, Real(1));
        EXPECT_EQ(failures_of(*broken), "fi_Find_Index_of_element: 2");
        broken->gb_Get_Band(0, 0, out, first);
        EXPECT_EQ(failures_of(*broken), "fib_Find_Index_range_of_a_Band: 2");
        broken->sb_Set_Band(0, 0, out, first);
        EXPECT_EQ(failures_of(*broken), "fib_Find_Index_range_of_a_Band: 2");
        broken->gr_Get_Row(0, out, first, last);
        EXPECT_EQ(failures_of(*broken), "gr_Get_Row: 2");
        broken->gc_Get_Column(0, out, first, last);
        EXPECT_EQ(failures_of(*broken), "gc_Get_Column: 2");
        EXPECT_EQ(first, -1);
        EXPECT_EQ(out[0], Real(-1));
        std::ostringstream text;
        text << *broken;
    }
    nequar::Matrix<Real> dense;
    dense.c_Create(1, 1);
    shortened.e_Export(&dense);
    EXPECT_EQ(failures_of(shortened), "e_Export: 2");
    EXPECT_EQ(dense.mh(), 1);
    s.e_Export(&dense);
    EXPECT_EQ(failures_of(s), "");
    EXPECT_EQ(dense.mh(), 0);
    s = original;
    EXPECT_TRUE(s == original);
    shortened.c_Create(4, 4);
    shortened.cp_Copy(&original);
    EXPECT_TRUE(shortened == original);

    // A vector longer than the shape needs does no harm.
    static_cast<nequar::Vector<Real>&>(s).cp_Copy(&original);
    static_cast<nequar::Vector<Real>&>(s).c_Create(20, Real(3));
    EXPECT_EQ(s.ge_Get_Element(3, 3), Real(3));
    s.e_Export(&dense);
    EXPECT_EQ(dense[3][0], Real(3));
    EXPECT_EQ(failures_of(s), "");
}

TYPED_TEST(Symmetric, ArraysInsideTheObjectItself) {
    using Real = typename TypeParam::Real;
    const auto s = numbered_symmetric<TypeParam>(7);
    const std::vector<Real> elements(s.p(), s.p() + s.vs());
    for (const int n : {2, 5}) {
        for (int form = 0; form < 3; ++form) {
            auto inside = s;
            auto apart = s;
            const auto import = [&](auto& object, const Real* from) {
                if (form == 0) object.i_Import(true, n, from);
                if (form == 1) object.il_Import_Lower_part_of(true, n, from);
                if (form == 2) object.iu_Import_Upper_part_of(false, n, from);
            };
            import(inside, inside.p() + 3);
            import(apart, elements.data() + 3);
            EXPECT_TRUE(inside == apart);
        }
    }
    auto inside = s;
    std::vector<Real> expected(7);
    int first = 0;
    int last = 0;
    s.gr_Get_Row(4, expected.data(), first, last);
    inside.gr_Get_Row(4, inside.p() + 1, first, last);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), inside.p() + 1));
}

TYPED_TEST(Symmetric, PrintsLikeTheDenseMatrix) {
    for (const int n : {3, 20}) {
        const auto s = numbered_symmetric<TypeParam>(n);
        nequar::Matrix<typename TypeParam::Real> dense;
        s.e_Export(&dense);
        std::ostringstream packed_text;
        std::ostringstream dense_text;
        packed_text << s;
        dense_text << dense;
        EXPECT_EQ(packed_text.str(), dense_text.str());
    }
}

}  // namespace
