// Sparse types: what fails, with its records, and leaves everything as it was.
#include <climits>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "sparse/mirror.h"

namespace {

using namespace sparse_test;
using nequar::test::fails_as;

TWINS(SparseFailures);

using Failures = std::vector<std::pair<std::string, std::function<bool()>>>;

// Every call fails with these records and leaves the object as it was.
template <class Object>
void expect_failures(Object& object, const Failures& calls) {
    const Object before = object;
    for (const auto& [failures, call] : calls) {
        SCOPED_TRACE(failures);
        EXPECT_FALSE(call());
        EXPECT_EQ(failures_of(object), failures);
        EXPECT_TRUE(object == before && object.nee() == before.nee());
        EXPECT_EQ(object.sbs(), before.sbs());
    }
}

TWIN_TEST(SparseFailures, OfTheVector) {
    using Vector = nequar::SparseVector<Real>;
    Vector v, w, out;
    v.czv(4, 2);
    v.se(1, Real(5));
    w.czv(3, 1);
    Real value = 7;
    const std::string czv = "czv_Create_Zero_Vector: ", different = ": different dimensions";
    const std::string range = "ivr_Is_Valid_Range: ", index = "ivi_Is_Valid_Index: ";
    const std::string g = "\ng_Get: bad index range";
    expect_failures(
        v, {{czv + "number_of_expected_non_zero_elements<0", [&] { return v.czv(0, -1); }},
            {czv + "dimension<=0", [&] { return v.czv_Create_Zero_Vector(0, 1); }},
            {index + "i<0\nge_Get_Element: bad index", [&] { return v.ge(-1, &value); }},
            {index + "i>=dimension\nse_Set_Element: bad index", [&] { return v.se(4, 1); }},
            {index + "i<0\nace_Add_Constant_to_an_Element: bad index",
             [&] { return v.ace(INT_MIN, 1); }},
            {range + "start>=dimension" + g, [&] { return v.g(4, 1, &out); }},
            {range + "length<=0" + g, [&] { return v.g(0, 0, &out); }},
            {range + "start<0\ns_Set: bad index range", [&] { return v.s(-1, &w); }},
            {"avv_Add_Vector_Vector" + different, [&] { return v.avv(&w); }},
            {"avvw_Add_Vector_Vector_with_Weight" + different, [&] { return v.avvw(&w, 1); }},
            {"svv_Subtract_Vector_Vector" + different, [&] { return v.svv(&w); }},
            {"mvve_Multiply_Vector_Vector_Elementwise" + different, [&] { return v.mvve(&w); }},
            {"ds_Distance_Squared" + different, [&] { return v.ds(&w) != 0; }},
            {"ps_Product_Scalar" + different, [&] { return v.ps(&w) != 0; }},
            {"operator/=: divide by zero", [&] { return v /= Real(0); }},
            {"operator/: divide by zero", [&] { return (v / Real(0)).nee() != 0; }},
            {"mbs_Modify_Blank_Space: 1", [&] { return v.mbs(-1); }},
            {"z_cne_Change_Number_of_Elements: 1", [&] { return v.z_cne(-1); }}});
    EXPECT_EQ(value, Real(0));
    EXPECT_EQ(out.dim(), 1);
    const auto one = growable<Real>({1});
    auto roomy = growable<int>({1});
    roomy.mbs(9);
    EXPECT_TRUE(fails_with(v, "bad Input(s)", v.im(3, &one, &roomy)));
    EXPECT_EQ(failures_of(v),
              "tip_Test_Input_Parameters: different sizes\nim_Import: bad Input(s)");
}

// What matrices and symmetric ones have in common.
template <class Sparse>
Failures failures_of_matrices(Sparse& a, const Sparse& b) {
    const std::string cim = "cim_Create_Identity_Matrix: ", different = ": different dimensions";
    return {{cim + "matrix_width_or_height <= 0", [&] { return a.cim(0, -1); }},
            {cim + "number_of_expected_non_zeros < matrix_width_or_height",
             [&] { return a.cim(1, -1); }},
            {cim + "czm", [&] { return a.cim(2, INT_MAX); }},
            {"amm_Add_Matrix_Matrix" + different, [&] { return a.amm(&b); }},
            {"ammw_Add_Matrix_Matrix_with_Weight" + different, [&] { return a.ammw(&b, 1); }},
            {"smm_Subtract_Matrix_Matrix" + different, [&] { return a.smm(&b); }},
            {"mmme_Multiply_Matrix_Matrix_Elementwise" + different, [&] { return a.mmme(&b); }},
            {"mse_Mean_Squared_Error: different width or height", [&] { return a.mse(&b) != 0; }},
            {"operator/=: divide by zero", [&] { return a /= 0; }},
            {"operator/: divide by zero", [&] { return (a / -0.0F).nee() != 0; }},
            {"operator/: divide by zero", [&] { return (a / 0).mh() != a.mh(); }},
            {"mbs_Modify_Blank_Space: 1", [&] { return a.mbs(-1); }},
            {"z_cne_Change_Number_of_Elements: 1", [&] { return a.z_cne(-1); }}};
}

TWIN_TEST(SparseFailures, OfTheMatrix) {
    nequar::SparseMatrix<Real> a, b, out;
    a.czm(3, 4, 2);
    a.se(2, 1, Real(5));
    b.czm(4, 3, 0);
    nequar::SparseVector<Real> v, high;
    v.czv(3, 1);
    high.czv(4, 0);
    nequar::Matrix<Real> empty;
    Real value = 7;
    expect_failures(a, failures_of_matrices(a, b));
    const std::string czm = "czm_Create_Zero_Matrix: ", bad = ": bad index range";
    const std::string pixel = "ivip_Is_Valid_Index_for_Pixel: ";
    const std::string column = "ivrc_Is_Valid_Range_for_Column: ";
    const std::string row = "ivrr_Is_Valid_Range_for_Row: ";
    const std::string block = "ivrb_Is_Valid_Range_for_Block: ";
    const std::string mvva = "mvva_Multiply_Vector_Vector_and_Accumulate: ";
    expect_failures(
        a,
        {{czm + "number_of_expected_non_zero_elements<0", [&] { return a.czm(0, 0, -1); }},
         {czm + "bad matrix size", [&] { return a.czm(0, 1, 0); }},
         {czm + "bad matrix size", [&] { return a.czm(1, INT_MAX, 0); }},
         {czm + "bad matrix size\nim_Import: 1", [&] { return a.im(&empty); }},
         {pixel + "x<0\nse_Set_Element: bad index", [&] { return a.se(-1, -1, 1); }},
         {pixel + "x>=width\nge_Get_Element: bad index", [&] { return a.ge(4, 3, &value); }},
         {pixel + "y<0\nace_Add_Constant_to_an_Element: bad index",
          [&] { return a.ace(0, -1, 1); }},
         {pixel + "y>=height", [&] { return a.ivip(0, 3); }},
         {"ivic_Is_Valid_Index_for_Column: x>=width", [&] { return a.ivic(4); }},
         {"ivic_Is_Valid_Index_for_Column: x<0", [&] { return a.ivic(-1); }},
         {"ivir_Is_Valid_Index_for_Row: y<0", [&] { return a.ivir(-1); }},
         {"ivir_Is_Valid_Index_for_Row: y>=height", [&] { return a.ivir(3); }},
         {column + "dy<=0\ngc_Get_Column" + bad, [&] { return a.gc(0, 0, 0, &v); }},
         {column + "(y+dy)>height\ngc_Get_Column" + bad, [&] { return a.gc(0, 1, INT_MAX, &v); }},
         {column + "(y+dy)>height\nsc_Set_Column" + bad, [&] { return a.sc(0, 1, &v); }},
         {row + "dx<=0\ngr_Get_Row" + bad, [&] { return a.gr(0, 0, -1, &v); }},
         {row + "(x+dx)>width\nsr_Set_Row" + bad, [&] { return a.sr(2, 0, &v); }},
         {block + "(x+dx)>width\ngb_Get_Block" + bad, [&] { return a.gb(1, 0, INT_MAX, 0, &out); }},
         {block + "dy<=0\ngb_Get_Block" + bad, [&] { return a.gb(0, 0, 1, 0, &out); }},
         {block + "(y+dy)>height\nsb_Set_Block" + bad, [&] { return a.sb(0, 0, &b); }},
         {mvva + "dim2!=ww", [&] { return a.mvva(&v, &v); }},
         {mvva + "dim1!=hh", [&] { return a.mvva(&high, &high); }}});
    EXPECT_EQ(value, Real(0));
}

TWIN_TEST(SparseFailures, OfTheSymmetricMatrix) {
    nequar::SparseSymmetricMatrix<Real> s, small, huge;
    s.czm(4, 3);
    s.se(3, 1, Real(-2));
    nequar::SparseVector<Real> v;
    nequar::SparseMatrix<Real> general, oblong;
    nequar::Matrix<Real> dense;
    v.czv(3, 1);
    dense.c_Create(2, 3, Real(1));
    oblong.czm(2, 3, 1);
    Real value = 7;
    expect_failures(s, failures_of_matrices(s, small));
    const std::string czm = "czm_Create_Zero_Matrix: ", bad = ": bad index";
    const std::string pixel = "ivip_Is_Valid_Index_for_Pixel: ";
    const std::string column = "ivrc_Is_Valid_Range_for_Column: ";
    expect_failures(
        s, {{czm + "number_of_expected_non_zero_elements<0", [&] { return s.czm(0, -1); }},
            {czm + "bad matrix size", [&] { return s.czm(0, 0); }},
            {czm + "bad matrix size", [&] { return s.czm(INT_MAX, 0); }},
            {pixel + "y>=height\nge_Get_Element" + bad, [&] { return s.ge(4, 0, &value); }},
            {pixel + "x<0\nse_Set_Element" + bad, [&] { return s.se(0, -1, 1); }},
            {pixel + "y>=height\nace_Add_Constant_to_an_Element" + bad,
             [&] { return s.ace(0, 4, 1); }},
            {"im_Import: 1", [&] { return s.im(&dense, true, &dense); }},
            {"im_Import: 4", [&] { return s.im(&oblong, false, nullptr); }},
            {column + "(y+dy)>height\ngc_Get_Column: bad index range",
             [&] { return s.gc(0, 2, INT_MAX, &v); }},
            {column + "x>=width\ngc_Get_Column: bad index range\ngr_Get_Row: 1",
             [&] { return s.gr(0, 4, 1, &v); }},
            {"ivrb_Is_Valid_Range_for_Block: dx<=0\ngb_Get_Block: 1",
             [&] { return s.gb(0, 0, 0, 1, &general); }},
            {"mvva_Multiply_Vector_Vector_and_Accumulate: dim1!=hh", [&] { return s.mvva(&v); }}});
    EXPECT_EQ(value, Real(0));
    // A dense matrix that no memory holds: the sparse outputs stay as they were.
    ASSERT_TRUE(huge.czm(2000000, 1) && huge.se(1999999, 5, Real(2)));
    EXPECT_TRUE(fails_with(huge, "1", huge.ex(&general, &dense)));
    EXPECT_TRUE(general.mh() == 1 && dense.mh() == 2 && huge.itze());
    EXPECT_NEAR(huge.m() / Real(1e-12), 1, 1e-6);
    EXPECT_EQ(huge.nf(), std::sqrt(Real(8)));
}

// As many values as are said at these rows; vectors have no starts of columns.
struct Arrays {
    int n;
    std::size_t count;
    std::vector<int> rows, start;
    std::string fault;
};

// Arrays are tested before they are imported; a refusal leaves everything as it was.
template <class Sparse, class Real>
void expect_tested(std::initializer_list<Arrays> all) {
    for (const Arrays& arrays : all) {
        SCOPED_TRACE(arrays.fault);
        const auto values = growable(std::vector<Real>(arrays.count, Real(1)));
        const auto rows = growable(arrays.rows);
        const auto start = ints(arrays.start);
        const bool is_good = arrays.fault.empty();
        const std::string fault = is_good ? "" : "tip_Test_Input_Parameters: " + arrays.fault;
        Sparse s;
        if constexpr (requires { s.se(0, 0, Real(5)); })
            s.se(0, 0, Real(5));
        else
            s.se(0, Real(5));
        const Sparse before = s;
        const auto expect = [&](const auto*... given) {
            EXPECT_EQ(s.tip_Test_Input_Parameters(arrays.n, given...), is_good);
            EXPECT_EQ(failures_of(s), fault);
            EXPECT_EQ(s.im_Import(arrays.n, given...), is_good);
            EXPECT_EQ(failures_of(s), is_good ? "" : fault + "\nim_Import: bad Input(s)");
            EXPECT_EQ(s == before, !is_good);
        };
        if constexpr (requires { s.im(3, &values, &rows, &start); })
            expect(&values, &rows, &start);
        else
            expect(&values, &rows);
    }
}

TWIN_TEST(SparseFailures, OfImportedArrays) {
    const std::string order = "not increasing order", start = "bad start-pointer";
    expect_tested<nequar::SparseVector<Real>, Real>(
        {{0, 1, {0}, {}, "non-positive vector dimension"},
         {3, 2, {0}, {}, "different sizes"},
         {3, 1, {-1}, {}, "negative index"},
         {3, 1, {3}, {}, "index is greater than dimension"},
         {3, 2, {1, 1}, {}, order},
         {3, 2, {0, 2}, {}, ""}});
    expect_tested<nequar::SparseMatrix<Real>, Real>(
        {{0, 1, {}, {}, "height<=0"},
         {3, 1, {0, 1}, {0, 1}, "bad row-index 0"},
         {3, 1, {0}, {}, start + " 0"},
         {3, 1, {0}, {1, 1}, start + " 0"},
         {3, 1, {0}, {0, 2}, start + " 0"},
         {3, 3, {0, 1, 0}, {0, 2, 1, 3}, "decreasing start pointers"},
         {2, 3, {0, 1, 2}, {0, 3}, start},
         {3, 3, {0, 1, 3}, {0, 3}, "bad row-index"},
         {3, 3, {-1, 1, 1}, {0, 3}, "bad row-index"},
         {3, 3, {2, 2, 9}, {0, 3}, order},
         {3, 3, {1, 0, 2}, {0, 1, 1, 3}, ""}});
    expect_tested<nequar::SparseSymmetricMatrix<Real>, Real>(
        {{0, 0, {}, {0}, "height<=0"},
         {1, 2, {0}, {0, 1}, "bad row-index 0"},
         {3, 1, {0}, {0, 1, 1}, "ww!=hh"},
         {3, 1, {0}, {1, 1, 1, 1}, start + " 0"},
         {3, 1, {0}, {0, 1, 1, 2}, start + " 0"},
         {3, 3, {0, 1, 2}, {0, 2, 1, 3}, "decreasing start pointers"},
         {2, 3, {0, 1, 1}, {0, 3, 3}, start},
         {3, 2, {0, 3}, {0, 2, 2, 2}, "r[k]>=hh"},
         {3, 3, {0, 1, 1}, {0, 1, 2, 3}, "r[k]<x"},
         {3, 1, {-1}, {0, 1, 1, 1}, "r[k]<x"},
         {3, 2, {1, 1}, {0, 2, 2, 2}, order},
         {3, 3, {0, 2, 2}, {0, 2, 2, 3}, ""}});
}

// The sizes come first, the numbers of repetitions last.
template <class Sparse, class... Sizes>
void expect_self_tests_refuse(const char* code, double density, double min, double max,
                              double constant, int repetitions, Sizes... sizes) {
    SCOPED_TRACE(testing::Message()
                 << code << ", density " << density << ", " << min << " to " << max);
    Sparse s;
    for (const auto test :
         {&Sparse::u_toc_Test_Operations_for_Columns, &Sparse::u_tor_Test_Operations_for_Rows,
          &Sparse::u_tob_Test_Operations_for_Blocks, &Sparse::u_tom_Test_Operations_with_Matrices})
        EXPECT_TRUE(fails_with(s, code, (s.*test)(sizes..., density, min, max, repetitions)));
    EXPECT_TRUE(fails_with(
        s, code,
        s.u_toe_Test_Operations_Elementary(sizes..., density, min, max, constant, repetitions)));
}

TWIN_TEST(SparseFailures, OfSelfTests) {
    using Matrix = nequar::SparseMatrix<Real>;
    using Symmetric = nequar::SparseSymmetricMatrix<Real>;
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    expect_self_tests_refuse<Matrix>("2", 0.5, 0, 1, 1, 1, 0, 1);
    expect_self_tests_refuse<Matrix>("3", 0.5, 0, 1, 1, 1, 1, -1);
    expect_self_tests_refuse<Symmetric>("2", 0.5, 0, 1, 1, 1, 0);
    expect_self_tests_refuse<Symmetric>("2", nan, 1, 0, nan, -1, -3);
    expect_self_tests_refuse<Symmetric>("7", 0.5, -infinity, infinity, 1, 1, 3);
    for (const double density : {0.0, 1.0})
        expect_self_tests_refuse<Symmetric>("7", density, 0, 1, 1, 1, INT_MAX);
    const struct {
        const char* code;
        double density, min, max;
        int repetitions;
    } cases[] = {{"4", -0.1, 0, 1, 1}, {"4", 1.1, 0, 1, 1}, {"4", nan, 0, 1, 1},
                 {"5", 0.5, 0, 1, -1}, {"6", 0.5, 2, 1, 1}, {"6", 0.5, nan, 1, 1},
                 {"6", 0.5, 0, nan, 1}};
    for (const auto& [code, density, min, max, repetitions] : cases) {
        expect_self_tests_refuse<Matrix>(code, density, min, max, 1, repetitions, 2, 2);
        expect_self_tests_refuse<Symmetric>(code, density, min, max, 1, repetitions, 3);
    }
    Matrix a, made;
    Symmetric s;
    nequar::SparseVector<Real> v;
    nequar::Matrix<Real> dense;
    const std::string names[] = {
        "u_toe_Test_Operations_Elementary", "u_toc_Test_Operations_for_Columns",
        "u_tor_Test_Operations_for_Rows", "u_tob_Test_Operations_for_Blocks",
        "u_tom_Test_Operations_with_Matrices"};
    for (int bad = 0; bad < 5; ++bad) {
        int n[5] = {1, 1, 1, 1, 1};
        n[bad] = -1;
        const std::string total = names[bad] + ": 5\nu_tot_Test_Operations_Total: " + names[bad];
        EXPECT_TRUE(fails_as(
            a, total,
            a.u_tot_Test_Operations_Total(2, 2, 0.5, 0, 1, 1, n[0], n[1], n[2], n[3], n[4])));
        EXPECT_TRUE(
            fails_as(s, total,
                     s.u_tot_Test_Operations_Total(3, 0.5, 0, 1, 1, n[0], n[1], n[2], n[3], n[4])));
    }
    EXPECT_TRUE(s.u_toe_Test_Operations_Elementary(INT_MAX, 1, 0, 1, 1, 0));
    EXPECT_TRUE(fails_as(s, "u_toe_Test_Operations_Elementary: 1",
                         s.u_toe_Test_Operations_Elementary(3, 0.5, 0, 1, nan, 0)));
    const std::string maker = "u_mrsm_Make_a_Random_Sparse_Matrix";
    EXPECT_FALSE(a.u_mrsm_Make_a_Random_Sparse_Matrix(0, 1, 1, 0, 1, &made, &dense));
    EXPECT_TRUE(fails_as(a, maker + ": 1",
                         a.u_mrsm_Make_a_Random_Sparse_Matrix(1, 1, -1, 0, 1, &made, &dense)));
    EXPECT_TRUE(fails_as(a, maker + ": 2",
                         a.u_mrsm_Make_a_Random_Sparse_Matrix(1, 1, 1, 2, 1, &made, &dense)));
    EXPECT_FALSE(s.u_mrsm_Make_a_Random_Sparse_Matrix(6, -1, 2, 1, &s, &dense));
    EXPECT_TRUE(
        fails_as(s, maker + ": 2", s.u_mrsm_Make_a_Random_Sparse_Matrix(6, 1, 2, 1, &s, &dense)));
    EXPECT_TRUE(fails_as(v, "u_mrsv_Make_a_Random_Sparse_Vector: 2",
                         v.u_mrsv_Make_a_Random_Sparse_Vector(1, 1, nan, 1, nullptr, nullptr)));
}

}  // namespace
