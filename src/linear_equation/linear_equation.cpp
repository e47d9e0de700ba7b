#include "nequar_algebra/linear_equation/linear_equation.h"

#include "core/twin_name.h"

namespace nequar {

template <class Real>
LinearEquation<Real>::LinearEquation() {
    this->set_class_name(twin_name<Real>("LCNqUtility_for_Linear_Equation",
                                         "LCNqUtility_for_Linear_Equation_Float"));
}

template <class Real>
LinearEquation<Real>::~LinearEquation() = default;

template class LinearEquation<double>;
template class LinearEquation<float>;

}  // namespace nequar
