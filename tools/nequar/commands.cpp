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
    };
    return commands;
}

}  // namespace program
