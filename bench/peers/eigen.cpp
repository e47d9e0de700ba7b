// Eigen, compiled as its users compile it for speed: -O3 -march=native, in this unit alone.
#include <memory>
#include <string>

#include "peers/eigen_support.h"
#include "peers/peers.h"

namespace bench {
namespace {

// What a task keeps between its runs.
template <class Real, class Decomposition>
struct State {
    Dense<Real> a, b, x;
    Decomposition decomposition;

    State(Dense<Real> of_a, Dense<Real> of_b)
        : a(std::move(of_a)), b(std::move(of_b)), x(b.rows(), b.cols()), decomposition(a.rows()) {}
};

template <class Real>
PeerTask<Real> product(const Problem<Real>& a, bool transpose_a, const Problem<Real>& b,
                       bool transpose_b) {
    struct Operands {
        Dense<Real> a, b, c;
    };
    auto s = std::make_shared<Operands>(
        Operands{dense(a), dense(b),
                 Dense<Real>(transpose_a ? a.width : a.height, transpose_b ? b.height : b.width)});
    PeerTask<Real> task;
    if (transpose_a && transpose_b)
        task.run = [s] { s->c.noalias() = s->a.transpose() * s->b.transpose(); };
    else if (transpose_a)
        task.run = [s] { s->c.noalias() = s->a.transpose() * s->b; };
    else if (transpose_b)
        task.run = [s] { s->c.noalias() = s->a * s->b.transpose(); };
    else
        task.run = [s] { s->c.noalias() = s->a * s->b; };
    task.result = [s] { return PeerResult<Real>{rows_of<Real>(s->c), {}}; };
    return task;
}

template <class Real>
PeerTask<Real> lu(const Problem<Real>& a) {
    using Lu = Eigen::PartialPivLU<Dense<Real>>;
    auto s = std::make_shared<State<Real, Lu>>(dense(a), Dense<Real>());
    return {[s] { s->decomposition.compute(s->a); },
            [s] {
                PeerResult<Real> result{rows_of<Real>(s->decomposition.matrixLU()), {}};
                const auto& order = s->decomposition.permutationP().indices();
                result.perm.resize(static_cast<std::size_t>(order.size()));
                for (int i = 0; i < order.size(); ++i)
                    result.perm[static_cast<std::size_t>(order(i))] = i;
                return result;
            }};
}

template <class Real>
PeerTask<Real> cholesky(const Problem<Real>& a) {
    using Llt = Eigen::LLT<Dense<Real>>;
    auto s = std::make_shared<State<Real, Llt>>(dense(a), Dense<Real>());
    return {[s] { s->decomposition.compute(s->a); },
            [s] {
                return PeerResult<Real>{rows_of<Real>(s->decomposition.matrixLLT()), {}};
            }};
}

template <class Real, template <class> class Decomposition>
PeerTask<Real> solve(const Problem<Real>& a, const Problem<Real>& b) {
    auto s = std::make_shared<State<Real, Decomposition<Dense<Real>>>>(dense(a), dense(b));
    return {[s] {
                s->decomposition.compute(s->a);
                s->x = s->decomposition.solve(s->b);
            },
            [s] {
                return PeerResult<Real>{rows_of<Real>(s->x), {}};
            }};
}

template <class Matrix>
using Llt = Eigen::LLT<Matrix>;

template <class Real>
PeerTask<Real> inverse(const Problem<Real>& a) {
    using Lu = Eigen::PartialPivLU<Dense<Real>>;
    auto s = std::make_shared<State<Real, Lu>>(dense(a), dense(a));
    return {[s] {
                s->decomposition.compute(s->a);
                s->x = s->decomposition.inverse();
            },
            [s] {
                return PeerResult<Real>{rows_of<Real>(s->x), {}};
            }};
}

template <class Real>
constexpr Peer<Real> kEigen{product<Real>,    lu<Real>,
                            cholesky<Real>,   solve<Real, Eigen::PartialPivLU>,
                            solve<Real, Llt>, inverse<Real>};

}  // namespace

template <>
const Peer<double>* eigen() {
    return &kEigen<double>;
}
template <>
const Peer<float>* eigen() {
    return &kEigen<float>;
}

#ifdef EIGEN_VECTORIZE_FMA
constexpr const char* kFused = ", FMA";
#else
constexpr const char* kFused = "";
#endif

std::string describe_eigen() {
    return "Eigen " + std::to_string(EIGEN_WORLD_VERSION) + "." +
           std::to_string(EIGEN_MAJOR_VERSION) + "." + std::to_string(EIGEN_MINOR_VERSION) +
           " (-O3 -march=native: " + Eigen::SimdInstructionSetsInUse() + kFused + ")";
}

}  // namespace bench
