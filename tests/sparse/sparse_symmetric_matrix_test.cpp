// The symmetric matrix: large dense halves, extreme values.
#include <cmath>
#include <limits>

#include "sparse/mirror.h"
#include "support/matrix_gallery.h"

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

TWIN_TEST(SparseSymmetric, LargeDenseHalves) {
    const Real nan = std::numeric_limits<Real>::quiet_NaN();
    for (const int n : {63, 64, 65, 130, 600})
        for (const bool lower : {true, false}) {
            SCOPED_TRACE(n);
            const auto full = nequar::test::matrix_of<Real>(n, n, [n](int i, int j) {
                const int low = std::min(i, j), high = std::max(i, j);
                return n == 600 || (low * 7 + high * 3) % 5 == 0 ? high * 1000 + low : 0;
            });
            auto a = nequar::test::matrix_of<Real>(
                n, n, [&](int i, int j) { return (lower ? i >= j : i <= j) ? full[i][j] : nan; });
            Symmetric<Real> s;
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

}  // namespace
