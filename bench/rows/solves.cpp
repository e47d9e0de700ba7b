// Solving and inverting, factorization included: 2/3 n^3 (LU) or 1/3 n^3 (Cholesky) operations and
// 2 n^2 for each right-hand side; 2 n^3 for the inverse.
#include <limits>
#include <memory>

#include "peers/peers.h"
#include "rows.h"
#include "rows/twin.h"

namespace bench {
namespace {

template <class Real>
struct State {
    Problem<Real> problem, right;
    typename Twin<Real>::Matrix a, b, x;
    typename Twin<Real>::Symmetric packed;
    typename Twin<Real>::Vector b1, x1;
    typename Twin<Real>::Solver solver;
    bool good = false;

    State(Problem<Real> of, Size k)
        : problem(std::move(of)),
          right(random_matrix<Real>(problem.height, k, 5)),
          a(matrix_of(problem)),
          b(matrix_of(right)),
          b1(vector_of(right)) {}

    double error(const std::vector<Real>& found) const {
        return good ? error_of_solution(problem, found, right.rows, right.width)
                    : std::numeric_limits<double>::infinity();
    }
    std::vector<Real> solution() const {
        return right.width == 1 ? std::vector<Real>(x1.p(), x1.p() + x1.vs()) : rows_of(x);
    }
};

template <class Real>
using SolveByPeer = PeerTask<Real> (*Peer<Real>::*)(const Problem<Real>&, const Problem<Real>&);

// Ours is run(state); the peers' member is the operation that does the same.
template <class Real, class Run>
Case make_solve(const std::shared_ptr<State<Real>>& s, double flops, Run run,
                SolveByPeer<Real> member) {
    Case one{flops, {}};
    one.contenders.push_back(
        {Who::nequar, [s, run] { s->good = run(*s); }, [s] { return s->error(s->solution()); }});
    for (const auto& [who, peer] : peers<Real>()) {
        const PeerTask<Real> task = (peer->*member)(s->problem, s->right);
        one.contenders.push_back({who, task.run, [s, task] {
                                      return error_of_solution(s->problem, task.result().rows,
                                                               s->right.rows, s->right.width);
                                  }});
    }
    return one;
}

template <class Real>
Case make_solve_lu(Size size, Size k) {
    const auto n = static_cast<double>(size);
    const double flops = 2.0 / 3 * n * n * n + 2 * n * n * static_cast<double>(k);
    const auto s = std::make_shared<State<Real>>(dominant_matrix<Real>(size), k);
    const auto run = [](State<Real>& state) {
        return state.right.width == 1
                   ? state.solver.slu_Solve_based_on_LUD(&state.a, &state.b1, &state.x1)
                   : state.solver.slu_Solve_based_on_LUD(&state.a, &state.b, &state.x);
    };
    return make_solve<Real>(s, flops, run, &Peer<Real>::solve_lu);
}

template <class Real>
Case make_solve_lup(Size size, Size k) {
    const auto n = static_cast<double>(size);
    const double flops = 2.0 / 3 * n * n * n + 2 * n * n * static_cast<double>(k);
    const auto s = std::make_shared<State<Real>>(dominant_matrix<Real>(size), k);
    const auto run = [](State<Real>& state) {
        return state.right.width == 1
                   ? state.solver.slup_Solve_based_on_LUP(&state.a, &state.b1, &state.x1)
                   : state.solver.slup_Solve_based_on_LUP(&state.a, &state.b, &state.x);
    };
    return make_solve<Real>(s, flops, run, &Peer<Real>::solve_lu);
}

template <class Real>
Case make_solve_cholesky(Size size, Size k) {
    const auto n = static_cast<double>(size);
    const double flops = 1.0 / 3 * n * n * n + 2 * n * n * static_cast<double>(k);
    const auto s = std::make_shared<State<Real>>(definite_matrix<Real>(size), k);
    s->packed.i_Import(&s->a);
    const auto run = [](State<Real>& state) {
        return state.right.width == 1
                   ? state.solver.sll_Solve_based_on_LLD(&state.packed, &state.b1, &state.x1)
                   : state.solver.sll_Solve_based_on_LLD(&state.packed, &state.b, &state.x);
    };
    return make_solve<Real>(s, flops, run, &Peer<Real>::solve_cholesky);
}

template <class Real>
Problem<Real> identity(Size n) {
    Problem<Real> one(n, n);
    for (Size i = 0; i < n; ++i) one.rows[static_cast<std::size_t>(i * n + i)] = 1;
    one.columns = one.rows;
    return one;
}

// Ours is invert(state).
template <class Real, class Invert>
Case make_inverse(Size size, Invert invert) {
    const auto s = std::make_shared<State<Real>>(dominant_matrix<Real>(size), 1);
    s->right = identity<Real>(size);
    const auto n = static_cast<double>(size);
    Case one{2 * n * n * n, {}};
    one.contenders.push_back({Who::nequar, [s, invert] { s->good = invert(*s); },
                              [s] { return s->error(rows_of(s->x)); }});
    for (const auto& [who, peer] : peers<Real>()) {
        const PeerTask<Real> task = peer->inverse(s->problem);
        const auto error = [s, task] {
            return error_of_solution(s->problem, task.result().rows, s->right.rows, s->right.width);
        };
        one.contenders.push_back({who, task.run, error});
    }
    return one;
}

}  // namespace

template <class Real>
Case make_solve_lu_vector(Size n) {
    return make_solve_lu<Real>(n, 1);
}

template <class Real>
Case make_solve_lu_matrix(Size n) {
    return make_solve_lu<Real>(n, n);
}

template <class Real>
Case make_solve_lup_vector(Size n) {
    return make_solve_lup<Real>(n, 1);
}

template <class Real>
Case make_solve_lup_matrix(Size n) {
    return make_solve_lup<Real>(n, n);
}

template <class Real>
Case make_solve_cholesky_vector(Size n) {
    return make_solve_cholesky<Real>(n, 1);
}

template <class Real>
Case make_solve_cholesky_matrix(Size n) {
    return make_solve_cholesky<Real>(n, n);
}

template <class Real>
Case make_inverse_lu(Size n) {
    return make_inverse<Real>(
        n, [](State<Real>& s) { return s.solver.ilu_Inverse_matrix_based_on_LUD(&s.a, &s.x); });
}

template <class Real>
Case make_inverse_lup(Size n) {
    return make_inverse<Real>(
        n, [](State<Real>& s) { return s.solver.ilup_Inverse_matrix_based_on_LUP(&s.a, &s.x); });
}

#define NEQUAR_BOTH(make)             \
    template Case make<double>(Size); \
    template Case make<float>(Size);
NEQUAR_BOTH(make_solve_lu_vector)
NEQUAR_BOTH(make_solve_lu_matrix)
NEQUAR_BOTH(make_solve_lup_vector)
NEQUAR_BOTH(make_solve_lup_matrix)
NEQUAR_BOTH(make_solve_cholesky_vector)
NEQUAR_BOTH(make_solve_cholesky_matrix)
NEQUAR_BOTH(make_inverse_lu)
NEQUAR_BOTH(make_inverse_lup)

}  // namespace bench
