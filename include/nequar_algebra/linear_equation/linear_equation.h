#pragma once

#include "nequar_algebra/linear_equation/spectral_solver.h"

namespace nequar {

/// Solving A X = B, and inverting A, by way of a factorization of A.
///
/// The operations come in families, each of which is a class that derives from the one before:
///
///     MatrixFactorization  <-  TriangularSolver  <-  OrthogonalSolver  <-  EigenSolver
///                              LU, Cholesky,         QR, QL, RQ, LQ        symmetric matrices
///                              Gauss-Jordan
///                          <-  SpectralSolver  <-  ...  <-  LinearEquation
///                              singular values
///
/// This class, the end of the chain, carries the name; users need no other.
//
// A new family is a class template of its own in this folder, with a protected default constructor:
// it derives from the family that is now last, and LinearEquation from it.
template <class Real>
class NEQUAR_API LinearEquation : public SpectralSolver<Real> {
public:
    LinearEquation();
    LinearEquation(const LinearEquation&) = default;
    LinearEquation(LinearEquation&&) noexcept = default;
    ~LinearEquation() override;
    LinearEquation& operator=(const LinearEquation&) = default;
    LinearEquation& operator=(LinearEquation&&) noexcept = default;
};

}  // namespace nequar

using LCNqUtility_for_Linear_Equation = nequar::LinearEquation<double>;
using LCNqUtility_for_Linear_Equation_Float = nequar::LinearEquation<float>;

extern template class nequar::LinearEquation<double>;
extern template class nequar::LinearEquation<float>;
