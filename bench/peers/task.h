// What a peer does: the work that is timed, and afterwards, untimed, the handing over of its
// result.
#pragma once

#include <functional>

#include "problem.h"

namespace bench {

template <class Real>
struct PeerResult {
    std::vector<Real> rows;  // the resulting matrix in row order
    std::vector<int> perm;   // for LU: row i of P A is row perm[i] of A
};

template <class Real>
struct PeerTask {
    std::function<void()> run;
    std::function<PeerResult<Real>()> result;
};

// The operations that every peer is asked for. Inputs are copied within run() wherever the
// operation overwrites them, as ours are.
template <class Real>
struct Peer {
    // C = op(A) op(B)
    PeerTask<Real> (*product)(const Problem<Real>& a, bool transpose_a, const Problem<Real>& b,
                              bool transpose_b);
    PeerTask<Real> (*lu)(const Problem<Real>& a);
    PeerTask<Real> (*cholesky)(const Problem<Real>& a);
    // A X = B by LU, and for a symmetric positive definite A by Cholesky
    PeerTask<Real> (*solve_lu)(const Problem<Real>& a, const Problem<Real>& b);
    PeerTask<Real> (*solve_cholesky)(const Problem<Real>& a, const Problem<Real>& b);
    PeerTask<Real> (*inverse)(const Problem<Real>& a);
};

}  // namespace bench
