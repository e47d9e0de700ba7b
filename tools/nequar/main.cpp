// nequar: the library's operations on matrix files, from the command line.
//
//   exit status 0  done      1  the computation failed      2  the input or the arguments are wrong
#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "command.h"
#include "errors.h"

namespace {

constexpr int kComputationFailed = 1;
constexpr int kInputWrong = 2;

int run(int argument_count, char** arguments) {
    CLI::App app("Linear algebra on Matrix Market files.", "nequar");
    app.set_version_flag("--version", "nequar " NEQUAR_VERSION);
    app.require_subcommand(1);
    app.get_formatter()->column_width(34);

    std::vector<std::pair<CLI::App*, program::Action>> commands;
    for (const program::Command& command : program::command_table()) {
        CLI::App* parser = app.add_subcommand(command.name, command.summary);
        commands.emplace_back(parser, command.declare(*parser));
    }
    try {
        app.parse(argument_count, arguments);
    } catch (const CLI::Success& request) {  // help or version
        return app.exit(request);
    } catch (const CLI::ParseError& error) {
        fmt::print(stderr, "nequar: {}\nnequar --help shows what can be asked.\n", error.what());
        return kInputWrong;
    }
    for (const auto& [parser, action] : commands)
        if (parser->parsed()) action();
    return 0;
}

}  // namespace

int main(int argument_count, char** arguments) {
    int status = 0;
    try {
        status = run(argument_count, arguments);
    } catch (const program::InputError& error) {
        fmt::print(stderr, "nequar: {}\n", error.what());
        return kInputWrong;
    } catch (const program::Failure& failure) {
        std::fflush(stdout);
        fmt::print(stderr, "nequar: {}\n", failure.what());
        return kComputationFailed;
    } catch (const std::bad_alloc&) {
        fmt::print(stderr, "nequar: there is not enough memory for this\n");
        return kComputationFailed;
    } catch (const std::exception& error) {
        fmt::print(stderr, "nequar: {}\n", error.what());
        return kComputationFailed;
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        fmt::print(stderr, "nequar: the output cannot be written\n");
        return kComputationFailed;
    }
    return status;
}
