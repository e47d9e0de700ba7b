// Matrix factorizations: one class of operations, LCNqUtility_for_Matrix_Factorization.
#pragma once

#include "nequar_algebra/factorization/matrix_factorization.h"
