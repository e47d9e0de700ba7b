#include <gtest/gtest.h>

#include <climits>
#include <utility>

#include "structured/packed_support.h"

namespace {

using namespace packed_test;

template <class Kind>
class Triangular : public testing::Test {};

// Every shape up to 7 x 7, with packed element i = i + 1.
template <class Kind, class Check>
void for_every_shape(const Check& check) {
    for (int height = 1; height <= 7; ++height) {
        for (int width = 1; width <= 7; ++width) {
            SCOPED_TRACE(std::to_string(height) + " x " + std::to_string(width));
            typename Kind::Packed t;
            t.c_Create(height, width);
            const auto stored = stored_positions(is_lower<Kind>, height, width);
            ASSERT_EQ(t.vs(), static_cast<int>(stored.size()));
            for (int i = 0; i < t.vs(); ++i) t[i] = typename Kind::Real(i + 1);
            check(t, stored, height, width);
        }
    }
}

template <class Kind>
bool is_stored(int x, int y) {
    return is_lower<Kind> ? y >= x : x >= y;
}

// The dense matrix that packed elements i + 1 stand for, zeros outside.
template <class Real>
std::vector<Real> unpacked(const std::vector<Position>& stored, int height, int width) {
    std::vector<Real> elements(std::size_t(height * width));
    for (std::size_t i = 0; i < stored.size(); ++i)
        elements[std::size_t(stored[i].y * width + stored[i].x)] = Real(i + 1);
    return elements;
}

using Kinds = testing::Types<Lower, LowerFloat, Upper, UpperFloat>;
TYPED_TEST_SUITE(Triangular, Kinds);

TYPED_TEST(Triangular, ElementsLieInTheStatedOrder) {
    using Real = typename TypeParam::Real;
    for_every_shape<TypeParam>([](auto& t, const auto& stored, int height, int width) {
        for (int i = 0; i < t.vs(); ++i) {
            const Position at = stored[std::size_t(i)];
            int x = -1;
            int y = -1;
            t.fp_Find_Position_of_element(i, x, y);
            EXPECT_EQ(x, at.x);
            EXPECT_EQ(y, at.y);
            // Coordinates wrap, downwards and upwards.
            x = at.x - 3 * width;
            y = at.y + 2 * height;
            int index = -1;
            t.fi_Find_Index_of_element(x, y, index);
            EXPECT_EQ(index, i);
            EXPECT_EQ(x, at.x);
            EXPECT_EQ(y, at.y);
            EXPECT_EQ(t.ge_Get_Element(at.x, at.y), Real(i + 1));
            t.se_Set_Element(at.x - width, at.y, Real(-i));
            EXPECT_EQ(t[i], Real(-i));
        }
        EXPECT_EQ(failures_of(t), "");
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                if (is_stored<TypeParam>(x, y)) continue;
                const auto before = t;
                int a = x;
                int b = y;
                int index = 99;
                t.fi_Find_Index_of_element(a, b, index);
                EXPECT_EQ(index, 99);
                EXPECT_EQ(failures_of(t), "fi_Find_Index_of_element: 1");
                EXPECT_EQ(t.ge_Get_Element(x, y), Real(0));
                EXPECT_EQ(failures_of(t), "fi_Find_Index_of_element: 1");
                t.se_Set_Element(x, y, Real(5));
                EXPECT_EQ(failures_of(t), "fi_Find_Index_of_element: 1");
                EXPECT_TRUE(t == before);
            }
        }
    });
}

TYPED_TEST(Triangular, BandsAreWhole) {
    using Real = typename TypeParam::Real;
    for_every_shape<TypeParam>([](auto& t, const auto& stored, int height, int width) {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                std::vector<int> band;
                for (std::size_t i = 0; i < stored.size(); ++i)
                    if (stored[i].x - stored[i].y == x - y) band.push_back(static_cast<int>(i));
                int a = x + width;
                int b = y - height;
                int first = -1;
                int last = -1;
                int count = -1;
                std::vector<Real> out(8, Real(-1));
                t.fib_Find_Index_range_of_a_Band(a, b, first, last);
                if (!is_stored<TypeParam>(x, y)) {
                    EXPECT_EQ(failures_of(t), "fib_Find_Index_range_of_a_Band: 1");
                    EXPECT_EQ(first, -1);
                    t.gb_Get_Band(x, y, out.data(), count);
                    EXPECT_EQ(failures_of(t), "fib_Find_Index_range_of_a_Band: 1");
                    t.sb_Set_Band(x, y, Real(3), count);
                    EXPECT_EQ(failures_of(t), "fib_Find_Index_range_of_a_Band: 1");
                    EXPECT_EQ(count, -1);
                    EXPECT_EQ(out[0], Real(-1));
                    continue;
                }
                EXPECT_EQ(first, band.front());
                EXPECT_EQ(last, band.back());
                t.gb_Get_Band(x, y, out.data(), count);
                ASSERT_EQ(count, static_cast<int>(band.size()));
                for (std::size_t k = 0; k < band.size(); ++k) EXPECT_EQ(out[k], t[band[k]]);
                EXPECT_EQ(out[band.size()], Real(-1));

                auto expected = t;
                auto changed = t;
                for (const int i : band) expected[i] = Real(50);
                count = -1;
                changed.sb_Set_Band(x, y, Real(50), count);
                EXPECT_EQ(count, static_cast<int>(band.size()));
                EXPECT_TRUE(changed == expected);
                for (std::size_t k = 0; k < band.size(); ++k) expected[band[k]] = out[k] = Real(k);
                changed.sb_Set_Band(x, y, out.data(), count);
                EXPECT_TRUE(changed == expected);
            }
        }
    });
}

TYPED_TEST(Triangular, RowsAndColumns) {
    using Real = typename TypeParam::Real;
    for_every_shape<TypeParam>([](auto& t, const auto& stored, int height, int width) {
        const auto a = unpacked<Real>(stored, height, width);
        for (const bool of_row : {true, false}) {
            const int lines = of_row ? height : width;
            const int length = of_row ? width : height;
            for (int line = 0; line < lines; ++line) {
                SCOPED_TRACE((of_row ? "row " : "column ") + std::to_string(line));
                const auto at = [&](int i) {
                    return std::size_t(of_row ? line * width + i : i * width + line);
                };
                std::vector<int> kept;
                for (int i = 0; i < length; ++i)
                    if (of_row ? is_stored<TypeParam>(i, line) : is_stored<TypeParam>(line, i))
                        kept.push_back(i);
                const auto get = [&](int which, Real* out, int& first, int& last) {
                    of_row ? t.gr_Get_Row(which, out, first, last)
                           : t.gc_Get_Column(which, out, first, last);
                };
                int wrapped = line - lines;
                int first = -1;
                int last = -1;
                std::vector<Real> out(8, Real(-1));
                of_row ? t.fvr_Find_Valid_range_of_Row(wrapped, first, last)
                       : t.fvc_Find_Valid_range_of_Column(wrapped, first, last);
                EXPECT_EQ(wrapped, line);
                if (kept.empty()) {
                    const std::string failure = of_row ? "fvr_Find_Valid_range_of_Row: 1"
                                                       : "fvc_Find_Valid_range_of_Column: 1";
                    EXPECT_EQ(failures_of(t), failure);
                    get(line, out.data(), first, last);
                    EXPECT_EQ(failures_of(t), failure);
                    of_row ? t.sr_Set_Row(line, Real(4), first, last)
                           : t.sc_Set_Column(line, Real(4), first, last);
                    EXPECT_EQ(failures_of(t), failure);
                    EXPECT_EQ(first, -1);
                    EXPECT_EQ(out, std::vector<Real>(8, Real(-1)));
                    continue;
                }
                EXPECT_EQ(first, kept.front());
                EXPECT_EQ(last, kept.back());
                first = last = -1;
                get(line + lines, out.data(), first, last);
                EXPECT_EQ(first, kept.front());
                EXPECT_EQ(last, kept.back());
                for (int i = 0; i < length; ++i) EXPECT_EQ(out[std::size_t(i)], a[at(i)]);
                EXPECT_EQ(out[std::size_t(length)], Real(-1));

                auto changed = t;
                std::vector<Real> values(8);
                for (int i = 0; i < length; ++i) values[std::size_t(i)] = Real(100 + i);
                of_row ? changed.sr_Set_Row(line, values.data(), first, last)
                       : changed.sc_Set_Column(line, values.data(), first, last);
                auto expected = a;
                for (const int i : kept) expected[at(i)] = Real(100 + i);
                nequar::Matrix<Real> now;
                changed.e_Export(&now, true);
                EXPECT_TRUE(now == dense_of(height, width, expected));
                of_row ? changed.sr_Set_Row(line, Real(9), first, last)
                       : changed.sc_Set_Column(line, Real(9), first, last);
                for (const int i : kept) expected[at(i)] = Real(9);
                changed.e_Export(&now, true);
                EXPECT_TRUE(now == dense_of(height, width, expected));
            }
        }
    });
}

TYPED_TEST(Triangular, ImportAndExport) {
    using Real = typename TypeParam::Real;
    using Packed = typename TypeParam::Packed;
    for_every_shape<TypeParam>([](auto& t, const auto& stored, int height, int width) {
        // Import: the triangle of a full matrix, from both layouts and from an object.
        const auto full = numbered<Real>(height, width);
        const auto columnwise = transposed(height, width, full);
        const auto matrix = dense_of(height, width, full);
        Packed from_matrix;
        Packed from_rows;
        Packed from_columns;
        from_matrix.i_Import(&matrix);
        from_rows.i_Import(true, height, width, full.data());
        from_columns.i_Import(false, height, width, columnwise.data());
        ASSERT_EQ(from_matrix.vs(), t.vs());
        EXPECT_EQ(from_matrix.mh(), height);
        EXPECT_EQ(from_matrix.mw(), width);
        for (int i = 0; i < t.vs(); ++i) {
            const Position at = stored[std::size_t(i)];
            EXPECT_EQ(from_matrix[i], full[std::size_t(at.y * width + at.x)]);
        }
        EXPECT_TRUE(from_rows == from_matrix);
        EXPECT_TRUE(from_columns == from_matrix);

        // Export, with and without clearing what is outside.
        const auto a = unpacked<Real>(stored, height, width);
        for (const bool clear : {true, false}) {
            auto expected = a;
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x)
                    if (!clear && !is_stored<TypeParam>(x, y))
                        expected[std::size_t(y * width + x)] = 7;
            nequar::Matrix<Real> out;
            out.c_Create(height, width, 7);
            t.e_Export(&out, clear);
            EXPECT_TRUE(out == dense_of(height, width, expected));
            std::vector<Real> raw(expected.size(), Real(7));
            int h = 0;
            int w = 0;
            t.e_Export(true, &h, &w, raw.data(), clear);
            EXPECT_EQ(raw, expected);
            EXPECT_EQ(h, height);
            EXPECT_EQ(w, width);
            raw.assign(raw.size(), Real(7));
            t.e_Export(false, &h, &w, raw.data(), clear);
            EXPECT_EQ(raw, transposed(height, width, expected));
        }

        // The symmetric matrix of which this is a triangle.
        nequar::Matrix<Real> out;
        std::vector<Real> raw(std::size_t(height * height), Real(7));
        int n = -1;
        t.es_Export_as_Symmetric_matrix(&out);
        EXPECT_EQ(out.mh(), height);
        EXPECT_EQ(out.mw(), height);
        if (height != width) {
            EXPECT_EQ(failures_of(t), "es_Export_as_Symmetric_matrix: 1");
            t.es_Export_as_Symmetric_matrix(true, &n, raw.data());
            EXPECT_EQ(failures_of(t), "es_Export_as_Symmetric_matrix: 1");
            EXPECT_EQ(n, -1);
            EXPECT_EQ(raw, std::vector<Real>(raw.size(), Real(7)));
            return;
        }
        auto expected = a;
        for (const auto& at : stored)
            expected[std::size_t(at.x * width + at.y)] = a[std::size_t(at.y * width + at.x)];
        EXPECT_TRUE(out == dense_of(height, width, expected));
        for (const bool row_major : {true, false}) {
            t.es_Export_as_Symmetric_matrix(row_major, &n, raw.data());
            EXPECT_EQ(n, height);
            EXPECT_EQ(raw, expected);
        }
    });
}

TYPED_TEST(Triangular, RefusedShapesChangeNothing) {
    using Real = typename TypeParam::Real;
    typename TypeParam::Packed t;
    t.c_Create(3, 2, Real(6));
    const auto before = t;
    // The last ones have more stored elements than an int can count.
    const std::pair<int, int> shapes[] = {
        {0, 0}, {0, 3}, {3, 0}, {-1, 4}, {4, INT_MIN}, {-1, 1}, {65536, 65536}, {INT_MAX, INT_MAX}};
    for (const auto& [height, width] : shapes) {
        SCOPED_TRACE(std::to_string(height) + " x " + std::to_string(width));
        t.c_Create(height, width, Real(-1));
        EXPECT_EQ(failures_of(t), kRefused);
        t.i_Import(true, height, width, nullptr);
        EXPECT_EQ(failures_of(t), kRefused + "\ni_Import: 1");
        EXPECT_TRUE(t == before);
    }
    is_lower<TypeParam> ? t.c_Create(INT_MAX, 2) : t.c_Create(2, INT_MAX);
    EXPECT_EQ(failures_of(t), kRefused);
    const nequar::Matrix<Real> empty;
    t.i_Import(&empty);
    EXPECT_EQ(failures_of(t), kRefused + "\ni_Import: 1");
    int x = 7;
    int y = 7;
    for (const int index : {-1, t.vs(), INT_MIN, INT_MAX}) {
        t.fp_Find_Position_of_element(index, x, y);
        EXPECT_EQ(failures_of(t), "fp_Find_Position_of_element: 1");
    }
    EXPECT_EQ(x, 7);
    EXPECT_EQ(y, 7);
    EXPECT_TRUE(t == before);
    // Long but thin shapes store one line only.
    is_lower<TypeParam> ? t.c_Create(1, INT_MAX) : t.c_Create(INT_MAX, 1);
    EXPECT_EQ(failures_of(t), "");
    EXPECT_EQ(t.vs(), 1);
    t.se_Set_Element(0, 0, Real(2));
    EXPECT_EQ(t[0], Real(2));
}

// A moved-from matrix, and one whose vector was shortened.
TYPED_TEST(Triangular, LinesThatAreNotThere) {
    using Real = typename TypeParam::Real;
    typename TypeParam::Packed t;
    t.c_Create(4, 4, Real(2));
    const auto taken = std::move(t);
    Real out[4] = {-1, -1, -1, -1};
    int first = -1;
    int last = -1;
    t.gr_Get_Row(0, out, first, last);
    EXPECT_EQ(failures_of(t), "fvr_Find_Valid_range_of_Row: 1");
    t.gc_Get_Column(0, out, first, last);
    EXPECT_EQ(failures_of(t), "fvc_Find_Valid_range_of_Column: 1");
    t.fp_Find_Position_of_element(0, first, last);
    EXPECT_EQ(failures_of(t), "fp_Find_Position_of_element: 1");
    t.c_Create(4, 4);
    static_cast<nequar::Vector<Real>&>(t).c_Create(9);
    t.gr_Get_Row(1, out, first, last);
    EXPECT_EQ(failures_of(t), "gr_Get_Row: 2");
    t.gc_Get_Column(1, out, first, last);
    EXPECT_EQ(failures_of(t), "gc_Get_Column: 2");
    t.sr_Set_Row(1, Real(1), first, last);
    EXPECT_EQ(failures_of(t), "sr_Set_Row: 2");
    t.sc_Set_Column(1, out, first, last);
    EXPECT_EQ(failures_of(t), "sc_Set_Column: 2");
    EXPECT_EQ(first, -1);
    EXPECT_EQ(out[0], Real(-1));
    nequar::Matrix<Real> dense;
    t.es_Export_as_Symmetric_matrix(&dense);
    EXPECT_EQ(failures_of(t), "es_Export_as_Symmetric_matrix: 2");
    EXPECT_EQ(dense.mh(), 0);
}

}  // namespace
