// What the peers do on vectors and in passes over a matrix; null where a peer has no such routine.
#pragma once

#include <utility>
#include <vector>

#include "peers/task.h"

namespace bench {

enum class VectorWork { add, add_weighted, dot, norm };
inline constexpr double kWeightX = 0.75, kWeightY = -1.5;  // of add_weighted

// A matrix-vector product, and what reads and writes each element of a matrix once or twice.
enum class MatrixWork {
    multiply,
    multiply_transposed,
    transpose,
    transpose_in_place,
    pack,
    unpack,
    symmetric_product,  // the lower triangle of A A'
    determinant
};

template <class Real>
struct Level12Peer {
    // z = x + y, z = wx x + wy y, x'y, |x|; x and y are columns
    PeerTask<Real> (*vectors)(VectorWork work, const Problem<Real>& x, const Problem<Real>& y);
    // A x, A'x, A', the packed triangle of a symmetric A, and back, A A' and |A|; x is a column
    PeerTask<Real> (*pass)(MatrixWork work, const Problem<Real>& a, const Problem<Real>& x);
    // T X = B with the lower triangle of T, and its inverse
    PeerTask<Real> (*solve_triangle)(const Problem<Real>& t, const Problem<Real>& b);
    PeerTask<Real> (*invert_triangle)(const Problem<Real>& t);
    // A x = b with full pivoting
    PeerTask<Real> (*solve_full_pivoting)(const Problem<Real>& a, const Problem<Real>& b);
};

// Null when the library was not there.
template <class Real>
const Level12Peer<Real>* eigen_level12();
template <class Real>
const Level12Peer<Real>* openblas_level12();

template <class Real>
std::vector<std::pair<Who, const Level12Peer<Real>*>> level12_peers() {
    std::vector<std::pair<Who, const Level12Peer<Real>*>> found;
    if (eigen_level12<Real>() != nullptr) found.emplace_back(Who::eigen, eigen_level12<Real>());
    if (openblas_level12<Real>() != nullptr)
        found.emplace_back(Who::openblas, openblas_level12<Real>());
    return found;
}

}  // namespace bench
