// nequar qr|ql|rq|lq|cod|hessenberg A.mtx: orthogonal decompositions, judged and handed out.
#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "commands/describe.h"
#include "commands/factor_report.h"
#include "errors.h"
#include "long_step.h"
#include "numbers/dense.h"
#include "numbers/stopwatch.h"

namespace program {
namespace {

template <class Real>
using Matrix = typename Twin<Real>::Matrix;

template <class Real>
Matrix<Real> product_of(const Matrix<Real>& a, const Matrix<Real>& b) {
    const typename Twin<Real>::Algebra algebra;
    Matrix<Real> product;
    algebra.mmm_Multiply_Matrix_Matrix(&a, &b, &product);
    return product;
}

template <class Real>
Matrix<Real> product_with_transpose(const Matrix<Real>& a, const Matrix<Real>& b) {
    const typename Twin<Real>::Algebra algebra;
    Matrix<Real> product;
    algebra.mmt_Multiply_Matrix_Tmatrix(&a, &b, &product);
    return product;
}

void print_rank(int rank, int width) {
    print_line("rank", fmt::format("{} by the falling 1-norms of the remaining columns", rank));
    if (rank < width)
        print_warning(
            "this rank misjudges often, and columns beyond it are not reduced: where it is too low "
            "the factors do not rebuild A; `nequar rank` is reliable");
}

// A product of Q and a triangle, in the order of the equation.
struct TwoFactors {
    const char *equation, *triangle;
    bool q_first;
};

// decomposition(solver, &a, &q, &triangle) is the library's.
template <class Real, class Triangle, class Decomposition>
void decompose(const FactorOptions& options, const TwoFactors& form,
               const Decomposition& decomposition) {
    require_place_for(options, {"Q", form.triangle});
    Matrix<Real> a, q, dense;
    read_dense<Real>(options.a, 6, a);
    const typename Twin<Real>::Solver solver;
    Triangle triangle;
    double seconds = 0;
    {
        const LongStep step(std::string("decomposing ") + form.equation);
        const Stopwatch watch;
        if (!decomposition(solver, &a, &q, &triangle))
            fail(std::string("the decomposition ") + form.equation, solver);
        seconds = watch.seconds();
    }
    triangle.e_Export(&dense, true);
    report_factors<Real>(options, form.equation, a,
                         form.q_first ? product_of<Real>(q, dense) : product_of<Real>(dense, q),
                         {{"Q", q, true}, {form.triangle, dense}}, seconds);
}

template <class Real>
void decompose_qr(const FactorOptions& options) {
    decompose<Real, typename Twin<Real>::Upper>(
        options, {"A = Q R", "R", true}, [](const auto& solver, auto* a, auto* q, auto* r) {
            return solver.dqrh_Decompose_into_QR_matrices_based_on_Householder(a, q, r);
        });
}
template <class Real>
void decompose_ql(const FactorOptions& options) {
    decompose<Real, typename Twin<Real>::Lower>(
        options, {"A = Q L", "L", true}, [](const auto& solver, auto* a, auto* q, auto* l) {
            return solver.dqlh_Decompose_into_QL_matrices_based_on_Householder(a, q, l);
        });
}
template <class Real>
void decompose_rq(const FactorOptions& options) {
    decompose<Real, typename Twin<Real>::Upper>(
        options, {"A = R Q", "R", false}, [](const auto& solver, auto* a, auto* q, auto* r) {
            return solver.drqh_Decompose_into_RQ_matrices_based_on_Householder(a, r, q);
        });
}
template <class Real>
void decompose_lq(const FactorOptions& options) {
    decompose<Real, typename Twin<Real>::Lower>(
        options, {"A = L Q", "L", false}, [](const auto& solver, auto* a, auto* q, auto* l) {
            return solver.dlqh_Decompose_into_LQ_matrices_based_on_Householder(a, l, q);
        });
}

// A = Q R P': column j of R belongs to column perm[j] of A.
template <class Real>
void decompose_with_pivoting(const FactorOptions& options) {
    require_place_for(options, {"Q", "R", "P"});
    Matrix<Real> a, q, r, r_in_place, p;
    const FileMatrix<Real> file = read_dense<Real>(options.a, 6, a);
    if (a.mh() < a.mw())
        throw InputError(file.path, file.size_line,
                         fmt::format("qr --pivot needs at least as many rows as columns, this is "
                                     "{} x {}",
                                     a.mh(), a.mw()));
    const typename Twin<Real>::Solver solver;
    typename Twin<Real>::Upper triangle;
    CNqVectorInt perm;
    int interchanges = 0, rank = 0;
    double seconds = 0;
    {
        const LongStep step("decomposing A P = Q R");
        const Stopwatch watch;
        if (!solver.dqrc_Decompose_into_QR_matrices_with_Column_pivoting(&a, &q, &triangle, &perm,
                                                                         interchanges, rank))
            fail("the decomposition A P = Q R", solver);
        seconds = watch.seconds();
    }
    triangle.e_Export(&r, true);
    if (r_in_place.c_Create(r.mh(), r.mw()) == nullptr ||
        p.c_Create(a.mw(), a.mw(), Real(0)) == nullptr)
        throw Failure("there is not enough memory for the factors");
    for (int j = 0; j < perm.vs(); ++j) {
        p[perm[j]][j] = 1;
        for (int i = 0; i < r.mh(); ++i) r_in_place[i][perm[j]] = r[i][j];
    }
    print_rank(rank, a.mw());
    report_factors<Real>(options, "A = Q R P'", a, product_of<Real>(q, r_in_place),
                         {{"Q", q, true}, {"R", r}, {"P", p}}, seconds);
}

// A = Q [T 0; 0 0] Z'
template <class Real>
void decompose_completely(const FactorOptions& options) {
    require_place_for(options, {"Q", "T", "Z"});
    Matrix<Real> a, q, t, whole, z;
    const FileMatrix<Real> file = read_dense<Real>(options.a, 6, a);
    if (a.mh() < a.mw())
        throw InputError(file.path, file.size_line,
                         fmt::format("cod needs at least as many rows as columns, this is {} x {}",
                                     a.mh(), a.mw()));
    const typename Twin<Real>::Solver solver;
    typename Twin<Real>::Lower triangle;
    int rank = 0;
    double seconds = 0;
    {
        const LongStep step("decomposing A = Q T Z'");
        const Stopwatch watch;
        if (!solver.dco_Decompose_matrix_Complete_Orthogonal_algorithm(&a, &q, &triangle, &z, rank))
            fail("the complete orthogonal decomposition", solver);
        seconds = watch.seconds();
    }
    triangle.e_Export(&t, true);
    if (whole.c_Create(a.mh(), a.mw(), Real(0)) == nullptr)
        throw Failure("there is not enough memory for the factors");
    for (int i = 0; i < t.mh(); ++i)
        for (int j = 0; j < t.mw(); ++j) whole[i][j] = t[i][j];
    print_rank(rank, a.mw());
    report_factors<Real>(options, "A = Q [T 0; 0 0] Z'", a,
                         product_with_transpose<Real>(product_of<Real>(q, whole), z),
                         {{"Q", q, true}, {"T", t}, {"Z", z, true}}, seconds);
}

// A = Q H Q'
template <class Real>
void reduce_to_hessenberg(const FactorOptions& options) {
    require_place_for(options, {"Q", "H"});
    Matrix<Real> a, q, h;
    require_square(read_dense<Real>(options.a, 6, a), "hessenberg");
    const typename Twin<Real>::Solver solver;
    double seconds = 0;
    {
        const LongStep step("reducing A = Q H Q'");
        const Stopwatch watch;
        if (!solver.dhr_Do_Hessenberg_Reduction(&a, &h, &q)) fail("the reduction", solver);
        seconds = watch.seconds();
    }
    report_factors<Real>(options, "A = Q H Q'", a,
                         product_with_transpose<Real>(product_of<Real>(q, h), q),
                         {{"Q", q, true}, {"H", h}}, seconds);
}

using Run = void (*)(const FactorOptions&);

Action declare(CLI::App& arguments, Run in_double, Run in_float) {
    auto options = std::make_shared<FactorOptions>();
    declare_factor_options(arguments, *options);
    return [=] { options->in_float ? in_float(*options) : in_double(*options); };
}

}  // namespace

Action declare_qr(CLI::App& arguments) {
    auto options = std::make_shared<FactorOptions>();
    auto pivot = std::make_shared<bool>(false);
    declare_factor_options(arguments, *options);
    arguments.add_flag("--pivot", *pivot,
                       "interchange columns, largest remaining 1-norm first: A = Q R P'");
    return [=] {
        if (*pivot)
            options->in_float ? decompose_with_pivoting<float>(*options)
                              : decompose_with_pivoting<double>(*options);
        else
            options->in_float ? decompose_qr<float>(*options) : decompose_qr<double>(*options);
    };
}

Action declare_ql(CLI::App& arguments) {
    return declare(arguments, decompose_ql<double>, decompose_ql<float>);
}
Action declare_rq(CLI::App& arguments) {
    return declare(arguments, decompose_rq<double>, decompose_rq<float>);
}
Action declare_lq(CLI::App& arguments) {
    return declare(arguments, decompose_lq<double>, decompose_lq<float>);
}
Action declare_cod(CLI::App& arguments) {
    return declare(arguments, decompose_completely<double>, decompose_completely<float>);
}
Action declare_hessenberg(CLI::App& arguments) {
    return declare(arguments, reduce_to_hessenberg<double>, reduce_to_hessenberg<float>);
}

}  // namespace program
