#include "command.h"

namespace program {

std::span<const Command> command_table() {
    static constexpr Command commands[] = {
        {"solve", "solve A x = b and judge the solution", declare_solve},
        {"determinant", "the determinant of a square matrix", declare_determinant},
        {"info", "shape, stored elements, symmetry and norms of a matrix", declare_info},
    };
    return commands;
}

}  // namespace program
