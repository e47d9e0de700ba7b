#include "long_step.h"

#include <fmt/core.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <utility>

namespace program {

LongStep::LongStep(std::string what) : what_(std::move(what)) {
    if (isatty(STDERR_FILENO) == 1) shower_ = std::thread([this] { show(); });
}

LongStep::~LongStep() {
    if (!shower_.joinable()) return;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        done_ = true;
    }
    ended_.notify_one();
    shower_.join();
}

void LongStep::show() {
    using namespace std::chrono_literals;
    const auto start = std::chrono::steady_clock::now();
    std::unique_lock<std::mutex> lock(mutex_);
    bool shown = false;
    for (auto pause = 500ms; !ended_.wait_for(lock, pause, [this] { return done_; });
         pause = 100ms) {
        const std::chrono::duration<double> so_far = std::chrono::steady_clock::now() - start;
        fmt::print(stderr, "\r{} ... {:.1f} s\x1b[K", what_, so_far.count());
        std::fflush(stderr);
        shown = true;
    }
    if (shown) {
        fmt::print(stderr, "\r\x1b[K");
        std::fflush(stderr);
    }
}

}  // namespace program
