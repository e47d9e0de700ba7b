// Right-hand sides and solutions of the object layer, matrices and vectors alike: as n x k views,
// and delivered without harm to what they share with the inputs.
#pragma once

#include "core/workspace.h"
#include "factorization/outcome_text.h"
#include "frame/views.h"
#include "kernel/kernel.h"

namespace nequar {

inline constexpr Size kSquareBytes = 8192;  // workspaces of small matrices stay on the stack

template <class Real>
bool is_square_of(const Matrix<Real>* a, int order) {
    return a->mh() == order && a->mw() == order;
}

// The elements of a diagonal matrix, or those of them that its vector still holds.
template <class Real>
Strided<const Real> values_of(const MatrixDiagonal<Real>* diagonal) {
    return {diagonal->p(), diagonal->vs()};
}

// The shape of b for x, which may be b itself; false when it cannot be had.
template <class Real>
bool size_like(const Matrix<Real>* b, Matrix<Real>* x) {
    return x == b || x->c_Create(b->mh(), b->mw()) != nullptr;
}
template <class Real>
bool size_like(const Vector<Real>* b, Vector<Real>* x) {
    return x == b || x->c_Create(b->vs()) != nullptr;
}

// Calls solve(b, x), which fills x from b, two arrays that do not overlap, and gives the solution
// its shape. Answers the detail of the failure, null when there is none.
template <class Real, class Solve>
const char* deliver(const Matrix<Real>* b, Matrix<Real>* x, const Solve& solve) {
    if (x != b) {
        if (x->c_Create(b->mh(), b->mw()) == nullptr) return text::kCannotSize;
        solve(view_of(b), view_of(x));
        return nullptr;
    }
    const View<Real> right = view_of(x);
    Workspace<Real> work(right.height * right.width);
    if (!work) return text::kOutOfMemory;
    const View<Real> copy(work.data(), right.height, right.width, right.width);
    kernel::copy(reading(right), copy);
    solve(reading(copy), right);
    return nullptr;
}

// A packed factor is a vector as well, and may be the one that takes the solution: it is sized
// after the last look at the inputs.
template <class Real, class Solve>
const char* deliver(const Vector<Real>* b, Vector<Real>* x, const Solve& solve) {
    const Size n = b->vs();
    Workspace<Real> work(n);
    if (!work) return text::kOutOfMemory;
    solve(columns_of(b), View<Real>(work.data(), n, 1, 1, 1));
    if (x != b && x->c_Create(static_cast<int>(n)) == nullptr) return text::kCannotSize;
    kernel::copy(Strided<const Real>(work.data(), n), view_of(x));
    return nullptr;
}

// Solves for a copy of the right-hand side: calls solve(copy, scratch), two n x k views, and writes
// what the copy then holds where `target_of` says, after the last look at the inputs; the target
// may have its elements in any of them. Answers the detail of the failure, null when there is none.
template <class Real, class Solve, class TargetOf>
const char* solve_apart(const View<const Real>& right, const Solve& solve,
                        const TargetOf& target_of) {
    Size count = 0;
    if (!checked_product(2 * right.height, right.width, count)) return text::kOutOfMemory;
    Workspace<Real> work(count);
    if (!work) return text::kOutOfMemory;
    const View<Real> copy = matrix_view(work.data(), right.height, right.width);
    kernel::copy(right, copy);
    solve(copy, matrix_view(work.data() + count / 2, right.height, right.width));
    View<Real> target;
    if (!target_of(target)) return text::kCannotSize;
    kernel::copy(reading(copy), target);
    return nullptr;
}

// For B and X of the object layer: X takes the shape of B.
template <class Object, class Solve>
const char* solve_apart(const Object* b, Object* x, const Solve& solve) {
    return solve_apart(columns_of(b), solve, [b, x](auto& target) {
        if (!size_like(b, x)) return false;
        target = columns_of(x);
        return true;
    });
}

// For an array that holds B and takes X.
template <class Real, class Solve>
const char* solve_apart(const View<Real>& array, const Solve& solve) {
    return solve_apart(reading(array), solve, [&array](View<Real>& target) {
        target = array;
        return true;
    });
}

}  // namespace nequar
