// Sparse vectors and matrices, symmetric ones too: special cases that random sequences do not
// reach, statistics, sizes that do not fit, self-tests.
#include <climits>
#include <cmath>
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

TWIN_TEST(SparseTest, ImportedArraysAndHandedOutStorage) {
    typename TestFixture::MatrixType a, b;
    const auto values = growable<Real>({1, 2, 3});
    auto rows = growable<int>({1, 0, 2});
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
    b.czm(3, 3, 0);
    EXPECT_TRUE(*pointers == ints({0, 0, 0, 0}));
}

TWIN_TEST(SparseTest, ZeroElementsAndExtrema) {
    typename TestFixture::VectorType v;
    int i = -7;
    int j = -7;
    v.czv(4, 0);
    EXPECT_TRUE(v.max(&i) == Real(0) && i == 0 && v.itze() && v.fize(i) && i == 0);
    v.se(1, Real(-2));
    EXPECT_TRUE(v.max(&i) == Real(0) && i == 0 && v.min(&i) == Real(-2) && i == 1);
    v = vector_of(Mirror<Real>{4, 1, {{{0, 1}, -2}, {{0, 3}, 0}}});  // a stored zero
    EXPECT_TRUE(v.max(&i) == Real(0) && i == 3);
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
}

// Three of sixteen elements are v; then one of one; then NaN.
template <class Sparse, class Real>
void expect_statistics(Sparse s, Real v) {
    SCOPED_TRACE(v);
    Real deviation = -1;
    EXPECT_TRUE(s.se(0, 0, v) && s.se(3, 1, v) && s.se(1, 3, v));
    EXPECT_NEAR(s.m() / v, 3.0 / 16, 1e-6);
    EXPECT_NEAR(s.mst(deviation) / v, 3.0 / 16, 1e-6);
    EXPECT_NEAR(deviation / v, std::sqrt(39.0) / 16, 1e-6);
    EXPECT_NEAR(s.nf() / v, std::sqrt(3.0), 1e-6);
    EXPECT_TRUE(s.cim(1, 1) && s.se(0, 0, v) && s.mst(deviation) == v && deviation == Real(0));
    s.se(0, 0, std::numeric_limits<Real>::quiet_NaN());
    EXPECT_TRUE(std::isnan(s.m()) && std::isnan(s.mst(deviation)) && std::isnan(deviation));
    EXPECT_TRUE(std::isnan(s.nf()) && std::isnan(s.mse(&s)));
    EXPECT_TRUE(s == s);
    EXPECT_FALSE(s == Sparse(s));
}

TWIN_TEST(SparseTest, Statistics) {
    using L = std::numeric_limits<Real>;
    typename TestFixture::VectorType v, w;
    typename TestFixture::MatrixType a;
    nequar::SparseSymmetricMatrix<Real> s;
    a.czm(4, 4, 0);
    s.czm(4, 0);
    Real deviation = -1;
    for (const Real scale : {Real(1), L::max() / 4, L::min() * 4}) {
        v.czv(4, 0);
        v.se(2, 4 * scale);
        EXPECT_EQ(v.mst_Mean_and_Stdev(deviation), scale);
        EXPECT_NEAR(deviation / scale, std::sqrt(3.0), 1e-6);
        expect_statistics(a, scale);
        expect_statistics(s, scale);
    }
    v.czv(2, 0);
    v.se(0, L::max());
    v.se(1, L::max());
    EXPECT_EQ(v.m(), L::max());
    v = vector_of(Mirror<Real>{3, 1, {{{0, 0}, 2}, {{0, 2}, -3}}});
    w = vector_of(Mirror<Real>{3, 1, {{{0, 0}, 5}, {{0, 1}, 1}}});
    EXPECT_TRUE(v.ds(&w) == Real(19) && v.ps(&w) == Real(10) && v.n1() == Real(5));
    EXPECT_NEAR(v.mse(&w), 19.0 / 3, 1e-6);
    EXPECT_NEAR(v.n2(), std::sqrt(13.0), 1e-6);
    EXPECT_NEAR(v.ng(3), std::cbrt(35.0), 1e-5);
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
    EXPECT_FALSE(a.t(&out));  // INT_MAX columns, and one pointer more
    EXPECT_TRUE(b.mvva(&(v = typename TestFixture::VectorType()), &v) == false && a.amm(&b));
    EXPECT_TRUE(a.gb(0, 0, 3, INT_MAX, &out) && out == a);
    ASSERT_TRUE(v.czv(INT_MAX, 1) && v.se(INT_MAX - 1, Real(3)) && w.czv(INT_MAX, 0));
    EXPECT_TRUE(v.g(INT_MAX - 1, INT_MAX, &w) && w.dim() == INT_MAX && w.nee() == 1);
    w.se(1, Real(8));
    EXPECT_TRUE(v.s(INT_MAX - 2, &w) && v.nee() == 2 && v.m() > Real(0));
    Real value = 0;
    EXPECT_TRUE(v.ge(INT_MAX - 1, &value) && value == Real(8));
}

TWIN_TEST(SparseTest, LargeDenseHalvesOfSymmetricMatrices) {
    for (const int n : {63, 64, 65, 130, 600})
        for (const bool lower : {true, false}) {
            SCOPED_TRACE(n);
            const auto full = nequar::test::matrix_of<Real>(n, n, [n](int i, int j) {
                const int low = std::min(i, j), high = std::max(i, j);
                return n == 600 || (low * 7 + high * 3) % 5 == 0 ? high * 1000 + low : 0;
            });
            auto a = nequar::test::matrix_of<Real>(n, n, [&](int i, int j) {
                return (lower ? i >= j : i <= j) ? full[i][j] : TestFixture::kNan;
            });
            nequar::SparseSymmetricMatrix<Real> s;
            nequar::Matrix<Real> symmetric, exported;
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
    EXPECT_FALSE(a.ge(0, 0, &value) || a.se(0, 0, 1) || a.t(&out) || a.itze() || a.z_cne(1));
    EXPECT_TRUE(a.rze() && a.ex(&dense) && a.mmc(2) && a.m() == Real(0) && a.czm(2, 2, 0));
    typename TestFixture::VectorType v = vector_of(Mirror<Real>{3, 1, {{{0, 1}, 4}}});
    const auto taken = std::move(v);
    typename TestFixture::VectorType assigned;
    assigned = taken;
    EXPECT_TRUE(assigned == taken && assigned.dim() == 3);
    EXPECT_TRUE(taken.nee() == 1 && v.dim() == 0 && v.nee() == 0 && !v.se(0, 1) &&
                v.m() == Real(0));
    nequar::SparseSymmetricMatrix<Real> s, full;
    s.czm(3, 2);
    full = std::move(s);
    EXPECT_TRUE(a.z_cne(0) && s.amm(&s) && s.mvva(&v));
    EXPECT_FALSE(s.ex(&a, nullptr) || s.z_cne(1));
}

TWIN_TEST(SparseTest, SelfTestsPass) {
    typename TestFixture::MatrixType a;
    typename TestFixture::VectorType v;
    nequar::SparseSymmetricMatrix<Real> s;
    for (const double density : {0.0, 0.1, 0.5, 1.0})
        for (const auto& [d1, d2] : {std::pair(1, 1), {1, 6}, {5, 1}, {4, 6}, {2, 3}, {3, 8}})
            for (const double constant : {0.0, -2.5, 1e-10}) {
                SCOPED_TRACE(testing::Message() << d1 << ' ' << d2 << ' ' << density);
                EXPECT_TRUE(
                    a.u_tot_Test_Operations_Total(d1, d2, density, -2, 3, constant, 3, 2, 2, 2, 2))
                    << failures_of(a);
                EXPECT_TRUE(v.u_tot_Test_Operations_Total(d2, density, -3, 1, constant, 3, 2, 2))
                    << failures_of(v);
                EXPECT_TRUE(
                    s.u_tot_Test_Operations_Total(d2, density, -2, 3, constant, 6, 2, 2, 1, 6))
                    << failures_of(s);
            }
    EXPECT_TRUE(s.u_tot_Test_Operations_Total(40, 0.05, 1, 1, 3, 3, 0, 0, 0, 3)) << failures_of(s);
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
    nequar::SparseSymmetricMatrix<Real> symmetric;
    nequar::Matrix<Real> dense, exported;
    for (int repetition = 0; repetition < 50; ++repetition) {
        EXPECT_TRUE(symmetric.u_mrsm_Make_a_Random_Sparse_Matrix(6, 9, -1, 2, &symmetric, &dense));
        EXPECT_TRUE(symmetric.ex(&exported) && exported == dense);
        EXPECT_TRUE(symmetric.nee() <= 9 && symmetric.nee() > 0);
        EXPECT_TRUE(symmetric.max() < 2 && symmetric.min() >= -1);
    }
    EXPECT_TRUE(symmetric.u_mrsm_Make_a_Random_Sparse_Matrix(6, 9, -1, 2, nullptr, nullptr));
}

}  // namespace
