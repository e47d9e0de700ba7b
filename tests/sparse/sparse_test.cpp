// Sparse vectors and matrices: messages, special cases that random sequences do not reach,
// statistics, storage that is out of step, sizes that do not fit, self-tests.
#include <climits>
#include <cmath>
#include <functional>
#include <limits>
#include <thread>
#include <vector>

#include "sparse/mirror.h"
#include "support/matrix_gallery.h"

namespace {

using namespace sparse_test;

template <class Number>
class SparseTest : public testing::Test {
public:
    using MatrixType = nequar::SparseMatrix<Number>;
    using VectorType = nequar::SparseVector<Number>;
    static constexpr Number kNan = std::numeric_limits<Number>::quiet_NaN();
};

TWIN_TEST(SparseTest, FailuresOfTheVector) {
    using SVector = typename TestFixture::VectorType;
    SVector v, w, out;
    v.czv(4, 2);
    v.se(1, Real(5));
    w.czv(3, 1);
    Real value = 7;
    const auto one = growable({Real(1)});
    const auto two = growable({Real(1), Real(2)});
    auto roomy = growable({1});
    roomy.mbs(9);
    const auto tip = [&](int dimension, const auto& values, std::initializer_list<int> indices) {
        return [&v, dimension, &values, list = growable(indices)] {
            return v.tip_Test_Input_Parameters(dimension, &values, &list);
        };
    };
    expect_failures<SVector>(
        v,
        {{"czv_Create_Zero_Vector: number_of_expected_non_zero_elements<0",
          [&] { return v.czv(0, -1); }},
         {"czv_Create_Zero_Vector: dimension<=0", [&] { return v.czv_Create_Zero_Vector(0, 1); }},
         {"ivi_Is_Valid_Index: i<0 | ge_Get_Element: bad index", [&] { return v.ge(-1, &value); }},
         {"ivi_Is_Valid_Index: i>=dimension | se_Set_Element: bad index",
          [&] { return v.se(4, 1); }},
         {"ivi_Is_Valid_Index: i<0 | ace_Add_Constant_to_an_Element: bad index",
          [&] { return v.ace(INT_MIN, 1); }},
         {"ivr_Is_Valid_Range: start>=dimension | g_Get: bad index range",
          [&] { return v.g(4, 1, &out); }},
         {"ivr_Is_Valid_Range: length<=0 | g_Get: bad index range",
          [&] { return v.g(0, 0, &out); }},
         {"ivr_Is_Valid_Range: start<0 | s_Set: bad index range", [&] { return v.s(-1, &w); }},
         {"avv_Add_Vector_Vector: different dimensions", [&] { return v.avv(&w); }},
         {"avvw_Add_Vector_Vector_with_Weight: different dimensions",
          [&] { return v.avvw(&w, 1); }},
         {"svv_Subtract_Vector_Vector: different dimensions", [&] { return v.svv(&w); }},
         {"mvve_Multiply_Vector_Vector_Elementwise: different dimensions",
          [&] { return v.mvve(&w); }},
         {"ds_Distance_Squared: different dimensions", [&] { return v.ds(&w) != 0; }},
         {"ps_Product_Scalar: different dimensions", [&] { return v.ps(&w) != 0; }},
         {"operator/=: divide by zero", [&] { return v /= Real(0); }},
         {"operator/: divide by zero", [&] { return (v / Real(0)).nee() != 0; }},
         {"mbs_Modify_Blank_Space: 1", [&] { return v.mbs(-1); }},
         {"z_cne_Change_Number_of_Elements: 1", [&] { return v.z_cne(-1); }},
         {"tip_Test_Input_Parameters: non-positive vector dimension", tip(0, one, {0})},
         {"tip_Test_Input_Parameters: different sizes", tip(3, two, {0})},
         {"tip_Test_Input_Parameters: negative index", tip(3, one, {-1})},
         {"tip_Test_Input_Parameters: index is greater than dimension", tip(3, one, {3})},
         {"tip_Test_Input_Parameters: not increasing order", tip(3, two, {1, 1})},
         {"tip_Test_Input_Parameters: different sizes | im_Import: bad Input(s)",
          [&] { return v.im(3, &one, &roomy); }}});
    EXPECT_EQ(value, Real(0));
    EXPECT_EQ(out.dim(), 1);
}

TWIN_TEST(SparseTest, FailuresOfTheMatrix) {
    using Sparse = typename TestFixture::MatrixType;
    Sparse a, b, out;
    a.czm(3, 4, 2);
    a.se(2, 1, Real(5));
    b.czm(4, 3, 0);
    typename TestFixture::VectorType v;
    v.czv(3, 1);
    Real value = 7;
    const auto one = growable({Real(1)});
    const auto three = growable({Real(1), Real(2), Real(3)});
    const auto tip = [&](int height, const auto& values, std::initializer_list<int> rows,
                         std::initializer_list<int> start) {
        return [&a, height, &values, r = growable(rows), s = ints(start)] {
            return a.tip_Test_Input_Parameters(height, &values, &r, &s);
        };
    };
    const std::string ivrc = "ivrc_Is_Valid_Range_for_Column: ";
    expect_failures<Sparse>(
        a,
        {{"czm_Create_Zero_Matrix: number_of_expected_non_zero_elements<0",
          [&] { return a.czm(0, 0, -1); }},
         {"czm_Create_Zero_Matrix: bad matrix size", [&] { return a.czm(0, 1, 0); }},
         {"czm_Create_Zero_Matrix: bad matrix size", [&] { return a.czm(1, INT_MAX, 0); }},
         {"cim_Create_Identity_Matrix: matrix_width_or_height <= 0", [&] { return a.cim(0, -1); }},
         {"cim_Create_Identity_Matrix: number_of_expected_non_zeros < matrix_width_or_height",
          [&] { return a.cim(1, -1); }},
         {"cim_Create_Identity_Matrix: czm", [&] { return a.cim(2, INT_MAX); }},
         {"ivip_Is_Valid_Index_for_Pixel: x<0 | se_Set_Element: bad index",
          [&] { return a.se(-1, -1, 1); }},
         {"ivip_Is_Valid_Index_for_Pixel: x>=width | ge_Get_Element: bad index",
          [&] { return a.ge(4, 3, &value); }},
         {"ivip_Is_Valid_Index_for_Pixel: y<0 | ace_Add_Constant_to_an_Element: bad index",
          [&] { return a.ace(0, -1, 1); }},
         {"ivip_Is_Valid_Index_for_Pixel: y>=height", [&] { return a.ivip(0, 3); }},
         {"ivic_Is_Valid_Index_for_Column: x>=width", [&] { return a.ivic(4); }},
         {"ivic_Is_Valid_Index_for_Column: x<0", [&] { return a.ivic(-1); }},
         {"ivir_Is_Valid_Index_for_Row: y<0", [&] { return a.ivir(-1); }},
         {"ivir_Is_Valid_Index_for_Row: y>=height", [&] { return a.ivir(3); }},
         {ivrc + "dy<=0 | gc_Get_Column: bad index range", [&] { return a.gc(0, 0, 0, &v); }},
         {ivrc + "(y+dy)>height | gc_Get_Column: bad index range",
          [&] { return a.gc(0, 1, INT_MAX, &v); }},
         {ivrc + "(y+dy)>height | sc_Set_Column: bad index range", [&] { return a.sc(0, 1, &v); }},
         {"ivrr_Is_Valid_Range_for_Row: dx<=0 | gr_Get_Row: bad index range",
          [&] { return a.gr(0, 0, -1, &v); }},
         {"ivrr_Is_Valid_Range_for_Row: (x+dx)>width | sr_Set_Row: bad index range",
          [&] { return a.sr(2, 0, &v); }},
         {"ivrb_Is_Valid_Range_for_Block: (x+dx)>width | gb_Get_Block: bad index range",
          [&] { return a.gb(1, 0, INT_MAX, 0, &out); }},
         {"ivrb_Is_Valid_Range_for_Block: dy<=0 | gb_Get_Block: bad index range",
          [&] { return a.gb(0, 0, 1, 0, &out); }},
         {"ivrb_Is_Valid_Range_for_Block: (y+dy)>height | sb_Set_Block: bad index range",
          [&] { return a.sb(0, 0, &b); }},
         {"amm_Add_Matrix_Matrix: different dimensions", [&] { return a.amm(&b); }},
         {"ammw_Add_Matrix_Matrix_with_Weight: different dimensions",
          [&] { return a.ammw(&b, 1); }},
         {"smm_Subtract_Matrix_Matrix: different dimensions", [&] { return a.smm(&b); }},
         {"mmme_Multiply_Matrix_Matrix_Elementwise: different dimensions",
          [&] { return a.mmme(&b); }},
         {"mse_Mean_Squared_Error: different width or height", [&] { return a.mse(&b) != 0; }},
         {"mvva_Multiply_Vector_Vector_and_Accumulate: dim2!=ww", [&] { return a.mvva(&v, &v); }},
         {"operator/=: divide by zero", [&] { return a /= Real(0); }},
         {"operator/: divide by zero", [&] { return (a / Real(-0.0)).nee() != 0; }},
         {"mbs_Modify_Blank_Space: 1", [&] { return a.mbs(-1); }},
         {"z_cne_Change_Number_of_Elements: 1", [&] { return a.z_cne(-1); }},
         {"tip_Test_Input_Parameters: height<=0", tip(0, one, {}, {})},
         {"tip_Test_Input_Parameters: bad row-index 0", tip(3, one, {0, 1}, {0, 1})},
         {"tip_Test_Input_Parameters: bad start-pointer 0", tip(3, one, {0}, {})},
         {"tip_Test_Input_Parameters: bad start-pointer 0", tip(3, one, {0}, {1, 1})},
         {"tip_Test_Input_Parameters: bad start-pointer 0", tip(3, one, {0}, {0, 2})},
         {"tip_Test_Input_Parameters: decreasing start pointers",
          tip(3, three, {0, 1, 0}, {0, 2, 1, 3})},
         {"tip_Test_Input_Parameters: bad start-pointer", tip(2, three, {0, 1, 2}, {0, 3})},
         {"tip_Test_Input_Parameters: bad row-index", tip(3, three, {0, 1, 3}, {0, 3})},
         {"tip_Test_Input_Parameters: bad row-index", tip(3, three, {-1, 1, 1}, {0, 3})},
         {"tip_Test_Input_Parameters: not increasing order", tip(3, three, {2, 2, 9}, {0, 3})},
         {"tip_Test_Input_Parameters: height<=0 | im_Import: bad Input(s)", [&] {
              const auto start = ints({0, 1});
              const auto rows = growable({0});
              return a.im(0, &one, &rows, &start);
          }}});
    v.czv(4, 0);
    EXPECT_FALSE(a.mvva(&v, &v));
    EXPECT_EQ(failures_of(a), "mvva_Multiply_Vector_Vector_and_Accumulate: dim1!=hh");
    nequar::Matrix<Real> empty;
    EXPECT_FALSE(a.im(&empty));
    EXPECT_EQ(failures_of(a), "czm_Create_Zero_Matrix: bad matrix size | im_Import: 1");
    EXPECT_EQ(value, Real(0));
}

TWIN_TEST(SparseTest, ImportedArraysAndHandedOutStorage) {
    typename TestFixture::MatrixType a, b;
    const auto values = growable({Real(1), Real(2), Real(3)});
    auto rows = growable({1, 0, 2});
    rows.mbs(7);
    const auto start = ints({0, 1, 1, 3});
    ASSERT_TRUE(a.im_Import(3, &values, &rows, &start));
    const Mirror<Real> expected{3, 3, {{{0, 1}, 1}, {{2, 0}, 2}, {{2, 2}, 3}}};
    EXPECT_EQ(fault_of(a, expected), "");

    // Filled through the pointers, then counted in.
    b.czm(3, 3, 3);
    Real* v = nullptr;
    int* r = nullptr;
    int* s = nullptr;
    nequar::Vector<int>* pointers = nullptr;
    b.z_gii(&pointers, &v, &r, &s);
    std::copy(values.p(), values.p() + 3, v);
    std::copy(rows.p(), rows.p() + 3, r);
    std::copy(start.p(), start.p() + 4, s);
    ASSERT_TRUE(b.z_cne(3));
    EXPECT_EQ(fault_of(b, expected), "");
    // The pointers that were handed out follow later insertions.
    b.se(0, 2, Real(9));
    EXPECT_TRUE(*pointers == ints({0, 2, 2, 4}));
    b.se(2, 1, Real(9));
    EXPECT_EQ((*pointers)[3], 5);
}

TWIN_TEST(SparseTest, ZeroElementsAndExtrema) {
    typename TestFixture::VectorType v;
    int i = -7;
    int j = -7;
    v.czv(4, 0);
    EXPECT_TRUE(v.max(&i) == Real(0) && i == 0 && v.itze() && v.fize(i) && i == 0);
    v.se(1, Real(-2));
    EXPECT_TRUE(v.max(&i) == Real(0) && i == 0 && v.min(&i) == Real(-2) && i == 1);
    v.czv(4, 0);
    v.se(0, Real(-2));
    i = -7;
    EXPECT_EQ(v.max_Maximum(&i), Real(0));
    EXPECT_EQ(failures_of(v), "max_Maximum: impossible");
    EXPECT_EQ(i, -7);
    EXPECT_EQ(v.max(), Real(0));
    EXPECT_EQ(failures_of(v), "");
    v *= Real(-1);
    EXPECT_EQ(v.min_Minimum(&i), Real(0));
    EXPECT_EQ(failures_of(v), "min_Minimum: impossible");

    // Element 0 wins among equals, else the last.
    v = typename TestFixture::VectorType();
    const auto dense = nequar::test::vector_of<Real>({3, 1, 3, 1, 2});
    v.im(&dense);
    Real least = 0;
    EXPECT_TRUE(v.maxmin(least, &i, &j) == Real(3) && i == 0 && least == Real(1) && j == 3);
    typename TestFixture::MatrixType a;
    int x = -1;
    int y = -1;
    for (const int n : {1, 7, 30}) {  // both ends of the vectorized search
        a.czm(n, 2, 0);
        for (int k = 0; k < 2 * n; ++k) a.se(k / n, k % n, Real(k == 0 ? -1 : -5));
        EXPECT_TRUE(a.max(&x, &y) == Real(-1) && x == 0 && y == 0 && !a.itze() && !a.fize(x, y));
        EXPECT_TRUE(a.min(&x, &y) == Real(-5) && x == 1 && y == n - 1);
        a.se(1, n / 2, Real(0));
        EXPECT_TRUE(a.max(&x, &y) == Real(0) && x == 1 && y == n / 2 && a.itze());
    }
    a.czm(2, 3, 0);
    for (const auto& [cx, cy] : {std::pair(0, 0), {0, 1}, {1, 1}}) a.se(cx, cy, Real(4));
    EXPECT_TRUE(a.fize(x, y) && x == 1 && y == 0 && a.min(&x, &y) == Real(0) && x == 1 && y == 0);
    // A NaN counts only at the first place.
    a.se(0, 0, TestFixture::kNan);
    EXPECT_NE(a.max(), a.max());
    EXPECT_NE(a.nf(), a.nf());
    EXPECT_NE(a.m(), a.m());
}

TWIN_TEST(SparseTest, Statistics) {
    const Real huge = std::is_same_v<Real, float> ? Real(1e30) : Real(1e200);
    typename TestFixture::VectorType v, w;
    typename TestFixture::MatrixType a;
    Real deviation = -1;
    for (const Real scale : {Real(1), huge, 1 / huge}) {
        v.czv(4, 0);
        v.se(2, 4 * scale);
        EXPECT_EQ(v.mst_Mean_and_Stdev(deviation), scale);
        EXPECT_LT(std::abs(deviation / scale - std::sqrt(Real(3))), Real(1e-6));
        a.czm(2, 2, 0);
        a.se(1, 1, 4 * scale);
        EXPECT_EQ(a.mst_Mean_and_Stdev(deviation), scale);
        EXPECT_LT(std::abs(deviation / scale - std::sqrt(Real(3))), Real(1e-6));
        a.se(0, 1, 3 * scale);
        EXPECT_LT(std::abs(a.nf_Norm_Frobenius() / scale - 5), Real(1e-5));
    }
    const Real largest = std::numeric_limits<Real>::max();
    v.czv(2, 0);
    v.se(0, largest);
    v.se(1, largest);
    EXPECT_EQ(v.m(), largest);
    v.czv(3, 0);
    w.czv(3, 0);
    v.se(0, Real(2));
    v.se(2, Real(-3));
    w.se(0, Real(5));
    w.se(1, Real(1));
    EXPECT_TRUE(v.ds(&w) == Real(19) && v.ps(&w) == Real(10) && v.n1() == Real(5));
    EXPECT_LT(std::abs(v.mse(&w) - Real(19) / 3), Real(1e-6));
    EXPECT_LT(std::abs(v.n2() - std::sqrt(Real(13))), Real(1e-6));
    EXPECT_LT(std::abs(v.ng(3) - std::cbrt(Real(35))), Real(1e-5));
    EXPECT_NE(v.ng(0), v.ng(0));
}

// Weights and values that sums must not make plausible, and products that vanish.
TWIN_TEST(SparseTest, SpecialValues) {
    const Real inf = std::numeric_limits<Real>::infinity();
    const Mirror<Real> left{1, 4, {{{0, 0}, inf}, {{1, 0}, -0.0}, {{2, 0}, 1}}};
    const Mirror<Real> right{1, 4, {{{0, 0}, 1}, {{2, 0}, 0}, {{3, 0}, 2}}};
    auto a = matrix_of(left);
    auto b = matrix_of(right);
    EXPECT_TRUE(a.ammw(&b, Real(0)));
    EXPECT_EQ(fault_of(a, {1, 4, {{{0, 0}, inf}, {{1, 0}, 0}, {{2, 0}, 1}, {{3, 0}, 0}}}), "");
    Real value = 0;
    EXPECT_TRUE(a.ge(1, 0, &value) && std::signbit(value));
    EXPECT_TRUE(a.ammw(&b, inf) && a.ge(2, 0, &value) && value == Real(1));
    EXPECT_TRUE(a.smm(&a) && a.ge(0, 0, &value) && value != value);
    b.mmme(&a);
    EXPECT_TRUE(b.ge(0, 0, &value) && value != value);
    b.se(1, 0, TestFixture::kNan);
    EXPECT_TRUE(b == b && b != matrix_of(right) && b.nee() == 4);
    auto v = vector_of(left.transposed());
    const auto w = vector_of(right.transposed());
    EXPECT_TRUE(v.avvw(&w, Real(0)) && v.nee() == 3);  // a product of 0.0 is not stored
}

// Sizes near INT_MAX: nothing overflows, takes long or is stored beyond the end.
TWIN_TEST(SparseTest, VeryLargeShapes) {
    typename TestFixture::MatrixType a, b, out;
    typename TestFixture::VectorType v, w;
    ASSERT_TRUE(a.czm(INT_MAX, 3, 2) && b.czm(INT_MAX, 3, 2));
    a.se(2, INT_MAX - 1, Real(1));
    a.se(0, 5, Real(2));
    EXPECT_FALSE(a == b);
    b = a;
    EXPECT_TRUE(a == b && a.mse(&b) == Real(0) && a.itze());
    EXPECT_TRUE(a.gc(2, INT_MAX - 2, 2, &v) && v.nee() == 1 && v.dim() == 2);
    EXPECT_FALSE(a.gc(2, INT_MAX - 2, 3, &v));
    EXPECT_TRUE(b.mvva(&(v = typename TestFixture::VectorType()), &v) == false && a.amm(&b));
    EXPECT_TRUE(a.gb(0, 0, 3, INT_MAX, &out) && out == a);
    ASSERT_TRUE(v.czv(INT_MAX, 1) && v.se(INT_MAX - 1, Real(3)) && w.czv(INT_MAX, 0));
    EXPECT_TRUE(v.g(INT_MAX - 1, INT_MAX, &w) && w.dim() == INT_MAX && w.nee() == 1);
    w.se(1, Real(8));
    EXPECT_TRUE(v.s(INT_MAX - 2, &w) && v.nee() == 2 && v.m() > Real(0));
    Real value = 0;
    EXPECT_TRUE(v.ge(INT_MAX - 1, &value) && value == Real(8));
}

// Whatever z_cne leaves, nothing is read or written outside the storage (the sanitizers look on).
TWIN_TEST(SparseTest, CountsOutOfStep) {
    Dice dice(3);
    for (int round = 0; round < 300; ++round) {
        const auto mirror = random_mirror<Real>(dice, 4, 5);
        const auto intact = matrix_of(random_mirror<Real>(dice, 4, 5));
        auto broken = matrix_of(mirror);
        auto v = vector_of(mirror.block(1, 0, 1, 4, true));
        broken.z_cne(dice(0, 2 * broken.nee()));
        v.z_cne(dice(0, 6));
        typename TestFixture::MatrixType other = intact, copy = broken, out;
        typename TestFixture::VectorType line, target = v;
        nequar::Matrix<Real> dense;
        nequar::Vector<Real> dense_line;
        int x = 0;
        int y = 0;
        const auto row = vector_of(random_mirror<Real>(dice, 5, 1));
        const std::function<void()> operations[] = {
            [&] { copy.amm(&intact); },
            [&] { other.amm(&broken); },
            [&] { copy.mmme(&intact); },
            [&] { other.mmme(&broken); },
            [&] { other.sb(0, 0, &broken); },
            [&] { copy.sb(0, 0, &intact); },
            [&] { copy.sc(1, 0, &v); },
            [&] { copy.sr(0, 1, &row); },
            [&] { copy.mvva(&v, &row); },
            [&] { copy.rze(); },
            [&] { copy.t(&copy); },
            [&] { copy.se(dice(0, 4), dice(0, 3), Real(2)); },
            [&] { broken.t(&out); },
            [&] { broken.ex(&dense); },
            [&] { broken.gb(1, 1, 3, 3, &out); },
            [&] { broken.gc(4, 0, 4, &line); },
            [&] { broken.gr(0, 2, 5, &line); },
            [&] { broken.fize(x, y); },
            [&] { broken.max(&x, &y); },
            [&] { broken.mse(&intact); },
            [&] { v.ex(&dense_line); },
            [&] { target.s(2, &v); },
            [&] { target.avv(&v); },
            [&] { v.g(1, 3, &line); },
            [&] { v.ds(&v); },
            [&] { v.max(&x); },
            [&] { target.rze(); },
            [&] { target.se(2, Real(1)); }};
        for (const auto& operation : operations) {
            operation();
            if (dice(0, 3) != 0) {
                other = intact;
                copy = broken;
                target = v;
            }
            ASSERT_TRUE(copy.ex(&dense) && other.ex(&dense) && target.ex(&dense_line));
        }
    }
}

TWIN_TEST(SparseTest, CopiesAndMoves) {
    typename TestFixture::MatrixType a;
    EXPECT_EQ(a.mh() * 10 + a.mw(), 11);
    EXPECT_EQ(a.sbs(), 1);
    a.cim(3, 2);
    EXPECT_EQ(a.sbs(), 2);
    a.zet_s(true);
    const auto copy = a;
    EXPECT_TRUE(copy == a && copy.sbs() == 2 && copy.get_Get_Error_Trace_mode());
    auto moved = std::move(a);
    EXPECT_TRUE(moved == copy && a.mw() == 0 && a.mh() == 0 && a.nee() == 0);
    Real value = 1;
    a.zet_s(false);
    nequar::Matrix<Real> dense;
    typename TestFixture::MatrixType out;
    EXPECT_FALSE(a.ge(0, 0, &value) || a.se(0, 0, 1) || a.t(&out) || a.itze());
    EXPECT_TRUE(a.rze() && a.ex(&dense) && a.mmc(2) && a.m() == Real(0) && a.czm(2, 2, 0));
    typename TestFixture::VectorType v = vector_of(Mirror<Real>{3, 1, {{{0, 1}, 4}}});
    const auto taken = std::move(v);
    EXPECT_TRUE(taken.nee() == 1 && v.dim() == 0 && v.nee() == 0 && !v.se(0, 1) &&
                v.m() == Real(0));
}

TWIN_TEST(SparseTest, SelfTests) {
    typename TestFixture::MatrixType s, made;
    typename TestFixture::VectorType v;
    nequar::Matrix<Real> dense;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double density : {0.0, 0.1, 0.5, 1.0})
        for (const auto& [d1, d2] : {std::pair(1, 1), {1, 6}, {5, 1}, {4, 6}})
            for (const double constant : {0.0, 2.5, 1e-10}) {
                EXPECT_TRUE(
                    s.u_tot_Test_Operations_Total(d1, d2, density, -2, 3, constant, 3, 2, 2, 2, 2))
                    << failures_of(s);
                EXPECT_TRUE(v.u_tot_Test_Operations_Total(d2, density, -3, 1, constant, 3, 2, 2))
                    << failures_of(v);
            }
    s.cr_Clear_Record();
    struct Bad {
        int d1, d2;
        double density, min, max;
        int repetitions;
        const char* code;
    };
    for (const Bad& b : {Bad{0, 1, 0.5, 0, 1, 1, "2"}, Bad{1, -1, 0.5, 0, 1, 1, "3"},
                         Bad{2, 2, 1.1, 0, 1, 1, "4"}, Bad{2, 2, nan, 0, 1, 1, "4"},
                         Bad{2, 2, -0.1, 0, 1, 1, "4"}, Bad{2, 2, 0.5, 0, 1, -1, "5"},
                         Bad{2, 2, 0.5, 2, 1, 1, "6"}, Bad{2, 2, 0.5, nan, 1, 1, "6"}}) {
        using Sparse = typename TestFixture::MatrixType;
        for (const auto test :
             {&Sparse::u_toc_Test_Operations_for_Columns, &Sparse::u_tor_Test_Operations_for_Rows,
              &Sparse::u_tob_Test_Operations_for_Blocks,
              &Sparse::u_tom_Test_Operations_with_Matrices}) {
            EXPECT_TRUE(fails_with(s, b.code,
                                   (s.*test)(b.d1, b.d2, b.density, b.min, b.max, b.repetitions)));
        }
        EXPECT_TRUE(fails_with(s, b.code,
                               s.u_toe_Test_Operations_Elementary(b.d1, b.d2, b.density, b.min,
                                                                  b.max, 1, b.repetitions)));
        EXPECT_FALSE(s.u_tot_Test_Operations_Total(b.d1, b.d2, b.density, b.min, b.max, 1, 0, 0, 0,
                                                   b.repetitions, 0) &&
                     b.repetitions < 0);
    }
    failures_of(s);
    EXPECT_FALSE(s.u_tot_Test_Operations_Total(2, 2, 0.5, 0, 1, 1, 1, 1, -1, 1, 1));
    EXPECT_EQ(failures_of(s),
              "u_tor_Test_Operations_for_Rows: 5 | u_tot_Test_Operations_Total: "
              "u_tor_Test_Operations_for_Rows");
    EXPECT_FALSE(s.u_mrsm_Make_a_Random_Sparse_Matrix(0, 1, 1, 0, 1, &made, &dense));
    EXPECT_TRUE(
        fails_with(s, "1", s.u_mrsm_Make_a_Random_Sparse_Matrix(1, 1, -1, 0, 1, &made, &dense)));
    EXPECT_TRUE(
        fails_with(s, "2", s.u_mrsm_Make_a_Random_Sparse_Matrix(1, 1, 1, 2, 1, &made, &dense)));
    EXPECT_TRUE(
        fails_with(v, "2", v.u_mrsv_Make_a_Random_Sparse_Vector(1, 1, nan, 1, nullptr, nullptr)));
}

// Threads draw different matrices, all within bounds, about as full as they should be.
TWIN_TEST(SparseTest, RandomMakers) {
    typename TestFixture::MatrixType made[4];
    std::vector<std::thread> threads;
    for (auto& one : made)
        threads.emplace_back(
            [&one] { one.u_mrsm_Make_a_Random_Sparse_Matrix(30, 20, 300, -2, 5, &one, nullptr); });
    for (auto& thread : threads) thread.join();
    for (auto& one : made) {
        EXPECT_TRUE(one.mh() == 30 && one.mw() == 20 && one.sbs() == 4);
        // 600 (1 - (1 - 1/600)^300) = 236 places are expected to be hit.
        EXPECT_TRUE(one.nee() > 190 && one.nee() <= 280) << one.nee();
        EXPECT_TRUE(one.max() < 5 && one.min() >= -2 && one.max() > 4 && one.min() < -1);
        EXPECT_TRUE(&one == &made[0] || one != made[0]);
    }
}

}  // namespace
