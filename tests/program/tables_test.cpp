// nequar on sparse matrices, tables of samples and structured systems.
#include "program/run_program.h"

namespace program_test {
namespace {

using ProgramSparse = InFolder;
using ProgramTables = InFolder;
using Values = std::vector<double>;

TEST_F(ProgramSparse, TransposesAndAdds) {
    const std::string a = folder.file("A.mtx", kReal + "2 3 3\n2 3 5\n1 1 2\n2 1 -1\n");
    output_of({"transpose", a, "-o", folder / "T.mtx"});
    EXPECT_EQ(values_of(folder / "T.mtx"), (Values{1, 1, 2, 1, 2, -1, 3, 2, 5}));
    output_of({"add", a, a, "--weight", "-0.5", "-o", folder / "S.mtx"});
    EXPECT_EQ(values_of(folder / "S.mtx"), (Values{1, 1, 1, 2, 1, -0.5, 2, 3, 2.5}));
    expect_failure({"add", a, folder / "T.mtx", "-o", folder / "X.mtx"}, 2,
                   "T.mtx:3: B must be 2 x 3");
}

TEST_F(ProgramSparse, InfoAndSelfTest) {
    const std::string a = folder.file("A.mtx", kRealSymmetric + "3 3 2\n2 1 3\n3 3 -4\n");
    const std::string out = output_of({"sparse-info", a, "--plot", folder / "p.svg"});
    EXPECT_EQ(number_after(out, "stored"), 3);
    EXPECT_NEAR(number_after(out, "norm F"), std::sqrt(34), 1e-13);
    EXPECT_TRUE(contains(out, "maximum     3 at row 2, column 1")) << out;
    EXPECT_TRUE(contains(read_file(folder / "p.svg"), "3 stored elements"));
    const std::string tests = output_of({"self-test", "--height", "5", "--width", "4"});
    EXPECT_TRUE(contains(tests, "All self-tests passed."));
}

TEST_F(ProgramTables, StatisticsComponentsAndDensities) {
    const std::string data = folder.file(
        "d.csv",
        "# a line through (1, 1), one step along (3, 4) / 5 apart\n\"x\"; y\n1;1\n1.6;1.8\n"
        "\n0.4;0.2\n");
    const std::string stats = output_of({"stats", data});
    EXPECT_EQ(number_after(stats, "x"), 3) << stats;
    EXPECT_TRUE(contains(stats, "0.6")) << stats;
    output_of({"pca", data, "-o", folder / "c.mtx", "--plot", folder / "p.svg"});
    const double sign = std::copysign(1, values_of(folder / "c.mtx").at(0));
    expect_values(folder / "c.mtx", {sign * 0.6, sign * 0.8}, 1e-14);
    EXPECT_TRUE(contains(read_file(folder / "p.svg"), "first component"));
    // one of three samples in a disc of radius one half
    output_of({"density", data, "--method", "parzen", "--h", "0.5", "-o", folder / "p"});
    EXPECT_EQ(read_file(folder / "p").substr(0, 7), "0.42441");
}

TEST_F(ProgramTables, StructuredSystems) {
    const std::string r = folder.file("r.mtx", kArray + "3 1\n2\n1\n0\n");
    const std::string b = folder.file("b.mtx", kArray + "3 1\n4\n8\n8\n");
    output_of({"toeplitz", "solve", r, b, "-o", folder / "f"});
    expect_values(folder / "f_x.mtx", {1, 2, 3}, 1e-14);
    EXPECT_LT(number_after(output_of({"toeplitz", "inverse", r}), "residual"), 1e-15);
    expect_failure({"toeplitz", "solve", r}, 2, "b.mtx");
    output_of({"interpolate", folder.file("p.csv", "0,1\n1,2\n2,5\n"), "-o", folder / "f"});
    EXPECT_EQ(values_of(folder / "f_coefficients.mtx"), (Values{1, 0, 1}));
    expect_failure({"interpolate", folder.file("q.csv", "1,1\n1,2\n")}, 1,
                   "All the elements should be different !!!");
}

TEST_F(ProgramTables, BadTablesAreRefusedWithTheLine) {
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
        for (const char* command : {"stats", "pca", "density"})
            expect_failure({command, path}, 2, path + one.message);
    }
}

}  // namespace
}  // namespace program_test
