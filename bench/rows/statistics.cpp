// Toeplitz recursions and statistics. Operations as they are counted here:
//
//   2 n^2 for Durbin, 4 n^2 for Levinson, 13/4 n^2 for Trench;  3 N d for distances (N samples of
//   dimension d);  1 for a normal number;  N d^2 + 9 d^3 for principal
//   components with N = 10 d
#include "peers/statistics.h"

#include <cmath>
#include <limits>
#include <memory>

#include "rows.h"
#include "rows/twin.h"

namespace bench {
namespace {

constexpr double kWrong = std::numeric_limits<double>::infinity();
constexpr Size kSamples = 20000;

template <class Real>
struct State {
    typename Twin<Real>::Toeplitz toeplitz;
    typename Twin<Real>::Random random;
    typename Twin<Real>::Pca pca;
    typename Twin<Real>::Vector r, b, x;
    typename Twin<Real>::Matrix samples, result;
    typename Twin<Real>::Symmetric covariance;
    bool good = false;
};

// Ours, and Eigen's if it is there; error(rows) judges both, `rows` being found(state) for ours.
template <class Real, class Run, class Found, class Error>
Case make_case(double flops, const std::shared_ptr<State<Real>>& s, Run run, Found found,
               const PeerTask<Real>& peer, Error error) {
    Case one{flops, {}};
    one.contenders.push_back({Who::nequar, [s, run] { s->good = run(*s); },
                              [s, found, error] { return s->good ? error(found(*s)) : kWrong; }});
    if (peer.run)
        one.contenders.push_back(
            {Who::eigen, peer.run, [peer, error] { return error(peer.result().rows); }});
    return one;
}

template <class Real>
PeerTask<Real> no_task() {
    return {};
}

template <class Real>
std::vector<Real> elements(const typename Twin<Real>::Vector& v) {
    return {v.p(), v.p() + v.vs()};
}

// Decreasing and convex, and so positive definite, and well conditioned.
template <class Real>
Problem<Real> first_row(Size count) {
    Problem<Real> r(count, 1);
    for (Size i = 0; i < count; ++i)
        r.rows[static_cast<std::size_t>(i)] = static_cast<Real>(1 / (1 + double(i)));
    return r;
}

// max |T x - b| / (n eps |x|), T(i, j) = r[|i - j|]
template <class Real>
double error_of_toeplitz(const std::vector<Real>& r, const std::vector<Real>& x,
                         const std::vector<Real>& b) {
    double largest = 0, size = 0;
    for (std::size_t i = 0; i < b.size(); ++i) {
        double sum = -double(b[i]);
        for (std::size_t j = 0; j < x.size(); ++j) sum += double(r[i < j ? j - i : i - j]) * x[j];
        largest = std::abs(sum) <= largest ? largest : std::abs(sum);
        size = std::max(size, std::abs(double(x[i])));
    }
    return largest / (double(b.size()) * size * double(std::numeric_limits<Real>::epsilon()));
}

template <class Real>
std::shared_ptr<State<Real>> toeplitz_state(const Problem<Real>& r, const Problem<Real>& b) {
    auto s = std::make_shared<State<Real>>();
    s->r = vector_of(r);
    s->b = vector_of(b);
    return s;
}

}  // namespace

template <class Real>
Case make_durbin(Size n) {
    const Problem<Real> r = first_row<Real>(n + 1);
    std::vector<Real> right(r.rows.begin() + 1, r.rows.end());
    for (Real& x : right) x = -x;
    const auto* peer = statistics_eigen<Real>();
    return make_case<Real>(
        2.0 * double(n) * double(n), toeplitz_state(r, r),
        [](State<Real>& s) {
            return s.toeplitz.u_sywd_Solve_Yule_Walker_equation_by_Durbin(s.r, &s.x, nullptr);
        },
        [](const State<Real>& s) { return elements<Real>(s.x); },
        peer != nullptr ? peer->durbin(r) : no_task<Real>(),
        [r, right](const std::vector<Real>& x) { return error_of_toeplitz(r.rows, x, right); });
}

template <class Real>
Case make_levinson(Size n) {
    const Problem<Real> r = first_row<Real>(n + 1), b = random_matrix<Real>(n, 1, 5);
    const auto* peer = statistics_eigen<Real>();
    return make_case<Real>(
        4.0 * double(n) * double(n), toeplitz_state(r, b),
        [](State<Real>& s) {
            return s.toeplitz.u_slel_Solve_Linear_Equation_by_Levinson(s.r, s.b, s.x);
        },
        [](const State<Real>& s) { return elements<Real>(s.x); },
        peer != nullptr ? peer->levinson(r, b) : no_task<Real>(),
        [r, b](const std::vector<Real>& x) { return error_of_toeplitz(r.rows, x, b.rows); });
}

// The first column of the inverse is judged.
template <class Real>
Case make_trench(Size n) {
    const Problem<Real> r = first_row<Real>(n);
    std::vector<Real> unit(static_cast<std::size_t>(n));
    unit[0] = 1;
    return make_case<Real>(
        3.25 * double(n) * double(n), toeplitz_state(r, r),
        [](State<Real>& s) {
            return s.toeplitz.u_fimt_Find_Inverse_Matrix_by_Trench(s.r, &s.result, nullptr);
        },
        [](const State<Real>& s) {
            std::vector<Real> column;
            for (int i = 0; i < s.result.mh(); ++i) column.push_back(s.result[i][0]);
            return column;
        },
        no_task<Real>(),
        [r, unit](const std::vector<Real>& x) { return error_of_toeplitz(r.rows, x, unit); });
}

template <class Real>
Case make_distances(Size d) {
    const Problem<Real> samples = random_matrix<Real>(kSamples, d, 3);
    const Problem<Real> x = random_matrix<Real>(d, 1, 5);
    auto s = std::make_shared<State<Real>>();
    s->samples = matrix_of(samples);
    s->b = vector_of(x);
    const auto* peer = statistics_eigen<Real>();
    return make_case<Real>(
        3.0 * double(kSamples) * double(d), s,
        [](State<Real>& state) {
            return state.random.csd_Compute_Set_of_Distances(state.b, state.samples, false,
                                                             state.x);
        },
        [](const State<Real>& state) { return elements<Real>(state.x); },
        peer != nullptr ? peer->distances(samples, x) : no_task<Real>(),
        [samples, x](const std::vector<Real>& found) {
            double largest = 0;
            for (Size i = 0; i < kSamples; ++i) {
                double exact = 0;
                for (Size k = 0; k < samples.width; ++k) {
                    const auto at = static_cast<std::size_t>(i * samples.width + k);
                    const double difference =
                        double(x.rows[static_cast<std::size_t>(k)]) - double(samples.rows[at]);
                    exact += difference * difference;
                }
                const double off = std::abs(double(found[static_cast<std::size_t>(i)]) - exact);
                const double error = off / (double(samples.width + 1) * exact *
                                            double(std::numeric_limits<Real>::epsilon()));
                largest = error <= largest ? largest : error;
            }
            return largest;
        });
}

// 1000 n numbers. Their mean and variance, in units of five standard errors.
template <class Real>
Case make_normal_numbers(Size n) {
    const Size count = 1000 * n;
    auto s = std::make_shared<State<Real>>();
    s->x.c_Create(static_cast<int>(count));
    const auto* peer = statistics_eigen<Real>();
    return make_case<Real>(
        double(count), s,
        [](State<Real>& state) { return state.random.gng_wzu(state.x.vs(), state.x.p()); },
        [](const State<Real>& state) { return elements<Real>(state.x); },
        peer != nullptr ? peer->normal_numbers(count) : no_task<Real>(),
        [](const std::vector<Real>& x) {
            double sum = 0, squares = 0;
            for (const Real value : x) {
                sum += double(value);
                squares += double(value) * double(value);
            }
            const auto total = static_cast<double>(x.size());
            return std::max(std::abs(sum) / std::sqrt(total),
                            std::abs(squares - total) / std::sqrt(2 * total)) /
                   5;
        });
}

// 10 n samples of dimension n. With values and the first vector v of the scatter matrix S:
// |tr S - sum of values| and |S v - value v|, in units of n eps tr S.
template <class Real>
Case make_components(Size n) {
    const Problem<Real> samples = random_matrix<Real>(10 * n, n, 3);
    auto s = std::make_shared<State<Real>>();
    s->samples.c_Create(static_cast<int>(n), static_cast<int>(10 * n));
    std::copy(samples.columns.begin(), samples.columns.end(), s->samples.p()[0]);
    struct Found {
        typename Twin<Real>::Vector mean;
        typename Twin<Real>::Growing values;
        typename Twin<Real>::Set components;
        Real total = 0;
    };
    auto found = std::make_shared<Found>();
    const auto* peer = statistics_eigen<Real>();
    const auto d = static_cast<double>(n);
    return make_case<Real>(
        19 * d * d * d, s,
        [found](State<Real>& state) {
            return state.pca.u_cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix(
                state.samples, std::numeric_limits<Real>::epsilon(), found->mean, found->values,
                found->total, found->components);
        },
        [found](const State<Real>&) {
            std::vector<Real> result(found->values.p(), found->values.p() + found->values.nee());
            const auto& first = *found->components.gpe(0);
            result.insert(result.end(), first.p(), first.p() + first.vs());
            return result;
        },
        peer != nullptr ? peer->components(samples) : no_task<Real>(),
        [samples, n](const std::vector<Real>& result) {
            const auto width = static_cast<std::size_t>(n);
            if (result.size() != 2 * width) return kWrong;
            std::vector<double> mean(width), image(width);
            for (std::size_t i = 0; i < samples.rows.size(); ++i)
                mean[i % width] += double(samples.rows[i]) / double(samples.height);
            double trace = 0;
            for (std::size_t i = 0; i < samples.rows.size(); i += width) {
                double along = 0;
                for (std::size_t k = 0; k < width; ++k) {
                    const double deviation = double(samples.rows[i + k]) - mean[k];
                    trace += deviation * deviation;
                    along += deviation * double(result[width + k]);
                }
                for (std::size_t k = 0; k < width; ++k)
                    image[k] += (double(samples.rows[i + k]) - mean[k]) * along;
            }
            double sum = 0, worst = 0;
            for (std::size_t k = 0; k < width; ++k) {
                sum += double(result[k]);
                const double off =
                    std::abs(image[k] - double(result[0]) * double(result[width + k]));
                worst = off <= worst ? worst : off;
            }
            return std::max(worst, std::abs(sum - trace)) /
                   (double(n) * trace * double(std::numeric_limits<Real>::epsilon()));
        });
}

#define NEQUAR_INSTANTIATE(Real)                   \
    template Case make_durbin<Real>(Size);         \
    template Case make_levinson<Real>(Size);       \
    template Case make_trench<Real>(Size);         \
    template Case make_distances<Real>(Size);      \
    template Case make_normal_numbers<Real>(Size); \
    template Case make_components<Real>(Size);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace bench
