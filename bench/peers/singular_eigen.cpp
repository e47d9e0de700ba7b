// Eigen's divide-and-conquer SVD.
#include <memory>

#include "peers/eigen_support.h"
#include "peers/singular.h"

namespace bench {
namespace {

template <class Real>
SingularTask<Real> singular(SingularJob job, const Problem<Real>& a) {
    struct State {
        Dense<Real> a, inverse;
        Eigen::BDCSVD<Dense<Real>> svd;
    };
    auto s = std::make_shared<State>();
    s->a = dense(a);
    unsigned options = Eigen::ComputeFullU | Eigen::ComputeFullV;
    if (job == SingularJob::values) options = 0;
    if (job == SingularJob::tall) options = Eigen::ComputeThinV;
    if (job == SingularJob::pseudo_inverse) options = Eigen::ComputeThinU | Eigen::ComputeThinV;
    return {[s, job, options] {
                s->svd.compute(s->a, options);
                if (job == SingularJob::pseudo_inverse)
                    s->inverse = s->svd.matrixV() *
                                 s->svd.singularValues().cwiseInverse().asDiagonal() *
                                 s->svd.matrixU().transpose();
            },
            [s, job, options] {
                const auto& values = s->svd.singularValues();
                Singular<Real> found{{values.data(), values.data() + values.size()}, {}, {}, {}};
                if (job == SingularJob::pseudo_inverse) {
                    found.inverse = rows_of<Real>(s->inverse);
                } else {
                    if (options & Eigen::ComputeFullU) found.left = rows_of<Real>(s->svd.matrixU());
                    if (options != 0) found.right = rows_of<Real>(s->svd.matrixV());
                }
                return found;
            }};
}

template <class Real>
constexpr SingularPeer<Real> kEigen{singular<Real>};

}  // namespace

template <>
const SingularPeer<double>* singular_eigen() {
    return &kEigen<double>;
}
template <>
const SingularPeer<float>* singular_eigen() {
    return &kEigen<float>;
}

}  // namespace bench
