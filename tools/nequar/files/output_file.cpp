#include "files/output_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

#include "errors.h"

namespace program {
namespace {

// What a signal must remove; its first byte is zero when there is nothing.
char name_to_remove[4096];

extern "C" void remove_and_die(int signal) {
    if (name_to_remove[0] != 0) unlink(name_to_remove);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

constexpr int kWatched[] = {SIGINT, SIGTERM, SIGHUP};

// Keeps the signals waiting while it lives: a file must not be there before its name is watched.
class HeldSignals {
public:
    HeldSignals() {
        sigset_t watched;
        sigemptyset(&watched);
        for (const int signal : kWatched) sigaddset(&watched, signal);
        pthread_sigmask(SIG_BLOCK, &watched, &before_);
    }
    ~HeldSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

private:
    sigset_t before_;
};

void watch(const std::string& name) {
    if (name.size() >= sizeof name_to_remove) return;
    for (const int signal : kWatched) std::signal(signal, remove_and_die);
    // The first byte comes last: a signal in between must not see half a name.
    std::copy(name.begin() + 1, name.end(), name_to_remove + 1);
    name_to_remove[name.size()] = 0;
    name_to_remove[0] = name[0];
}

void unwatch() {
    name_to_remove[0] = 0;
}

}  // namespace

OutputFile::OutputFile(const std::string& path) : path_(path), target_(path) {
    if (path.empty()) throw InputError("the name of the output file is empty");
    std::error_code ignored;
    const auto status = std::filesystem::status(path, ignored);
    if (std::filesystem::is_directory(status)) fail(EISDIR);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        file_ = std::fopen(path.c_str(), "wb");
        if (file_ == nullptr) fail(errno);
        return;
    }
    if (std::filesystem::is_symlink(path, ignored))
        target_ = std::filesystem::weakly_canonical(path, ignored).string();
    if (std::filesystem::exists(status) && access(target_.c_str(), W_OK) != 0) fail(errno);

    std::string name = target_ + ".XXXXXX";
    int descriptor = -1;
    int error = 0;
    {
        const HeldSignals held;
        descriptor = mkstemp(name.data());
        error = errno;
        if (descriptor >= 0) {
            temporary_ =
                std::move(name);  // without memory that could be refused: the file is there
            watch(temporary_);
        }
    }
    if (descriptor < 0) fail(error);
    // mkstemp keeps the file to its owner; give it the rights that any new file would have.
    const mode_t mask = umask(0);
    umask(mask);
    if (fchmod(descriptor, 0666 & ~mask) != 0) {
        // Some file systems know no rights; the file is as good there.
    }
    file_ = fdopen(descriptor, "wb");
    if (file_ == nullptr) {
        error = errno;
        close(descriptor);
        fail(error);
    }
}

OutputFile::~OutputFile() {
    if (file_ != nullptr) std::fclose(file_);
    if (!temporary_.empty()) unlink(temporary_.c_str());
    unwatch();
}

void OutputFile::fail(int error) {
    if (!temporary_.empty()) unlink(temporary_.c_str());
    unwatch();
    throw InputError(path_ + ": cannot be written: " + std::strerror(error));
}

void OutputFile::write(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), file_) != text.size()) fail(errno);
}

void OutputFile::commit() {
    if (std::fflush(file_) != 0) fail(errno);
    if (!temporary_.empty() && fsync(fileno(file_)) != 0 && errno != EINVAL) fail(errno);
    std::FILE* file = file_;
    file_ = nullptr;
    if (std::fclose(file) != 0) fail(errno);
    if (temporary_.empty()) return;
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0) fail(errno);
    temporary_.clear();
    unwatch();
}

}  // namespace program
