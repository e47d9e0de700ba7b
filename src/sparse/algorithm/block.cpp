#include "sparse/algorithm/block.h"

namespace nequar {

template <class Real>
Size find_block(const Columns<Real>& a, Size x, Size y, Size width, Size bottom, Range* parts) {
    Size count = 0;
    for (Size c = 0; c < width; ++c) {
        const Range part = part_between(a.rows, a.range(x + c), y, bottom);
        parts[c] = part;
        count += part.length();
    }
    return count;
}

template <class Real>
Size copy_block(const Columns<Real>& a, const Range* parts, Size width, Size y, int* start,
                int* rows, Real* values) {
    Size to = 0;
    start[0] = 0;
    for (Size c = 0; c < width; ++c) {
        for (Size k = parts[c].begin; k < parts[c].end; ++k) {
            const Real v = a.values[k];
            values[to] = v;
            rows[to] = static_cast<int>(a.rows[k] - y);
            to += !(v == Real(0));
        }
        start[c + 1] = static_cast<int>(to);
    }
    return to;
}

#define NEQUAR_INSTANTIATE(Real)                                                    \
    template Size find_block(const Columns<Real>&, Size, Size, Size, Size, Range*); \
    template Size copy_block(const Columns<Real>&, const Range*, Size, Size, int*, int*, Real*);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
