// The frame: the root class and its reporting, dense vectors and matrices, growable containers,
// order statistics and random numbers, and the raw-array kernels.
#pragma once

#include "nequar_algebra/frame/algebra_basic.h"
#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/gamma.h"
#include "nequar_algebra/frame/growable_matrix.h"
#include "nequar_algebra/frame/growable_vector.h"
#include "nequar_algebra/frame/matrix.h"
#include "nequar_algebra/frame/message.h"
#include "nequar_algebra/frame/random.h"
#include "nequar_algebra/frame/ranker.h"
#include "nequar_algebra/frame/string.h"
#include "nequar_algebra/frame/vector.h"
#include "nequar_algebra/frame/vector_queue.h"
#include "nequar_algebra/frame/vector_set.h"
