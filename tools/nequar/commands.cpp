#include "command.h"

namespace program {

std::span<const Command> command_table() {
    static constexpr Command commands[] = {
        {"solve", "solve A x = b and judge the solution", declare_solve},
        {"determinant", "the determinant of a square matrix", declare_determinant},
        {"info", "shape, stored elements, symmetry and norms of a matrix", declare_info},
        {"qr", "A = Q R, or with --pivot A = Q R P'", declare_qr},
        {"ql", "A = Q L, L lower triangular", declare_ql},
        {"rq", "A = R Q, R upper triangular", declare_rq},
        {"lq", "A = L Q, L lower triangular", declare_lq},
        {"cod", "complete orthogonal decomposition A = Q T Z'", declare_cod},
        {"hessenberg", "A = Q H Q', H upper Hessenberg", declare_hessenberg},
        {"svd", "singular values and vectors, A = U S V'", declare_svd},
        {"eig", "eigenvalues and vectors of a symmetric matrix, A = V D V'", declare_eig},
        {"geig", "generalized eigenvalues, A x = lambda B x", declare_geig},
        {"rank", "numerical rank", declare_rank},
        {"null", "an orthonormal basis of the null space", declare_null},
        {"range", "an orthonormal basis of the range", declare_range},
        {"pinv", "the Moore-Penrose pseudo-inverse", declare_pinv},
        {"inverse", "the inverse of a square matrix", declare_inverse},
        {"sparse-info", "density, bandwidth, statistics of a sparse matrix", declare_sparse_info},
        {"transpose", "the transpose of a sparse matrix", declare_transpose},
        {"add", "the sum of two sparse matrices", declare_add},
        {"self-test", "the library's own tests of its sparse types", declare_self_test},
        {"pca", "principal components of a table of samples", declare_pca},
        {"stats", "mean and deviation of the columns of a table", declare_stats},
        {"density", "the density of the population behind a table", declare_density},
        {"toeplitz", "solve with, or invert, a symmetric Toeplitz matrix", declare_toeplitz},
        {"interpolate", "the polynomial through given points", declare_interpolate},
    };
    return commands;
}

}  // namespace program
