// How well x solves A x = b, judged without any factorization, from the elements of the file:
//
//   r = ||A x - b|| / (||A|| ||x|| + ||b||)      in the infinity norm, the worst of the columns
//
// It is the smallest relative change of A and b for which x is the exact solution (Rigal and
// Gaches, 1967). A x - b is summed in long double, so that the figure is x's and not the
// summation's.
#pragma once

#include "files/file_matrix.h"

namespace program {

// x and b in row order, n x count. NaN when x or b is not finite.
template <class Real>
double relative_residual(const FileMatrix<Real>& a, const Real* x, const Real* b, int count);

extern template double relative_residual(const FileMatrix<double>&, const double*, const double*,
                                         int);
extern template double relative_residual(const FileMatrix<float>&, const float*, const float*, int);

// Above this a residual is bad: a stable method stays near the rounding unit, whatever n is; ten
// times its square root times the unit leaves room for the unlucky.
template <class Real>
double largest_good_residual(int n);

extern template double largest_good_residual<double>(int);
extern template double largest_good_residual<float>(int);

}  // namespace program
