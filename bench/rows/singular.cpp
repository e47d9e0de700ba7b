// Singular values and pseudo-inverses of a random matrix; everybody's copy of it is counted.
//
//   8/3 n^3 for the values, 21 n^3 with U and V, 2 m n^2 + 11 n^3 for the values and V of a tall
//   matrix, as the field counts them; 2 n^3 more for the pseudo-inverse
#include "peers/singular.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "rows.h"
#include "rows/twin.h"

namespace bench {
namespace {

constexpr double kWrong = std::numeric_limits<double>::infinity();
constexpr int kSteps = 1 << 30;  // more than any matrix takes
constexpr Size kTall = 10000;

template <class Real>
struct State {
    Problem<Real> problem;
    typename Twin<Real>::Matrix a, u, v, inverse;
    typename Twin<Real>::Vector sigma;
    typename Twin<Real>::Solver solver;
    int steps = 0;
    bool good = false;

    explicit State(Problem<Real> of) : problem(std::move(of)), a(matrix_of(problem)) {}
};

// The sum of their squares is that of the elements.
template <class Real>
double error_of_values(const Problem<Real>& a, const std::vector<Real>& values) {
    double norm = 0, squares = 0;
    for (const Real x : a.rows) norm += static_cast<double>(x) * static_cast<double>(x);
    for (const Real x : values) squares += static_cast<double>(x) * static_cast<double>(x);
    return std::abs(squares - norm) /
           (norm * static_cast<double>(a.width) * std::numeric_limits<Real>::epsilon());
}

// The columns of A V have the singular values as lengths, and neighbours are orthogonal.
template <class Real>
double error_of_right(const Problem<Real>& a, const Singular<Real>& found) {
    const auto m = static_cast<std::size_t>(a.height), n = static_cast<std::size_t>(a.width);
    std::vector<double> lengths(n, 0.0), products(n, 0.0), row(n);
    for (std::size_t i = 0; i < m; ++i) {
        std::fill(row.begin(), row.end(), 0.0);
        for (std::size_t k = 0; k < n; ++k)
            for (std::size_t j = 0; j < n; ++j)
                row[j] += static_cast<double>(a.rows[i * n + k]) *
                          static_cast<double>(found.right[k * n + j]);
        for (std::size_t j = 0; j < n; ++j) {
            lengths[j] += row[j] * row[j];
            if (j > 0) products[j] += row[j] * row[j - 1];
        }
    }
    double largest = 0, worst = 0;
    for (std::size_t j = 0; j < n; ++j) {
        const auto value = static_cast<double>(found.values[j]);
        largest = std::max(largest, value * value);
        worst = std::max({worst, std::abs(lengths[j] - value * value), std::abs(products[j])});
    }
    return worst / (largest * static_cast<double>(m) * std::numeric_limits<Real>::epsilon());
}

template <class Real>
double error_of(SingularJob job, const Problem<Real>& a, const Singular<Real>& found) {
    const auto n = static_cast<std::size_t>(a.width);
    if (job == SingularJob::values) return error_of_values(a, found.values);
    if (job == SingularJob::tall) return error_of_right(a, found);
    if (job == SingularJob::pseudo_inverse) {
        std::vector<Real> identity(n * n, 0);
        for (std::size_t i = 0; i < n; ++i) identity[i * n + i] = 1;
        return error_of_solution(a, found.inverse, identity, a.width);
    }
    Problem<Real> v(a.width, a.width);
    v.rows = found.right;
    std::vector<Real> us = found.left;
    for (std::size_t i = 0; i < us.size(); ++i) us[i] *= found.values[i % n];
    return error_of_product(a, false, v, false, us);
}

template <class Real>
bool run(SingularJob job, State<Real>& s) {
    if (job == SingularJob::pseudo_inverse)
        return s.solver.pisv_Pseudo_Inverse_matrix_based_on_SVD(&s.a, Real(0), &s.inverse);
    const bool with_u = job == SingularJob::by_qr || job == SingularJob::by_divide_and_conquer;
    return s.solver.u_dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
        &s.a, with_u ? &s.u : nullptr, &s.sigma, job == SingularJob::values ? nullptr : &s.v,
        kSteps, s.steps);
}

template <class Real>
Singular<Real> result_of(SingularJob job, const State<Real>& s) {
    Singular<Real> found;
    if (job == SingularJob::pseudo_inverse) {
        found.inverse = rows_of(s.inverse);
        return found;
    }
    found.values.assign(s.sigma.p(), s.sigma.p() + s.sigma.vs());
    if (job == SingularJob::values) return found;
    found.right = rows_of(s.v);
    if (job != SingularJob::tall) found.left = rows_of(s.u);
    return found;
}

template <class Real>
Case make_singular(SingularJob job, Size m, Size n, double flops) {
    const auto s = std::make_shared<State<Real>>(random_matrix<Real>(m, n, 3));
    Case one{flops, {}};
    const auto work = [s, job] { s->good = run(job, *s); };
    const auto error = [s, job] {
        return s->good ? error_of(job, s->problem, result_of(job, *s)) : kWrong;
    };
    one.contenders.push_back({Who::nequar, work, error});
    for (const auto& [who, peer] : singular_peers<Real>()) {
        const SingularTask<Real> task = peer->singular(job, s->problem);
        one.contenders.push_back(
            {who, task.run, [s, job, task] { return error_of(job, s->problem, task.result()); }});
    }
    return one;
}

double cube(Size n) {
    return static_cast<double>(n) * static_cast<double>(n) * static_cast<double>(n);
}

}  // namespace

template <class Real>
Case make_singular_values(Size n) {
    return make_singular<Real>(SingularJob::values, n, n, 8.0 / 3 * cube(n));
}
template <class Real>
Case make_singular_vectors(Size n) {
    return make_singular<Real>(SingularJob::by_qr, n, n, 21 * cube(n));
}
template <class Real>
Case make_singular_vectors_beside_dc(Size n) {
    return make_singular<Real>(SingularJob::by_divide_and_conquer, n, n, 21 * cube(n));
}
template <class Real>
Case make_tall_singular(Size n) {
    const Size m = n > kTall ? n : kTall;
    const double square = static_cast<double>(n) * static_cast<double>(n);
    return make_singular<Real>(SingularJob::tall, m, n,
                               2.0 * static_cast<double>(m) * square + 11 * cube(n));
}
template <class Real>
Case make_pseudo_inverse(Size n) {
    return make_singular<Real>(SingularJob::pseudo_inverse, n, n, 23 * cube(n));
}

#define NEQUAR_BOTH(make)             \
    template Case make<double>(Size); \
    template Case make<float>(Size);
NEQUAR_BOTH(make_singular_values)
NEQUAR_BOTH(make_singular_vectors)
NEQUAR_BOTH(make_singular_vectors_beside_dc)
NEQUAR_BOTH(make_tall_singular)
NEQUAR_BOTH(make_pseudo_inverse)

}  // namespace bench
