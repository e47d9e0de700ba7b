#include <cmath>

#include "algebra/plain.h"

namespace {

using namespace plain;

TWINS(VectorAlgebraTest);

TWIN_TEST(VectorAlgebraTest, SumsAndProductsIntoAnyOperand) {
    using Vector = nequar::Vector<Real>;
    const nequar::AlgebraForVector<Real> al;
    const SumCase<Vector> cases[] = {
        SUM(avv_Add_Vector_Vector(a, b, out), a + b),
        SUM(avv_Add_Vector_Vector(a, b, c, out), a + b + c),
        SUM(avv_Add_Vector_Vector(a, b, c, d, out), a + b + c + d),
        SUM(avvw_Add_Vector_Vector_with_Weight(a, b, 2, -3, out), 2 * a - 3 * b),
        SUM(avvw_Add_Vector_Vector_with_Weight(a, b, c, 2, -3, 5, out), 2 * a - 3 * b + 5 * c),
        SUM(avvw_Add_Vector_Vector_with_Weight(a, b, c, d, 2, -3, 5, 7, out),
            2 * a - 3 * b + 5 * c + 7 * d),
        SUM(svv_Subtract_Vector_Vector(a, b, out), a - b),
        SUM(mvve_Multiply_Vector_Vector_Elementwise(a, b, out), a * b),
        SUM(avc_Add_Vector_Constant(a, 3, out), a + 3),
        SUM(mvc_Multiply_Vector_Constant(a, 3, out), 3 * a)};
    for (const auto& test : cases)
        for (const int n : {0, 1, 7, 600, 1025})  // around the chunk of the sums
            for (int target = 0; target < 5; ++target) {
                Vector v[5];
                for (int i = 0; i < 4; ++i) v[i] = random_vector<Real>(n, unsigned(i));
                v[4] = random_vector<Real>(3, 9);
                const Vector a = v[0], b = v[1], c = v[2], d = v[3];
                const Real* const storage = v[target].p();
                test.run(&v[0], &v[1], &v[2], &v[3], &v[target]);
                EXPECT_LT(
                    largest_difference(
                        v[target], n, [&](int i) { return test.expected(a[i], b[i], c[i], d[i]); }),
                    bound<Real>(20))
                    << test.name << ' ' << n << " into " << target;
                if (target < 4) {
                    EXPECT_EQ(v[target].p(), storage) << test.name;
                }
            }
    // One vector in every place.
    Vector x = vector<Real>({1, -2});
    al.avv_Add_Vector_Vector(&x, &x, &x, &x, &x);
    EXPECT_TRUE(x == vector<Real>({4, -8}));
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(VectorAlgebraTest, DifferentSizesAreReportedAndNothingIsTouched) {
    const nequar::AlgebraForVector<Real> al;
    const auto a = random_vector<Real>(4, 1);
    const auto b = random_vector<Real>(5, 2);
    auto out = vector<Real>({7, 8, 9});
    const auto kept = out;
    EXPECT_REFUSED(avv_Add_Vector_Vector, &a, &b, &out);
    EXPECT_REFUSED(svv_Subtract_Vector_Vector, &a, &b, &out);
    EXPECT_REFUSED(mvve_Multiply_Vector_Vector_Elementwise, &a, &b, &out);
    EXPECT_REFUSED(avvw_Add_Vector_Vector_with_Weight, &b, &a, 1, 2, &out);
    EXPECT_REFUSED(avv_Add_Vector_Vector, &a, &a, &b, &out);
    EXPECT_REFUSED(avv_Add_Vector_Vector, &a, &a, &a, &b, &out);
    EXPECT_REFUSED(avvw_Add_Vector_Vector_with_Weight, &a, &a, &b, 1, 2, 3, &out);
    EXPECT_REFUSED(avvw_Add_Vector_Vector_with_Weight, &a, &a, &a, &b, 1, 2, 3, 4, &out);
    EXPECT_EQ(al.ds_Distance_Squared_between_two_points(&a, &b), Real(-1));
    EXPECT_TRUE(failed_with(al, "ds_Distance_Squared_between_two_points", "1"));
    // A later operand that is the output keeps its elements, too.
    EXPECT_REFUSED(avv_Add_Vector_Vector, &a, &b, &out, &out);
}

TWIN_TEST(VectorAlgebraTest, Scalars) {
    const nequar::AlgebraForVector<Real> al;
    const auto a = vector<Real>({1, 2, 3});
    const auto b = vector<Real>({4, -5, 6});
    EXPECT_EQ(al.ps_Product_Scalar(&a, &b), 12);
    EXPECT_EQ(al.ms_Magnitude_Squared(&b), 77);
    EXPECT_EQ(al.ds_Distance_Squared_between_two_points(&a, &b), 67);
    auto c = vector<Real>({-3, 0, 4});
    EXPECT_TRUE(al.n_Normalize_vector(&c));
    EXPECT_TRUE(c == vector<Real>({-0.6, 0, 0.8}));
    auto zero = vector<Real>({0, 0});
    EXPECT_FALSE(al.n_Normalize_vector(&zero));
    nequar::Vector<Real> empty;
    EXPECT_FALSE(al.n_Normalize_vector(&empty));
    EXPECT_EQ(al.ps_Product_Scalar(&empty, &empty), 0);
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(VectorAlgebraTest, FatalFormsPrintAndEndTheProcessWithStatusZero) {
    const nequar::AlgebraForVector<Real> al;
    const nequar::Vector<Real> v[] = {random_vector<Real>(2, 1), random_vector<Real>(3, 2),
                                      random_vector<Real>(4, 3)};
    const std::string name = al.gcn_Get_Class_Name().c_str();
    const auto dies = [&](auto run, const std::string& message) {
        EXPECT_EXIT(run(), ::testing::ExitedWithCode(0), "^" + name + "::" + message + "\n$");
    };
    dies([&] { al.ps_Product_Scalar(&v[1], &v[2]); }, "ps_Product_Scalar: 1");
    const std::string line = "dspl_Distance_Squared_between_Point_2D_and_Line: ";
    dies([&] { al.dspl_Distance_Squared_between_Point_2D_and_Line(&v[1], &v[2]); }, line + "1");
    dies([&] { al.dspl_Distance_Squared_between_Point_2D_and_Line(&v[0], &v[2]); }, line + "2");
    const std::string plane = "dspp_Distance_Squared_between_Point_3D_and_Plane: ";
    dies([&] { al.dspp_Distance_Squared_between_Point_3D_and_Plane(&v[0], &v[1]); }, plane + "1");
    dies([&] { al.dspp_Distance_Squared_between_Point_3D_and_Plane(&v[1], &v[0]); }, plane + "2");
}

TWIN_TEST(VectorAlgebraTest, GeometryChecksSizesInOrder) {
    using Vector = nequar::Vector<Real>;
    const nequar::AlgebraForVector<Real> al;
    const Vector p2 = random_vector<Real>(2, 1);
    const Vector p3 = random_vector<Real>(3, 2);
    Vector out = vector<Real>({7, 8, 9, 10, 11});
    const Vector kept = out;
#define EXPECT_FALSE_WITH(detail, method, ...)     \
    EXPECT_FALSE(al.method(__VA_ARGS__, &out));    \
    EXPECT_TRUE(failed_with(al, #method, detail)); \
    EXPECT_TRUE(out == kept)
    EXPECT_FALSE_WITH("1", pv3_Product_Vector_of_vector_3D, &p2, &p2);
    EXPECT_FALSE_WITH("2", pv3_Product_Vector_of_vector_3D, &p3, &p2);
    EXPECT_FALSE_WITH("1", nvt_Normal_Vector_of_Triangle_3D, &p2, &p2, &p3);
    EXPECT_FALSE_WITH("2", nvt_Normal_Vector_of_Triangle_3D, &p3, &p2, &p2);
    EXPECT_FALSE_WITH("3", nvt_Normal_Vector_of_Triangle_3D, &p3, &p3, &p2);
    EXPECT_FALSE_WITH("1", fp_Find_Plane_equation_of_triangle_3D, &p2, &p2, &p3);
    EXPECT_FALSE_WITH("2", fp_Find_Plane_equation_of_triangle_3D, &p3, &p2, &p2);
    EXPECT_FALSE_WITH("3", fp_Find_Plane_equation_of_triangle_3D, &p3, &p3, &p2);
    EXPECT_FALSE_WITH("1", fl_Find_Line_equation_of_segment_2D, &p3, &p3);
    EXPECT_FALSE_WITH("2", fl_Find_Line_equation_of_segment_2D, &p2, &p3);
    EXPECT_FALSE_WITH("1", nvs_Normal_Vector_of_Segment_2D, &p3, &p3);
    EXPECT_FALSE_WITH("2", nvs_Normal_Vector_of_Segment_2D, &p2, &p3);
#undef EXPECT_FALSE_WITH
}

TWIN_TEST(VectorAlgebraTest, GeometryIntoItsOwnOperands) {
    const nequar::AlgebraForVector<Real> al;
    const auto a = vector<Real>({1, 2, 3}), b = vector<Real>({4, -5, 6});
    const auto cross = vector<Real>({27, 6, -13});
    auto x = a, y = b;
    EXPECT_TRUE(al.pv3_Product_Vector_of_vector_3D(&x, &b, &x));
    EXPECT_TRUE(x == cross);
    EXPECT_TRUE(al.pv3_Product_Vector_of_vector_3D(&a, &y, &y));
    EXPECT_TRUE(y == cross);

    // The outputs are longer than the operands: their storage moves.
    const auto p = vector<Real>({1, 1}), q = vector<Real>({4, 5});
    const auto line = vector<Real>({-0.8, 0.6, 0.2});
    x = p;
    EXPECT_TRUE(al.fl_Find_Line_equation_of_segment_2D(&x, &q, &x));
    EXPECT_LT(largest_difference(x, 3, [&](int i) { return line[i]; }), bound<Real>(4));
    EXPECT_LT(std::abs(al.dspl_Distance_Squared_between_Point_2D_and_Line(&p, &x)), bound<Real>(4));
    y = q;
    EXPECT_TRUE(al.nvs_Normal_Vector_of_Segment_2D(&p, &y, &y));
    EXPECT_LT(largest_difference(y, 2, [&](int i) { return line[i]; }), bound<Real>(4));
    const auto t0 = vector<Real>({0, 0, 2}), t1 = vector<Real>({3, 0, 2});
    auto t2 = vector<Real>({1, 5, 2});
    EXPECT_TRUE(al.nvt_Normal_Vector_of_Triangle_3D(&t0, &t1, &t2, &x));
    EXPECT_TRUE(x == vector<Real>({0, 0, 1}));
    EXPECT_TRUE(al.fp_Find_Plane_equation_of_triangle_3D(&t0, &t1, &t2, &t2));
    EXPECT_TRUE(t2 == vector<Real>({0, 0, 1, -2}));
    EXPECT_EQ(al.dspp_Distance_Squared_between_Point_3D_and_Plane(&a, &t2), 1);

    // What is degenerate succeeds.
    EXPECT_TRUE(al.fl_Find_Line_equation_of_segment_2D(&p, &p, &x));
    EXPECT_TRUE(x == vector<Real>({0, 0, 0}));
    EXPECT_TRUE(al.nvs_Normal_Vector_of_Segment_2D(&p, &p, &x));
    EXPECT_TRUE(x == vector<Real>({0, 0}));
    EXPECT_TRUE(al.fp_Find_Plane_equation_of_triangle_3D(&a, &a, &b, &x));
    EXPECT_TRUE(x == vector<Real>({0, 0, 0, 0}));
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(VectorAlgebraTest, RawArraysOfEitherTypeEvenWithinTheVector) {
    const nequar::AlgebraForVector<Real> al;
    const double doubles[] = {1.5, -2, 3};
    const float floats[] = {1.5F, -2, 3};
    CNqVector d;
    CNqVectorFloat f;
    al.ev_Export_Vector(3, doubles, &f);
    al.ev_Export_Vector(3, floats, &d);
    EXPECT_TRUE(d == vector<double>({1.5, -2, 3}) && f == vector<float>({1.5, -2, 3}));
    al.ev_Export_Vector(2, doubles + 1, &d);
    al.ev_Export_Vector(2, floats + 1, &f);
    EXPECT_TRUE(d == vector<double>({-2, 3}) && f == vector<float>({-2, 3}));

    double to_double[3] = {};
    float to_float[3] = {};
    int n = 0;
    al.iv_Import_Vector(&f, to_double, n);
    EXPECT_TRUE(n == 2 && to_double[0] == -2 && to_double[1] == 3 && to_double[2] == 0);
    al.iv_Import_Vector(&d, to_float, n);
    EXPECT_TRUE(n == 2 && to_float[0] == -2 && to_float[1] == 3);

    auto v = vector<Real>({1, 2, 3, 4, 5});
    al.iv_Import_Vector(&v, v.p(), n);
    EXPECT_EQ(n, 5);
    al.ev_Export_Vector(3, v.p() + 2, &v);
    EXPECT_TRUE(v == vector<Real>({3, 4, 5}));
    EXPECT_TRUE(never_failed(al));

    al.ev_Export_Vector(-1, v.p(), &v);
    EXPECT_STREQ(al.gft_Get_Failure_Trace().c_str(),
                 (std::string(v.gcn_Get_Class_Name().c_str()) + "::c_Create: 1\n" +
                  al.gcn_Get_Class_Name().c_str() + "::ev_Export_Vector: cannot size the output")
                     .c_str());
    EXPECT_TRUE(v == vector<Real>({3, 4, 5}));
}

TEST(VectorAlgebra, NamesCopiesAndTheTraceFlag) {
    const LCNqAlgebra_for_Vector d;
    const LCNqAlgebra_for_VectorFloat f;
    const LCNqAlgebra_Basic basic;
    EXPECT_STREQ(d.gcn_Get_Class_Name().c_str(), "LCNqAlgebra_for_Vector");
    EXPECT_STREQ(f.gcn_Get_Class_Name().c_str(), "LCNqAlgebra_for_VectorFloat");
    EXPECT_STREQ(basic.gcn_Get_Class_Name().c_str(), "LCNqAlgebra_Basic");
    struct Inspected : LCNqAlgebra_for_Vector {
        bool member_mode() const { return basic_.get_Get_Error_Trace_mode(); }
    } inspected;
    inspected.zet_s(true);
    EXPECT_FALSE(inspected.member_mode());
    inspected.zet_xm();
    EXPECT_TRUE(inspected.member_mode());
    const Inspected copy = inspected;
    EXPECT_TRUE(copy.member_mode() && copy.get_Get_Error_Trace_mode());
    EXPECT_STREQ(copy.gcn_Get_Class_Name().c_str(), "LCNqAlgebra_for_Vector");
}

}  // namespace
