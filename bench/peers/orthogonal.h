// What the peers do with orthogonal factors and triangles.
#pragma once

#include <utility>
#include <vector>

#include "peers/task.h"

namespace bench {

enum class Form { qr, ql, rq, lq, pivoted, hessenberg };

template <class Real>
struct Factors {
    std::vector<Real> triangle, q;  // in row order; beyond its triangle the first means nothing
    std::vector<int> perm;          // column k of A P is column perm[k] of A
};

template <class Real>
struct FactorTask {
    std::function<void()> run;  // empty when the peer does not have it
    std::function<Factors<Real>()> result;
};

template <class Real>
struct OrthogonalPeer {
    FactorTask<Real> (*factor)(Form form, bool with_q, const Problem<Real>& a);
    PeerTask<Real> (*solve_qr)(const Problem<Real>& a, const Problem<Real>& b);
    // T lower triangular
    PeerTask<Real> (*solve_triangle)(const Problem<Real>& t, const Problem<Real>& b);
    PeerTask<Real> (*invert_triangle)(const Problem<Real>& t);
};

// Null when the library was not there.
template <class Real>
const OrthogonalPeer<Real>* orthogonal_eigen();
template <class Real>
const OrthogonalPeer<Real>* orthogonal_openblas();

template <class Real>
std::vector<std::pair<Who, const OrthogonalPeer<Real>*>> orthogonal_peers() {
    std::vector<std::pair<Who, const OrthogonalPeer<Real>*>> found;
    if (const auto* const peer = orthogonal_eigen<Real>()) found.emplace_back(Who::eigen, peer);
    if (const auto* const peer = orthogonal_openblas<Real>())
        found.emplace_back(Who::openblas, peer);
    return found;
}

}  // namespace bench
