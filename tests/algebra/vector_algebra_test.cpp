#include "algebra/plain.h"

namespace nequar::test {
namespace {

TWINS(VectorAlgebra);

TWIN_TEST(VectorAlgebra, Scalars) {
    const AlgebraForVector<Real> al;
    const auto a = vector_of<Real>({1, 2, 3}), b = vector_of<Real>({4, -5, 6});
    EXPECT_EQ(al.ps_Product_Scalar(&a, &b), 12);
    EXPECT_EQ(al.ms_Magnitude_Squared(&b), 77);
    EXPECT_EQ(al.ds_Distance_Squared_between_two_points(&a, &b), 67);
    auto c = vector_of<Real>({-3, 0, 4}), zero = vector_of<Real>({0, 0}),
         empty = vector_of<Real>({});
    EXPECT_TRUE(al.n_Normalize_vector(&c));
    EXPECT_TRUE(c == vector_of<Real>({-0.6, 0, 0.8}));
    EXPECT_FALSE(al.n_Normalize_vector(&zero) || al.n_Normalize_vector(&empty));
    EXPECT_EQ(al.ps_Product_Scalar(&empty, &empty), 0);
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(VectorAlgebra, FatalFormsPrintAndEndTheProcessWithStatusZero) {
    const AlgebraForVector<Real> al;
    const Vector<Real> two = random_vector<Real>(2, 1), three = random_vector<Real>(3, 2),
                       four = random_vector<Real>(4, 3);
    const auto dies = [&](auto run, const std::string& message) {
        EXPECT_EXIT(run(), testing::ExitedWithCode(0),
                    "^" + (al.gcn_Get_Class_Name().c_str() + ("::" + message)) + "\n$");
    };
    dies([&] { al.ps_Product_Scalar(&three, &four); }, "ps_Product_Scalar: 1");
    const std::string line = "dspl_Distance_Squared_between_Point_2D_and_Line: ";
    dies([&] { al.dspl_Distance_Squared_between_Point_2D_and_Line(&three, &four); }, line + "1");
    dies([&] { al.dspl_Distance_Squared_between_Point_2D_and_Line(&two, &four); }, line + "2");
    const std::string plane = "dspp_Distance_Squared_between_Point_3D_and_Plane: ";
    dies([&] { al.dspp_Distance_Squared_between_Point_3D_and_Plane(&two, &three); }, plane + "1");
    dies([&] { al.dspp_Distance_Squared_between_Point_3D_and_Plane(&three, &two); }, plane + "2");
}

TWIN_TEST(VectorAlgebra, GeometryChecksSizesInOrder) {
    AlgebraForVector<Real> al;
    const auto p2 = random_vector<Real>(2, 1), p3 = random_vector<Real>(3, 2),
               kept = random_vector<Real>(5, 3);
    auto out = kept;
#define EXPECT_FALSE_WITH(detail, method, ...)                                    \
    al.cr_Clear_Record();                                                         \
    EXPECT_TRUE(fails_as(al, #method ": " detail, al.method(__VA_ARGS__, &out))); \
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

TWIN_TEST(VectorAlgebra, GeometryIntoItsOwnOperands) {
    const AlgebraForVector<Real> al;
    const auto a = vector_of<Real>({1, 2, 3}), b = vector_of<Real>({4, -5, 6});
    const auto cross = vector_of<Real>({27, 6, -13});
    auto x = a, y = b;
    EXPECT_TRUE(al.pv3_Product_Vector_of_vector_3D(&x, &b, &x) && x == cross);
    EXPECT_TRUE(al.pv3_Product_Vector_of_vector_3D(&a, &y, &y) && y == cross);
    // The outputs are longer than the operands: their storage moves.
    const auto p = vector_of<Real>({1, 1}), q = vector_of<Real>({4, 5});
    x = p;
    EXPECT_TRUE(al.fl_Find_Line_equation_of_segment_2D(&x, &q, &x));
    EXPECT_LT(largest_difference(x, vector_of<Real>({-0.8, 0.6, 0.2})), bound<Real>(4));
    EXPECT_LT(std::abs(al.dspl_Distance_Squared_between_Point_2D_and_Line(&p, &x)), bound<Real>(4));
    y = q;
    EXPECT_TRUE(al.nvs_Normal_Vector_of_Segment_2D(&p, &y, &y));
    EXPECT_LT(largest_difference(y, vector_of<Real>({-0.8, 0.6})), bound<Real>(4));
    const auto t0 = vector_of<Real>({0, 0, 2}), t1 = vector_of<Real>({3, 0, 2});
    const auto normal = vector_of<Real>({0, 0, 1}), plane = vector_of<Real>({0, 0, 1, -2});
    auto t2 = vector_of<Real>({1, 5, 2});
    EXPECT_TRUE(al.nvt_Normal_Vector_of_Triangle_3D(&t0, &t1, &t2, &x) && x == normal);
    EXPECT_TRUE(al.fp_Find_Plane_equation_of_triangle_3D(&t0, &t1, &t2, &t2) && t2 == plane);
    EXPECT_EQ(al.dspp_Distance_Squared_between_Point_3D_and_Plane(&a, &plane), 1);

    // What is degenerate succeeds.
    EXPECT_TRUE(al.fl_Find_Line_equation_of_segment_2D(&p, &p, &x));
    EXPECT_TRUE(x == vector_of<Real>({0, 0, 0}));
    EXPECT_TRUE(al.nvs_Normal_Vector_of_Segment_2D(&p, &p, &x) && x == vector_of<Real>({0, 0}));
    EXPECT_TRUE(al.fp_Find_Plane_equation_of_triangle_3D(&a, &a, &b, &x));
    EXPECT_TRUE(x == vector_of<Real>({0, 0, 0, 0}));
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(VectorAlgebra, RawArraysOfEitherTypeEvenWithinTheVector) {
    const AlgebraForVector<Real> al;
    const auto check = [&](auto* const src, auto to) {
        Vector<Real> v;
        for (const int n : {3, 2}) {
            al.ev_Export_Vector(n, src, &v);
            EXPECT_EQ(v.vs(), n);
            decltype(to) array[3] = {};
            int count = 0;
            al.iv_Import_Vector(&v, array, count);
            EXPECT_TRUE(count == n && std::equal(array, array + n, src));
            EXPECT_EQ(array[2] == 0, n == 2);
        }
    };
    const double doubles[] = {1.5, -2, 3};
    const float floats[] = {1.5F, -2, 3};
    check(doubles, 0.0F);
    check(floats, 0.0);

    auto v = vector_of<Real>({1, 2, 3, 4, 5});
    int n = 0;
    al.iv_Import_Vector(&v, v.p(), n);
    EXPECT_EQ(n, 5);
    al.ev_Export_Vector(3, v.p() + 2, &v);
    EXPECT_TRUE(v == vector_of<Real>({3, 4, 5}));
    EXPECT_TRUE(never_failed(al));

    al.ev_Export_Vector(-1, v.p(), &v);
    const std::string refused = v.gcn_Get_Class_Name().c_str() + std::string("::c_Create: 1");
    EXPECT_TRUE(fails_as(al, {refused, "ev_Export_Vector: cannot size the output"}, false));
    EXPECT_TRUE(v == vector_of<Real>({3, 4, 5}));
}

TEST(VectorAlgebraFrame, NamesCopiesAndTheTraceFlag) {
    EXPECT_EQ(LCNqAlgebra_for_Vector().gcn_Get_Class_Name(), "LCNqAlgebra_for_Vector");
    EXPECT_EQ(LCNqAlgebra_for_VectorFloat().gcn_Get_Class_Name(), "LCNqAlgebra_for_VectorFloat");
    EXPECT_EQ(LCNqAlgebra_for_Matrix().gcn_Get_Class_Name(), "LCNqAlgebra_for_Matrix");
    EXPECT_EQ(LCNqAlgebra_for_MatrixFloat().gcn_Get_Class_Name(), "LCNqAlgebra_for_MatrixFloat");
    EXPECT_EQ(LCNqAlgebra_Basic().gcn_Get_Class_Name(), "LCNqAlgebra_Basic");
    struct Inspected : LCNqAlgebra_for_Vector {
        bool member_mode() const { return basic_.get_Get_Error_Trace_mode(); }
    } inspected;
    inspected.zet_s(true);
    EXPECT_FALSE(inspected.member_mode());
    inspected.zet_xm();
    EXPECT_TRUE(inspected.member_mode());
    const Inspected copy = inspected;
    EXPECT_TRUE(copy.member_mode() && copy.get_Get_Error_Trace_mode());
    EXPECT_EQ(copy.gcn_Get_Class_Name(), "LCNqAlgebra_for_Vector");
}

}  // namespace
}  // namespace nequar::test
