// The whole library.
#pragma once

#include "nequar_algebra/algebra.h"
#include "nequar_algebra/factorization.h"
#include "nequar_algebra/frame.h"
#include "nequar_algebra/linear_equation.h"
#include "nequar_algebra/sparse.h"
#include "nequar_algebra/statistics.h"
#include "nequar_algebra/structured.h"
