#include <gtest/gtest.h>

#include <climits>
#include <utility>

#include "structured/packed_support.h"

namespace {

using namespace packed_test;

template <class Kind>
class DiagonalTest : public testing::Test {};
using Kinds = testing::Types<Diagonal, DiagonalFloat>;
TYPED_TEST_SUITE(DiagonalTest, Kinds);

TYPED_TEST(DiagonalTest, EveryShape) {
    using Real = typename TypeParam::Real;
    for (int height = 1; height <= 5; ++height) {
        for (int width = 1; width <= 5; ++width) {
            SCOPED_TRACE(std::to_string(height) + " x " + std::to_string(width));
            const int length = std::min(height, width);
            const auto full = numbered<Real>(height, width);
            const auto columnwise = transposed(height, width, full);
            const auto matrix = dense_of(height, width, full);
            typename TypeParam::Packed d;
            typename TypeParam::Packed from_rows;
            typename TypeParam::Packed from_columns;
            d.i_Import(&matrix);
            from_rows.i_Import(true, height, width, full.data());
            from_columns.i_Import(false, height, width, columnwise.data());
            ASSERT_EQ(d.vs(), length);
            EXPECT_TRUE(from_rows == d);
            EXPECT_TRUE(from_columns == d);
            int w = 0;
            int h = 0;
            d.ms(w, h);
            EXPECT_EQ(w, width);
            EXPECT_EQ(h, height);

            for (int y = -height; y < 2 * height; ++y) {
                for (int x = -width; x < 2 * width; ++x) {
                    const int column = (x + width) % width;
                    const int row = (y + height) % height;
                    const bool is_on = column == row;
                    const Real held = is_on ? full[std::size_t(row * width + row)] : Real(0);
                    EXPECT_EQ(d.ge_Get_Element(x, y), held);
                    EXPECT_EQ(failures_of(d), "");
                    auto changed = d;
                    changed.se_Set_Element(x, y, Real(-1));
                    EXPECT_EQ(failures_of(changed), is_on ? "" : "se_Set_Element: 1");
                    auto expected = d;
                    if (is_on) expected[row] = Real(-1);
                    EXPECT_TRUE(changed == expected);

                    int count = -1;
                    std::vector<Real> band(6, Real(-1));
                    d.gb_Get_Band(x, y, band.data(), count);
                    EXPECT_EQ(failures_of(d), is_on ? "" : "gb_Get_Band: 1");
                    EXPECT_EQ(count, is_on ? length : -1);
                    for (int i = 0; is_on && i < length; ++i) EXPECT_EQ(band[std::size_t(i)], d[i]);
                    EXPECT_EQ(band[std::size_t(is_on ? length : 0)], Real(-1));
                    changed = d;
                    count = -1;
                    changed.sb_Set_Band(x, y, Real(9), count);
                    EXPECT_EQ(failures_of(changed), is_on ? "" : "sb_Set_Band: 1");
                    EXPECT_EQ(changed[length - 1], is_on ? Real(9) : d[length - 1]);
                    changed.sb_Set_Band(x, y, band.data(), count);
                    EXPECT_EQ(failures_of(changed), is_on ? "" : "sb_Set_Band: 1");
                    EXPECT_EQ(count, is_on ? length : -1);
                    EXPECT_TRUE(changed == d);
                }
            }

            for (const bool zero_fill : {true, false}) {
                std::vector<Real> expected(full.size(), Real(zero_fill ? 0 : 7));
                for (int i = 0; i < length; ++i) expected[std::size_t(i * (width + 1))] = d[i];
                nequar::Matrix<Real> out;
                out.c_Create(height, width, Real(7));
                d.e_Export(&out, zero_fill);
                EXPECT_TRUE(out == dense_of(height, width, expected));
                std::vector<Real> raw(full.size(), Real(7));
                d.e_Export(true, &h, &w, raw.data(), zero_fill);
                EXPECT_EQ(raw, expected);
                EXPECT_EQ(h, height);
                EXPECT_EQ(w, width);
                raw.assign(raw.size(), Real(7));
                d.e_Export(false, &h, &w, raw.data(), zero_fill);
                EXPECT_EQ(raw, transposed(height, width, expected));
            }
        }
    }
}

TYPED_TEST(DiagonalTest, Refusals) {
    using Real = typename TypeParam::Real;
    typename TypeParam::Packed d;
    d.c_Create(2, 3, Real(4));
    const auto before = d;
    const std::string height_refused = "zivs_Initialize_and_Vector_Size: 2\nc_Create: 1";
    const std::pair<int, int> shapes[] = {{0, 3}, {3, 0}, {0, 0}, {INT_MIN, 1}, {1, INT_MIN}};
    for (const auto& [height, width] : shapes) {
        SCOPED_TRACE(height);
        const std::string refused = height < width ? height_refused : kRefused;
        d.c_Create(height, width, Real(-1));
        EXPECT_EQ(failures_of(d), refused);
        d.i_Import(true, height, width, nullptr);
        EXPECT_EQ(failures_of(d), refused + "\ni_Import: 1");
        EXPECT_TRUE(d == before);
    }
    const nequar::Matrix<Real> empty;
    d.i_Import(&empty);
    EXPECT_EQ(failures_of(d), kRefused + "\ni_Import: 1");
    EXPECT_TRUE(d == before);

    // A thin matrix has a short diagonal, and no dense form.
    d.c_Create(1, INT_MAX, Real(5));
    EXPECT_EQ(d.ge_Get_Element(INT_MAX, INT_MIN), Real(5));
#if !defined(__SANITIZE_ADDRESS__)  // which ends the process where memory is refused
    d.c_Create(200000, INT_MAX, Real(5));
    nequar::Matrix<Real> dense;
    dense.c_Create(1, 1, Real(3));
    d.e_Export(&dense, true);
    EXPECT_EQ(failures_of(d),
              std::string(dense.gcn_Get_Class_Name().c_str()) + "::c_Create: 2\ne_Export: 1");
    EXPECT_EQ(dense[0][0], Real(3));
#endif
}

}  // namespace
