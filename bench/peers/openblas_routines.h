// The routines of BLAS and LAPACK that the benchmark calls, and OpenBLAS's own extensions: declared
// as their Fortran interfaces are, with the hidden lengths of strings, and by element type.
#pragma once

#include <cstddef>

extern "C" {
char* openblas_get_config();
char* openblas_get_corename();

#define NEQUAR_REDUCE(Real, name) \
    void name(const int*, const int*, Real*, const int*, Real*, Real*, const int*, int*);
#define NEQUAR_FORM(Real, name)                                                          \
    void name(const int*, const int*, const int*, Real*, const int*, const Real*, Real*, \
              const int*, int*);
#define NEQUAR_ROUTINES(Real, p)                                                                   \
    Real p##dot_(const int*, const Real*, const int*, const Real*, const int*);                    \
    Real p##nrm2_(const int*, const Real*, const int*);                                            \
    void p##copy_(const int*, const Real*, const int*, Real*, const int*);                         \
    void p##axpy_(const int*, const Real*, const Real*, const int*, Real*, const int*);            \
    void p##axpby_(const int*, const Real*, const Real*, const int*, const Real*, Real*,           \
                   const int*);                                                                    \
    void p##gemv_(const char*, const int*, const int*, const Real*, const Real*, const int*,       \
                  const Real*, const int*, const Real*, Real*, const int*, std::size_t);           \
    void p##gemm_(const char*, const char*, const int*, const int*, const int*, const Real*,       \
                  const Real*, const int*, const Real*, const int*, const Real*, Real*,            \
                  const int*, std::size_t, std::size_t);                                           \
    void p##syrk_(const char*, const char*, const int*, const int*, const Real*, const Real*,      \
                  const int*, const Real*, Real*, const int*, std::size_t, std::size_t);           \
    void p##trsv_(const char*, const char*, const char*, const int*, const Real*, const int*,      \
                  Real*, const int*, std::size_t, std::size_t, std::size_t);                       \
    void p##trsm_(const char*, const char*, const char*, const char*, const int*, const int*,      \
                  const Real*, const Real*, const int*, Real*, const int*, std::size_t,            \
                  std::size_t, std::size_t, std::size_t);                                          \
    void p##omatcopy_(const char*, const char*, const int*, const int*, const Real*, const Real*,  \
                      const int*, Real*, const int*);                                              \
    void p##imatcopy_(const char*, const char*, const int*, const int*, const Real*, Real*,        \
                      const int*, const int*);                                                     \
    void p##trttp_(const char*, const int*, const Real*, const int*, Real*, int*, std::size_t);    \
    void p##tpttr_(const char*, const int*, const Real*, Real*, const int*, int*, std::size_t);    \
    void p##trtri_(const char*, const char*, const int*, Real*, const int*, int*, std::size_t,     \
                   std::size_t);                                                                   \
    void p##getrf_(const int*, const int*, Real*, const int*, int*, int*);                         \
    void p##getri_(const int*, Real*, const int*, const int*, Real*, const int*, int*);            \
    void p##gesv_(const int*, const int*, Real*, const int*, int*, Real*, const int*, int*);       \
    void p##potrf_(const char*, const int*, Real*, const int*, int*, std::size_t);                 \
    void p##posv_(const char*, const int*, const int*, Real*, const int*, Real*, const int*, int*, \
                  std::size_t);                                                                    \
    NEQUAR_REDUCE(Real, p##geqrf_)                                                                 \
    NEQUAR_REDUCE(Real, p##geqlf_)                                                                 \
    NEQUAR_REDUCE(Real, p##gerqf_)                                                                 \
    NEQUAR_REDUCE(Real, p##gelqf_)                                                                 \
    NEQUAR_FORM(Real, p##orgqr_)                                                                   \
    NEQUAR_FORM(Real, p##orgql_)                                                                   \
    NEQUAR_FORM(Real, p##orgrq_)                                                                   \
    NEQUAR_FORM(Real, p##orglq_)                                                                   \
    NEQUAR_FORM(Real, p##orghr_)                                                                   \
    NEQUAR_FORM(Real, p##gehrd_)                                                                   \
    void p##geqp3_(const int*, const int*, Real*, const int*, int*, Real*, Real*, const int*,      \
                   int*);                                                                          \
    void p##ormqr_(const char*, const char*, const int*, const int*, const int*, const Real*,      \
                   const int*, const Real*, Real*, const int*, Real*, const int*, int*,            \
                   std::size_t, std::size_t);                                                      \
    void p##gesvd_(const char*, const char*, const int*, const int*, Real*, const int*, Real*,     \
                   Real*, const int*, Real*, const int*, Real*, const int*, int*, std::size_t,     \
                   std::size_t);                                                                   \
    void p##gesdd_(const char*, const int*, const int*, Real*, const int*, Real*, Real*,           \
                   const int*, Real*, const int*, Real*, const int*, int*, int*, std::size_t);     \
    void p##syev_(const char*, const char*, const int*, Real*, const int*, Real*, Real*,           \
                  const int*, int*, std::size_t, std::size_t);                                     \
    void p##syevd_(const char*, const char*, const int*, Real*, const int*, Real*, Real*,          \
                   const int*, int*, const int*, int*, std::size_t, std::size_t);
NEQUAR_ROUTINES(double, d)
NEQUAR_ROUTINES(float, s)
#undef NEQUAR_ROUTINES
#undef NEQUAR_FORM
#undef NEQUAR_REDUCE
}

namespace bench {

// The routines of one element type.
template <class Real>
struct Routines;

#define NEQUAR_ROUTINES(Real, p)                                                           \
    template <>                                                                            \
    struct Routines<Real> {                                                                \
        static constexpr decltype(&p##geqrf_) reduce[] = {p##geqrf_, p##geqlf_, p##gerqf_, \
                                                          p##gelqf_};                      \
        static constexpr decltype(&p##orgqr_) form[] = {p##orgqr_, p##orgql_, p##orgrq_,   \
                                                        p##orglq_};                        \
        static constexpr auto dot = p##dot_;                                               \
        static constexpr auto nrm2 = p##nrm2_;                                             \
        static constexpr auto copy = p##copy_;                                             \
        static constexpr auto axpy = p##axpy_;                                             \
        static constexpr auto axpby = p##axpby_;                                           \
        static constexpr auto gemv = p##gemv_;                                             \
        static constexpr auto gemm = p##gemm_;                                             \
        static constexpr auto syrk = p##syrk_;                                             \
        static constexpr auto trsv = p##trsv_;                                             \
        static constexpr auto trsm = p##trsm_;                                             \
        static constexpr auto omatcopy = p##omatcopy_;                                     \
        static constexpr auto imatcopy = p##imatcopy_;                                     \
        static constexpr auto trttp = p##trttp_;                                           \
        static constexpr auto tpttr = p##tpttr_;                                           \
        static constexpr auto trtri = p##trtri_;                                           \
        static constexpr auto getrf = p##getrf_;                                           \
        static constexpr auto getri = p##getri_;                                           \
        static constexpr auto gesv = p##gesv_;                                             \
        static constexpr auto potrf = p##potrf_;                                           \
        static constexpr auto posv = p##posv_;                                             \
        static constexpr auto orghr = p##orghr_;                                           \
        static constexpr auto gehrd = p##gehrd_;                                           \
        static constexpr auto geqp3 = p##geqp3_;                                           \
        static constexpr auto ormqr = p##ormqr_;                                           \
        static constexpr auto gesvd = p##gesvd_;                                           \
        static constexpr auto gesdd = p##gesdd_;                                           \
        static constexpr auto syev = p##syev_;                                             \
        static constexpr auto syevd = p##syevd_;                                           \
    };
NEQUAR_ROUTINES(double, d)
NEQUAR_ROUTINES(float, s)
#undef NEQUAR_ROUTINES

}  // namespace bench
