#include "problem.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace bench {
namespace {

// A matrix to be multiplied with a vector: element (i, j) at data[i * row_step + j * column_step].
template <class Real>
struct Factor {
    const Real* data;
    Size height, width, row_step, column_step;
};

template <class Real>
Factor<Real> plain(const std::vector<Real>& rows, Size height, Size width) {
    return {rows.data(), height, width, width, 1};
}

template <class Real>
Factor<Real> transposed(Factor<Real> a) {
    return {a.data, a.width, a.height, a.column_step, a.row_step};
}

// A vector with the bound of its elements: value = product of matrices and v, bound = the same
// product of magnitudes.
struct Tracked {
    std::vector<double> value, bound;
};

Tracked random_vector(Size n) {
    std::mt19937 generator(static_cast<unsigned>(n) + 77);
    std::uniform_real_distribution<double> uniform(-1, 1);
    Tracked v;
    for (Size i = 0; i < n; ++i) v.value.push_back(uniform(generator));
    for (const double x : v.value) v.bound.push_back(std::fabs(x));
    return v;
}

enum class Part { all, unit_lower, lower, upper };

template <class Real>
Tracked multiply(Factor<Real> a, Part part, const Tracked& v) {
    Tracked product;
    for (Size i = 0; i < a.height; ++i) {
        double sum = 0, bound = 0;
        const Size first = part == Part::upper ? i : 0;
        const Size last = part == Part::lower ? i + 1 : part == Part::unit_lower ? i : a.width;
        for (Size j = first; j < last; ++j) {
            const auto k = static_cast<std::size_t>(j);
            const auto element = static_cast<double>(a.data[i * a.row_step + j * a.column_step]);
            sum += element * v.value[k];
            bound += std::fabs(element) * v.bound[k];
        }
        if (part == Part::unit_lower) {
            sum += v.value[static_cast<std::size_t>(i)];
            bound += v.bound[static_cast<std::size_t>(i)];
        }
        product.value.push_back(sum);
        product.bound.push_back(bound);
    }
    return product;
}

// max |x - y| / (n eps max bound); infinity when there is a NaN.
template <class Real>
double scaled_difference(const Tracked& x, const Tracked& y, Size n) {
    double difference = 0, bound = 0;
    for (std::size_t i = 0; i < x.value.size(); ++i) {
        const double d = std::fabs(x.value[i] - y.value[i]);
        if (!std::isfinite(d)) return std::numeric_limits<double>::infinity();
        difference = std::max(difference, d);
        bound = std::max({bound, x.bound[i], y.bound[i]});
    }
    const double eps = static_cast<double>(std::numeric_limits<Real>::epsilon());
    return difference / (static_cast<double>(n) * eps * bound);
}

template <class Real>
Real& at(std::vector<Real>& rows, Size width, Size i, Size j) {
    return rows[static_cast<std::size_t>(i * width + j)];
}

}  // namespace

template <class Real>
void Problem<Real>::columns_from_rows() {
    for (Size i = 0; i < height; ++i)
        for (Size j = 0; j < width; ++j)
            columns[static_cast<std::size_t>(i + j * height)] = at(rows, width, i, j);
}

template <class Real>
void Problem<Real>::rows_from_columns() {
    for (Size i = 0; i < height; ++i)
        for (Size j = 0; j < width; ++j)
            at(rows, width, i, j) = columns[static_cast<std::size_t>(i + j * height)];
}

template <class Real>
Problem<Real> random_matrix(Size height, Size width, unsigned number) {
    std::mt19937 generator(number + 1000 * static_cast<unsigned>(height + width));
    std::uniform_real_distribution<double> uniform(-1, 1);
    Problem<Real> a(height, width);
    for (Real& element : a.rows) element = static_cast<Real>(uniform(generator));
    a.columns_from_rows();
    return a;
}

template <class Real>
Problem<Real> dominant_matrix(Size n) {
    const Problem<Real> ordered = random_matrix<Real>(n, n, 1);
    std::vector<Size> order(static_cast<std::size_t>(n));
    for (Size i = 0; i < n; ++i) order[static_cast<std::size_t>(i)] = i;
    std::shuffle(order.begin(), order.end(), std::mt19937(static_cast<unsigned>(n)));
    Problem<Real> a(n, n);
    for (Size i = 0; i < n; ++i) {
        const Size from = order[static_cast<std::size_t>(i)];
        std::copy_n(ordered.rows.data() + from * n, n, a.rows.data() + i * n);
        at(a.rows, n, i, from) += static_cast<Real>(n);
    }
    a.columns_from_rows();
    return a;
}

template <class Real>
Problem<Real> definite_matrix(Size n) {
    Problem<Real> a = random_matrix<Real>(n, n, 2);
    for (Size i = 0; i < n; ++i) {
        for (Size j = 0; j < i; ++j) at(a.rows, n, j, i) = at(a.rows, n, i, j);
        at(a.rows, n, i, i) += static_cast<Real>(n);
    }
    a.columns_from_rows();
    return a;
}

template <class Real>
double error_of_lu(const Problem<Real>& a, const std::vector<Real>& packed,
                   const std::vector<int>& perm) {
    const Size n = a.height;
    const Tracked v = random_vector(n);
    const Tracked av = multiply(plain(a.rows, n, n), Part::all, v);
    const Factor<Real> lu = plain(packed, n, n);
    const Tracked luv = multiply(lu, Part::unit_lower, multiply(lu, Part::upper, v));
    Tracked permuted = av;
    for (std::size_t i = 0; i < perm.size(); ++i) {
        permuted.value[i] = av.value[static_cast<std::size_t>(perm[i])];
        permuted.bound[i] = av.bound[static_cast<std::size_t>(perm[i])];
    }
    return scaled_difference<Real>(permuted, luv, n);
}

template <class Real>
double error_of_cholesky(const Problem<Real>& a, const std::vector<Real>& factor) {
    const Size n = a.height;
    const Tracked v = random_vector(n);
    const Factor<Real> l = plain(factor, n, n);
    return scaled_difference<Real>(
        multiply(plain(a.rows, n, n), Part::all, v),
        multiply(l, Part::lower, multiply(transposed(l), Part::upper, v)), n);
}

template <class Real>
double error_of_product(const Problem<Real>& a, bool transpose_a, const Problem<Real>& b,
                        bool transpose_b, const std::vector<Real>& c) {
    Factor<Real> fa = plain(a.rows, a.height, a.width), fb = plain(b.rows, b.height, b.width);
    if (transpose_a) fa = transposed(fa);
    if (transpose_b) fb = transposed(fb);
    const Tracked v = random_vector(fb.width);
    return scaled_difference<Real>(multiply(plain(c, fa.height, fb.width), Part::all, v),
                                   multiply(fa, Part::all, multiply(fb, Part::all, v)), fa.width);
}

template <class Real>
double error_of_solution(const Problem<Real>& a, const std::vector<Real>& x,
                         const std::vector<Real>& b, Size k) {
    const Size n = a.height;
    const Tracked v = random_vector(k);
    return scaled_difference<Real>(
        multiply(plain(a.rows, n, n), Part::all, multiply(plain(x, n, k), Part::all, v)),
        multiply(plain(b, n, k), Part::all, v), n);
}

template <class Real>
double error_of_similarity(const Problem<Real>& a, const std::vector<Real>& q,
                           const std::vector<Real>& h) {
    const Size n = a.height;
    const Tracked v = random_vector(n);
    const Factor<Real> orthogonal = plain(q, n, n);
    const Tracked product = multiply(
        orthogonal, Part::all,
        multiply(plain(h, n, n), Part::all, multiply(transposed(orthogonal), Part::all, v)));
    return scaled_difference<Real>(multiply(plain(a.rows, n, n), Part::all, v), product, n);
}

template <class Real>
double error_of_root(const Problem<Real>& a, const std::vector<Real>& r) {
    const Tracked v = random_vector(a.width);
    const auto square = [&](const Factor<Real>& f) {
        return multiply(transposed(f), Part::all, multiply(f, Part::all, v));
    };
    return scaled_difference<Real>(square(plain(a.rows, a.height, a.width)),
                                   square(plain(r, a.height, a.width)),
                                   std::max(a.height, a.width));
}

#define NEQUAR_FOR(Real)                                                                     \
    template struct Problem<Real>;                                                           \
    template Problem<Real> random_matrix<Real>(Size, Size, unsigned);                        \
    template Problem<Real> dominant_matrix<Real>(Size);                                      \
    template Problem<Real> definite_matrix<Real>(Size);                                      \
    template double error_of_lu(const Problem<Real>&, const std::vector<Real>&,              \
                                const std::vector<int>&);                                    \
    template double error_of_cholesky(const Problem<Real>&, const std::vector<Real>&);       \
    template double error_of_product(const Problem<Real>&, bool, const Problem<Real>&, bool, \
                                     const std::vector<Real>&);                              \
    template double error_of_similarity(const Problem<Real>&, const std::vector<Real>&,      \
                                        const std::vector<Real>&);                           \
    template double error_of_root(const Problem<Real>&, const std::vector<Real>&);           \
    template double error_of_solution(const Problem<Real>&, const std::vector<Real>&,        \
                                      const std::vector<Real>&, Size);
NEQUAR_FOR(double)
NEQUAR_FOR(float)
#undef NEQUAR_FOR

}  // namespace bench
