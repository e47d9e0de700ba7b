// nequar solve and determinant on systems written here and on real ones.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "program/run_program.h"

namespace program_test {
namespace {

std::vector<double> solution_of(const Folder& folder, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "solve");
    arguments.insert(arguments.end(), {"-o", folder / "x.mtx"});
    const Answer result = nequar(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    return values_of(folder / "x.mtx");
}

TEST(ProgramSolve, EveryMethodSolvesInBothPrecisions) {
    const Folder folder;
    // [[4, 2, 1], [2, 5, 2], [1, 2, 6]] x = b, x = (1, -2, 3)
    const std::string a = folder.file("A.mtx", kSymmetric + "3 3\n4\n2\n1\n5\n2\n6\n");
    const std::string b = folder.file("b.mtx", kArray + "3 1\n3\n-2\n15\n");
    for (const char* method :
         {"auto", "lup", "lud", "llt", "uut", "gje", "qrd", "qld", "rqd", "lqd"}) {
        SCOPED_TRACE(method);
        expect_values(solution_of(folder, {a, b, "--method", method}), {1, -2, 3}, 1e-14);
        expect_values(solution_of(folder, {a, b, "--method", method, "--float"}), {1, -2, 3}, 1e-5);
    }
}

TEST(ProgramSolve, SeveralRightHandSidesNoneAndSkewSymmetricFiles) {
    const Folder folder;
    const std::string a = folder.file("A.mtx", kReal + "2 2 3\n1 1 2\n1 2 1\n2 2 4\n");
    const std::string b = folder.file("b.mtx", kReal + "2 3 3\n1 1 2\n2 2 4\n1 3 6\n");
    expect_values(solution_of(folder, {a, b}), {1, 0, -0.5, 1, 3, 0}, 1e-15);
    expect_values(solution_of(folder, {a}), {0.375, 0.25}, 1e-15);
    for (const char* text : {"coordinate real skew-symmetric\n2 2 1\n2 1 2\n",
                             "array real skew-symmetric\n2 2\n2\n"}) {
        const std::string skew = folder.file("S.mtx", std::string(kMatrix) + text);
        expect_values(solution_of(folder, {skew}), {0.5, -0.5}, 1e-15);
    }
}

TEST(ProgramSolve, AutoSaysWhatItTookAndWhy) {
    const Folder folder;
    const auto method = [&](const std::string& text) {
        return nequar({"solve", folder.file("A.mtx", kReal + text)}).out;
    };
    EXPECT_TRUE(contains(method("2 2 2\n1 1 2\n2 2 3\n"),
                         "llt, A = L L' (auto: the matrix is symmetric and positive"));
    EXPECT_TRUE(contains(method("2 2 4\n1 1 1\n2 1 2\n1 2 2\n2 2 1\n"),
                         "lup, P A = L U (auto: the matrix is symmetric but not positive"));
    EXPECT_TRUE(contains(method("2 2 3\n1 1 1\n2 1 2\n2 2 1\n"),
                         "lup, P A = L U (auto: the matrix is not symmetric"));
}

TEST(ProgramSolve, FailuresShowTheLibrarysTrace) {
    struct Failure {
        std::string text, method;
        int status;
        const char* message;
    };
    const Failure failures[] = {
        // regular (its determinant is -10), and refused by a pivot chosen before the update
        {kArray + "3 3\n4\n2\n2\n4\n1\n2\n1\n1\n3\n", "lud", 1,
         "u_dluc_Decompose_into_LU_matrices_by_Crout: singular"},
        {kArray + "2 2\n1\n2\n2\n4\n", "auto", 1, "with_Partial_pivoting: singular"},
        {kReal + "2 2 2\n1 2 1\n2 1 1\n", "llt", 1, "non-positive definite"},
        {kReal + "2 2 3\n1 1 1\n2 1 3\n2 2 1\n", "uut", 2,
         "A.mtx:2: --method uut needs a symmetric matrix"},
        {kArray + "1 1\n1e-320\n", "auto", 1, "not finite"}};
    const Folder folder;
    for (const Failure& f : failures) {
        const std::string a = folder.file("A.mtx", f.text);
        const Answer result = nequar({"solve", a, "--method", f.method, "-o", folder / "x.mtx"});
        EXPECT_EQ(result.status, f.status) << f.message;
        EXPECT_TRUE(contains(result.err, f.message)) << result.err;
        // a safer method is named where there is one
        EXPECT_EQ(contains(result.err, "qrd"), f.method == "lud" || contains(f.text, "e-320"))
            << result.err;
        EXPECT_EQ(folder.names(), std::vector<std::string>{"A.mtx"});  // no temporary file either
    }
}

TEST(ProgramSolve, BadResidualsAndGrowthAreSaid) {
    const Folder folder;
    // Gauss-Jordan's scaling by the magnitude of the pivot: x = 2 where -2 solves
    const std::string negative = folder.file("A.mtx", kArray + "1 1\n-2\n");
    const std::string b = folder.file("b.mtx", kArray + "1 1\n4\n");
    Answer result = nequar({"solve", negative, b, "--method", "gje"});
    EXPECT_EQ(result.status, 0);
    EXPECT_GT(number_after(result.out, "residual"), 0.5);
    EXPECT_TRUE(contains(result.out, "BAD") && contains(result.out, "qrd")) << result.out;

    // a pivot of 1e-12 after the update: U holds 1e12
    const std::string growing =
        folder.file("G.mtx", kArray + "3 3\n1\n1\n0\n1\n1.000000000001\n0.5\n1\n2\n1\n");
    result = nequar({"solve", growing, "--method", "lud"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_GT(number_after(result.out, "growth"), 1e10);
    EXPECT_TRUE(contains(result.out, "LARGE") && contains(result.out, "qrd")) << result.out;

    // norms whose product overflows a double do not hide a wrong solution
    const std::string huge = folder.file("H.mtx", kArray + "1 1\n-1e200\n");
    const std::string far = folder.file("f.mtx", kArray + "1 1\n1e300\n");
    result = nequar({"solve", huge, far, "--method", "gje"});
    EXPECT_GT(number_after(result.out, "residual"), 0.5) << result.out;

    result = nequar({"solve", folder.file("D.mtx", kReal + "2 2 2\n1 1 2\n2 2 3\n")});
    EXPECT_LT(number_after(result.out, "residual"), 1e-16);
    EXPECT_DOUBLE_EQ(number_after(result.out, "growth"), 1);
    EXPECT_FALSE(contains(result.out, "warning")) << result.out;
}

TEST(ProgramSolve, ConditionSaysHowManyDigitsAreRight) {
    const Folder folder;
    const auto solve = [&](const std::string& corner) {
        return nequar({"solve", folder.file("A.mtx", kArray + "2 2\n1\n1\n1\n" + corner)}).out;
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

TEST(ProgramSolve, OutputReplacesAFileWholeOrNotAtAll) {
    const Folder folder;
    const std::string a = folder.file("A.mtx", kArray + "1 1\n4\n");
    const std::string x = folder.file("x.mtx", "what stood here\n");
    ASSERT_EQ(nequar({"solve", a, "-o", x}).status, 0);
    EXPECT_EQ(read_file(x),
              kArray + "% solution of A x = b by nequar, method llt\n1 1\n" + "0.25\n");
    struct stat status {};
    ASSERT_EQ(stat(x.c_str(), &status), 0);
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(status.st_mode & 0777, 0666 & ~mask);

    std::filesystem::create_symlink("x.mtx", folder / "link.mtx");
    ASSERT_EQ(nequar({"solve", a, "-o", folder / "link.mtx", "--float"}).status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.mtx"));
    expect_values(values_of(x), {0.25}, 1e-7);

    ASSERT_EQ(nequar({"solve", a, "-o", a}).status, 0);  // onto its own input
    expect_values(values_of(a), {0.25}, 1e-15);

    for (const std::string& place : {folder / "none/x.mtx", folder.path(), std::string()}) {
        const Answer result = nequar({"solve", a, "-o", place});
        EXPECT_EQ(result.status, 2) << place;
        EXPECT_EQ(result.err.rfind("nequar: ", 0), 0U) << result.err;
    }
    const Answer full = nequar({"solve", a, "-o", "/dev/full"});
    EXPECT_EQ(full.status, 2);
    EXPECT_TRUE(contains(full.err, "No space left")) << full.err;
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"A.mtx", "link.mtx", "x.mtx"}));
}

TEST(ProgramSolve, ExpectComparesWithAKnownSolution) {
    const Folder folder;
    const std::string a = folder.file("A.mtx", kArray + "1 1\n2\n");
    for (const bool right : {true, false}) {
        const std::string x =
            folder.file("x.mtx", kArray + (right ? "1 1\n0.5\n" : "1 1\n0.501\n"));
        const Answer result = nequar({"solve", a, "--expect", x});
        EXPECT_EQ(result.status, right ? 0 : 1);
        EXPECT_TRUE(contains(result.out, right ? "reproduces the known one" : "DIFFERS"))
            << result.out;
    }
}

TEST(ProgramDeterminant, KeepsItsSignAndItsRange) {
    const Folder folder;
    const auto determinant = [&](const std::string& text) {
        const Answer result = nequar({"determinant", folder.file("A.mtx", kArray + text)});
        EXPECT_EQ(result.status, 0) << result.err;
        return result.out;
    };
    EXPECT_EQ(number_after(determinant("2 2\n0\n1\n1\n0\n"), "determinant"), -1);
    EXPECT_NEAR(number_after(determinant("2 2\n1\n3\n2\n4\n"), "determinant"), -2, 1e-15);
    EXPECT_NEAR(number_after(determinant("3 3\n4\n2\n2\n4\n1\n2\n1\n1\n3\n"), "determinant"), -10,
                1e-14);
    EXPECT_EQ(number_after(determinant("2 2\n1\n2\n2\n4\n"), "determinant"), 0);
    // the product leaves the range on the way and comes back
    EXPECT_NEAR(
        number_after(determinant("3 3\n1e-200\n0\n0\n0\n1e-200\n0\n0\n0\n1e300\n"), "determinant") /
            1e-100,
        1, 1e-12);
    EXPECT_TRUE(contains(determinant("2 2\n-1e200\n0\n0\n1e250\n"), "-10^450, beyond the range"));
}

// ---- real systems, where the folder of data is there -------------------------------------------

class ProgramRealSystem : public testing::Test {
protected:
    static Answer solve(const std::string& name, const std::string& method) {
        return nequar(
            {"solve", std::string(NEQUAR_DATA) + "/" + name + ".mtx", "--method", method});
    }
    void SetUp() override {
        if (!std::filesystem::exists(std::string(NEQUAR_DATA) + "/494_bus.mtx"))
            GTEST_SKIP() << "no folder " << NEQUAR_DATA;
    }
};

TEST_F(ProgramRealSystem, CholeskySolvesThePositiveDefiniteOnes) {
    for (const char* name : {"494_bus", "bcsstk01", "bcsstk03", "bcsstk22", "nos4"}) {
        for (const char* method : {"llt", "uut", "auto"}) {
            const Answer result = solve(name, method);
            EXPECT_EQ(result.status, 0) << name << result.err;
            EXPECT_TRUE(contains(result.out,
                                 std::string("method      ") + (method[0] == 'u' ? "uut" : "llt")));
            EXPECT_LT(number_after(result.out, "residual"), 1e-14) << name << " " << method;
            EXPECT_LT(number_after(result.out, "growth"), 1 + 1e-12) << name << " " << method;
        }
    }
}

TEST_F(ProgramRealSystem, AutoSolvesTheUnsymmetricOnesAndKnowsTheirCondition) {
    // with the 2-norm condition that is known of each; 1-norm and 2-norm differ by n at most
    const std::pair<const char*, double> systems[] = {{"b1_ss", 1.97e2},     {"pores_1", 1.81e6},
                                                      {"steam3", 4.99e10},   {"west0067", 1.30e2},
                                                      {"west0479", 3.25e11}, {"gre_343", 1.12e2}};
    for (const auto& [name, condition] : systems) {
        const Answer result = solve(name, "auto");
        EXPECT_EQ(result.status, 0) << name << result.err;
        EXPECT_LT(number_after(result.out, "residual"), 1e-14) << name;
        EXPECT_GT(number_after(result.out, "condition"), condition / 500) << name;
        EXPECT_LT(number_after(result.out, "condition"), condition * 500) << name;
    }
}

TEST_F(ProgramRealSystem, LuWithPivotsBeforeTheUpdateSolvesSomeAndRefusesSome) {
    for (const char* name : {"bcsstk01", "pores_1", "b1_ss"}) {
        const Answer result = solve(name, "lud");
        EXPECT_EQ(result.status, 0) << name << result.err;
        const double growth = number_after(result.out, "growth");
        EXPECT_GE(growth, 1) << name;
        EXPECT_LT(number_after(result.out, "residual"), 1e-16 * growth) << name;
    }
    for (const char* name : {"west0067", "gre_343", "steam3", "karate"}) {
        const Answer result = solve(name, "lud");
        EXPECT_EQ(result.status, 1) << name;
        EXPECT_TRUE(contains(result.err, "Crout: singular") && contains(result.err, "qrd")) << name;
    }
}

}  // namespace
}  // namespace program_test
