// The matrices of the measurements, and the checks of results.
//
// Everybody gets the same matrix in his own layout: rows one after another for us, columns for the
// peers. Results are compared through a random vector v, which costs n^2 and finds every wrong
// element with probability one: |C v - A (B v)| <= n eps |A| |B| |v|.
#pragma once

#include <vector>

#include "case.h"

namespace bench {

template <class Real>
struct Problem {
    Size height = 0, width = 0;
    std::vector<Real> rows;     // element (i, j) at i * width + j
    std::vector<Real> columns;  // element (i, j) at i + j * height

    Problem(Size h, Size w) : height(h), width(w), rows(count()), columns(count()) {}
    std::size_t count() const { return static_cast<std::size_t>(height * width); }
    void rows_from_columns();
    void columns_from_rows();
};

// Elements uniform in (-1, 1); the same for the same shape and number.
template <class Real>
Problem<Real> random_matrix(Size height, Size width, unsigned number);

// A random matrix whose diagonal dominates, with its rows exchanged at random: every rule of pivots
// finds the same n interchanges, and no factor grows.
template <class Real>
Problem<Real> dominant_matrix(Size n);

// A random symmetric positive definite matrix.
template <class Real>
Problem<Real> definite_matrix(Size n);

// The results of a factorization, in row order: L\U with P A = L U, or the lower Cholesky factor.
template <class Real>
double error_of_lu(const Problem<Real>& a, const std::vector<Real>& packed,
                   const std::vector<int>& perm);
template <class Real>
double error_of_cholesky(const Problem<Real>& a, const std::vector<Real>& factor);

// C = op(A) op(B), all in row order.
template <class Real>
double error_of_product(const Problem<Real>& a, bool transpose_a, const Problem<Real>& b,
                        bool transpose_b, const std::vector<Real>& c);

// A X = B, X and B n x k in row order. With the identity for B, X is the inverse.
template <class Real>
double error_of_solution(const Problem<Real>& a, const std::vector<Real>& x,
                         const std::vector<Real>& b, Size k);

// A = Q H Q^T, and A^T A = R^T R for an m x n triangle R, all in row order.
template <class Real>
double error_of_similarity(const Problem<Real>& a, const std::vector<Real>& q,
                           const std::vector<Real>& h);
template <class Real>
double error_of_root(const Problem<Real>& a, const std::vector<Real>& r);

}  // namespace bench
