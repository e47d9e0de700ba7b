#include "sparse/algorithm/dense.h"

#include "sparse/algorithm/nonzeros.h"

namespace nequar {
template <class Real>
Size count_nonzeros(View<const Real> a, int* start) {
    std::fill(start, start + a.width + 1, 0);
    for (Size r = 0; r < a.height; ++r) {
        const Real* const row = a.data + r * a.row_stride;
        for (Size c = 0; c < a.width; ++c) start[c + 1] += row[c] != Real(0);
    }
    Size total = 0;
    for (Size c = 0; c < a.width; ++c) total += start[c + 1];
    return total;
}

template <class Real>
void fill_from_dense(View<const Real> a, int* start, int* rows, Real* values) {
    int begin = 0;
    for (Size c = 0; c < a.width; ++c) {
        const int length = start[c + 1];
        start[c + 1] = begin;
        begin += length;
    }
    for (Size r = 0; r < a.height; ++r) {
        const Real* const row = a.data + r * a.row_stride;
        for_nonzeros(row, a.width, [=](Size c) {
            const int to = start[c + 1]++;
            rows[to] = static_cast<int>(r);
            values[to] = row[c];
        });
    }
}

template <class Real>
void write_to_dense(const Columns<Real>& a, View<Real> out) {
    for (Size c = 0; c < a.width; ++c) write_to_dense(a.column(c), out.column(c));
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

#define NEQUAR_INSTANTIATE(Real)                                        \
    template Size count_nonzeros(View<const Real>, int*);               \
    template void fill_from_dense(View<const Real>, int*, int*, Real*); \
    template void write_to_dense(const Columns<Real>&, View<Real>);     \
    template void write_to_dense(const Run<Real>&, Strided<Real>);      \
    template Size count_nonzeros(Strided<const Real>);                  \
    template void fill_from_dense(Strided<const Real>, int*, Real*);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
