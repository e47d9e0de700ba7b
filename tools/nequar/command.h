// The commands of the program, in one table: commands.cpp lists them, each lives in a file of its
// own under commands/, which defines its declare function.
#pragma once

#include <functional>
#include <span>

namespace CLI {
class App;
}

namespace program {

// What a command does once its arguments are read. It throws InputError or Failure.
using Action = std::function<void()>;

struct Command {
    const char* name;
    const char* summary;
    Action (*declare)(CLI::App& arguments);  // declares the command's arguments
};

std::span<const Command> command_table();

Action declare_solve(CLI::App& arguments);
Action declare_determinant(CLI::App& arguments);
Action declare_info(CLI::App& arguments);
Action declare_qr(CLI::App& arguments);
Action declare_ql(CLI::App& arguments);
Action declare_rq(CLI::App& arguments);
Action declare_lq(CLI::App& arguments);
Action declare_cod(CLI::App& arguments);
Action declare_hessenberg(CLI::App& arguments);
Action declare_svd(CLI::App& arguments);
Action declare_eig(CLI::App& arguments);
Action declare_geig(CLI::App& arguments);
Action declare_rank(CLI::App& arguments);
Action declare_null(CLI::App& arguments);
Action declare_range(CLI::App& arguments);
Action declare_pinv(CLI::App& arguments);
Action declare_inverse(CLI::App& arguments);
Action declare_sparse_info(CLI::App& arguments);
Action declare_transpose(CLI::App& arguments);
Action declare_add(CLI::App& arguments);
Action declare_self_test(CLI::App& arguments);
Action declare_pca(CLI::App& arguments);
Action declare_stats(CLI::App& arguments);
Action declare_density(CLI::App& arguments);
Action declare_toeplitz(CLI::App& arguments);
Action declare_interpolate(CLI::App& arguments);

}  // namespace program
