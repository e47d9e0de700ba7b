// Scratch matrices and vectors of one call: uninitialized, on the stack while they are small, false
// when memory cannot be had.
#pragma once

#include <algorithm>

#include "core/checked_size.h"
#include "core/workspace.h"
#include "frame/views.h"
#include "kernel/kernel.h"

namespace nequar {

inline Size count_or_refused(Size height, Size width) {
    Size count = 0;
    return checked_product(height, width, count) ? count : -1;  // which Workspace refuses
}

template <class Real>
class TemporaryMatrix {
public:
    TemporaryMatrix(Size height, Size width)
        : work_(count_or_refused(height, width)), view_(work_.data(), height, width, width) {}

    explicit operator bool() const { return static_cast<bool>(work_); }
    const View<Real>& view() const { return view_; }

private:
    Workspace<Real> work_;
    View<Real> view_;
};

// An input as an operation may read it after the output was sized and while it is written: the
// input itself, or a copy when the output is the same object.
template <class Real>
class KeptMatrix {
public:
    KeptMatrix(const Matrix<Real>* input, const Matrix<Real>* output)
        : work_(input == output ? element_count(input) : 0), view_(view_of(input)) {
        if (input != output || !work_) return;
        std::copy_n(view_.data, element_count(input), work_.data());
        view_.data = work_.data();
    }

    explicit operator bool() const { return static_cast<bool>(work_); }
    const View<const Real>& view() const { return view_; }

private:
    Workspace<Real> work_;
    View<const Real> view_;
};

template <class Real>
class KeptVector {
public:
    KeptVector(const Vector<Real>* input, const Vector<Real>* output)
        : work_(input == output ? input->vs() : 0), view_(view_of(input)) {
        if (input != output || !work_) return;
        std::copy_n(view_.data, view_.size, work_.data());
        view_.data = work_.data();
    }

    explicit operator bool() const { return static_cast<bool>(work_); }
    const Strided<const Real>& view() const { return view_; }

private:
    Workspace<Real> work_;
    Strided<const Real> view_;
};

// Sizes an output; nothing is done to an object that has the shape already.
template <class Real>
bool size_to(int height, int width, Matrix<Real>* out) {
    if (out->mh() == height && out->mw() == width) return true;
    return out->c_Create(height, width) != nullptr;
}

template <class Real>
bool size_to(int size, Vector<Real>* out) {
    return out->vs() == size || out->c_Create(size) != nullptr;
}

template <class Real>
bool size_as(const Matrix<Real>* A, Matrix<Real>* out) {
    return size_to(A->mh(), A->mw(), out);
}

}  // namespace nequar
