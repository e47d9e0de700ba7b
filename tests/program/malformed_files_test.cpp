// Files that cannot be used: each gets one clear message with its line, and status 2.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "program/run_program.h"

namespace program_test {
namespace {

struct Malformed {
    const char* name;
    std::string text;
    int line;
    const char* message;  // part of it
};

void PrintTo(const Malformed& file, std::ostream* out) {
    *out << file.name;
}

const std::string kReal = "%%MatrixMarket matrix coordinate real general\n";
const std::string kSymmetric = "%%MatrixMarket matrix coordinate real symmetric\n";
const std::string kSkew = "%%MatrixMarket matrix coordinate real skew-symmetric\n";
const std::string kInteger = "%%MatrixMarket matrix coordinate integer general\n";
const std::string kArray = "%%MatrixMarket matrix array real general\n";

class ProgramMalformedFile : public testing::TestWithParam<Malformed> {};

TEST_P(ProgramMalformedFile, IsRefusedWithItsLine) {
    const Malformed& file = GetParam();
    const Folder folder;
    const std::string path = folder.file("A.mtx", file.text);
    for (const char* command : {"solve", "info", "determinant"}) {
        const Answer result = nequar({command, path});
        EXPECT_EQ(result.status, 2) << command << "\n" << result.err;
        const std::string start = "nequar: " + path + ":" + std::to_string(file.line) + ": ";
        EXPECT_EQ(result.err.rfind(start, 0), 0U) << result.err;
        EXPECT_TRUE(contains(result.err, file.message)) << result.err;
        EXPECT_EQ(result.out, "");
    }
}

INSTANTIATE_TEST_SUITE_P(
    Banner, ProgramMalformedFile,
    testing::Values(
        Malformed{"empty", "", 1, "the file is empty"},
        Malformed{"no_banner", "2 2 1\n1 1 1\n", 1, "no Matrix Market file"},
        Malformed{"binary",
                  std::string("\x7f"
                              "ELF\x01\0\0\xff",
                              8),
                  1, "no Matrix Market file"},
        Malformed{"short_banner", "%%MatrixMarket matrix coordinate real\n", 1,
                  "the banner must be"},
        Malformed{"vector", "%%MatrixMarket vector coordinate real general\n", 1, "\"vector\""},
        Malformed{"format", "%%MatrixMarket matrix dense real general\n", 1, "\"dense\""},
        Malformed{"complex", "%%MatrixMarket matrix array complex general\n1 1\n1 0\n", 1,
                  "complex"},
        Malformed{"hermitian", "%%MatrixMarket matrix array real hermitian\n", 1, "hermitian"},
        Malformed{"field", "%%MatrixMarket matrix array quaternion general\n", 1, "\"quaternion\""},
        Malformed{"symmetry", "%%MatrixMarket matrix array real odd\n", 1, "\"odd\""},
        Malformed{"pattern_array", "%%MatrixMarket matrix array pattern general\n", 1, "pattern"}),
    testing::PrintToStringParamName());

INSTANTIATE_TEST_SUITE_P(
    Sizes, ProgramMalformedFile,
    testing::Values(Malformed{"missing", kReal + "% only a comment\n\n", 3,
                              "ends before the line with the sizes"},
                    Malformed{"too_few", kReal + "2 2\n", 2, "height width elements"},
                    Malformed{"too_many", kArray + "2 2 4\n", 2, "height width"},
                    Malformed{"not_numeric", kReal + "two 2 1\n", 2, "\"two\" is not a size"},
                    Malformed{"fraction", kReal + "2.5 2 1\n", 2, "\"2.5\" is not a size"},
                    Malformed{"negative", kReal + "-2 2 1\n", 2, "sizes begin at 1"},
                    Malformed{"zero", kReal + "0 0 0\n", 2, "sizes begin at 1"},
                    Malformed{"beyond_int", kReal + "3000000000 2 1\n", 2, "beyond 2147483647"},
                    Malformed{"beyond_64_bits", kReal + "99999999999999999999999 2 1\n", 2,
                              "beyond 2147483647"},
                    Malformed{"negative_count", kReal + "2 2 -1\n", 2, "not a number of elements"},
                    Malformed{"more_than_cells", kReal + "2 2 5\n", 2, "more than the 4"},
                    Malformed{"huge_count", kReal + "2 2 99999999999999999999999\n", 2,
                              "more than the 4"},
                    Malformed{"triangle_overfull", kSymmetric + "3 3 7\n", 2, "more than the 6"},
                    Malformed{"not_square", kSymmetric + "3 2 1\n", 2, "must be square"}),
    testing::PrintToStringParamName());

INSTANTIATE_TEST_SUITE_P(
    Elements, ProgramMalformedFile,
    testing::Values(
        Malformed{"truncated", kReal + "2 2 3\n1 1 1\n2 2 1\n", 4, "ends after 2 of 3 elements"},
        Malformed{"truncated_array", kArray + "2 2\n1\n2\n3\n", 5, "ends after 3 of 4 elements"},
        Malformed{"declared_huge", kArray + "40000 40000\n1\n", 3, "ends after 1 of 1600000000"},
        Malformed{"surplus", kReal + "2 2 1\n1 1 1\n2 2 1\n", 4, "more than the 1 element "},
        Malformed{"surplus_array", kArray + "1 1\n1\n2\n", 4, "more than the 1 element "},
        Malformed{"row_0", kReal + "2 2 1\n0 1 1\n", 3, "row \"0\" is outside 1 .. 2"},
        Malformed{"row_large", kReal + "2 2 1\n3 1 1\n", 3, "row \"3\" is outside 1 .. 2"},
        Malformed{"column_negative", kReal + "2 2 1\n1 -1 1\n", 3, "column \"-1\" is outside"},
        Malformed{"column_beyond", kReal + "2 2 1\n1 99999999999999999999 1\n", 3, "is outside"},
        Malformed{"index_text", kReal + "2 2 1\n1 b 1\n", 3, "\"b\" is not an index"},
        Malformed{"no_value", kReal + "2 2 1\n1 1\n", 3, "row column value"},
        Malformed{"value_text", kReal + "2 2 2\n1 1 1\n2 2 abc\n", 4, "\"abc\" is not a number"},
        Malformed{"value_tail", kReal + "1 1 1\n1 1 1.5x\n", 3, "\"1.5x\" is not a number"},
        Malformed{"hexadecimal", kReal + "1 1 1\n1 1 0x10\n", 3, "is not a number"},
        Malformed{"decimal_comma", kReal + "1 1 1\n1 1 1,5\n", 3, "\"1,5\" is not a number"},
        Malformed{"two_signs", kReal + "1 1 1\n1 1 +-1\n", 3, "is not a number"},
        Malformed{"nan", kReal + "1 1 1\n1 1 nan\n", 3, "\"nan\" is not a finite number"},
        Malformed{"nan_payload", kReal + "1 1 1\n1 1 nan(12)\n", 3, "is not a finite number"},
        Malformed{"infinity", kReal + "1 1 1\n1 1 -Inf\n", 3, "\"-Inf\" is not a finite number"},
        Malformed{"overflow", kReal + "1 1 1\n1 1 1e400\n", 3, "does not fit double precision"},
        Malformed{"far_overflow", kReal + "1 1 1\n1 1 -1e99999999999999999999\n", 3,
                  "does not fit"},
        Malformed{"integer_fraction", kInteger + "1 1 1\n1 1 1.5\n", 3,
                  "\"1.5\" is not an integer"},
        Malformed{"unprintable", kReal + "1 1 1\n1 1 \x01\xff\n", 3,
                  "\"\\x01\\xff\" is not a number"},
        Malformed{"trailing", kReal + "1 1 1\n1 1 1 7\n", 3, "\"7\" stands after the element"},
        Malformed{"trailing_array", kArray + "1 1\n1 2\n", 3, "\"2\" stands after the value"},
        Malformed{"repeated", kReal + "2 2 3\n2 2 1\n1 1 1\n2 2 5\n", 5, "given before, on line 3"},
        Malformed{"upper_half", kSymmetric + "2 2 1\n1 2 1\n", 3, "above the diagonal"},
        Malformed{"skew_diagonal", kSkew + "2 2 1\n1 1 1\n", 3, "on or above the diagonal"},
        Malformed{"endless_line", kReal + "% " + std::string(100000, 'x') + "\n", 2,
                  "longer than"}),
    testing::PrintToStringParamName());

TEST(ProgramFiles, MissingAndUnreadableOnesAreNamed) {
    const Folder folder;
    const Answer missing = nequar({"solve", folder / "none.mtx"});
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.err, "nequar: " + folder / "none.mtx" +
                               ":1: cannot be opened: No such file or directory\n");
    const Answer directory = nequar({"info", folder.path()});
    EXPECT_EQ(directory.status, 2);
    EXPECT_TRUE(contains(directory.err, ":1: is a directory")) << directory.err;
}

TEST(ProgramFiles, MatricesBeyondTheMachineAreRefusedBeforeTheyAreMade) {
    const Folder folder;
    const std::string path =
        folder.file("A.mtx", kReal + "1000000000 1000000000 1\n% far\n1000000000 1 -2.5\n");
    for (const char* command : {"solve", "determinant"}) {
        const Answer result = nequar({command, path});
        EXPECT_EQ(result.status, 2);
        EXPECT_TRUE(contains(result.err, "A.mtx:2: ") && contains(result.err, "memory"))
            << result.err;
    }
    const Answer info = nequar({"info", path});  // needs no dense matrix
    EXPECT_EQ(info.status, 0) << info.err;
    EXPECT_EQ(number_after(info.out, "norm 1"), 2.5);
}

TEST(ProgramFiles, ShapesThatDoNotFitTheCommandAreRefused) {
    const Folder folder;
    const std::string square = folder.file("A.mtx", kReal + "2 2 2\n1 1 1\n2 2 1\n");
    const std::string wide = folder.file("wide.mtx", kReal + "% two\n2 3 1\n1 1 1\n");
    const std::string longer = folder.file("b.mtx", kArray + "3 1\n1\n2\n3\n");
    const std::string row = folder.file("row.mtx", kArray + "1 2\n1\n2\n");
    for (const char* command : {"solve", "determinant"}) {
        const Answer result = nequar({command, wide});
        EXPECT_EQ(result.status, 2);
        EXPECT_TRUE(contains(result.err, "wide.mtx:3: ")) << result.err;
        EXPECT_TRUE(contains(result.err, "needs a square matrix, this one is 2 x 3")) << result.err;
    }
    for (const std::string& b : {longer, row}) {
        const Answer result = nequar({"solve", square, b});
        EXPECT_EQ(result.status, 2);
        EXPECT_TRUE(contains(result.err, b + ":2: the right-hand side must have 2 rows"))
            << result.err;
    }
}

TEST(ProgramFiles, FloatsThatOverflowAreRefusedAndTinyOnesAreZero) {
    const Folder folder;
    const std::string large = folder.file("A.mtx", kReal + "1 1 1\n1 1 1e39\n");
    EXPECT_EQ(nequar({"solve", large}).status, 0);
    const Answer result = nequar({"solve", large, "--float"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.err, "A.mtx:3: \"1e39\" does not fit single precision"))
        << result.err;
    const std::string tiny = folder.file("t.mtx", kReal + "1 2 2\n1 1 -1e-400\n1 2 0.000e999\n");
    const Answer info = nequar({"info", tiny});
    EXPECT_EQ(info.status, 0) << info.err;
    EXPECT_EQ(number_after(info.out, "nonzero"), 0);
}

}  // namespace
}  // namespace program_test
