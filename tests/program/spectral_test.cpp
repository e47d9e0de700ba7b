// nequar svd, eig, geig, rank, null, range, pinv, inverse: known answers, and what is refused.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "program/run_program.h"

namespace program_test {
namespace {

TEST(ProgramSpectral, ValuesAreTheKnownOnes) {
    const Folder folder;
    // singular values 5 and 3 (Golub and Van Loan's example by hand): A A' = [17 8; 8 17]
    const std::string wide = folder.file("W.mtx", kArray + "2 3\n3\n2\n2\n3\n2\n-2\n");
    const std::string pair = folder.file("P.mtx", kSymmetric + "2 2\n2\n1\n2\n");
    const std::string mass = folder.file("M.mtx", kSymmetric + "2 2\n2\n0\n1\n");
    struct Case {
        std::vector<std::string> command;
        const char* values;  // the file with them
        std::vector<double> expected;
    };
    const Case cases[] = {
        {{"svd", wide}, "S", {5, 3}},
        {{"svd", wide, "--values"}, "S", {5, 3}},
        {{"eig", pair}, "D", {3, 1}},
        {{"eig", pair, "--method", "jacobi", "--values"}, "D", {3, 1}},
        // (2 - 2 l)(2 - l) = 1
        {{"geig", pair, mass}, "D", {(3 + std::sqrt(3)) / 2, (3 - std::sqrt(3)) / 2}},
        {{"pinv", wide}, "pinv", {7 / 45.0, 2 / 45.0, 10 / 45.0, 2 / 45.0, 7 / 45.0, -10 / 45.0}},
        {{"inverse", pair}, "inverse", {2 / 3.0, -1 / 3.0, -1 / 3.0, 2 / 3.0}},
    };
    for (const Case& one : cases) {
        for (const bool in_float : {false, true}) {
            SCOPED_TRACE(one.command[0] + (in_float ? " in float" : ""));
            std::vector<std::string> arguments = one.command;
            arguments.insert(arguments.end(), {"-o", folder / "f"});
            if (in_float) arguments.push_back("--float");
            const Answer result = nequar(arguments);
            ASSERT_EQ(result.status, 0) << result.err;
            const double bound = in_float ? 1e-5 : 1e-14;
            expect_values(values_of(folder / ("f_" + std::string(one.values) + ".mtx")),
                          one.expected, bound);
            if (contains(result.out, "residual")) {
                EXPECT_LT(number_after(result.out, "residual"), bound);
            }
        }
    }
}

TEST(ProgramSpectral, SubspacesAndRanks) {
    const Folder folder;
    // rank 2, wide: the null space is spanned by (1, 1, -1) / sqrt(3)
    const std::string a = folder.file("A.mtx", kArray + "2 3\n1\n0\n0\n1\n1\n1\n");
    for (const char* method : {"svd", "evd", "qr"})
        EXPECT_EQ(number_after(nequar({"rank", a, "--method", method}).out, "rank"), 2) << method;
    EXPECT_EQ(nequar({"null", a, "-o", folder / "f"}).status, 0);
    std::vector<double> null = values_of(folder / "f_N.mtx");
    ASSERT_EQ(null.size(), 3U);
    if (null[0] < 0)
        for (double& element : null) element = -element;
    const double part = 1 / std::sqrt(3);
    expect_values(null, {part, part, -part}, 1e-15);
    EXPECT_EQ(nequar({"range", a, "-o", folder / "f"}).status, 0);
    EXPECT_EQ(values_of(folder / "f_R.mtx").size(), 4U);
    const std::string regular = folder.file("R.mtx", kArray + "1 1\n2\n");
    EXPECT_TRUE(contains(nequar({"null", regular}).out, "the zero vector alone"));
    EXPECT_EQ(nequar({"rank", a, "--tolerance", "1"}).status, 2);
}

TEST(ProgramSpectral, EveryMethodInvertsAndSolves) {
    const Folder folder;
    const std::string a = folder.file("A.mtx", kSymmetric + "3 3\n4\n2\n1\n5\n2\n6\n");
    for (const char* method : {"lup", "gje", "lud", "qrd", "qld", "rqd", "lqd", "svd", "llt", "uut",
                               "evd", "0", "3", "5", "9"}) {
        SCOPED_TRACE(method);
        EXPECT_LT(number_after(nequar({"inverse", a, "--method", method}).out, "residual"), 1e-15);
        if (std::string(method) == "lup") continue;
        EXPECT_LT(number_after(nequar({"solve", a, "--method", method}).out, "residual"), 1e-15);
    }
}

TEST(ProgramSpectral, PicturesAreDrawn) {
    const Folder folder;
    const std::string a = folder.file("A.mtx", kSymmetric + "2 2\n1\n2\n1\n");
    EXPECT_EQ(nequar({"eig", a, "--plot", folder / "e.svg"}).status, 0);
    const std::string picture = read_file(folder / "e.svg");
    EXPECT_TRUE(contains(picture, "negative, by magnitude")) << picture;
    EXPECT_TRUE(contains(picture, "</svg>"));
    EXPECT_EQ(nequar({"svd", a, "--plot", folder / "missing/s.svg"}).status, 2);
}

TEST(ProgramSpectral, WhatCannotBeDoneIsSaid) {
    const Folder folder;
    const std::string wide = folder.file("W.mtx", kArray + "1 2\n3\n2\n");
    const std::string skewed = folder.file("U.mtx", kArray + "2 2\n1\n2\n3\n4\n");
    const std::string zero = folder.file("Z.mtx", kSymmetric + "2 2\n0\n0\n0\n");
    const std::string one = folder.file("I.mtx", kSymmetric + "2 2\n1\n0\n1\n");
    struct Case {
        std::vector<std::string> command;
        int status;
        const char* message;
    };
    const Case cases[] = {
        {{"eig", wide}, 2, "W.mtx:2: "},
        {{"eig", skewed}, 2, "U.mtx:2: a symmetric matrix is needed"},
        {{"geig", one, zero}, 1, "positive definite"},
        {{"inverse", zero}, 1, "singular"},
        {{"inverse", skewed, "--method", "llt"}, 2, "needs a symmetric matrix"},
        {{"inverse", wide}, 2, "W.mtx:2: inverse needs a square matrix"},
    };
    for (const Case& one_case : cases) {
        const Answer result = nequar(one_case.command);
        EXPECT_EQ(result.status, one_case.status) << one_case.message;
        EXPECT_TRUE(contains(result.err, one_case.message)) << result.err;
    }
}

}  // namespace
}  // namespace program_test
