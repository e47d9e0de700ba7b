#include "numbers/residual.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

namespace program {
namespace {

// The columns first .. first + columns of x and b, at most kMost of them: A is walked once for all.
constexpr std::size_t kMost = 8;
// Multiplications beyond which long double is too slow.
constexpr double kMostInLongDouble = 5e8;

template <class Real>
long double row_norm(const FileMatrix<Real>& a) {
    std::vector<long double> sums(static_cast<std::size_t>(a.height), 0);
    a.for_each([&](int row, int, Real value) {
        sums[static_cast<std::size_t>(row)] += std::fabs(static_cast<long double>(value));
    });
    return *std::max_element(sums.begin(), sums.end());
}

// max |v_i| over elements `stride` apart; NaN when an element is not finite.
template <class Number>
long double largest(const Number* v, std::size_t n, std::size_t stride) {
    long double size = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const long double magnitude = std::fabs(static_cast<long double>(v[i * stride]));
        if (!std::isfinite(magnitude)) return std::numeric_limits<long double>::quiet_NaN();
        size = std::max(size, magnitude);
    }
    return size;
}

template <class Sum, class Real>
double worst_residual(const FileMatrix<Real>& a, const Real* x, const Real* b, std::size_t count) {
    const auto n = static_cast<std::size_t>(a.height);
    const long double norm_a = row_norm(a);
    std::vector<Sum> difference(n * kMost);
    double worst = 0;
    for (std::size_t first = 0; first < count; first += kMost) {
        const std::size_t columns = std::min(kMost, count - first);
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t c = 0; c < columns; ++c)
                difference[i * kMost + c] = -static_cast<Sum>(b[i * count + first + c]);
        a.for_each([&](int row, int column, Real value) {
            const Real* from = x + static_cast<std::size_t>(column) * count + first;
            Sum* to = difference.data() + static_cast<std::size_t>(row) * kMost;
            const auto factor = static_cast<Sum>(value);
            for (std::size_t c = 0; c < columns; ++c) to[c] += factor * static_cast<Sum>(from[c]);
        });
        for (std::size_t c = 0; c < columns; ++c) {
            const long double norm_r = largest(difference.data() + c, n, kMost);
            if (norm_r == 0) continue;
            const long double norm_x = largest(x + first + c, n, count);
            const long double norm_b = largest(b + first + c, n, count);
            const auto relative = static_cast<double>(norm_r / (norm_a * norm_x + norm_b));
            if (std::isnan(relative)) return relative;
            worst = std::max(worst, relative);
        }
    }
    return worst;
}

}  // namespace

template <class Real>
double relative_residual(const FileMatrix<Real>& a, const Real* x, const Real* b, int count) {
    const auto columns = static_cast<std::size_t>(count);
    const double work = static_cast<double>(a.values.size()) * count;
    if (std::is_same_v<Real, float> || work > kMostInLongDouble)
        return worst_residual<double>(a, x, b, columns);
    return worst_residual<long double>(a, x, b, columns);
}

template <class Real>
double largest_good_residual(int n) {
    return 10 * std::sqrt(n) * static_cast<double>(std::numeric_limits<Real>::epsilon());
}

template double relative_residual(const FileMatrix<double>&, const double*, const double*, int);
template double relative_residual(const FileMatrix<float>&, const float*, const float*, int);
template double largest_good_residual<double>(int);
template double largest_good_residual<float>(int);

}  // namespace program
