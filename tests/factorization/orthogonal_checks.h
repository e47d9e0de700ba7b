// One step of the orthogonal factorizations as it is stated, in plain loops.
#pragma once

#include <vector>

#include "core/view.h"
#include "factorization/algorithm/reflector.h"
#include "frame/views.h"
#include "support/residual.h"

namespace nequar::test {

// The reflector of column k of A, rows `first` and below, in the unit form, applied to the columns
// from k on and to Q from the right. The elements that it annihilates keep their values. Without a
// reflection nothing changes.
template <class Real>
struct StatedReflection {
    Size first;
    std::vector<Real> v;
    Real beta;

    StatedReflection(View<Real> a, Size first_row, Size k, View<Real> q) : first(first_row) {
        for (Size i = first; i < a.height; ++i) v.push_back(a(i, k));
        beta = householder_vector(Strided<Real>(v.data(), a.height - first), Size(0));
        if (!(beta > 0)) return;
        for (Size j = k; j < a.width; ++j) {
            Real w = 0;
            for (Size i = first; i < a.height; ++i) w += a(i, j) * at(i);
            for (Size i = first; i < a.height; ++i)
                if (i == first || j > k) a(i, j) -= beta * w * at(i);
        }
        apply_from_right(q);
    }
    void apply_from_right(View<Real> a) const {
        for (Size i = 0; i < a.height && beta > 0; ++i) {
            Real w = 0;
            for (Size j = first; j < a.width; ++j) w += a(i, j) * at(j);
            for (Size j = first; j < a.width; ++j) a(i, j) -= beta * w * at(j);
        }
    }
    Real at(Size i) const { return v[std::size_t(i - first)]; }
};

}  // namespace nequar::test
