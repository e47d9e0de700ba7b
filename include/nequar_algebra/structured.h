// Structured matrices: packed storage of matrices of which few elements can differ from zero, or
// from each other.
#pragma once

#include "nequar_algebra/structured/band.h"
#include "nequar_algebra/structured/band_symmetric.h"
#include "nequar_algebra/structured/diagonal.h"
#include "nequar_algebra/structured/packed.h"
#include "nequar_algebra/structured/symmetric.h"
#include "nequar_algebra/structured/toeplitz.h"
#include "nequar_algebra/structured/triangular.h"
#include "nequar_algebra/structured/vandermonde.h"
