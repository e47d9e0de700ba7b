#include "sparse/algorithm/reduce.h"

#include <cmath>
#include <limits>

#include "kernel/values.h"

namespace nequar {
namespace {

// What a plain sum of squares must exceed for its smallest terms not to matter where they were
// lost.
template <class Real>
constexpr Real kSafelyLarge =
    std::numeric_limits<Real>::min() / std::numeric_limits<Real>::epsilon();

constexpr Size kBlock = 1024;    // of a sum
constexpr Size kStretch = 4096;  // that is searched for an extremum at once

template <bool largest, class Real>
bool beats(Real a, Real b) {
    return largest ? a > b : a < b;
}

template <bool largest, class Real>
Real extremum(const Real* x, Size count, Real other) {
    return largest ? kernel::largest(count, x, other) : kernel::smallest(count, x, other);
}

// The last place of `best`, which stands in [begin, end) and is no infinity that anything beats.
template <bool largest, class Real>
Size last_place(const Real* x, Size begin, Size end, Real best) {
    constexpr Real kInfinity = std::numeric_limits<Real>::infinity();
    constexpr Real worst = largest ? -kInfinity : kInfinity;
    while (end - begin > 16) {
        const Size middle = begin + (end - begin) / 2;
        if (extremum<largest>(x + middle, end - middle, worst) == best)
            begin = middle;
        else
            end = middle;
    }
    while (!(x[end - 1] == best)) --end;
    return end - 1;
}

// Stretch by stretch from the end: the first that holds the extremum holds its last place.
template <bool largest, class Real>
Size position_of_extremum(const Real* x, Size count) {
    if (std::isnan(x[0])) return 0;
    Real best = x[0];
    Size best_end = 0;
    for (Size end = count; end > 0; end -= std::min(end, kStretch)) {
        const Size begin = end - std::min(end, kStretch);
        const Real here = extremum<largest>(x + begin, end - begin, best);
        if (!beats<largest>(here, best)) continue;
        best = here;
        best_end = end;
    }
    if (best_end == 0) return 0;
    return last_place<largest>(x, best_end - std::min(best_end, kStretch), best_end, best);
}

// sum of f(block, n) over blocks of x
template <class Real, class OfBlock>
Real sum_of_blocks(const Real* x, Size count, const OfBlock& of_block) {
    Real total = 0;
    for (Size k = 0; k < count; k += kBlock) total += of_block(x + k, std::min(kBlock, count - k));
    return total;
}

}  // namespace

template <class Real>
Real squares_about(const Real* x, Size count, Real mean) {
    return sum_of_blocks(x, count, [mean](const Real* block, Size n) {
        return kernel::squares_about(n, block, mean);
    });
}

template <class Real>
Real sum(const Real* x, Size count) {
    return sum_of_blocks(x, count, [](const Real* block, Size n) { return kernel::sum(n, block); });
}

template <class Real>
Real mean(const Real* x, Size count, Size total) {
    if (total == 0) return Real(0);
    const Real plain = sum(x, count);
    if (std::isfinite(plain)) return plain / static_cast<Real>(total);
    Real scaled = 0;
    for (Size k = 0; k < count; ++k) scaled += x[k] / static_cast<Real>(total);
    return scaled;
}

template <class Real>
Real deviation(const Real* x, Size count, Size total, Real mean) {
    if (total == 0) return Real(0);
    const auto elements = static_cast<Real>(total);
    const auto zeros = static_cast<Real>(total - count);
    Real plain = squares_about(x, count, mean);
    if (total > count) plain += zeros * (mean * mean);  // which may overflow
    if (std::isfinite(plain) && plain > kSafelyLarge<Real>) return std::sqrt(plain / elements);
    Real largest = total > count ? std::abs(mean) : Real(0);
    for (Size k = 0; k < count; ++k) largest = std::max(largest, std::abs(x[k] - mean));
    if (largest == Real(0) || !std::isfinite(largest) || std::isnan(plain)) return std::sqrt(plain);
    Real scaled = zeros * ((mean / largest) * (mean / largest));
    for (Size k = 0; k < count; ++k) {
        const Real difference = (x[k] - mean) / largest;
        scaled += difference * difference;
    }
    return largest * std::sqrt(scaled / elements);
}

template <class Real>
Size position_of_largest(const Real* x, Size count) {
    return position_of_extremum<true>(x, count);
}
template <class Real>
Size position_of_smallest(const Real* x, Size count) {
    return position_of_extremum<false>(x, count);
}

template <class Real>
bool has_zero(const Real* x, Size count) {
    constexpr Size kTogether = 64;
    Size k = 0;
    for (; k + kTogether <= count; k += kTogether) {
        int zeros = 0;
        for (Size i = 0; i < kTogether; ++i) zeros += x[k + i] == Real(0);
        if (zeros != 0) return true;
    }
    for (; k < count; ++k)
        if (x[k] == Real(0)) return true;
    return false;
}

template <class Real>
void divide(const Real* x, Size count, Real c, Real* out) {
    for (Size k = 0; k < count; ++k) out[k] = x[k] / c;
}

template <class Real>
Size first_zero_before_end(const Run<Real>& run) {
    if (run.count == 0) return 0;
    for (Size k = 0; k < run.count; ++k) {
        if (run.indices[k] > k) return k;  // the first gap: what stood before had no gap
        if (run.values[k] == Real(0)) return run.indices[k];
    }
    return -1;
}

template <class Real>
bool find_zero(const Columns<Real>& a, StoredHalf half, Size& column, Size& row) {
    for (Size c = 0; c < a.width; ++c) {
        const Run<Real> run = a.column(c);
        const Size top = half == StoredHalf::lower ? c : 0;
        if (run.count >= a.height - top) continue;
        // indices[k] - k never decreases along a run: it is `top` before the first gap and not
        // after it.
        Size gap = 0;
        for (Size end = run.count; gap < end;) {
            const Size middle = gap + (end - gap) / 2;
            if (run.indices[middle] == top + middle)
                gap = middle + 1;
            else
                end = middle;
        }
        column = c;
        row = top + gap;
        return true;
    }
    for (Size c = 0; c < a.width; ++c) {
        const Run<Real> run = a.column(c);
        for (Size k = 0; k < run.count; ++k) {
            if (run.values[k] != Real(0)) continue;
            column = c;
            row = run.indices[k];
            return true;
        }
    }
    return false;
}

template <class Real>
Size remove_zeros(Real* values, int* indices, Size count) {
    Size to = 0;
    for (Size k = 0; k < count; ++k) {
        const Real v = values[k];
        values[to] = v;
        indices[to] = indices[k];
        to += !(v == Real(0));
    }
    return to;
}

template <class Real>
Size remove_zeros(Real* values, int* rows, int* start, Size width) {
    Size to = 0;
    Size k = 0;
    for (Size c = 0; c < width; ++c) {
        for (const Size end = start[c + 1]; k < end; ++k) {
            const Real v = values[k];
            values[to] = v;
            rows[to] = rows[k];
            to += !(v == Real(0));
        }
        start[c + 1] = static_cast<int>(to);
    }
    return to;
}

#define NEQUAR_INSTANTIATE(Real)                                             \
    template Real squares_about(const Real*, Size, Real);                    \
    template Real sum(const Real*, Size);                                    \
    template Real mean(const Real*, Size, Size);                             \
    template Real deviation(const Real*, Size, Size, Real);                  \
    template Size position_of_largest(const Real*, Size);                    \
    template Size position_of_smallest(const Real*, Size);                   \
    template bool has_zero(const Real*, Size);                               \
    template void divide(const Real*, Size, Real, Real*);                    \
    template Size first_zero_before_end(const Run<Real>&);                   \
    template bool find_zero(const Columns<Real>&, StoredHalf, Size&, Size&); \
    template Size remove_zeros(Real*, int*, Size);                           \
    template Size remove_zeros(Real*, int*, int*, Size);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
