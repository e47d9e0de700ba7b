// Vector and matrix algebra.
#pragma once

#include "nequar_algebra/algebra/matrix_algebra.h"
#include "nequar_algebra/algebra/triangular_algebra.h"
#include "nequar_algebra/algebra/vector_algebra.h"
