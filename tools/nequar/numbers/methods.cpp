#include "numbers/methods.h"

#include <cmath>
#include <limits>
#include <type_traits>

#include "long_step.h"
#include "numbers/stopwatch.h"
#include "numbers/tolerance.h"

namespace program {
namespace {

// max |a_i|; NaN when there is one.
template <class Real>
double largest_magnitude(const Real* a, std::ptrdiff_t count) {
    double largest = 0;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const double magnitude = std::fabs(static_cast<double>(a[i]));
        if (std::isnan(magnitude)) return magnitude;
        if (magnitude > largest) largest = magnitude;
    }
    return largest;
}

template <class Real>
double largest_magnitude(const typename Twin<Real>::Matrix& a) {
    return largest_magnitude(a.p()[0], static_cast<std::ptrdiff_t>(a.mh()) * a.mw());
}

template <class Solver>
[[noreturn]] void fail(const Solver& solver, const Method& method, const std::string& hint) {
    throw MethodFailed(std::string("the method ") + method.name + " (" + method.equation +
                       ") cannot solve this system:\n" + solver.gft_Get_Failure_Trace().c_str() +
                       (hint.empty() ? "" : "\n" + hint));
}

// Runs solve(b, x) on vectors where there is one right-hand side, on matrices otherwise.
template <class Real, class Solve>
bool solve_columns(const typename Twin<Real>::Matrix& b, Solution<Real>& solution, Solve solve) {
    if (b.mw() != 1) return solve(&b, &solution.x);
    typename Twin<Real>::Vector column, x;
    b.gc_Get_Column(0, 0, b.mh(), &column);
    if (!solve(&column, &x)) return false;
    if (solution.x.c_Create(x.vs(), 1) == nullptr) return false;
    for (int i = 0; i < x.vs(); ++i) solution.x[i][0] = x[i];
    return true;
}

// Whether a pivot was exactly zero; memory that cannot be had ends a factorization as well.
template <class Solver>
bool met_zero_pivot(const Solver& solver) {
    return std::string(solver.gft_Get_Failure_Trace().c_str()).find(": singular") !=
           std::string::npos;
}

// P A = L U with the factors of `factor(solver, a, l, u, perm, interchanges)`; the hint is for a
// zero pivot. growth = max |U| / max |A|
template <class Real, class Factor>
void solve_by_lu(const typename Twin<Real>::Matrix& a, const typename Twin<Real>::Matrix& b,
                 Solution<Real>& solution, Factor factor, const std::string& hint) {
    typename Twin<Real>::Solver solver;
    typename Twin<Real>::Lower l;
    typename Twin<Real>::Upper u;
    CNqVectorInt perm;
    int interchanges = 0;
    const LongStep step("factoring P A = L U");
    const Stopwatch factoring;
    if (!factor(solver, &a, &l, &u, &perm, interchanges))
        fail(solver, *solution.method, met_zero_pivot(solver) ? hint : "");
    solution.factor_seconds = factoring.seconds();
    solution.growth = largest_magnitude(u.p(), u.vs()) / largest_magnitude<Real>(a);
    solution.growth_is = "max|U| / max|A|";
    const Stopwatch solving;
    if (!solve_columns<Real>(b, solution, [&](const auto* right, auto* x) {
            return solver.u_slu_Solve_based_on_LUD(&l, &u, &perm, right, x);
        }))
        fail(solver, *solution.method, "");
    solution.solve_seconds = solving.seconds();
}

template <class Real>
void solve_by_lud(const typename Twin<Real>::Matrix& a, const typename Twin<Real>::Matrix& b,
                  Solution<Real>& solution) {
    solve_by_lu<Real>(
        a, b, solution,
        [](auto& solver, auto* of, auto* l, auto* u, auto* perm, int& interchanges) {
            return solver.dluc_Decompose_into_LU_matrices_by_Crout(of, l, u, perm, interchanges);
        },
        "An exact zero pivot of this rule does not prove that the matrix is singular: partial "
        "pivoting (--method lup) or an orthogonal factorization (qrd) may solve it.");
}

template <class Real>
void solve_by_lup(const typename Twin<Real>::Matrix& a, const typename Twin<Real>::Matrix& b,
                  Solution<Real>& solution) {
    solve_by_lu<Real>(
        a, b, solution,
        [](auto& solver, auto* of, auto* l, auto* u, auto* perm, int& interchanges) {
            return solver.dlup_Decompose_into_LU_matrices_with_Partial_pivoting(of, l, u, perm,
                                                                                interchanges);
        },
        "The matrix is singular to working precision.");
}

// growth = max |factor|^2 / max |A|. The squares of a row of the factor sum up to the diagonal
// element of A, so it is at most one.
template <class Real, class Factor, class SolveByFactor>
void solve_by_cholesky(const typename Twin<Real>::Matrix& a, const typename Twin<Real>::Matrix& b,
                       Solution<Real>& solution, SolveByFactor solve_by_factor) {
    typename Twin<Real>::Solver solver;
    typename Twin<Real>::Symmetric packed;
    Factor factor;
    const LongStep step(std::string("factoring ") + solution.method->equation);
    const Stopwatch factoring;
    packed.i_Import(&a);
    if (packed.mh_Matrix_Height() != a.mh())
        throw Failure("there is not enough memory for the factorization");
    if (!solver.dch_Decompose_matrix_by_Cholesky_algorithm(&packed, &factor))
        fail(solver, *solution.method, "");
    solution.factor_seconds = factoring.seconds();
    const double largest = largest_magnitude(factor.p(), factor.vs());
    solution.growth = largest / largest_magnitude<Real>(a) * largest;
    solution.growth_is = "max|factor|^2 / max|A|";
    const Stopwatch solving;
    if (!solve_columns<Real>(b, solution, [&](const auto* right, auto* x) {
            return solve_by_factor(solver, &factor, right, x);
        }))
        fail(solver, *solution.method, "");
    solution.solve_seconds = solving.seconds();
}

template <class Real>
void solve_by_llt(const typename Twin<Real>::Matrix& a, const typename Twin<Real>::Matrix& b,
                  Solution<Real>& solution) {
    solve_by_cholesky<Real, typename Twin<Real>::Lower>(
        a, b, solution, [](auto& solver, const auto* factor, const auto* right, auto* x) {
            return solver.u_sll_Solve_based_on_LLD(factor, right, x);
        });
}

template <class Real>
void solve_by_uut(const typename Twin<Real>::Matrix& a, const typename Twin<Real>::Matrix& b,
                  Solution<Real>& solution) {
    solve_by_cholesky<Real, typename Twin<Real>::Upper>(
        a, b, solution, [](auto& solver, const auto* factor, const auto* right, auto* x) {
            return solver.u_suu_Solve_based_on_UUD(factor, right, x);
        });
}

// The methods that hand out no factors: one operation of the library does all.
struct ByGaussJordan {
    static constexpr const char* step = "eliminating by Gauss-Jordan";
    template <class S, class A, class B>
    static bool solve(const S& solver, const A* a, const B* b, B* x) {
        return solver.sgj_Solve_based_on_GJE(a, b, x);
    }
};
struct ByQr {
    static constexpr const char* step = "factoring A = Q R and solving";
    template <class S, class A, class B>
    static bool solve(const S& solver, const A* a, const B* b, B* x) {
        return solver.sqr_Solve_based_on_QRD(a, b, x);
    }
};
struct ByQl {
    static constexpr const char* step = "factoring A = Q L and solving";
    template <class S, class A, class B>
    static bool solve(const S& solver, const A* a, const B* b, B* x) {
        return solver.sql_Solve_based_on_QLD(a, b, x);
    }
};
struct ByRq {
    static constexpr const char* step = "factoring A = R Q and solving";
    template <class S, class A, class B>
    static bool solve(const S& solver, const A* a, const B* b, B* x) {
        return solver.srq_Solve_based_on_RQD(a, b, x);
    }
};
struct ByLq {
    static constexpr const char* step = "factoring A = L Q and solving";
    template <class S, class A, class B>
    static bool solve(const S& solver, const A* a, const B* b, B* x) {
        return solver.slq_Solve_based_on_LQD(a, b, x);
    }
};

struct BySvd {
    static constexpr const char* step = "decomposing A = U S V' and solving";
    template <class S, class A, class B>
    static bool solve(const S& solver, const A* a, const B* b, B* x) {
        using Real = std::remove_cvref_t<decltype((*a)[0][0])>;
        return solver.ssv_Solve_based_on_SVD(
            a, static_cast<Real>(rounding_tolerance<Real>(a->mh(), a->mw())), b, x);
    }
};
struct ByEigenvalues {
    static constexpr const char* step = "decomposing A = V D V' and solving";
    template <class S, class A, class B>
    static bool solve(const S& solver, const A* a, const B* b, B* x) {
        using Real = std::remove_cvref_t<decltype((*a)[0][0])>;
        typename Twin<Real>::Symmetric packed;
        packed.i_Import(a);
        return solver.sev_Solve_based_on_EVD(
            &packed, static_cast<Real>(rounding_tolerance<Real>(a->mh(), a->mw())), b, x);
    }
};

template <class Real, class Way>
void solve_in_one(const typename Twin<Real>::Matrix& a, const typename Twin<Real>::Matrix& b,
                  Solution<Real>& solution) {
    const typename Twin<Real>::Solver solver;
    const LongStep step(Way::step);
    const Stopwatch watch;
    if (!solve_columns<Real>(b, solution, [&](const auto* right, auto* x) {
            return Way::solve(solver, &a, right, x);
        }))
        fail(solver, *solution.method, "");
    solution.solve_seconds = watch.seconds();
}

constexpr Method kMethods[] = {
    {"lup", "P A = L U", "LU with partial pivoting, for any regular matrix", false,
     solve_by_lup<double>, solve_by_lup<float>},
    {"lud", "P A = L U",
     "LU by Crout's scheme, which chooses each pivot before its column is updated: it refuses "
     "many regular matrices, and its factors can grow without bound",
     false, solve_by_lud<double>, solve_by_lud<float>},
    {"llt", "A = L L'", "Cholesky with a lower factor, for symmetric positive definite matrices",
     true, solve_by_llt<double>, solve_by_llt<float>},
    {"uut", "A = U U'", "Cholesky with an upper factor, for symmetric positive definite matrices",
     true, solve_by_uut<double>, solve_by_uut<float>},
    {"gje", "Gauss-Jordan",
     "elimination with full pivot search, which scales by the magnitude of each pivot: one "
     "negative pivot makes the solution wrong",
     false, solve_in_one<double, ByGaussJordan>, solve_in_one<float, ByGaussJordan>},
    {"qrd", "A = Q R",
     "Householder QR, for any regular matrix: growth never happens, at twice the "
     "cost of LU",
     false, solve_in_one<double, ByQr>, solve_in_one<float, ByQr>},
    {"qld", "A = Q L", "Householder QL, as safe", false, solve_in_one<double, ByQl>,
     solve_in_one<float, ByQl>},
    {"rqd", "A = R Q", "Householder RQ, as safe", false, solve_in_one<double, ByRq>,
     solve_in_one<float, ByRq>},
    {"lqd", "A = L Q", "Householder LQ, as safe", false, solve_in_one<double, ByLq>,
     solve_in_one<float, ByLq>},
    {"svd", "A = U S V'", "singular values, which tell how near to singular the matrix is", false,
     solve_in_one<double, BySvd>, solve_in_one<float, BySvd>},
    {"evd", "A = V D V'", "eigenvalues, for symmetric matrices", true,
     solve_in_one<double, ByEigenvalues>, solve_in_one<float, ByEigenvalues>},
};

// The library's numbers of its methods.
constexpr const char* kByNumber[] = {"gje", "lud", "qrd", "qld", "rqd",
                                     "lqd", "svd", "llt", "uut", "evd"};

template <class Real>
void run(const Method& method, const typename Twin<Real>::Matrix& a,
         const typename Twin<Real>::Matrix& b, Solution<Real>& solution) {
    solution.method = &method;
    if constexpr (std::is_same_v<Real, float>)
        method.in_float(a, b, solution);
    else
        method.in_double(a, b, solution);
}

template <class Real>
bool has_positive_diagonal(const typename Twin<Real>::Matrix& a) {
    for (int i = 0; i < a.mh(); ++i)
        if (!(a[i][i] > 0)) return false;
    return true;
}

template <class Real>
void solve_by_auto(const typename Twin<Real>::Matrix& a, const typename Twin<Real>::Matrix& b,
                   Solution<Real>& solution) {
    const typename Twin<Real>::Solver solver;
    const bool symmetric = solver.is_Is_Symmetric(&a);
    if (symmetric && has_positive_diagonal<Real>(a)) {
        try {
            run(*find_method("llt"), a, b, solution);
            solution.reason = "the matrix is symmetric and positive definite";
            return;
        } catch (const MethodFailed&) {
            // Not positive definite, which only the attempt can tell.
        }
    }
    solution.reason = symmetric ? "the matrix is symmetric but not positive definite"
                                : "the matrix is not symmetric";
    run(*find_method("lup"), a, b, solution);
}

}  // namespace

std::span<const Method> method_table() {
    return kMethods;
}

const Method* find_method(const std::string& name) {
    const bool is_number = name.size() == 1 && name[0] >= '0' && name[0] <= '9';
    const std::string word = is_number ? kByNumber[name[0] - '0'] : name;
    for (const Method& method : kMethods)
        if (word == method.name) return &method;
    return nullptr;
}

template <class Real>
Solution<Real> solve_by(const std::string& name, const typename Twin<Real>::Matrix& a,
                        const typename Twin<Real>::Matrix& b) {
    Solution<Real> solution;
    if (name == "auto")
        solve_by_auto<Real>(a, b, solution);
    else
        run<Real>(*find_method(name), a, b, solution);
    return solution;
}

template <class Real>
double estimate_condition(const typename Twin<Real>::Matrix& a) {
    const LongStep step("estimating the condition");
    const typename Twin<Real>::Solver solver;
    Real condition = 0;
    if (!solver.ecn_Estimate_Condition_Number(&a, condition))
        return std::numeric_limits<double>::infinity();
    return static_cast<double>(condition);
}

template Solution<double> solve_by<double>(const std::string&, const CNqMatrix&, const CNqMatrix&);
template Solution<float> solve_by<float>(const std::string&, const CNqMatrixFloat&,
                                         const CNqMatrixFloat&);
template double estimate_condition<double>(const CNqMatrix&);
template double estimate_condition<float>(const CNqMatrixFloat&);

}  // namespace program
