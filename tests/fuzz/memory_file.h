// A file of given bytes without a place on disk.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "fuzz/input.h"

namespace nequar::fuzz {

class MemoryFile {
public:
    explicit MemoryFile(const void* data = nullptr, std::size_t size = 0)
        : descriptor_(memfd_create("fuzz", 0)) {
        NEQUAR_REQUIRE(descriptor_ >= 0 && write(descriptor_, data, size) == ssize_t(size));
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

}  // namespace nequar::fuzz
