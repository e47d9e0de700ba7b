// The program when memory is refused, at any request it makes: it says so with status 1, or does
// its work as if nothing had been; what it was to write is there whole or not at all.
#include <gtest/gtest.h>

#include <string>

#include "program/run_program.h"

namespace program_test {
namespace {

constexpr int kAtMost = 80;  // requests that are refused, spread over all

const std::string kMatrix = [] {
    std::string text = "%%MatrixMarket matrix array real general\n20 20\n";
    for (int i = 0; i < 400; ++i) text += std::to_string(i % 21 == 0 ? 50 : (i * 7) % 11) + "\n";
    return text;
}();
const std::string kRight = [] {
    std::string text = "%%MatrixMarket matrix array real general\n20 1\n";
    for (int i = 0; i < 20; ++i) text += std::to_string(i + 1) + "\n";
    return text;
}();
const std::string kTable = [] {
    std::string text = "a,b,c\n";
    for (int i = 0; i < 30; ++i)
        text += std::to_string(i) + "," + std::to_string(i * i % 17) + "," +
                std::to_string(i * 5 % 13) + "\n";
    return text;
}();

struct Task {
    const char* name;
    std::vector<std::string> arguments;
    bool has_output;
};

class Memory : public testing::Test {
protected:
    Answer nequar_refused(long k, bool all, const Task& task) {
        std::vector<std::string> words = {"LD_PRELOAD=" NEQUAR_REFUSING_MALLOC,
                                          "NEQUAR_REFUSE=" + std::to_string(k),
                                          "NEQUAR_REQUESTS=" + folder / "requests"};
        if (all) words.push_back("NEQUAR_REFUSE_ALL=1");
        words.push_back(NEQUAR_PROGRAM);
        words.insert(words.end(), task.arguments.begin(), task.arguments.end());
        return run("/usr/bin/env", words, folder.path());
    }

    void refuse_in(const Task& task) {
        SCOPED_TRACE(task.name);
        const Answer good = nequar_refused(0, false, task);
        ASSERT_EQ(good.status, 0) << good.err;
        const std::string wanted = read_file(folder / "a-file-for-the-output.mtx");
        ASSERT_EQ(wanted.empty(), !task.has_output);
        const long requests = std::stol(read_file(folder / "requests"));
        ASSERT_GT(requests, 10);
        const auto files = folder.names();
        const long step = std::max(1L, 2 * requests / kAtMost);
        int failures = 0;
        for (long turn = 0; turn * step < 2 * requests; ++turn) {
            const bool all = turn % 2 != 0;
            const long k = 1 + turn / 2 * step % requests;
            SCOPED_TRACE("request " + std::to_string(k) + (all ? " and all later ones" : ""));
            std::remove((folder / "a-file-for-the-output.mtx").c_str());
            const Answer answer = nequar_refused(k, all, task);
            const std::string written = read_file(folder / "a-file-for-the-output.mtx");
            if (answer.status == 0) {
                EXPECT_EQ(written, wanted);
                EXPECT_EQ(answer.err, good.err);
                EXPECT_EQ(folder.names(), files);
            } else {
                ++failures;
                // 2 where a file cannot be opened for want of memory.
                EXPECT_TRUE(answer.status == 1 || answer.status == 2) << answer.err;
                EXPECT_EQ(answer.err.rfind("nequar: ", 0), 0u) << answer.err;
                // The program's own words, or the library's record of what it could not do.
                EXPECT_TRUE(contains(answer.err, "memory") || contains(answer.err, " failed:\n") ||
                            contains(answer.err, "cannot size the output"))
                    << answer.err;
                EXPECT_FALSE(contains(answer.err, "singular")) << answer.err;
                EXPECT_EQ(written, "");
                EXPECT_EQ(folder.names().size(), files.size() - (task.has_output ? 1 : 0));
            }
            if (HasFailure()) return;
        }
        EXPECT_GT(failures, 10);
    }

    Folder folder;
};

TEST_F(Memory, RefusedAtAnyRequest) {
    folder.file("a.mtx", kMatrix);
    folder.file("b.mtx", kRight);
    folder.file("t.csv", kTable);
    refuse_in({"solve", {"solve", "a.mtx", "b.mtx", "-o", "a-file-for-the-output.mtx"}, true});
    refuse_in({"svd", {"svd", "a.mtx"}, false});
    refuse_in({"pca", {"pca", "t.csv"}, false});
}

}  // namespace
}  // namespace program_test
