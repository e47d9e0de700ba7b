#include <cmath>

#include "factorization/algorithm/bidiagonal.h"
#include "factorization/algorithm/golub_kahan.h"
#include "factorization/algorithm/range.h"
#include "factorization/algorithm/reflector.h"
#include "factorization/algorithm/singular_values.h"
#include "factorization/orthogonal_checks.h"
#include "support/twins.h"

namespace nequar {
namespace {

using testing::Dense;
using testing::orthogonality;
using testing::product_residual;
using testing::random_dense;

TWINS(SingularValueAlgorithms);

// max |A - U diag(s) V^T| / (s0 size eps), U m x m or m x n
template <class Real>
double svd_residual(const Dense<Real>& a, const Dense<Real>& u, const std::vector<Real>& s,
                    const Dense<Real>& v) {
    Dense<Real> us(a.height, a.width), scaled = a;
    Real top = s.empty() || s[0] == 0 ? Real(1) : s[0];
    for (Real& element : scaled.elements) element /= top;
    for (Size i = 0; i < a.height; ++i)
        for (Size j = 0; j < a.width; ++j) us(i, j) = u(i, j) * (s[std::size_t(j)] / top);
    return product_residual<Real>(scaled.view(), us.view(), v.view().transposed());
}

template <class Real>
bool descends(const std::vector<Real>& s) {
    for (std::size_t i = 0; i < s.size(); ++i)
        if (!(s[i] >= 0) || (i > 0 && !(s[i] <= s[i - 1]))) return false;
    return true;
}

// Everything that an SVD has to be, with U whole and thin and with values alone; answers the steps.
template <class Real>
std::int64_t expect_svd(const Dense<Real>& a, std::int64_t limit, double bound = 12) {
    const Size m = a.height;
    const Size n = a.width;
    Real largest = 0;
    EXPECT_TRUE(find_largest_finite(a.view(), largest));
    Dense<Real> u(m, m, Real(7)), thin(m, n, Real(7)), v(n, n, Real(7)), v_of_thin = v;
    std::vector<Real> s(static_cast<std::size_t>(n)), s_of_thin = s, alone = s;
    const View<Real> u_view = u.view(), v_view = v.view(), thin_view = thin.view(),
                     v_of_thin_view = v_of_thin.view();
    SvdSteps steps, steps_of_thin, steps_alone;
    steps.limit = steps_of_thin.limit = steps_alone.limit = limit;
    EXPECT_TRUE(svd<Real>(a.view(), largest, {s.data(), &u_view, &v_view}, steps));
    EXPECT_TRUE(svd<Real>(a.view(), largest, {s_of_thin.data(), &thin_view, &v_of_thin_view},
                          steps_of_thin));
    EXPECT_TRUE(svd<Real>(a.view(), largest, {alone.data(), nullptr, nullptr}, steps_alone));
    EXPECT_TRUE(steps.has_converged && steps_alone.has_converged);
    EXPECT_LT(svd_residual(a, u, s, v), bound);
    EXPECT_LT(svd_residual(a, thin, s_of_thin, v_of_thin), bound);
    EXPECT_LT(orthogonality<Real>(u.view()), bound);
    EXPECT_LT(orthogonality<Real>(v.view()), bound);
    EXPECT_TRUE(descends(s));
    const Real top = n > 0 ? s[0] : Real(0);
    for (std::size_t i = 0; i < s.size(); ++i) {
        EXPECT_EQ(s_of_thin[i], s[i]);
        EXPECT_LE(std::abs(alone[i] - s[i]),
                  top * Real(n + 4) * std::numeric_limits<Real>::epsilon());
    }
    return steps.made;
}

template <class Real>
Dense<Real> bidiagonal(const std::vector<Real>& d, const std::vector<Real>& f) {
    const Size n = Size(d.size());
    Dense<Real> b(n, n);
    for (Size i = 0; i < n; ++i) {
        b(i, i) = d[std::size_t(i)];
        if (i + 1 < n) b(i, i + 1) = f[std::size_t(i)];
    }
    return b;
}

// The steps as they are stated.
template <class Real>
void reflect_as_stated(std::vector<Real> x, Size first, Dense<Real>& a, bool from_left) {
    const Size size = Size(x.size());
    const Real beta = householder_vector(Strided<Real>(x.data(), size), Size(0));
    const View<Real> view = from_left ? a.view() : a.view().transposed();
    for (Size j = 0; j < view.width; ++j) {
        Real w = 0;
        for (Size i = 0; i < size; ++i) w += x[std::size_t(i)] * view(first + i, j);
        for (Size i = 0; i < size; ++i) view(first + i, j) -= beta * w * x[std::size_t(i)];
    }
}

template <class Real>
void reduce_as_stated(Dense<Real>& a, Dense<Real>& u, Dense<Real>& v) {
    for (Size k = 0; k < a.width; ++k) {
        std::vector<Real> column, row;
        for (Size i = k; i < a.height; ++i) column.push_back(a(i, k));
        reflect_as_stated(column, k, a, true);
        reflect_as_stated(column, k, u, false);
        if (k + 2 >= a.width) continue;
        for (Size j = k + 1; j < a.width; ++j) row.push_back(a(k, j));
        reflect_as_stated(row, k + 1, a, false);
        reflect_as_stated(row, k + 1, v, false);
    }
}

TWIN_TEST(SingularValueAlgorithms, BidiagonalEqualsTheStatedSteps) {
    const std::pair<Size, Size> shapes[] = {{1, 1}, {2, 1},  {2, 2},   {3, 2},   {3, 3},
                                            {6, 4}, {20, 9}, {23, 23}, {70, 67}, {140, 45}};
    for (const auto& [m, n] : shapes)
        for (const Size block : {1, 2, 5, 16, 0}) {
            SCOPED_TRACE(::testing::Message() << m << " x " << n << " block " << block);
            const Dense<Real> input = random_dense<Real>(m, n);
            Dense<Real> stated = input, stated_u(m, m), stated_v(n, n);
            testing::set_identity(stated_u.view());
            testing::set_identity(stated_v.view());
            reduce_as_stated(stated, stated_u, stated_v);
            Dense<Real> a = input, u(m, m, Real(7)), v(n, n, Real(7));
            const View<Real> u_view = u.view(), v_view = v.view();
            ASSERT_TRUE(bidiagonalize_in_place(a.view(), Real(1), &u_view, &v_view, block));
            const double bound = 300 * double(m) * double(std::numeric_limits<Real>::epsilon());
            for (Size i = 0; i < m; ++i)
                for (Size j = 0; j < n; ++j) {
                    if (j == i || j == i + 1)
                        ASSERT_NEAR(a(i, j), stated(i, j), bound);
                    else
                        ASSERT_EQ(a(i, j), 0);
                    ASSERT_NEAR(u(i, j), stated_u(i, j), bound);
                }
            ASSERT_LE(testing::largest_gap(v, stated_v), bound);
            EXPECT_LT(orthogonality<Real>(u.view()), 10);
            EXPECT_LT(orthogonality<Real>(v.view()), 10);
        }
}

TWIN_TEST(SingularValueAlgorithms, EveryPatternOfZerosEnds) {
    for (unsigned n = 1; n <= 6; ++n)
        for (unsigned pattern = 0; pattern < (1u << (2 * n - 1)); ++pattern) {
            std::vector<Real> d, f;
            for (unsigned i = 0; i < n; ++i) d.push_back(Real(pattern >> i & 1 ? i + 1 : 0));
            for (unsigned i = 0; i + 1 < n; ++i)
                f.push_back(Real(pattern >> (n + i) & 1 ? 1 + Real(i) / 4 : 0));
            SCOPED_TRACE(::testing::Message() << "n " << n << " pattern " << pattern);
            ASSERT_LT(expect_svd(bidiagonal(d, f), 100), 4 * n);
            if (this->HasFailure()) return;
        }
}

TWIN_TEST(SingularValueAlgorithms, ABlockWithZerosInsideConvergesLikeItsPieces) {
    EXPECT_LT(expect_svd(bidiagonal<Real>({1, 2, 3, 4}, {1, 0, 1}), 100), 8);
    for (const Size n : {10, 60, 120})
        for (const Size gap : {1, 2, 7, 1000}) {
            const Dense<Real> numbers = random_dense<Real>(2, n, 5);
            std::vector<Real> d, f;
            for (Size i = 0; i < n; ++i) {
                d.push_back(numbers(0, i));
                if (i + 1 < n) f.push_back((i + 1) % gap == 0 ? Real(0) : numbers(1, i));
            }
            SCOPED_TRACE(::testing::Message() << n << " gap " << gap);
            EXPECT_LT(expect_svd(bidiagonal(d, f), 10 * n), 5 * n / 2 + 4);
        }
}

TWIN_TEST(SingularValueAlgorithms, TheShiftSurvivesUnderflow) {
    const Real tiny = std::sqrt(std::numeric_limits<Real>::min()) / 64;
    const Real d[] = {tiny, tiny, tiny}, f[] = {tiny, tiny}, steep[] = {tiny * tiny, 1, 1};
    for (const Real* diagonal : {d, steep}) {
        Real y = 0, z = 0;
        first_vector(diagonal, f, {0, 3}, y, z);
        EXPECT_TRUE(std::isfinite(y) && z != 0) << y << " " << z;
    }
}

TWIN_TEST(SingularValueAlgorithms, MatricesOfAllShapesAndRanges) {
    const double decades = sizeof(Real) == 4 ? 0.2 : 1.0;
    const double end = sizeof(Real) == 4 ? 1e37 : 1e307;
    const std::pair<Size, Size> shapes[] = {{0, 0}, {3, 0},  {1, 1},   {5, 1},   {2, 2},   {7, 7},
                                            {9, 8}, {30, 9}, {41, 40}, {70, 70}, {150, 44}};
    for (const auto& [m, n] : shapes)
        for (const int kind : {0, 1, 2, 3, 4, 5}) {
            SCOPED_TRACE(::testing::Message() << m << " x " << n << " kind " << kind);
            Dense<Real> a = random_dense<Real>(m, n, 3);
            for (Size i = 0; i < m; ++i)
                for (Size j = 0; j < n; ++j) {
                    const double down = double(kind == 1 ? i + j : m + n - i - j) * decades;
                    if (kind == 1 || kind == 2) a(i, j) *= std::pow(Real(10), Real(-down));
                    if (kind == 3) a(i, j) = Real((i * j) % 3);
                    if (kind == 4) a(i, j) = Real(double(a(i, j)) * end);
                    if (kind == 5) a(i, j) = Real(double(a(i, j)) / end);
                }
            expect_svd(a, generous_limit(n));
        }
}

TWIN_TEST(SingularValueAlgorithms, RankRules) {
    const Real nan = std::numeric_limits<Real>::quiet_NaN();
    struct Case {
        std::vector<Real> s;
        Real tolerance;
        bool check;
        RankFault fault;
        int rank;
    };
    const Case cases[] = {
        {{3, 2, Real(1e-12)}, Real(1e-10), true, RankFault::none, 2},
        {{1, Real(0.5)}, Real(0.5), true, RankFault::none, 1},
        {{1, Real(0.5)}, 0, true, RankFault::none, 2},
        {{0, 0}, Real(0.1), true, RankFault::none, 0},
        {{}, Real(0.1), true, RankFault::none, 0},
        {{-1, -2}, Real(0.1), true, RankFault::negative, -1},
        {{1, 2}, Real(0.1), true, RankFault::ordering, -1},
        {{1, 2}, Real(0.1), false, RankFault::none, 2},
        {{1}, 1, true, RankFault::tolerance, -1},
        {{1}, Real(-0.1), true, RankFault::tolerance, -1},
        {{1}, nan, false, RankFault::tolerance, -1},
        {{1, nan}, Real(0.1), false, RankFault::not_finite, -1},
    };
    for (const Case& c : cases) {
        int rank = -1;
        const Strided<const Real> s(c.s.data(), Size(c.s.size()));
        EXPECT_EQ(find_rank(s, c.tolerance, c.check, rank), c.fault) << &c - cases;
        EXPECT_EQ(rank, c.rank) << &c - cases;
    }
}

}  // namespace
}  // namespace nequar
