// nequar svd, eig, geig, rank, null, range, pinv, inverse: known answers, and what is refused.
#include "program/run_program.h"

namespace program_test {
namespace {

class ProgramSpectral : public InFolder {
protected:
    // singular values 5 and 3 (Golub and Van Loan's example by hand): A A' = [17 8; 8 17]
    const std::string wide = folder.file("W.mtx", kArray + "2 3\n3\n2\n2\n3\n2\n-2\n");
    const std::string pair = folder.file("P.mtx", kSymmetric + "2 2\n2\n1\n2\n");
};

TEST_F(ProgramSpectral, ValuesAreTheKnownOnes) {
    const std::string mass = folder.file("M.mtx", kSymmetric + "2 2\n2\n0\n1\n");
    struct Case {
        Words command;
        std::string values;  // the file with them
        std::vector<double> expected;
    };
    for (const Case& known :
         {Case{{"svd", wide}, "S", {5, 3}},
          {{"svd", wide, "--values"}, "S", {5, 3}},
          {{"eig", pair}, "D", {3, 1}},
          {{"eig", pair, "--method", "jacobi", "--values"}, "D", {3, 1}},
          // (2 - 2 l)(2 - l) = 1
          {{"geig", pair, mass}, "D", {(3 + std::sqrt(3)) / 2, (3 - std::sqrt(3)) / 2}},
          {{"pinv", wide}, "pinv", {7 / 45.0, 2 / 45.0, 10 / 45.0, 2 / 45.0, 7 / 45.0, -10 / 45.0}},
          {{"inverse", pair}, "inverse", {2 / 3.0, -1 / 3.0, -1 / 3.0, 2 / 3.0}}}) {
        const Words command = joined(known.command, {"-o", folder / "f"});
        in_both_precisions(command, 1e-14, [&](const std::string& out, double bound) {
            expect_values(folder / ("f_" + known.values + ".mtx"), known.expected, bound);
            if (contains(out, "residual")) {
                EXPECT_LT(number_after(out, "residual"), bound);
            }
        });
    }
}

TEST_F(ProgramSpectral, SubspacesAndRanks) {
    // rank 2, wide: the null space is spanned by (1, 1, -1) / sqrt(3)
    const std::string a = folder.file("A.mtx", kArray + "2 3\n1\n0\n0\n1\n1\n1\n");
    for (const char* method : {"svd", "evd", "qr"})
        EXPECT_EQ(number_after(output_of({"rank", a, "--method", method}), "rank"), 2) << method;
    output_of({"null", a, "-o", folder / "f"});
    const double part = std::copysign(1 / std::sqrt(3), values_of(folder / "f_N.mtx").at(0));
    expect_values(folder / "f_N.mtx", {part, part, -part}, 1e-15);
    output_of({"range", a, "-o", folder / "f"});
    EXPECT_EQ(values_of(folder / "f_R.mtx").size(), 4U);
    EXPECT_TRUE(contains(output_of({"null", pair}), "the zero vector alone"));
    expect_failure({"rank", a, "--tolerance", "1"}, 2, "tolerance");
}

TEST_F(ProgramSpectral, PicturesAreDrawn) {
    const std::string a = folder.file("A.mtx", kSymmetric + "2 2\n1\n2\n1\n");
    output_of({"eig", a, "--plot", folder / "e.svg"});
    const std::string picture = read_file(folder / "e.svg");
    EXPECT_TRUE(contains(picture, "negative, by magnitude")) << picture;
    EXPECT_TRUE(contains(picture, "</svg>"));
    expect_failure({"svd", a, "--plot", folder / "missing/s.svg"}, 2, "missing/s.svg");
}

TEST_F(ProgramSpectral, WhatCannotBeDoneIsSaid) {
    const std::string skewed = folder.file("U.mtx", kArray + "2 2\n1\n2\n3\n4\n");
    const std::string zero = folder.file("Z.mtx", kSymmetric + "2 2\n0\n0\n0\n");
    expect_failure({"eig", wide}, 2, "W.mtx:2: ");
    expect_failure({"eig", skewed}, 2, "U.mtx:2: a symmetric matrix is needed");
    expect_failure({"geig", pair, zero}, 1, "positive definite");
    expect_failure({"inverse", zero}, 1, "singular");
    expect_failure({"inverse", skewed, "--method", "llt"}, 2, "needs a symmetric matrix");
    expect_failure({"inverse", wide}, 2, "W.mtx:2: inverse needs a square matrix");
}

}  // namespace
}  // namespace program_test
