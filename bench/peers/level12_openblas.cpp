// OpenBLAS on vectors and in passes over a matrix: BLAS, LAPACK, and OpenBLAS's own transpositions.
#include <algorithm>
#include <memory>

#include "peers/level12.h"
#include "peers/openblas_routines.h"

namespace bench {
namespace {

template <class Real>
struct State {
    Problem<Real> a, b;
    std::vector<Real> out, packed;
    int n, k, info = 0;
    Real value = 0;
    bool transposed = false;

    State(const Problem<Real>& of_a, const Problem<Real>& of_b)
        : a(of_a),
          b(of_b),
          out(of_b.count()),
          n(static_cast<int>(of_a.height)),
          k(static_cast<int>(of_b.width)) {}
};

template <class Real>
PeerResult<Real> result_of(const std::vector<Real>& columns, Size height, Size width) {
    Problem<Real> matrix(height, width);
    matrix.columns = columns;
    matrix.rows_from_columns();
    return {matrix.rows, {}};
}

template <class Real>
PeerTask<Real> vectors(VectorWork work, const Problem<Real>& x, const Problem<Real>& y) {
    using Call = Routines<Real>;
    auto s = std::make_shared<State<Real>>(x, y);
    static constexpr int step = 1;
    const auto vector = [s] { return PeerResult<Real>{s->out, {}}; };
    const auto value = [s] { return PeerResult<Real>{{s->value}, {}}; };
    switch (work) {
        case VectorWork::add:
            return {[s] {
                        const Real one = 1;
                        Call::copy(&s->n, s->b.rows.data(), &step, s->out.data(), &step);
                        Call::axpy(&s->n, &one, s->a.rows.data(), &step, s->out.data(), &step);
                    },
                    vector};
        case VectorWork::add_weighted:
            return {[s] {
                        const auto wx = Real(kWeightX), wy = Real(kWeightY);
                        Call::copy(&s->n, s->b.rows.data(), &step, s->out.data(), &step);
                        Call::axpby(&s->n, &wx, s->a.rows.data(), &step, &wy, s->out.data(), &step);
                    },
                    vector};
        case VectorWork::dot:
            return {[s] {
                        s->value =
                            Call::dot(&s->n, s->a.rows.data(), &step, s->b.rows.data(), &step);
                    },
                    value};
        default:
            return {[s] { s->value = Call::nrm2(&s->n, s->a.rows.data(), &step); }, value};
    }
}

template <class Real>
PeerTask<Real> pass(MatrixWork work, const Problem<Real>& a, const Problem<Real>& x) {
    using Call = Routines<Real>;
    static constexpr Real one = 1, zero = 0;
    static constexpr int step = 1;
    auto s = std::make_shared<State<Real>>(a, x);
    s->packed.resize(a.count());
    const auto vector = [s] { return PeerResult<Real>{s->out, {}}; };
    switch (work) {
        case MatrixWork::multiply:
        case MatrixWork::multiply_transposed:
            return {[s, work] {
                        Call::gemv(work == MatrixWork::multiply ? "N" : "T", &s->n, &s->n, &one,
                                   s->a.columns.data(), &s->n, s->b.rows.data(), &step, &zero,
                                   s->out.data(), &step, 1);
                    },
                    vector};
        case MatrixWork::transpose:
            return {[s] {
                        Call::omatcopy("C", "T", &s->n, &s->n, &one, s->a.columns.data(), &s->n,
                                       s->packed.data(), &s->n);
                    },
                    [s] { return result_of(s->packed, s->n, s->n); }};
        case MatrixWork::transpose_in_place: {
            const auto run = [s] {
                Call::imatcopy("C", "T", &s->n, &s->n, &one, s->a.columns.data(), &s->n, &s->n);
                s->transposed = !s->transposed;
            };
            return {run, [s, run] {
                        if (!s->transposed) run();
                        return result_of(s->a.columns, s->n, s->n);
                    }};
        }
        case MatrixWork::symmetric_product:
            return {[s] {
                        Call::syrk("L", "N", &s->n, &s->n, &one, s->a.columns.data(), &s->n, &zero,
                                   s->packed.data(), &s->n, 1, 1);
                    },
                    [s] { return result_of(s->packed, s->n, s->n); }};
        case MatrixWork::determinant: {
            const auto pivots = std::make_shared<std::vector<int>>(static_cast<std::size_t>(s->n));
            return {[s, pivots] {
                        std::copy(s->a.columns.begin(), s->a.columns.end(), s->packed.begin());
                        Call::getrf(&s->n, &s->n, s->packed.data(), &s->n, pivots->data(),
                                    &s->info);
                        s->value = 1;
                        for (int i = 0; i < s->n; ++i) {
                            const auto k = static_cast<std::size_t>(i);
                            s->value *= s->packed[k * static_cast<std::size_t>(s->n + 1)];
                            if ((*pivots)[k] != i + 1) s->value = -s->value;
                        }
                    },
                    [s] {
                        return PeerResult<Real>{{s->value}, {}};
                    }};
        }
        case MatrixWork::pack:
            return {[s] {
                        Call::trttp("L", &s->n, s->a.columns.data(), &s->n, s->packed.data(),
                                    &s->info, 1);
                    },
                    [s] {
                        return PeerResult<Real>{s->packed, {}};
                    }};
        default: {
            Call::trttp("L", &s->n, s->a.columns.data(), &s->n, s->packed.data(), &s->info, 1);
            return {[s] {
                        Call::tpttr("L", &s->n, s->packed.data(), s->a.columns.data(), &s->n,
                                    &s->info, 1);
                    },
                    [s] { return result_of(s->a.columns, s->n, s->n); }};
        }
    }
}

template <class Real>
PeerTask<Real> solve_triangle(const Problem<Real>& t, const Problem<Real>& b) {
    auto s = std::make_shared<State<Real>>(t, b);
    return {[s] {
                const Real one = 1;
                std::copy(s->b.columns.begin(), s->b.columns.end(), s->out.begin());
                Routines<Real>::trsm("L", "L", "N", "N", &s->n, &s->k, &one, s->a.columns.data(),
                                     &s->n, s->out.data(), &s->n, 1, 1, 1, 1);
            },
            [s] { return result_of(s->out, s->n, s->k); }};
}

template <class Real>
PeerTask<Real> invert_triangle(const Problem<Real>& t) {
    auto s = std::make_shared<State<Real>>(t, t);
    return {[s] {
                std::copy(s->a.columns.begin(), s->a.columns.end(), s->out.begin());
                Routines<Real>::trtri("L", "N", &s->n, s->out.data(), &s->n, &s->info, 1, 1);
            },
            [s] { return result_of(s->out, s->n, s->n); }};
}

template <class Real>
constexpr Level12Peer<Real> kOpenBlas{vectors<Real>, pass<Real>, solve_triangle<Real>,
                                      invert_triangle<Real>, nullptr};

}  // namespace

template <>
const Level12Peer<double>* openblas_level12() {
    return &kOpenBlas<double>;
}
template <>
const Level12Peer<float>* openblas_level12() {
    return &kOpenBlas<float>;
}

}  // namespace bench
