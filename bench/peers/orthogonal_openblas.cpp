// LAPACK's orthogonal factorizations and BLAS's triangular solves, from OpenBLAS.
#include <algorithm>
#include <memory>

#include "peers/orthogonal.h"

extern "C" {
#define NEQUAR_REDUCE(type, name) \
    void name(const int*, const int*, type*, const int*, type*, type*, const int*, int*);
#define NEQUAR_FORM(type, name)                                                          \
    void name(const int*, const int*, const int*, type*, const int*, const type*, type*, \
              const int*, int*);
#define NEQUAR_ROUTINES(type, p)                                                               \
    NEQUAR_REDUCE(type, p##geqrf_)                                                             \
    NEQUAR_REDUCE(type, p##geqlf_)                                                             \
    NEQUAR_REDUCE(type, p##gerqf_)                                                             \
    NEQUAR_REDUCE(type, p##gelqf_)                                                             \
    NEQUAR_FORM(type, p##orgqr_)                                                               \
    NEQUAR_FORM(type, p##orgql_)                                                               \
    NEQUAR_FORM(type, p##orgrq_)                                                               \
    NEQUAR_FORM(type, p##orglq_)                                                               \
    NEQUAR_FORM(type, p##orghr_)                                                               \
    NEQUAR_FORM(type, p##gehrd_)                                                               \
    void p##geqp3_(const int*, const int*, type*, const int*, int*, type*, type*, const int*,  \
                   int*);                                                                      \
    void p##ormqr_(const char*, const char*, const int*, const int*, const int*, const type*,  \
                   const int*, const type*, type*, const int*, type*, const int*, int*,        \
                   std::size_t, std::size_t);                                                  \
    void p##trsv_(const char*, const char*, const char*, const int*, const type*, const int*,  \
                  type*, const int*, std::size_t, std::size_t, std::size_t);                   \
    void p##trsm_(const char*, const char*, const char*, const char*, const int*, const int*,  \
                  const type*, const type*, const int*, type*, const int*, std::size_t,        \
                  std::size_t, std::size_t, std::size_t);                                      \
    void p##trtri_(const char*, const char*, const int*, type*, const int*, int*, std::size_t, \
                   std::size_t);
NEQUAR_ROUTINES(double, d)
NEQUAR_ROUTINES(float, s)
}

namespace bench {
namespace {

template <class Real>
struct Routines;

#define NEQUAR_TABLE(type, p)                                                              \
    template <>                                                                            \
    struct Routines<type> {                                                                \
        static constexpr decltype(&p##geqrf_) reduce[] = {p##geqrf_, p##geqlf_, p##gerqf_, \
                                                          p##gelqf_};                      \
        static constexpr decltype(&p##orgqr_) form[] = {p##orgqr_, p##orgql_, p##orgrq_,   \
                                                        p##orglq_};                        \
        static constexpr auto orghr = p##orghr_;                                           \
        static constexpr auto gehrd = p##gehrd_;                                           \
        static constexpr auto geqp3 = p##geqp3_;                                           \
        static constexpr auto ormqr = p##ormqr_;                                           \
        static constexpr auto trsv = p##trsv_;                                             \
        static constexpr auto trsm = p##trsm_;                                             \
        static constexpr auto trtri = p##trtri_;                                           \
    };
NEQUAR_TABLE(double, d)
NEQUAR_TABLE(float, s)

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
