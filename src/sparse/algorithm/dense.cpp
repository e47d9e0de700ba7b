#include "sparse/algorithm/dense.h"

#include <bit>
#include <cstdint>
#include <type_traits>

namespace nequar {
namespace {

constexpr Size kMarked = 8;  // elements marked in a byte

// Whether any of eight elements is other than 0.0: has a bit besides the sign.
template <class Real>
bool any_nonzero(const Real* x) {
    using Bits = std::conditional_t<sizeof(Real) == 8, std::uint64_t, std::uint32_t>;
    Bits bits = 0;
    for (Size k = 0; k < kMarked; ++k) bits |= std::bit_cast<Bits>(x[k]);
    return static_cast<Bits>(bits << 1) != 0;
}

// The elements other than 0.0 among the `count` (at most eight) from x on, as bits.
template <class Real>
unsigned marks_of(const Real* x, Size count) {
    unsigned marks = 0;
    for (Size k = 0; k < count; ++k) marks |= unsigned(x[k] != Real(0)) << k;
    return marks;
}

// Calls visit(i) for every x[i] other than 0.0.
template <class Real, class Visit>
void for_nonzeros(const Real* x, Size count, const Visit& visit) {
    for (Size i = 0; i < count; i += kMarked) {
        if (i + kMarked <= count && !any_nonzero(x + i)) continue;
        for (unsigned marks = marks_of(x + i, std::min(kMarked, count - i)); marks != 0;
             marks &= marks - 1)
            visit(i + std::countr_zero(marks));
    }
}

}  // namespace

template <class Real>
Size count_nonzeros(View<const Real> a, unsigned char* marks, int* start) {
    std::fill(start, start + a.width + 1, 0);
    for (Size r = 0; r < a.height; ++r) {
        const Real* const row = a.data + r * a.row_stride;
        for (Size c = 0; c < a.width; c += kMarked, ++marks) {
            const Size count = std::min(kMarked, a.width - c);
            *marks = 0;
            if (count == kMarked && !any_nonzero(row + c)) continue;
            *marks = static_cast<unsigned char>(marks_of(row + c, count));
            for (Size k = 0; k < count; ++k) start[c + k + 1] += *marks >> k & 1;
        }
    }
    Size total = 0;
    for (Size c = 0; c < a.width; ++c) total += start[c + 1];
    return total;
}

template <class Real>
void fill_from_dense(View<const Real> a, const unsigned char* marks, int* start, int* rows,
                     Real* values) {
    int begin = 0;
    for (Size c = 0; c < a.width; ++c) {
        const int length = start[c + 1];
        start[c + 1] = begin;
        begin += length;
    }
    for (Size r = 0; r < a.height; ++r) {
        const Real* const row = a.data + r * a.row_stride;
        for (Size c = 0; c < a.width; c += kMarked, ++marks)
            for (unsigned left = *marks; left != 0; left &= left - 1) {
                const Size at = c + std::countr_zero(left);
                const int to = start[at + 1]++;
                rows[to] = static_cast<int>(r);
                values[to] = row[at];
            }
    }
}

template <class Real>
void write_to_dense(const Columns<Real>& a, int* next, View<Real> out) {
    constexpr Size kBandBytes = Size(1) << 20;
    const Size row_bytes = out.width * Size(sizeof(Real));
    const Size band = std::max<Size>(8, kBandBytes / std::max<Size>(1, row_bytes));
    for (Size c = 0; c < a.width; ++c) next[c] = static_cast<int>(a.range(c).begin);
    for (Size top = 0; top < out.height; top += band) {
        const Size bottom = std::min(top + band, out.height);
        std::fill(out.data + top * out.row_stride, out.data + bottom * out.row_stride, Real(0));
        for (Size c = 0; c < a.width; ++c) {
            const Size end = a.range(c).end;
            Size k = next[c];
            for (; k < end && a.rows[k] < bottom; ++k)
                if (a.rows[k] >= top) out(a.rows[k], c) = a.values[k];
            next[c] = static_cast<int>(k);
        }
    }
}

template <class Real>
void write_to_dense(const Run<Real>& a, Strided<Real> out) {
    for (Size k = 0; k < a.count; ++k) {
        const Size i = a.indices[k];
        if (i >= 0 && i < out.size) out(i) = a.values[k];
    }
}

template <class Real>
Size count_nonzeros(Strided<const Real> a) {
    Size total = 0;
    for (Size i = 0; i < a.size; ++i) total += a.data[i] != Real(0);
    return total;
}

template <class Real>
void fill_from_dense(Strided<const Real> a, int* indices, Real* values) {
    Size to = 0;
    for_nonzeros(a.data, a.size, [&](Size i) {
        indices[to] = static_cast<int>(i);
        values[to] = a.data[i];
        ++to;
    });
}

#define NEQUAR_INSTANTIATE(Real)                                                              \
    template Size count_nonzeros(View<const Real>, unsigned char*, int*);                     \
    template void fill_from_dense(View<const Real>, const unsigned char*, int*, int*, Real*); \
    template void write_to_dense(const Columns<Real>&, int*, View<Real>);                     \
    template void write_to_dense(const Run<Real>&, Strided<Real>);                            \
    template Size count_nonzeros(Strided<const Real>);                                        \
    template void fill_from_dense(Strided<const Real>, int*, Real*);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
