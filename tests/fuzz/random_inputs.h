// The walks of the fuzzers as tests: on many inputs of random bytes.
#pragma once

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "fuzz/input.h"

namespace nequar::fuzz {

template <class Walk>
void expect_walks(int inputs, std::size_t size, const Walk& walk) {
    std::mt19937 engine;
    std::vector<std::uint8_t> bytes(size);
    for (int i = 0; i < inputs; ++i) {
        for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(engine() & 255);
        try {
            walk(Input(bytes.data(), size));
        } catch (const Fault& fault) {
            FAIL() << "input " << i << ": " << fault.what();
        }
    }
}

}  // namespace nequar::fuzz
