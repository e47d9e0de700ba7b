// The raw-array kernels: both layouts against plain loops, arrays that overlap, extreme scales.
#include <algorithm>
#include <array>
#include <vector>

#include "algebra/plain.h"

namespace nequar::test {
namespace {

template <class Real>
constexpr Real kNaN = std::numeric_limits<Real>::quiet_NaN();
template <class Real>
constexpr Real kInfinity = std::numeric_limits<Real>::infinity();
// A scale whose square leaves the range.
template <class Real>
constexpr Real kHuge = sizeof(Real) == 8 ? Real(1e200) : Real(1e25);

// The matrix in a flat array of one of the two orders.
template <class Real>
Matrix<Real> matrix_in(const Real* p, bool rows, int h, int w) {
    return matrix_of<Real>(h, w, [=](int r, int c) { return p[rows ? r * w + c : r + h * c]; });
}

TWINS(AlgebraBasicTest);

TWIN_TEST(AlgebraBasicTest, AgreesWithPlainLoopsOnArraysThatMayOverlap) {
    using M = Matrix<Real>;
    const LCNqAlgebra_Basic k;
    const Vector<Real> pool = random_vector<Real>(12000, 1);
    constexpr int kSecond = 37;  // where the second operand begins in the pool
    const Real *const p = pool.p(), *const q = p + kSecond, *a = p, *b = q;
    Real* o = nullptr;
    for (const bool rows : {true, false})
        for (const auto& [height, width, inner] :
             {std::tuple(1, 1, 1), {3, 5, 4}, {40, 70, 33}, {5, 2, 9}}) {
            const int h = height, w = width, n = inner;
            // Runs a kernel on operands a and b in the pool: with an output o apart, which must
            // become `keep` times itself plus `expected`, and with outputs anywhere in the pool
            // itself, which must become the same as apart, bit by bit.
            const auto check = [&](const char* name, const M& expected, int keep, auto run) {
                const int count = expected.mh() * expected.mw();
                const auto result = [&](const Real* from) {
                    return matrix_in(from, rows, expected.mh(), expected.mw());
                };
                for (const int start : {0, 1, kSecond, kSecond + 5, count / 2}) {
                    SCOPED_TRACE(testing::Message() << name << " at " << start);
                    Vector<Real> shared = pool;
                    std::vector<Real> apart(p + start, p + start + count);
                    a = p;
                    b = q;
                    o = apart.data();
                    run();
                    ASSERT_LT(
                        largest_difference(result(o), sum_of(expected, result(p + start), 1, keep)),
                        200 * kEpsilon<Real>);
                    a = shared.p();
                    b = a + kSecond;
                    o = shared.p() + start;
                    run();
                    EXPECT_TRUE(std::equal(apart.begin(), apart.end(), o));
                }
            };
            const auto first = [&](int r, int c) { return matrix_in(p, rows, r, c); };
            const auto second = [&](int r, int c) { return matrix_in(q, rows, r, c); };
            const auto diagonal = [&](int r, int c) {
                return matrix_of<Real>(r, c, [&](int i, int j) { return i == j ? q[i] : Real(0); });
            };
            const M A = first(h, w), At = transposed(A), D = diagonal(h, w);
            const M v = first(w, 1), x = second(h, 1), y = second(w, 1);
            check("avv", sum_of(v, y), 0, [&] { k.avv_Add_Vector_Vector(w, a, b, o); });
            check("avvw", sum_of(v, y, 2, 3), 0,
                  [&] { k.avvw_Add_Vector_Vector_with_Weight(w, a, b, 2, 3, o); });
            check("avc", matrix_of<Real>(w, 1, [&](int i, int) { return q[i] + 2; }), 0,
                  [&] { k.avc_Add_Vector_Constant(w, b, 2, o); });
            check("svv", sum_of(v, y, 1, -1), 0, [&] { k.svv_Subtract_Vector_Vector(w, a, b, o); });
            check("mvc", sum_of(y, y, 2, 0), 0,
                  [&] { k.mvc_Multiply_Vector_Constant(w, b, 2, o); });
            check("mvve", matrix_of<Real>(w, 1, [&](int i, int) { return p[i] * q[i]; }), 0,
                  [&] { k.mvve_Multiply_Vector_Vector_Elementwise(w, a, b, o); });
            check("tpm", At, 0, [&] { k.tpm_Transpose_Matrix(rows, h, w, a, o); });
            check("cdm", D, 0, [&] { k.cdm_Convert_Dmatrix_to_Matrix(rows, h, w, b, o); });
            check("amdw", sum_of(A, D, 2, 3), 0,
                  [&] { k.amdw_Add_Matrix_Dmatrix_with_Weight(rows, h, w, a, b, 2, 3, o); });
            check("amtw", sum_of(A, transposed(second(w, h)), 2, -1), 0,
                  [&] { k.amtw_Add_Matrix_Tmatrix_with_Weight(rows, h, w, a, b, 2, -1, o); });
            check("mmma", product(A, second(w, n)), 1,
                  [&] { k.mmma_Multiply_Matrix_Matrix_and_Accumulate(rows, h, w, n, a, b, o); });
            check("mmta", product(A, transposed(second(n, w))), 1,
                  [&] { k.mmta_Multiply_Matrix_Tmatrix_and_Accumulate(rows, h, w, n, a, b, o); });
            check("mtma", product(At, second(h, n)), 1,
                  [&] { k.mtma_Multiply_Tmatrix_Matrix_and_Accumulate(rows, h, w, n, a, b, o); });
            check("mmda", product(A, diagonal(w, n)), 1,
                  [&] { k.mmda_Multiply_Matrix_Dmatrix_and_Accumulate(rows, h, w, n, a, b, o); });
            check("mmva", product(A, y), 1,
                  [&] { k.mmva_Multiply_Matrix_Vector_and_Accumulate(rows, h, w, a, b, o); });
            check("mvta", product(A, y), 1,
                  [&] { k.mvta_Multiply_Vector_Tmatrix_and_Accumulate(rows, h, w, b, a, o); });
            check("mvma", product(At, x), 1,
                  [&] { k.mvma_Multiply_Vector_Matrix_and_Accumulate(rows, h, w, b, a, o); });
            check("mvda", product(transposed(D), first(h, 1)), 1,
                  [&] { k.mvda_Multiply_Vector_Dmatrix_and_Accumulate(rows, h, w, a, b, o); });
            check("mvva", product(first(h, 1), transposed(y)), 1,
                  [&] { k.mvva_Multiply_Vector_Vector_and_Accumulate(rows, h, w, a, b, o); });
            check("mvmva", product(transposed(x), product(A, y)), 1, [&] {
                k.mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate(rows, h, w, b, a, b, *o);
            });
            check("mvdva", product(transposed(x), product(D, y)), 1, [&] {
                k.mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate(rows, h, w, b, b, b, *o);
            });
            const Real norm = k.n2_Norm_2(w, q);
            const M difference = sum_of(v, y, 1, -1);
            EXPECT_NEAR(k.ps_Product_Scalar(w, q, q), norm * norm, 99 * kEpsilon<Real>);
            EXPECT_NEAR(std::pow(k.d2_Distance_2(w, p, q), 2),
                        product(transposed(difference), difference)[0][0], 99 * kEpsilon<Real>);
            EXPECT_EQ(k.np_Norm_p(Real(1), w, q), k.n1_Norm_1(w, q));
            EXPECT_EQ(k.np_Norm_p(Real(2), w, q), norm);
        }
}

TWIN_TEST(AlgebraBasicTest, NormsAndNormalizationSurviveExtremeScales) {
    const LCNqAlgebra_Basic k;
    constexpr Real kSmallest = std::numeric_limits<Real>::denorm_min();
    constexpr Real kLargest = std::numeric_limits<Real>::max();
    for (const Real scale : {kHuge<Real>, 1 / kHuge<Real>, kSmallest, Real(1), kLargest / 8})
        for (const int n : {3, 37}) {  // zeros between a 3 and a -4
            SCOPED_TRACE(scale);
            const std::vector<Real> zero(std::size_t(n), Real(0));
            auto x = zero;
            x.front() = 3 * scale;
            x.back() = -4 * scale;
            const Real* const p = x.data();
            EXPECT_NEAR(k.n2_Norm_2(n, p) / scale, 5, 16 * kEpsilon<Real>);
            EXPECT_NEAR(k.d2_Distance_2(n, p, zero.data()) / scale, 5, 16 * kEpsilon<Real>);
            EXPECT_NEAR(k.np_Norm_p(Real(3), n, p) / (scale * Real(std::cbrt(91.0))), 1,
                        scale == kSmallest ? 0.2 : 16 * kEpsilon<Real>);
            EXPECT_TRUE(k.n_Normalize_vector(n, x.data()));
            EXPECT_NEAR(x.front(), Real(0.6), 4 * kEpsilon<Real>);
            EXPECT_NEAR(x.back(), Real(-0.8), 4 * kEpsilon<Real>);
        }
    // The norm of four such numbers overflows, that of two subnormals is one of them, rounded.
    Real large[] = {kLargest, kLargest, kLargest, kLargest};
    Real small[] = {kSmallest, kSmallest};
    EXPECT_TRUE(k.n_Normalize_vector(4, large) && k.n_Normalize_vector(2, small));
    EXPECT_NEAR(large[3], 0.5, kEpsilon<Real>);
    EXPECT_NEAR(small[1], std::sqrt(0.5), kEpsilon<Real>);

    const Real x[] = {1, -7, 3, kInfinity<Real>, kNaN<Real>},
               other[] = {1, -7, 3, -kInfinity<Real>};
    EXPECT_EQ(k.np_Norm_p(kInfinity<Real>, 3, x), 7);
    EXPECT_EQ(k.np_Norm_p(Real(3), 4, x), kInfinity<Real>);
    EXPECT_EQ(k.n2_Norm_2(4, x), kInfinity<Real>);
    EXPECT_EQ(k.d2_Distance_2(4, x, other), kInfinity<Real>);
    for (const Real nan : {k.np_Norm_p(Real(0), 3, x), k.np_Norm_p(kNaN<Real>, 3, x),
                           k.np_Norm_p(Real(3), 5, x), k.n2_Norm_2(5, x), k.d2_Distance_2(4, x, x)})
        EXPECT_TRUE(std::isnan(nan));
    // What cannot be normalized stays as it is.
    for (const auto& given :
         {std::array{Real(0), Real(0)}, {Real(1), kNaN<Real>}, {kInfinity<Real>, Real(2)}}) {
        auto y = given;
        EXPECT_FALSE(k.n_Normalize_vector(2, y.data()));
        EXPECT_EQ(y[0], given[0]);
    }
}

TWIN_TEST(AlgebraBasicTest, SizesBelowOneDoNothing) {
    const LCNqAlgebra_Basic k;
    Real out[] = {5, 6};
    const Real a[] = {1, 2};
    for (const int n : {0, -1, std::numeric_limits<int>::min()}) {
        k.avv_Add_Vector_Vector(n, a, a, out);
        k.cdm_Convert_Dmatrix_to_Matrix(true, n, 2, a, out);
        k.tpm_Transpose_Matrix(false, 2, n, a, out);
        k.tpms_Transpose_Matrix_Square(n, out);
        k.mmma_Multiply_Matrix_Matrix_and_Accumulate(true, 2, n, 1, a, a, out);
        k.mmda_Multiply_Matrix_Dmatrix_and_Accumulate(true, 1, n, 2, a, a, out);
        k.mvda_Multiply_Vector_Dmatrix_and_Accumulate(true, n, 2, a, a, out);
        EXPECT_EQ(k.ps_Product_Scalar(n, a, a) + k.n1_Norm_1(n, a) + k.np_Norm_p(3, n, a), 0);
        EXPECT_FALSE(k.n_Normalize_vector(n, out));
        EXPECT_TRUE(k.isy_Is_Symmetric_matrix(n, a, 0, false));
        EXPECT_EQ(k.ci_Create_Identity_matrix(n, out), n == 0);
    }
    EXPECT_TRUE(out[0] == 5 && out[1] == 6);
}

TWIN_TEST(AlgebraBasicTest, TriangularAndSymmetricStructure) {
    const LCNqAlgebra_Basic k;
    constexpr int n = 70;  // more than a tile
    for (const bool rows : {true, false}) {
        auto A = random_vector<Real>(n * n, 1);
        const auto at = [&](int r, int c) -> Real& { return A[rows ? r * n + c : r + n * c]; };
        for (int r = 0; r < n; ++r)
            for (int c = r + 1; c < n; ++c) at(r, c) = 0;
        at(n - 1, 0) = 8;  // the largest magnitude
        // The transpose, as the other order reads it, is upper in the same sense.
        const auto lower = [&](Real tolerance, bool relative) {
            const bool is = k.il_Is_Lower_matrix(rows, n, A.p(), tolerance, relative);
            EXPECT_EQ(k.iu_Is_Upper_matrix(!rows, n, A.p(), tolerance, relative), is);
            return is;
        };
        for (const Real tolerance : {Real(0), Real(-1), kNaN<Real>})
            EXPECT_TRUE(lower(tolerance, false) && lower(tolerance, true));
        at(n - 2, n - 1) = Real(0.5);
        EXPECT_FALSE(lower(Real(0.4), false) || lower(Real(0.06), true));
        EXPECT_TRUE(lower(Real(0.5), false) && lower(Real(0.0625), true));
        at(n - 2, n - 1) = kNaN<Real>;
        EXPECT_FALSE(lower(kInfinity<Real>, false) || lower(kInfinity<Real>, true));

        for (int r = 0; r < n; ++r)
            for (int c = 0; c < r; ++c) at(c, r) = at(r, c);
        const auto symmetric = [&](Real tolerance, bool relative) {
            return k.isy_Is_Symmetric_matrix(n, A.p(), tolerance, relative);
        };
        EXPECT_TRUE(symmetric(0, false) && symmetric(0, true));
        at(3, 65) = Real(0.5);
        at(65, 3) = Real(0.25);
        EXPECT_FALSE(symmetric(Real(0.2), false) || symmetric(Real(0.03), true));
        EXPECT_TRUE(symmetric(Real(0.25), false) && symmetric(Real(0.03125), true));
        at(3, 65) = at(65, 3) = kInfinity<Real>;
        EXPECT_TRUE(symmetric(0, false));
        at(40, 40) = kNaN<Real>;
        EXPECT_FALSE(symmetric(kInfinity<Real>, false));
    }
}

TWIN_TEST(AlgebraBasicTest, PositiveDefiniteAndDominant) {
    const LCNqAlgebra_Basic k;
    for (const int n : {1, 2, 47, 48, 49, 130}) {  // around the panel
        SCOPED_TRACE(n);
        // Second differences: positive definite with pivots (i + 2) / (i + 1); rows in between are
        // weakly dominant only.
        Matrix<Real> A = matrix_of<Real>(n, n, [](int r, int c) {
            return r == c ? 2 : std::abs(r - c) == 1 ? -1 : 0;
        });
        const Real* const p = A.p()[0];
        const auto definite = [&] {
            return k.ispd_Is_Symmetric_and_Positive_Definite_matrix(n, p, 0, false);
        };
        EXPECT_TRUE(definite());
        EXPECT_EQ(k.isdd_Is_Strictly_Diagonal_Dominant(n, p), n < 3);
        for (const Real last : {Real(n - 1) / Real(n) - Real(0.01), Real(0), kNaN<Real>,
                                kInfinity<Real>, -kInfinity<Real>}) {
            A[n - 1][n - 1] = last;
            EXPECT_FALSE(definite()) << last;
        }
        A[n - 1][n - 1] = 2;
        A[0][n - 1] += Real(0.125);
        EXPECT_EQ(definite(), n == 1);
        for (int i = 0; i < n; ++i) A[i][i] = Real(-2.5);
        EXPECT_TRUE(k.isdd_Is_Strictly_Diagonal_Dominant(n, p));
        A[n / 2][n / 2] = kNaN<Real>;
        EXPECT_FALSE(k.isdd_Is_Strictly_Diagonal_Dominant(n, p));
    }
}

TWIN_TEST(AlgebraBasicTest, GeometryAtAnyScale) {
    const LCNqAlgebra_Basic k;
    const auto expect = [](const Real* found, std::initializer_list<double> expected) {
        for (const double number : expected) EXPECT_NEAR(*found++, number, 8 * kEpsilon<Real>);
    };
    for (const Real s : {Real(1), kHuge<Real>, 1 / kHuge<Real>}) {
        SCOPED_TRACE(s);
        const Real p0[] = {s, s, s}, p1[] = {4 * s, 5 * s, s}, p2[] = {s, s, 3 * s};
        Real line[3], plane[4], normal[3];
        EXPECT_TRUE(k.fl_Find_Line_equation_of_segment_2D(p0, p1, line));
        EXPECT_TRUE(k.nvt_Normal_Vector_of_Triangle_3D(p0, p1, p2, normal));
        EXPECT_TRUE(k.fp_Find_Plane_equation_of_triangle_3D(p0, p1, p2, plane));
        line[2] /= s;
        plane[3] /= s;
        expect(line, {-0.8, 0.6, 0.2});
        expect(normal, {0.8, -0.6, 0});
        expect(plane, {0.8, -0.6, 0, -0.2});
        // Distances do not depend on the length of the normal.
        const Real point[] = {3, 4, 5}, l[] = {3 * s, 4 * s, -5 * s}, p[] = {0, 0, -2 * s, 3 * s};
        EXPECT_NEAR(k.dspl_Distance_Squared_between_Point_2D_and_Line(point, l), 16,
                    64 * kEpsilon<Real>);
        EXPECT_NEAR(k.dspp_Distance_Squared_between_Point_3D_and_Plane(point, p), 12.25,
                    64 * kEpsilon<Real>);
    }
    // Points whose difference overflows still have a direction; outputs may be inputs.
    constexpr Real kFar = std::numeric_limits<Real>::max();
    Real a[] = {-kFar, 0, 0}, b[] = {kFar, 0};
    EXPECT_TRUE(k.fl_Find_Line_equation_of_segment_2D(a, b, a));
    expect(a, {0, 1});
    Real c[] = {1, 2, 3}, d[] = {4, 5, 6};
    k.pv3_Product_Vector_of_vector_3D(c, d, c);
    expect(c, {-3, 6, -3});

    // Degenerate points are answered with false and a defined result.
    const Real p[] = {1, 2, 3}, q[] = {2, 4, 6}, r[] = {3, 6, 9};
    const Real bad[] = {1, kNaN<Real>, kInfinity<Real>};
    Real out[] = {7, 7, 7, 7};
    EXPECT_FALSE(k.fl_Find_Line_equation_of_segment_2D(p, p, out));
    expect(out, {0, 0, 0});
    EXPECT_FALSE(k.fp_Find_Plane_equation_of_triangle_3D(p, r, q, out));
    expect(out, {0, 0, 0, 0});
    EXPECT_FALSE(k.fp_Find_Plane_equation_of_triangle_3D(p, bad, r, out));
    EXPECT_TRUE(std::isnan(out[0]) && std::isnan(out[2]) && std::isnan(out[3]));
    EXPECT_TRUE(std::isnan(k.dspl_Distance_Squared_between_Point_2D_and_Line(p, out)));
}

}  // namespace
}  // namespace nequar::test
