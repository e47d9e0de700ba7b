#pragma once

#include "nequar_algebra/linear_equation/spectral_solver.h"

namespace nequar {

/// Solving A X = B, and inverting A, by way of a factorization of A.
///
/// The operations come in families, each of which is a class that derives from the one before:
///
///     MatrixFactorization  <-  TriangularSolver  <-  OrthogonalSolver
///                              LU, Cholesky,         QR, QL, RQ, LQ
///                              Gauss-Jordan
///                          <-  EigenSolver       <-  SpectralSolver    <-  LinearEquation
///                              eigenvalues           singular values       choice by a code
///
/// This class, the end of the chain, carries the name; users need no other. Of its own it has the
/// operations that choose the method by a code, and homogeneous equations under a constraint.
///
///     code   method   solve   inverse    details for dense A, for symmetric A
///     0      GJE      sgj_    igj_       "4"    "4"
///     1      LUD      slu_    ilu_       "8"    "10"
///     2      QRD      sqr_    iqr_       "5"    "5"
///     3      QLD      sql_    iql_       LUD    "6"
///     4      RQD      srq_    irq_       "6"    "7"
///     5      LQD      slq_    ilq_       LUD    "8"
///     6      SVD      ssv_    isv_       "7"    "9"      tolerance 1e-10
///     7      LLD      sll_    ill_       "1"    "1"
///     8      UUD      suu_    iuu_       "2"    "2"
///     9      EVD      sev_    iev_       "3"    "3"      tolerance 1e-10
///     other  LUD      slu_    ilu_       "8"    "10"
///
/// What may surprise: a dense A is never solved by QLD or LQD, codes 3 and 5 mean LUD there. With
/// codes 7 to 9 the symmetric part of a dense A is what is solved with, (A + A^T) / 2; one that is
/// not square is refused. With a symmetric A a code below 0 means LUD, but one of 10 or more
/// ALWAYS fails with "10": LUD gets an empty matrix then. Code 0 solves nothing reliably, see
/// `u_sgj_…`, and code 1 refuses some regular matrices, see `u_dluc_…`.
///
/// The details are those of this class; what the chosen method recorded stands before. It makes the
/// checks, also those of aliasing: the solution may be the right-hand side.
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

    /// A X = B, or A x = b, by the method of the code; details as in the table. Cost: that of the
    /// method.
    bool sle_Solve_Linear_Equation(int method, const Matrix<Real>* a, const Matrix<Real>* b,
                                   Matrix<Real>* x) const;
    bool sle_Solve_Linear_Equation(int method, const Matrix<Real>* a, const Vector<Real>* b,
                                   Vector<Real>* x) const;
    bool sle_Solve_Linear_Equation(int method, const MatrixSymmetric<Real>* a,
                                   const Matrix<Real>* b, Matrix<Real>* x) const;
    bool sle_Solve_Linear_Equation(int method, const MatrixSymmetric<Real>* a,
                                   const Vector<Real>* b, Vector<Real>* x) const;
    /// A^-1 by the method of the code; details as in the table.
    bool im_Inverse_Matrix(int method, const Matrix<Real>* a, Matrix<Real>* inverse) const;
    bool im_Inverse_Matrix(int method, const MatrixSymmetric<Real>* a, Matrix<Real>* inverse) const;

    /// x := the unit vector with C x = 0 that minimises |A x|; A and C have one width. The null
    /// space of C is that of `fin_…` with the tolerance, x = N y where y solves A N y = 0.
    /// "1": there is no such space, `fin_…` failed. "2": the solution in it failed, as it does when
    /// C x = 0 for x = 0 alone or the widths differ. Two singular value decompositions.
    bool shle_c0_Solve_Homogeneous_Linear_Equation_with_Cx_is_0(const Matrix<Real>* a,
                                                                const Matrix<Real>* c,
                                                                Real tolerance,
                                                                Vector<Real>* x) const;
    /// x := the unit vector in the range of G (n x p, A of width n) that minimises |A x|, and,
    /// unless x_hat is null, x_hat of size p with G x_hat = x, the shortest of these when the
    /// columns of G depend on each other. The range is that of `for_…` with the tolerance. "1":
    /// `for_…` failed, or x and x_hat are one object. "2": the solution in it failed, as it does
    /// for G = 0, or when A has another width than G rows. Two singular value decompositions, a
    /// third for x_hat. Source of both: Hartley and Zisserman, Multiple View Geometry, A5.4.
    bool shle_gh_Solve_Homogeneous_Linear_Equation_with_x_is_Gx_hat(const Matrix<Real>* a,
                                                                    const Matrix<Real>* g,
                                                                    Real tolerance, Vector<Real>* x,
                                                                    Vector<Real>* x_hat) const;

private:
    template <class Object>
    bool solve_dense(int method, bool is_from_symmetric, const Matrix<Real>* a, const Object* b,
                     Object* x) const;
    template <class Object>
    bool solve_symmetric(int method, const MatrixSymmetric<Real>* a, const Object* b,
                         Object* x) const;
    bool invert_dense(int method, bool is_from_symmetric, const Matrix<Real>* a,
                      Matrix<Real>* inverse) const;
    bool invert_symmetric(int method, const MatrixSymmetric<Real>* a, Matrix<Real>* inverse) const;
    template <class Object>
    bool solve(int method, const Matrix<Real>* a, const Object* b, Object* x) const;
    template <class Object>
    bool solve(int method, const MatrixSymmetric<Real>* a, const Object* b, Object* x) const;
    bool import_symmetric(const Matrix<Real>* a, MatrixSymmetric<Real>* symmetric) const;
    bool export_dense(int method, const MatrixSymmetric<Real>* a, Matrix<Real>* dense) const;
    bool solve_within(const char* method, const Matrix<Real>* a, const Matrix<Real>& basis,
                      Vector<Real>* y, Vector<Real>* x) const;
};

}  // namespace nequar

using LCNqUtility_for_Linear_Equation = nequar::LinearEquation<double>;
using LCNqUtility_for_Linear_Equation_Float = nequar::LinearEquation<float>;

extern template class nequar::LinearEquation<double>;
extern template class nequar::LinearEquation<float>;
