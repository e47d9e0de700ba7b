#include "factorization/algorithm/triangular_inverse.h"

#include <algorithm>

#include "core/workspace.h"
#include "factorization/algorithm/elimination.h"

namespace nequar {
namespace {

using kernel::Diagonal;
using kernel::Triangle;
using kernel::Update;

constexpr Size kLargestBase = 32;

template <class Real>
void add_multiple(Real factor, const Real* from, Real* to, Size count) {
    for (Size j = 0; j < count; ++j) to[j] += factor * from[j];
}

// Row i of X = T^-1 from the rows above it:  x_i = (e_i - sum_{k<i} t(i, k) x_k) / t(i, i)
template <class Real>
void invert_small(Diagonal diagonal, View<Real> t) {
    const Size n = t.height;
    alignas(64) Real square[kLargestBase * kLargestBase];
    for (Size i = 0; i < n; ++i) {
        Real* const row = square + i * n;
        std::fill_n(row, i, Real(0));
        for (Size k = 0; k < i; ++k) add_multiple(-t(i, k), square + k * n, row, k + 1);
        row[i] = 1;
        if (diagonal == Diagonal::unit) continue;
        const Real pivot = t(i, i);
        for (Size j = 0; j <= i; ++j) row[j] /= pivot;
    }
    for (Size i = 0; i < n; ++i) {
        const Size last = diagonal == Diagonal::unit ? i : i + 1;
        for (Size j = 0; j < last; ++j) t(i, j) = square[i * n + j];
    }
}

// c(i, j) = sum_{k >= i} x(k, i) x(k, j), j <= i
template <class Real>
void multiply_transpose_by_small(View<Real> x) {
    const Size n = x.height;
    alignas(64) Real square[kLargestBase * kLargestBase];
    for (Size i = 0; i < n; ++i)
        for (Size j = 0; j <= i; ++j) square[i * n + j] = x(i, j);
    for (Size i = 0; i < n; ++i) {
        alignas(64) Real row[kLargestBase];
        std::fill_n(row, i + 1, Real(0));
        for (Size k = i; k < n; ++k) add_multiple(square[k * n + i], square + k * n, row, i + 1);
        for (Size j = 0; j <= i; ++j) x(i, j) = row[j];
    }
}

// c(i, j) = sum_{k <= j} x(i, k) x(j, k), j <= i
template <class Real>
void multiply_small_by_transpose(View<Real> x) {
    const Size n = x.height;
    alignas(64) Real columns[kLargestBase * kLargestBase];  // row k is column k of X
    for (Size i = 0; i < n; ++i)
        for (Size k = 0; k <= i; ++k) columns[k * n + i] = x(i, k);
    for (Size j = 0; j < n; ++j) {
        alignas(64) Real column[kLargestBase];
        std::fill_n(column, n, Real(0));
        for (Size k = 0; k <= j; ++k)
            add_multiple(columns[k * n + j], columns + k * n + j, column + j, n - j);
        for (Size i = j; i < n; ++i) x(i, j) = column[i];
    }
}

// Column j of the view is added to column perm[j] of the result.
template <class Real>
void scatter_columns(View<Real> a, const int* perm, Real* row) {
    for (Size i = 0; i < a.height; ++i) {
        const Strided<Real> elements = a.row(i);
        kernel::copy(reading(elements), Strided<Real>(row, a.width));
        for (Size j = 0; j < a.width; ++j) elements(j) = 0;
        for (Size j = 0; j < a.width; ++j) elements(perm[j]) += row[j];
    }
}

}  // namespace

template <class Real>
void invert_lower_triangle(Diagonal diagonal, View<Real> t, Size base) {
    const Size n = t.height;
    if (n <= std::min(base, kLargestBase)) return invert_small(diagonal, t);
    const Size n1 = split_of(n, base);
    const Size n2 = n - n1;
    const View<Real> t11 = t.block(0, 0, n1, n1);
    const View<Real> t21 = t.block(n1, 0, n2, n1);
    const View<Real> t22 = t.block(n1, n1, n2, n2);
    kernel::trsm(Triangle::lower, diagonal, reading(t22), t21);
    kernel::trsm(Triangle::upper, diagonal, reading(t11.transposed()), t21.transposed());
    for (Size i = 0; i < n2; ++i) kernel::scale(Real(-1), t21.row(i));
    invert_lower_triangle(diagonal, t11, base);
    invert_lower_triangle(diagonal, t22, base);
}

template <class Real>
void multiply_transpose_by_lower(View<Real> x, Size base) {
    const Size n = x.height;
    if (n <= std::min(base, kLargestBase)) return multiply_transpose_by_small(x);
    const Size n1 = split_of(n, base);
    const Size n2 = n - n1;
    const View<Real> x11 = x.block(0, 0, n1, n1);
    const View<Real> x21 = x.block(n1, 0, n2, n1);
    const View<Real> x22 = x.block(n1, n1, n2, n2);
    multiply_transpose_by_lower(x11, base);
    kernel::syrk(Triangle::lower, Real(1), reading(x21.transposed()), Update::accumulate, x11);
    kernel::trmm(Triangle::upper, Diagonal::stored, reading(x22.transposed()), x21);
    multiply_transpose_by_lower(x22, base);
}

template <class Real>
void multiply_lower_by_transpose(View<Real> x, Size base) {
    const Size n = x.height;
    if (n <= std::min(base, kLargestBase)) return multiply_small_by_transpose(x);
    const Size n1 = split_of(n, base);
    const Size n2 = n - n1;
    const View<Real> x11 = x.block(0, 0, n1, n1);
    const View<Real> x21 = x.block(n1, 0, n2, n1);
    const View<Real> x22 = x.block(n1, n1, n2, n2);
    multiply_lower_by_transpose(x22, base);
    kernel::syrk(Triangle::lower, Real(1), reading(x21), Update::accumulate, x22);
    kernel::trmm(Triangle::lower, Diagonal::stored, reading(x11), x21.transposed());
    multiply_lower_by_transpose(x11, base);
}

template <class Real>
Outcome invert_from_lu_in_place(Diagonal diagonal_of_l, View<const Real> u, const int* perm,
                                View<Real> inverse, Size base) {
    const Size n = inverse.height;
    Workspace<Real> row(n);
    if (!row) return {OutcomeKind::no_memory};
    for (Size i = 0; i < n; ++i) {
        if (diagonal_of_l == Diagonal::unit) inverse(i, i) = 1;
        for (Size j = i + 1; j < n; ++j) inverse(i, j) = 0;
    }
    invert_lower_triangle(diagonal_of_l, inverse, base);
    kernel::trsm(Triangle::upper, Diagonal::stored, u, inverse);
    scatter_columns(inverse, perm, row.data());
    return Outcome::success();
}

template <class Real>
Outcome invert_from_lu(View<const Real> lu, const int* perm, View<Real> inverse, Size base) {
    for (Size i = 1; i < lu.height; ++i)
        kernel::copy(lu.row(i).part(0, i), inverse.row(i).part(0, i));
    return invert_from_lu_in_place(Diagonal::unit, lu, perm, inverse, base);
}

// (L L^T)^-1 = L^-T L^-1. With X = U^-T, the lower triangle of the transposed view,
// (U U^T)^-1 = X X^T, of which that view gets the lower triangle.
template <class Real>
void invert_from_cholesky(Triangle triangle, View<Real> factor, Size base) {
    const bool lower = triangle == Triangle::lower;
    const View<Real> x = lower ? factor : factor.transposed();
    invert_lower_triangle(Diagonal::stored, x, base);
    lower ? multiply_transpose_by_lower(x, base) : multiply_lower_by_transpose(x, base);
    mirror_lower_to_upper(x);
}

template <class Real>
void mirror_lower_to_upper(View<Real> a, Size tile) {
    const Size n = a.height;
    for (Size i = 0; i < n; i += tile) {
        const Size h = std::min(tile, n - i);
        for (Size j = 0; j < i; j += tile)
            kernel::transpose(reading(a.block(i, j, h, tile)), a.block(j, i, tile, h));
        for (Size r = i; r < i + h; ++r)
            for (Size c = i; c < r; ++c) a(c, r) = a(r, c);
    }
}

#define NEQUAR_INSTANTIATE(Real)                                                                 \
    template void invert_lower_triangle(Diagonal, View<Real>, Size);                             \
    template void multiply_transpose_by_lower(View<Real>, Size);                                 \
    template Outcome invert_from_lu_in_place(Diagonal, View<const Real>, const int*, View<Real>, \
                                             Size);                                              \
    template Outcome invert_from_lu(View<const Real>, const int*, View<Real>, Size);             \
    template void multiply_lower_by_transpose(View<Real>, Size);                                 \
    template void invert_from_cholesky(Triangle, View<Real>, Size);                              \
    template void mirror_lower_to_upper(View<Real>, Size);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
