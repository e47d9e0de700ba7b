// What is asked of a reader: any bytes are something in order, or a refusal that names a line.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "errors.h"
#include "fuzz/input.h"

namespace nequar::fuzz {

// A file of given bytes without a place on disk.
class MemoryFile {
public:
    MemoryFile(const void* data, std::size_t size) : descriptor_(memfd_create("fuzz", 0)) {
        NEQUAR_REQUIRE(descriptor_ >= 0 && write(descriptor_, data, size) == ssize_t(size));
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

// check(path, 0.0F), then check(path, 0.0): what the smaller type holds, the larger one does.
template <class Check>
void read_any_bytes(const std::uint8_t* data, std::size_t size, const Check& check) {
    const MemoryFile file(data, size);
    const auto reads = [&](auto zero) {
        try {
            check(file.path(), zero);
            return true;
        } catch (const program::InputError& error) {
            NEQUAR_REQUIRE(std::string(error.what()).starts_with(file.path() + ":"));
            return false;
        }
    };
    const bool fits_float = reads(0.0F);
    NEQUAR_REQUIRE(reads(0.0) || !fits_float);
}

}  // namespace nequar::fuzz
