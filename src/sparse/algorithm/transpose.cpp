#include "sparse/algorithm/transpose.h"

namespace nequar {

template <class Real>
Size stored_in_columns(const Columns<Real>& a) {
    Size end = 0;
    for (Size c = 0; c < a.width; ++c) end = a.end_after(end, c);
    return end;
}

// start[r + 1] is first the length of column r, then its beginning, which moves up while the column
// fills: in the end it is the beginning of the next one.
template <class Real>
void transpose(const Columns<Real>& a, int* start, int* rows, Real* values) {
    const Size count = stored_in_columns(a);
    std::fill(start, start + a.height + 1, 0);
    for (Size k = 0; k < count; ++k) ++start[a.rows[k] + 1];
    int begin = 0;
    for (Size r = 0; r < a.height; ++r) {
        const int length = start[r + 1];
        start[r + 1] = begin;
        begin += length;
    }
    Size k = 0;
    for (Size c = 0; c < a.width; ++c) {
        for (const Size end = a.end_after(k, c); k < end; ++k) {
            const int to = start[a.rows[k] + 1]++;
            rows[to] = static_cast<int>(c);
            values[to] = a.values[k];
        }
    }
}

#define NEQUAR_INSTANTIATE(Real)                           \
    template Size stored_in_columns(const Columns<Real>&); \
    template void transpose(const Columns<Real>&, int*, int*, Real*);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
