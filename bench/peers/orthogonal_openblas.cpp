// LAPACK's orthogonal factorizations and BLAS's triangular solves, from OpenBLAS.
#include <algorithm>
#include <memory>

#include "peers/openblas_routines.h"
#include "peers/orthogonal.h"

namespace bench {
namespace {

template <class Real>
struct State {
    using R = Routines<Real>;

    Problem<Real> a, b;
    std::vector<Real> work, q, x, tau, scratch;
    std::vector<int> pivots;
    int m, n, k, count, room, info = 0;

    State(const Problem<Real>& of_a, const Problem<Real>& of_b)
        : a(of_a),
          b(of_b),
          work(a.count()),
          x(b.count()),
          tau(static_cast<std::size_t>(a.width + a.height)),
          scratch(static_cast<std::size_t>(128 * (a.width + a.height + b.width + 64))),
          pivots(static_cast<std::size_t>(a.width)),
          m(static_cast<int>(a.height)),
          n(static_cast<int>(a.width)),
          k(static_cast<int>(b.width)),
          count(std::min(m, n)),
          room(static_cast<int>(scratch.size())) {}

    void copy_a() { std::copy(a.columns.begin(), a.columns.end(), work.begin()); }
    void copy_b() { std::copy(b.columns.begin(), b.columns.end(), x.begin()); }

    void reduce(Form form) {
        const int one = 1;
        if (form == Form::hessenberg)
            return R::gehrd(&n, &one, &n, work.data(), &n, tau.data(), scratch.data(), &room,
                            &info);
        if (form == Form::pivoted) {
            std::fill(pivots.begin(), pivots.end(), 0);
            return R::geqp3(&m, &n, work.data(), &m, pivots.data(), tau.data(), scratch.data(),
                            &room, &info);
        }
        R::reduce[static_cast<int>(form)](&m, &n, work.data(), &m, tau.data(), scratch.data(),
                                          &room, &info);
    }
    // Square matrices only.
    void form_q(Form form) {
        const int one = 1;
        q = work;
        if (form == Form::hessenberg)
            return R::orghr(&n, &one, &n, q.data(), &n, tau.data(), scratch.data(), &room, &info);
        R::form[form == Form::pivoted ? 0 : static_cast<int>(form)](
            &n, &n, &n, q.data(), &n, tau.data(), scratch.data(), &room, &info);
    }
};

template <class Real>
std::vector<Real> in_rows(const std::vector<Real>& columns, Size height, Size width) {
    Problem<Real> matrix(height, width);
    matrix.columns = columns;
    matrix.rows_from_columns();
    return matrix.rows;
}

template <class Real>
FactorTask<Real> factor(Form form, bool with_q, const Problem<Real>& a) {
    auto s = std::make_shared<State<Real>>(a, Problem<Real>(0, 0));
    return {[=] {
                s->copy_a();
                s->reduce(form);
                if (with_q) s->form_q(form);
            },
            [=] {
                Factors<Real> factors{in_rows(s->work, s->m, s->n), {}, {}};
                if (with_q) factors.q = in_rows(s->q, s->m, s->m);
                if (form == Form::pivoted)
                    for (const int pivot : s->pivots) factors.perm.push_back(pivot - 1);
                return factors;
            }};
}

template <class Real, class Run>
PeerTask<Real> solve(const Problem<Real>& a, const Problem<Real>& b, Run run) {
    auto s = std::make_shared<State<Real>>(a, b);
    return {[=] { run(*s); }, [=] { return PeerResult<Real>{in_rows(s->x, s->n, s->k), {}}; }};
}

template <class Real>
PeerTask<Real> solve_qr(const Problem<Real>& a, const Problem<Real>& b) {
    return solve(a, b, [](State<Real>& s) {
        const int one = 1;
        s.copy_a();
        s.copy_b();
        s.reduce(Form::qr);
        Routines<Real>::ormqr("L", "T", &s.n, &s.k, &s.n, s.work.data(), &s.n, s.tau.data(),
                              s.x.data(), &s.n, s.scratch.data(), &s.room, &s.info, 1, 1);
        Routines<Real>::trsv("U", "N", "N", &s.n, s.work.data(), &s.n, s.x.data(), &one, 1, 1, 1);
    });
}

template <class Real>
PeerTask<Real> solve_triangle(const Problem<Real>& t, const Problem<Real>& b) {
    return solve(t, b, [](State<Real>& s) {
        const int step = 1;
        const Real one = 1;
        s.copy_b();
        if (s.k == 1)
            Routines<Real>::trsv("L", "N", "N", &s.n, s.a.columns.data(), &s.n, s.x.data(), &step,
                                 1, 1, 1);
        else
            Routines<Real>::trsm("L", "L", "N", "N", &s.n, &s.k, &one, s.a.columns.data(), &s.n,
                                 s.x.data(), &s.n, 1, 1, 1, 1);
    });
}

template <class Real>
PeerTask<Real> invert_triangle(const Problem<Real>& t) {
    return solve(t, t, [](State<Real>& s) {
        std::copy(s.a.columns.begin(), s.a.columns.end(), s.x.begin());
        Routines<Real>::trtri("L", "N", &s.n, s.x.data(), &s.n, &s.info, 1, 1);
    });
}

template <class Real>
constexpr OrthogonalPeer<Real> kOpenBlas{factor<Real>, solve_qr<Real>, solve_triangle<Real>,
                                         invert_triangle<Real>};

}  // namespace

template <>
const OrthogonalPeer<double>* orthogonal_openblas() {
    return &kOpenBlas<double>;
}
template <>
const OrthogonalPeer<float>* orthogonal_openblas() {
    return &kOpenBlas<float>;
}

}  // namespace bench
