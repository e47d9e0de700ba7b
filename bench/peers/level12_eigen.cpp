// Eigen on vectors and in passes over a matrix, compiled as in eigen.cpp.
#include <memory>

#include "peers/eigen_support.h"
#include "peers/level12.h"

namespace bench {
namespace {

template <class Real>
struct State {
    Dense<Real> a, b, c;
    Column<Real> x, y, z;
    Real value = 0;
    bool transposed = false;
};

template <class Real>
std::shared_ptr<State<Real>> state_of(const Problem<Real>& a, const Problem<Real>& b) {
    auto s = std::make_shared<State<Real>>();
    s->a = dense(a);
    s->b = dense(b);
    s->c = Dense<Real>(a.height, b.width);
    return s;
}

template <class Real>
PeerTask<Real> vectors(VectorWork work, const Problem<Real>& x, const Problem<Real>& y) {
    auto s = std::make_shared<State<Real>>();
    s->x = Eigen::Map<const Column<Real>>(x.columns.data(), x.height);
    s->y = Eigen::Map<const Column<Real>>(y.columns.data(), y.height);
    s->z = Column<Real>(x.height);
    const auto vector = [s] { return PeerResult<Real>{rows_of<Real>(s->z), {}}; };
    const auto value = [s] { return PeerResult<Real>{{s->value}, {}}; };
    switch (work) {
        case VectorWork::add:
            return {[s] { s->z.noalias() = s->x + s->y; }, vector};
        case VectorWork::add_weighted:
            return {[s] { s->z.noalias() = Real(kWeightX) * s->x + Real(kWeightY) * s->y; },
                    vector};
        case VectorWork::dot:
            return {[s] { s->value = s->x.dot(s->y); }, value};
        default:
            return {[s] { s->value = s->x.norm(); }, value};
    }
}

template <class Real>
PeerTask<Real> pass(MatrixWork work, const Problem<Real>& a, const Problem<Real>& x) {
    auto s = state_of(a, a);
    s->x = Eigen::Map<const Column<Real>>(x.columns.data(), x.height);
    s->y = Column<Real>(x.height);
    const auto vector = [s] { return PeerResult<Real>{rows_of<Real>(s->y), {}}; };
    switch (work) {
        case MatrixWork::multiply:
            return {[s] { s->y.noalias() = s->a * s->x; }, vector};
        case MatrixWork::multiply_transposed:
            return {[s] { s->y.noalias() = s->a.transpose() * s->x; }, vector};
        case MatrixWork::transpose:
            return {[s] { s->c.noalias() = s->a.transpose(); },
                    [s] {
                        return PeerResult<Real>{rows_of<Real>(s->c), {}};
                    }};
        case MatrixWork::transpose_in_place: {
            const auto run = [s] {
                s->a.transposeInPlace();
                s->transposed = !s->transposed;
            };
            return {run, [s, run] {
                        if (!s->transposed) run();
                        return PeerResult<Real>{rows_of<Real>(s->a), {}};
                    }};
        }
        case MatrixWork::symmetric_product:
            return {[s] {
                        s->c.template triangularView<Eigen::Lower>().setZero();
                        s->c.template selfadjointView<Eigen::Lower>().rankUpdate(s->a);
                    },
                    [s] {
                        return PeerResult<Real>{rows_of<Real>(s->c), {}};
                    }};
        case MatrixWork::determinant:
            return {[s] { s->value = s->a.determinant(); },
                    [s] {
                        return PeerResult<Real>{{s->value}, {}};
                    }};
        default:
            return {};
    }
}

template <class Real>
PeerTask<Real> solve_triangle(const Problem<Real>& t, const Problem<Real>& b) {
    auto s = state_of(t, b);
    return {[s] {
                s->c = s->b;
                s->a.template triangularView<Eigen::Lower>().solveInPlace(s->c);
            },
            [s] {
                return PeerResult<Real>{rows_of<Real>(s->c), {}};
            }};
}

template <class Real>
PeerTask<Real> invert_triangle(const Problem<Real>& t) {
    auto s = state_of(t, t);
    return {[s] {
                s->c.setIdentity();
                s->a.template triangularView<Eigen::Lower>().solveInPlace(s->c);
            },
            [s] {
                return PeerResult<Real>{rows_of<Real>(s->c), {}};
            }};
}

template <class Real>
PeerTask<Real> solve_full_pivoting(const Problem<Real>& a, const Problem<Real>& b) {
    auto s = state_of(a, b);
    return {[s] { s->c = s->a.fullPivLu().solve(s->b); },
            [s] {
                return PeerResult<Real>{rows_of<Real>(s->c), {}};
            }};
}

template <class Real>
constexpr Level12Peer<Real> kEigen{vectors<Real>, pass<Real>, solve_triangle<Real>,
                                   invert_triangle<Real>, solve_full_pivoting<Real>};

}  // namespace

template <>
const Level12Peer<double>* eigen_level12() {
    return &kEigen<double>;
}
template <>
const Level12Peer<float>* eigen_level12() {
    return &kEigen<float>;
}

}  // namespace bench
