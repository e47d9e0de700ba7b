#include "factorization/algorithm/lu.h"

#include <cmath>
#include <utility>

#include "core/workspace.h"
#include "factorization/algorithm/elimination.h"
#include "factorization/algorithm/pivot_order.h"
#include "kernel/kernel.h"

namespace nequar {
namespace {

using kernel::Diagonal;
using kernel::Rounding;
using kernel::Triangle;
using kernel::Update;

// Column j of the column scheme, rows exchanged already:
//   u(i, j) = a(i, j) - sum_{k<i} l(i, k) u(k, j),  i <= j
//   a(i, j) := a(i, j) - sum_{k<j} l(i, k) u(k, j),  i > j
template <class Real>
void update_column_plainly(View<Real> a, Size j) {
    for (Size i = 1; i < a.height; ++i) {
        Real sum = a(i, j);
        const Size last = i < j ? i : j;
        for (Size k = 0; k < last; ++k) sum -= a(i, k) * a(k, j);
        a(i, j) = sum;
    }
}

template <class Real>
void update_column(View<Real> a, Size j) {
    const Size n = a.height;
    const Strided<Real> above = a.column(j).part(0, j);
    kernel::trsv(Triangle::lower, Diagonal::unit, reading(a.block(0, 0, j, j)), above);
    kernel::gemv(Real(-1), reading(a.block(j, 0, n - j, j)), reading(above), Update::accumulate,
                 a.column(j).part(j, n - j));
}

// LU without a search; false when a pivot needs the column scheme.
template <class Real>
bool lu_without_search(View<Real> a, Size base) {
    const Size n = a.height;
    if (n <= base) return kernel::lu_small(Rounding::fused, reading(a), nullptr, a) < 0;
    const Size n1 = split_of(n, base);
    const Size n2 = n - n1;
    const View<Real> a11 = a.block(0, 0, n1, n1);
    const View<Real> a12 = a.block(0, n1, n1, n2);
    const View<Real> a21 = a.block(n1, 0, n2, n1);
    const View<Real> a22 = a.block(n1, n1, n2, n2);
    if (!lu_without_search(a11, base)) return false;
    kernel::trsm(Triangle::lower, Diagonal::unit, reading(a11), a12);
    kernel::trsm(Triangle::lower, Diagonal::stored, reading(a11.transposed()), a21.transposed());
    kernel::gemm(Real(-1), reading(a21), reading(a12), Update::accumulate, a22);
    return lu_without_search(a22, base);
}

}  // namespace

template <class Real>
Outcome lu_by_columns(View<Real> a, int* perm, int& interchanges, Size plain) {
    const Size n = a.height;
    for (Size i = 0; i < n; ++i) perm[i] = static_cast<int>(i);
    interchanges = 0;
    for (Size j = 0; j < n; ++j) {
        const Size r = j + last_largest_magnitude(reading(a.column(j).part(j, n - j)));
        if (r != j) {
            kernel::swap(a.row(r), a.row(j));
            std::swap(perm[r], perm[j]);
            ++interchanges;
        }
        if (n <= plain)
            update_column_plainly(a, j);
        else
            update_column(a, j);
        const Real pivot = a(j, j);
        if (pivot == 0) return {OutcomeKind::singular, j};
        divide_by_pivot(pivot, a.column(j).part(j + 1, n - j - 1));
    }
    return Outcome::success();
}

template <class Real>
Outcome lu_before_update(View<const Real> input, View<Real> lu, int* perm, int& interchanges,
                         LuBlocking blocking) {
    choose_pivots_before_update(input, perm, interchanges);
    if (input.height <= blocking.plain) {
        if (kernel::lu_small(Rounding::separate, input, perm, lu) < 0) return Outcome::success();
    } else {
        kernel::gather_rows(input, perm, lu);
        if (lu_without_search(lu, blocking.base)) return Outcome::success();
    }
    kernel::copy(input, lu);
    return lu_by_columns(lu, perm, interchanges, blocking.plain);
}

template <class Real>
Outcome lu_before_update_in_place(View<Real> a, int* perm, int& interchanges, LuBlocking blocking) {
    const Size n = a.height;
    if (n <= blocking.plain) {
        choose_pivots_before_update(reading(a), perm, interchanges);
        if (kernel::lu_small(Rounding::separate, reading(a), perm, a) < 0)
            return Outcome::success();
        return lu_by_columns(a, perm, interchanges, blocking.plain);  // nothing was written
    }
    Workspace<Real> copy(n * n);
    if (!copy) return {OutcomeKind::no_memory};
    const View<Real> input(copy.data(), n, n, n);
    kernel::copy(reading(a), input);
    return lu_before_update(reading(input), a, perm, interchanges, blocking);
}

template <class Real>
Real determinant_from_lu(View<const Real> lu, int interchanges) {
    if (lu.height == 0) return 1;
    Real determinant = interchanges % 2 == 0 ? lu(0, 0) : -lu(0, 0);
    for (Size i = 1; i < lu.height; ++i) determinant *= lu(i, i);
    return determinant;
}

#define NEQUAR_INSTANTIATE(Real)                                                             \
    template Outcome lu_by_columns(View<Real>, int*, int&, Size);                            \
    template Outcome lu_before_update(View<const Real>, View<Real>, int*, int&, LuBlocking); \
    template Outcome lu_before_update_in_place(View<Real>, int*, int&, LuBlocking);          \
    template Real determinant_from_lu(View<const Real>, int);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
