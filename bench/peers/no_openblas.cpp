// Stands for OpenBLAS where it was not found.
#include "peers/orthogonal.h"
#include "peers/peers.h"
#include "peers/singular.h"
#include "peers/spectrum.h"

namespace bench {

template <>
const Peer<double>* openblas() {
    return nullptr;
}
template <>
const Peer<float>* openblas() {
    return nullptr;
}

template <>
const OrthogonalPeer<double>* orthogonal_openblas() {
    return nullptr;
}
template <>
const OrthogonalPeer<float>* orthogonal_openblas() {
    return nullptr;
}

template <>
const SpectrumPeer<double>* spectrum_openblas() {
    return nullptr;
}
template <>
const SpectrumPeer<float>* spectrum_openblas() {
    return nullptr;
}

template <>
const SingularPeer<double>* singular_openblas() {
    return nullptr;
}
template <>
const SingularPeer<float>* singular_openblas() {
    return nullptr;
}

std::string describe_openblas() {
    return "OpenBLAS was not found when this was built";
}

}  // namespace bench
