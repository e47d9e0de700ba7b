// Diagonal, symmetric, triangular and band matrices: every element, band, row and column, import
// and export against a plain enumeration of what is stored, with packed element i = i + 1.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <limits>
#include <utility>

#include "structured/packed_support.h"

namespace {

using namespace packed_test;

template <class Kind>
struct Enumerated {
    using Real = typename Kind::Real;
    int height, width;
    std::vector<Position> stored = {};
    typename Kind::Packed packed = {};
    // Where the element at column x and row y is stored; -1 where it is not.
    int index(int x, int y) const {
        if (is_mirrored<Kind> && x > y) std::swap(x, y);
        for (std::size_t i = 0; i < stored.size(); ++i)
            if (stored[i].x == x && stored[i].y == y) return static_cast<int>(i);
        return -1;
    }
    // The dense matrix that the packed elements stand for.
    std::vector<Real> dense(Real outside) const {
        std::vector<Real> elements;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                elements.push_back(index(x, y) < 0 ? outside : Real(index(x, y) + 1));
        return elements;
    }
};

// Band after band from the lowest sub-diagonal on, each by increasing min(x, y).
std::vector<Position> band_positions(int height, int width, int p, int q) {
    std::vector<Position> positions;
    for (int d = -p; d <= q; ++d)
        for (int i = 0; i < std::max(height, width); ++i) {
            const Position at = {i + std::max(d, 0), i + std::max(-d, 0)};
            if (at.x < width && at.y < height) positions.push_back(at);
        }
    return positions;
}

// Every shape up to 7 x 7, for bands with every width.
template <class Kind, class Check>
void for_every_shape(const Check& check) {
    const auto numbered = [&check](Enumerated<Kind>& e) {
        ASSERT_EQ(e.packed.vs(), static_cast<int>(e.stored.size()));
        for (int i = 0; i < e.packed.vs(); ++i) e.packed[i] = typename Kind::Real(i + 1);
        check(e);
    };
    for (int height = 1; height <= 7; ++height)
        for (int width = 1; width <= 7; ++width) {
            if (is_mirrored<Kind> && height != width) continue;
            SCOPED_TRACE(std::to_string(height) + " x " + std::to_string(width));
            Enumerated<Kind> e{height, width};
            for (int p = 0; is_band<Kind> && p < height; ++p)
                for (int q = 0; q < (is_mirrored<Kind> ? 1 : width); ++q) {
                    SCOPED_TRACE("bands " + std::to_string(p) + ", " + std::to_string(q));
                    if constexpr (is_band_symmetric<Kind>) {
                        e.packed.c_Create(height, p);
                        std::erase_if(e.stored = stored_positions(true, height, height),
                                      [p](Position at) { return at.y - at.x > p; });
                    } else if constexpr (is_band<Kind>) {
                        e.packed.c_Create(height, width, p, q);
                        e.stored = band_positions(height, width, p, q);
                    }
                    numbered(e);
                }
            if constexpr (!is_band<Kind>) {
                e.stored = stored_positions(is_lower<Kind> || is_symmetric<Kind>, height, width);
                if (is_diagonal<Kind>) e.stored.resize(std::size_t(std::min(height, width)));
                e.packed.c_Create(height, width);
                numbered(e);
            }
        }
}

template <class Kind>
class Layout : public testing::Test {};
template <class Kind>
class LinesOfLayout : public testing::Test {};
template <class Kind>
class PackedLayout : public testing::Test {};
template <class Kind>
class ShortenedLayout : public testing::Test {};
using Kinds = testing::Types<Diagonal, DiagonalFloat, Symmetric, SymmetricFloat, Lower, LowerFloat,
                             Upper, UpperFloat>;
using AllKinds = testing::Types<Diagonal, DiagonalFloat, Symmetric, SymmetricFloat, Lower,
                                LowerFloat, Upper, UpperFloat, Band<double>, Band<float>,
                                BandSymmetric<double>, BandSymmetric<float>>;
using KindsWithLines =
    testing::Types<Symmetric, SymmetricFloat, Lower, LowerFloat, Upper, UpperFloat, Band<double>,
                   Band<float>, BandSymmetric<double>, BandSymmetric<float>>;
TYPED_TEST_SUITE(Layout, AllKinds);
TYPED_TEST_SUITE(LinesOfLayout, KindsWithLines);
TYPED_TEST_SUITE(PackedLayout, Kinds);
using Triangles = testing::Types<Symmetric, SymmetricFloat, Lower, LowerFloat, Upper, UpperFloat>;
TYPED_TEST_SUITE(ShortenedLayout, Triangles);

TYPED_TEST(Layout, ElementsAndBands) {
    using Real = typename TypeParam::Real;
    for_every_shape<TypeParam>([](const Enumerated<TypeParam>& e) {
        for (int position = 0; position < e.height * e.width; ++position) {
            const int x = position % e.width;
            const int y = position / e.width;
            const int x_given = x - 3 * e.width;  // coordinates wrap
            const int y_given = y + 2 * e.height;
            const int index = e.index(x, y);
            const auto failure = [index](const std::string& of_diagonal,
                                         const std::string& of_others) {
                return index >= 0 ? "" : is_diagonal<TypeParam> ? of_diagonal : of_others;
            };
            // A band matrix tells the two sides apart.
            const bool has_sides = is_band<TypeParam> && !is_mirrored<TypeParam>;
            const std::string fi =
                std::string("fi_Find_Index_of_element: ") + (has_sides && x > y ? "2" : "1");
            const std::string fib =
                std::string("fib_Find_Index_range_of_a_Band: ") + (has_sides && x < y ? "2" : "1");
            const auto distance = [](int column, int row) {
                return is_mirrored<TypeParam> ? std::abs(column - row) : column - row;
            };
            auto t = e.packed;
            EXPECT_EQ(t.ge_Get_Element(x_given, y_given), Real(index + 1));
            EXPECT_EQ(failures_of(t), failure("", fi));
            t.se_Set_Element(x_given, y_given, Real(-1));
            EXPECT_EQ(failures_of(t), failure("se_Set_Element: 1", fi));
            auto expected = e.packed;
            if (index >= 0) expected[index] = Real(-1);
            EXPECT_TRUE(t == expected);

            // The whole band: what is stored at the same distance from the diagonal.
            std::vector<int> band;
            for (int i = 0; index >= 0 && i < t.vs(); ++i) {
                const Position at = e.stored[std::size_t(i)];
                if (distance(at.x, at.y) == distance(x, y)) band.push_back(i);
            }
            const int length = band.empty() ? -1 : static_cast<int>(band.size());
            std::vector<Real> out(8, Real(-1));
            int count = -1;
            t = e.packed;
            t.gb_Get_Band(x_given, y_given, out.data(), count);
            EXPECT_EQ(failures_of(t), failure("gb_Get_Band: 1", fib));
            EXPECT_EQ(count, length);
            for (std::size_t k = 0; k < band.size(); ++k) EXPECT_EQ(out[k], Real(band[k] + 1));
            EXPECT_EQ(out[band.size()], Real(-1));
            count = -1;
            t.sb_Set_Band(x_given, y_given, Real(50), count);
            EXPECT_EQ(failures_of(t), failure("sb_Set_Band: 1", fib));
            EXPECT_EQ(count, length);
            expected = e.packed;
            for (const int i : band) expected[i] = Real(50);
            EXPECT_TRUE(t == expected);
            t.sb_Set_Band(x_given, y_given, out.data(), count);
            EXPECT_EQ(count, length);
            EXPECT_TRUE(t == e.packed);

            if constexpr (!is_diagonal<TypeParam>) {
                int a = x_given;
                int b = y_given;
                int found = -1;
                t.fi_Find_Index_of_element(a, b, found);
                EXPECT_EQ(found, index);
                EXPECT_TRUE(a == x && b == y);
                int first = -1;
                int last = -1;
                t.fib_Find_Index_range_of_a_Band(a, b, first, last);
                EXPECT_EQ(first, band.empty() ? -1 : band.front());
                EXPECT_EQ(last, band.empty() ? -1 : band.back());
                if (index < 0) continue;
                t.fp_Find_Position_of_element(index, a, b);
                EXPECT_EQ(e.index(a, b), index);
                EXPECT_TRUE(!is_mirrored<TypeParam> || a <= b);
            }
        }
    });
}

TYPED_TEST(LinesOfLayout, RowsAndColumns) {
    using Real = typename TypeParam::Real;
    for_every_shape<TypeParam>([](const Enumerated<TypeParam>& e) {
        for (int which = 0; which < e.height + e.width; ++which) {
            const bool of_row = which < e.height;
            const int line = of_row ? which : which - e.height;
            const int lines = of_row ? e.height : e.width;
            const int length = of_row ? e.width : e.height;
            SCOPED_TRACE((of_row ? "row " : "column ") + std::to_string(line));
            std::vector<int> indices;
            std::vector<Real> wanted(8, Real(-1));
            int first_kept = -1;
            int last_kept = -1;
            for (int i = 0; i < length; ++i) {
                indices.push_back(of_row ? e.index(i, line) : e.index(line, i));
                wanted[std::size_t(i)] = Real(indices.back() + 1);
                if (indices.back() < 0) continue;
                first_kept = first_kept < 0 ? i : first_kept;
                last_kept = i;
            }
            if (first_kept < 0) wanted.assign(8, Real(-1));
            const std::string failure = first_kept >= 0 ? ""
                                        : of_row        ? "fvr_Find_Valid_range_of_Row: 1"
                                                        : "fvc_Find_Valid_range_of_Column: 1";
            auto t = e.packed;
            int first = -1;
            int last = -1;
            const auto expect_answer = [&] {
                EXPECT_EQ(failures_of(t), failure);
                EXPECT_EQ(first, first_kept);
                EXPECT_EQ(last, last_kept);
                first = last = -1;
            };
            std::vector<Real> out(8, Real(-1));
            of_row ? t.gr_Get_Row(line + lines, out.data(), first, last)
                   : t.gc_Get_Column(line - lines, out.data(), first, last);
            expect_answer();
            EXPECT_EQ(out, wanted);
            if constexpr (!is_mirrored<TypeParam>) {
                int wrapped = line - lines;
                of_row ? t.fvr_Find_Valid_range_of_Row(wrapped, first, last)
                       : t.fvc_Find_Valid_range_of_Column(wrapped, first, last);
                expect_answer();
                EXPECT_EQ(wrapped, line);
                auto expected = e.packed;
                for (int i = 0; i < length; ++i) {
                    out[std::size_t(i)] = Real(100 + i);
                    if (indices[std::size_t(i)] >= 0)
                        expected[indices[std::size_t(i)]] = Real(100 + i);
                }
                of_row ? t.sr_Set_Row(line, out.data(), first, last)
                       : t.sc_Set_Column(line, out.data(), first, last);
                expect_answer();
                EXPECT_TRUE(t == expected);
                for (const int i : indices)
                    if (i >= 0) expected[i] = 9;
                of_row ? t.sr_Set_Row(line, Real(9), first, last)
                       : t.sc_Set_Column(line, Real(9), first, last);
                expect_answer();
                EXPECT_TRUE(t == expected);
            }
        }
    });
}

TYPED_TEST(PackedLayout, ImportAndExport) {
    using Real = typename TypeParam::Real;
    using Packed = typename TypeParam::Packed;
    for_every_shape<TypeParam>([](const Enumerated<TypeParam>& e) {
        const int h = e.height;
        const int w = e.width;
        const auto full = numbered<Real>(h, w);
        const auto columnwise = transposed(h, w, full);
        const auto matrix = dense_of(h, w, full);
        const auto& t = e.packed;
        int height = 0;
        int width = 0;
        if constexpr (is_symmetric<TypeParam>) {
            Packed average[3], lower[3], upper[3];
            average[0].i_Import(&matrix);
            average[1].i_Import(true, h, full.data());
            average[2].i_Import(false, h, full.data());
            lower[0].il_Import_Lower_part_of(&matrix);
            lower[1].il_Import_Lower_part_of(true, h, full.data());
            lower[2].il_Import_Lower_part_of(false, h, columnwise.data());
            upper[0].iu_Import_Upper_part_of(&matrix);
            upper[1].iu_Import_Upper_part_of(true, h, full.data());
            upper[2].iu_Import_Upper_part_of(false, h, columnwise.data());
            for (int i = 0; i < 3 * t.vs(); ++i) {
                const Position at = e.stored[std::size_t(i / 3)];
                const Real below = full[std::size_t(at.y * h + at.x)];
                const Real above = full[std::size_t(at.x * h + at.y)];
                EXPECT_EQ(lower[i % 3][i / 3], below);
                EXPECT_EQ(upper[i % 3][i / 3], above);
                EXPECT_EQ(average[i % 3][i / 3], (below + above) * Real(0.5));
            }
            nequar::Matrix<Real> out;
            t.e_Export(&out);
            EXPECT_TRUE(out == dense_of(h, w, e.dense(0)));
            for (const bool row_major : {true, false}) {
                std::vector<Real> raw(full.size());
                t.e_Export(row_major, &height, raw.data());
                EXPECT_EQ(raw, e.dense(0));
                EXPECT_EQ(height, h);
            }
        } else {
            Packed from[3];
            from[0].i_Import(&matrix);
            from[1].i_Import(true, h, w, full.data());
            from[2].i_Import(false, h, w, columnwise.data());
            for (const Packed& p : from) {
                p.ms(width, height);
                ASSERT_TRUE(height == h && width == w && p.vs() == t.vs());
                for (int i = 0; i < t.vs(); ++i) {
                    const Position at = e.stored[std::size_t(i)];
                    EXPECT_EQ(p[i], full[std::size_t(at.y * w + at.x)]);
                }
            }
            for (const bool clear : {true, false}) {
                const auto expected = e.dense(clear ? 0 : 7);
                nequar::Matrix<Real> out;
                out.c_Create(h, w, 7);
                t.e_Export(&out, clear);
                EXPECT_TRUE(out == dense_of(h, w, expected));
                for (const bool row_major : {true, false}) {
                    std::vector<Real> raw(expected.size(), Real(7));
                    t.e_Export(row_major, &height, &width, raw.data(), clear);
                    EXPECT_EQ(raw, row_major ? expected : transposed(h, w, expected));
                    EXPECT_TRUE(height == h && width == w);
                }
            }
        }
        if constexpr (!is_symmetric<TypeParam> && !is_diagonal<TypeParam>) {
            // The symmetric matrix of which this is a triangle.
            auto exported = t;
            nequar::Matrix<Real> out;
            exported.es_Export_as_Symmetric_matrix(&out);
            EXPECT_TRUE(out.mh() == h && out.mw() == h);
            const std::string failure = h == w ? "" : "es_Export_as_Symmetric_matrix: 1";
            EXPECT_EQ(failures_of(exported), failure);
            std::vector<Real> raw(std::size_t(h * h), Real(7));
            auto expected = raw;
            for (int i = 0; h == w && i < t.vs(); ++i) {
                const Position at = e.stored[std::size_t(i)];
                expected[std::size_t(at.x * w + at.y)] = expected[std::size_t(at.y * w + at.x)] =
                    Real(i + 1);
            }
            for (const bool row_major : {true, false}) {
                height = -1;
                exported.es_Export_as_Symmetric_matrix(row_major, &height, raw.data());
                EXPECT_EQ(failures_of(exported), failure);
                EXPECT_EQ(height, h == w ? h : -1);
                EXPECT_EQ(raw, expected);
            }
            if (h == w) {
                EXPECT_TRUE(out == dense_of(h, w, expected));
            }
        }
    });
}

TYPED_TEST(PackedLayout, RefusedShapesChangeNothing) {
    using Real = typename TypeParam::Real;
    typename TypeParam::Packed t;
    t.c_Create(3, 3, Real(6));
    const auto before = t;
    std::vector<std::pair<int, int>> shapes = {{0, 0}, {0, 3}, {3, 0}, {-1, 4}, {4, INT_MIN}};
    // These have more stored elements than an int can count.
    if (!is_diagonal<TypeParam>) shapes.insert(shapes.end(), {{65536, 65536}, {INT_MAX, INT_MAX}});
    for (const auto& [height, width] : shapes) {
        SCOPED_TRACE(std::to_string(height) + " x " + std::to_string(width));
        std::string refused = kRefused;
        if (is_diagonal<TypeParam> && height < width)
            refused = "zivs_Initialize_and_Vector_Size: 2\nc_Create: 1";
        t.c_Create(height, width, Real(-1));
        EXPECT_EQ(failures_of(t), refused);
        if constexpr (is_symmetric<TypeParam>) {
            t.i_Import(true, std::min(height, width), nullptr);
        } else {
            t.i_Import(true, height, width, nullptr);
        }
        EXPECT_EQ(failures_of(t), refused + "\ni_Import: 1");
    }
    nequar::Matrix<Real> dense;
    t.i_Import(&dense);
    EXPECT_EQ(failures_of(t), kRefused + "\ni_Import: 1");
    EXPECT_TRUE(t == before);
    if constexpr (is_symmetric<TypeParam>) {
        t.c_Create(3, 4);
        EXPECT_EQ(failures_of(t), kRefused);
        t.il_Import_Lower_part_of(true, -3, nullptr);
        EXPECT_EQ(failures_of(t), kRefused + "\nil_Import_Lower_part_of: 1");
        t.iu_Import_Upper_part_of(false, 70000, nullptr);
        EXPECT_EQ(failures_of(t), kRefused + "\niu_Import_Upper_part_of: 1");
        dense.c_Create(3, 2, Real(1));
        t.i_Import(&dense);
        EXPECT_EQ(failures_of(t), "i_Import<CNqMatrix>: 1");
        t.il_Import_Lower_part_of(&dense);
        EXPECT_EQ(failures_of(t), "il_Import_Lower_part_of <CNqMatrix>: 1");
        t.iu_Import_Upper_part_of(&dense);
        EXPECT_EQ(failures_of(t), "iu_Import_Upper_part_of <CNqMatrix>: 1");
        EXPECT_TRUE(t == before);
        // The average of a NaN is one.
        dense.c_Create(2, 2, Real(1));
        dense[0][1] = std::numeric_limits<Real>::quiet_NaN();
        t.i_Import(&dense);
        EXPECT_NE(t[2], t[2]);
    } else {
        // Long but thin shapes store little.
        const bool tall = !is_lower<TypeParam>;
        t.c_Create(tall ? INT_MAX : 1, tall ? 1 : INT_MAX, Real(2));
        EXPECT_EQ(failures_of(t), "");
        EXPECT_EQ(t.vs(), 1);
        EXPECT_EQ(t.ge_Get_Element(0, 0), Real(2));
    }
#if !defined(__SANITIZE_ADDRESS__)  // which ends the process where memory is refused
    if constexpr (is_diagonal<TypeParam>) {
        t.c_Create(200000, INT_MAX, Real(5));
        dense.c_Create(1, 1, Real(3));
        t.e_Export(&dense, true);
        EXPECT_EQ(failures_of(t),
                  std::string(dense.gcn_Get_Class_Name().c_str()) + "::c_Create: 2\ne_Export: 1");
        EXPECT_EQ(dense[0][0], Real(3));
    }
#endif
}

// A moved-from matrix, and one whose vector was shortened.
TYPED_TEST(ShortenedLayout, LinesThatAreNotThere) {
    using Real = typename TypeParam::Real;
    typename TypeParam::Packed shortened;
    shortened.c_Create(4, 4, Real(2));
    auto moved_from = shortened;
    const auto taken = std::move(moved_from);
    static_cast<nequar::Vector<Real>&>(shortened).c_Create(9);
    for (auto* const t : {&shortened, &moved_from}) {
        const bool without_range = t == &moved_from && !is_symmetric<TypeParam>;
        Real out[4] = {-1, -1, -1, -1};
        int first = -1;
        int last = -1;
        t->gr_Get_Row(1, out, first, last);
        EXPECT_EQ(failures_of(*t),
                  without_range ? "fvr_Find_Valid_range_of_Row: 1" : "gr_Get_Row: 2");
        t->gc_Get_Column(1, out, first, last);
        EXPECT_EQ(failures_of(*t),
                  without_range ? "fvc_Find_Valid_range_of_Column: 1" : "gc_Get_Column: 2");
        for (const int index : {-1, t == &shortened ? 10 : 0, INT_MIN, INT_MAX}) {
            t->fp_Find_Position_of_element(index, first, last);
            EXPECT_EQ(failures_of(*t), "fp_Find_Position_of_element: 1");
        }
        EXPECT_TRUE(first == -1 && last == -1 && out[0] == Real(-1));
    }
    if constexpr (!is_symmetric<TypeParam>) {
        Real values[4] = {};
        int first = -1;
        int last = -1;
        shortened.sr_Set_Row(1, Real(1), first, last);
        EXPECT_EQ(failures_of(shortened), "sr_Set_Row: 2");
        shortened.sc_Set_Column(1, values, first, last);
        EXPECT_EQ(failures_of(shortened), "sc_Set_Column: 2");
        nequar::Matrix<Real> dense;
        shortened.es_Export_as_Symmetric_matrix(&dense);
        EXPECT_EQ(failures_of(shortened), "es_Export_as_Symmetric_matrix: 2");
        EXPECT_TRUE(first == -1 && dense.mh() == 0);
    }
}

}  // namespace
