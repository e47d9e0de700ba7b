#include "rows.h"

namespace bench {

#define NEQUAR_BOTH(make) make<double>, make<float>
#define NEQUAR_WITH(make, ...) make<double, __VA_ARGS__>, make<float, __VA_ARGS__>
#define NEQUAR_PATTERN(make, pattern) make<double, Pattern::pattern>, make<float, Pattern::pattern>

#define NEQUAR_LEVEL1(work, squared) NEQUAR_WITH(make_level1, VectorWork::work, squared)

std::span<const Row> row_table() {
    static constexpr Row rows[] = {
        {"gemm nn", "C = A B, kernel layer", NEQUAR_PATTERN(make_gemm, nn)},
        {"gemm nt", "C = A B', kernel layer", NEQUAR_PATTERN(make_gemm, nt)},
        {"gemm tn", "C = A' B, kernel layer", NEQUAR_PATTERN(make_gemm, tn)},
        {"gemm tt", "C = A' B', kernel layer", NEQUAR_PATTERN(make_gemm, tt)},
        {"gemm n,8", "C n x 8 = A B", NEQUAR_WITH(make_thin_gemm, Thin::few_columns)},
        {"gemm 8,n", "C 8 x n = A B", NEQUAR_WITH(make_thin_gemm, Thin::few_rows)},
        {"gemm n,n,32", "C n x n = A B, 32 steps", NEQUAR_WITH(make_thin_gemm, Thin::few_steps)},
        {"mmm", "C = A B, objects", NEQUAR_PATTERN(make_object_product, nn)},
        {"mmt", "C = A B', objects", NEQUAR_PATTERN(make_object_product, nt)},
        {"mtm", "C = A' B, objects", NEQUAR_PATTERN(make_object_product, tn)},
        {"mmv", "A x, objects", NEQUAR_WITH(make_gemv, false)},
        {"mvm", "A'x, objects", NEQUAR_WITH(make_gemv, true)},
        {"add n", "x + y, n elements", NEQUAR_LEVEL1(add, false)},
        {"add n^2", "x + y, n^2 elements", NEQUAR_LEVEL1(add, true)},
        {"weighted n", "a x + b y", NEQUAR_LEVEL1(add_weighted, false)},
        {"weighted n^2", "a x + b y", NEQUAR_LEVEL1(add_weighted, true)},
        {"dot n", "x'y", NEQUAR_LEVEL1(dot, false)},
        {"dot n^2", "x'y", NEQUAR_LEVEL1(dot, true)},
        {"norm n", "|x|", NEQUAR_LEVEL1(norm, false)},
        {"norm n^2", "|x|", NEQUAR_LEVEL1(norm, true)},
        {"transpose", "B = A', kernel layer", NEQUAR_WITH(make_transpose, false)},
        {"transpose in", "A = A' in place, kernel layer", NEQUAR_WITH(make_transpose, true)},
        {"pack", "packed symmetric, i_Import; LAPACK packs one triangle",
         NEQUAR_WITH(make_packing, false)},
        {"unpack", "e_Export; LAPACK unpacks one triangle", NEQUAR_WITH(make_packing, true)},
        {"trsm", "T X = B, n right-hand sides, kernel layer", NEQUAR_WITH(make_triangle, false)},
        {"trtri", "inverse of a lower triangle", NEQUAR_WITH(make_triangle, true)},
        {"solve GJ 1", "full pivoting, sgj", NEQUAR_BOTH(make_gauss_jordan)},
        {"LU", "P A = L U in place, u_dluc", NEQUAR_BOTH(make_lu)},
        {"LUP", "P A = L U in place, partial pivoting, u_dlup", NEQUAR_BOTH(make_lup)},
        {"Cholesky", "A = L L' in place, u_dch", NEQUAR_WITH(make_cholesky, true)},
        {"Cholesky U", "A = U U' in place; peers A = L L'", NEQUAR_WITH(make_cholesky, false)},
        {"solve LU 1", "one right-hand side, slu", NEQUAR_BOTH(make_solve_lu_vector)},
        {"solve LU n", "n right-hand sides, slu", NEQUAR_BOTH(make_solve_lu_matrix)},
        {"solve LUP 1", "one right-hand side, slup", NEQUAR_BOTH(make_solve_lup_vector)},
        {"solve LUP n", "n right-hand sides, slup", NEQUAR_BOTH(make_solve_lup_matrix)},
        {"solve LL' 1", "one right-hand side, sll", NEQUAR_BOTH(make_solve_cholesky_vector)},
        {"solve LL' n", "n right-hand sides, sll", NEQUAR_BOTH(make_solve_cholesky_matrix)},
        {"inverse LU", "ilu", NEQUAR_BOTH(make_inverse_lu)},
        {"inverse LUP", "ilup", NEQUAR_BOTH(make_inverse_lup)},
    };
    return rows;
}

}  // namespace bench
