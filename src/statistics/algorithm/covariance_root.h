// T = V diag(sqrt(lambda)), so that T T^T = V diag(lambda) V^T, in place of V (n x n).
//
// The eigenvalues stand in descending order; one whose size is within n epsilon of that of the
// largest counts as zero. The columns are scaled from the first on, up to an eigenvalue that is
// negative or no finite number: `not_positive_definite`, index = its column.
#pragma once

#include "core/outcome.h"
#include "core/view.h"

namespace nequar {

template <class Real>
Outcome scale_by_roots(const Real* eigenvalues, View<Real> v);

}  // namespace nequar
