// Statistics and Toeplitz recursions with Eigen's vectors.
#include <memory>
#include <random>

#include "peers/eigen_support.h"
#include "peers/statistics.h"

namespace bench {
namespace {

template <class Real>
Column<Real> column_of(const Problem<Real>& a) {
    return Eigen::Map<const Column<Real>>(a.rows.data(), a.height);
}

template <class Real>
std::vector<Real> elements(const Column<Real>& v) {
    return {v.data(), v.data() + v.size()};
}

template <class Real>
struct Recursion {
    Column<Real> r, b, x, y, old;
};

template <class Real>
PeerTask<Real> make_task(const std::shared_ptr<Recursion<Real>>& s, std::function<void()> run,
                         Column<Real> Recursion<Real>::*found) {
    return {std::move(run), [s, found] {
                return PeerResult<Real>{elements<Real>((*s).*found), {}};
            }};
}

template <class Real>
void grow(Recursion<Real>& s, Eigen::Index k, Real alpha) {
    s.old.head(k) = s.y.head(k).reverse();
    s.y.head(k) += alpha * s.old.head(k);
    s.y[k] = alpha;
}

template <class Real>
PeerTask<Real> durbin(const Problem<Real>& r) {
    auto s = std::make_shared<Recursion<Real>>();
    s->r = column_of(r);
    const Eigen::Index n = r.height - 1;
    s->y.resize(n);
    s->old.resize(n);
    return make_task<Real>(
        s,
        [s, n] {
            Real alpha = s->y[0] = -s->r[1];
            Real beta = 1;
            for (Eigen::Index k = 1; k < n; ++k) {
                beta *= 1 - alpha * alpha;
                const Real product = s->y.head(k).reverse().dot(s->r.segment(1, k));
                alpha = -(s->r[k + 1] + product) / beta;
                grow(*s, k, alpha);
            }
        },
        &Recursion<Real>::y);
}

template <class Real>
PeerTask<Real> levinson(const Problem<Real>& r, const Problem<Real>& b) {
    auto s = std::make_shared<Recursion<Real>>();
    s->r = column_of(r);
    s->b = column_of(b);
    const Eigen::Index n = b.height;
    s->x.resize(n);
    s->y.resize(n);
    s->old.resize(n);
    return make_task<Real>(
        s,
        [s, n] {
            s->x[0] = s->b[0];
            Real alpha = s->y[0] = -s->r[1];
            Real beta = 1;
            for (Eigen::Index k = 1; k < n; ++k) {
                beta *= 1 - alpha * alpha;
                const auto part = s->r.segment(1, k);
                const Real mu = (s->b[k] - part.dot(s->x.head(k).reverse())) / beta;
                s->x.head(k) += mu * s->y.head(k).reverse();
                s->x[k] = mu;
                if (k == n - 1) break;
                alpha = -(s->r[k + 1] + part.dot(s->y.head(k).reverse())) / beta;
                grow(*s, k, alpha);
            }
        },
        &Recursion<Real>::x);
}

template <class Real>
PeerTask<Real> distances(const Problem<Real>& samples, const Problem<Real>& x) {
    struct State {
        Dense<Real> samples;  // columns here, so that each is contiguous, as ours are
        Column<Real> x, out;
    };
    auto s = std::make_shared<State>();
    s->samples = Eigen::Map<const Dense<Real>>(samples.rows.data(), samples.width, samples.height);
    s->x = column_of(x);
    return {[s] { s->out = (s->samples.colwise() - s->x).colwise().squaredNorm().transpose(); },
            [s] {
                return PeerResult<Real>{elements<Real>(s->out), {}};
            }};
}

template <class Real>
PeerTask<Real> normal_numbers(Size count) {
    struct State {
        std::mt19937 engine;
        std::normal_distribution<Real> normal;
        Column<Real> out;
    };
    auto s = std::make_shared<State>();
    s->out.resize(count);
    return {[s] {
                for (Real& x : s->out) x = s->normal(s->engine);
            },
            [s] {
                return PeerResult<Real>{elements<Real>(s->out), {}};
            }};
}

template <class Real>
PeerTask<Real> components(const Problem<Real>& samples) {
    struct State {
        Dense<Real> samples;
        Eigen::SelfAdjointEigenSolver<Dense<Real>> solver;
    };
    auto s = std::make_shared<State>();
    s->samples =
        Eigen::Map<const Dense<Real>>(samples.columns.data(), samples.height, samples.width);
    return {[s] {
                const Dense<Real> deviations = s->samples.rowwise() - s->samples.colwise().mean();
                const Dense<Real> scatter = deviations.transpose() * deviations;
                s->solver.compute(scatter);
            },
            [s] {
                const Column<Real> values = s->solver.eigenvalues().reverse();
                std::vector<Real> found = elements<Real>(values);
                const Column<Real> first = s->solver.eigenvectors().rightCols(1);
                found.insert(found.end(), first.data(), first.data() + first.size());
                return PeerResult<Real>{found, {}};
            }};
}

template <class Real>
constexpr StatisticsPeer<Real> kEigen{levinson<Real>, durbin<Real>, distances<Real>,
                                      normal_numbers<Real>, components<Real>};

}  // namespace

template <>
const StatisticsPeer<double>* statistics_eigen() {
    return &kEigen<double>;
}
template <>
const StatisticsPeer<float>* statistics_eigen() {
    return &kEigen<float>;
}

}  // namespace bench
