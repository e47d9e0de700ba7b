// nequar qr, ql, rq, lq, cod, hessenberg: the factors that they hand out rebuild the matrix.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "program/run_program.h"

namespace program_test {
namespace {

// Square, its columns one after another, as array files hold it.
struct Square {
    std::size_t n = 0;
    std::vector<double> values = std::vector<double>(n * n);
    double& at(std::size_t row, std::size_t column) { return values[column * n + row]; }
};

Square product(Square a, Square b) {
    Square c{a.n};
    for (std::size_t j = 0; j < a.n; ++j)
        for (std::size_t i = 0; i < a.n; ++i)
            for (std::size_t k = 0; k < a.n; ++k) c.at(i, j) += a.at(i, k) * b.at(k, j);
    return c;
}

Square transpose(Square a) {
    Square t{a.n};
    for (std::size_t j = 0; j < a.n; ++j)
        for (std::size_t i = 0; i < a.n; ++i) t.at(j, i) = a.at(i, j);
    return t;
}

TEST(ProgramDecompositions, FactorsMultiplyToTheMatrix) {
    const Folder folder;
    constexpr int n = 4;
    std::string text = kArray + "4 4\n";
    std::vector<double> a;
    for (int k = 0; k < n * n; ++k) {
        a.push_back((k * k * 7 + 3 * k) % 11 - 4);
        text += std::to_string(a.back()) + "\n";
    }
    const std::string file = folder.file("A.mtx", text);
    const auto factor = [&](const char* name) {
        return values_of(folder / ("f_" + std::string(name) + ".mtx"));
    };
    struct Form {
        std::vector<std::string> command, factors;  // a trailing ' multiplies by the transpose
    };
    const Form forms[] = {{{"qr"}, {"Q", "R"}},
                          {{"ql"}, {"Q", "L"}},
                          {{"rq"}, {"R", "Q"}},
                          {{"lq"}, {"L", "Q"}},
                          {{"qr", "--pivot"}, {"Q", "R", "P'"}},
                          {{"cod"}, {"Q", "T", "Z'"}},
                          {{"hessenberg"}, {"Q", "H", "Q'"}}};
    for (const Form& form : forms) {
        for (const bool in_float : {false, true}) {
            SCOPED_TRACE(form.command[0] + (in_float ? " in float" : ""));
            std::vector<std::string> arguments = form.command;
            arguments.insert(arguments.end(), {file, "-o", folder / "f"});
            if (in_float) arguments.push_back("--float");
            const Answer result = nequar(arguments);
            ASSERT_EQ(result.status, 0) << result.err;
            const double bound = in_float ? 1e-5 : 1e-13;
            EXPECT_LT(number_after(result.out, "residual"), bound);
            EXPECT_LT(number_after(result.out, "orthogonal"), bound);
            Square rebuilt;
            for (const std::string& name : form.factors) {
                Square next{n, factor(std::string(1, name[0]).c_str())};
                ASSERT_EQ(next.values.size(), a.size()) << name;
                if (name.size() == 2) next = transpose(next);
                rebuilt = rebuilt.n == 0 ? next : product(rebuilt, next);
            }
            for (std::size_t k = 0; k < a.size(); ++k)
                EXPECT_LT(std::fabs(rebuilt.values[k] - a[k]), 20 * bound) << "element " << k;
        }
    }
}

TEST(ProgramDecompositions, ShapesThatAFormRefusesAreSaidWithTheLine) {
    const Folder folder;
    const std::string wide = folder.file("W.mtx", kArray + "2 3\n1\n2\n3\n4\n5\n6\n");
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"qr", "--pivot"}, {"cod"}, {"hessenberg"}}) {
        std::vector<std::string> arguments = command;
        arguments.insert(arguments.end(), {wide, "-o", folder / "f"});
        const Answer result = nequar(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_TRUE(contains(result.err, "W.mtx:2: " + command[0])) << result.err;
    }
    EXPECT_EQ(nequar({"qr", wide}).status, 0);
    EXPECT_EQ(nequar({"qr", wide, "-o", folder / "missing/f"}).status, 2);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"W.mtx"});
}

}  // namespace
}  // namespace program_test
