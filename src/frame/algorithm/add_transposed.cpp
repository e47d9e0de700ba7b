#include "frame/algorithm/add_transposed.h"

#include <algorithm>

#include "kernel/kernel.h"

namespace nequar {
namespace {

constexpr Size kTileHeight = 32;
constexpr Size kTileWidth = 64;

}  // namespace

template <class Real>
void add_transposed(View<const Real> a, View<const Real> b, Real wa, Real wb, View<Real> c) {
    // In columns: C^T := wa A^T + wb B is the same problem in rows.
    if (c.column_stride != 1) {
        a = a.transposed();
        b = b.transposed();
        c = c.transposed();
    }
    alignas(64) Real buffer[kTileHeight * kTileWidth];
    for (Size i = 0; i < c.height; i += kTileHeight) {
        const Size height = std::min(kTileHeight, c.height - i);
        for (Size j = 0; j < c.width; j += kTileWidth) {
            const Size width = std::min(kTileWidth, c.width - j);
            const View<Real> tile(buffer, height, width, width);
            kernel::transpose(b.block(j, i, width, height), tile);
            if (width == c.width && a.row_stride == width && c.row_stride == width) {
                kernel::add_weighted(height * width, a.row(i).data, buffer, wa, wb, c.row(i).data);
                continue;
            }
            for (Size r = 0; r < height; ++r)
                kernel::add_weighted(width, &a(i + r, j), tile.row(r).data, wa, wb, &c(i + r, j));
        }
    }
}

template void add_transposed(View<const double>, View<const double>, double, double, View<double>);
template void add_transposed(View<const float>, View<const float>, float, float, View<float>);

}  // namespace nequar
