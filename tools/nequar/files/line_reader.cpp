#include "files/line_reader.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "errors.h"

namespace program {

LineReader::LineReader(const std::string& path)
    : path_(path), file_(std::fopen(path.c_str(), "rb")), buffer_(4 * kLongestLine) {
    if (!file_) fail(std::string("cannot be opened: ") + std::strerror(errno));
    struct stat status {};
    if (fstat(fileno(file_.get()), &status) == 0 && S_ISDIR(status.st_mode))
        fail("is a directory, not a matrix file");
}

void LineReader::fail(const std::string& what) const {
    throw InputError(path_, line_number(), what);
}

bool LineReader::fill() {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
    const std::size_t count =
        std::fread(buffer_.data() + end_, 1, buffer_.size() - end_, file_.get());
    if (count == 0 && std::ferror(file_.get()))
        fail(std::string("cannot be read: ") + std::strerror(errno));
    end_ += count;
    return count > 0;
}

bool LineReader::next(std::string_view& line) {
    const char* line_end = nullptr;
    std::size_t searched = 0;
    for (;;) {
        const std::size_t held = end_ - begin_;
        if (held > searched)
            line_end = static_cast<const char*>(
                std::memchr(buffer_.data() + begin_ + searched, '\n', held - searched));
        searched = held;
        if (line_end != nullptr) break;
        if (held > kLongestLine || !fill()) break;
    }
    if (line_end == nullptr && begin_ == end_) return false;
    ++line_number_;

    const char* first = buffer_.data() + begin_;
    const std::size_t length =
        line_end != nullptr ? static_cast<std::size_t>(line_end - first) : end_ - begin_;
    if (length > kLongestLine)
        fail("the line is longer than " + std::to_string(kLongestLine) + " characters");
    begin_ += length + (line_end != nullptr ? 1 : 0);
    line = std::string_view(first, length);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return true;
}

}  // namespace program
