#include "numbers/factors.h"

#include <cmath>
#include <limits>

#include "errors.h"

namespace program {
namespace {

template <class AnyMatrix>
long double frobenius(const AnyMatrix& a) {
    long double squares = 0;
    for (int i = 0; i < a.mh(); ++i)
        for (int j = 0; j < a.mw(); ++j) squares += static_cast<long double>(a[i][j]) * a[i][j];
    return std::sqrt(squares);
}

// ||A - I||_F
template <class AnyMatrix>
long double frobenius_from_identity(const AnyMatrix& a) {
    long double squares = 0;
    for (int i = 0; i < a.mh(); ++i) {
        for (int j = 0; j < a.mw(); ++j) {
            const long double d = static_cast<long double>(a[i][j]) - (i == j ? 1 : 0);
            squares += d * d;
        }
    }
    return std::sqrt(squares);
}

}  // namespace

template <class Real>
double relative_difference(const typename Twin<Real>::Matrix& a,
                           const typename Twin<Real>::Matrix& product) {
    if (a.mh() != product.mh() || a.mw() != product.mw())
        return std::numeric_limits<double>::infinity();
    long double squares = 0;
    for (int i = 0; i < a.mh(); ++i) {
        for (int j = 0; j < a.mw(); ++j) {
            const long double d = static_cast<long double>(a[i][j]) - product[i][j];
            squares += d * d;
        }
    }
    return squares == 0 ? 0 : static_cast<double>(std::sqrt(squares) / frobenius(a));
}

template <class Real>
double distance_from_orthogonal(const typename Twin<Real>::Matrix& q) {
    const typename Twin<Real>::Algebra algebra;
    typename Twin<Real>::Matrix product;
    algebra.mtm_Multiply_Tmatrix_Matrix(&q, &q, &product);
    if (product.mh() != q.mw()) throw Failure("there is not enough memory for Q^T Q");
    return q.mw() == 0
               ? 0
               : static_cast<double>(frobenius_from_identity(product) / std::sqrt(1.0L * q.mw()));
}

template <class Real>
double relative_size(const typename Twin<Real>::Matrix& p, const typename Twin<Real>::Matrix& a,
                     const typename Twin<Real>::Matrix& b) {
    const long double size = frobenius(p);
    return size == 0 ? 0 : static_cast<double>(size / frobenius(a) / frobenius(b));
}

template <class Real>
double distance_from_inverse(const typename Twin<Real>::Matrix& a,
                             const typename Twin<Real>::Matrix& x) {
    const typename Twin<Real>::Algebra algebra;
    typename Twin<Real>::Matrix product;
    algebra.mmm_Multiply_Matrix_Matrix(&a, &x, &product);
    if (product.mh() != a.mh()) throw Failure("there is not enough memory for A X");
    return static_cast<double>(frobenius_from_identity(product) / frobenius(a) / frobenius(x));
}

template double relative_difference<double>(const CNqMatrix&, const CNqMatrix&);
template double relative_difference<float>(const CNqMatrixFloat&, const CNqMatrixFloat&);
template double distance_from_orthogonal<double>(const CNqMatrix&);
template double distance_from_orthogonal<float>(const CNqMatrixFloat&);
template double relative_size<double>(const CNqMatrix&, const CNqMatrix&, const CNqMatrix&);
template double relative_size<float>(const CNqMatrixFloat&, const CNqMatrixFloat&,
                                     const CNqMatrixFloat&);
template double distance_from_inverse<double>(const CNqMatrix&, const CNqMatrix&);
template double distance_from_inverse<float>(const CNqMatrixFloat&, const CNqMatrixFloat&);

}  // namespace program
