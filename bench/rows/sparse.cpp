// Sparse matrices of order n with about ten elements in each column. For the dense conversions n is
// at most kLargestDense: the dense matrix is what takes time. There is no arithmetic to count but
// in the sums, so what stands in place of the operations is the number of stored elements that are
// touched.
//
// Matrices are checked through their product with a random vector, numbers against a plain loop.
#include "peers/sparse.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <utility>

#include "rows.h"
#include "rows/twin.h"

namespace bench {
namespace {

constexpr int kPerColumn = 10;
constexpr Size kLargestDense = 3000;
constexpr std::size_t kReads = 10000;

template <class Real>
Elements<Real> random_elements(int n, unsigned number) {
    std::mt19937 engine(number);
    std::uniform_real_distribution<Real> value(Real(0.1), Real(1));
    std::uniform_int_distribution<int> row(0, n - 1);
    Elements<Real> a{n, n, {0}, {}, {}};
    for (int c = 0; c < n; ++c) {
        std::vector<int> rows(std::size_t(std::min(n, kPerColumn)));
        for (int& r : rows) r = row(engine);
        std::sort(rows.begin(), rows.end());
        rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
        for (const int r : rows) {
            a.rows.push_back(r);
            a.values.push_back(value(engine));
        }
        a.start.push_back(static_cast<int>(a.rows.size()));
    }
    return a;
}

template <class Real, class Visit>
void for_elements(const Elements<Real>& a, const Visit& visit) {
    for (int c = 0; c < a.width; ++c)
        for (auto k = std::size_t(a.start[std::size_t(c)]);
             k < std::size_t(a.start[std::size_t(c) + 1]); ++k)
            visit(c, a.rows[k], double(a.values[k]));
}

template <class Real>
double element(const Elements<Real>& a, int x, int y) {
    const auto first = a.rows.begin() + a.start[std::size_t(x)];
    const auto last = a.rows.begin() + a.start[std::size_t(x) + 1];
    const auto found = std::lower_bound(first, last, y);
    return found != last && *found == y ? double(a.values[std::size_t(found - a.rows.begin())]) : 0;
}

// A known sequence that repeats late.
double probe(int i) {
    return 1 + double((std::uint32_t(i) * 2654435761U) >> 8) / (1 << 24);
}

// sum over the elements of value probe(row) probe'(column): finds wrong values and wrong places.
template <class Real>
double image(const Elements<Real>& a, bool transposed = false) {
    double sum = 0;
    for_elements(a, [&](int c, int r, double v) {
        if (transposed) std::swap(c, r);
        sum += v * probe(r) * probe(c + 12345);
    });
    return sum;
}

template <class Real>
double expected(SparseOperation operation, const SparseProblem<Real>& p) {
    const int n = p.a.height;
    double sum = 0;
    double squares = 0;
    double largest = 0;
    for (const Real v : p.a.values) {
        sum += double(v);
        squares += double(v) * double(v);
        largest = std::max(largest, double(v));
    }
    const double elements = double(n) * n;
    double lines = 0;
    switch (operation) {
        case SparseOperation::transpose:
            return image(p.a, true);
        case SparseOperation::add:
            return image(p.a) + image(p.b);
        case SparseOperation::add_weighted:
            return image(p.a) + kSparseWeight * image(p.b);
        case SparseOperation::block:
            for_elements(p.a, [&](int c, int r, double v) {
                const int y = r - n / 4;
                const int x = c - n / 4;
                const int size = (n + 1) / 2;
                if (x >= 0 && x < size && y >= 0 && y < size)
                    lines += v * probe(y) * probe(x + 12345);
            });
            return lines;
        case SparseOperation::reads:
            for (const auto& [x, y] : p.places) lines += element(p.a, x, y);
            return lines;
        case SparseOperation::columns:
            for_elements(p.a, [&](int c, int, double v) { lines += c < kLines ? v : 0; });
            return lines;
        case SparseOperation::rows:
            for (int i = 0; i < kLines; ++i)
                for (int c = 0; c < n; ++c)
                    lines += element(p.a, c, int(std::int64_t(i) * n / kLines));
            return lines;
        case SparseOperation::expand:
            for_elements(p.a, [&](int c, int r, double v) {
                if (r >= c) lines += v * probe(r) * probe(c + 12345);
                if (r > c) lines += v * probe(c) * probe(r + 12345);
            });
            return lines;
        case SparseOperation::lower_half:
            for_elements(p.a, [&](int c, int r, double v) {
                if (r >= c) lines += v * probe(r) * probe(c + 12345);
            });
            return lines;
        case SparseOperation::symmetric_norm:
        case SparseOperation::symmetric_deviation:
            sum = 0;
            squares = 0;
            for_elements(p.a, [&](int c, int r, double v) {
                const double times = r > c ? 2 : r == c ? 1 : 0;
                sum += times * v;
                squares += times * v * v;
            });
            if (operation == SparseOperation::symmetric_norm) return std::sqrt(squares);
            return std::sqrt(squares / elements - (sum / elements) * (sum / elements));
        case SparseOperation::norm:
            return std::sqrt(squares);
        case SparseOperation::mean:
            return sum / elements;
        case SparseOperation::deviation:
            return std::sqrt(squares / elements - (sum / elements) * (sum / elements));
        case SparseOperation::largest:
            return largest;
        default:
            return image(p.a);
    }
}

constexpr bool gives_matrix(SparseOperation operation) {
    return operation <= SparseOperation::lower_half || operation == SparseOperation::block;
}

template <class Real>
double error_of(SparseOperation operation, const SparseProblem<Real>& p,
                const SparseResult<Real>& result) {
    const double right = expected(operation, p);
    const double got = gives_matrix(operation) ? image(result.matrix) : result.number;
    const double bound =
        (double(p.a.values.size()) + 10) * double(std::numeric_limits<Real>::epsilon());
    const auto error_beside_norm = [&](SparseOperation norm) {
        return std::abs(got * got - right * right) * double(p.a.width) * double(p.a.width) /
               (bound * std::pow(expected(norm, p), 2));
    };
    // A variance is as good as the mean square that it is part of.
    if (operation == SparseOperation::deviation) return error_beside_norm(SparseOperation::norm);
    if (operation == SparseOperation::symmetric_deviation)
        return error_beside_norm(SparseOperation::symmetric_norm);
    return std::abs(got - right) / (bound * std::max(std::abs(right), 1e-30));
}

// ---- ours ---------------------------------------------------------------------------------------

template <class Real>
struct Ours {
    using Sparse = nequar::SparseMatrix<Real>;

    Sparse a, b, c;
    nequar::SparseSymmetricMatrix<Real> symmetric;
    nequar::SparseVector<Real> line;
    nequar::Matrix<Real> dense;
    double number = 0;
};

template <class Real>
void fill(nequar::SparseMatrix<Real>& s, const Elements<Real>& a) {
    Real* values = nullptr;
    int* rows = nullptr;
    int* start = nullptr;
    const int count = static_cast<int>(a.values.size());
    s.czm(a.height, a.width, count);
    s.z_gii(nullptr, &values, &rows, &start);
    std::copy(a.values.begin(), a.values.end(), values);
    std::copy(a.rows.begin(), a.rows.end(), rows);
    std::copy(a.start.begin(), a.start.end(), start);
    s.z_cne(count);
}

template <class Real>
Elements<Real> elements(const nequar::CompressedColumns<Real>& s) {
    const Real* values = nullptr;
    const int* rows = nullptr;
    const int* start = nullptr;
    s.z_gii(nullptr, &values, &rows, &start);
    return {s.mh(),
            s.mw(),
            {start, start + s.mw() + 1},
            {rows, rows + s.nee()},
            {values, values + s.nee()}};
}

template <class Real>
SparseTask<Real> our_task(SparseOperation operation, const SparseProblem<Real>& problem) {
    const auto s = std::make_shared<Ours<Real>>();
    fill(s->a, problem.a);
    fill(s->b, problem.b);
    const int n = problem.a.height;
    SparseTask<Real> task;
    task.result = [s] { return SparseResult<Real>{elements(s->c), s->number}; };
    const auto sum_of_line = [](Ours<Real>& o) {
        const Real* values = nullptr;
        int count = 0;
        std::as_const(o.line).z_gii(&values, nullptr, nullptr, &count);
        for (int k = 0; k < count; ++k) o.number += double(values[k]);
    };
    switch (operation) {
        case SparseOperation::transpose:
            task.run = [s] { s->a.t_Transpose(&s->c); };
            break;
        case SparseOperation::add:  // in place, so that the copy counts
            task.run = [s] {
                s->c.cp_Copy(&s->a);
                s->c.amm_Add_Matrix_Matrix(&s->b);
            };
            break;
        case SparseOperation::add_weighted:
            task.run = [s] {
                s->c.cp_Copy(&s->a);
                s->c.ammw_Add_Matrix_Matrix_with_Weight(&s->b, Real(kSparseWeight));
            };
            break;
        case SparseOperation::build:
            task.run = [s, &from = problem.a] {
                nequar::SparseMatrix<Real> made;
                made.czm(from.height, from.width, int(from.values.size()));
                for (int c = 0; c < from.width; ++c)
                    for (auto k = std::size_t(from.start[std::size_t(c)]);
                         k < std::size_t(from.start[std::size_t(c) + 1]); ++k)
                        made.se(c, from.rows[k], from.values[k]);
                s->c = std::move(made);
            };
            break;
        case SparseOperation::import_dense:
            s->a.ex_Export(&s->dense);
            task.run = [s] { s->c.im_Import(&s->dense); };
            break;
        case SparseOperation::export_dense:
            task.run = [s] { s->a.ex_Export(&s->dense); };
            task.result = [s] {
                s->c.im_Import(&s->dense);
                return SparseResult<Real>{elements(s->c), 0};
            };
            break;
        case SparseOperation::expand:
            s->symmetric.im_Import(&s->a, true);
            task.run = [s] { s->symmetric.ex_Export(&s->c); };
            break;
        case SparseOperation::lower_half:
            task.run = [s] { s->symmetric.im_Import(&s->a, true); };
            task.result = [s] { return SparseResult<Real>{elements(s->symmetric), 0}; };
            break;
        case SparseOperation::symmetric_norm:
            s->symmetric.im_Import(&s->a, true);
            task.run = [s] { s->number = double(s->symmetric.nf_Norm_Frobenius()); };
            break;
        case SparseOperation::symmetric_deviation:
            s->symmetric.im_Import(&s->a, true);
            task.run = [s] {
                Real deviation = 0;
                s->symmetric.mst_Mean_and_Stdev(deviation);
                s->number = double(deviation);
            };
            break;
        case SparseOperation::reads:
            task.run = [s, &places = problem.places] {
                s->number = 0;
                Real value = 0;
                for (const auto& [x, y] : places) {
                    s->a.ge(x, y, &value);
                    s->number += double(value);
                }
            };
            break;
        case SparseOperation::columns:
            task.run = [s, n, sum_of_line] {
                s->number = 0;
                for (int x = 0; x < kLines && x < n; ++x) {
                    s->a.gc_Get_Column(x, 0, n, &s->line);
                    sum_of_line(*s);
                }
            };
            break;
        case SparseOperation::rows:
            task.run = [s, n, sum_of_line] {
                s->number = 0;
                for (int i = 0; i < kLines; ++i) {
                    s->a.gr_Get_Row(0, int(std::int64_t(i) * n / kLines), n, &s->line);
                    sum_of_line(*s);
                }
            };
            break;
        case SparseOperation::block:
            task.run = [s, n] { s->a.gb_Get_Block(n / 4, n / 4, (n + 1) / 2, (n + 1) / 2, &s->c); };
            break;
        case SparseOperation::norm:
            task.run = [s] { s->number = double(s->a.nf_Norm_Frobenius()); };
            break;
        case SparseOperation::mean:
            task.run = [s] { s->number = double(s->a.m_Mean()); };
            break;
        case SparseOperation::deviation:
            task.run = [s] {
                Real deviation = 0;
                s->a.mst_Mean_and_Stdev(deviation);
                s->number = double(deviation);
            };
            break;
        case SparseOperation::largest:
            task.run = [s] { s->number = double(s->a.max_Maximum()); };
            break;
    }
    return task;
}

}  // namespace

template <class Real, SparseOperation operation>
Case make_sparse(Size size) {
    constexpr bool has_dense =
        operation == SparseOperation::import_dense || operation == SparseOperation::export_dense;
    const int n = static_cast<int>(has_dense ? std::min(size, kLargestDense) : size);
    const auto p = std::make_shared<SparseProblem<Real>>();
    p->a = random_elements<Real>(n, 1);
    p->b = random_elements<Real>(n, 2);
    std::mt19937 engine(3);
    for (std::size_t k = 0; k < kReads; ++k) {
        const std::size_t stored = engine() % p->a.rows.size();
        const int x = static_cast<int>(engine() % unsigned(n));
        const auto column = std::upper_bound(p->a.start.begin(), p->a.start.end(), int(stored));
        if (k % 2 == 0)
            p->places.emplace_back(int(column - p->a.start.begin()) - 1, p->a.rows[stored]);
        else
            p->places.emplace_back(x, int(engine() % unsigned(n)));
    }
    Case one{double(p->a.values.size()), {}};
    const auto add = [&](Who who, const SparseTask<Real>& task) {
        one.contenders.push_back({who, [p, run = task.run] { run(); },
                                  [p, task] { return error_of(operation, *p, task.result()); }});
    };
    add(Who::nequar, our_task(operation, *p));
    if (sparse_eigen<Real>() != nullptr) add(Who::eigen, sparse_eigen<Real>()(operation, *p));
    return one;
}

#define NEQUAR_SPARSE(operation)                                         \
    template Case make_sparse<double, SparseOperation::operation>(Size); \
    template Case make_sparse<float, SparseOperation::operation>(Size);
NEQUAR_SPARSE(transpose)
NEQUAR_SPARSE(add)
NEQUAR_SPARSE(add_weighted)
NEQUAR_SPARSE(build)
NEQUAR_SPARSE(import_dense)
NEQUAR_SPARSE(export_dense)
NEQUAR_SPARSE(expand)
NEQUAR_SPARSE(lower_half)
NEQUAR_SPARSE(reads)
NEQUAR_SPARSE(columns)
NEQUAR_SPARSE(rows)
NEQUAR_SPARSE(block)
NEQUAR_SPARSE(norm)
NEQUAR_SPARSE(mean)
NEQUAR_SPARSE(deviation)
NEQUAR_SPARSE(largest)
NEQUAR_SPARSE(symmetric_norm)
NEQUAR_SPARSE(symmetric_deviation)
#undef NEQUAR_SPARSE

}  // namespace bench
