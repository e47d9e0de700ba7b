// Factorizations in place; everybody copies the matrix before he overwrites it.
#include <algorithm>
#include <limits>
#include <memory>

#include "peers/peers.h"
#include "rows.h"
#include "rows/twin.h"

namespace bench {
namespace {

template <class Real>
struct State {
    Problem<Real> problem;
    typename Twin<Real>::Matrix a, work;
    typename Twin<Real>::Solver solver;
    CNqVectorInt perm;
    int interchanges = 0;
    bool good = false;

    explicit State(Problem<Real> of) : problem(std::move(of)), a(matrix_of(problem)) {}
};

constexpr double kWrong = std::numeric_limits<double>::infinity();

// Ours is factor(state).
template <class Real, class Factor>
Case make_any_lu(Size size, Factor factor) {
    const auto s = std::make_shared<State<Real>>(dominant_matrix<Real>(size));
    const auto n = static_cast<double>(size);
    Case one{2.0 / 3 * n * n * n, {}};
    const auto run = [s, factor] {
        s->work.cp_Copy(&s->a);
        s->good = factor(*s);
    };
    const auto error = [s] {
        if (!s->good) return kWrong;
        const std::vector<int> perm(s->perm.p(), s->perm.p() + s->perm.vs());
        return error_of_lu(s->problem, rows_of(s->work), perm);
    };
    one.contenders.push_back({Who::nequar, run, error});
    for (const auto& [who, peer] : peers<Real>()) {
        const PeerTask<Real> task = peer->lu(s->problem);
        const auto error_of_peer = [s, task] {
            const PeerResult<Real> result = task.result();
            return error_of_lu(s->problem, result.rows, result.perm);
        };
        one.contenders.push_back({who, task.run, error_of_peer});
    }
    return one;
}

}  // namespace

template <class Real>
Case make_lu(Size n) {
    return make_any_lu<Real>(n, [](State<Real>& s) {
        return s.solver.u_dluc_Decompose_into_LU_matrices_by_Crout(&s.work, &s.perm,
                                                                   s.interchanges);
    });
}

template <class Real>
Case make_lup(Size n) {
    return make_any_lu<Real>(n, [](State<Real>& s) {
        return s.solver.u_dlup_Decompose_into_LU_matrices_with_Partial_pivoting(&s.work, &s.perm,
                                                                                s.interchanges);
    });
}

// From the bottom right corner instead of the top left: with its rows and columns the other way
// round, the factor of A = U U' is the lower factor of A the other way round.
template <class Real>
std::vector<Real> turned(std::vector<Real> rows) {
    std::reverse(rows.begin(), rows.end());
    return rows;
}

template <class Real, bool lower>
Case make_cholesky(Size size) {
    const auto s = std::make_shared<State<Real>>(definite_matrix<Real>(size));
    const auto n = static_cast<double>(size);
    Case one{1.0 / 3 * n * n * n, {}};
    const auto run = [s] {
        s->work.cp_Copy(&s->a);
        s->good = s->solver.u_dch_Decompose_matrix_by_Cholesky_algorithm(lower, &s->work);
    };
    one.contenders.push_back({Who::nequar, run, [s] {
                                  if (!s->good) return kWrong;
                                  if (lower) return error_of_cholesky(s->problem, rows_of(s->work));
                                  Problem<Real> a = s->problem;
                                  a.rows = turned(a.rows);
                                  return error_of_cholesky(a, turned(rows_of(s->work)));
                              }});
    for (const auto& [who, peer] : peers<Real>()) {
        const PeerTask<Real> task = peer->cholesky(s->problem);
        one.contenders.push_back({who, task.run, [s, task] {
                                      return error_of_cholesky(s->problem, task.result().rows);
                                  }});
    }
    return one;
}

#define NEQUAR_BOTH(make)             \
    template Case make<double>(Size); \
    template Case make<float>(Size);
NEQUAR_BOTH(make_lu)
NEQUAR_BOTH(make_lup)
template Case make_cholesky<double, true>(Size);
template Case make_cholesky<double, false>(Size);
template Case make_cholesky<float, true>(Size);
template Case make_cholesky<float, false>(Size);

}  // namespace bench
