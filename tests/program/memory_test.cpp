// The program when memory is refused, at any request it makes: it says so with status 1, or does
// its work as if nothing had been; what it was to write is there whole or not at all.
#include "program/run_program.h"

namespace program_test {
namespace {

constexpr int kAtMost = 80;  // requests that are refused, spread over all

const std::string kOutput = "a-file-for-the-output.mtx";

class Memory : public InFolder {
protected:
    Answer nequar_refused(long k, bool all, const Words& arguments) {
        Words words = {"-C", folder.path(), "LD_PRELOAD=" NEQUAR_REFUSING_MALLOC,
                       "NEQUAR_REQUESTS=requests", "NEQUAR_REFUSE=" + std::to_string(k)};
        if (all) words.push_back("NEQUAR_REFUSE_ALL=1");
        words.push_back(NEQUAR_PROGRAM);
        return run("/usr/bin/env", joined(words, arguments));
    }

    void refuse_in(const Words& arguments) {
        SCOPED_TRACE(arguments[0]);
        const Answer good = nequar_refused(0, false, arguments);
        ASSERT_EQ(good.status, 0) << good.err;
        const std::string wanted = read_file(folder / kOutput);
        const bool has_output = arguments.back() == kOutput;
        ASSERT_EQ(wanted.empty(), !has_output);
        const long requests = std::stol(read_file(folder / "requests"));
        ASSERT_GT(requests, 10);
        const auto files = folder.names();
        const long step = std::max(1L, 2 * requests / kAtMost);
        int failures = 0;
        for (long turn = 0; turn * step < 2 * requests && !HasFailure(); ++turn) {
            const bool all = turn % 2 != 0;
            const long k = 1 + turn / 2 * step % requests;
            SCOPED_TRACE("request " + std::to_string(k) + (all ? " and all later ones" : ""));
            std::remove((folder / kOutput).c_str());
            const Answer answer = nequar_refused(k, all, arguments);
            const std::string written = read_file(folder / kOutput);
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
                EXPECT_EQ(folder.names().size(), files.size() - (has_output ? 1 : 0));
            }
        }
        EXPECT_GT(failures, 10);
    }
};

TEST_F(Memory, RefusedAtAnyRequest) {
    folder.file("a.mtx", array_of(20, 20, [](int k) { return k % 21 == 0 ? 50 : k * 7 % 11; }));
    folder.file("b.mtx", array_of(20, 1, [](int k) { return k + 1; }));
    std::string table = "a,b\n";
    for (int i = 0; i < 30; ++i)
        table += std::to_string(i * i % 17) + "," + std::to_string(i * 5 % 13) + "\n";
    folder.file("t.csv", table);
    refuse_in({"solve", "a.mtx", "b.mtx", "-o", kOutput});
    refuse_in({"svd", "a.mtx"});
    refuse_in({"pca", "t.csv"});
}

}  // namespace
}  // namespace program_test
