// Sample vectors of dimension d as the algorithms see them: the rows of an n x d view, of which
// either the rows are contiguous (vectors stored as rows) or the columns (stored as columns).
#pragma once

#include "core/view.h"

namespace nequar {

// Whether to go through the samples coordinate by coordinate.
template <class Real>
bool stored_as_columns(const View<Real>& samples) {
    return samples.row_stride == 1 && (samples.column_stride != 1 || samples.width == 1);
}

}  // namespace nequar
