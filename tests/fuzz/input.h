// The bytes of a fuzzer, read as decisions. When they are used up every decision is the first one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>

// Throws where the condition does not hold: that ends a fuzzer, and fails a test.
#define NEQUAR_REQUIRE(condition) \
    ((condition) ? void() : throw nequar::fuzz::Fault(__FILE__, __LINE__, #condition))

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace nequar::fuzz {

struct Fault : std::logic_error {
    Fault(const std::string& file, int line, const std::string& condition)
        : logic_error(file + ":" + std::to_string(line) + ": not so: " + condition) {}
};

class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    bool empty() const { return size_ == 0; }
    int byte() {
        if (empty()) return 0;
        --size_;
        return *data_++;
    }
    int below(int n) { return byte() % n; }  // n <= 256
    int in(int first, int last) { return first + below(last - first + 1); }
    bool coin() { return below(2) != 0; }

    // Any int: mostly small, else an end of a range.
    int any_int() {
        constexpr int ends[] = {std::numeric_limits<int>::max(),
                                std::numeric_limits<int>::min(),
                                std::numeric_limits<int>::max() - 1,
                                65535,
                                65536,
                                46341,
                                1 << 30};
        const int choice = byte();
        return choice < 224 ? choice % 32 - 8 : ends[choice % 7];
    }
    // A number of any kind: small integers, the ends of the range, whatever has these bits.
    template <class Real>
    Real value() {
        using L = std::numeric_limits<Real>;
        constexpr Real special[] = {
            L::denorm_min(),  -3 * L::denorm_min(), L::min(),       L::max(),     -L::max(),
            L::infinity(),    -L::infinity(),       L::quiet_NaN(), -Real(0),     L::epsilon(),
            1 + L::epsilon(), L::max() / 1024,      L::max() / 3,   L::min() * 4, Real(1) / 3};
        const int choice = byte();
        if (choice < 128) return static_cast<Real>(choice % 15 - 7);
        if (choice < 176) return special[choice % 15];
        Real real = 0;
        unsigned char bits[sizeof(Real)];
        for (unsigned char& b : bits) b = static_cast<unsigned char>(byte());
        std::memcpy(&real, bits, sizeof real);
        if (choice < 240 && !(real > -L::max() && real < L::max())) return Real(choice);
        return real;
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
};

}  // namespace nequar::fuzz
