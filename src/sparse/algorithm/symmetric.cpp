#include "sparse/algorithm/symmetric.h"

#include <cmath>
#include <limits>

#include "kernel/kernel.h"
#include "sparse/algorithm/compare.h"
#include "sparse/algorithm/reduce.h"

namespace nequar {
namespace {

// What a plain sum of squares must exceed for its smallest terms not to matter where they were
// lost.
template <class Real>
constexpr Real kSafelyLarge =
    std::numeric_limits<Real>::min() / std::numeric_limits<Real>::epsilon();

template <class Real>
bool begins_with_diagonal(const Run<Real>& column, Size c) {
    return column.count > 0 && column.indices[0] == c;
}

template <class Real>
Run<Real> without_first(const Run<Real>& run) {
    return {run.indices + 1, run.values + 1, run.count - 1};
}

// sum of f(v) over the stored elements of the full matrix
template <class Real, class Term>
Real sum_of_full(const Columns<Real>& lower, const Term& f) {
    constexpr Size kLanes = 8;
    Real diagonal = 0;
    Real off[kLanes] = {};
    for (Size c = 0; c < lower.width; ++c) {
        Run<Real> column = lower.column(c);
        if (begins_with_diagonal(column, c)) {
            diagonal += f(column.values[0]);
            column = without_first(column);
        }
        Size k = 0;
        for (; k + kLanes <= column.count; k += kLanes)
            for (Size lane = 0; lane < kLanes; ++lane) off[lane] += f(column.values[k + lane]);
        for (; k < column.count; ++k) off[k % kLanes] += f(column.values[k]);
    }
    return diagonal + 2 * sum(off, kLanes);
}

template <class Real>
Real total_elements(const Columns<Real>& lower) {
    return static_cast<Real>(lower.width) * static_cast<Real>(lower.width);
}

// sum of (v - centre)^2 over the stored elements of the full matrix: twice those of the half, in
// the order in which they lie, less the diagonal, which is never the larger part.
template <class Real>
Real squares_of_full(const Columns<Real>& lower, Real centre) {
    const Real half = squares_about(lower.values, lower.count, centre);
    if (!std::isfinite(half)) return half;
    Real diagonal = 0;
    for (Size c = 0; c < lower.width; ++c) {
        const Run<Real> column = lower.column(c);
        if (!begins_with_diagonal(column, c)) continue;
        const Real difference = column.values[0] - centre;
        diagonal += difference * difference;
    }
    return 2 * half - diagonal;
}

// sqrt(sum of (v - centre)^2 over the full matrix / divisor); `absent` elements are zero.
template <class Real>
Real root_of_squares(const Columns<Real>& lower, Real centre, Real absent, Real divisor) {
    const auto square = [](Real difference) { return difference * difference; };
    Real plain = squares_of_full(lower, centre);
    if (absent > Real(0)) plain += absent * square(centre);  // which may overflow
    if (std::isfinite(plain) && plain > kSafelyLarge<Real>) return std::sqrt(plain / divisor);
    Real largest = absent > Real(0) ? std::abs(centre) : Real(0);
    for (Size k = 0; k < lower.count; ++k)
        largest = std::max(largest, std::abs(lower.values[k] - centre));
    if (largest == Real(0) || !std::isfinite(largest) || std::isnan(plain)) return std::sqrt(plain);
    const Real scaled = sum_of_full(lower, [=](Real v) { return square((v - centre) / largest); }) +
                        absent * square(centre / largest);
    return largest * std::sqrt(scaled / divisor);
}

}  // namespace

template <class Real>
Size stored_in_full(const Columns<Real>& lower) {
    Size total = 0;
    for (Size c = 0; c < lower.width; ++c) {
        const Run<Real> column = lower.column(c);
        total += 2 * column.count - (begins_with_diagonal(column, c) ? 1 : 0);
    }
    return total;
}

template <class Real>
Real mean_of_full(const Columns<Real>& lower) {
    if (lower.count == 0) return Real(0);
    const Real total = total_elements(lower);
    const Real plain = sum_of_full(lower, [](Real v) { return v; });
    if (std::isfinite(plain)) return plain / total;
    return sum_of_full(lower, [=](Real v) { return v / total; });
}

template <class Real>
Real deviation_of_full(const Columns<Real>& lower, Real mean) {
    if (lower.count == 0) return Real(0);
    const Size absent = lower.width * lower.width - stored_in_full(lower);
    return root_of_squares(lower, mean, static_cast<Real>(absent), total_elements(lower));
}

template <class Real>
Real norm_of_full(const Columns<Real>& lower) {
    return root_of_squares(lower, Real(0), Real(0), Real(1));
}

template <class Real>
Real mean_squared_difference_of_full(const Columns<Real>& a, const Columns<Real>& b) {
    if (a.width == 0) return Real(0);
    Real diagonal = 0;
    Real off = 0;
    const auto take_diagonal = [](Run<Real>& column, Size c) {
        if (!begins_with_diagonal(column, c)) return Real(0);
        const Real v = column.values[0];
        column = without_first(column);
        return v;
    };
    for (Size c = 0; c < a.width; ++c) {
        Run<Real> of_a = a.column(c);
        Run<Real> of_b = b.column(c);
        const Real difference = take_diagonal(of_a, c) - take_diagonal(of_b, c);
        diagonal += difference * difference;
        off += distance_squared(of_a, of_b);
    }
    return (diagonal + 2 * off) / total_elements(a);
}

template <class Real>
void write_full_to_dense(const Columns<Real>& lower, int* next, View<Real> out) {
    constexpr Size kBandBytes = Size(1) << 19;
    const Size row_bytes = out.width * Size(sizeof(Real));
    const Size band = std::max<Size>(8, kBandBytes / std::max<Size>(1, row_bytes));
    for (Size c = 0; c < lower.width; ++c) next[c] = static_cast<int>(lower.range(c).begin);
    for (Size top = 0; top < out.height; top += band) {
        const Size bottom = std::min(top + band, out.height);
        std::fill(out.data + top * out.row_stride, out.data + bottom * out.row_stride, Real(0));
        for (Size c = 0; c < bottom; ++c) {
            const Size end = lower.range(c).end;
            Size k = next[c];
            for (; k < end && lower.rows[k] < bottom; ++k)
                if (lower.rows[k] >= top) out(lower.rows[k], c) = lower.values[k];
            next[c] = static_cast<int>(k);
        }
        for (Size c = top; c < bottom; ++c) {
            const Run<Real> column = lower.column(c);
            for (Size k = 0; k < column.count; ++k)
                if (column.indices[k] >= c && column.indices[k] < out.width)
                    out(c, column.indices[k]) = column.values[k];
        }
    }
}

template <class Real>
void mirror_lower_triangle(View<Real> a, Size tile) {
    for (Size first = 0; first < a.height; first += tile) {
        const Size length = std::min(tile, a.height - first);
        kernel::transpose(reading(a.block(first, 0, length, first)),
                          a.block(0, first, first, length));
        for (Size r = first; r < first + length; ++r)
            for (Size c = first; c < r; ++c) a(c, r) = a(r, c);
    }
}

#define NEQUAR_INSTANTIATE(Real)                                                               \
    template Size stored_in_full(const Columns<Real>&);                                        \
    template Real mean_of_full(const Columns<Real>&);                                          \
    template Real deviation_of_full(const Columns<Real>&, Real);                               \
    template Real norm_of_full(const Columns<Real>&);                                          \
    template Real mean_squared_difference_of_full(const Columns<Real>&, const Columns<Real>&); \
    template void write_full_to_dense(const Columns<Real>&, int*, View<Real>);                 \
    template void mirror_lower_triangle(View<Real>, Size);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
