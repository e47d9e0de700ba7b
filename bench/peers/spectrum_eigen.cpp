// Eigen's solver for symmetric eigenvalues.
#include <memory>

#include "peers/eigen_support.h"
#include "peers/spectrum.h"

namespace bench {
namespace {

template <class Real>
SpectrumTask<Real> symmetric(EigenMethod, bool with_vectors, const Problem<Real>& a) {
    struct State {
        Dense<Real> a;
        Eigen::SelfAdjointEigenSolver<Dense<Real>> solver;
    };
    auto s = std::make_shared<State>(
        State{dense(a), Eigen::SelfAdjointEigenSolver<Dense<Real>>(a.height)});
    return {[s, with_vectors] {
                s->solver.compute(
                    s->a, with_vectors ? Eigen::ComputeEigenvectors : Eigen::EigenvaluesOnly);
            },
            [s, with_vectors] {
                const auto& values = s->solver.eigenvalues();
                Spectrum<Real> spectrum{{values.data(), values.data() + values.size()}, {}};
                if (!with_vectors) return spectrum;
                const auto& v = s->solver.eigenvectors();
                for (Size i = 0; i < v.rows(); ++i)
                    for (Size j = 0; j < v.cols(); ++j) spectrum.vectors.push_back(v(i, j));
                return spectrum;
            }};
}

template <class Real>
constexpr SpectrumPeer<Real> kEigen{symmetric<Real>};

}  // namespace

template <>
const SpectrumPeer<double>* spectrum_eigen() {
    return &kEigen<double>;
}
template <>
const SpectrumPeer<float>* spectrum_eigen() {
    return &kEigen<float>;
}

}  // namespace bench
