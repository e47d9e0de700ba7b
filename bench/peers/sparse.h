// What the peer does with sparse matrices: Eigen alone, since OpenBLAS has none.
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "case.h"

namespace bench {

enum class SparseOperation {
    transpose,
    add,           // A + B
    add_weighted,  // A + w B
    build,         // element by element, in the order of the columns
    import_dense,
    export_dense,
    reads,    // of the elements at `places`
    columns,  // of the first kLines columns
    rows,     // of kLines rows, spread
    block,    // the middle quarter
    norm,
    mean,
    deviation,
    largest,
};

inline constexpr int kLines = 32;
inline constexpr double kSparseWeight = 0.3;

// A matrix by compressed columns, rows increasing.
template <class Real>
struct Elements {
    int height = 0, width = 0;
    std::vector<int> start, rows;
    std::vector<Real> values;
};

template <class Real>
struct SparseProblem {
    Elements<Real> a, b;
    std::vector<Real> dense_rows;             // of a, when the operation needs it
    std::vector<std::pair<int, int>> places;  // column, row; half of them stored
};

// A matrix, or a number: what was read, summed up.
template <class Real>
struct SparseResult {
    Elements<Real> matrix;
    double number = 0;
};

template <class Real>
struct SparseTask {
    std::function<void()> run;
    std::function<SparseResult<Real>()> result;
};

template <class Real>
using SparsePeer = SparseTask<Real> (*)(SparseOperation operation,
                                        const SparseProblem<Real>& problem);

// Null when the library was not there.
template <class Real>
SparsePeer<Real> sparse_eigen();

}  // namespace bench
