// The raw-array kernels: both layouts against plain loops, arrays that overlap, extreme scales.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "nequar_algebra/frame.h"
#include "support/twins.h"

namespace {

template <class Real>
constexpr Real kEps = std::numeric_limits<Real>::epsilon();
template <class Real>
constexpr Real kNaN = std::numeric_limits<Real>::quiet_NaN();
template <class Real>
constexpr Real kInfinity = std::numeric_limits<Real>::infinity();
// A scale whose square leaves the range.
template <class Real>
constexpr Real kHuge = sizeof(Real) == 8 ? Real(1e200) : Real(1e25);

template <class Real>
std::vector<Real> numbers(int n) {
    std::vector<Real> x(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) x[std::size_t(i)] = Real((7 * i + i * i / 11) % 13 - 6) / 8;
    return x;
}

// A matrix over a flat array in one of the two orders, or a plain result.
template <class Real>
struct Grid {
    int h, w;
    std::vector<Real> at;  // by rows
    static Grid of(const Real* p, bool rows, int h, int w) {
        return filled(h, w, [=](int r, int c) { return p[rows ? r * w + c : r + h * c]; });
    }
    template <class Element>
    static Grid filled(int h, int w, Element element) {
        Grid grid{h, w, {}};
        for (int r = 0; r < h; ++r)
            for (int c = 0; c < w; ++c) grid.at.push_back(element(r, c));
        return grid;
    }
    Real operator()(int r, int c) const { return at[std::size_t(r * w + c)]; }
    Grid t() const {
        return filled(w, h, [this](int r, int c) { return (*this)(c, r); });
    }
    Grid operator*(const Grid& b) const {
        return filled(h, b.w, [&](int r, int c) {
            Real sum = 0;
            for (int k = 0; k < w; ++k) sum += (*this)(r, k) * b(k, c);
            return sum;
        });
    }
    Grid plus(Real weight, const Grid& b, Real weight_of_b) const {
        return filled(h, w,
                      [&](int r, int c) { return weight * (*this)(r, c) + weight_of_b * b(r, c); });
    }
};

template <class Real>
class AlgebraBasicTest : public ::testing::Test {
protected:
    static constexpr int kSecond = 37;  // where the second operand begins in the pool
    const LCNqAlgebra_Basic basic;
    const std::vector<Real> pool = numbers<Real>(12000);

    // Runs a kernel on operands in the pool: with an output apart, which must become `keep` times
    // itself plus `expected`, and with outputs anywhere in the pool itself, which must become the
    // same as apart, bit by bit.
    template <class Run>
    void check(const char* name, bool rows, const Grid<Real>& expected, Real keep, Run run) const {
        const Real* const a = pool.data();
        const int count = expected.h * expected.w;
        for (const int start : {-1, 0, 1, kSecond, kSecond + 5, count / 2}) {
            std::vector<Real> shared = pool;
            const Real* const old = pool.data() + std::max(start, 0);
            std::vector<Real> apart(old, old + count);
            run(a, a + kSecond, apart.data());
            if (start >= 0) {
                run(shared.data(), shared.data() + kSecond, shared.data() + start);
                EXPECT_TRUE(std::equal(apart.begin(), apart.end(), shared.begin() + start))
                    << name << " at " << start;
                continue;
            }
            const auto before = Grid<Real>::of(old, rows, expected.h, expected.w);
            const auto after = Grid<Real>::of(apart.data(), rows, expected.h, expected.w);
            const auto wanted = expected.plus(1, before, keep);
            for (std::size_t i = 0; i < after.at.size(); ++i)
                ASSERT_LT(std::abs(after.at[i] - wanted.at[i]), 200 * kEps<Real>) << name << i;
        }
    }
};

TWIN_TEST(AlgebraBasicTest, AgreesWithPlainLoopsOnArraysThatMayOverlap) {
    using In = const Real*;
    using G = Grid<Real>;
    const auto& k = this->basic;
    const In p = this->pool.data();
    const In q = p + this->kSecond;
    for (const bool rows : {true, false})
        for (const auto& shape : {std::array{1, 1, 1}, {3, 5, 4}, {40, 70, 33}, {5, 2, 9}}) {
            const int h = shape[0], w = shape[1], n = shape[2];
            const G A = G::of(p, rows, h, w);
            const G d = G::of(q, rows, std::max({h, w, n}), 1);
            const auto diagonal = [&d](int height, int width) {
                return G::filled(height, width,
                                 [&d](int r, int c) { return r == c ? d(r, 0) : Real(0); });
            };
            const G x = G::of(q, rows, h, 1);
            const G y = G::of(q, rows, w, 1);
            const auto check = [&](const char* name, const G& expected, Real keep, auto run) {
                this->check(name, rows, expected, keep, run);
            };
            check("avv", y.plus(1, G::of(p, rows, w, 1), 1), 0,
                  [&](In a, In b, Real* o) { k.avv_Add_Vector_Vector(w, a, b, o); });
            check("avvw", y.plus(3, G::of(p, rows, w, 1), 2), 0, [&](In a, In b, Real* o) {
                k.avvw_Add_Vector_Vector_with_Weight(w, a, b, 2, 3, o);
            });
            check("avc", y.plus(1, G::filled(w, 1, [](int, int) { return Real(1); }), 2), 0,
                  [&](In, In b, Real* o) { k.avc_Add_Vector_Constant(w, b, 2, o); });
            check("svv", y.plus(-1, G::of(p, rows, w, 1), 1), 0,
                  [&](In a, In b, Real* o) { k.svv_Subtract_Vector_Vector(w, a, b, o); });
            check("mvc", y.plus(2, y, 0), 0,
                  [&](In, In b, Real* o) { k.mvc_Multiply_Vector_Constant(w, b, 2, o); });
            check("mvve", G::filled(w, 1, [&](int i, int) { return p[i] * q[i]; }), 0,
                  [&](In a, In b, Real* o) {
                      k.mvve_Multiply_Vector_Vector_Elementwise(w, a, b, o);
                  });
            check("tpm", A.t(), 0,
                  [&](In a, In, Real* o) { k.tpm_Transpose_Matrix(rows, h, w, a, o); });
            check("cdm", diagonal(h, w), 0,
                  [&](In, In b, Real* o) { k.cdm_Convert_Dmatrix_to_Matrix(rows, h, w, b, o); });
            check("amdw", A.plus(2, diagonal(h, w), 3), 0, [&](In a, In b, Real* o) {
                k.amdw_Add_Matrix_Dmatrix_with_Weight(rows, h, w, a, b, 2, 3, o);
            });
            check("amtw", A.plus(2, G::of(q, rows, w, h).t(), -1), 0, [&](In a, In b, Real* o) {
                k.amtw_Add_Matrix_Tmatrix_with_Weight(rows, h, w, a, b, 2, -1, o);
            });
            check("mmma", A * G::of(q, rows, w, n), 1, [&](In a, In b, Real* o) {
                k.mmma_Multiply_Matrix_Matrix_and_Accumulate(rows, h, w, n, a, b, o);
            });
            check("mmta", A * G::of(q, rows, n, w).t(), 1, [&](In a, In b, Real* o) {
                k.mmta_Multiply_Matrix_Tmatrix_and_Accumulate(rows, h, w, n, a, b, o);
            });
            check("mtma", A.t() * G::of(q, rows, h, n), 1, [&](In a, In b, Real* o) {
                k.mtma_Multiply_Tmatrix_Matrix_and_Accumulate(rows, h, w, n, a, b, o);
            });
            check("mmda", A * diagonal(w, n), 1, [&](In a, In b, Real* o) {
                k.mmda_Multiply_Matrix_Dmatrix_and_Accumulate(rows, h, w, n, a, b, o);
            });
            check("mmva", A * y, 1, [&](In a, In b, Real* o) {
                k.mmva_Multiply_Matrix_Vector_and_Accumulate(rows, h, w, a, b, o);
            });
            check("mvta", A * y, 1, [&](In a, In b, Real* o) {
                k.mvta_Multiply_Vector_Tmatrix_and_Accumulate(rows, h, w, b, a, o);
            });
            check("mvma", A.t() * x, 1, [&](In a, In b, Real* o) {
                k.mvma_Multiply_Vector_Matrix_and_Accumulate(rows, h, w, b, a, o);
            });
            check("mvda", diagonal(h, w).t() * G::of(p, rows, h, 1), 1, [&](In a, In b, Real* o) {
                k.mvda_Multiply_Vector_Dmatrix_and_Accumulate(rows, h, w, a, b, o);
            });
            check("mvva", G::of(p, rows, h, 1) * y.t(), 1, [&](In a, In b, Real* o) {
                k.mvva_Multiply_Vector_Vector_and_Accumulate(rows, h, w, a, b, o);
            });
            check("mvmva", x.t() * A * y, 1, [&](In a, In b, Real* o) {
                k.mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate(rows, h, w, b, a, b, *o);
            });
            check("mvdva", x.t() * diagonal(h, w) * y, 1, [&](In, In b, Real* o) {
                k.mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate(rows, h, w, b, b, b, *o);
            });
            const Real norm = k.n2_Norm_2(w, q);
            EXPECT_LT(std::abs(k.ps_Product_Scalar(w, q, q) - norm * norm), 99 * kEps<Real>);
            EXPECT_LT(std::abs(k.d2_Distance_2(w, q, p + 5000) -
                               std::sqrt((y.plus(1, G::of(p + 5000, rows, w, 1), -1).t() *
                                          y.plus(1, G::of(p + 5000, rows, w, 1), -1))(0, 0))),
                      99 * kEps<Real>);
            EXPECT_EQ(k.np_Norm_p(Real(1), w, q), k.n1_Norm_1(w, q));
            EXPECT_EQ(k.np_Norm_p(Real(2), w, q), norm);
        }
}

TWIN_TEST(AlgebraBasicTest, NormsAndNormalizationSurviveExtremeScales) {
    const auto& k = this->basic;
    constexpr Real kSmallest = std::numeric_limits<Real>::denorm_min();
    constexpr Real kLargest = std::numeric_limits<Real>::max();
    for (const Real scale : {kHuge<Real>, 1 / kHuge<Real>, kSmallest, Real(1), kLargest / 8})
        for (const int n : {3, 37}) {  // zeros between a 3 and a -4
            const std::vector<Real> zero(std::size_t(n), Real(0));
            auto x = zero;
            x.front() = 3 * scale;
            x.back() = -4 * scale;
            EXPECT_LT(std::abs(k.n2_Norm_2(n, x.data()) / scale - 5), 16 * kEps<Real>) << scale;
            EXPECT_LT(std::abs(k.d2_Distance_2(n, x.data(), zero.data()) / scale - 5),
                      16 * kEps<Real>)
                << scale;
            EXPECT_LT(
                std::abs(k.np_Norm_p(Real(3), n, x.data()) / (scale * Real(std::cbrt(91.0))) - 1),
                scale == kSmallest ? Real(0.2) : 16 * kEps<Real>);
            EXPECT_TRUE(k.n_Normalize_vector(n, x.data()));
            EXPECT_LT(std::abs(x.front() - Real(0.6)), 4 * kEps<Real>) << scale;
            EXPECT_LT(std::abs(x.back() + Real(0.8)), 4 * kEps<Real>) << scale;
        }
    // The norm of four such numbers overflows, that of two subnormals is one of them, rounded.
    Real large[] = {kLargest, kLargest, kLargest, kLargest};
    Real small[] = {kSmallest, kSmallest};
    EXPECT_TRUE(k.n_Normalize_vector(4, large) && k.n_Normalize_vector(2, small));
    EXPECT_LT(std::abs(large[3] - Real(0.5)), kEps<Real>);
    EXPECT_LT(std::abs(small[1] - std::sqrt(Real(0.5))), kEps<Real>);

    const Real x[] = {1, -7, 3, kInfinity<Real>, kNaN<Real>};
    EXPECT_EQ(k.np_Norm_p(kInfinity<Real>, 3, x), 7);
    EXPECT_TRUE(std::isnan(k.np_Norm_p(Real(0), 3, x)));
    EXPECT_TRUE(std::isnan(k.np_Norm_p(kNaN<Real>, 3, x)));
    EXPECT_TRUE(std::isnan(k.np_Norm_p(Real(3), 5, x)));
    EXPECT_EQ(k.np_Norm_p(Real(3), 4, x), kInfinity<Real>);
    const Real other[] = {1, -7, 3, -kInfinity<Real>};
    EXPECT_EQ(k.n2_Norm_2(4, x), kInfinity<Real>);
    EXPECT_EQ(k.d2_Distance_2(4, x, other), kInfinity<Real>);
    EXPECT_TRUE(std::isnan(k.n2_Norm_2(5, x)) && std::isnan(k.d2_Distance_2(4, x, x)));

    // What cannot be normalized stays as it is.
    for (const auto& given :
         {std::array{Real(0), Real(0)}, {Real(1), kNaN<Real>}, {kInfinity<Real>, Real(2)}}) {
        auto y = given;
        EXPECT_FALSE(k.n_Normalize_vector(2, y.data()));
        EXPECT_EQ(y[0], given[0]);
    }
}

TWIN_TEST(AlgebraBasicTest, SizesBelowOneDoNothing) {
    const auto& k = this->basic;
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
    EXPECT_EQ(out[0], 5);
    EXPECT_EQ(out[1], 6);
}

TWIN_TEST(AlgebraBasicTest, TriangularAndSymmetricStructure) {
    const auto& k = this->basic;
    constexpr int n = 70;  // more than a tile
    for (const bool rows : {true, false}) {
        auto A = numbers<Real>(n * n);
        const auto at = [&](int r, int c) -> Real& {
            return A[std::size_t(rows ? r * n + c : r + n * c)];
        };
        for (int r = 0; r < n; ++r)
            for (int c = r + 1; c < n; ++c) at(r, c) = 0;
        at(n - 1, 0) = 8;  // the largest magnitude
        // The transpose, as the other order reads it, is upper in the same sense.
        const auto lower = [&](Real tolerance, bool relative) {
            const bool is = k.il_Is_Lower_matrix(rows, n, A.data(), tolerance, relative);
            EXPECT_EQ(k.iu_Is_Upper_matrix(!rows, n, A.data(), tolerance, relative), is);
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
            return k.isy_Is_Symmetric_matrix(n, A.data(), tolerance, relative);
        };
        EXPECT_TRUE(symmetric(0, false) && symmetric(0, true));
        at(3, 65) += Real(0.25);
        EXPECT_FALSE(symmetric(Real(0.2), false) || symmetric(Real(0.03), true));
        EXPECT_TRUE(symmetric(Real(0.25), false) && symmetric(Real(0.03125), true));
        at(3, 65) = at(65, 3) = kInfinity<Real>;
        EXPECT_TRUE(symmetric(0, false));
        at(40, 40) = kNaN<Real>;
        EXPECT_FALSE(symmetric(kInfinity<Real>, false));
    }
}

TWIN_TEST(AlgebraBasicTest, PositiveDefiniteAndDominant) {
    for (const int n : {1, 2, 47, 48, 49, 130}) {  // around the panel
        // Second differences: positive definite with pivots (i + 2) / (i + 1); rows in between are
        // weakly dominant only.
        auto A = Grid<Real>::filled(n, n, [](int r, int c) {
                     return r == c ? Real(2) : std::abs(r - c) == 1 ? Real(-1) : Real(0);
                 }).at;
        const auto definite = [&] {
            return this->basic.ispd_Is_Symmetric_and_Positive_Definite_matrix(n, A.data(), 0,
                                                                              false);
        };
        const auto dominant = [&] {
            return this->basic.isdd_Is_Strictly_Diagonal_Dominant(n, A.data());
        };
        EXPECT_TRUE(definite()) << n;
        EXPECT_EQ(dominant(), n < 3) << n;
        for (const Real last : {Real(n - 1) / Real(n) - Real(0.01), Real(0), kNaN<Real>,
                                kInfinity<Real>, -kInfinity<Real>}) {
            A.back() = last;
            EXPECT_FALSE(definite()) << n << ' ' << last;
        }
        A.back() = 2;
        if (n > 1) {
            A[std::size_t(n) - 1] += Real(0.125);
            EXPECT_FALSE(definite()) << n;
        }
        for (std::size_t i = 0; i < A.size(); i += std::size_t(n) + 1) A[i] = Real(-2.5);
        EXPECT_TRUE(dominant()) << n;
        A[std::size_t(n / 2) * std::size_t(n + 1)] = kNaN<Real>;
        EXPECT_FALSE(dominant()) << n;
    }
}

TWIN_TEST(AlgebraBasicTest, GeometryAtAnyScale) {
    const auto& k = this->basic;
    for (const Real s : {Real(1), kHuge<Real>, 1 / kHuge<Real>}) {
        const Real p0[] = {s, s, s}, p1[] = {4 * s, 5 * s, s}, p2[] = {s, s, 3 * s};
        Real line[3], plane[4], normal[3];
        EXPECT_TRUE(k.fl_Find_Line_equation_of_segment_2D(p0, p1, line));
        EXPECT_TRUE(k.nvt_Normal_Vector_of_Triangle_3D(p0, p1, p2, normal));
        EXPECT_TRUE(k.fp_Find_Plane_equation_of_triangle_3D(p0, p1, p2, plane));
        const Real expected_line[] = {Real(-0.8), Real(0.6), Real(0.2)};
        const Real expected_plane[] = {Real(0.8), Real(-0.6), 0};
        line[2] /= s;
        for (int i = 0; i < 3; ++i) {
            EXPECT_LT(std::abs(line[i] - expected_line[i]), 8 * kEps<Real>) << s << i;
            EXPECT_LT(std::abs(normal[i] - expected_plane[i]), 8 * kEps<Real>) << s << i;
            EXPECT_EQ(plane[i], normal[i]);
        }
        EXPECT_LT(std::abs(plane[3] / s + Real(0.2)), 8 * kEps<Real>) << s;
        // Distances do not depend on the length of the normal.
        const Real point[] = {3, 4, 5}, l[] = {3 * s, 4 * s, -5 * s}, p[] = {0, 0, -2 * s, 3 * s};
        EXPECT_LT(std::abs(k.dspl_Distance_Squared_between_Point_2D_and_Line(point, l) - 16),
                  64 * kEps<Real>);
        EXPECT_LT(
            std::abs(k.dspp_Distance_Squared_between_Point_3D_and_Plane(point, p) - Real(12.25)),
            64 * kEps<Real>);
    }
    // Points whose difference overflows still have a direction; outputs may be inputs.
    constexpr Real kFar = std::numeric_limits<Real>::max();
    Real a[] = {-kFar, 0, 0}, b[] = {kFar, 0};
    EXPECT_TRUE(k.fl_Find_Line_equation_of_segment_2D(a, b, a));
    EXPECT_EQ(a[0], 0);
    EXPECT_EQ(a[1], 1);
    Real c[] = {1, 2, 3}, d[] = {4, 5, 6};
    k.pv3_Product_Vector_of_vector_3D(c, d, c);
    EXPECT_EQ((std::vector<Real>(c, c + 3)), (std::vector<Real>{-3, 6, -3}));

    // Degenerate points are answered with false and a defined result.
    const Real p[] = {1, 2, 3}, q[] = {2, 4, 6}, r[] = {3, 6, 9};
    const Real bad[] = {1, kNaN<Real>, kInfinity<Real>};
    Real out[] = {7, 7, 7, 7};
    EXPECT_FALSE(k.fl_Find_Line_equation_of_segment_2D(p, p, out));
    EXPECT_TRUE(out[0] == 0 && out[1] == 0 && out[2] == 0);
    EXPECT_FALSE(k.fp_Find_Plane_equation_of_triangle_3D(p, r, q, out));
    EXPECT_TRUE(out[0] == 0 && out[1] == 0 && out[2] == 0 && out[3] == 0);
    EXPECT_FALSE(k.fp_Find_Plane_equation_of_triangle_3D(p, bad, r, out));
    EXPECT_TRUE(std::isnan(out[0]) && std::isnan(out[2]) && std::isnan(out[3]));
    EXPECT_TRUE(std::isnan(k.dspl_Distance_Squared_between_Point_2D_and_Line(p, out)));
}

}  // namespace
