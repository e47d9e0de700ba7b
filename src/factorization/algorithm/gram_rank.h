// The rank of A from the eigenvalues of its Gram matrix, which are the squares of its singular
// values.
//
//   G = A^T A for m >= n, A A^T otherwise, of order k = min(m, n)
//
// Below order kFirstTridiagonal by Jacobi rotations, from there on through the tridiagonal form. A
// is scaled by a power of two so that no square leaves the range.
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

inline constexpr Size kFirstTridiagonal = 10;

// The last i with lambda(i) / lambda(0) > tolerance^2, plus one. A is finite.
template <class Real>
Outcome rank_by_gram_matrix(View<const Real> a, Real largest, Real tolerance, int& rank);

}  // namespace nequar
