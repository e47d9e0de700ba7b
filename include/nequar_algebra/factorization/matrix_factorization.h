#pragma once

#include "nequar_algebra/factorization/subspace_factorization.h"

namespace nequar {

/// Decompositions of matrices, and what follows from them directly.
///
/// The operations come in families, each of which is a class that derives from the one before:
///
///     CNqClass  <-  TriangularFactorization  <-  OrthogonalFactorization
///                   LU, Cholesky, determinant    QR, QL, RQ, LQ, pivoting
///               <-  HessenbergFactorization  <-  SymmetricEigenFactorization
///                   Hessenberg, Givens QR        eigenvalues, tridiagonal forms
///               <-  SingularValueFactorization  <-  SubspaceFactorization  <-  MatrixFactorization
///                   singular values                 rank, subspaces
///
/// This class, the end of the chain, carries the name; users need no other.
//
// A new family is a class template of its own in this folder, with a protected default constructor:
// it derives from the family that is now last, and MatrixFactorization from it. Its members are
// defined, and the class instantiated for double and float, in sources of its own. A name that an
// earlier family has already must be brought in by a using declaration, or it is hidden.
template <class Real>
class NEQUAR_API MatrixFactorization : public SubspaceFactorization<Real> {
public:
    MatrixFactorization();
    MatrixFactorization(const MatrixFactorization&) = default;
    MatrixFactorization(MatrixFactorization&&) noexcept = default;
    ~MatrixFactorization() override;
    MatrixFactorization& operator=(const MatrixFactorization&) = default;
    MatrixFactorization& operator=(MatrixFactorization&&) noexcept = default;
};

}  // namespace nequar

using LCNqUtility_for_Matrix_Factorization = nequar::MatrixFactorization<double>;
using LCNqUtility_for_MatrixFloat_Factorization = nequar::MatrixFactorization<float>;

extern template class nequar::MatrixFactorization<double>;
extern template class nequar::MatrixFactorization<float>;
