// Linear equations: one class of operations, LCNqUtility_for_Linear_Equation.
#pragma once

#include "nequar_algebra/linear_equation/linear_equation.h"
