// nequar info, and with it the reading of every kind of file; help and wrong arguments.
#include <utility>

#include "program/run_program.h"

namespace program_test {
namespace {

class ProgramInfo : public InFolder {
protected:
    std::string info_of(const std::string& text) const {
        return output_of({"info", folder.file("A.mtx", text)});
    }
};

TEST_F(ProgramInfo, ReadsFilesOfEveryKind) {
    struct File {
        std::string text;
        double norm_1, norm_infinity, squares, norm_max, stored, nonzero;
        const char* symmetry;
    };
    const File files[] = {
        // [[1, 0, -2], [0, 4, 0]], out of order, with every kind of number, blank and comment
        {"%%matrixmarket MATRIX Coordinate REAL General\r\n% c\r\n\r\n 2\t3 3 \r\n"
         "2 2 +4\r\n% between\r\n1 3 -2.e0\r\n\r\n1 1 .1E+1",
         4, 4, 21, 4, 3, 3, "none: not square"},
        // [[2, 3, 0], [3, 0, -5], [0, -5, 1]]
        {kMatrix + "coordinate integer symmetric\n3 3 4\n1 1 2\n2 1 3\n3 2 -5\n3 3 1\n", 8, 8, 73,
         5, 4, 6, "symmetric"},
        {kMatrix + "coordinate real skew-symmetric\n3 3 2\n2 1 3\n3 1 -5\n", 8, 8, 68, 5, 2, 4,
         "skew-symmetric"},
        {kMatrix + "coordinate pattern general\n2 2 2\n1 1\n2 1\n", 2, 1, 2, 1, 2, 2,
         "unsymmetric"},
        // arrays, down their columns: [[1, 3], [2, 4], [0, -5]]
        {kArray + "3 2\n1\n2\n0\n3\n4\n-5\n", 12, 6, 55, 5, 6, 5, "none: not square"},
        // [[1, 2, 3], [2, 4, 5], [3, 5, 6]]
        {kSymmetric + "3 3\n1\n2\n3\n4\n5\n6\n", 14, 14, 129, 6, 6, 9, "symmetric"},
        // [[0, -1, -2], [1, 0, -3], [2, 3, 0]]
        {kMatrix + "array integer skew-symmetric\n3 3\n1\n2\n3\n", 5, 5, 28, 3, 3, 6,
         "skew-symmetric"},
        // by the values alone; a stored zero is no element
        {kReal + "2 2 3\n1 2 5\n1 1 1\n2 1 5\n", 6, 6, 51, 5, 3, 3, "symmetric"},
        {kReal + "2 2 3\n1 2 5\n1 1 1\n2 1 5.000000000000001\n", 6, 6, 51, 5, 3, 3, "unsymmetric"},
        {kReal + "2 2 2\n1 2 5\n2 1 -5\n", 5, 5, 50, 5, 2, 2, "skew-symmetric"},
        {kReal + "2 2 3\n1 2 5\n2 1 -5\n2 2 1\n", 6, 6, 51, 5, 3, 3, "unsymmetric"},
        {kReal + "2 2 2\n1 2 0\n1 1 3\n", 3, 3, 9, 3, 2, 1, "symmetric"}};
    for (const File& file : files) {
        const std::string out = info_of(file.text);
        SCOPED_TRACE(file.text + out);
        EXPECT_NEAR(number_after(out, "norm 1"), file.norm_1, 2e-15 * file.norm_1);
        EXPECT_NEAR(number_after(out, "norm inf"), file.norm_infinity, 2e-15 * file.norm_infinity);
        EXPECT_NEAR(number_after(out, "norm F") / std::sqrt(file.squares), 1, 1e-14);
        EXPECT_NEAR(number_after(out, "norm max"), file.norm_max, 2e-15 * file.norm_max);
        EXPECT_EQ(number_after(out, "stored"), file.stored);
        EXPECT_EQ(number_after(out, "nonzero"), file.nonzero);
        EXPECT_TRUE(contains(out, std::string("symmetry    ") + file.symmetry + "\n"));
    }
}

TEST_F(ProgramInfo, NormsNeitherOverflowNorUnderflow) {
    const std::string array = kArray + "2 1\n";
    EXPECT_NEAR(number_after(info_of(array + "3e300\n4e300\n"), "norm F"), 5e300, 1e286);
    EXPECT_NEAR(number_after(info_of(array + "3e-300\n4e-300\n"), "norm F"), 5e-300, 1e-314);
}

TEST(ProgramHelp, NamesTheVersionAndWarnsOfGrowth) {
    EXPECT_EQ(output_of({"--version"}), "nequar " NEQUAR_VERSION "\n");
    EXPECT_TRUE(contains(output_of({"solve", "--help"}), "grow without bound"));
}

TEST(ProgramHelp, WrongArgumentsAreNamed) {
    using Case = std::pair<Words, const char*>;
    for (const auto& [arguments, message] :
         {Case{{}, "subcommand is required"},
          {{"slove", "A.mtx"}, "subcommand is required"},
          {{"solve"}, "A.mtx is required"},
          {{"info", "A.mtx", "--method"}, "--method"},
          {{"solve", "A.mtx", "--method", "magic"}, "magic not in"},
          {{"info", "A.mtx", "B.mtx", "C.mtx"}, "B.mtx"}})
        EXPECT_EQ(expect_failure(arguments, 2, message).out, "");
}

}  // namespace
}  // namespace program_test
