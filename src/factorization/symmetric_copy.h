// A symmetric input as the algorithms take it: a dense copy with contiguous rows that they may use
// up.
#pragma once

#include "core/workspace.h"
#include "factorization/algorithm/scratch.h"
#include "kernel/kernel.h"
#include "structured/views.h"

namespace nequar {

template <class Real>
bool is_readable(const MatrixSymmetric<Real>* a) {
    return a->mh() > 0 && holds_its_elements(a);
}
template <class Real>
bool is_readable(const Matrix<Real>* a) {
    return a->mh() == a->mw();
}

template <class Real>
class SymmetricCopy {
public:
    explicit SymmetricCopy(const MatrixSymmetric<Real>* a) : SymmetricCopy(a->mh()) {
        if (*this) kernel::unpack_symmetric(a->p(), view());
    }
    explicit SymmetricCopy(const Matrix<Real>* a) : SymmetricCopy(a->mh()) {
        if (*this) kernel::copy(view_of(a), view());
    }

    explicit operator bool() const { return static_cast<bool>(elements_); }
    View<Real> view() const { return {elements_.data(), n_, n_, padded_length(n_)}; }

private:
    explicit SymmetricCopy(Size n) : n_(n), elements_(n * padded_length(n)) {}

    Size n_;
    Workspace<Real> elements_;
};

}  // namespace nequar
