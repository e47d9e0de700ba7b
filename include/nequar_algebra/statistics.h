// Statistics: Gaussian random numbers and vectors, sample statistics and density estimates,
// principal components.
#pragma once

#include "nequar_algebra/statistics/principal_components.h"
#include "nequar_algebra/statistics/random_advanced.h"
