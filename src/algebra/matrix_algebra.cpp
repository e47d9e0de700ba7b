// AlgebraForMatrix: one file for each theme, instantiated here for double and float.
#include "nequar_algebra/algebra/matrix_algebra.h"

#include "algebra/matrix_chains_impl.h"
#include "algebra/matrix_conversion_impl.h"
#include "algebra/matrix_diagonal_products_impl.h"
#include "algebra/matrix_lines_impl.h"
#include "algebra/matrix_products_impl.h"
#include "algebra/matrix_relocations_impl.h"
#include "algebra/matrix_sums_impl.h"
#include "algebra/matrix_tests_impl.h"
#include "core/twin_name.h"

namespace nequar {

template <class Real>
AlgebraForMatrix<Real>::AlgebraForMatrix() {
    this->set_class_name(twin_name<Real>("LCNqAlgebra_for_Matrix", "LCNqAlgebra_for_MatrixFloat"));
}

template <class Real>
AlgebraForMatrix<Real>::~AlgebraForMatrix() = default;

template class AlgebraForMatrix<double>;
template class AlgebraForMatrix<float>;

}  // namespace nequar
