// How well the factors of a decomposition rebuild the matrix, and how orthogonal they are:
//
//   ||A - product||_F / ||A||_F            ||I - Q^T Q||_F / sqrt(columns of Q)
//   ||P||_F / (||A||_F ||B||_F)            ||A X - I||_F / (||A||_F ||X||_F)
//
// All are a few rounding units for a good decomposition. The norms are summed in long double.
#pragma once

#include "numbers/twin.h"

namespace program {

// 0 when both are equal, also when both are zero; NaN when an element is.
template <class Real>
double relative_difference(const typename Twin<Real>::Matrix& a,
                           const typename Twin<Real>::Matrix& product);

template <class Real>
double distance_from_orthogonal(const typename Twin<Real>::Matrix& q);

// of a product that should vanish, P = A B
template <class Real>
double relative_size(const typename Twin<Real>::Matrix& p, const typename Twin<Real>::Matrix& a,
                     const typename Twin<Real>::Matrix& b);

template <class Real>
double distance_from_inverse(const typename Twin<Real>::Matrix& a,
                             const typename Twin<Real>::Matrix& x);

extern template double relative_difference<double>(const CNqMatrix&, const CNqMatrix&);
extern template double relative_difference<float>(const CNqMatrixFloat&, const CNqMatrixFloat&);
extern template double distance_from_orthogonal<double>(const CNqMatrix&);
extern template double distance_from_orthogonal<float>(const CNqMatrixFloat&);
extern template double relative_size<double>(const CNqMatrix&, const CNqMatrix&, const CNqMatrix&);
extern template double relative_size<float>(const CNqMatrixFloat&, const CNqMatrixFloat&,
                                            const CNqMatrixFloat&);
extern template double distance_from_inverse<double>(const CNqMatrix&, const CNqMatrix&);
extern template double distance_from_inverse<float>(const CNqMatrixFloat&, const CNqMatrixFloat&);

}  // namespace program
