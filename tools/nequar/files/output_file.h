// A file that appears whole or not at all: what is written goes to a temporary file beside it,
// which takes its name when everything is safely there. An error, an exception, an interrupt or a
// termination signal leaves no trace, and what stood under the name before stays.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace program {

class OutputFile {
public:
    // Throws InputError when the file cannot be written there. A path that names something else
    // than a regular file (a terminal, a pipe, /dev/null) is written to directly. One at a time.
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void write(std::string_view text);
    void commit();

private:
    [[noreturn]] void fail(int error);

    std::string path_;
    std::string target_;     // path_ behind symbolic links
    std::string temporary_;  // empty when written to directly
    std::FILE* file_ = nullptr;
};

}  // namespace program
