// The library's classes by element type, and their filling from a problem.
#pragma once

#include <nequar_algebra/nequar_algebra.h>

#include <algorithm>
#include <type_traits>

#include "problem.h"

namespace bench {

template <class Real>
struct Twin {
    template <class Double, class Float>
    using Choose = std::conditional_t<std::is_same_v<Real, float>, Float, Double>;

    using Matrix = Choose<CNqMatrix, CNqMatrixFloat>;
    using Vector = Choose<CNqVector, CNqVectorFloat>;
    using Diagonal = Choose<CNqMatrix_Diagonal, CNqMatrixFloat_Diagonal>;
    using Symmetric = Choose<CNqMatrix_Symmetric, CNqMatrixFloat_Symmetric>;
    using Algebra = Choose<LCNqAlgebra_for_Matrix, LCNqAlgebra_for_MatrixFloat>;
    using TriangularAlgebra =
        Choose<LCNqAlgebra_for_Matrix_Special, LCNqAlgebra_for_MatrixFloat_Special>;
    using Solver = Choose<LCNqUtility_for_Linear_Equation, LCNqUtility_for_Linear_Equation_Float>;
};

template <class Real>
typename Twin<Real>::Matrix matrix_of(const Problem<Real>& a) {
    typename Twin<Real>::Matrix matrix;
    matrix.c_Create(static_cast<int>(a.height), static_cast<int>(a.width));
    std::copy(a.rows.begin(), a.rows.end(), matrix.p()[0]);
    return matrix;
}

template <class Real>
typename Twin<Real>::Vector vector_of(const Problem<Real>& a) {
    typename Twin<Real>::Vector vector;
    vector.c_Create(static_cast<int>(a.rows.size()));
    std::copy(a.rows.begin(), a.rows.end(), vector.p());
    return vector;
}

inline std::size_t count_of(const CNqMatrix_Base& a) {
    return static_cast<std::size_t>(a.mh()) * static_cast<std::size_t>(a.mw());
}

template <class Matrix>
auto rows_of(const Matrix& a) {
    return std::vector(a.p()[0], a.p()[0] + count_of(a));
}

}  // namespace bench
