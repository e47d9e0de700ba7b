#include <algorithm>
#include <climits>
#include <utility>

#include "structured/packed_support.h"
#include "support/twins.h"

namespace {

using namespace packed_test;

TWINS(BandTest);

// Every import keeps the elements within the bands, every export gives them back.
TWIN_TEST(BandTest, ImportsAndExportsOfEveryShape) {
    for (int height = 1; height <= 7; ++height)
        for (int width = 1; width <= 7; ++width)
            for (int p = 0; p < height; ++p)
                for (int q = 0; q < width; ++q) {
                    SCOPED_TRACE(testing::Message() << height << ' ' << width << ' ' << p << q);
                    const auto numbers = numbered<Real>(height, width);
                    const auto dense = dense_of(height, width, numbers);
                    const auto columnwise = transposed(height, width, numbers);
                    nequar::MatrixBand<Real> imports[4];
                    imports[0].i_Import(&dense, p, q);
                    imports[1].i_Import(true, height, width, numbers.data(), p, q);
                    imports[2].i_Import(false, height, width, columnwise.data(), p, q);
                    int h = 0, w = 0;
                    std::vector<Real> exported(numbers.size());
                    imports[0].e_Export(false, &h, &w, exported.data(), true);
                    imports[3].i_Import(false, h, w, exported.data(), p, q);
                    for (const auto& band : imports)
                        for (const bool clear : {true, false}) {
                            nequar::Matrix<Real> out;
                            out.c_Create(height, width, Real(-3));
                            band.e_Export(&out, clear);
                            for (int y = 0; y < height; ++y)
                                for (int x = 0; x < width; ++x)
                                    EXPECT_EQ(out[y][x], y - x <= p && x - y <= q ? dense[y][x]
                                                         : clear                  ? Real(0)
                                                                                  : Real(-3));
                        }
                }
}

TWIN_TEST(BandTest, ImportsOfEverySymmetricShape) {
    for (int n = 1; n <= 7; ++n)
        for (int b = 0; b < n; ++b) {
            SCOPED_TRACE(testing::Message() << n << ' ' << b);
            const auto numbers = numbered<Real>(n, n);
            const auto dense = dense_of(n, n, numbers);
            const auto columnwise = transposed(n, n, numbers);
            nequar::MatrixBandSymmetric<Real> average[3], lower[3], upper[3], back;
            nequar::MatrixSymmetric<Real> symmetric;
            symmetric.i_Import(&dense);
            average[0].i_Import(&dense, b);
            average[1].c_Create(n, b);
            average[1].i_Import(false, n, columnwise.data(), b);
            average[2].i_Import(&symmetric, b);
            lower[0].il_Import_Lower_part_of(&dense, b);
            lower[1].il_Import_Lower_part_of(true, n, numbers.data(), b);
            lower[2].il_Import_Lower_part_of(false, n, columnwise.data(), b);
            upper[0].iu_Import_Upper_part_of(&dense, b);
            upper[1].iu_Import_Upper_part_of(true, n, numbers.data(), b);
            upper[2].iu_Import_Upper_part_of(false, n, columnwise.data(), b);
            for (int form = 0; form < 3; ++form)
                for (int y = 0; y < n; ++y)
                    for (int x = std::max(0, y - b); x <= y; ++x) {
                        const Real below = dense[y][x];
                        const Real above = dense[x][y];
                        EXPECT_EQ(average[form].ge_Get_Element(x, y), (below + above) * Real(0.5));
                        EXPECT_EQ(lower[form].ge_Get_Element(x, y), below);
                        EXPECT_EQ(upper[form].ge_Get_Element(y, x), above);
                    }
            average[0].e_Export(&symmetric);
            back.i_Import(&symmetric, n - 1);
            nequar::Matrix<Real> all, banded;
            back.e_Export(&all, true);
            average[0].e_Export(&banded, true);
            EXPECT_TRUE(all == banded);
        }
}

TWIN_TEST(BandTest, Refusals) {
    nequar::MatrixBand<Real> band;
    band.c_Create(3, 5, 1, 2, Real(4));
    EXPECT_EQ(band.vs(), 11);
    const auto band_before = band;
    const int bands[][4] = {{4, 4, 4, 0},   {4, 4, 0, 4},
                            {0, 4, 0, 0},   {4, 0, 0, 0},
                            {4, 4, -1, 0},  {4, 4, 0, INT_MIN},
                            {-4, -4, 0, 0}, {INT_MAX, INT_MAX, INT_MAX - 1, INT_MAX - 1}};
    for (const auto& [height, width, p, q] : bands) {
        band.c_Create(height, width, p, q, Real(-1));
        EXPECT_EQ(failures_of(band), kRefused);
        band.i_Import(true, height, width, nullptr, p, q);
        EXPECT_EQ(failures_of(band), kRefused + "\ni_Import: 1");
    }
    int x = 7;
    int y = 7;
    for (const int index : {-1, 11, INT_MIN, INT_MAX}) {
        band.fp_Find_Position_of_element(index, x, y);
        EXPECT_EQ(failures_of(band), "fp_Find_Position_of_element: 1");
    }
    EXPECT_EQ(x, 7);
    EXPECT_TRUE(band == band_before);

    nequar::MatrixBandSymmetric<Real> symmetric;
    symmetric.c_Create(3, 1, Real(4));
    const auto before = symmetric;
    for (const auto& [n, b] :
         {std::pair{3, 3}, {0, 0}, {3, -1}, {-2, -3}, {INT_MAX, INT_MAX - 1}}) {
        symmetric.c_Create(n, b, Real(-1));
        EXPECT_EQ(failures_of(symmetric), kRefused);
        symmetric.il_Import_Lower_part_of(true, n, nullptr, b);
        EXPECT_EQ(failures_of(symmetric), kRefused + "\nil_Import_Lower_part_of: 1");
        symmetric.iu_Import_Upper_part_of(true, n, nullptr, b);
        EXPECT_EQ(failures_of(symmetric), kRefused + "\niu_Import_Upper_part_of: 1");
    }
    // The raw import fills what is there, and never more.
    for (const auto& [n, b] : {std::pair{2, 1}, {3, 2}, {3, -1}, {-1, 0}, {0, INT_MAX}}) {
        symmetric.i_Import(true, n, nullptr, b);
        EXPECT_EQ(failures_of(symmetric), "i_Import: 1");
    }
    EXPECT_TRUE(symmetric == before);
    const auto numbers = numbered<Real>(4, 4);
    symmetric.i_Import(true, 4, numbers.data(), 0);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(symmetric[i], i < 3 ? Real(1 + 5 * i) : 4);
    nequar::Matrix<Real> wide;
    wide.c_Create(3, 4, Real(1));
    symmetric.i_Import(&wide, 1);
    EXPECT_EQ(failures_of(symmetric), "i_Import <CNqMatrix>: 1");
    symmetric.il_Import_Lower_part_of(&wide, 1);
    EXPECT_EQ(failures_of(symmetric), "il_Import_Lower_part_of <CNqMatrix>: 1");
    symmetric.iu_Import_Upper_part_of(&wide, 1);
    EXPECT_EQ(failures_of(symmetric), "iu_Import_Upper_part_of <CNqMatrix>: 1");
}

// Copies keep the bands, moves leave a matrix that can be used; a vector that was shortened through
// its own interface is not read past its end.
TWIN_TEST(BandTest, CopiesMovesAndShortenedVectors) {
    nequar::MatrixBand<Real> a;
    a.c_Create(4, 5, 2, 1, Real(2));
    nequar::MatrixBand<Real> b;
    b = a;
    EXPECT_TRUE(a == b);
    const auto moved = std::move(b);
    EXPECT_TRUE(moved == a);
    int first = -1;
    int last = -1;
    Real out[5] = {};
    b.gr_Get_Row(0, out, first, last);
    EXPECT_EQ(failures_of(b), "fvr_Find_Valid_range_of_Row: 1");
    b.c_Create(2, 2, 1, 1, Real(1));
    EXPECT_EQ(b.ge_Get_Element(0, -1), Real(1));
    static_cast<nequar::Vector<Real>&>(a).c_Create(3);
    EXPECT_EQ(a.ge_Get_Element(4, 3), Real(0));
    EXPECT_EQ(failures_of(a), "fi_Find_Index_of_element: 3");
    a.sr_Set_Row(1, Real(1), first, last);
    EXPECT_EQ(failures_of(a), "sr_Set_Row: 3");
    nequar::Matrix<Real> dense;
    a.e_Export(&dense, true);
    EXPECT_EQ(failures_of(a), "e_Export: 3");

    nequar::MatrixBandSymmetric<Real> s;
    s.c_Create(4, 1, Real(2));
    const nequar::MatrixBandSymmetric<Real> t = std::move(s);
    s.fvr_Find_Valid_range_of_Row(last, first, last);
    EXPECT_EQ(failures_of(s), "fvr_Find_Valid_range_of_Row: 2");
    s = t;
    EXPECT_TRUE(s == t);
    static_cast<nequar::Vector<Real>&>(s).c_Create(3);
    s.i_Import(true, 4, s.p(), 1);
    EXPECT_EQ(failures_of(s), "i_Import: 2");
}

}  // namespace
