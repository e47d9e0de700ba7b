// nequar qr, ql, rq, lq, cod, hessenberg: the factors that they hand out rebuild the matrix.
#include "program/run_program.h"
#include "support/matrix_gallery.h"
#include "support/residual.h"

namespace program_test {
namespace {

using namespace nequar::test;
using ProgramDecompositions = InFolder;

// A square matrix of order 4 from an array file, where it stands column by column.
CNqMatrix read_square(const std::string& path) {
    const std::vector<double> values = values_of(path);
    EXPECT_EQ(values.size(), 16U) << path;
    return matrix_of<double>(4, 4, [&](int i, int j) { return values.at(std::size_t(4 * j + i)); });
}

TEST_F(ProgramDecompositions, FactorsMultiplyToTheMatrix) {
    const std::string file =
        folder.file("A.mtx", array_of(4, 4, [](int k) { return (k * k * 5 + k) % 19 - 7; }));
    const auto a = read_square(file);
    struct Form {
        Words command, factors;  // a trailing ' multiplies by the transpose
    };
    for (const Form& form : {Form{{"qr"}, {"Q", "R"}},
                             {{"ql"}, {"Q", "L"}},
                             {{"rq"}, {"R", "Q"}},
                             {{"lq"}, {"L", "Q"}},
                             {{"qr", "--pivot"}, {"Q", "R", "P'"}},
                             {{"cod"}, {"Q", "T", "Z'"}},
                             {{"hessenberg"}, {"Q", "H", "Q'"}}}) {
        const Words command = joined(form.command, {file, "-o", folder / "f"});
        in_both_precisions(command, 1e-13, [&](const std::string& out, double bound) {
            EXPECT_LT(number_after(out, "residual"), bound);
            EXPECT_LT(number_after(out, "orthogonal"), bound);
            auto rebuilt = identity_of<double>(4);
            for (const std::string& name : form.factors) {
                auto factor = read_square(folder / ("f_" + name.substr(0, 1) + ".mtx"));
                if (name.size() == 2) factor = transposed(factor);
                rebuilt = product(rebuilt, factor);
            }
            EXPECT_LT(largest_difference(rebuilt, a), 20 * bound);
        });
    }
}

TEST_F(ProgramDecompositions, ShapesThatAFormRefusesAreSaidWithTheLine) {
    const std::string wide = folder.file("W.mtx", kArray + "2 3\n1\n2\n3\n4\n5\n6\n");
    for (const Words& command : {Words{"qr", "--pivot"}, {"cod"}, {"hessenberg"}})
        expect_failure(joined(command, {wide, "-o", folder / "f"}), 2, "W.mtx:2: " + command[0]);
    output_of({"qr", wide});
    expect_failure({"qr", wide, "-o", folder / "missing/f"}, 2, "missing/f");
    EXPECT_EQ(folder.names(), Words{"W.mtx"});
}

}  // namespace
}  // namespace program_test
