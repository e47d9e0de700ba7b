// Packed matrices of every shape up to 7 x 7 with every bandwidth: where the elements are stored;
// every import and export; shapes that are refused.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <limits>

#include "structured/packed_model.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"

namespace {

using namespace packed_test;
using nequar::test::matrix_of;
using nequar::test::transposed;

template <class Kind>
class Layout : public testing::Test {};
TYPED_TEST_SUITE(Layout, AllKinds);

template <class Kind, class Check>
void for_every_shape(const Check& check) {
    for (int height = 1; height <= 7; ++height)
        for (int width = 1; width <= 7; ++width)
            for (int p = 0; p < (Kind::is_band || Kind::is_band_symmetric ? height : 1); ++p)
                for (int q = 0; q < (Kind::is_band ? width : 1); ++q) {
                    if (Kind::is_mirrored && height != width) continue;
                    SCOPED_TRACE(testing::Message()
                                 << height << " x " << width << ", bands " << p << ' ' << q);
                    try {
                        check(Shape{height, width, p, q});
                    } catch (const nequar::fuzz::Fault& fault) {
                        FAIL() << fault.what();
                    }
                }
}

// From the lowest sub-diagonal on of a band matrix, else from the diagonal on; of symmetric ones
// one half.
TYPED_TEST(Layout, ElementsAreStoredBandAfterBand) {
    using Real = typename TypeParam::Real;
    for_every_shape<TypeParam>([](const Shape& given) {
        PackedModel<TypeParam> model;
        model.create(given, Real(3));
        model.check();
        const Shape s = model.shape;
        const int last = TypeParam::is_band ? s.q : std::max(s.p, s.q);
        int count = 0;
        for (int d = TypeParam::is_band ? -s.p : 0; d <= last; ++d)
            for (const auto& [x, y] : diagonal_of(s, TypeParam::is_lower ? -d : d)) {
                ASSERT_LT(count, model.m.vs());
                model.m[count] = model.at(x, y) = Real(count + 1);
                ++count;
            }
        ASSERT_EQ(model.m.vs(), count);
        model.check();
    });
}

TYPED_TEST(Layout, Imports) {
    using Real = typename TypeParam::Real;
    using Packed = typename TypeParam::Packed;
    for_every_shape<TypeParam>([](const Shape& s) {
        const int h = s.height, w = s.width;
        const auto dense = matrix_of<Real>(h, w, [&](int i, int j) { return 1 + i * w + j; });
        const auto columnwise = transposed(dense);
        const Real *const by_rows = dense.p()[0], *const by_columns = columnwise.p()[0];
        Packed plain[3], lower[3], upper[3];
        for (Packed& packed : plain) TypeParam::create(packed, s);
        TypeParam::with_bands(s, [&](auto... bands) {
            plain[0].i_Import(&dense, bands...);
            if constexpr (TypeParam::is_mirrored) {
                plain[1].i_Import(true, h, by_rows, bands...);
                plain[2].i_Import(false, h, by_columns, bands...);
                lower[0].il_Import_Lower_part_of(&dense, bands...);
                lower[1].il_Import_Lower_part_of(true, h, by_rows, bands...);
                lower[2].il_Import_Lower_part_of(false, h, by_columns, bands...);
                upper[0].iu_Import_Upper_part_of(&dense, bands...);
                upper[1].iu_Import_Upper_part_of(true, h, by_rows, bands...);
                upper[2].iu_Import_Upper_part_of(false, h, by_columns, bands...);
            } else {
                plain[1].i_Import(true, h, w, by_rows, bands...);
                plain[2].i_Import(false, h, w, by_columns, bands...);
            }
        });
        const Shape limited = TypeParam::limited(s);
        const auto expected = [&](const auto& element) {
            return matrix_of<Real>(
                h, w, [&](int i, int j) { return limited.has(j, i) ? element(i, j) : Real(0); });
        };
        const auto expect_all = [](const Packed(&all)[3], const auto& matrix) {
            for (const Packed& packed : all) EXPECT_TRUE(TypeParam::exported(packed) == matrix);
        };
        if constexpr (TypeParam::is_mirrored) {
            using std::max, std::min;
            const auto below = [&](int i, int j) { return dense[max(i, j)][min(i, j)]; };
            const auto above = [&](int i, int j) { return dense[min(i, j)][max(i, j)]; };
            const auto average = [&](int i, int j) { return (below(i, j) + above(i, j)) / 2; };
            expect_all(plain, expected(average));
            expect_all(lower, expected(below));
            expect_all(upper, expected(above));
        } else {
            expect_all(plain, expected([&](int i, int j) { return dense[i][j]; }));
        }
        if constexpr (TypeParam::is_band_symmetric) {
            nequar::MatrixSymmetric<Real> symmetric;
            symmetric.i_Import(&dense);
            lower[0].i_Import(&symmetric, s.p);
            EXPECT_TRUE(lower[0] == plain[0]);
            lower[0].e_Export(&symmetric);
            lower[0].i_Import(&symmetric, h - 1);
            EXPECT_TRUE(TypeParam::exported(lower[0]) == TypeParam::exported(plain[0]));
        }
    });
}

TYPED_TEST(Layout, Exports) {
    using Real = typename TypeParam::Real;
    for_every_shape<TypeParam>([](const Shape& s) {
        const int h = s.height, w = s.width;
        const Shape limited = TypeParam::limited(s);
        typename TypeParam::Packed packed;
        TypeParam::create(packed, s);
        for (int i = 0; i < packed.vs(); ++i) packed[i] = Real(i + 1);
        const auto sevens = [](int rows, int columns) {
            return matrix_of<Real>(rows, columns, [](int, int) { return 7; });
        };
        for (const bool clear : {true, false}) {
            const auto expected = matrix_of<Real>(h, w, [&](int i, int j) {
                return limited.has(j, i) ? packed.ge_Get_Element(j, i) : Real(clear ? 0 : 7);
            });
            const auto expect_exports = [&](auto... flag) {
                auto out = sevens(h, w), by_rows = out, by_columns = sevens(w, h);
                int height = 0, width = w;
                packed.e_Export(&out, flag...);
                if constexpr (TypeParam::is_mirrored) {
                    packed.e_Export(true, &height, by_rows.p()[0], flag...);
                    packed.e_Export(false, &height, by_columns.p()[0], flag...);
                } else {
                    packed.e_Export(true, &height, &width, by_rows.p()[0], flag...);
                    packed.e_Export(false, &(height = 0), &(width = 0), by_columns.p()[0], flag...);
                }
                EXPECT_TRUE(height == h && width == w);
                EXPECT_TRUE(out == expected && by_rows == expected);
                EXPECT_TRUE(by_columns == transposed(expected));
            };
            if constexpr (TypeParam::is_symmetric)
                expect_exports();
            else
                expect_exports(clear);
        }
        if constexpr (TypeParam::is_triangle) {  // half of a symmetric matrix
            const auto fails = [&] {
                return failures_of(packed) == (h == w ? "" : "es_Export_as_Symmetric_matrix: 1");
            };
            nequar::Matrix<Real> out;
            packed.es_Export_as_Symmetric_matrix(&out);
            EXPECT_TRUE(fails() && out.mh() == h && out.mw() == h);
            const auto expected = matrix_of<Real>(h, h, [&](int i, int j) {
                if (h != w) return Real(7);
                return limited.has(j, i) ? packed.ge_Get_Element(j, i)
                                         : packed.ge_Get_Element(i, j);
            });
            EXPECT_TRUE(h != w || out == expected);
            for (const bool row_major : {true, false}) {
                int height = -1;
                out = sevens(h, h);
                packed.es_Export_as_Symmetric_matrix(row_major, &height, out.p()[0]);
                EXPECT_TRUE(fails() && height == (h == w ? h : -1) && out == expected);
            }
        }
    });
}

TYPED_TEST(Layout, RefusedShapesChangeNothing) {
    using Real = typename TypeParam::Real;
    PackedModel<TypeParam> model;
    model.create({3, 3, 1, 2}, Real(6));
    auto& t = model.m;
    // The last ones have more stored elements than an int can count.
    const int shapes[][4] = {{0, 0, 0, 0},
                             {0, 3, 0, 0},
                             {3, 0, 0, 0},
                             {3, 4, 0, 0},
                             {-1, 4, 0, 0},
                             {4, INT_MIN, 0, 0},
                             {-4, -4, 0, 0},
                             {4, 4, 4, 0},
                             {4, 4, -1, 0},
                             {4, 4, 0, 4},
                             {4, 4, 0, INT_MIN},
                             {65536, 65536, 65535, 65535},
                             {INT_MAX, INT_MAX, INT_MAX - 1, INT_MAX - 1}};
    for (const auto& [height, width, p, q] : shapes) {
        const Shape s{height, width, p, q};
        if (TypeParam::is_legal(s) && (s.height <= 4 || TypeParam::is_diagonal)) continue;
        SCOPED_TRACE(testing::Message() << height << " x " << width << ", bands " << p << ' ' << q);
        const auto expect_refused = [&](const std::string& name) {
            EXPECT_EQ(failures_of(t), TypeParam::refusal(s) + name);
        };
        TypeParam::create(t, s, Real(-1));
        expect_refused("");
        TypeParam::with_bands(s, [&](auto... bands) {
            if constexpr (TypeParam::is_mirrored) {
                if (s.height != s.width) return;
                t.il_Import_Lower_part_of(true, s.height, nullptr, bands...);
                expect_refused("\nil_Import_Lower_part_of: 1");
                t.iu_Import_Upper_part_of(false, s.height, nullptr, bands...);
                expect_refused("\niu_Import_Upper_part_of: 1");
            }
            if constexpr (TypeParam::is_symmetric) {
                t.i_Import(true, s.height, nullptr);
                expect_refused("\ni_Import: 1");
            } else if constexpr (!TypeParam::is_mirrored) {
                t.i_Import(true, s.height, s.width, nullptr, bands...);
                expect_refused("\ni_Import: 1");
            }
        });
    }
    TypeParam::with_bands({}, [&](auto... bands) {
        nequar::Matrix<Real> dense;
        t.i_Import(&dense, bands...);
        EXPECT_EQ(failures_of(t), TypeParam::refusal({0, 0}) + "\ni_Import: 1");
        if constexpr (TypeParam::is_mirrored) {
            dense.c_Create(3, 2, Real(1));
            t.i_Import(&dense, bands...);
            const std::string blank = TypeParam::is_symmetric ? "" : " ";
            EXPECT_EQ(failures_of(t), "i_Import" + blank + "<CNqMatrix>: 1");
            t.il_Import_Lower_part_of(&dense, bands...);
            EXPECT_EQ(failures_of(t), "il_Import_Lower_part_of <CNqMatrix>: 1");
            t.iu_Import_Upper_part_of(&dense, bands...);
            EXPECT_EQ(failures_of(t), "iu_Import_Upper_part_of <CNqMatrix>: 1");
        }
    });
    // The raw import of a symmetric band matrix fills what is there, and never more.
    if constexpr (TypeParam::is_band_symmetric) {
        for (const auto& [n, b] : {std::pair{2, 1}, {3, 2}, {3, -1}, {-1, 0}, {0, INT_MAX}}) {
            t.i_Import(true, n, nullptr, b);
            EXPECT_EQ(failures_of(t), "i_Import: 1");
        }
        auto part = t;
        part.i_Import(true, 4, matrix_of<Real>(4, 4, [](int i, int) { return i; }).p()[0], 0);
        for (int i = 0; i < 5; ++i) EXPECT_EQ(part[i], i < 3 ? Real(i) : Real(6));
    }
    model.check();
    if constexpr (!TypeParam::is_mirrored) {  // long but thin shapes store little
        TypeParam::create(t, TypeParam::is_lower ? Shape{1, INT_MAX} : Shape{INT_MAX, 1}, Real(2));
        EXPECT_EQ(failures_of(t), "");
        EXPECT_EQ(t.vs(), 1);
        EXPECT_EQ(t.ge_Get_Element(0, 0), Real(2));
    } else {  // the average of a NaN is one
        const Real elements[] = {1, std::numeric_limits<Real>::quiet_NaN(), 1, 1};
        TypeParam::create(t, {2, 2, 1, 0});
        TypeParam::import(t, {2, 2, 1, 0}, elements);
        EXPECT_NE(t[2], t[2]);
    }
#if !defined(__SANITIZE_ADDRESS__)  // which ends the process where memory is refused
    if constexpr (TypeParam::is_diagonal) {
        t.c_Create(200000, INT_MAX, Real(5));
        auto dense = matrix_of<Real>(1, 1, {3});
        t.e_Export(&dense, true);
        EXPECT_EQ(failures_of(t),
                  std::string(dense.gcn_Get_Class_Name().c_str()) + "::c_Create: 2\ne_Export: 1");
        EXPECT_EQ(dense[0][0], Real(3));
    }
#endif
}

}  // namespace
