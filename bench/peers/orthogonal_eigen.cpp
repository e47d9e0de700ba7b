// Eigen's Householder decompositions and triangular views.
#include <memory>

#include "peers/eigen_support.h"
#include "peers/orthogonal.h"

namespace bench {
namespace {

template <class Real, class Decomposition>
struct State {
    Dense<Real> a, q;
    Decomposition decomposition;

    explicit State(Dense<Real> of) : a(std::move(of)), decomposition(a.rows(), a.cols()) {}
};

template <class Real, class Decomposition>
FactorTask<Real> reduce(bool with_q, const Problem<Real>& a) {
    auto s = std::make_shared<State<Real, Decomposition>>(dense(a));
    return {[s, with_q] {
                s->decomposition.compute(s->a);
                if (with_q) s->q = s->decomposition.householderQ();
            },
            [s, with_q] {
                Factors<Real> factors;
                factors.triangle = rows_of<Real>(s->decomposition.matrixQR());
                if (with_q) factors.q = rows_of<Real>(s->q);
                if constexpr (requires { s->decomposition.colsPermutation(); }) {
                    const auto& order = s->decomposition.colsPermutation().indices();
                    factors.perm.assign(order.data(), order.data() + order.size());
                }
                return factors;
            }};
}

template <class Real>
FactorTask<Real> reduce_to_hessenberg(const Problem<Real>& a) {
    using Hessenberg = Eigen::HessenbergDecomposition<Dense<Real>>;
    struct Held {
        Dense<Real> a, q;
        Hessenberg decomposition;
    };
    auto s = std::make_shared<Held>(Held{dense(a), {}, Hessenberg(a.height)});
    return {[s] {
                s->decomposition.compute(s->a);
                s->q = s->decomposition.matrixQ();
            },
            [s] {
                return Factors<Real>{
                    rows_of<Real>(s->decomposition.matrixH()), rows_of<Real>(s->q), {}};
            }};
}

template <class Real>
FactorTask<Real> factor(Form form, bool with_q, const Problem<Real>& a) {
    if (form == Form::qr) return reduce<Real, Eigen::HouseholderQR<Dense<Real>>>(with_q, a);
    if (form == Form::pivoted)
        return reduce<Real, Eigen::ColPivHouseholderQR<Dense<Real>>>(with_q, a);
    if (form == Form::hessenberg) return reduce_to_hessenberg(a);
    return {};
}

template <class Real>
struct Equations {
    Dense<Real> a, b, x;
};

template <class Real, class Solve>
PeerTask<Real> solve(Dense<Real> a, Dense<Real> b, Solve run) {
    auto s = std::make_shared<Equations<Real>>(Equations<Real>{std::move(a), std::move(b), {}});
    return {[s, run] { run(*s); }, [s] { return PeerResult<Real>{rows_of<Real>(s->x), {}}; }};
}

template <class Real>
PeerTask<Real> solve_qr(const Problem<Real>& a, const Problem<Real>& b) {
    auto qr = std::make_shared<Eigen::HouseholderQR<Dense<Real>>>(a.height, a.width);
    return solve<Real>(dense(a), dense(b), [qr](Equations<Real>& s) {
        qr->compute(s.a);
        s.x = qr->solve(s.b);
    });
}

template <class Real>
void solve_lower(Equations<Real>& s) {
    s.x = s.b;
    s.a.template triangularView<Eigen::Lower>().solveInPlace(s.x);
}

template <class Real>
PeerTask<Real> solve_triangle(const Problem<Real>& t, const Problem<Real>& b) {
    return solve<Real>(dense(t), dense(b), solve_lower<Real>);
}

template <class Real>
PeerTask<Real> invert_triangle(const Problem<Real>& t) {
    return solve<Real>(dense(t), Dense<Real>::Identity(t.height, t.height), solve_lower<Real>);
}

template <class Real>
constexpr OrthogonalPeer<Real> kEigen{factor<Real>, solve_qr<Real>, solve_triangle<Real>,
                                      invert_triangle<Real>};

}  // namespace

template <>
const OrthogonalPeer<double>* orthogonal_eigen() {
    return &kEigen<double>;
}
template <>
const OrthogonalPeer<float>* orthogonal_eigen() {
    return &kEigen<float>;
}

}  // namespace bench
