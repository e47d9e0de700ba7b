// The library's classes by element type, so that each command is written once for double and float.
#pragma once

#include <nequar_algebra/nequar_algebra.h>

namespace program {

template <class Real>
struct Twin;

template <>
struct Twin<double> {
    static constexpr const char* precision = "double";
    using Matrix = CNqMatrix;
    using Vector = CNqVector;
    using Diagonal = CNqMatrix_Diagonal;
    using Symmetric = CNqMatrix_Symmetric;
    using Lower = CNqMatrix_TriangularLower;
    using Upper = CNqMatrix_TriangularUpper;
    using Toeplitz = CNqMatrix_Toeplitz_Symmetric;
    using Vandermonde = CNqMatrix_Vandermonde;
    using Random = CNqRandom_Number_Generator_Advanced;
    using Pca = CNqPrPca;
    using SparseVector = CNqSvector;
    using Sparse = CNqSmatrix;
    using SparseSymmetric = CNqSmatrix_Symmetric;
    using Algebra = LCNqAlgebra_for_Matrix;
    using Solver = LCNqUtility_for_Linear_Equation;
};

template <>
struct Twin<float> {
    static constexpr const char* precision = "single";
    using Matrix = CNqMatrixFloat;
    using Vector = CNqVectorFloat;
    using Diagonal = CNqMatrixFloat_Diagonal;
    using Symmetric = CNqMatrixFloat_Symmetric;
    using Lower = CNqMatrixFloat_TriangularLower;
    using Upper = CNqMatrixFloat_TriangularUpper;
    using Toeplitz = CNqMatrixFloat_Toeplitz_Symmetric;
    using Vandermonde = CNqMatrixFloat_Vandermonde;
    using Random = CNqRandomFloat_Number_Generator_Advanced;
    using Pca = CNqPrPcaFloat;
    using SparseVector = CNqSvectorFloat;
    using Sparse = CNqSmatrixFloat;
    using SparseSymmetric = CNqSmatrixFloat_Symmetric;
    using Algebra = LCNqAlgebra_for_MatrixFloat;
    using Solver = LCNqUtility_for_Linear_Equation_Float;
};

}  // namespace program
