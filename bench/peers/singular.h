// What the peers do with singular values.
#pragma once

#include <utility>
#include <vector>

#include "peers/task.h"

namespace bench {

enum class SingularJob {
    values,
    by_qr,                  // with U and V, LAPACK's gesvd
    by_divide_and_conquer,  // with U and V, LAPACK's gesdd
    tall,                   // the values and V; LAPACK's gesdd adds the leading columns of U
    pseudo_inverse          // V S^-1 U^T by gesdd
};

template <class Real>
struct Singular {
    std::vector<Real> values;   // in any order
    std::vector<Real> left;     // n leading columns of U in row order; empty when not asked for
    std::vector<Real> right;    // V in row order; likewise
    std::vector<Real> inverse;  // of the pseudo-inverse alone
};

template <class Real>
struct SingularTask {
    std::function<void()> run;
    std::function<Singular<Real>()> result;
};

template <class Real>
struct SingularPeer {
    SingularTask<Real> (*singular)(SingularJob job, const Problem<Real>& a);
};

// Null when the library was not there.
template <class Real>
const SingularPeer<Real>* singular_eigen();
template <class Real>
const SingularPeer<Real>* singular_openblas();

template <class Real>
std::vector<std::pair<Who, const SingularPeer<Real>*>> singular_peers() {
    std::vector<std::pair<Who, const SingularPeer<Real>*>> found;
    if (const auto* const peer = singular_eigen<Real>()) found.emplace_back(Who::eigen, peer);
    if (const auto* const peer = singular_openblas<Real>()) found.emplace_back(Who::openblas, peer);
    return found;
}

}  // namespace bench
