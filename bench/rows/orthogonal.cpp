// Orthogonal factorizations, in place with everybody's copy counted, and what is done with
// triangles.
//
//   4/3 n^3 for a factor, 4/3 n^3 more for Q;  2 n^2 (m - n/3) for a tall one;  10/3 n^3 + 4/3 n^3
//   for Hessenberg;  n^2 k for a triangular solve;  n^3 / 3 for the triangle's inverse
#include "peers/orthogonal.h"

#include <limits>
#include <memory>

#include "rows.h"
#include "rows/twin.h"

namespace bench {
namespace {

constexpr double kWrong = std::numeric_limits<double>::infinity();
constexpr Size kTall = 10000;

template <class Real>
struct State {
    Problem<Real> problem, right;
    typename Twin<Real>::Matrix a, b, work, q;
    typename Twin<Real>::Vector b1, x1;
    typename Twin<Real>::Solver solver;
    typename Twin<Real>::TriangularAlgebra triangles;
    CNqVectorInt perm;
    int interchanges = 0, rank = 0;
    bool good = false;

    State(Problem<Real> of, Problem<Real> of_right)
        : problem(std::move(of)),
          right(std::move(of_right)),
          a(matrix_of(problem)),
          b(matrix_of(right)),
          b1(vector_of(right)) {}
};

template <class Real>
std::shared_ptr<State<Real>> make_state(Problem<Real> a, Size right_sides) {
    Problem<Real> right = random_matrix<Real>(a.height, right_sides, 5);
    return std::make_shared<State<Real>>(std::move(a), std::move(right));
}

template <class Real>
Problem<Real> matrix_in_rows(std::vector<Real> rows, Size height, Size width) {
    Problem<Real> a(height, width);
    a.rows = std::move(rows);
    return a;
}

template <class Real>
double error_of_factors(Form form, const Problem<Real>& a, Factors<Real> factors) {
    const Size m = a.height, n = a.width;
    const bool is_lower = form == Form::ql || form == Form::lq;
    const Size band = form == Form::hessenberg ? 1 : 0;
    for (Size i = 0; i < m; ++i)
        for (Size j = 0; j < n; ++j)
            if (is_lower ? j > i : i > j + band)
                factors.triangle[static_cast<std::size_t>(i * n + j)] = 0;
    if (factors.q.empty()) return error_of_root(a, factors.triangle);
    const Problem<Real> q = matrix_in_rows(factors.q, m, m);
    const Problem<Real> t = matrix_in_rows(factors.triangle, m, n);
    if (form == Form::hessenberg) return error_of_similarity(a, q.rows, t.rows);
    if (form == Form::rq || form == Form::lq) return error_of_product(t, false, q, false, a.rows);
    Problem<Real> permuted = a;
    for (std::size_t k = 0; k < factors.perm.size(); ++k)
        for (Size i = 0; i < m; ++i)
            permuted.rows[static_cast<std::size_t>(i * n) + k] =
                a.rows[static_cast<std::size_t>(i * n + factors.perm[k])];
    return error_of_product(q, false, t, false, permuted.rows);
}

// Ours is factor(state, Q or null).
template <class Real, class Factor>
Case make_factor(Form form, bool with_q, Problem<Real> problem, double flops, Factor factor) {
    const auto s = make_state(std::move(problem), 1);
    Case one{flops, {}};
    const auto run = [s, factor, with_q] {
        s->work.cp_Copy(&s->a);
        s->good = factor(*s, with_q ? &s->q : nullptr);
    };
    const auto error = [s, form, with_q] {
        Factors<Real> factors{rows_of(s->work), {}, {}};
        if (with_q) factors.q = rows_of(s->q);
        if (form == Form::pivoted) factors.perm.assign(s->perm.p(), s->perm.p() + s->perm.vs());
        return s->good ? error_of_factors(form, s->problem, factors) : kWrong;
    };
    one.contenders.push_back({Who::nequar, run, error});
    for (const auto& [who, peer] : orthogonal_peers<Real>()) {
        const FactorTask<Real> task = peer->factor(form, with_q, s->problem);
        if (!task.run) continue;
        one.contenders.push_back({who, task.run, [s, form, task] {
                                      return error_of_factors(form, s->problem, task.result());
                                  }});
    }
    return one;
}

template <class Real>
Case make_form(Form form, bool with_q, Size n,
               bool (Twin<Real>::Solver::*in_place)(typename Twin<Real>::Matrix*,
                                                    typename Twin<Real>::Matrix*) const) {
    const double cube = static_cast<double>(n) * static_cast<double>(n) * static_cast<double>(n);
    const double flops = (form == Form::hessenberg ? 10.0 : 4.0) / 3 + (with_q ? 4.0 / 3 : 0);
    return make_factor(form, with_q, random_matrix<Real>(n, n, 3), flops * cube,
                       [in_place](State<Real>& s, typename Twin<Real>::Matrix* q) {
                           return (s.solver.*in_place)(&s.work, q);
                       });
}

// Ours is run(state) with its result in x1, or with more right-hand sides in work; the peers'
// member is the operation that does the same.
template <class Real, class Run, class TaskOf>
Case make_solve(const std::shared_ptr<State<Real>>& s, double flops, Run run, TaskOf task_of) {
    Case one{flops, {}};
    const auto error = [s](const std::vector<Real>& x) {
        return error_of_solution(s->problem, x, s->right.rows, s->right.width);
    };
    one.contenders.push_back(
        {Who::nequar, [s, run] { s->good = run(*s); },
         [s, error] {
             if (!s->good) return kWrong;
             return error(s->right.width == 1 ? std::vector<Real>(s->x1.p(), s->x1.p() + s->x1.vs())
                                              : rows_of(s->work));
         }});
    for (const auto& [who, peer] : orthogonal_peers<Real>()) {
        const PeerTask<Real> task = task_of(*peer);
        one.contenders.push_back(
            {who, task.run, [task, error] { return error(task.result().rows); }});
    }
    return one;
}

// Lower, its diagonal dominant.
template <class Real>
Problem<Real> triangle(Size n) {
    Problem<Real> t = random_matrix<Real>(n, n, 7);
    for (Size i = 0; i < n; ++i)
        for (Size j = i; j < n; ++j)
            t.rows[static_cast<std::size_t>(i * n + j)] = i == j ? static_cast<Real>(n) : Real(0);
    t.columns_from_rows();
    return t;
}

template <class Real>
Case make_triangular_solve(Size size, Size k) {
    const auto s = make_state(triangle<Real>(size), k);
    const auto n = static_cast<double>(size);
    return make_solve(
        s, n * n * static_cast<double>(k),
        [k](State<Real>& of) {
            return k == 1 ? of.triangles.slet_Solve_Linear_Equation_for_Triangular_matrix(
                                true, &of.a, &of.b1, &of.x1)
                          : of.triangles.slet_Solve_Linear_Equation_for_Triangular_matrix(
                                true, &of.a, &of.b, &of.work);
        },
        [&](const OrthogonalPeer<Real>& peer) {
            return peer.solve_triangle(s->problem, s->right);
        });
}

}  // namespace

#define NEQUAR_FORM_ROW(make, form, with_q, method)                                 \
    template <class Real>                                                           \
    Case make(Size n) {                                                             \
        return make_form<Real>(Form::form, with_q, n, &Twin<Real>::Solver::method); \
    }                                                                               \
    template Case make<double>(Size);                                               \
    template Case make<float>(Size);
NEQUAR_FORM_ROW(make_qr_with_q, qr, true, u_dqrh_Decompose_into_QR_matrices_based_on_Householder)
NEQUAR_FORM_ROW(make_qr, qr, false, u_dqrh_Decompose_into_QR_matrices_based_on_Householder)
NEQUAR_FORM_ROW(make_ql, ql, true, u_dqlh_Decompose_into_QL_matrices_based_on_Householder)
NEQUAR_FORM_ROW(make_rq, rq, true, u_drqh_Decompose_into_RQ_matrices_based_on_Householder)
NEQUAR_FORM_ROW(make_lq, lq, true, u_dlqh_Decompose_into_LQ_matrices_based_on_Householder)
NEQUAR_FORM_ROW(make_hessenberg, hessenberg, true, u_dhr_Do_Hessenberg_Reduction)
#undef NEQUAR_FORM_ROW

template <class Real>
Case make_tall_qr(Size size) {
    const Size width = size < kTall ? size : kTall;
    const auto n = static_cast<double>(width);
    return make_factor(Form::qr, false, random_matrix<Real>(kTall, width, 3),
                       2 * n * n * (static_cast<double>(kTall) - n / 3),
                       [](State<Real>& s, typename Twin<Real>::Matrix* q) {
                           return s.solver.u_dqrh_Decompose_into_QR_matrices_based_on_Householder(
                               &s.work, q);
                       });
}

// The columns' diagonal dominates, so that the rule of pivots finds no column used up.
template <class Real>
Case make_pivoted_qr(Size size) {
    const auto n = static_cast<double>(size);
    return make_factor(
        Form::pivoted, true, dominant_matrix<Real>(size), 8.0 / 3 * n * n * n,
        [](State<Real>& s, typename Twin<Real>::Matrix* q) {
            return s.solver
                .u_dqrh_Decompose_into_QR_matrices_based_on_Householder_with_Column_Pivoting(
                    &s.work, q, &s.perm, s.interchanges, s.rank);
        });
}

template <class Real>
Case make_solve_qr(Size size) {
    const auto s = make_state(random_matrix<Real>(size, size, 3), 1);
    const auto n = static_cast<double>(size);
    return make_solve(
        s, 4.0 / 3 * n * n * n,
        [](State<Real>& of) { return of.solver.sqr_Solve_based_on_QRD(&of.a, &of.b1, &of.x1); },
        [&](const OrthogonalPeer<Real>& peer) { return peer.solve_qr(s->problem, s->right); });
}

template <class Real>
Case make_triangular_solve_vector(Size n) {
    return make_triangular_solve<Real>(n, 1);
}

template <class Real>
Case make_triangular_solve_matrix(Size n) {
    return make_triangular_solve<Real>(n, n > 1 ? n : 2);
}

template <class Real>
Case make_triangular_inverse(Size size) {
    const auto s = make_state(triangle<Real>(size), size > 1 ? size : 2);
    std::fill(s->right.rows.begin(), s->right.rows.end(), Real(0));
    s->right.width = size;
    for (Size i = 0; i < size; ++i) s->right.rows[static_cast<std::size_t>(i * size + i)] = 1;
    const auto n = static_cast<double>(size);
    return make_solve(
        s, n * n * n / 3,
        [](State<Real>& of) {
            of.good = of.triangles.imt_Inverse_Matrix_for_Triangular_matrix(true, &of.a, &of.work);
            if (of.right.width == 1) of.x1.c_Create(1, of.work[0][0]);
            return of.good;
        },
        [&](const OrthogonalPeer<Real>& peer) { return peer.invert_triangle(s->problem); });
}

#define NEQUAR_BOTH(make)             \
    template Case make<double>(Size); \
    template Case make<float>(Size);
NEQUAR_BOTH(make_tall_qr)
NEQUAR_BOTH(make_pivoted_qr)
NEQUAR_BOTH(make_solve_qr)
NEQUAR_BOTH(make_triangular_solve_vector)
NEQUAR_BOTH(make_triangular_solve_matrix)
NEQUAR_BOTH(make_triangular_inverse)

}  // namespace bench
