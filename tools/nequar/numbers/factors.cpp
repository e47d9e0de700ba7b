#include "numbers/factors.h"

#include <cmath>
#include <limits>

#include "errors.h"

namespace program {

template <class Real>
double relative_difference(const typename Twin<Real>::Matrix& a,
                           const typename Twin<Real>::Matrix& product) {
    if (a.mh() != product.mh() || a.mw() != product.mw())
        return std::numeric_limits<double>::infinity();
    long double difference = 0, size = 0;
    for (int i = 0; i < a.mh(); ++i) {
        for (int j = 0; j < a.mw(); ++j) {
            const long double d = static_cast<long double>(a[i][j]) - product[i][j];
            difference += d * d;
            size += static_cast<long double>(a[i][j]) * a[i][j];
        }
    }
    return difference == 0 ? 0 : static_cast<double>(std::sqrt(difference / size));
}

template <class Real>
double distance_from_orthogonal(const typename Twin<Real>::Matrix& q) {
    const typename Twin<Real>::Algebra algebra;
    typename Twin<Real>::Matrix product;
    algebra.mtm_Multiply_Tmatrix_Matrix(&q, &q, &product);
    if (product.mh() != q.mw()) throw Failure("there is not enough memory for Q^T Q");
    long double squares = 0;
    for (int i = 0; i < product.mh(); ++i) {
        for (int j = 0; j < product.mw(); ++j) {
            const long double d = static_cast<long double>(product[i][j]) - (i == j ? 1 : 0);
            squares += d * d;
        }
    }
    return q.mw() == 0 ? 0 : static_cast<double>(std::sqrt(squares / q.mw()));
}

template double relative_difference<double>(const CNqMatrix&, const CNqMatrix&);
template double relative_difference<float>(const CNqMatrixFloat&, const CNqMatrixFloat&);
template double distance_from_orthogonal<double>(const CNqMatrix&);
template double distance_from_orthogonal<float>(const CNqMatrixFloat&);

}  // namespace program
