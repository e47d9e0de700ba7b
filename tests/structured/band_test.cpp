#include <algorithm>
#include <climits>
#include <cstdlib>
#include <utility>

#include "structured/packed_support.h"
#include "support/twins.h"

namespace {

using namespace packed_test;

TWINS(BandTest);

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

// The operations that the two classes have in common, against an enumeration of what is stored:
// packed element i = i + 1 stands at `stored[i]`, and at its mirror in a symmetric matrix.
template <class Real, class Band>
void check_elements(Band& m, const std::vector<Position>& stored, bool symmetric) {
    const int height = m.mh();
    const int width = m.mw();
    ASSERT_EQ(m.vs(), static_cast<int>(stored.size()));
    std::vector<Real> full(std::size_t(height * width));
    for (int i = 0; i < m.vs(); ++i) {
        m[i] = Real(i + 1);
        const Position at = stored[std::size_t(i)];
        full[std::size_t(at.y * width + at.x)] = Real(i + 1);
        if (symmetric) full[std::size_t(at.x * width + at.y)] = Real(i + 1);
        int x = -1;
        int y = -1;
        m.fp_Find_Position_of_element(i, x, y);
        EXPECT_EQ(x, at.x);
        EXPECT_EQ(y, at.y);
    }
    const auto distance = [symmetric](int x, int y) { return symmetric ? std::abs(x - y) : x - y; };
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            int wrapped_x = x - 2 * width;
            int wrapped_y = y + 3 * height;
            int index = -1;
            int first = -1;
            int last = -1;
            int count = -1;
            std::vector<Real> band(8, Real(-1));
            const Real element = full[std::size_t(y * width + x)];
            m.fi_Find_Index_of_element(wrapped_x, wrapped_y, index);
            EXPECT_EQ(wrapped_x, x);
            EXPECT_EQ(wrapped_y, y);
            if (element == 0) {
                const char* const code = symmetric || x < y ? "1" : "2";
                const char* const reverse = symmetric || x > y ? "1" : "2";
                EXPECT_EQ(index, -1);
                EXPECT_EQ(failures_of(m), std::string("fi_Find_Index_of_element: ") + code);
                EXPECT_EQ(m.ge_Get_Element(x, y), Real(0));
                auto changed = m;
                changed.se_Set_Element(x, y, Real(9));
                EXPECT_TRUE(changed == m);
                failures_of(m);
                m.gb_Get_Band(x, y, band.data(), count);
                EXPECT_EQ(failures_of(m),
                          std::string("fib_Find_Index_range_of_a_Band: ") + reverse);
                EXPECT_EQ(count, -1);
                continue;
            }
            EXPECT_EQ(Real(index + 1), element);
            EXPECT_EQ(m.ge_Get_Element(x, y), element);
            auto changed = m;
            changed.se_Set_Element(x, y, Real(-1));
            EXPECT_EQ(changed[index], Real(-1));
            m.fib_Find_Index_range_of_a_Band(wrapped_x, wrapped_y, first, last);
            m.gb_Get_Band(x, y, band.data(), count);
            EXPECT_EQ(count, last - first + 1);
            for (int k = 0; k < m.vs(); ++k) {
                const Position at = stored[std::size_t(k)];
                EXPECT_EQ(distance(at.x, at.y) == distance(x, y), first <= k && k <= last);
            }
            for (int k = 0; k < count; ++k) EXPECT_EQ(band[std::size_t(k)], Real(first + k + 1));
            EXPECT_EQ(band[std::size_t(count)], Real(-1));
            changed = m;
            changed.sb_Set_Band(x, y, Real(70), count);
            for (int k = 0; k < m.vs(); ++k)
                EXPECT_EQ(changed[k], first <= k && k <= last ? Real(70) : m[k]);
            changed.sb_Set_Band(x, y, band.data(), count);
            EXPECT_TRUE(changed == m);
        }
    }
    for (const bool of_row : {true, false}) {
        const int length = of_row ? width : height;
        for (int line = 0; line < (of_row ? height : width); ++line) {
            std::vector<Real> out(std::size_t(length + 1), Real(-1));
            std::vector<Real> wanted;
            for (int i = 0; i < length; ++i)
                wanted.push_back(full[std::size_t(of_row ? line * width + i : i * width + line)]);
            int first = -1;
            int last = -1;
            of_row ? m.gr_Get_Row(line - height, out.data(), first, last)
                   : m.gc_Get_Column(line - width, out.data(), first, last);
            const auto held = [&wanted](int i) { return wanted[std::size_t(i)] != Real(0); };
            int any = 0;
            for (int i = 0; i < length; ++i) any += held(i);
            if (any == 0) {
                EXPECT_EQ(failures_of(m), of_row ? "fvr_Find_Valid_range_of_Row: 1"
                                                 : "fvc_Find_Valid_range_of_Column: 1");
                EXPECT_EQ(out[0], Real(-1));
                continue;
            }
            EXPECT_EQ(out.back(), Real(-1));
            out.pop_back();
            EXPECT_EQ(out, wanted);
            for (int i = 0; i < length; ++i) EXPECT_EQ(held(i), first <= i && i <= last);
            if constexpr (requires { m.sr_Set_Row(0, Real(0), first, last); }) {
                auto changed = m;
                of_row ? changed.sr_Set_Row(line, Real(-5), first, last)
                       : changed.sc_Set_Column(line, Real(-5), first, last);
                for (int i = first; i <= last; ++i)
                    EXPECT_EQ(
                        of_row ? changed.ge_Get_Element(i, line) : changed.ge_Get_Element(line, i),
                        Real(-5));
                of_row ? changed.sr_Set_Row(line, wanted.data(), first, last)
                       : changed.sc_Set_Column(line, wanted.data(), first, last);
                EXPECT_TRUE(changed == m);
            }
        }
    }
    nequar::Matrix<Real> dense;
    dense.c_Create(height, width, Real(-3));
    m.e_Export(&dense, false);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const Real element = full[std::size_t(y * width + x)];
            EXPECT_EQ(dense[y][x], element == 0 ? Real(-3) : element);
        }
    m.e_Export(&dense, true);
    EXPECT_TRUE(dense == dense_of(height, width, full));
    EXPECT_EQ(failures_of(m), "");
}

TWIN_TEST(BandTest, EveryElementOfEveryShape) {
    for (int height = 1; height <= 7; ++height)
        for (int width = 1; width <= 7; ++width)
            for (int p = 0; p < height; ++p)
                for (int q = 0; q < width; ++q) {
                    SCOPED_TRACE(testing::Message() << height << ' ' << width << ' ' << p << q);
                    nequar::MatrixBand<Real> m;
                    m.c_Create(height, width, p, q);
                    const auto stored = band_positions(height, width, p, q);
                    check_elements<Real>(m, stored, false);
                    const auto numbers = numbered<Real>(height, width);
                    const auto dense = dense_of(height, width, numbers);
                    const auto columnwise = transposed(height, width, numbers);
                    nequar::MatrixBand<Real> imports[3];
                    imports[0].i_Import(&dense, p, q);
                    imports[1].i_Import(true, height, width, numbers.data(), p, q);
                    imports[2].i_Import(false, height, width, columnwise.data(), p, q);
                    for (const auto& import : imports) {
                        ASSERT_EQ(import.vs(), m.vs());
                        for (int i = 0; i < m.vs(); ++i) {
                            const Position at = stored[std::size_t(i)];
                            EXPECT_EQ(import[i], dense[at.y][at.x]);
                        }
                    }
                    int h = 0;
                    int w = 0;
                    std::vector<Real> exported(numbers.size());
                    imports[0].e_Export(false, &h, &w, exported.data(), true);
                    nequar::MatrixBand<Real> again;
                    again.i_Import(false, h, w, exported.data(), p, q);
                    EXPECT_TRUE(again == imports[0]);
                }
}

TWIN_TEST(BandTest, EveryElementOfEverySymmetricShape) {
    for (int n = 1; n <= 7; ++n)
        for (int b = 0; b < n; ++b) {
            SCOPED_TRACE(testing::Message() << n << ' ' << b);
            nequar::MatrixBandSymmetric<Real> m;
            m.c_Create(n, b);
            std::vector<Position> stored;
            for (const Position at : stored_positions(true, n, n))
                if (at.y - at.x <= b) stored.push_back(at);
            check_elements<Real>(m, stored, true);
            const auto numbers = numbered<Real>(n, n);
            const auto dense = dense_of(n, n, numbers);
            const auto columnwise = transposed(n, n, numbers);
            nequar::MatrixBandSymmetric<Real> average[3];
            nequar::MatrixBandSymmetric<Real> lower[3];
            nequar::MatrixBandSymmetric<Real> upper[3];
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
                for (int i = 0; i < m.vs(); ++i) {
                    const Position at = stored[std::size_t(i)];
                    const Real below = dense[at.y][at.x];
                    const Real above = dense[at.x][at.y];
                    EXPECT_EQ(average[form][i], (below + above) * Real(0.5));
                    EXPECT_EQ(lower[form][i], below);
                    EXPECT_EQ(upper[form][i], above);
                }
            average[0].e_Export(&symmetric);
            nequar::MatrixBandSymmetric<Real> back;
            back.i_Import(&symmetric, n - 1);
            nequar::Matrix<Real> all;
            nequar::Matrix<Real> banded;
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
