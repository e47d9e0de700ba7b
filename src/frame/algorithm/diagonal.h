// Products and sums with a diagonal matrix D that is held as the vector d of its diagonal.
// D may be rectangular; d has at least min(height, width) elements, more are not read.
#pragma once

#include "core/view.h"
#include "kernel/kernel.h"

namespace nequar {

// C := A D (+ C), with A m x k, D k x n, C m x n. C may be A itself when k = n.
template <class Real>
void multiply_by_diagonal(View<const Real> a, const Real* d, kernel::Update update, View<Real> c);

// y := D^T x (+ y), that is y^T = x^T D, with D m x n: y_i = x_i d_i where both exist. y := ...
// sets what lies beyond the diagonal to zero.
template <class Real>
void multiply_by_diagonal(Size m, Size n, const Real* x, const Real* d, kernel::Update update,
                          Real* y);

// x^T D y = sum of x_i d_i y_i, i < count
template <class Real>
Real diagonal_form(Size count, const Real* x, const Real* d, const Real* y);

// B := wa A + wd D, D of A's shape, A and B without gaps in the same layout; B may be A.
template <class Real>
void add_diagonal(View<const Real> a, const Real* d, Real wa, Real wd, View<Real> b);

// A := D
template <class Real>
void set_diagonal(const Real* d, View<Real> a);

}  // namespace nequar
