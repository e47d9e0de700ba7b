#pragma once

#include "nequar_algebra/frame/export.h"

/// The logarithm of the gamma function, ln |Γ(x)|, accurate to about 1e-15 relative for every x > 0
/// (its zeros at 1 and 2 included); for x < 0 the error is of that size relative to the larger of
/// the terms that are subtracted, so digits are lost near the zeros on that side.
///
/// +infinity at the poles 0, -1, -2, …, at either infinity, and where the result overflows (x above
/// 2.5e305); NaN for NaN. No state is read or written: threads may call it at once.
NEQUAR_API double Nq_Gamma_Log(double x);
