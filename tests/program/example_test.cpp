// The bundled example: its files are what its program writes, and nequar reproduces the known
// answer from the files.
#include "program/run_program.h"

namespace program_test {
namespace {

const std::string kExample = NEQUAR_EXAMPLES "/ieee14_dc_power_flow/";

using ProgramExample = InFolder;

TEST_F(ProgramExample, Ieee14WritesTheFilesThatAreBundled) {
    EXPECT_EQ(run(NEQUAR_IEEE14, {"--write", folder.path()}).status, 0);
    for (const char* name : {"A.mtx", "b.mtx"}) {
        EXPECT_FALSE(read_file(kExample + name).empty());
        EXPECT_EQ(read_file(folder / name), read_file(kExample + name));
    }
    EXPECT_EQ(run(NEQUAR_IEEE14, {"--write", folder / "none"}).status, 2);
}

TEST_F(ProgramExample, NequarReproducesTheKnownAngles) {
    const std::string out = output_of(
        {"solve", kExample + "A.mtx", kExample + "b.mtx", "--expect", kExample + "x.mtx"});
    EXPECT_TRUE(contains(out, "reproduces the known one")) << out;
    EXPECT_LT(number_after(out, "residual"), 1e-16) << out;
}

}  // namespace
}  // namespace program_test
