// OpenBLAS, through the BLAS and LAPACK routines that its users call.
#include <algorithm>
#include <memory>
#include <numeric>
#include <string>
#include <utility>

#include "peers/openblas_routines.h"
#include "peers/peers.h"

namespace bench {
namespace {

int to_int(Size n) {
    return static_cast<int>(n);
}

// What a task keeps between its runs: the input, the copy that is overwritten, and the outputs.
template <class Real>
struct State {
    Problem<Real> a, b;
    std::vector<Real> work, x, scratch;
    std::vector<int> pivots;
    int n, k, info = 0;

    State(const Problem<Real>& of_a, const Problem<Real>& of_b)
        : a(of_a),
          b(of_b),
          work(a.count()),
          x(b.count()),
          pivots(static_cast<std::size_t>(a.height)),
          n(to_int(a.height)),
          k(to_int(b.width)) {}

    void copy_a() { std::copy(a.columns.begin(), a.columns.end(), work.begin()); }
    void copy_b() { std::copy(b.columns.begin(), b.columns.end(), x.begin()); }
};

template <class Real>
PeerResult<Real> result_of(const std::vector<Real>& columns, Size height, Size width) {
    Problem<Real> matrix(height, width);
    matrix.columns = columns;
    matrix.rows_from_columns();
    return {matrix.rows, {}};
}

template <class Real>
PeerTask<Real> product(const Problem<Real>& a, bool transpose_a, const Problem<Real>& b,
                       bool transpose_b) {
    auto s = std::make_shared<State<Real>>(a, b);
    const int height = to_int(transpose_a ? a.width : a.height);
    const int depth = to_int(transpose_a ? a.height : a.width);
    const int width = to_int(transpose_b ? b.height : b.width);
    s->x.resize(static_cast<std::size_t>(height) * static_cast<std::size_t>(width));
    return {[=] {
                const Real one = 1, zero = 0;
                const int lda = to_int(s->a.height), ldb = to_int(s->b.height);
                Routines<Real>::gemm(transpose_a ? "T" : "N", transpose_b ? "T" : "N", &height,
                                     &width, &depth, &one, s->a.columns.data(), &lda,
                                     s->b.columns.data(), &ldb, &zero, s->x.data(), &height, 1, 1);
            },
            [=] { return result_of(s->x, height, width); }};
}

template <class Real>
PeerTask<Real> lu(const Problem<Real>& a) {
    auto s = std::make_shared<State<Real>>(a, Problem<Real>(0, 0));
    return {
        [s] {
            s->copy_a();
            Routines<Real>::getrf(&s->n, &s->n, s->work.data(), &s->n, s->pivots.data(), &s->info);
        },
        [s] {
            PeerResult<Real> result = result_of(s->work, s->n, s->n);
            result.perm.resize(s->pivots.size());
            std::iota(result.perm.begin(), result.perm.end(), 0);
            for (std::size_t i = 0; i < s->pivots.size(); ++i)
                std::swap(result.perm[i], result.perm[static_cast<std::size_t>(s->pivots[i] - 1)]);
            return result;
        }};
}

template <class Real>
PeerTask<Real> cholesky(const Problem<Real>& a) {
    auto s = std::make_shared<State<Real>>(a, Problem<Real>(0, 0));
    return {[s] {
                s->copy_a();
                Routines<Real>::potrf("L", &s->n, s->work.data(), &s->n, &s->info, 1);
            },
            [s] { return result_of(s->work, s->n, s->n); }};
}

template <class Real>
PeerTask<Real> solve_lu(const Problem<Real>& a, const Problem<Real>& b) {
    auto s = std::make_shared<State<Real>>(a, b);
    return {[s] {
                s->copy_a();
                s->copy_b();
                Routines<Real>::gesv(&s->n, &s->k, s->work.data(), &s->n, s->pivots.data(),
                                     s->x.data(), &s->n, &s->info);
            },
            [s] { return result_of(s->x, s->n, s->k); }};
}

template <class Real>
PeerTask<Real> solve_cholesky(const Problem<Real>& a, const Problem<Real>& b) {
    auto s = std::make_shared<State<Real>>(a, b);
    return {[s] {
                s->copy_a();
                s->copy_b();
                Routines<Real>::posv("L", &s->n, &s->k, s->work.data(), &s->n, s->x.data(), &s->n,
                                     &s->info, 1);
            },
            [s] { return result_of(s->x, s->n, s->k); }};
}

template <class Real>
PeerTask<Real> inverse(const Problem<Real>& a) {
    auto s = std::make_shared<State<Real>>(a, Problem<Real>(0, 0));
    s->scratch.resize(s->a.count());
    return {[s] {
                s->copy_a();
                Routines<Real>::getrf(&s->n, &s->n, s->work.data(), &s->n, s->pivots.data(),
                                      &s->info);
                const int room = to_int(static_cast<Size>(s->scratch.size()));
                Routines<Real>::getri(&s->n, s->work.data(), &s->n, s->pivots.data(),
                                      s->scratch.data(), &room, &s->info);
            },
            [s] { return result_of(s->work, s->n, s->n); }};
}

template <class Real>
constexpr Peer<Real> kOpenBlas{product<Real>,        lu<Real>,     cholesky<Real>, solve_lu<Real>,
                               solve_cholesky<Real>, inverse<Real>};

}  // namespace

template <>
const Peer<double>* openblas() {
    return &kOpenBlas<double>;
}
template <>
const Peer<float>* openblas() {
    return &kOpenBlas<float>;
}

std::string describe_openblas() {
    return std::string(openblas_get_config()) + ", running the code for " + openblas_get_corename();
}

}  // namespace bench
