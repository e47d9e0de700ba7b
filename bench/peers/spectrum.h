// What the peers do with symmetric eigenvalues.
#pragma once

#include <utility>
#include <vector>

#include "peers/task.h"

namespace bench {

enum class EigenMethod { qr, divide_and_conquer };

template <class Real>
struct Spectrum {
    std::vector<Real> values;   // in any order
    std::vector<Real> vectors;  // column k for value k, in row order; empty when not asked for
};

template <class Real>
struct SpectrumTask {
    std::function<void()> run;  // empty when the peer does not have it
    std::function<Spectrum<Real>()> result;
};

template <class Real>
struct SpectrumPeer {
    SpectrumTask<Real> (*symmetric)(EigenMethod method, bool with_vectors, const Problem<Real>& a);
};

// Null when the library was not there.
template <class Real>
const SpectrumPeer<Real>* spectrum_eigen();
template <class Real>
const SpectrumPeer<Real>* spectrum_openblas();

template <class Real>
std::vector<std::pair<Who, const SpectrumPeer<Real>*>> spectrum_peers() {
    std::vector<std::pair<Who, const SpectrumPeer<Real>*>> found;
    if (const auto* const peer = spectrum_eigen<Real>()) found.emplace_back(Who::eigen, peer);
    if (const auto* const peer = spectrum_openblas<Real>()) found.emplace_back(Who::openblas, peer);
    return found;
}

}  // namespace bench
