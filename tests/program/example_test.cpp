// The bundled example: its files are what its program writes, its output is the known one, and
// nequar reproduces the known answer from the files.
#include <gtest/gtest.h>

#include <string>

#include "program/run_program.h"

namespace program_test {
namespace {

const std::string kFolder = NEQUAR_EXAMPLES "/ieee14_dc_power_flow/";

TEST(ProgramExample, Ieee14PrintsTheKnownFlow) {
    const Answer result = run(NEQUAR_IEEE14, {});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, read_file(kFolder + "expected_output.txt"));
}

TEST(ProgramExample, Ieee14WritesTheFilesThatAreBundled) {
    const Folder folder;
    const Answer result = run(NEQUAR_IEEE14, {"--write", folder.path()});
    EXPECT_EQ(result.status, 0) << result.err;
    for (const char* name : {"A.mtx", "b.mtx"}) {
        EXPECT_FALSE(read_file(kFolder + name).empty());
        EXPECT_EQ(read_file(folder / name), read_file(kFolder + name));
    }
    EXPECT_EQ(run(NEQUAR_IEEE14, {"--write", folder / "none"}).status, 2);
}

TEST(ProgramExample, NequarReproducesTheKnownAngles) {
    const Answer result =
        nequar({"solve", kFolder + "A.mtx", kFolder + "b.mtx", "--expect", kFolder + "x.mtx"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(contains(result.out, "reproduces the known one")) << result.out;
    EXPECT_LT(number_after(result.out, "residual"), 1e-16) << result.out;
}

}  // namespace
}  // namespace program_test
