// nequar info, and with it the reading of every kind of file.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "program/run_program.h"

namespace program_test {
namespace {

Answer info_of(const std::string& text) {
    const Folder folder;
    return nequar({"info", folder.file("A.mtx", text)});
}

void expect_norms(const Answer& result, double one, double infinity, double frobenius, double max) {
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_DOUBLE_EQ(number_after(result.out, "norm 1"), one);
    EXPECT_DOUBLE_EQ(number_after(result.out, "norm inf"), infinity);
    EXPECT_NEAR(number_after(result.out, "norm F"), frobenius, 1e-14 * frobenius);
    EXPECT_DOUBLE_EQ(number_after(result.out, "norm max"), max);
}

TEST(ProgramInfo, ReadsCoordinateFilesOfEverySymmetry) {
    // [[1, 0, -2], [0, 4, 0]], out of order, with every kind of number, blank and comment
    Answer result = info_of(
        "%%matrixmarket MATRIX Coordinate REAL General\r\n% c\r\n\r\n 2\t3 3 \r\n"
        "2 2 +4\r\n% between\r\n1 3 -2.e0\r\n\r\n1 1 .1E+1");
    expect_norms(result, 4, 4, std::sqrt(21.0), 4);
    EXPECT_EQ(number_after(result.out, "stored"), 3);
    EXPECT_TRUE(contains(result.out, "none: not square"));

    // [[2, 3, 0], [3, 0, -5], [0, -5, 1]]
    result = info_of(kMatrix +
                     "coordinate integer symmetric\n3 3 4\n"
                     "1 1 2\n2 1 3\n3 2 -5\n3 3 1\n");
    expect_norms(result, 8, 8, std::sqrt(73.0), 5);
    EXPECT_EQ(number_after(result.out, "stored"), 4);
    EXPECT_EQ(number_after(result.out, "nonzero"), 6);

    result = info_of(kMatrix + "coordinate real skew-symmetric\n3 3 2\n2 1 3\n3 1 -5\n");
    expect_norms(result, 8, 8, std::sqrt(68.0), 5);
    EXPECT_TRUE(contains(result.out, "symmetry    skew-symmetric")) << result.out;

    result = info_of(kMatrix + "coordinate pattern general\n2 2 2\n1 1\n2 1\n");
    expect_norms(result, 2, 1, std::sqrt(2.0), 1);
    EXPECT_TRUE(contains(result.out, "symmetry    unsymmetric")) << result.out;
}

TEST(ProgramInfo, ReadsArraysDownTheirColumns) {
    // [[1, 3], [2, 4], [0, -5]]
    Answer result = info_of(kArray + "3 2\n1\n2\n0\n3\n4\n-5\n");
    expect_norms(result, 12, 6, std::sqrt(55.0), 5);
    EXPECT_EQ(number_after(result.out, "nonzero"), 5);
    // [[1, 2, 3], [2, 4, 5], [3, 5, 6]]
    result = info_of(kSymmetric + "3 3\n1\n2\n3\n4\n5\n6\n");
    expect_norms(result, 14, 14, std::sqrt(129.0), 6);
    // [[0, -1, -2], [1, 0, -3], [2, 3, 0]]
    result = info_of(kMatrix + "array integer skew-symmetric\n3 3\n1\n2\n3\n");
    expect_norms(result, 5, 5, std::sqrt(28.0), 3);
}

TEST(ProgramInfo, FindsTheSymmetryOfTheValues) {
    const std::string general = kReal;
    const auto symmetry = [&](const std::string& text, const char* expected) {
        const Answer result = info_of(general + text);
        EXPECT_TRUE(contains(result.out, std::string("symmetry    ") + expected + "\n"))
            << result.out;
    };
    symmetry("2 2 3\n1 2 5\n1 1 1\n2 1 5\n", "symmetric");
    symmetry("2 2 3\n1 2 5\n1 1 1\n2 1 5.000000000000001\n", "unsymmetric");
    symmetry("2 2 2\n1 2 5\n2 1 -5\n", "skew-symmetric");
    symmetry("2 2 3\n1 2 5\n2 1 -5\n2 2 1\n", "unsymmetric");
    symmetry("2 2 2\n1 2 0\n1 1 3\n", "symmetric");  // a stored zero is no element
}

TEST(ProgramInfo, NormsNeitherOverflowNorUnderflow) {
    const std::string array = kArray + "2 1\n";
    EXPECT_NEAR(number_after(info_of(array + "3e300\n4e300\n").out, "norm F"), 5e300, 1e286);
    EXPECT_NEAR(number_after(info_of(array + "3e-300\n4e-300\n").out, "norm F"), 5e-300, 1e-314);
}

TEST(ProgramHelp, NamesCommandsMethodsAndVersion) {
    const Answer help = nequar({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* command : {"solve", "determinant", "info"})
        EXPECT_TRUE(contains(help.out, command)) << command;
    const Answer solve = nequar({"solve", "--help"});
    EXPECT_EQ(solve.status, 0);
    for (const char* method : {"auto", "lud", "llt", "uut", "gje"})
        EXPECT_TRUE(contains(solve.out, method)) << method;
    EXPECT_TRUE(contains(solve.out, "grow without bound"));
    const Answer version = nequar({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out, "nequar " NEQUAR_VERSION "\n");
}

TEST(ProgramHelp, WrongArgumentsAreNamed) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                      {"slove", "A.mtx"},
                                                      {"solve"},
                                                      {"info", "A.mtx", "--method"},
                                                      {"solve", "A.mtx", "--method", "magic"},
                                                      {"info", "A.mtx", "B.mtx", "C.mtx"}}) {
        const Answer result = nequar(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err.rfind("nequar: ", 0), 0U) << result.err;
        EXPECT_EQ(result.out, "");
    }
}

}  // namespace
}  // namespace program_test
