// nequar solve and determinant on systems written here and on real ones.
#include <sys/stat.h>

#include <utility>

#include "program/run_program.h"

namespace program_test {
namespace {

class ProgramSolve : public InFolder {
protected:
    std::string array(const std::string& text) const { return folder.file("A.mtx", kArray + text); }
    std::string sparse(const std::string& text) const { return folder.file("A.mtx", kReal + text); }
    void expect_solution(const Words& arguments, const std::vector<double>& x) const {
        output_of(joined({"solve", "-o", folder / "x.mtx"}, arguments));
        expect_values(folder / "x.mtx", x, 1e-15);
    }
};
using ProgramDeterminant = ProgramSolve;

TEST_F(ProgramSolve, EveryMethodSolvesInBothPrecisionsAndInverts) {
    // [[4, 2, 1], [2, 5, 2], [1, 2, 6]] x = b, x = (1, -2, 3)
    const std::string a = folder.file("A.mtx", kSymmetric + "3 3\n4\n2\n1\n5\n2\n6\n");
    const std::string b = folder.file("b.mtx", kArray + "3 1\n3\n-2\n15\n");
    const std::string x = folder / "x.mtx";
    for (const std::string method : {"auto", "lup", "lud", "llt", "uut", "gje", "qrd", "qld", "rqd",
                                     "lqd", "svd", "evd", "0", "3", "5", "9"}) {
        SCOPED_TRACE(method);
        const auto is_right = [&x](const std::string& out, double bound) {
            EXPECT_LT(number_after(out, "residual"), 0.1 * bound);
            expect_values(x, {1, -2, 3}, bound);
        };
        in_both_precisions({"solve", a, b, "-o", x, "--method", method}, 1e-14, is_right);
        if (method == "auto") continue;
        EXPECT_LT(number_after(output_of({"inverse", a, "--method", method}), "residual"), 1e-15);
    }
}

TEST_F(ProgramSolve, SeveralRightHandSidesNoneAndSkewSymmetricFiles) {
    const std::string a = sparse("2 2 3\n1 1 2\n1 2 1\n2 2 4\n");
    const std::string b = folder.file("b.mtx", kReal + "2 3 3\n1 1 2\n2 2 4\n1 3 6\n");
    expect_solution({a, b}, {1, 0, -0.5, 1, 3, 0});
    expect_solution({a}, {0.375, 0.25});
    for (const char* text :
         {"coordinate real skew-symmetric\n2 2 1\n2 1 2\n", "array real skew-symmetric\n2 2\n2\n"})
        expect_solution({folder.file("S.mtx", kMatrix + text)}, {0.5, -0.5});
}

TEST_F(ProgramSolve, AutoSaysWhatItTookAndWhy) {
    for (const auto& [text, reason] :
         {std::pair{"2 2 2\n1 1 2\n2 2 3\n",
                    "llt, A = L L' (auto: the matrix is symmetric and pos"},
          {"2 2 4\n1 1 1\n2 1 2\n1 2 2\n2 2 1\n",
           "lup, P A = L U (auto: the matrix is symmetric but not positive"},
          {"2 2 3\n1 1 1\n2 1 2\n2 2 1\n", "lup, P A = L U (auto: the matrix is not symmetric"}}) {
        const std::string out = output_of({"solve", sparse(text)});
        EXPECT_TRUE(contains(out, reason)) << out << reason;
    }
}

TEST_F(ProgramSolve, FailuresShowTheLibrarysTrace) {
    struct Failure {
        std::string text, method;
        int status;
        const char* message;
        bool names_a_safer_method;
    };
    for (const Failure& f :
         // regular (its determinant is -10), and refused by a pivot chosen before the update
         {Failure{kArray + "3 3\n4\n2\n2\n4\n1\n2\n1\n1\n3\n", "lud", 1,
                  "u_dluc_Decompose_into_LU_matrices_by_Crout: singular", true},
          {kArray + "2 2\n1\n2\n2\n4\n", "auto", 1, "with_Partial_pivoting: singular", false},
          {kReal + "2 2 2\n1 2 1\n2 1 1\n", "llt", 1, "non-positive definite", false},
          {kReal + "2 2 3\n1 1 1\n2 1 3\n2 2 1\n", "uut", 2,
           "A.mtx:2: --method uut needs a symmetric matrix", false},
          {kArray + "1 1\n1e-320\n", "auto", 1, "not finite", true}}) {
        const std::string a = folder.file("A.mtx", f.text);
        const Words words = {"solve", a, "--method", f.method, "-o", folder / "x.mtx"};
        const std::string message = expect_failure(words, f.status, f.message).err;
        EXPECT_EQ(contains(message, "qrd"), f.names_a_safer_method) << message;
        EXPECT_EQ(folder.names(), Words{"A.mtx"});  // no temporary file either
    }
}

TEST_F(ProgramSolve, BadResidualsAndGrowthAreSaid) {
    // Gauss-Jordan's scaling by the magnitude of the pivot: x = 2 where -2 solves; and norms whose
    // product overflows a double do not hide a wrong solution
    for (const auto& [minus_a, b] : {std::pair{"2\n", "4\n"}, {"1e200\n", "1e300\n"}}) {
        const std::string a = folder.file("A.mtx", kArray + "1 1\n-" + minus_a);
        const std::string right = folder.file("b.mtx", kArray + "1 1\n" + b);
        const std::string out = output_of({"solve", a, right, "--method", "gje"});
        EXPECT_GT(number_after(out, "residual"), 0.5);
        EXPECT_TRUE(contains(out, "BAD") && contains(out, "qrd")) << out;
    }
    // a pivot of 1e-12 after the update: U holds 1e12
    std::string out = output_of(
        {"solve", array("3 3\n1\n1\n0\n1\n1.000000000001\n0.5\n1\n2\n1\n"), "--method", "lud"});
    EXPECT_GT(number_after(out, "growth"), 1e10);
    EXPECT_TRUE(contains(out, "LARGE") && contains(out, "qrd")) << out;

    out = output_of({"solve", sparse("2 2 2\n1 1 2\n2 2 3\n")});
    EXPECT_LT(number_after(out, "residual"), 1e-16);
    EXPECT_DOUBLE_EQ(number_after(out, "growth"), 1);
    EXPECT_FALSE(contains(out, "warning")) << out;
}

TEST_F(ProgramSolve, ConditionSaysHowManyDigitsAreRight) {
    const auto solve = [&](const std::string& corner) {
        return output_of({"solve", array("2 2\n1\n1\n1\n" + corner)});
    };
    std::string out = solve("2\n");  // ||A|| = 3, ||A^-1|| = 3
    EXPECT_NEAR(number_after(out, "condition"), 9, 0.1);
    EXPECT_TRUE(contains(out, "about 14 of 15 digits")) << out;
    EXPECT_FALSE(contains(out, "warning")) << out;
    out = solve("1.00000000001\n");
    EXPECT_NEAR(number_after(out, "condition") / 4e11, 1, 0.1);
    EXPECT_TRUE(contains(out, "nearly singular")) << out;
    out = solve("1.0000000000000002\n");
    EXPECT_TRUE(contains(out, "singular to working precision")) << out;
}

TEST_F(ProgramSolve, OutputReplacesAFileWholeOrNotAtAll) {
    const std::string a = array("1 1\n4\n");
    const std::string x = folder.file("x.mtx", "what stood here\n");
    output_of({"solve", a, "-o", x});
    EXPECT_EQ(read_file(x), kArray + "% solution of A x = b by nequar, method llt\n1 1\n0.25\n");
    struct stat status {};
    ASSERT_EQ(stat(x.c_str(), &status), 0);
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(status.st_mode & 0777, 0666 & ~mask);

    const std::string link = folder / "link.mtx";
    std::filesystem::create_symlink("x.mtx", link);
    output_of({"solve", a, "-o", link, "--float"});
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    expect_values(x, {0.25}, 1e-7);

    output_of({"solve", a, "-o", a});  // onto its own input
    expect_values(a, {0.25}, 1e-15);

    for (const std::string& place : {folder / "none/x.mtx", folder.path(), std::string()})
        expect_failure({"solve", a, "-o", place}, 2, place);
    expect_failure({"solve", a, "-o", "/dev/full"}, 2, "No space left");
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
    EXPECT_EQ(folder.names(), (Words{"A.mtx", "link.mtx", "x.mtx"}));
}

TEST_F(ProgramSolve, ExpectComparesWithAKnownSolution) {
    const std::string a = array("1 1\n2\n");
    for (const bool right : {true, false}) {
        const auto x = folder.file("x.mtx", kArray + "1 1\n" + (right ? "0.5\n" : "0.501\n"));
        const Answer answer = run(NEQUAR_PROGRAM, {"solve", a, "--expect", x});
        EXPECT_EQ(answer.status, right ? 0 : 1);
        const char* const verdict = right ? "reproduces the known one" : "DIFFERS";
        EXPECT_TRUE(contains(answer.out, verdict)) << answer.out;
    }
}

TEST_F(ProgramDeterminant, KeepsItsSignAndItsRange) {
    const auto determinant = [&](const char* text) {
        return output_of({"determinant", array(text)});
    };
    for (const auto& [text, expected] :
         {std::pair{"2 2\n0\n1\n1\n0\n", -1.0},
          {"2 2\n1\n3\n2\n4\n", -2.0},
          {"3 3\n4\n2\n2\n4\n1\n2\n1\n1\n3\n", -10.0},
          {"2 2\n1\n2\n2\n4\n", 0.0},
          // the product leaves the range on the way and comes back
          {"3 3\n1e-200\n0\n0\n0\n1e-200\n0\n0\n0\n1e300\n", 1e-100}})
        EXPECT_NEAR(number_after(determinant(text), "determinant"), expected,
                    1e-15 * std::abs(expected));
    EXPECT_TRUE(contains(determinant("2 2\n-1e200\n0\n0\n1e250\n"), "-10^450, beyond the range"));
}

// ---- the bundled example, and real systems where the folder of data is there -------------------

TEST_F(ProgramSolve, TheFilesOfTheExampleAreWhatItWritesAndLeadToItsAnswer) {
    const std::string example = NEQUAR_EXAMPLES "/ieee14_dc_power_flow/";
    EXPECT_EQ(run(NEQUAR_IEEE14, {"--write", folder.path()}).status, 0);
    EXPECT_EQ(run(NEQUAR_IEEE14, {"--write", folder / "none"}).status, 2);
    for (const char* name : {"A.mtx", "b.mtx"}) {
        EXPECT_FALSE(read_file(example + name).empty());
        EXPECT_EQ(read_file(folder / name), read_file(example + name));
    }
    const std::string out =
        output_of({"solve", example + "A.mtx", example + "b.mtx", "--expect", example + "x.mtx"});
    EXPECT_TRUE(contains(out, "reproduces the known one")) << out;
    EXPECT_LT(number_after(out, "residual"), 1e-16) << out;
}

TEST(ProgramRealSystem, AutoSolvesItAndKnowsItsCondition) {
    if (!std::filesystem::exists(NEQUAR_DATA "/494_bus.mtx"))
        GTEST_SKIP() << "no folder " << NEQUAR_DATA;
    const auto solved = [](const std::string& name) {
        const std::string out = output_of({"solve", NEQUAR_DATA "/" + name + ".mtx"});
        EXPECT_LT(number_after(out, "residual"), 1e-14) << name;
        return out;
    };
    for (const char* name : {"494_bus", "bcsstk01", "bcsstk03", "bcsstk22", "nos4"})
        EXPECT_TRUE(contains(solved(name), "method      llt")) << name;
    // with the 2-norm condition that is known of each; 1-norm and 2-norm differ by n at most
    for (const auto& [name, condition] : {std::pair{"b1_ss", 1.97e2},
                                          {"pores_1", 1.81e6},
                                          {"steam3", 4.99e10},
                                          {"west0067", 1.30e2},
                                          {"west0479", 3.25e11},
                                          {"gre_343", 1.12e2}}) {
        const double found = number_after(solved(name), "condition");
        EXPECT_TRUE(found > condition / 500 && found < condition * 500) << name << ' ' << found;
    }
}

}  // namespace
}  // namespace program_test
