// A text file, line by line, with the number of each line for messages. Reads regular files and
// pipes; the memory it takes does not depend on the file.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace program {

class LineReader {
public:
    static constexpr std::size_t kLongestLine = 1 << 16;

    // Throws InputError when the file cannot be opened or is a directory.
    explicit LineReader(const std::string& path);

    // The next line without its end (\n or \r\n), valid until the next call; false at the end of
    // the file. Throws InputError on a reading error or an endless line.
    bool next(std::string_view& line);

    // The number of the line that next() gave last; 1 before the first.
    long long line_number() const { return line_number_ > 0 ? line_number_ : 1; }
    const std::string& path() const { return path_; }

    // Throws InputError about the current line.
    [[noreturn]] void fail(const std::string& what) const;

private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    bool fill();  // more of the file into the buffer; false at its end

    std::string path_;
    std::unique_ptr<std::FILE, Close> file_;
    std::vector<char> buffer_;
    std::size_t begin_ = 0;  // what is read and not yet handed out: buffer_[begin_ .. end_)
    std::size_t end_ = 0;
    long long line_number_ = 0;
};

}  // namespace program
