#include "nequar_algebra/factorization/matrix_factorization.h"

#include "core/twin_name.h"

namespace nequar {

template <class Real>
MatrixFactorization<Real>::MatrixFactorization() {
    this->set_class_name(twin_name<Real>("LCNqUtility_for_Matrix_Factorization",
                                         "LCNqUtility_for_MatrixFloat_Factorization"));
}

template <class Real>
MatrixFactorization<Real>::~MatrixFactorization() = default;

template class MatrixFactorization<double>;
template class MatrixFactorization<float>;

}  // namespace nequar
