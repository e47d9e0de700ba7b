#include "linear_equation/algorithm/orthogonal_solve.h"

#include "core/workspace.h"
#include "factorization/algorithm/scratch.h"
#include "kernel/kernel.h"
#include "linear_equation/algorithm/factor_solve.h"

namespace nequar {

using kernel::Diagonal;
using kernel::Triangle;
using kernel::Update;

namespace {

constexpr Size kInlineBytes = 16384;  // scratch of small systems stays on the stack

template <class Real>
View<Real> rows_reversed(View<Real> b) {
    if (b.is_empty()) return b;
    return {&b(b.height - 1, 0), b.height, b.width, -b.row_stride, b.column_stride};
}

template <class Real>
Outcome check_diagonal(View<const Real> t) {
    for (Size i = 0; i < t.height; ++i)
        if (t(i, i) == 0) return {OutcomeKind::singular, i};
    return Outcome::success();
}

Triangle triangle_of(OrthogonalForm form) {
    return has_lower_triangle(form) ? Triangle::lower : Triangle::upper;
}

// X T = B  <=>  T^T X^T = B^T
template <class Real>
void solve_triangle_from_right(OrthogonalForm form, View<const Real> t, View<Real> b) {
    kernel::trsm(has_lower_triangle(form) ? Triangle::upper : Triangle::lower, Diagonal::stored,
                 t.transposed(), b.transposed());
}

}  // namespace

template <class Real>
Outcome solve_by_orthogonal(OrthogonalForm form, View<const Real> a, View<Real> b,
                            QrBlocking blocking) {
    using S = Scratch<Real>;
    const Size n = a.height;
    const Size count = reflections_of_qr(n, n);
    const Size block = block_of_qr(n, n, blocking);
    const bool keeps = !begins_with_q(form);  // the reflectors are applied last
    const Size kept = keeps ? S::rounded(count * padded_length(n)) + S::rounded(block * count) +
                                  S::rounded(block * padded_length(b.width))
                            : 0;
    Workspace<Real, kInlineBytes> work(S::rounded(n * n) + kept +
                                       scratch_of_qr<Real>(n, n, keeps ? 0 : b.width, blocking));
    if (!work) return {OutcomeKind::no_memory};
    S scratch(work.data());
    const View<Real> factor(scratch.take(n * n), n, n, n);
    kernel::copy(a, factor);

    const View<Real> seen = seen_by_qr(form, factor);
    const bool is_reversed = form == OrthogonalForm::ql || form == OrthogonalForm::rq;
    const View<Real> seen_b = is_reversed ? rows_reversed(b) : b;
    if (!keeps) {
        qr_into(seen, {nullptr, seen_b}, blocking, scratch);
        const Outcome outcome = check_diagonal(reading(factor));
        if (outcome) solve_triangle(triangle_of(form), Diagonal::stored, reading(factor), b);
        return outcome;
    }
    const View<Real> vectors =
        scratch_by_columns(scratch.take(count * padded_length(n)), n, count, seen.row_stride);
    const View<Real> couplings(scratch.take(block * count), block, count, count);
    const View<Real> w = scratch_by_rows(scratch.take(block * padded_length(b.width)), block,
                                         b.width, b.column_stride);
    const ReflectorStore<Real> store{vectors, couplings, block};
    qr_into(seen, {&store, {}}, blocking, scratch);
    const Outcome outcome = check_diagonal(reading(factor));
    if (!outcome) return outcome;
    solve_triangle(triangle_of(form), Diagonal::stored, reading(factor), b);
    if (block > 1)
        apply_reflectors(Side::q, store, seen_b, w);
    else
        apply_reflectors_plain(Side::q, reading(vectors), seen_b, w.row(0));
    return Outcome::success();
}

template <class Real>
Outcome invert_by_orthogonal(OrthogonalForm form, View<Real> a, View<Real> inverse,
                             QrBlocking blocking) {
    // the inverse holds Q^T
    Outcome outcome = qr(seen_by_qr(form, a), seen_by_qr(form, inverse.transposed()), blocking);
    if (outcome) outcome = check_diagonal(reading(a));
    if (!outcome) return outcome;
    if (begins_with_q(form))
        kernel::trsm(triangle_of(form), Diagonal::stored, reading(a), inverse);
    else
        solve_triangle_from_right(form, reading(a), inverse);
    return Outcome::success();
}

template <class Real>
Outcome solve_with_orthogonal_factors(OrthogonalForm form, View<const Real> q, View<const Real> t,
                                      View<Real> b, View<Real> w) {
    const Outcome outcome = check_diagonal(t);
    if (!outcome) return outcome;
    if (!begins_with_q(form)) solve_triangle(triangle_of(form), Diagonal::stored, t, b);
    kernel::copy(reading(b), w);
    kernel::gemm(Real(1), begins_with_q(form) ? q.transposed() : q, reading(w), Update::set, b);
    if (begins_with_q(form)) solve_triangle(triangle_of(form), Diagonal::stored, t, b);
    return Outcome::success();
}

template <class Real>
void invert_with_orthogonal_factors(OrthogonalForm form, View<const Real> t, View<Real> inverse) {
    if (!begins_with_q(form)) return solve_triangle_from_right(form, t, inverse);
    kernel::transpose_in_place(inverse);
    kernel::trsm(triangle_of(form), Diagonal::stored, t, inverse);
}

#define NEQUAR_INSTANTIATE(Real)                                                               \
    template Outcome solve_by_orthogonal(OrthogonalForm, View<const Real>, View<Real>,         \
                                         QrBlocking);                                          \
    template Outcome invert_by_orthogonal(OrthogonalForm, View<Real>, View<Real>, QrBlocking); \
    template Outcome solve_with_orthogonal_factors(OrthogonalForm, View<const Real>,           \
                                                   View<const Real>, View<Real>, View<Real>);  \
    template void invert_with_orthogonal_factors(OrthogonalForm, View<const Real>, View<Real>);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
