// The rows of the table, by the file that holds them. A new operation is a function template below
// rows/ that makes its case, and a line in rows.cpp.
#pragma once

#include "case.h"
#include "peers/level12.h"
#include "peers/sparse.h"

namespace bench {

enum class Pattern { nn, nt, tn, tt };  // n: as it is, t: transposed

// The kernel layer's gemm on views, and the objects' products above it.
template <class Real, Pattern pattern>
Case make_gemm(Size n);
template <class Real, Pattern pattern>
Case make_object_product(Size n);

// Products with one short side, nn: C n x 8, C 8 x n, and C n x n from 32 columns.
enum class Thin { few_columns, few_rows, few_steps };
template <class Real, Thin thin>
Case make_thin_gemm(Size n);

// Vectors of n or n^2 elements, A x and A'x, transpositions, packed symmetric matrices.
template <class Real, VectorWork work, bool squared>
Case make_level1(Size n);
template <class Real, bool transposed>
Case make_gemv(Size n);
template <class Real, bool in_place>
Case make_transpose(Size n);
template <class Real, bool exports>
Case make_packing(Size n);
// The same beside plain transpositions of the matrix.
template <class Real, bool exports>
Case make_packing_beside_transpose(Size n);
// The lower triangle of A A', n x n; the determinant.
template <class Real>
Case make_symmetric_product(Size n);
template <class Real>
Case make_determinant(Size n);  // d_
// T X = B with n right-hand sides, and the inverse of T, T lower triangular.
template <class Real, bool inverse>
Case make_triangle(Size n);
template <class Real>
Case make_gauss_jordan(Size n);  // sgj_, one right-hand side, beside full pivoting

template <class Real>
Case make_lu(Size n);  // in place, pivots before the update, u_dluc_
template <class Real>
Case make_lup(Size n);  // in place, partial pivoting, u_dlup_
template <class Real, bool lower>
Case make_cholesky(Size n);  // in place, u_dch_
template <class Real>
Case make_solve_lu_vector(Size n);  // slu_, one right-hand side
template <class Real>
Case make_solve_lu_matrix(Size n);  // slu_, n right-hand sides
template <class Real>
Case make_solve_lup_vector(Size n);  // slup_
template <class Real>
Case make_solve_lup_matrix(Size n);
template <class Real>
Case make_solve_cholesky_vector(Size n);  // sll_
template <class Real>
Case make_solve_cholesky_matrix(Size n);
template <class Real>
Case make_inverse_lu(Size n);  // ilu_
template <class Real>
Case make_inverse_lup(Size n);  // ilup_

// Reductions with and without Q, solves and inverses by triangles: rows/orthogonal.cpp
template <class Real>
Case make_qr_with_q(Size n);
template <class Real>
Case make_qr(Size n);
template <class Real>
Case make_tall_qr(Size n);  // 10000 x n
template <class Real>
Case make_ql(Size n);
template <class Real>
Case make_rq(Size n);
template <class Real>
Case make_lq(Size n);
template <class Real>
Case make_pivoted_qr(Size n);
template <class Real>
Case make_hessenberg(Size n);
template <class Real>
Case make_solve_qr(Size n);
template <class Real>
Case make_triangular_solve_vector(Size n);
template <class Real>
Case make_triangular_solve_matrix(Size n);
template <class Real>
Case make_triangular_inverse(Size n);

template <class Real>
Case make_eigenvalues(Size n);  // symmetric, devt_ with enough steps
template <class Real>
Case make_eigenvectors(Size n);
template <class Real>
Case make_eigenvectors_beside_dc(Size n);  // the peer's divide and conquer
template <class Real>
Case make_jacobi(Size n);  // devj_

// Toeplitz recursions and statistics: rows/statistics.cpp
template <class Real>
Case make_durbin(Size n);
template <class Real>
Case make_levinson(Size n);
template <class Real>
Case make_trench(Size n);
template <class Real>
Case make_distances(Size n);  // 20000 samples of dimension n
template <class Real>
Case make_normal_numbers(Size n);  // 1000 n numbers
template <class Real>
Case make_components(Size n);  // 10 n samples of dimension n
template <class Real>
Case make_singular_values(Size n);  // u_dsvb_ with enough steps
template <class Real>
Case make_singular_vectors(Size n);
template <class Real>
Case make_singular_vectors_beside_dc(Size n);  // the peer's divide and conquer
template <class Real>
Case make_tall_singular(Size n);  // 10000 x n, values and V
template <class Real>
Case make_pseudo_inverse(Size n);  // pisv_

// Sparse matrices of order n with ten elements in a column: rows/sparse.cpp
template <class Real, SparseOperation operation>
Case make_sparse(Size n);

}  // namespace bench
