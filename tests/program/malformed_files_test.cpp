// Files that cannot be used: each gets one clear message with its line, and status 2.
#include "program/run_program.h"

namespace program_test {
namespace {

using ProgramFiles = InFolder;

struct Malformed {
    std::string text;
    int line;
    const char* message;  // part of it
};

const Malformed kMalformed[] = {
    // the banner
    {"", 1, "the file is empty"},
    {"2 2 1\n1 1 1\n", 1, "no Matrix Market file"},
    {std::string("\177ELF\1\0\0\377", 8), 1, "no Matrix Market file"},
    {kMatrix + "coordinate real\n", 1, "the banner must be"},
    {"%%MatrixMarket vector coordinate real general\n", 1, "\"vector\""},
    {kMatrix + "dense real general\n", 1, "\"dense\""},
    {kMatrix + "array complex general\n1 1\n1 0\n", 1, "complex"},
    {kMatrix + "array real hermitian\n", 1, "hermitian"},
    {kMatrix + "array quaternion general\n", 1, "\"quaternion\""},
    {kMatrix + "array real odd\n", 1, "\"odd\""},
    {kMatrix + "array pattern general\n", 1, "pattern"},
    // the sizes
    {kReal + "% only a comment\n\n", 3, "ends before the line with the sizes"},
    {kReal + "2 2\n", 2, "height width elements"},
    {kArray + "2 2 4\n", 2, "height width"},
    {kReal + "two 2 1\n", 2, "\"two\" is not a size"},
    {kReal + "2.5 2 1\n", 2, "\"2.5\" is not a size"},
    {kReal + "0 0 0\n", 2, "sizes begin at 1"},
    {kReal + "3000000000 2 1\n", 2, "beyond 2147483647"},
    {kReal + "99999999999999999999999 2 1\n", 2, "beyond 2147483647"},
    {kReal + "2 2 -1\n", 2, "not a number of elements"},
    {kReal + "2 2 5\n", 2, "more than the 4"},
    {kReal + "2 2 99999999999999999999999\n", 2, "more than the 4"},
    {kRealSymmetric + "3 3 7\n", 2, "more than the 6"},
    {kRealSymmetric + "3 2 1\n", 2, "must be square"},
    // the elements
    {kReal + "2 2 3\n1 1 1\n2 2 1\n", 4, "ends after 2 of 3 elements"},
    {kArray + "40000 40000\n1\n", 3, "ends after 1 of 1600000000"},
    {kReal + "2 2 1\n1 1 1\n2 2 1\n", 4, "more than the 1 element "},
    {kArray + "1 1\n1\n2\n", 4, "more than the 1 element "},
    {kReal + "2 2 1\n0 1 1\n", 3, "row \"0\" is outside 1 .. 2"},
    {kReal + "2 2 1\n3 1 1\n", 3, "row \"3\" is outside 1 .. 2"},
    {kReal + "2 2 1\n1 -1 1\n", 3, "column \"-1\" is outside"},
    {kReal + "2 2 1\n1 99999999999999999999 1\n", 3, "is outside"},
    {kReal + "2 2 1\n1 b 1\n", 3, "\"b\" is not an index"},
    {kReal + "2 2 1\n1 1\n", 3, "row column value"},
    {kReal + "1 1 1\n1 1 0x10\n", 3, "is not a number"},
    {kReal + "1 1 1\n1 1 1,5\n", 3, "\"1,5\" is not a number"},
    {kReal + "1 1 1\n1 1 +-1\n", 3, "is not a number"},
    {kReal + "1 1 1\n1 1 nan(12)\n", 3, "\"nan(12)\" is not a finite number"},
    {kReal + "1 1 1\n1 1 -Inf\n", 3, "\"-Inf\" is not a finite number"},
    {kReal + "1 1 1\n1 1 1e400\n", 3, "does not fit double precision"},
    {kReal + "1 1 1\n1 1 -1e99999999999999999999\n", 3, "does not fit"},
    {kMatrix + "coordinate integer general\n1 1 1\n1 1 1.5\n", 3, "\"1.5\" is not an integer"},
    {kReal + "1 1 1\n1 1 \x01\xff\n", 3, "\"\\x01\\xff\" is not a number"},
    {kReal + "1 1 1\n1 1 1 7\n", 3, "\"7\" stands after the element"},
    {kArray + "1 1\n1 2\n", 3, "\"2\" stands after the value"},
    {kReal + "2 2 3\n2 2 1\n1 1 1\n2 2 5\n", 5, "given before, on line 3"},
    {kRealSymmetric + "2 2 1\n1 2 1\n", 3, "above the diagonal"},
    {kMatrix + "coordinate real skew-symmetric\n2 2 1\n1 1 1\n", 3, "on or above the diagonal"},
    {kReal + "% " + std::string(100000, 'x') + "\n", 2, "longer than"},
};

TEST_F(ProgramFiles, MalformedOnesAreRefusedWithTheLine) {
    for (const Malformed& malformed : kMalformed) {
        const std::string path = folder.file("A.mtx", malformed.text);
        const std::string start = "nequar: " + path + ":" + std::to_string(malformed.line) + ": ";
        for (const char* command : {"solve", "info", "determinant"}) {
            const Answer answer = expect_failure({command, path}, 2, malformed.message);
            EXPECT_EQ(answer.err.rfind(start, 0), 0U) << answer.err << malformed.message;
            EXPECT_EQ(answer.out, "");
        }
    }
}

TEST_F(ProgramFiles, MissingAndUnreadableOnesAreNamed) {
    const std::string none = folder / "none.mtx";
    expect_failure({"solve", none}, 2,
                   "nequar: " + none + ":1: cannot be opened: No such file or directory\n");
    expect_failure({"info", folder.path()}, 2, ":1: is a directory");
}

TEST_F(ProgramFiles, MatricesBeyondTheMachineAreRefusedBeforeTheyAreMade) {
    const std::string path =
        folder.file("A.mtx", kReal + "1000000000 1000000000 1\n% far\n1000000000 1 -2.5\n");
    for (const char* command : {"solve", "determinant"}) {
        const std::string message = expect_failure({command, path}, 2, "A.mtx:2: ").err;
        EXPECT_TRUE(contains(message, "memory")) << message;
    }
    EXPECT_EQ(number_after(output_of({"info", path}), "norm 1"), 2.5);  // needs no dense matrix
}

TEST_F(ProgramFiles, ShapesThatDoNotFitTheCommandAreRefused) {
    const std::string square = folder.file("A.mtx", kReal + "2 2 2\n1 1 1\n2 2 1\n");
    const std::string wide = folder.file("wide.mtx", kReal + "% two\n2 3 1\n1 1 1\n");
    for (const std::string command : {"solve", "determinant"})
        expect_failure({command, wide}, 2,
                       "wide.mtx:3: " + command + " needs a square matrix, this one is 2 x 3");
    for (const char* b : {"3 1\n1\n2\n3\n", "1 2\n1\n2\n"})
        expect_failure({"solve", square, folder.file("b.mtx", kArray + b)}, 2,
                       "b.mtx:2: the right-hand side must have 2 rows");
}

TEST_F(ProgramFiles, FloatsThatOverflowAreRefusedAndTinyOnesAreZero) {
    const std::string large = folder.file("A.mtx", kReal + "1 1 1\n1 1 1e39\n");
    output_of({"solve", large});
    expect_failure({"solve", large, "--float"}, 2,
                   "A.mtx:3: \"1e39\" does not fit single precision");
    const std::string tiny = folder.file("t.mtx", kReal + "1 2 2\n1 1 -1e-400\n1 2 0.000e999\n");
    EXPECT_EQ(number_after(output_of({"info", tiny}), "nonzero"), 0);
}

}  // namespace
}  // namespace program_test
