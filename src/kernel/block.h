// From the views of the face to the operands of the table.
#pragma once

#include "core/view.h"
#include "kernel/table.h"

namespace nequar::kernel {

template <class Real>
inline Block<Real> block_of(const View<Real>& view) {
    return {view.data, view.row_stride, view.column_stride};
}

}  // namespace nequar::kernel
