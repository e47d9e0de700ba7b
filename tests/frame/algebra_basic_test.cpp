// The raw-array kernels: both layouts against plain loops, arrays that overlap, extreme scales.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "nequar_algebra/frame.h"

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
class AlgebraBasicTest : public ::testing::Test {
protected:
    using Array = std::vector<Real>;

    static Array numbers(int n, int seed) {
        Array x(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i) x[std::size_t(i)] = Real((7 * i + 3 * seed) % 13 - 6) / 8;
        return x;
    }

    static void expect_equal(const Array& computed, const Array& expected, int operations) {
        ASSERT_EQ(computed.size(), expected.size());
        for (std::size_t i = 0; i < computed.size(); ++i)
            EXPECT_LT(std::abs(computed[i] - expected[i]), Real(4 + operations) * kEps<Real>) << i;
    }

    // A matrix over a flat array in one of the two orders.
    struct Flat {
        bool row_major;
        int h, w;
        Array data;
        Real& at(int r, int c) { return data[std::size_t(row_major ? r * w + c : r + h * c)]; }
    };
    static Flat flat(bool row_major, int h, int w, int seed) {
        return {row_major, h, w, numbers(h * w, seed)};
    }

    const LCNqAlgebra_Basic basic;
};

using Reals = ::testing::Types<double, float>;
TYPED_TEST_SUITE(AlgebraBasicTest, Reals);

TYPED_TEST(AlgebraBasicTest, VectorKernelsAgreeWithPlainLoops) {
    using Real = TypeParam;
    const auto& k = this->basic;
    for (const int n : {0, 1, 5, 64, 1003}) {
        const auto a = this->numbers(n, 1);
        const auto b = this->numbers(n, 2);
        auto out = this->numbers(n, 3);
        const auto expect = [&](auto value) {
            auto expected = out;
            for (std::size_t i = 0; i < expected.size(); ++i) expected[i] = value(a[i], b[i]);
            this->expect_equal(out, expected, 2);
        };
        k.avv_Add_Vector_Vector(n, a.data(), b.data(), out.data());
        expect([](Real x, Real y) { return x + y; });
        k.avvw_Add_Vector_Vector_with_Weight(n, a.data(), b.data(), Real(2), Real(-3), out.data());
        expect([](Real x, Real y) { return 2 * x - 3 * y; });
        k.avc_Add_Vector_Constant(n, a.data(), Real(0.5), out.data());
        expect([](Real x, Real) { return x + Real(0.5); });
        k.svv_Subtract_Vector_Vector(n, a.data(), b.data(), out.data());
        expect([](Real x, Real y) { return x - y; });
        k.mvc_Multiply_Vector_Constant(n, a.data(), Real(1.5), out.data());
        expect([](Real x, Real) { return Real(1.5) * x; });
        k.mvve_Multiply_Vector_Vector_Elementwise(n, a.data(), b.data(), out.data());
        expect([](Real x, Real y) { return x * y; });

        double dot = 0, norm1 = 0, square = 0, distance = 0, cubes = 0;
        for (std::size_t i = 0; i < a.size(); ++i) {
            dot += double(a[i]) * b[i];
            norm1 += std::abs(double(a[i]));
            square += double(a[i]) * a[i];
            distance += std::pow(double(a[i]) - b[i], 2);
            cubes += std::pow(std::abs(double(a[i])), 3);
        }
        const double bound = (4.0 + n) * double(kEps<Real>);
        EXPECT_LE(std::abs(k.ps_Product_Scalar(n, a.data(), b.data()) - dot), bound * norm1);
        EXPECT_LE(std::abs(k.n1_Norm_1(n, a.data(), 3) - norm1), bound * norm1);
        EXPECT_LE(std::abs(k.n2_Norm_2(n, a.data(), 3) - std::sqrt(square)), bound * norm1);
        EXPECT_LE(std::abs(k.d2_Distance_2(n, a.data(), b.data()) - std::sqrt(distance)),
                  bound * std::sqrt(distance));
        EXPECT_LE(std::abs(k.np_Norm_p(Real(3), n, a.data()) - std::cbrt(cubes)), bound * norm1);
        EXPECT_EQ(k.np_Norm_p(Real(1), n, a.data()), k.n1_Norm_1(n, a.data()));
        EXPECT_EQ(k.np_Norm_p(Real(2), n, a.data()), k.n2_Norm_2(n, a.data()));
    }
}

TYPED_TEST(AlgebraBasicTest, NormsAndNormalizationSurviveExtremeScales) {
    using Real = TypeParam;
    const auto& k = this->basic;
    const Real smallest = std::numeric_limits<Real>::denorm_min();
    for (const Real scale :
         {kHuge<Real>, 1 / kHuge<Real>, smallest, Real(1), std::numeric_limits<Real>::max() / 8}) {
        Real x[] = {3 * scale, 0, -4 * scale};
        const Real zero[] = {0, 0, 0};
        EXPECT_LT(std::abs(k.n2_Norm_2(3, x) / scale - 5), 16 * kEps<Real>) << scale;
        EXPECT_LT(std::abs(k.d2_Distance_2(3, x, zero) / scale - 5), 16 * kEps<Real>) << scale;
        EXPECT_LT(std::abs(k.np_Norm_p(Real(3), 3, x) / (scale * Real(std::cbrt(91.0))) - 1),
                  scale == smallest ? Real(0.2) : 16 * kEps<Real>)
            << scale;
        EXPECT_TRUE(k.n_Normalize_vector(3, x));
        EXPECT_LT(std::abs(x[0] - Real(0.6)), 4 * kEps<Real>) << scale;
        EXPECT_EQ(x[1], 0);
        EXPECT_LT(std::abs(x[2] + Real(0.8)), 4 * kEps<Real>) << scale;
    }
    // Four times the largest number: the norm overflows, the direction does not.
    std::vector<Real> large(4, std::numeric_limits<Real>::max());
    EXPECT_TRUE(k.n_Normalize_vector(4, large.data()));
    this->expect_equal(large, {0.5, 0.5, 0.5, 0.5}, 1);

    // Of two equal subnormals the norm, rounded, is one of them.
    std::vector<Real> small(2, smallest);
    EXPECT_TRUE(k.n_Normalize_vector(2, small.data()));
    this->expect_equal(small, {std::sqrt(Real(0.5)), std::sqrt(Real(0.5))}, 1);

    const Real x[] = {1, -7, 3};
    EXPECT_EQ(k.np_Norm_p(kInfinity<Real>, 3, x), 7);
    EXPECT_TRUE(std::isnan(k.np_Norm_p(Real(0), 3, x)));
    EXPECT_TRUE(std::isnan(k.np_Norm_p(kNaN<Real>, 3, x)));
    const Real with_nan[] = {1, kNaN<Real>, kInfinity<Real>};
    EXPECT_TRUE(std::isnan(k.np_Norm_p(Real(3), 2, with_nan)));
    EXPECT_EQ(k.np_Norm_p(Real(3), 1, with_nan + 2), kInfinity<Real>);
    EXPECT_EQ(k.np_Norm_p(Real(3), 0, x), 0);
}

TYPED_TEST(AlgebraBasicTest, WhatCannotBeNormalizedStaysAsItIs) {
    using Real = TypeParam;
    Real zero[] = {0, 0};
    Real nan[] = {1, kNaN<Real>};
    Real infinite[] = {kInfinity<Real>, 2};
    EXPECT_FALSE(this->basic.n_Normalize_vector(2, zero));
    EXPECT_FALSE(this->basic.n_Normalize_vector(2, nan));
    EXPECT_FALSE(this->basic.n_Normalize_vector(2, infinite));
    EXPECT_FALSE(this->basic.n_Normalize_vector(0, zero));
    EXPECT_FALSE(this->basic.n_Normalize_vector(-3, zero));
    EXPECT_EQ(nan[0], 1);
    EXPECT_EQ(infinite[0], kInfinity<Real>);
    EXPECT_EQ(infinite[1], 2);
}

TYPED_TEST(AlgebraBasicTest, MatrixKernelsInBothOrders) {
    using Real = TypeParam;
    const auto& k = this->basic;
    for (const bool rows : {true, false}) {
        for (const auto& shape : {std::array{1, 1, 1}, {3, 5, 4}, {40, 70, 33}, {5, 2, 9}}) {
            const int h = shape[0], w = shape[1], n = shape[2];

            auto A = this->flat(rows, h, w, 1);
            auto B = this->flat(rows, w, n, 2);
            auto Bt = this->flat(rows, n, w, 3);
            auto L = this->flat(rows, h, n, 4);
            auto W = this->flat(rows, w, h, 5);
            const auto x = this->numbers(h, 6);
            const auto y = this->numbers(w, 7);
            const auto d = this->numbers(std::max({h, w, n}), 8);

            // Runs a kernel on an h x w output and holds it against element(r, c, old value).
            const auto check = [&](int height, int width, auto run, auto element, int operations) {
                auto out = this->flat(rows, height, width, 9);
                auto expected = out;
                for (int r = 0; r < height; ++r)
                    for (int c = 0; c < width; ++c) expected.at(r, c) = element(r, c, out.at(r, c));
                run(out.data.data());
                this->expect_equal(out.data, expected.data, operations);
            };
            const auto sum = [](int count, auto term) {
                Real s = 0;
                for (int p = 0; p < count; ++p) s += term(p);
                return s;
            };
            const auto diagonal = [&](int r, int c) {
                return r == c ? d[std::size_t(c)] : Real(0);
            };

            check(
                w, h, [&](Real* o) { k.tpm_Transpose_Matrix(rows, h, w, A.data.data(), o); },
                [&](int r, int c, Real) { return A.at(c, r); }, 0);
            check(
                h, w, [&](Real* o) { k.cdm_Convert_Dmatrix_to_Matrix(rows, h, w, d.data(), o); },
                [&](int r, int c, Real) { return diagonal(r, c); }, 0);
            check(
                h, w,
                [&](Real* o) {
                    k.amdw_Add_Matrix_Dmatrix_with_Weight(rows, h, w, A.data.data(), d.data(), 2,
                                                          Real(0.5), o);
                },
                [&](int r, int c, Real) { return 2 * A.at(r, c) + diagonal(r, c) / 2; }, 2);
            check(
                h, w,
                [&](Real* o) {
                    k.amtw_Add_Matrix_Tmatrix_with_Weight(rows, h, w, A.data.data(), W.data.data(),
                                                          2, -1, o);
                },
                [&](int r, int c, Real) { return 2 * A.at(r, c) - W.at(c, r); }, 2);
            check(
                h, n,
                [&](Real* o) {
                    k.mmma_Multiply_Matrix_Matrix_and_Accumulate(rows, h, w, n, A.data.data(),
                                                                 B.data.data(), o);
                },
                [&](int r, int c, Real old) {
                    return old + sum(w, [&](int p) { return A.at(r, p) * B.at(p, c); });
                },
                w);
            check(
                h, n,
                [&](Real* o) {
                    k.mmta_Multiply_Matrix_Tmatrix_and_Accumulate(rows, h, w, n, A.data.data(),
                                                                  Bt.data.data(), o);
                },
                [&](int r, int c, Real old) {
                    return old + sum(w, [&](int p) { return A.at(r, p) * Bt.at(c, p); });
                },
                w);
            check(
                w, n,
                [&](Real* o) {
                    k.mtma_Multiply_Tmatrix_Matrix_and_Accumulate(rows, h, w, n, A.data.data(),
                                                                  L.data.data(), o);
                },
                [&](int r, int c, Real old) {
                    return old + sum(h, [&](int p) { return A.at(p, r) * L.at(p, c); });
                },
                h);
            check(
                h, n,
                [&](Real* o) {
                    k.mmda_Multiply_Matrix_Dmatrix_and_Accumulate(rows, h, w, n, A.data.data(),
                                                                  d.data(), o);
                },
                [&](int r, int c, Real old) {
                    return c < w ? old + A.at(r, c) * d[std::size_t(c)] : old;
                },
                2);
            check(
                h, 1,
                [&](Real* o) {
                    k.mmva_Multiply_Matrix_Vector_and_Accumulate(rows, h, w, A.data.data(),
                                                                 y.data(), o);
                },
                [&](int r, int, Real old) {
                    return old + sum(w, [&](int p) { return A.at(r, p) * y[std::size_t(p)]; });
                },
                w);
            check(
                h, 1,
                [&](Real* o) {
                    k.mvta_Multiply_Vector_Tmatrix_and_Accumulate(rows, h, w, y.data(),
                                                                  A.data.data(), o);
                },
                [&](int r, int, Real old) {
                    return old + sum(w, [&](int p) { return A.at(r, p) * y[std::size_t(p)]; });
                },
                w);
            check(
                w, 1,
                [&](Real* o) {
                    k.mvma_Multiply_Vector_Matrix_and_Accumulate(rows, h, w, x.data(),
                                                                 A.data.data(), o);
                },
                [&](int r, int, Real old) {
                    return old + sum(h, [&](int p) { return A.at(p, r) * x[std::size_t(p)]; });
                },
                h);
            check(
                w, 1,
                [&](Real* o) {
                    k.mvda_Multiply_Vector_Dmatrix_and_Accumulate(rows, h, w, x.data(), d.data(),
                                                                  o);
                },
                [&](int r, int, Real old) {
                    return r < h ? old + x[std::size_t(r)] * d[std::size_t(r)] : old;
                },
                2);
            check(
                h, w,
                [&](Real* o) {
                    k.mvva_Multiply_Vector_Vector_and_Accumulate(rows, h, w, x.data(), y.data(), o);
                },
                [&](int r, int c, Real old) { return old + x[std::size_t(r)] * y[std::size_t(c)]; },
                2);

            Real form = 1;
            k.mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate(rows, h, w, x.data(),
                                                                 A.data.data(), y.data(), form);
            const Real expected_form = sum(h, [&](int r) {
                return x[std::size_t(r)] *
                       sum(w, [&](int c) { return A.at(r, c) * y[std::size_t(c)]; });
            });
            EXPECT_LT(std::abs(form - 1 - expected_form), Real(8 + h * w) * kEps<Real>);
            form = 1;
            k.mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate(rows, h, w, x.data(), d.data(),
                                                                  y.data(), form);
            const Real expected_diagonal_form = sum(std::min(h, w), [&](int p) {
                const auto i = std::size_t(p);
                return x[i] * d[i] * y[i];
            });
            EXPECT_LT(std::abs(form - 1 - expected_diagonal_form), Real(8 + h) * kEps<Real>);
        }
    }
}

// Every kernel gives, on arrays that share memory, what it gives on copies.
TYPED_TEST(AlgebraBasicTest, ArraysMayOverlap) {
    using Real = TypeParam;
    using Numbers = std::vector<Real>;
    const auto& k = this->basic;
    constexpr int n = 10;
    const Numbers pool = this->numbers(3 * n * n, 1);
    // The inputs start at 0 and `shift`, the output at `start`.
    const auto check = [&](const char* name, int count, auto run) {
        for (const int start : {0, 1, 5, 50, 99, 100}) {
            Numbers shared = pool;
            Numbers apart(static_cast<std::size_t>(count));
            std::copy_n(pool.begin() + start, count, apart.begin());
            run(pool.data(), pool.data() + n, apart.data());
            run(shared.data(), shared.data() + n, shared.data() + start);
            const Numbers computed(shared.begin() + start, shared.begin() + start + count);
            EXPECT_EQ(computed, apart) << name << " at " << start;
        }
    };
    using In = const Real*;
    check("avv", 60, [&](In a, In b, Real* o) { k.avv_Add_Vector_Vector(60, a, b, o); });
    check("avvw", 60,
          [&](In a, In b, Real* o) { k.avvw_Add_Vector_Vector_with_Weight(60, a, b, 2, 3, o); });
    check("avc", 60, [&](In a, In, Real* o) { k.avc_Add_Vector_Constant(60, a, 2, o); });
    check("svv", 60, [&](In a, In b, Real* o) { k.svv_Subtract_Vector_Vector(60, a, b, o); });
    check("mvc", 60, [&](In a, In, Real* o) { k.mvc_Multiply_Vector_Constant(60, a, 2, o); });
    check("mvve", 60,
          [&](In a, In b, Real* o) { k.mvve_Multiply_Vector_Vector_Elementwise(60, a, b, o); });
    check("pv3", 3, [&](In a, In b, Real* o) { k.pv3_Product_Vector_of_vector_3D(a, b, o); });
    check("nvt", 3,
          [&](In a, In b, Real* o) { k.nvt_Normal_Vector_of_Triangle_3D(a, b, a + 1, o); });
    check("fl", 3, [&](In a, In b, Real* o) { k.fl_Find_Line_equation_of_segment_2D(a, b, o); });
    check("fp", 4,
          [&](In a, In b, Real* o) { k.fp_Find_Plane_equation_of_triangle_3D(a, b, a + 1, o); });
    check("cdm", n * n,
          [&](In a, In, Real* o) { k.cdm_Convert_Dmatrix_to_Matrix(true, n, n, a, o); });
    check("tpm", 5 * n, [&](In a, In, Real* o) { k.tpm_Transpose_Matrix(true, 5, n, a, o); });
    check("amdw", n * n, [&](In a, In b, Real* o) {
        k.amdw_Add_Matrix_Dmatrix_with_Weight(true, n, n, a, b, 2, 3, o);
    });
    check("amtw", n * n, [&](In a, In b, Real* o) {
        k.amtw_Add_Matrix_Tmatrix_with_Weight(true, n, n, a, b, 2, 3, o);
    });
    check("mmma", n * n, [&](In a, In b, Real* o) {
        k.mmma_Multiply_Matrix_Matrix_and_Accumulate(true, n, n, n, a, b, o);
    });
    check("mmta", n * n, [&](In a, In b, Real* o) {
        k.mmta_Multiply_Matrix_Tmatrix_and_Accumulate(true, n, n, n, a, b, o);
    });
    check("mtma", n * n, [&](In a, In b, Real* o) {
        k.mtma_Multiply_Tmatrix_Matrix_and_Accumulate(true, n, n, n, a, b, o);
    });
    check("mmda", n * n, [&](In a, In b, Real* o) {
        k.mmda_Multiply_Matrix_Dmatrix_and_Accumulate(true, n, n, n, a, b, o);
    });
    check("mmva", n, [&](In a, In b, Real* o) {
        k.mmva_Multiply_Matrix_Vector_and_Accumulate(true, n, n, a, b, o);
    });
    check("mvma", n, [&](In a, In b, Real* o) {
        k.mvma_Multiply_Vector_Matrix_and_Accumulate(true, n, n, b, a, o);
    });
    check("mvda", n, [&](In a, In b, Real* o) {
        k.mvda_Multiply_Vector_Dmatrix_and_Accumulate(true, n, n, a, b, o);
    });
    check("mvva", n * n, [&](In a, In b, Real* o) {
        k.mvva_Multiply_Vector_Vector_and_Accumulate(true, n, n, a, b, o);
    });
    check("mvmva", 1, [&](In a, In b, Real* o) {
        k.mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate(true, n, n, a, b, a, *o);
    });
    check("mvdva", 1, [&](In a, In b, Real* o) {
        k.mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate(true, n, n, a, b, a, *o);
    });
}

TYPED_TEST(AlgebraBasicTest, SizesBelowOneDoNothing) {
    using Real = TypeParam;
    const auto& k = this->basic;
    Real out[] = {5, 6};
    const Real a[] = {1, 2};
    for (const int n : {0, -1, std::numeric_limits<int>::min()}) {
        k.avv_Add_Vector_Vector(n, a, a, out);
        k.mvc_Multiply_Vector_Constant(n, a, 3, out);
        k.cdm_Convert_Dmatrix_to_Matrix(true, n, 2, a, out);
        k.tpm_Transpose_Matrix(false, 2, n, a, out);
        k.tpms_Transpose_Matrix_Square(n, out);
        k.mmma_Multiply_Matrix_Matrix_and_Accumulate(true, 2, n, 1, a, a, out);
        k.mmda_Multiply_Matrix_Dmatrix_and_Accumulate(true, 1, n, 2, a, a, out);
        k.mvda_Multiply_Vector_Dmatrix_and_Accumulate(true, n, 2, a, a, out);
        EXPECT_EQ(k.ps_Product_Scalar(n, a, a), 0);
        EXPECT_EQ(k.n1_Norm_1(n, a), 0);
        EXPECT_TRUE(k.isy_Is_Symmetric_matrix(n, a, 0, false));
        EXPECT_EQ(k.ci_Create_Identity_matrix(n, out), n == 0);
    }
    EXPECT_EQ(out[0], 5);
    EXPECT_EQ(out[1], 6);
}

TYPED_TEST(AlgebraBasicTest, TriangularAndSymmetricStructure) {
    using Real = TypeParam;
    const auto& k = this->basic;
    constexpr int n = 70;  // more than a tile
    for (const bool rows : {true, false}) {
        auto A = this->flat(rows, n, n, 1);
        for (int r = 0; r < n; ++r)
            for (int c = r + 1; c < n; ++c) A.at(r, c) = 0;
        A.at(n - 1, 0) = 8;  // the largest magnitude
        const auto lower = [&](Real tolerance, bool relative) {
            return k.il_Is_Lower_matrix(rows, n, A.data.data(), tolerance, relative);
        };
        // The transpose, as the other order reads it, is upper in the same sense.
        const auto upper = [&](Real tolerance, bool relative) {
            return k.iu_Is_Upper_matrix(!rows, n, A.data.data(), tolerance, relative);
        };
        for (const Real tolerance : {Real(0), Real(-1), kNaN<Real>}) {
            EXPECT_TRUE(lower(tolerance, false) && lower(tolerance, true));
            EXPECT_TRUE(upper(tolerance, false) && upper(tolerance, true));
        }
        A.at(n - 2, n - 1) = Real(0.5);
        EXPECT_FALSE(lower(Real(0.4), false) || upper(Real(0.4), false));
        EXPECT_TRUE(lower(Real(0.5), false) && upper(Real(0.5), false));
        EXPECT_FALSE(lower(Real(0.06), true) || upper(Real(0.06), true));
        EXPECT_TRUE(lower(Real(0.0625), true) && upper(Real(0.0625), true));
        A.at(n - 2, n - 1) = kNaN<Real>;
        EXPECT_FALSE(lower(kInfinity<Real>, false) || upper(kInfinity<Real>, true));
    }

    auto S = this->flat(true, n, n, 1);
    for (int r = 0; r < n; ++r)
        for (int c = 0; c < r; ++c) S.at(r, c) = S.at(c, r);
    S.at(0, 0) = 4;
    const auto symmetric = [&](Real tolerance, bool relative) {
        return k.isy_Is_Symmetric_matrix(n, S.data.data(), tolerance, relative);
    };
    EXPECT_TRUE(symmetric(0, false) && symmetric(0, true));
    S.at(3, 65) += Real(0.25);
    EXPECT_FALSE(symmetric(Real(0.2), false) || symmetric(Real(0.06), true));
    EXPECT_TRUE(symmetric(Real(0.25), false) && symmetric(Real(0.0625), true));
    S.at(3, 65) = S.at(65, 3) = kInfinity<Real>;
    EXPECT_TRUE(symmetric(0, false));
    S.at(40, 40) = kNaN<Real>;
    EXPECT_FALSE(symmetric(kInfinity<Real>, false));
}

TYPED_TEST(AlgebraBasicTest, PositiveDefiniteAndDominant) {
    using Real = TypeParam;
    const auto& k = this->basic;
    for (const int n : {1, 2, 47, 48, 49, 130}) {  // around the panel
        // Second differences: positive definite with pivots (i + 2) / (i + 1); rows in between are
        // weakly dominant only.
        auto A = this->flat(true, n, n, 1);
        for (int r = 0; r < n; ++r)
            for (int c = 0; c < n; ++c)
                A.at(r, c) = r == c ? Real(2) : std::abs(r - c) == 1 ? Real(-1) : Real(0);
        const auto definite = [&] {
            return k.ispd_Is_Symmetric_and_Positive_Definite_matrix(n, A.data.data(), 0, false);
        };
        const auto dominant = [&] {
            return k.isdd_Is_Strictly_Diagonal_Dominant(n, A.data.data());
        };
        EXPECT_TRUE(definite()) << n;
        EXPECT_EQ(dominant(), n < 3) << n;
        for (auto& x : A.data) x *= kHuge<Real>;
        EXPECT_TRUE(definite()) << n;
        for (auto& x : A.data) x /= kHuge<Real>;
        for (const Real last : {Real(n - 1) / Real(n) - Real(0.01), Real(0), kNaN<Real>,
                                kInfinity<Real>, -kInfinity<Real>}) {
            A.at(n - 1, n - 1) = last;
            EXPECT_FALSE(definite()) << n << ' ' << last;
        }
        A.at(n - 1, n - 1) = 2;
        if (n > 1) {
            A.at(0, n - 1) += Real(0.125);
            EXPECT_FALSE(definite()) << n;
        }
        for (int r = 0; r < n; ++r) A.at(r, r) = Real(-2.5);
        EXPECT_TRUE(dominant()) << n;
        A.at(n / 2, n / 2) = kNaN<Real>;
        EXPECT_FALSE(dominant()) << n;
    }
}

TYPED_TEST(AlgebraBasicTest, GeometryAtAnyScale) {
    using Real = TypeParam;
    const auto& k = this->basic;
    for (const Real s : {Real(1), kHuge<Real>, 1 / kHuge<Real>}) {
        const Real p0[] = {s, s, s};
        const Real p1[] = {4 * s, 5 * s, s};
        const Real p2[] = {s, s, 3 * s};
        Real line[3], plane[4], normal[3];
        EXPECT_TRUE(k.fl_Find_Line_equation_of_segment_2D(p0, p1, line));
        const Real expected_line[] = {Real(-0.8), Real(0.6), Real(0.2) * s};
        EXPECT_TRUE(k.nvt_Normal_Vector_of_Triangle_3D(p0, p1, p2, normal));
        EXPECT_TRUE(k.fp_Find_Plane_equation_of_triangle_3D(p0, p1, p2, plane));
        const Real expected_plane[] = {Real(0.8), Real(-0.6), 0, Real(-0.2) * s};
        for (int i = 0; i < 3; ++i) {
            const Real scale = i == 2 ? s : Real(1);
            EXPECT_LT(std::abs(line[i] - expected_line[i]) / scale, 8 * kEps<Real>) << s << i;
            EXPECT_LT(std::abs(normal[i] - expected_plane[i]), 8 * kEps<Real>) << s << i;
        }
        EXPECT_LT(std::abs(plane[3] - expected_plane[3]) / s, 8 * kEps<Real>) << s;
    }
    // Points whose difference overflows still have a direction.
    const Real far = std::numeric_limits<Real>::max();
    const Real a[] = {-far, 0}, b[] = {far, 0};
    Real line[3];
    EXPECT_TRUE(k.fl_Find_Line_equation_of_segment_2D(a, b, line));
    EXPECT_EQ(line[0], 0);
    EXPECT_EQ(line[1], 1);

    // Distances do not depend on the length of the normal.
    const Real point[] = {3, 4, 5};
    for (const Real s : {Real(1), Real(2), kHuge<Real>, 1 / kHuge<Real>}) {
        const Real l[] = {3 * s, 4 * s, -5 * s};
        const Real p[] = {0, 0, -2 * s, 3 * s};
        EXPECT_LT(std::abs(k.dspl_Distance_Squared_between_Point_2D_and_Line(point, l) - 16),
                  64 * kEps<Real>);
        EXPECT_LT(
            std::abs(k.dspp_Distance_Squared_between_Point_3D_and_Plane(point, p) - Real(12.25)),
            64 * kEps<Real>);
    }
    const Real no_normal[] = {0, 0, 0, 1};
    EXPECT_TRUE(std::isnan(k.dspl_Distance_Squared_between_Point_2D_and_Line(point, no_normal)));
    EXPECT_TRUE(std::isinf(k.dspp_Distance_Squared_between_Point_3D_and_Plane(point, no_normal)));
}

TYPED_TEST(AlgebraBasicTest, DegenerateGeometryAnswersFalseAndIsDefined) {
    using Real = TypeParam;
    const auto& k = this->basic;
    const Real p[] = {1, 2, 3}, q[] = {2, 4, 6}, r[] = {3, 6, 9};
    const Real bad[] = {1, kNaN<Real>, kInfinity<Real>};
    Real out[] = {7, 7, 7, 7};
    const auto expect_all = [&](int n, auto predicate) {
        for (int i = 0; i < n; ++i) {
            EXPECT_TRUE(predicate(out[i])) << i << ' ' << out[i];
            out[i] = 7;
        }
    };
    const auto is_zero = [](Real x) { return x == 0; };
    const auto is_nan = [](Real x) { return std::isnan(x); };
    EXPECT_FALSE(k.fl_Find_Line_equation_of_segment_2D(p, p, out));
    expect_all(3, is_zero);
    EXPECT_FALSE(k.nvt_Normal_Vector_of_Triangle_3D(p, q, r, out));
    expect_all(3, is_zero);
    EXPECT_FALSE(k.fp_Find_Plane_equation_of_triangle_3D(p, r, q, out));
    expect_all(4, is_zero);
    EXPECT_FALSE(k.fl_Find_Line_equation_of_segment_2D(p, bad, out));
    expect_all(3, is_nan);
    EXPECT_FALSE(k.fp_Find_Plane_equation_of_triangle_3D(p, bad, r, out));
    expect_all(4, is_nan);
}

}  // namespace
