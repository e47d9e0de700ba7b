// While an object of this class lives, a terminal on the standard error shows what is running and
// for how long, from half a second on; the line is cleared at the end. Elsewhere nothing is shown.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace program {

class LongStep {
public:
    explicit LongStep(std::string what);
    ~LongStep();
    LongStep(const LongStep&) = delete;
    LongStep& operator=(const LongStep&) = delete;

private:
    void show();

    std::string what_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool done_ = false;
    std::thread shower_;
};

}  // namespace program
