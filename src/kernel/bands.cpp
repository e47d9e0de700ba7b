// The face of matrices packed by diagonals.
#include "kernel/block.h"
#include "kernel/dispatch.h"
#include "kernel/kernel.h"

namespace nequar::kernel {

template <class Real>
void unpack_lower(const Real* packed, const View<Real>& a) {
    table<Real>().unpack_lower(a.height, a.width, packed, block_of(a));
}

template <class Real>
void pack_lower(const View<const Real>& a, Real* packed) {
    table<Real>().pack_lower(a.height, a.width, block_of(a), packed);
}

template <class Real>
void unpack_symmetric(const Real* packed, const View<Real>& a) {
    table<Real>().unpack_symmetric(a.height, packed, block_of(a));
}

template <class Real>
void pack_symmetric(const View<const Real>& a, Real* packed) {
    table<Real>().pack_symmetric(a.height, block_of(a), packed);
}

#define NEQUAR_INSTANTIATE(Real)                                    \
    template void unpack_lower(const Real*, const View<Real>&);     \
    template void pack_lower(const View<const Real>&, Real*);       \
    template void unpack_symmetric(const Real*, const View<Real>&); \
    template void pack_symmetric(const View<const Real>&, Real*);

NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)

}  // namespace nequar::kernel
