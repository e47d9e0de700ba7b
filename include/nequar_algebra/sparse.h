// Sparse vectors and matrices: only selected elements are stored.
#pragma once

#include "nequar_algebra/sparse/compressed_columns.h"
#include "nequar_algebra/sparse/sparse_matrix.h"
#include "nequar_algebra/sparse/sparse_symmetric_matrix.h"
#include "nequar_algebra/sparse/sparse_vector.h"
