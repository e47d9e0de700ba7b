#include "sparse/algorithm/transpose.h"

namespace nequar {
namespace {

// What is scattered should lie in the cache: a result larger than that is filled in stripes of rows
// of A, to which the elements are brought first.
constexpr Size kCacheBytes = Size(1) << 19;
constexpr Size kMostStripes = 256;

// Rows are divided into stripes of 2^shift rows each.
template <class Real>
int stripe_shift(Size count, Size height) {
    const Size bytes = count * Size(sizeof(Real) + sizeof(int));
    const Size stripes = std::min(bytes / kCacheBytes + 1, kMostStripes);
    int shift = 0;
    while (((height - 1) >> shift) + 1 > stripes) ++shift;
    return shift;
}

// start[r + 1] := beginning of column r of B, start[0] := 0.
template <class Real>
void begin_columns(const Columns<Real>& a, Size count, int* start) {
    std::fill(start, start + a.height + 1, 0);
    for (Size k = 0; k < count; ++k) ++start[a.rows[k] + 1];
    int begin = 0;
    for (Size r = 0; r < a.height; ++r) {
        const int length = start[r + 1];
        start[r + 1] = begin;
        begin += length;
    }
}

}  // namespace

template <class Real>
Size stored_in_columns(const Columns<Real>& a) {
    Size end = 0;
    for (Size c = 0; c < a.width; ++c) end = a.end_after(end, c);
    return end;
}

template <class Real>
Size travellers(Size count, Size height) {
    const Size bytes = count * Size(sizeof(Real) + sizeof(int));
    return bytes > 4 * kCacheBytes && height > kMostStripes ? count : 0;
}

// start[r + 1] is first the length of column r, then its beginning, which moves up while the column
// fills: in the end it is the beginning of the next one. A stripe begins where its first column
// does.
template <class Real>
void transpose(const Columns<Real>& a, Traveller<Real>* scratch, int* start, int* rows,
               Real* values) {
    const Size count = stored_in_columns(a);
    begin_columns(a, count, start);
    Size k = 0;
    if (scratch == nullptr) {
        for (Size c = 0; c < a.width; ++c)
            for (const Size end = a.end_after(k, c); k < end; ++k) {
                const int to = start[a.rows[k] + 1]++;
                rows[to] = static_cast<int>(c);
                values[to] = a.values[k];
            }
        return;
    }
    const int shift = stripe_shift<Real>(count, a.height);
    int next[kMostStripes];
    for (Size stripe = 0; stripe << shift < a.height; ++stripe)
        next[stripe] = start[(stripe << shift) + 1];
    for (Size c = 0; c < a.width; ++c)
        for (const Size end = a.end_after(k, c); k < end; ++k) {
            const int row = a.rows[k];
            scratch[next[row >> shift]++] = {row, static_cast<int>(c), a.values[k]};
        }
    for (k = 0; k < count; ++k) {
        const int to = start[scratch[k].row + 1]++;
        rows[to] = scratch[k].column;
        values[to] = scratch[k].value;
    }
}

#define NEQUAR_INSTANTIATE(Real)                           \
    template Size stored_in_columns(const Columns<Real>&); \
    template Size travellers<Real>(Size, Size);            \
    template void transpose(const Columns<Real>&, Traveller<Real>*, int*, int*, Real*);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
