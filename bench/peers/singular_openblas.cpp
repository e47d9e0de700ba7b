// LAPACK's singular values, from OpenBLAS.
#include <algorithm>
#include <memory>

#include "peers/openblas_routines.h"
#include "peers/singular.h"

namespace bench {
namespace {

template <class Real>
struct State {
    Problem<Real> a;
    SingularJob job;
    int m, n, info = 0;
    std::vector<Real> work, values, left, right, inverse, scratch;  // V is transposed
    std::vector<int> integers;

    State(const Problem<Real>& of, SingularJob wanted)
        : a(of),
          job(wanted),
          m(static_cast<int>(a.height)),
          n(static_cast<int>(a.width)),
          work(a.count()),
          values(static_cast<std::size_t>(n)),
          left(job == SingularJob::values ? 1 : a.count()),
          right(static_cast<std::size_t>(n) * static_cast<std::size_t>(n)),
          scratch(1),
          integers(8 * static_cast<std::size_t>(n)) {
        if (job == SingularJob::pseudo_inverse) inverse.resize(a.count());
        call(-1);  // asks for what is wanted
        scratch.resize(static_cast<std::size_t>(scratch[0]) + 1);
    }

    void call(int room) {
        const char* const part = job == SingularJob::values ? "N" : m > n ? "S" : "A";
        if (job == SingularJob::by_qr)
            Routines<Real>::gesvd(part, part, &m, &n, work.data(), &m, values.data(), left.data(),
                                  &m, right.data(), &n, scratch.data(), &room, &info, 1, 1);
        else
            Routines<Real>::gesdd(part, &m, &n, work.data(), &m, values.data(), left.data(), &m,
                                  right.data(), &n, scratch.data(), &room, integers.data(), &info,
                                  1);
    }
    void run() {
        std::copy(a.columns.begin(), a.columns.end(), work.begin());
        call(static_cast<int>(scratch.size()));
        if (job != SingularJob::pseudo_inverse) return;
        const Real one = 1, zero = 0;
        for (int j = 0; j < n; ++j)
            for (int i = 0; i < m; ++i)
                left[static_cast<std::size_t>(i + j * m)] /= values[static_cast<std::size_t>(j)];
        Routines<Real>::gemm("T", "T", &n, &m, &n, &one, right.data(), &n, left.data(), &m, &zero,
                             inverse.data(), &n, 1, 1);
    }
    static std::vector<Real> rows_from(const std::vector<Real>& columns, Size height, Size width) {
        Problem<Real> matrix(height, width);
        matrix.columns = columns;
        matrix.rows_from_columns();
        return matrix.rows;
    }
    Singular<Real> result() const {
        Singular<Real> found{values, {}, {}, {}};
        if (job == SingularJob::values) return found;
        if (job == SingularJob::pseudo_inverse) {
            found.inverse = rows_from(inverse, n, m);
            return found;
        }
        if (job != SingularJob::tall) found.left = rows_from(left, m, n);
        found.right = right;  // the columns of V^T are the rows of V
        return found;
    }
};

template <class Real>
SingularTask<Real> singular(SingularJob job, const Problem<Real>& a) {
    auto s = std::make_shared<State<Real>>(a, job);
    return {[s] { s->run(); }, [s] { return s->result(); }};
}

template <class Real>
constexpr SingularPeer<Real> kOpenBlas{singular<Real>};

}  // namespace

template <>
const SingularPeer<double>* singular_openblas() {
    return &kOpenBlas<double>;
}
template <>
const SingularPeer<float>* singular_openblas() {
    return &kOpenBlas<float>;
}

}  // namespace bench
