// Symmetric eigenvalues of a random matrix; everybody's copy of it is counted.
//
//   4/3 n^3 for the values, 9 n^3 with vectors, as the field counts them; Jacobi rotations 6 n^3 a
//   sweep and eight sweeps
#include "peers/spectrum.h"

#include <cmath>
#include <limits>
#include <memory>

#include "rows.h"
#include "rows/twin.h"

namespace bench {
namespace {

constexpr double kWrong = std::numeric_limits<double>::infinity();
constexpr int kSteps = 1 << 30;  // more than any matrix takes

template <class Real>
struct State {
    Problem<Real> problem;
    typename Twin<Real>::Symmetric a;
    typename Twin<Real>::Matrix v;
    typename Twin<Real>::Diagonal d;
    typename Twin<Real>::Solver solver;
    int iterations = 0;
    bool good = false;

    explicit State(Problem<Real> of) : problem(std::move(of)) {
        a.i_Import(true, static_cast<int>(problem.height), problem.rows.data());
    }
};

template <class Real>
Problem<Real> symmetric_matrix(Size n) {
    Problem<Real> a = random_matrix<Real>(n, n, 3);
    for (Size i = 0; i < n; ++i)
        for (Size j = 0; j < i; ++j)
            a.rows[static_cast<std::size_t>(i * n + j)] =
                a.rows[static_cast<std::size_t>(j * n + i)];
    a.columns_from_rows();
    return a;
}

// A V = V D, or, without vectors, the sums of the values and of their squares.
template <class Real>
double error_of_spectrum(const Problem<Real>& a, const Spectrum<Real>& spectrum) {
    const auto n = static_cast<std::size_t>(a.height);
    if (!spectrum.vectors.empty()) {
        Problem<Real> v(a.height, a.height);
        v.rows = spectrum.vectors;
        std::vector<Real> vd = spectrum.vectors;
        for (std::size_t i = 0; i < n * n; ++i) vd[i] *= spectrum.values[i % n];
        return error_of_product(a, false, v, false, vd);
    }
    double trace = 0, squares = 0, norm = 0;
    for (std::size_t i = 0; i < n; ++i) {
        trace += static_cast<double>(a.rows[i * n + i]) - static_cast<double>(spectrum.values[i]);
        squares -=
            static_cast<double>(spectrum.values[i]) * static_cast<double>(spectrum.values[i]);
    }
    for (const Real element : a.rows)
        norm += static_cast<double>(element) * static_cast<double>(element);
    squares += norm;
    const double unit = static_cast<double>(n) * std::numeric_limits<Real>::epsilon();
    return std::max(std::abs(trace) / std::sqrt(norm), std::abs(squares) / norm) / unit;
}

// Ours is run(state, V or null).
template <class Real, class Run>
Case make_spectrum(EigenMethod method, bool with_vectors, bool with_peers, Size n, double flops,
                   Run run) {
    const auto s = std::make_shared<State<Real>>(symmetric_matrix<Real>(n));
    Case one{flops * static_cast<double>(n) * static_cast<double>(n) * static_cast<double>(n), {}};
    const auto work = [s, run, with_vectors] { s->good = run(*s, with_vectors ? &s->v : nullptr); };
    const auto error = [s, with_vectors] {
        if (!s->good) return kWrong;
        Spectrum<Real> spectrum{std::vector<Real>(s->d.p(), s->d.p() + s->d.vs()), {}};
        if (with_vectors) spectrum.vectors = rows_of(s->v);
        return error_of_spectrum(s->problem, spectrum);
    };
    one.contenders.push_back({Who::nequar, work, error});
    if (!with_peers) return one;
    for (const auto& [who, peer] : spectrum_peers<Real>()) {
        const SpectrumTask<Real> task = peer->symmetric(method, with_vectors, s->problem);
        one.contenders.push_back(
            {who, task.run, [s, task] { return error_of_spectrum(s->problem, task.result()); }});
    }
    return one;
}

template <class Real>
bool by_qr_steps(State<Real>& s, typename Twin<Real>::Matrix* v) {
    return s.solver.devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(
        &s.a, v, &s.d, kSteps, s.iterations);
}

}  // namespace

template <class Real>
Case make_eigenvalues(Size n) {
    return make_spectrum<Real>(EigenMethod::qr, false, true, n, 4.0 / 3, by_qr_steps<Real>);
}
template <class Real>
Case make_eigenvectors(Size n) {
    return make_spectrum<Real>(EigenMethod::qr, true, true, n, 9, by_qr_steps<Real>);
}
template <class Real>
Case make_eigenvectors_beside_dc(Size n) {
    return make_spectrum<Real>(EigenMethod::divide_and_conquer, true, true, n, 9,
                               by_qr_steps<Real>);
}
template <class Real>
Case make_jacobi(Size n) {
    return make_spectrum<Real>(
        EigenMethod::qr, true, false, n, 48, [](State<Real>& s, typename Twin<Real>::Matrix* v) {
            return s.solver.devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(&s.a, v,
                                                                                       &s.d);
        });
}

#define NEQUAR_BOTH(make)             \
    template Case make<double>(Size); \
    template Case make<float>(Size);
NEQUAR_BOTH(make_eigenvalues)
NEQUAR_BOTH(make_eigenvectors)
NEQUAR_BOTH(make_eigenvectors_beside_dc)
NEQUAR_BOTH(make_jacobi)

}  // namespace bench
