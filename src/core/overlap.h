// Raw arrays that overlap, and inputs kept apart from the output that would destroy them.
#pragma once

#include <cstring>
#include <functional>

#include "core/view.h"
#include "core/workspace.h"

namespace nequar {

// Whether a[0 … m-1] and b[0 … n-1] share memory.
template <class A, class B>
bool overlap(const A* a, Size m, const B* b, Size n) {
    if (m <= 0 || n <= 0) return false;
    const std::less<const void*> before;
    return before(a, b + n) && before(b, a + m);
}

// An input of `count` elements as an operation may read it: the array itself, or a copy where the
// array overlaps the output. False when memory for the copy cannot be had.
template <class Real>
class Apart {
public:
    Apart(const Real* input, Size count, const Real* output, Size output_count)
        : Apart(input, count, overlap(input, count, output, output_count)) {}

    explicit operator bool() const { return static_cast<bool>(copy_); }
    const Real* data() const { return data_; }

protected:
    Apart(const Real* input, Size count, bool must_copy)
        : copy_(must_copy ? count : 0), data_(must_copy ? copy_.data() : input) {
        if (must_copy && copy_)
            std::memcpy(copy_.data(), input, static_cast<std::size_t>(count) * sizeof(Real));
    }

private:
    static constexpr Size kInlineBytes = 512;

    Workspace<Real, kInlineBytes> copy_;
    const Real* data_;
};

// The same for loops that read element i before they write element i: there the output may be the
// input itself, but not a shifted part of it.
template <class Real>
class ApartUnlessSame : public Apart<Real> {
public:
    ApartUnlessSame(const Real* input, Size count, const Real* output)
        : Apart<Real>(input, count, input != output && overlap(input, count, output, count)) {}
};

}  // namespace nequar
