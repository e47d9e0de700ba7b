// Vectors, matrix-vector products, and passes over a matrix. What is counted is multiply-adds as
// two, sums as one, and one for each element that a transposition or a packing moves.
#include "peers/level12.h"

#include <cmath>
#include <limits>
#include <memory>

#include "factorization/algorithm/triangular_inverse.h"
#include "kernel/kernel.h"
#include "rows.h"
#include "rows/twin.h"

namespace bench {
namespace {

constexpr double kWrong = std::numeric_limits<double>::infinity();

// max |x - y| / (eps bound); infinity when there is a NaN.
template <class Real>
double difference(const std::vector<Real>& x, const std::vector<double>& y, double bound) {
    if (x.size() < y.size()) return kWrong;
    double largest = 0;
    for (std::size_t i = 0; i < y.size(); ++i) {
        const double d = std::fabs(static_cast<double>(x[i]) - y[i]);
        if (!std::isfinite(d)) return kWrong;
        largest = std::max(largest, d);
    }
    return largest / (static_cast<double>(std::numeric_limits<Real>::epsilon()) * bound);
}

template <class Real>
std::vector<double> in_double(const std::vector<Real>& x) {
    return {x.begin(), x.end()};
}

// The peers' contenders: `make` gives the task of one, `error` judges what it hands over.
template <class Real, class Make, class Error>
void add_peers(Case& one, Make make, Error error) {
    for (const auto& [who, peer] : level12_peers<Real>()) {
        const PeerTask<Real> task = make(*peer);
        if (task.run)
            one.contenders.push_back({who, task.run, [=] { return error(task.result().rows); }});
    }
}

template <class Real>
struct Vectors {
    Problem<Real> x, y;
    typename Twin<Real>::Vector our_x, our_y, z;
    std::vector<double> expected;
    double bound = 1;

    explicit Vectors(Size n)
        : x(random_matrix<Real>(n, 1, 6)),
          y(random_matrix<Real>(n, 1, 7)),
          our_x(vector_of(x)),
          our_y(vector_of(y)),
          z(our_x) {}
};

template <class Real>
void expect(VectorWork work, Vectors<Real>& s) {
    long double sum = 0, bound = 0;
    for (std::size_t i = 0; i < s.x.count(); ++i) {
        const double x = s.x.rows[i], y = work == VectorWork::norm ? x : double(s.y.rows[i]);
        sum += x * y;
        bound += std::fabs(x * y);
        if (work == VectorWork::add) s.expected.push_back(x + y);
        if (work == VectorWork::add_weighted) s.expected.push_back(kWeightX * x + kWeightY * y);
    }
    if (work == VectorWork::add || work == VectorWork::add_weighted) {
        s.bound = 2;
        return;
    }
    if (work == VectorWork::norm) {
        sum = std::sqrt(sum);
        bound = sum;
    }
    s.expected = {static_cast<double>(sum)};
    // Rounding errors grow like the root of the length.
    s.bound =
        static_cast<double>(bound) * std::max(1.0, std::sqrt(static_cast<double>(s.x.count())) / 4);
    s.z.c_Create(1);
}

template <class Real>
Case make_vectors(VectorWork work, Size n) {
    using nequar::Strided;
    const auto s = std::make_shared<Vectors<Real>>(n);
    expect(work, *s);
    const double each = work == VectorWork::add ? 1 : work == VectorWork::add_weighted ? 3 : 2;
    Case one{each * static_cast<double>(n), {}};
    const auto error = [s](const std::vector<Real>& z) {
        return difference(z, s->expected, s->bound);
    };
    const auto run = [=] {
        const Real *x = s->our_x.p(), *y = s->our_y.p();
        Real* const z = s->z.p();
        switch (work) {
            case VectorWork::add:
                return nequar::kernel::add<Real>(n, x, y, z);
            case VectorWork::add_weighted:
                return nequar::kernel::add_weighted<Real>(n, x, y, Real(kWeightX), Real(kWeightY),
                                                          z);
            case VectorWork::dot:
                *z = nequar::kernel::dot<Real>({x, n}, {y, n});
                return;
            default:
                *z = nequar::kernel::norm2<Real>({x, n});
        }
    };
    one.contenders.push_back({Who::nequar, run, [=] {
                                  return error({s->z.p(), s->z.p() + s->z.vs()});
                              }});
    add_peers<Real>(
        one, [&](const Level12Peer<Real>& peer) { return peer.vectors(work, s->x, s->y); }, error);
    return one;
}

}  // namespace

template <class Real, VectorWork work, bool squared>
Case make_level1(Size n) {
    return make_vectors<Real>(work, squared ? n * n : n);
}

template <class Real, bool transposed>
Case make_gemv(Size n) {
    struct Objects {
        Problem<Real> a, x;
        typename Twin<Real>::Matrix matrix;
        typename Twin<Real>::Vector in, out;
        typename Twin<Real>::Algebra algebra;
    };
    const auto s = std::make_shared<Objects>(
        Objects{random_matrix<Real>(n, n, 3), random_matrix<Real>(n, 1, 4), {}, {}, {}, {}});
    s->matrix = matrix_of(s->a);
    s->in = vector_of(s->x);
    Case one{2.0 * static_cast<double>(n) * static_cast<double>(n), {}};
    const auto error = [s](const std::vector<Real>& y) {
        return error_of_product(s->a, transposed, s->x, false, y);
    };
    const auto run = [s] {
        if constexpr (transposed)
            s->algebra.mvm_Multiply_Vector_Matrix(&s->in, &s->matrix, &s->out);
        else
            s->algebra.mmv_Multiply_Matrix_Vector(&s->matrix, &s->in, &s->out);
    };
    one.contenders.push_back({Who::nequar, run, [s, error] {
                                  const Real* y = s->out.p();
                                  return error(std::vector<Real>(y, y + s->out.vs()));
                              }});
    const auto work = transposed ? MatrixWork::multiply_transposed : MatrixWork::multiply;
    add_peers<Real>(
        one, [&](const Level12Peer<Real>& peer) { return peer.pass(work, s->a, s->x); }, error);
    return one;
}

template <class Real, bool in_place>
Case make_transpose(Size n) {
    struct Operands {
        Problem<Real> a;
        typename Twin<Real>::Matrix from, to;
        std::vector<double> expected;
        bool transposed = false;
    };
    const auto s = std::make_shared<Operands>(Operands{random_matrix<Real>(n, n, 3), {}, {}, {}});
    s->from = matrix_of(s->a);
    s->to = matrix_of(s->a);
    s->expected = in_double(s->a.columns);
    Case one{static_cast<double>(n) * static_cast<double>(n), {}};
    const auto run = [=] {
        if constexpr (in_place) {
            nequar::kernel::transpose_in_place(nequar::View<Real>(s->to.p()[0], n, n, n));
            s->transposed = !s->transposed;
        } else {
            nequar::kernel::transpose(nequar::View<const Real>(s->from.p()[0], n, n, n),
                                      nequar::View<Real>(s->to.p()[0], n, n, n));
        }
    };
    const auto error = [s](const std::vector<Real>& b) { return difference(b, s->expected, 0.1); };
    one.contenders.push_back({Who::nequar, run, [=] {
                                  if (in_place && !s->transposed) run();
                                  return error(rows_of(s->to));
                              }});
    const auto work = in_place ? MatrixWork::transpose_in_place : MatrixWork::transpose;
    add_peers<Real>(
        one, [&](const Level12Peer<Real>& peer) { return peer.pass(work, s->a, s->a); }, error);
    return one;
}

namespace {

// Ours alone: a symmetric matrix packed by diagonals.
template <class Real>
struct Packing {
    Problem<Real> a;
    typename Twin<Real>::Matrix matrix, out;
    typename Twin<Real>::Symmetric packed;
    std::vector<double> expected;
};

template <class Real, bool exports>
Case make_our_packing(const std::shared_ptr<Packing<Real>>& s) {
    s->matrix = matrix_of(s->a);
    s->expected = in_double(s->a.rows);
    s->packed.i_Import(&s->matrix);
    Case one{static_cast<double>(s->a.count()), {}};
    const auto run = [s] {
        if constexpr (exports)
            s->packed.e_Export(&s->out);
        else
            s->packed.i_Import(&s->matrix);
    };
    one.contenders.push_back({Who::nequar, run, [s] {
                                  s->packed.e_Export(&s->out);
                                  return difference(rows_of(s->out), s->expected, 0.1);
                              }});
    return one;
}

}  // namespace

// LAPACK packs one triangle by columns.
template <class Real, bool exports>
Case make_packing(Size n) {
    const auto s =
        std::make_shared<Packing<Real>>(Packing<Real>{definite_matrix<Real>(n), {}, {}, {}, {}});
    Case one = make_our_packing<Real, exports>(s);
    const auto error_of_peer = [s, n](const std::vector<Real>& rows) {
        if constexpr (exports) return difference(rows, s->expected, 0.1);
        std::vector<double> columns;
        for (Size j = 0; j < n; ++j)
            for (Size i = j; i < n; ++i)
                columns.push_back(double(s->a.rows[static_cast<std::size_t>(i * n + j)]));
        return difference(rows, columns, 0.1);
    };
    const auto work = exports ? MatrixWork::unpack : MatrixWork::pack;
    add_peers<Real>(
        one, [&](const Level12Peer<Real>& peer) { return peer.pass(work, s->a, s->a); },
        error_of_peer);
    return one;
}

template <class Real, bool exports>
Case make_packing_beside_transpose(Size n) {
    const auto s =
        std::make_shared<Packing<Real>>(Packing<Real>{definite_matrix<Real>(n), {}, {}, {}, {}});
    Case one = make_our_packing<Real, exports>(s);
    add_peers<Real>(
        one,
        [&](const Level12Peer<Real>& peer) { return peer.pass(MatrixWork::transpose, s->a, s->a); },
        [s](const std::vector<Real>& rows) { return difference(rows, s->expected, 0.1); });
    return one;
}

template <class Real>
Case make_symmetric_product(Size n) {
    struct Operands {
        Problem<Real> a;
        std::vector<Real> c;
    };
    const auto s = std::make_shared<Operands>(Operands{random_matrix<Real>(n, n, 3), {}});
    s->c.resize(s->a.count());
    const auto size = static_cast<double>(n);
    Case one{size * size * (size + 1), {}};
    const auto run = [s, n] {
        nequar::kernel::syrk<Real>(nequar::kernel::Triangle::lower, Real(1),
                                   {s->a.rows.data(), n, n, n}, nequar::kernel::Update::set,
                                   {s->c.data(), n, n, n});
    };
    const auto error = [s, n](std::vector<Real> c) {
        if (c.size() < s->a.count()) return kWrong;
        for (Size i = 0; i < n; ++i)
            for (Size j = 0; j < i; ++j)
                c[static_cast<std::size_t>(j * n + i)] = c[static_cast<std::size_t>(i * n + j)];
        return error_of_product(s->a, false, s->a, true, c);
    };
    one.contenders.push_back({Who::nequar, run, [=] { return error(s->c); }});
    add_peers<Real>(
        one,
        [&](const Level12Peer<Real>& peer) {
            return peer.pass(MatrixWork::symmetric_product, s->a, s->a);
        },
        error);
    return one;
}

// A = I + u v', |A| = 1 + v'u.
template <class Real>
Case make_determinant(Size n) {
    struct Objects {
        Problem<Real> a;
        typename Twin<Real>::Matrix matrix;
        typename Twin<Real>::Solver solver;
        Real value = 0;
        std::vector<double> expected;
    };
    const auto s = std::make_shared<Objects>(Objects{Problem<Real>(n, n), {}, {}, 0, {}});
    const Problem<Real> u = random_matrix<Real>(n, 1, 6), v = random_matrix<Real>(n, 1, 7);
    const double scale = 0.5 / static_cast<double>(n);
    double determinant = 1;
    for (Size i = 0; i < n; ++i) {
        const double ui = u.rows[static_cast<std::size_t>(i)];
        determinant += scale * ui * v.rows[static_cast<std::size_t>(i)];
        for (Size j = 0; j < n; ++j)
            s->a.rows[static_cast<std::size_t>(i * n + j)] = static_cast<Real>(
                (i == j ? 1 : 0) + scale * ui * v.rows[static_cast<std::size_t>(j)]);
    }
    s->a.columns_from_rows();
    s->expected = {determinant};
    s->matrix = matrix_of(s->a);
    const auto size = static_cast<double>(n);
    Case one{2.0 / 3 * size * size * size, {}};
    const auto error = [s, size](const std::vector<Real>& value) {
        return difference(value, s->expected, 2 + size);  // each of n pivots is rounded
    };
    one.contenders.push_back({Who::nequar,
                              [s] {
                                  if (!s->solver.d_Determinant(&s->matrix, s->value)) s->value = 0;
                              },
                              [=] { return error({s->value}); }});
    add_peers<Real>(
        one,
        [&](const Level12Peer<Real>& peer) {
            return peer.pass(MatrixWork::determinant, s->a, s->a);
        },
        error);
    return one;
}

namespace {

// A lower triangle that is far from singular, in a matrix whose other elements are zero.
template <class Real>
Problem<Real> lower_triangle(Size n) {
    Problem<Real> t = random_matrix<Real>(n, n, 8);
    for (Size i = 0; i < n; ++i)
        for (Size j = 0; j < n; ++j) {
            Real& element = t.rows[static_cast<std::size_t>(i * n + j)];
            element = j > i ? 0 : j == i ? 2 + std::fabs(element) : element / static_cast<Real>(n);
        }
    t.columns_from_rows();
    return t;
}

template <class Real>
struct Triangle {
    Problem<Real> t, b;
    std::vector<Real> x;
};

}  // namespace

template <class Real, bool inverse>
Case make_triangle(Size n) {
    using nequar::View;
    namespace kernel = nequar::kernel;
    const auto s = std::make_shared<Triangle<Real>>(
        Triangle<Real>{lower_triangle<Real>(n), random_matrix<Real>(n, n, 9), {}});
    if (inverse) {
        for (std::size_t i = 0; i < s->b.count(); ++i)
            s->b.rows[i] = i % static_cast<std::size_t>(n + 1) == 0 ? Real(1) : Real(0);
        s->b.columns = s->b.rows;
    }
    s->x.resize(s->b.count());
    const auto size = static_cast<double>(n);
    Case one{inverse ? size * size * size / 3 : size * size * size, {}};
    const auto run = [=] {
        s->x = inverse ? s->t.rows : s->b.rows;
        const View<Real> x(s->x.data(), n, n, n);
        if constexpr (inverse)
            nequar::invert_lower_triangle(kernel::Diagonal::stored, x);
        else
            kernel::trsm<Real>(kernel::Triangle::lower, kernel::Diagonal::stored,
                               View<const Real>(s->t.rows.data(), n, n, n), x);
    };
    const auto error = [s](const std::vector<Real>& x) {
        return error_of_solution(s->t, x, s->b.rows, s->b.width);
    };
    one.contenders.push_back({Who::nequar, run, [=] { return error(s->x); }});
    add_peers<Real>(
        one,
        [&](const Level12Peer<Real>& peer) {
            return inverse ? peer.invert_triangle(s->t) : peer.solve_triangle(s->t, s->b);
        },
        error);
    return one;
}

template <class Real>
Case make_gauss_jordan(Size n) {
    struct Objects {
        Problem<Real> problem, right;
        typename Twin<Real>::Matrix a;
        typename Twin<Real>::Vector b, x;
        typename Twin<Real>::Solver solver;
        bool good = false;
    };
    const auto s = std::make_shared<Objects>(
        Objects{definite_matrix<Real>(n), random_matrix<Real>(n, 1, 5), {}, {}, {}, {}});
    s->a = matrix_of(s->problem);
    s->b = vector_of(s->right);
    const auto size = static_cast<double>(n);
    Case one{2 * size * size * size, {}};
    const auto error = [s](const std::vector<Real>& x) {
        return error_of_solution(s->problem, x, s->right.rows, 1);
    };
    one.contenders.push_back(
        {Who::nequar, [s] { s->good = s->solver.sgj_Solve_based_on_GJE(&s->a, &s->b, &s->x); },
         [=] {
             const Real* x = s->x.p();
             return s->good ? error(std::vector<Real>(x, x + s->x.vs())) : kWrong;
         }});
    add_peers<Real>(
        one,
        [&](const Level12Peer<Real>& peer) {
            return peer.solve_full_pivoting == nullptr
                       ? PeerTask<Real>{}
                       : peer.solve_full_pivoting(s->problem, s->right);
        },
        error);
    return one;
}

#define NEQUAR_BOTH(make, ...)                     \
    template Case make<double, __VA_ARGS__>(Size); \
    template Case make<float, __VA_ARGS__>(Size);
#define NEQUAR_LEVEL1(work)                           \
    NEQUAR_BOTH(make_level1, VectorWork::work, false) \
    NEQUAR_BOTH(make_level1, VectorWork::work, true)
NEQUAR_LEVEL1(add)
NEQUAR_LEVEL1(add_weighted)
NEQUAR_LEVEL1(dot)
NEQUAR_LEVEL1(norm)
NEQUAR_BOTH(make_gemv, false)
NEQUAR_BOTH(make_gemv, true)
NEQUAR_BOTH(make_transpose, false)
NEQUAR_BOTH(make_transpose, true)
NEQUAR_BOTH(make_packing, false)
NEQUAR_BOTH(make_packing, true)
NEQUAR_BOTH(make_packing_beside_transpose, false)
NEQUAR_BOTH(make_packing_beside_transpose, true)
NEQUAR_BOTH(make_triangle, false)
NEQUAR_BOTH(make_triangle, true)
template Case make_symmetric_product<double>(Size);
template Case make_symmetric_product<float>(Size);
template Case make_determinant<double>(Size);
template Case make_determinant<float>(Size);
template Case make_gauss_jordan<double>(Size);
template Case make_gauss_jordan<float>(Size);

}  // namespace bench
