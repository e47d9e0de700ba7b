// Eigen's sparse matrices, by columns as ours.
#include <Eigen/Sparse>
#include <algorithm>
#include <cmath>
#include <memory>

#include "peers/eigen_support.h"
#include "peers/sparse.h"

namespace bench {
namespace {

template <class Real>
using Sparse = Eigen::SparseMatrix<Real, Eigen::ColMajor, int>;

template <class Real>
Sparse<Real> sparse(const Elements<Real>& a) {
    return Eigen::Map<const Sparse<Real>>(a.height, a.width, Eigen::Index(a.values.size()),
                                          a.start.data(), a.rows.data(), a.values.data());
}

template <class Real>
Elements<Real> elements(const Sparse<Real>& a) {
    const auto count = static_cast<std::size_t>(a.nonZeros());
    return {static_cast<int>(a.rows()),
            static_cast<int>(a.cols()),
            {a.outerIndexPtr(), a.outerIndexPtr() + a.cols() + 1},
            {a.innerIndexPtr(), a.innerIndexPtr() + count},
            {a.valuePtr(), a.valuePtr() + count}};
}

template <class Real>
struct State {
    Sparse<Real> a, b, c, half;
    Dense<Real> dense;
    Eigen::SparseVector<Real> column;
    Eigen::SparseVector<Real, Eigen::RowMajor> row;
    double number = 0;
};

template <class Real>
SparseTask<Real> sparse_task(SparseOperation operation, const SparseProblem<Real>& problem) {
    const auto s = std::make_shared<State<Real>>();
    s->a = sparse(problem.a);
    s->b = sparse(problem.b);
    const int n = problem.a.height;
    SparseTask<Real> task;
    task.result = [s] { return SparseResult<Real>{elements(s->c), s->number}; };
    switch (operation) {
        case SparseOperation::transpose:
            task.run = [s] { s->c = s->a.transpose(); };
            break;
        case SparseOperation::add:
            task.run = [s] { s->c = s->a + s->b; };
            break;
        case SparseOperation::add_weighted:
            task.run = [s] { s->c = s->a + Real(kSparseWeight) * s->b; };
            break;
        case SparseOperation::build:
            task.run = [s, &from = problem.a] {
                Sparse<Real> made(from.height, from.width);
                made.reserve(Eigen::VectorXi::Map(from.start.data() + 1, from.width) -
                             Eigen::VectorXi::Map(from.start.data(), from.width));
                for (int c = 0; c < from.width; ++c)
                    for (auto k = static_cast<std::size_t>(from.start[std::size_t(c)]);
                         k < static_cast<std::size_t>(from.start[std::size_t(c) + 1]); ++k)
                        made.insert(from.rows[k], c) = from.values[k];
                made.makeCompressed();
                s->c = std::move(made);
            };
            break;
        case SparseOperation::import_dense:
            s->dense = Dense<Real>(s->a);
            task.run = [s] { s->c = s->dense.sparseView(); };
            break;
        case SparseOperation::export_dense:
            task.run = [s] { s->dense = s->a; };
            task.result = [s] {
                return SparseResult<Real>{elements<Real>(s->dense.sparseView()), 0};
            };
            break;
        case SparseOperation::expand:
            s->half = s->a.template triangularView<Eigen::Lower>();
            task.run = [s] { s->c = s->half.template selfadjointView<Eigen::Lower>(); };
            break;
        case SparseOperation::lower_half:
            task.run = [s] { s->c = s->a.template triangularView<Eigen::Lower>(); };
            break;
        case SparseOperation::symmetric_norm:
            s->half = s->a.template triangularView<Eigen::Lower>();
            task.run = [s] {
                const double all = double(s->half.squaredNorm());
                s->number = std::sqrt(2 * all - double(s->half.diagonal().squaredNorm()));
            };
            break;
        case SparseOperation::symmetric_deviation:
            s->half = s->a.template triangularView<Eigen::Lower>();
            task.run = [s, n] {
                const Sparse<Real>& half = s->half;
                const Eigen::Matrix<Real, Eigen::Dynamic, 1> diagonal = half.diagonal();
                const double elements = double(n) * n;
                const double mean = (2 * double(half.sum()) - double(diagonal.sum())) / elements;
                const double squares =
                    2 * double(half.squaredNorm()) - double(diagonal.squaredNorm());
                s->number = std::sqrt(std::max(0.0, squares / elements - mean * mean));
            };
            break;
        case SparseOperation::reads:
            task.run = [s, &places = problem.places] {
                s->number = 0;
                for (const auto& [x, y] : places) s->number += double(s->a.coeff(y, x));
            };
            break;
        case SparseOperation::columns:
            task.run = [s, n] {
                s->number = 0;
                for (int x = 0; x < kLines && x < n; ++x) {
                    s->column = s->a.col(x);
                    s->number += double(s->column.sum());
                }
            };
            break;
        case SparseOperation::rows:
            task.run = [s, n] {
                s->number = 0;
                for (int i = 0; i < kLines; ++i) {
                    s->row = s->a.row(int(std::int64_t(i) * n / kLines));
                    s->number += double(s->row.sum());
                }
            };
            break;
        case SparseOperation::block:
            task.run = [s, n] { s->c = s->a.block(n / 4, n / 4, (n + 1) / 2, (n + 1) / 2); };
            break;
        case SparseOperation::norm:
            task.run = [s] { s->number = double(s->a.norm()); };
            break;
        case SparseOperation::mean:
            task.run = [s, n] { s->number = double(s->a.sum()) / n / n; };
            break;
        case SparseOperation::deviation:
            task.run = [s, n] {
                const Real elements = Real(n) * Real(n);
                const Real mean = s->a.sum() / elements;
                const Real squares = (s->a.coeffs() - mean).square().sum() +
                                     (elements - Real(s->a.nonZeros())) * mean * mean;
                s->number = std::sqrt(double(squares / elements));
            };
            break;
        case SparseOperation::largest:
            task.run = [s] { s->number = double(s->a.coeffs().maxCoeff()); };
            break;
    }
    return task;
}

}  // namespace

template <>
SparsePeer<double> sparse_eigen() {
    return sparse_task<double>;
}
template <>
SparsePeer<float> sparse_eigen() {
    return sparse_task<float>;
}

}  // namespace bench
