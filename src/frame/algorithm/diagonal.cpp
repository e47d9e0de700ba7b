#include "frame/algorithm/diagonal.h"

#include <algorithm>

namespace nequar {
namespace {

constexpr Size kChunk = 256;
constexpr Size kShortRow = 8;  // shorter rows cost less than the call of a kernel

using kernel::Update;

// out := a b (+ out), element by element
template <class Real>
void multiply(Size n, const Real* a, const Real* b, Update update, Real* out) {
    if (update == Update::set) {
        if (n >= kShortRow) return kernel::multiply_elementwise(n, a, b, out);
        for (Size i = 0; i < n; ++i) out[i] = a[i] * b[i];
        return;
    }
    if (n < kShortRow) {
        for (Size i = 0; i < n; ++i) out[i] += a[i] * b[i];
        return;
    }
    Real product[kChunk];
    for (Size start = 0; start < n; start += kChunk) {
        const Size count = std::min(kChunk, n - start);
        kernel::multiply_elementwise(count, a + start, b + start, product);
        kernel::add(count, out + start, product, out + start);
    }
}

// Narrow rows without gaps: d is written down several times in a row, so that one call of a kernel
// serves as many rows.
template <class Real>
void multiply_narrow(Size height, Size width, const Real* a, const Real* d, Update update,
                     Real* c) {
    const Size rows = std::min(height, kChunk / width);
    Real repeated[kChunk];
    for (Size i = 0; i < rows; ++i) std::copy_n(d, width, repeated + i * width);
    for (Size i = 0; i < height; i += rows) {
        const Size count = std::min(rows, height - i) * width;
        multiply(count, a + i * width, repeated, update, c + i * width);
    }
}

}  // namespace

template <class Real>
void multiply_by_diagonal(View<const Real> a, const Real* d, Update update, View<Real> c) {
    const Size common = std::min(a.width, c.width);
    if (c.is_empty()) return;
    if (update == Update::set && common < c.width)
        kernel::fill(Real(0), c.columns(common, c.width - common));
    if (a.column_stride == 1 && c.column_stride == 1) {
        const bool has_no_gaps = a.row_stride == common && c.row_stride == common;
        if (has_no_gaps && common > 0 && common <= kChunk / 4)
            return multiply_narrow(c.height, common, a.data, d, update, c.data);
        for (Size i = 0; i < c.height; ++i)
            multiply(common, a.row(i).data, d, update, c.row(i).data);
        return;
    }
    for (Size j = 0; j < common; ++j) {
        if (update == Update::accumulate) {
            kernel::axpy(d[j], a.column(j), c.column(j));
        } else {
            if (a.data != c.data) kernel::copy(a.column(j), c.column(j));
            kernel::scale(d[j], c.column(j));
        }
    }
}

template <class Real>
void multiply_by_diagonal(Size m, Size n, const Real* x, const Real* d, Update update, Real* y) {
    const Size common = std::min(m, n);
    multiply(common, x, d, update, y);
    if (update == Update::set) kernel::fill(n - common, Real(0), y + common);
}

template <class Real>
Real diagonal_form(Size count, const Real* x, const Real* d, const Real* y) {
    Real product[kChunk];
    Real sum = 0;
    for (Size start = 0; start < count; start += kChunk) {
        const Size n = std::min(kChunk, count - start);
        kernel::multiply_elementwise(n, x + start, d + start, product);
        sum +=
            kernel::dot<Real>(Strided<const Real>(product, n), Strided<const Real>(y + start, n));
    }
    return sum;
}

template <class Real>
void add_diagonal(View<const Real> a, const Real* d, Real wa, Real wd, View<Real> b) {
    kernel::scale(b.height * b.width, a.data, wa, b.data);
    const Strided<Real> diagonal = b.diagonal();
    kernel::axpy(wd, Strided<const Real>(d, diagonal.size), diagonal);
}

template <class Real>
void set_diagonal(const Real* d, View<Real> a) {
    kernel::fill(Real(0), a);
    const Strided<Real> diagonal = a.diagonal();
    kernel::copy(Strided<const Real>(d, diagonal.size), diagonal);
}

#define NEQUAR_INSTANTIATE(Real)                                                             \
    template void multiply_by_diagonal(View<const Real>, const Real*, Update, View<Real>);   \
    template void multiply_by_diagonal(Size, Size, const Real*, const Real*, Update, Real*); \
    template Real diagonal_form(Size, const Real*, const Real*, const Real*);                \
    template void add_diagonal(View<const Real>, const Real*, Real, Real, View<Real>);       \
    template void set_diagonal(const Real*, View<Real>);

NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)

}  // namespace nequar
