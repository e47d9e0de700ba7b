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

}  // namespace nequar
