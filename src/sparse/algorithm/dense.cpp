#include "sparse/algorithm/dense.h"

#include "sparse/algorithm/nonzeros.h"

namespace nequar {

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
