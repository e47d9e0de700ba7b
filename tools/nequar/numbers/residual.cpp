#include "numbers/residual.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace program {

template <class Real>
double relative_residual(const FileMatrix<Real>& a, const Real* x, const Real* b, int count) {
    const auto n = static_cast<std::size_t>(a.height);
    const auto width = static_cast<std::size_t>(count);

    std::vector<long double> row_sums(n, 0);
    a.for_each([&](int row, int, Real value) {
        row_sums[static_cast<std::size_t>(row)] += std::fabs(static_cast<long double>(value));
    });
    const long double norm_a = *std::max_element(row_sums.begin(), row_sums.end());

    // A few columns at a time: the elements of A are walked once for all of them.
    constexpr std::size_t most = 8;
    double worst = 0;
    for (std::size_t first = 0; first < width; first += most) {
        const std::size_t columns = std::min(most, width - first);
        std::vector<long double> difference(n * columns);
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t c = 0; c < columns; ++c)
                difference[i * columns + c] = -static_cast<long double>(b[i * width + first + c]);
        a.for_each([&](int row, int column, Real value) {
            const Real* from = x + static_cast<std::size_t>(column) * width + first;
            long double* to = difference.data() + static_cast<std::size_t>(row) * columns;
            for (std::size_t c = 0; c < columns; ++c)
                to[c] += static_cast<long double>(value) * static_cast<long double>(from[c]);
        });
        for (std::size_t c = 0; c < columns; ++c) {
            long double norm_r = 0, norm_x = 0, norm_b = 0;
            for (std::size_t i = 0; i < n; ++i) {
                const Real xi = x[i * width + first + c], bi = b[i * width + first + c];
                if (!std::isfinite(xi) || !std::isfinite(bi))
                    return std::numeric_limits<double>::quiet_NaN();
                norm_r = std::max(norm_r, std::fabs(difference[i * columns + c]));
                norm_x = std::max(norm_x, std::fabs(static_cast<long double>(xi)));
                norm_b = std::max(norm_b, std::fabs(static_cast<long double>(bi)));
            }
            if (norm_r > 0)
                worst = std::max(worst, static_cast<double>(norm_r / (norm_a * norm_x + norm_b)));
        }
    }
    return worst;
}

template <class Real>
double largest_good_residual(int n) {
    return 10.0 * n * static_cast<double>(std::numeric_limits<Real>::epsilon());
}

template double relative_residual(const FileMatrix<double>&, const double*, const double*, int);
template double relative_residual(const FileMatrix<float>&, const float*, const float*, int);
template double largest_good_residual<double>(int);
template double largest_good_residual<float>(int);

}  // namespace program
