#include <algorithm>
#include <cmath>

#include "factorization/algorithm/bidiagonal.h"
#include "factorization/algorithm/golub_kahan.h"
#include "factorization/algorithm/range.h"
#include "factorization/algorithm/singular_values.h"
#include "frame/views.h"
#include "support/residual.h"
#include "support/twins.h"

namespace nequar::test {
namespace {

TWINS(SingularValueAlgorithms);

template <class Real>
struct Svd {
    Matrix<Real> u, v;
    Vector<Real> s;
    SvdSteps steps;

    // U with so many columns; none: no vectors at all.
    Svd(const Matrix<Real>& a, Real largest, int columns_of_u, std::int64_t limit)
        : u(constant_matrix<Real>(a.mh(), columns_of_u, 7)),
          v(constant_matrix<Real>(a.mw(), a.mw(), 7)) {
        const View<Real> u_view = view_of(&u), v_view = view_of(&v);
        const bool has_vectors = columns_of_u > 0;
        s.c_Create(a.mw());
        steps.limit = limit;
        EXPECT_TRUE(svd<Real>(
            view_of(&a), largest,
            {s.p(), has_vectors ? &u_view : nullptr, has_vectors ? &v_view : nullptr}, steps));
        EXPECT_TRUE(steps.has_converged);
        if (!has_vectors) return;
        EXPECT_LT(spectral_error(a, u, s, v), 12);
        EXPECT_LT(orthogonality_error(u), 12);
        EXPECT_LT(orthogonality_error(v), 12);
    }
};

// Everything that an SVD has to be, with U whole and thin and with values alone; answers the steps.
template <class Real>
std::int64_t expect_svd(const Matrix<Real>& a, std::int64_t limit) {
    const int n = a.mw();
    Real largest = 0;
    EXPECT_TRUE(find_largest_finite(view_of(&a), largest));
    const Svd<Real> whole(a, largest, a.mh(), limit), thin(a, largest, n, limit);
    const Svd<Real> alone(a, largest, 0, limit);
    for (int i = 0; i < n; ++i) {
        EXPECT_TRUE(whole.s[i] >= 0 && (i == 0 || whole.s[i] <= whole.s[i - 1]));
        EXPECT_EQ(thin.s[i], whole.s[i]);
        EXPECT_LE(std::abs(alone.s[i] - whole.s[i]), double(whole.s[0]) * (n + 4) * kEpsilon<Real>);
    }
    return whole.steps.made;
}

template <class Real>
Matrix<Real> bidiagonal(const std::vector<Real>& d, const std::vector<Real>& f) {
    const int n = int(d.size());
    return matrix_of<Real>(n, n, [&](int i, int j) {
        return i == j ? d[std::size_t(i)] : j == i + 1 ? f[std::size_t(i)] : Real(0);
    });
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
    for (const int n : {10, 60, 120})
        for (const int gap : {1, 2, 7, 1000}) {
            const Matrix<Real> numbers = random_matrix<Real>(2, n, 5);
            std::vector<Real> d, f;
            for (int i = 0; i < n; ++i) {
                d.push_back(numbers[0][i]);
                if (i + 1 < n) f.push_back((i + 1) % gap == 0 ? Real(0) : numbers[1][i]);
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
    const std::pair<int, int> shapes[] = {{0, 0}, {3, 0},  {1, 1},   {5, 1},   {2, 2},   {7, 7},
                                          {9, 8}, {30, 9}, {41, 40}, {70, 70}, {150, 44}};
    for (const auto& [m, n] : shapes)
        for (const int kind : {0, 1, 2, 3, 4, 5}) {
            SCOPED_TRACE(::testing::Message() << m << " x " << n << " kind " << kind);
            Matrix<Real> a = random_matrix<Real>(m, n, 3);
            for (int i = 0; i < m; ++i)
                for (int j = 0; j < n; ++j) {
                    const double down = (kind == 1 ? i + j : m + n - i - j) * decades;
                    if (kind == 1 || kind == 2) a[i][j] *= std::pow(Real(10), Real(-down));
                    if (kind == 3) a[i][j] = Real((i * j) % 3);
                    if (kind == 4) a[i][j] = Real(double(a[i][j]) * end);
                    if (kind == 5) a[i][j] = Real(double(a[i][j]) / end);
                }
            expect_svd(a, generous_limit(n));
        }
}

// The blocks that a size chooses, and those of much larger ones, rebuild A as well.
TWIN_TEST(SingularValueAlgorithms, BidiagonalInBlocksOfAnySize) {
    const auto a = random_matrix<Real>(100, 90, 3);
    for (const Size block : {1, 4, 8, 16}) {
        Matrix<Real> b = a, u = constant_matrix<Real>(100, 100, 7);
        auto v = constant_matrix<Real>(90, 90, 7);
        const View<Real> u_view = view_of(&u), v_view = view_of(&v);
        EXPECT_TRUE(bidiagonalize_in_place(view_of(&b), Real(1), &u_view, &v_view, block));
        EXPECT_LT(rebuilding_error(a, u, b, transposed(v)), 10) << block;
        EXPECT_LT(std::max(orthogonality_error(u), orthogonality_error(v)), 10) << block;
    }
}

}  // namespace
}  // namespace nequar::test
