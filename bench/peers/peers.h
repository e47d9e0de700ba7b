// The libraries that ours is measured against: those that were found when the benchmark was built.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "peers/task.h"

namespace bench {

// Null when the library was not there.
template <class Real>
const Peer<Real>* eigen();
template <class Real>
const Peer<Real>* openblas();

std::string describe_eigen();
// With the core type whose code it runs, which decides its speed.
std::string describe_openblas();

// The peers that are there.
template <class Real>
std::vector<std::pair<Who, const Peer<Real>*>> peers() {
    std::vector<std::pair<Who, const Peer<Real>*>> found;
    if (eigen<Real>() != nullptr) found.emplace_back(Who::eigen, eigen<Real>());
    if (openblas<Real>() != nullptr) found.emplace_back(Who::openblas, openblas<Real>());
    return found;
}

}  // namespace bench
