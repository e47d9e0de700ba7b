// nequar self-test: the library's own tests of its sparse types, run here.
#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "command.h"
#include "commands/describe.h"
#include "errors.h"
#include "long_step.h"
#include "numbers/stopwatch.h"
#include "numbers/twin.h"

namespace program {
namespace {

struct SelfTestOptions {
    int height = 12, width = 9, repetitions = 3;
};

constexpr double kDensities[] = {0, 0.1, 0.5, 1};
constexpr double kMin = -2, kMax = 3, kConstant = 1.5;

int failures = 0;

// Runs one test at every density and says how it went.
template <class Object, class Test>
void run(const char* type, const char* precision, const char* what, Test test) {
    const std::string name = fmt::format("{}, {}: {}", type, precision, what);
    const LongStep step("testing " + name);
    const Stopwatch watch;
    for (const double density : kDensities) {
        Object object;
        if (test(object, density)) continue;
        ++failures;
        fmt::print("FAILED   {} at density {}\n{}\n", name, density,
                   object.gft_Get_Failure_Trace().c_str());
        return;
    }
    fmt::print("passed   {} ({})\n", name, describe_seconds(watch.seconds()));
}

template <class Real>
void test_all(const SelfTestOptions& o) {
    using Vector = typename Twin<Real>::SparseVector;
    using Matrix = typename Twin<Real>::Sparse;
    using Symmetric = typename Twin<Real>::SparseSymmetric;
    const char* precision = Twin<Real>::precision;
    const Real low = static_cast<Real>(kMin), high = static_cast<Real>(kMax);
    const Real c = static_cast<Real>(kConstant);
    const auto of = [](double density) { return static_cast<Real>(density); };
    const int h = o.height, w = o.width, n = o.height, r = o.repetitions;

    const char* type = "sparse vector";
    run<Vector>(type, precision, "elements", [&](Vector& v, double d) {
        return v.u_toe_Test_Operations_Elementary(n, of(d), low, high, c, r);
    });
    run<Vector>(type, precision, "blocks", [&](Vector& v, double d) {
        return v.u_tob_Test_Operations_for_Blocks(n, of(d), low, high, r);
    });
    run<Vector>(type, precision, "vectors", [&](Vector& v, double d) {
        return v.u_tov_Test_Operations_with_Vectors(n, of(d), low, high, r);
    });

    type = "sparse matrix";
    run<Matrix>(type, precision, "elements", [&](Matrix& m, double d) {
        return m.u_toe_Test_Operations_Elementary(h, w, of(d), low, high, c, r);
    });
    run<Matrix>(type, precision, "columns", [&](Matrix& m, double d) {
        return m.u_toc_Test_Operations_for_Columns(h, w, of(d), low, high, r);
    });
    run<Matrix>(type, precision, "rows", [&](Matrix& m, double d) {
        return m.u_tor_Test_Operations_for_Rows(h, w, of(d), low, high, r);
    });
    run<Matrix>(type, precision, "blocks", [&](Matrix& m, double d) {
        return m.u_tob_Test_Operations_for_Blocks(h, w, of(d), low, high, r);
    });
    run<Matrix>(type, precision, "matrices", [&](Matrix& m, double d) {
        return m.u_tom_Test_Operations_with_Matrices(h, w, of(d), low, high, r);
    });

    type = "sparse symmetric matrix";
    run<Symmetric>(type, precision, "elements", [&](Symmetric& m, double d) {
        return m.u_toe_Test_Operations_Elementary(n, of(d), low, high, c, r);
    });
    run<Symmetric>(type, precision, "columns", [&](Symmetric& m, double d) {
        return m.u_toc_Test_Operations_for_Columns(n, of(d), low, high, r);
    });
    run<Symmetric>(type, precision, "rows", [&](Symmetric& m, double d) {
        return m.u_tor_Test_Operations_for_Rows(n, of(d), low, high, r);
    });
    run<Symmetric>(type, precision, "blocks", [&](Symmetric& m, double d) {
        return m.u_tob_Test_Operations_for_Blocks(n, of(d), low, high, r);
    });
    run<Symmetric>(type, precision, "matrices", [&](Symmetric& m, double d) {
        return m.u_tom_Test_Operations_with_Matrices(n, of(d), low, high, r);
    });
}

void self_test(const SelfTestOptions& options) {
    failures = 0;
    test_all<double>(options);
    test_all<float>(options);
    if (failures > 0) throw Failure(fmt::format("{} self-tests failed", failures));
    fmt::print("All self-tests passed.\n");
}

}  // namespace

Action declare_self_test(CLI::App& arguments) {
    auto options = std::make_shared<SelfTestOptions>();
    arguments.add_option("--height", options->height, "rows of the matrices, order of square ones")
        ->check(CLI::Range(1, 200))
        ->capture_default_str();
    arguments.add_option("--width", options->width, "columns of the matrices")
        ->check(CLI::Range(1, 200))
        ->capture_default_str();
    arguments.add_option("--repetitions", options->repetitions, "of each test, on new matrices")
        ->check(CLI::Range(0, 1000))
        ->capture_default_str();
    return [options] { self_test(*options); };
}

}  // namespace program
