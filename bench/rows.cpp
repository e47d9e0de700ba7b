#include "rows.h"

namespace bench {

#define NEQUAR_BOTH(make) make<double>, make<float>
#define NEQUAR_PATTERN(make, pattern) make<double, Pattern::pattern>, make<float, Pattern::pattern>

#define NEQUAR_SPARSE(operation) \
    make_sparse<double, SparseOperation::operation>, make_sparse<float, SparseOperation::operation>

std::span<const Row> row_table() {
    static constexpr Row rows[] = {
        {"gemm nn", "C = A B, kernel layer", NEQUAR_PATTERN(make_gemm, nn)},
        {"gemm nt", "C = A B', kernel layer", NEQUAR_PATTERN(make_gemm, nt)},
        {"gemm tn", "C = A' B, kernel layer", NEQUAR_PATTERN(make_gemm, tn)},
        {"gemm tt", "C = A' B', kernel layer", NEQUAR_PATTERN(make_gemm, tt)},
        {"mmm", "C = A B, objects", NEQUAR_PATTERN(make_object_product, nn)},
        {"mmt", "C = A B', objects", NEQUAR_PATTERN(make_object_product, nt)},
        {"mtm", "C = A' B, objects", NEQUAR_PATTERN(make_object_product, tn)},
        {"LU", "P A = L U in place, u_dluc", NEQUAR_BOTH(make_lu)},
        {"LUP", "P A = L U in place, partial pivoting, u_dlup", NEQUAR_BOTH(make_lup)},
        {"Cholesky", "A = L L' in place, u_dch", NEQUAR_BOTH(make_cholesky)},
        {"solve LU 1", "one right-hand side, slu", NEQUAR_BOTH(make_solve_lu_vector)},
        {"solve LU n", "n right-hand sides, slu", NEQUAR_BOTH(make_solve_lu_matrix)},
        {"solve LUP 1", "one right-hand side, slup", NEQUAR_BOTH(make_solve_lup_vector)},
        {"solve LUP n", "n right-hand sides, slup", NEQUAR_BOTH(make_solve_lup_matrix)},
        {"solve LL' 1", "one right-hand side, sll", NEQUAR_BOTH(make_solve_cholesky_vector)},
        {"solve LL' n", "n right-hand sides, sll", NEQUAR_BOTH(make_solve_cholesky_matrix)},
        {"inverse LU", "ilu", NEQUAR_BOTH(make_inverse_lu)},
        {"inverse LUP", "ilup", NEQUAR_BOTH(make_inverse_lup)},
        {"QR with Q", "A = Q R in place, u_dqrh", NEQUAR_BOTH(make_qr_with_q)},
        {"QR alone", "R only", NEQUAR_BOTH(make_qr)},
        {"QR tall", "R only, 10000 x n", NEQUAR_BOTH(make_tall_qr)},
        {"QL with Q", "A = Q L in place, u_dqlh", NEQUAR_BOTH(make_ql)},
        {"RQ with Q", "A = R Q in place, u_drqh", NEQUAR_BOTH(make_rq)},
        {"LQ with Q", "A = L Q in place, u_dlqh", NEQUAR_BOTH(make_lq)},
        {"QRP with Q", "A P = Q R in place, column pivoting", NEQUAR_BOTH(make_pivoted_qr)},
        {"Hessenberg", "A = Q H Q' in place, u_dhr", NEQUAR_BOTH(make_hessenberg)},
        {"solve QR 1", "one right-hand side, sqr", NEQUAR_BOTH(make_solve_qr)},
        {"triangle 1", "T x = b, slet", NEQUAR_BOTH(make_triangular_solve_vector)},
        {"triangle n", "T X = B, slet", NEQUAR_BOTH(make_triangular_solve_matrix)},
        {"triangle inv", "imt", NEQUAR_BOTH(make_triangular_inverse)},
        {"eig values", "symmetric, devt; LAPACK's syev", NEQUAR_BOTH(make_eigenvalues)},
        {"eig vectors", "symmetric, devt; LAPACK's syev", NEQUAR_BOTH(make_eigenvectors)},
        {"eig beside DC", "the same; LAPACK's syevd", NEQUAR_BOTH(make_eigenvectors_beside_dc)},
        {"Jacobi", "symmetric with vectors, devj", NEQUAR_BOTH(make_jacobi)},
        {"sparse t", "transpose, t", NEQUAR_SPARSE(transpose)},
        {"sparse add", "A += B and the copy of A, amm", NEQUAR_SPARSE(add)},
        {"sparse addw", "A += w B and the copy of A, ammw", NEQUAR_SPARSE(add_weighted)},
        {"sparse build", "element by element, se", NEQUAR_SPARSE(build)},
        {"sparse import", "from dense, n at most 3000, im", NEQUAR_SPARSE(import_dense)},
        {"sparse export", "to dense, n at most 3000, ex", NEQUAR_SPARSE(export_dense)},
        {"sparse reads", "10000 elements, ge", NEQUAR_SPARSE(reads)},
        {"sparse column", "32 columns, gc", NEQUAR_SPARSE(columns)},
        {"sparse row", "32 rows, gr", NEQUAR_SPARSE(rows)},
        {"sparse block", "the middle quarter, gb", NEQUAR_SPARSE(block)},
        {"sparse norm", "nf", NEQUAR_SPARSE(norm)},
        {"sparse mean", "m", NEQUAR_SPARSE(mean)},
        {"sparse stdev", "mst", NEQUAR_SPARSE(deviation)},
        {"sparse max", "max", NEQUAR_SPARSE(largest)},
    };
    return rows;
}

}  // namespace bench
