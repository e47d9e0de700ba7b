// Stands for Eigen where it was not found.
#include "peers/orthogonal.h"
#include "peers/peers.h"
#include "peers/singular.h"
#include "peers/sparse.h"
#include "peers/spectrum.h"
#include "peers/statistics.h"

namespace bench {

template <>
const Peer<double>* eigen() {
    return nullptr;
}
template <>
const Peer<float>* eigen() {
    return nullptr;
}

template <>
const OrthogonalPeer<double>* orthogonal_eigen() {
    return nullptr;
}
template <>
const OrthogonalPeer<float>* orthogonal_eigen() {
    return nullptr;
}

template <>
const SpectrumPeer<double>* spectrum_eigen() {
    return nullptr;
}
template <>
const SpectrumPeer<float>* spectrum_eigen() {
    return nullptr;
}

template <>
const StatisticsPeer<double>* statistics_eigen() {
    return nullptr;
}
template <>
const StatisticsPeer<float>* statistics_eigen() {
    return nullptr;
}

template <>
const SingularPeer<double>* singular_eigen() {
    return nullptr;
}
template <>
const SingularPeer<float>* singular_eigen() {
    return nullptr;
}

template <>
SparsePeer<double> sparse_eigen() {
    return nullptr;
}
template <>
SparsePeer<float> sparse_eigen() {
    return nullptr;
}

std::string describe_eigen() {
    return "Eigen was not found when this was built";
}

}  // namespace bench
