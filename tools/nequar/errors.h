// The two ways in which a command can end badly. main() words them on the standard error.
#pragma once

#include <exception>
#include <string>
#include <utility>

namespace program {

// What the user gave cannot be used: "nequar: FILE:LINE: what", exit status 2.
class InputError : public std::exception {
public:
    InputError(const std::string& file, long long line, const std::string& what)
        : text_(file + ":" + std::to_string(line) + ": " + what) {}
    explicit InputError(std::string text) : text_(std::move(text)) {}

    const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_;
};

// The input was fine and the computation was not: "nequar: what", exit status 1.
class Failure : public std::exception {
public:
    explicit Failure(std::string text) : text_(std::move(text)) {}

    const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_;
};

// Throws the Failure of what the library could not do, with its trace.
template <class Object>
[[noreturn]] void fail(const std::string& what, const Object& object) {
    throw Failure(what + " failed:\n" + object.gft_Get_Failure_Trace().c_str());
}

}  // namespace program
