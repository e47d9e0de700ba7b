// What a peer's user writes himself: the Toeplitz recursions, distances, normal numbers, principal
// components.
#pragma once

#include "peers/task.h"

namespace bench {

// All results come back in PeerResult::rows.
template <class Real>
struct StatisticsPeer {
    // T x = b and T y = -(r[1], ..., r[n]), r (one column) of n + 1 elements
    PeerTask<Real> (*levinson)(const Problem<Real>& r, const Problem<Real>& b);
    PeerTask<Real> (*durbin)(const Problem<Real>& r);
    // squared distances of the rows of samples from x (one column)
    PeerTask<Real> (*distances)(const Problem<Real>& samples, const Problem<Real>& x);
    // count numbers of the standard generator and distribution
    PeerTask<Real> (*normal_numbers)(Size count);
    // of samples that are rows: the eigenvalues of the scatter matrix, the largest first, and the
    // first component
    PeerTask<Real> (*components)(const Problem<Real>& samples);
};

// Null when the library was not there.
template <class Real>
const StatisticsPeer<Real>* statistics_eigen();

}  // namespace bench
