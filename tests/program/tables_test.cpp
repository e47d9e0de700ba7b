// nequar on sparse matrices, tables of samples and structured systems.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "program/run_program.h"

namespace program_test {
namespace {

TEST(ProgramSparse, TransposesAndAdds) {
    const Folder folder;
    const std::string a = folder.file("A.mtx", kReal + "2 3 3\n2 3 5\n1 1 2\n2 1 -1\n");
    EXPECT_EQ(nequar({"transpose", a, "-o", folder / "T.mtx"}).status, 0);
    EXPECT_EQ(values_of(folder / "T.mtx"), (std::vector<double>{1, 1, 2, 1, 2, -1, 3, 2, 5}));
    EXPECT_EQ(nequar({"add", a, a, "--weight", "-0.5", "-o", folder / "S.mtx"}).status, 0);
    EXPECT_EQ(values_of(folder / "S.mtx"), (std::vector<double>{1, 1, 1, 2, 1, -0.5, 2, 3, 2.5}));
    const Answer result = nequar({"add", a, folder / "T.mtx", "-o", folder / "X.mtx"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.err, "T.mtx:3: B must be 2 x 3")) << result.err;
}

TEST(ProgramSparse, InfoAndSelfTest) {
    const Folder folder;
    const std::string a = folder.file("A.mtx", kRealSymmetric + "3 3 2\n2 1 3\n3 3 -4\n");
    const Answer result = nequar({"sparse-info", a, "--plot", folder / "p.svg"});
    EXPECT_EQ(number_after(result.out, "stored"), 3);
    EXPECT_LT(std::fabs(number_after(result.out, "norm F") - std::sqrt(34)), 1e-13);
    EXPECT_TRUE(contains(result.out, "maximum     3 at row 2, column 1")) << result.out;
    EXPECT_TRUE(contains(read_file(folder / "p.svg"), "3 stored elements"));
    const Answer tests = nequar({"self-test", "--height", "5", "--width", "4"});
    EXPECT_EQ(tests.status, 0) << tests.out;
    EXPECT_TRUE(contains(tests.out, "All self-tests passed."));
}

TEST(ProgramTables, StatisticsComponentsAndDensities) {
    const Folder folder;
    const std::string data = folder.file(
        "d.csv",
        "# a line through (1, 1), one step along (3, 4) / 5 apart\n\"x\"; y\n1;1\n1.6;1.8\n"
        "\n0.4;0.2\n");
    const Answer stats = nequar({"stats", data});
    EXPECT_EQ(number_after(stats.out, "x"), 3) << stats.out;
    EXPECT_TRUE(contains(stats.out, "0.6")) << stats.out;
    const Answer pca = nequar({"pca", data, "-o", folder / "c.mtx", "--plot", folder / "p.svg"});
    ASSERT_EQ(pca.status, 0) << pca.err;
    const std::vector<double> direction = values_of(folder / "c.mtx");
    ASSERT_EQ(direction.size(), 2U) << pca.out;
    EXPECT_LT(std::fabs(std::fabs(direction[0]) - 0.6), 1e-14);
    EXPECT_LT(std::fabs(std::fabs(direction[1]) - 0.8), 1e-14);
    EXPECT_TRUE(contains(read_file(folder / "p.svg"), "first component"));
    // one of three samples in a disc of radius one half
    EXPECT_EQ(
        nequar({"density", data, "--method", "parzen", "--h", "0.5", "-o", folder / "p"}).status,
        0);
    EXPECT_EQ(read_file(folder / "p").substr(0, 7), "0.42441");
}

TEST(ProgramTables, StructuredSystems) {
    const Folder folder;
    const std::string r = folder.file("r.mtx", kArray + "3 1\n2\n1\n0\n");
    const std::string b = folder.file("b.mtx", kArray + "3 1\n4\n8\n8\n");
    EXPECT_EQ(nequar({"toeplitz", "solve", r, b, "-o", folder / "f"}).status, 0);
    EXPECT_EQ(values_of(folder / "f_x.mtx").size(), 3U);
    EXPECT_LT(number_after(nequar({"toeplitz", "inverse", r}).out, "residual"), 1e-15);
    EXPECT_EQ(nequar({"toeplitz", "solve", r}).status, 2);
    const std::string points = folder.file("p.csv", "0,1\n1,2\n2,5\n");
    EXPECT_EQ(nequar({"interpolate", points, "-o", folder / "f"}).status, 0);
    EXPECT_EQ(values_of(folder / "f_coefficients.mtx"), (std::vector<double>{1, 0, 1}));
    const Answer twice = nequar({"interpolate", folder.file("q.csv", "1,1\n1,2\n")});
    EXPECT_EQ(twice.status, 1);
    EXPECT_TRUE(contains(twice.err, "All the elements should be different !!!")) << twice.err;
}

TEST(ProgramTables, BadTablesAreRefusedWithTheLine) {
    const Folder folder;
    struct Case {
        const char *text, *message;
    };
    for (const Case& one : {Case{"", ":1: the file holds no line of numbers"},
                            {"a,b\n", ":1: the file holds no line of numbers"},
                            {"1,2\n3\n", ":2: this line has 1 fields, the lines before have 2"},
                            {"1,2\n3,x\n", ":2: field 2, \"x\", is not a number"},
                            {"a,b\n1,2\n1,nan\n", ":3: field 2, \"nan\", is not a finite number"},
                            {"1,2\n1,1e999\n", ":2: field 2, \"1e999\", is beyond the range"},
                            {"1,2\n1,\n", ":2: field 2, \"\", is not a number"}}) {
        const std::string path = folder.file("t.csv", one.text);
        for (const char* command : {"stats", "pca", "density"}) {
            const Answer result = nequar({command, path});
            EXPECT_EQ(result.status, 2) << command;
            EXPECT_TRUE(contains(result.err, path + one.message)) << result.err;
        }
    }
}

}  // namespace
}  // namespace program_test
