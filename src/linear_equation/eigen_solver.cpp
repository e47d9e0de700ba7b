#include "nequar_algebra/linear_equation/eigen_solver.h"

#include <algorithm>
#include <limits>

#include "core/workspace.h"
#include "factorization/algorithm/symmetric_eigen.h"
#include "linear_equation/algorithm/eigen_solve.h"
#include "linear_equation/right_hand_side.h"
#include "structured/views.h"

namespace nequar {
namespace {

constexpr const char* kSolve = "sev_Solve_based_on_EVD";
constexpr const char* kSolveWith = "u_sev_Solve_based_on_EVD";
constexpr const char* kInvert = "iev_Inverse_matrix_based_on_EVD";
constexpr const char* kInvertWith = "u_iev_Inverse_matrix_based_on_EVD";
constexpr const char* kPseudo = "piev_Pseudo_Inverse_matrix_based_on_EVD";
constexpr const char* kPseudoWith = "u_piev_Pseudo_Inverse_matrix_based_on_EVD";
constexpr const char* kRank = "u_rev_Rank_based_on_EVD";
constexpr const char* kTest = "u_tce_Test_Components_from_EVD";
constexpr const char* kDecompose = "u_dev_Decompose_to_find_Eigen_Values";

constexpr int kSmallestTridiagonalOrder = 10;

const char* detail_of(EigenFault fault) {
    switch (fault) {
        case EigenFault::none:
            return nullptr;
        case EigenFault::tolerance:
            return "1";
        case EigenFault::ordering:
            return "incorrect ordering";
        case EigenFault::not_finite:
            return "not finite";
    }
    return nullptr;
}

}  // namespace

template <class Real>
EigenSolver<Real>::EigenSolver() = default;
template <class Real>
EigenSolver<Real>::~EigenSolver() = default;

// ---- components --------------------------------------------------------------------------------

template <class Real>
bool EigenSolver<Real>::u_rev_Rank_based_on_EVD(const Vector<Real>* values, Real tolerance,
                                                bool check_order, int& rank) const {
    Real threshold = 0;
    const EigenRank found = count_components(view_of(values), tolerance, check_order, threshold);
    if (const char* const detail = detail_of(found.fault)) return this->fail(detail, kRank);
    rank = static_cast<int>(found.rank);
    return true;
}

template <class Real>
bool EigenSolver<Real>::u_tce_Test_Components_from_EVD(const Matrix<Real>* v,
                                                       const MatrixDiagonal<Real>* values,
                                                       Real tolerance, int& rank) const {
    const CNqClass::CallScope scope(this);
    if (!u_rev_Rank_based_on_EVD(values, tolerance, true, rank)) return this->fail("1", kTest);
    if (!is_square_of(v, rank)) return this->fail("2", kTest);
    return values->mh() == rank && values->mw() == rank ? true : this->fail("3", kTest);
}

template <class Real>
bool EigenSolver<Real>::u_dev_Decompose_to_find_Eigen_Values(const MatrixSymmetric<Real>* a,
                                                             Matrix<Real>* v,
                                                             MatrixDiagonal<Real>* values) const {
    const CNqClass::CallScope scope(this);
    const int n = a->mh();
    if (n < kSmallestTridiagonalOrder) {
        if (this->devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(a, v, values))
            return true;
        return this->fail("1", kDecompose);
    }
    const int limit = static_cast<int>(
        std::min<std::int64_t>(sufficient_qr_steps(n), std::numeric_limits<int>::max()));
    int iterations = 0;
    if (this->devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(a, v, values, limit,
                                                                         iterations))
        return true;
    return this->fail("2", kDecompose);
}

// ---- solve -------------------------------------------------------------------------------------

template <class Real>
template <class Object>
bool EigenSolver<Real>::solve_by_evd(const MatrixSymmetric<Real>* a, Real tolerance,
                                     const Object* b, Object* x) const {
    const CNqClass::CallScope scope(this);
    Matrix<Real> v;
    MatrixDiagonal<Real> values;
    if (!u_dev_Decompose_to_find_Eigen_Values(a, &v, &values)) return this->fail("1", kSolve);
    return solve_with_components(&v, &values, tolerance, b, x) ? true : this->fail("2", kSolve);
}

template <class Real>
bool EigenSolver<Real>::sev_Solve_based_on_EVD(const MatrixSymmetric<Real>* a, Real tolerance,
                                               const Matrix<Real>* b, Matrix<Real>* x) const {
    return solve_by_evd(a, tolerance, b, x);
}

template <class Real>
bool EigenSolver<Real>::sev_Solve_based_on_EVD(const MatrixSymmetric<Real>* a, Real tolerance,
                                               const Vector<Real>* b, Vector<Real>* x) const {
    return solve_by_evd(a, tolerance, b, x);
}

// Records why not, if not.
template <class Real>
bool EigenSolver<Real>::can_solve_with_components(const Matrix<Real>* v,
                                                  const MatrixDiagonal<Real>* values,
                                                  Real tolerance, std::ptrdiff_t n) const {
    int rank = 0;
    if (!u_tce_Test_Components_from_EVD(v, values, tolerance, rank))
        return this->fail("1", kSolveWith);
    return rank == n ? true : this->fail("2", kSolveWith);
}

template <class Real>
template <class Object>
bool EigenSolver<Real>::solve_with_components(const Matrix<Real>* v,
                                              const MatrixDiagonal<Real>* values, Real tolerance,
                                              const Object* b, Object* x) const {
    const CNqClass::CallScope scope(this);
    if (!can_solve_with_components(v, values, tolerance, columns_of(b).height)) return false;
    const char* const detail =
        solve_apart(b, x, [&](const View<Real>& solution, const View<Real>& scratch) {
            solve_with_eigen(view_of(v), values_of(values), solution, scratch);
        });
    return detail == nullptr ? true : this->fail(detail, kSolveWith);
}

template <class Real>
bool EigenSolver<Real>::u_sev_Solve_based_on_EVD(const Matrix<Real>* v,
                                                 const MatrixDiagonal<Real>* values, Real tolerance,
                                                 const Matrix<Real>* b, Matrix<Real>* x) const {
    return solve_with_components(v, values, tolerance, b, x);
}

template <class Real>
bool EigenSolver<Real>::u_sev_Solve_based_on_EVD(const Matrix<Real>* v,
                                                 const MatrixDiagonal<Real>* values, Real tolerance,
                                                 const Vector<Real>* b, Vector<Real>* x) const {
    return solve_with_components(v, values, tolerance, b, x);
}

template <class Real>
bool EigenSolver<Real>::u_sev_Solve_based_on_EVD(const Matrix<Real>* v,
                                                 const MatrixDiagonal<Real>* values, Real tolerance,
                                                 Real* data, bool row_major, int k, int n) const {
    const CNqClass::CallScope scope(this);
    if (!can_solve_with_components(v, values, tolerance, n)) return false;
    if (k < 1) return true;
    const char* const detail =
        solve_apart(view_of_array(row_major, n, k, data),
                    [&](const View<Real>& solution, const View<Real>& scratch) {
                        solve_with_eigen(view_of(v), values_of(values), solution, scratch);
                    });
    return detail == nullptr ? true : this->fail(detail, kSolveWith);
}

// ---- inverse -----------------------------------------------------------------------------------

template <class Real>
bool EigenSolver<Real>::u_iev_Inverse_matrix_based_on_EVD(const Matrix<Real>* v,
                                                          const MatrixDiagonal<Real>* values,
                                                          Real tolerance,
                                                          Matrix<Real>* inverse) const {
    const CNqClass::CallScope scope(this);
    int n = 0;
    if (!u_tce_Test_Components_from_EVD(v, values, tolerance, n))
        return this->fail("1", kInvertWith);
    return invert_with_components(kInvertWith, v, values, Real(0), inverse);
}

template <class Real>
bool EigenSolver<Real>::u_piev_Pseudo_Inverse_matrix_based_on_EVD(
    const Matrix<Real>* v, const MatrixDiagonal<Real>* values, Real tolerance,
    Matrix<Real>* inverse) const {
    Real threshold = 0;
    const EigenRank found = count_components(values_of(values), tolerance, true, threshold);
    if (const char* const detail = detail_of(found.fault)) return this->fail(detail, kPseudoWith);
    if (v->mw() != values->vs()) return this->fail("2", kPseudoWith);
    return invert_with_components(kPseudoWith, v, values, threshold, inverse);
}

// V may be the object that takes the inverse.
template <class Real>
bool EigenSolver<Real>::invert_with_components(const char* method, const Matrix<Real>* v,
                                               const MatrixDiagonal<Real>* values, Real threshold,
                                               Matrix<Real>* inverse) const {
    const int n = v->mh();
    Matrix<Real> apart;
    Matrix<Real>* const target = inverse == v ? &apart : inverse;
    if (target->c_Create(n, n) == nullptr) return this->fail(text::kCannotSize, method);
    const Outcome outcome =
        invert_with_eigen(view_of(v), values_of(values), threshold, view_of(target));
    if (!outcome) return this->fail(text::kOutOfMemory, method);
    if (target != inverse && inverse->cp_Copy(target) == nullptr)
        return this->fail(text::kCannotSize, method);
    return true;
}

template <class Real>
bool EigenSolver<Real>::iev_Inverse_matrix_based_on_EVD(const MatrixSymmetric<Real>* a,
                                                        Real tolerance,
                                                        Matrix<Real>* inverse) const {
    const CNqClass::CallScope scope(this);
    Matrix<Real> v;
    MatrixDiagonal<Real> values;
    if (!u_dev_Decompose_to_find_Eigen_Values(a, &v, &values)) return this->fail("1", kInvert);
    return u_iev_Inverse_matrix_based_on_EVD(&v, &values, tolerance, inverse)
               ? true
               : this->fail("2", kInvert);
}

template <class Real>
bool EigenSolver<Real>::piev_Pseudo_Inverse_matrix_based_on_EVD(const MatrixSymmetric<Real>* a,
                                                                Real tolerance,
                                                                Matrix<Real>* inverse) const {
    const CNqClass::CallScope scope(this);
    Matrix<Real> v;
    MatrixDiagonal<Real> values;
    if (!u_dev_Decompose_to_find_Eigen_Values(a, &v, &values)) return this->fail("1", kPseudo);
    return u_piev_Pseudo_Inverse_matrix_based_on_EVD(&v, &values, tolerance, inverse)
               ? true
               : this->fail("2", kPseudo);
}

template class EigenSolver<double>;
template class EigenSolver<float>;

}  // namespace nequar
