// LAPACK's symmetric eigenvalues, from OpenBLAS.
#include <algorithm>
#include <memory>

#include "peers/openblas_routines.h"
#include "peers/spectrum.h"

namespace bench {
namespace {

template <class Real>
struct State {
    Problem<Real> a;
    std::vector<Real> work, values, scratch;
    std::vector<int> integers;
    int n, info = 0;

    explicit State(const Problem<Real>& of)
        : a(of),
          work(a.count()),
          values(static_cast<std::size_t>(a.height)),
          n(static_cast<int>(a.height)) {}

    // Asked with a room of -1, the routines answer what they want.
    void call(EigenMethod method, const char* job, int room, int integer_room) {
        if (method == EigenMethod::qr)
            Routines<Real>::syev(job, "L", &n, work.data(), &n, values.data(), scratch.data(),
                                 &room, &info, 1, 1);
        else
            Routines<Real>::syevd(job, "L", &n, work.data(), &n, values.data(), scratch.data(),
                                  &room, integers.data(), &integer_room, &info, 1, 1);
    }
    void run(EigenMethod method, const char* job) {
        std::copy(a.columns.begin(), a.columns.end(), work.begin());
        call(method, job, static_cast<int>(scratch.size()), static_cast<int>(integers.size()));
    }
    void make_room(EigenMethod method, const char* job) {
        scratch.resize(1);
        integers.resize(1);
        call(method, job, -1, -1);
        scratch.resize(static_cast<std::size_t>(scratch[0]) + 1);
        integers.resize(static_cast<std::size_t>(std::max(integers[0], 1)));
    }
};

template <class Real>
SpectrumTask<Real> symmetric(EigenMethod method, bool with_vectors, const Problem<Real>& a) {
    const char* const job = with_vectors ? "V" : "N";
    auto s = std::make_shared<State<Real>>(a);
    s->make_room(method, job);
    return {[s, method, job] { s->run(method, job); },
            [s, with_vectors] {
                Spectrum<Real> spectrum{s->values, {}};
                if (!with_vectors) return spectrum;
                Problem<Real> vectors(s->n, s->n);
                vectors.columns = s->work;
                vectors.rows_from_columns();
                spectrum.vectors = vectors.rows;
                return spectrum;
            }};
}

template <class Real>
constexpr SpectrumPeer<Real> kOpenBlas{symmetric<Real>};

}  // namespace

template <>
const SpectrumPeer<double>* spectrum_openblas() {
    return &kOpenBlas<double>;
}
template <>
const SpectrumPeer<float>* spectrum_openblas() {
    return &kOpenBlas<float>;
}

}  // namespace bench
