// The symmetric matrix: failures with their chains, the tester, large dense halves, extreme values,
// counts out of step, self-tests.
#include <climits>
#include <cmath>
#include <functional>
#include <limits>

#include "sparse/mirror.h"

namespace {

using namespace sparse_test;

TWINS(SparseSymmetric);

template <class Real>
using Symmetric = nequar::SparseSymmetricMatrix<Real>;

// The 4 x 4 matrix with (0, 0) = 1, (1, 3) = -2, (2, 2) = 3.
template <class Real>
Symmetric<Real> sample() {
    Symmetric<Real> s;
    s.czm(4, 3);
    EXPECT_TRUE(s.se(0, 0, Real(1)) && s.se(3, 1, Real(-2)) && s.se(2, 2, Real(3)));
    return s;
}

// Compressed columns; the value in row r is r + 1.
template <class Real>
struct Arrays {
    nequar::GrowableVector<Real> values;
    CNqXvectorInt rows;
    CNqVectorInt start;

    Arrays(std::initializer_list<int> row_numbers, std::initializer_list<int> pointers)
        : rows(growable(row_numbers)), start(ints(pointers)) {
        for (const int r : row_numbers) values.ae_Append_Element(Real(r + 1));
    }
};

TWIN_TEST(SparseSymmetric, Tester) {
    const struct {
        int n;
        Arrays<Real> arrays;
        const char* message;
    } cases[] = {
        {0, {{}, {0}}, "height<=0"},
        {3, {{0}, {0, 1, 1}}, "ww!=hh"},
        {3, {{0}, {1, 1, 1, 1}}, "bad start-pointer 0"},
        {3, {{0}, {0, 1, 1, 2}}, "bad start-pointer 0"},
        {3, {{0, 1, 2}, {0, 2, 1, 3}}, "decreasing start pointers"},
        {2, {{0, 1, 1}, {0, 3, 3}}, "bad start-pointer"},
        {3, {{0, 3}, {0, 2, 2, 2}}, "r[k]>=hh"},
        {3, {{0, 1, 1}, {0, 1, 2, 3}}, "r[k]<x"},
        {3, {{-1}, {0, 1, 1, 1}}, "r[k]<x"},
        {3, {{1, 1}, {0, 2, 2, 2}}, "not increasing order"},
        {3, {{0, 2, 2}, {0, 2, 2, 3}}, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message);
        auto s = sample<Real>();
        const auto before = s;
        const bool good = *c.message == '\0';
        EXPECT_EQ(s.tip(c.n, &c.arrays.values, &c.arrays.rows, &c.arrays.start), good);
        EXPECT_STREQ(s.ged_Get_Error_Detail().c_str(), c.message);
        EXPECT_EQ(s.im(c.n, &c.arrays.values, &c.arrays.rows, &c.arrays.start), good);
        EXPECT_EQ(s == before, !good);
        const std::string chain =
            std::string("tip_Test_Input_Parameters: ") + c.message + " | im_Import: bad Input(s)";
        EXPECT_EQ(failures_of(s), good ? "" : chain);
    }
    Arrays<Real> uneven({0}, {0, 1});
    uneven.values.ae_Append_Element(Real(1));
    Symmetric<Real> s;
    EXPECT_TRUE(
        fails_with(s, "bad row-index 0", s.tip(1, &uneven.values, &uneven.rows, &uneven.start)));
}

TWIN_TEST(SparseSymmetric, FailuresLeaveEverythingAsItWas) {
    using Matrix = Symmetric<Real>;
    Matrix small;
    nequar::SparseVector<Real> v;
    nequar::SparseMatrix<Real> general, oblong;
    nequar::Matrix<Real> dense;
    v.czv(3, 1);
    dense.c_Create(2, 3, Real(1));
    oblong.czm(2, 3, 1);
    Real value = 7;
    auto s = sample<Real>();
    expect_failures<Matrix>(
        s,
        {
            {"czm_Create_Zero_Matrix: number_of_expected_non_zero_elements<0",
             [&] { return s.czm(0, -1); }},
            {"czm_Create_Zero_Matrix: bad matrix size", [&] { return s.czm(0, 0); }},
            {"czm_Create_Zero_Matrix: bad matrix size", [&] { return s.czm(INT_MAX, 0); }},
            {"cim_Create_Identity_Matrix: matrix_width_or_height <= 0",
             [&] { return s.cim(0, -1); }},
            {"cim_Create_Identity_Matrix: number_of_expected_non_zeros < matrix_width_or_height",
             [&] { return s.cim(1, -1); }},
            {"cim_Create_Identity_Matrix: czm", [&] { return s.cim(2, INT_MAX); }},
            {"ivip_Is_Valid_Index_for_Pixel: y>=height | ge_Get_Element: bad index",
             [&] { return s.ge(4, 0, &value) || value != Real(0); }},
            {"ivip_Is_Valid_Index_for_Pixel: x<0 | se_Set_Element: bad index",
             [&] { return s.se(0, -1, Real(1)); }},
            {"ivip_Is_Valid_Index_for_Pixel: y>=height | ace_Add_Constant_to_an_Element: bad index",
             [&] { return s.ace(0, 4, Real(1)); }},
            {"im_Import: 1", [&] { return s.im(&dense, true, &dense); }},
            {"im_Import: 4", [&] { return s.im(&oblong, false, nullptr); }},
            {"ivrc_Is_Valid_Range_for_Column: (y+dy)>height | gc_Get_Column: bad index range",
             [&] { return s.gc(0, 2, INT_MAX, &v); }},
            {"ivrc_Is_Valid_Range_for_Column: x>=width | gc_Get_Column: bad index range | "
             "gr_Get_Row: "
             "1",
             [&] { return s.gr(0, 4, 1, &v); }},
            {"ivrb_Is_Valid_Range_for_Block: dx<=0 | gb_Get_Block: 1",
             [&] { return s.gb(0, 0, 0, 1, &general); }},
            {"mvva_Multiply_Vector_Vector_and_Accumulate: dim1!=hh", [&] { return s.mvva(&v); }},
            {"amm_Add_Matrix_Matrix: different dimensions", [&] { return s.amm(&small); }},
            {"ammw_Add_Matrix_Matrix_with_Weight: different dimensions",
             [&] { return s.ammw(&small, Real(2)); }},
            {"smm_Subtract_Matrix_Matrix: different dimensions", [&] { return s.smm(&small); }},
            {"mmme_Multiply_Matrix_Matrix_Elementwise: different dimensions",
             [&] { return s.mmme(&small); }},
            {"mse_Mean_Squared_Error: different width or height",
             [&] { return s.mse(&small) != Real(0); }},
            {"operator/=: divide by zero", [&] { return s /= Real(0); }},
            {"operator/: divide by zero",
             [&] { return (s / Real(0)).nee() != 0 || (s / Real(0)).mh() != 4; }},
            {"z_cne_Change_Number_of_Elements: 1", [&] { return s.z_cne(-1); }},
            {"mbs_Modify_Blank_Space: 1", [&] { return s.mbs(-1); }},
        });
    // A dense matrix that no memory holds: the sparse outputs stay as they were.
    Matrix huge;
    ASSERT_TRUE(huge.czm(2000000, 1) && huge.se(1999999, 5, Real(2)));
    EXPECT_TRUE(fails_with(huge, "1", huge.ex(&general, &dense)));
    EXPECT_TRUE(huge.itze());
    EXPECT_GT(huge.m(), Real(0));
    EXPECT_LT(huge.m(), Real(2e-12));
    EXPECT_EQ(huge.nf(), std::sqrt(Real(8)));
}

TWIN_TEST(SparseSymmetric, LargeDenseHalves) {
    const Real nan = std::numeric_limits<Real>::quiet_NaN();
    for (const int n : {63, 64, 65, 130, 600})
        for (const bool lower : {true, false}) {
            SCOPED_TRACE(n);
            nequar::Matrix<Real> a, full, symmetric;
            a.c_Create(n, n);
            full.c_Create(n, n);
            for (int y = 0; y < n; ++y)
                for (int x = 0; x < n; ++x) {
                    const int low = std::min(x, y);
                    const int high = std::max(x, y);
                    const bool is_stored = n == 600 || (low * 7 + high * 3) % 5 == 0;
                    full[y][x] = is_stored ? Real(high * 1000 + low) : Real(0);
                    a[y][x] = (lower ? y >= x : y <= x) ? full[y][x] : nan;
                }
            Symmetric<Real> s;
            nequar::Matrix<Real> exported;
            EXPECT_TRUE(s.im(&a, lower, &symmetric) && symmetric == full);
            EXPECT_TRUE(s.ex(&exported) && exported == full);
            nequar::SparseVector<Real> column;
            nequar::Vector<Real> got;
            for (const int x : {0, n / 2, n - 1})
                for (const int y : {0, n / 3}) {
                    EXPECT_TRUE(s.gc(x, y, n - y, &column) && column.ex(&got));
                    for (int r = y; r < n; ++r) ASSERT_EQ(got[r - y], full[r][x]);
                }
            EXPECT_TRUE(s.im(&a, lower, &a) && a == full);
            EXPECT_TRUE(s.ex(&exported) && exported == full);
        }
}

TWIN_TEST(SparseSymmetric, ExtremeValues) {
    const Real huge = std::numeric_limits<Real>::max() / 4;
    const Real tiny = std::numeric_limits<Real>::min() * 4;
    for (const Real v : {huge, tiny}) {
        Symmetric<Real> s;
        s.czm(4, 0);
        Real deviation = 0;
        EXPECT_TRUE(s.se(0, 0, v) && s.se(3, 1, v));  // three of sixteen elements
        EXPECT_NEAR(s.m() / v, 3.0 / 16, 1e-6);
        s.mst(deviation);
        EXPECT_NEAR(deviation / v, std::sqrt(39.0) / 16, 1e-6);
        EXPECT_NEAR(s.nf() / v, std::sqrt(3.0), 1e-6);
        s.czm(1, 1);  // no zero elements
        EXPECT_TRUE(s.se(0, 0, v) && s.mst(deviation) == v && deviation == Real(0));
    }
    auto s = sample<Real>();
    s.se(3, 3, std::numeric_limits<Real>::quiet_NaN());
    Real deviation = 0;
    EXPECT_TRUE(std::isnan(s.m()) && std::isnan(s.mst(deviation)) && std::isnan(deviation));
    EXPECT_TRUE(std::isnan(s.nf()) && std::isnan(s.mse(&s)));
    EXPECT_TRUE(s == s);
    EXPECT_FALSE(s == Symmetric<Real>(s));
}

// The number of elements changed by itself: every operation stays inside the storage.
TWIN_TEST(SparseSymmetric, CountsOutOfStep) {
    for (const int count : {0, 1, 2, 5, 40}) {
        const auto b = sample<Real>();
        const auto v = vector_of(Mirror<Real>{4, 1, {{{0, 1}, Real(1)}, {{0, 3}, Real(2)}}});
        nequar::SparseVector<Real> line;
        nequar::SparseMatrix<Real> general;
        nequar::Matrix<Real> dense;
        Real value = 0;
        int x = 0, y = 0;
        const std::function<void(Symmetric<Real>&)> operations[] = {
            [&](auto& s) { s.amm(&b); },
            [&](auto& s) { s.smm(&s); },
            [&](auto& s) { s.mmme(&b); },
            [&](auto& s) { s.mvva(&v); },
            [&](auto& s) { s.se(3, 0, Real(5)); },
            [&](auto& s) { s.rze(); },
            [&](auto& s) { s.gc(3, 0, 4, &line); },
            [&](auto& s) { s.gb(1, 0, 3, 4, &general); },
            [&](auto& s) { s.ex(&general, &dense); },
            [&](auto& s) { s.maxmin(value, &x, &y); },
            [&](auto& s) { s.mst(value); },
            [&](auto& s) { s.nf(); },
            [&](auto& s) { s.fize(x, y); },
            [&](auto& s) { s.mse(&b); },
            [&](auto& s) { s == b ? s.itze() : s.m(); },
            [&](auto& s) { s = s * Real(2); }};
        for (const auto& operation : operations) {
            auto s = sample<Real>();
            ASSERT_TRUE(s.mbs(60) && s.z_cne(count));
            operation(s);
            for (x = 0; x < 4; ++x)
                for (y = 0; y < 4; ++y) EXPECT_TRUE(s.ge(x, y, &value));
        }
    }
}

TWIN_TEST(SparseSymmetric, SelfTests) {
    using Matrix = Symmetric<Real>;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    Matrix s;
    for (const int n : {1, 2, 3, 5, 8})
        for (const double density : {0.0, 0.1, 0.5, 1.0})
            for (const double constant : {0.0, -2.5})
                EXPECT_TRUE(
                    s.u_tot_Test_Operations_Total(n, density, -2, 3, constant, 6, 2, 2, 1, 6))
                    << n << ' ' << density << ": " << failures_of(s);
    EXPECT_TRUE(s.u_tot_Test_Operations_Total(40, 0.05, 1, 1, 3, 3, 0, 0, 0, 3)) << failures_of(s);
    const struct {
        int n;
        double density, min, max, constant;
        int repetitions;
        const char* code;
    } cases[] = {
        {0, 0.5, 0, 1, 1, 1, "2"},         {-3, nan, 1, 0, nan, -1, "2"},
        {3, -0.1, 0, 1, 1, 1, "4"},        {3, 1.1, 0, 1, 1, 1, "4"},
        {3, nan, 0, 1, 1, 1, "4"},         {3, 0.5, 0, 1, 1, -1, "5"},
        {3, 0.5, 1, 0, 1, 1, "6"},         {3, 0.5, nan, 1, 1, 1, "6"},
        {3, 0.5, 0, nan, 1, 1, "6"},       {3, 0.5, -infinity, infinity, 1, 1, "7"},
        {INT_MAX, 1, 0, 1, 1, 1, "7"},     {INT_MAX, 0, 0, 1, 1, 1, "7"},
        {INT_MAX, 1, 0, 1, 1, 0, nullptr},
    };
    for (const auto& c : cases) {
        const std::string detail = c.code == nullptr ? "" : c.code;
        const auto check = [&](bool result) {
            EXPECT_EQ(result, c.code == nullptr);
            EXPECT_EQ(s.ged_Get_Error_Detail().c_str(), detail) << c.n << ' ' << c.density;
            s = Matrix();
        };
        check(s.u_toe_Test_Operations_Elementary(c.n, c.density, c.min, c.max, c.constant,
                                                 c.repetitions));
        check(s.u_toc_Test_Operations_for_Columns(c.n, c.density, c.min, c.max, c.repetitions));
        check(s.u_tor_Test_Operations_for_Rows(c.n, c.density, c.min, c.max, c.repetitions));
        check(s.u_tob_Test_Operations_for_Blocks(c.n, c.density, c.min, c.max, c.repetitions));
        check(s.u_tom_Test_Operations_with_Matrices(c.n, c.density, c.min, c.max, c.repetitions));
    }
    EXPECT_FALSE(s.u_toe_Test_Operations_Elementary(3, 0.5, 0, 1, nan, 0));
    EXPECT_EQ(failures_of(s), "u_toe_Test_Operations_Elementary: 1");
    EXPECT_FALSE(s.u_tot_Test_Operations_Total(3, 0.5, 0, 1, 1, 1, 1, -1, 1, 1));
    EXPECT_EQ(failures_of(s),
              "u_tor_Test_Operations_for_Rows: 5 | u_tot_Test_Operations_Total: "
              "u_tor_Test_Operations_for_Rows");

    nequar::Matrix<Real> dense;
    for (int repetition = 0; repetition < 50; ++repetition) {
        EXPECT_TRUE(s.u_mrsm_Make_a_Random_Sparse_Matrix(6, 9, -1, 2, &s, &dense));
        nequar::Matrix<Real> exported;
        EXPECT_TRUE(s.ex(&exported) && exported == dense && s.nee() <= 9 && s.nee() > 0);
        EXPECT_TRUE(s.max() < 2 && s.min() >= -1);
    }
    EXPECT_TRUE(s.u_mrsm_Make_a_Random_Sparse_Matrix(6, 9, -1, 2, nullptr, nullptr));
    EXPECT_FALSE(s.u_mrsm_Make_a_Random_Sparse_Matrix(6, -1, 2, 1, &s, &dense));
    EXPECT_FALSE(s.u_mrsm_Make_a_Random_Sparse_Matrix(6, 1, 2, 1, &s, &dense));
    EXPECT_EQ(failures_of(s), "u_mrsm_Make_a_Random_Sparse_Matrix: 2");
}

}  // namespace
