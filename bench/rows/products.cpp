// Products, 2 m n k operations.
#include <memory>

#include "kernel/kernel.h"
#include "peers/peers.h"
#include "rows.h"
#include "rows/twin.h"

namespace bench {
namespace {

constexpr bool transposes_a(Pattern pattern) {
    return pattern == Pattern::tn || pattern == Pattern::tt;
}
constexpr bool transposes_b(Pattern pattern) {
    return pattern == Pattern::nt || pattern == Pattern::tt;
}

// The operands, and a case that holds everybody but ours.
template <class Real>
struct Operands {
    Problem<Real> a, b;
    std::vector<Real> c;
};

template <class Real, Pattern pattern>
Case peers_only(const std::shared_ptr<Operands<Real>>& s) {
    const auto inner = static_cast<double>(transposes_a(pattern) ? s->a.height : s->a.width);
    Case one{2 * static_cast<double>(s->c.size()) * inner, {}};
    for (const auto& [who, peer] : peers<Real>()) {
        const PeerTask<Real> task =
            peer->product(s->a, transposes_a(pattern), s->b, transposes_b(pattern));
        one.contenders.push_back({who, task.run, [s, task] {
                                      return error_of_product(s->a, transposes_a(pattern), s->b,
                                                              transposes_b(pattern),
                                                              task.result().rows);
                                  }});
    }
    return one;
}

template <class Real>
std::shared_ptr<Operands<Real>> operands(Size n) {
    return std::make_shared<Operands<Real>>(
        Operands<Real>{random_matrix<Real>(n, n, 3), random_matrix<Real>(n, n, 4),
                       std::vector<Real>(static_cast<std::size_t>(n * n))});
}

}  // namespace

template <class Real, Pattern pattern>
Case make_gemm(Size n) {
    const auto s = operands<Real>(n);
    Case one = peers_only<Real, pattern>(s);
    const auto view = [n](const std::vector<Real>& rows, bool transposed) {
        const nequar::View<const Real> plain(rows.data(), n, n, n);
        return transposed ? plain.transposed() : plain;
    };
    const auto run = [s, a = view(s->a.rows, transposes_a(pattern)),
                      b = view(s->b.rows, transposes_b(pattern)),
                      c = nequar::View<Real>(s->c.data(), n, n, n)] {
        nequar::kernel::gemm<Real>(Real(1), a, b, nequar::kernel::Update::set, c);
    };
    one.contenders.insert(one.contenders.begin(), {Who::nequar, run, [s] {
                                                       return error_of_product(
                                                           s->a, transposes_a(pattern), s->b,
                                                           transposes_b(pattern), s->c);
                                                   }});
    return one;
}

template <class Real, Thin thin>
Case make_thin_gemm(Size n) {
    const Size m = thin == Thin::few_rows ? 8 : n, width = thin == Thin::few_columns ? 8 : n;
    const Size k = thin == Thin::few_steps ? 32 : n;
    const auto s = std::make_shared<Operands<Real>>(
        Operands<Real>{random_matrix<Real>(m, k, 3), random_matrix<Real>(k, width, 4),
                       std::vector<Real>(static_cast<std::size_t>(m * width))});
    Case one = peers_only<Real, Pattern::nn>(s);
    const auto run = [s, a = nequar::View<const Real>(s->a.rows.data(), m, k, k),
                      b = nequar::View<const Real>(s->b.rows.data(), k, width, width),
                      c = nequar::View<Real>(s->c.data(), m, width, width)] {
        nequar::kernel::gemm<Real>(Real(1), a, b, nequar::kernel::Update::set, c);
    };
    one.contenders.insert(
        one.contenders.begin(),
        {Who::nequar, run, [s] { return error_of_product(s->a, false, s->b, false, s->c); }});
    return one;
}

template <class Real, Pattern pattern>
Case make_object_product(Size n) {
    static_assert(pattern != Pattern::tt, "there is no such operation on objects");
    struct Objects {
        typename Twin<Real>::Matrix a, b, c;
        typename Twin<Real>::Algebra algebra;
    };
    const auto s = operands<Real>(n);
    const auto o = std::make_shared<Objects>();
    o->a = matrix_of(s->a);
    o->b = matrix_of(s->b);
    Case one = peers_only<Real, pattern>(s);
    const auto run = [o] {
        if constexpr (pattern == Pattern::nn)
            o->algebra.mmm_Multiply_Matrix_Matrix(&o->a, &o->b, &o->c);
        else if constexpr (pattern == Pattern::nt)
            o->algebra.mmt_Multiply_Matrix_Tmatrix(&o->a, &o->b, &o->c);
        else
            o->algebra.mtm_Multiply_Tmatrix_Matrix(&o->a, &o->b, &o->c);
    };
    one.contenders.insert(one.contenders.begin(), {Who::nequar, run, [s, o] {
                                                       return error_of_product(
                                                           s->a, transposes_a(pattern), s->b,
                                                           transposes_b(pattern), rows_of(o->c));
                                                   }});
    return one;
}

#define NEQUAR_PATTERN(make, pattern)                   \
    template Case make<double, Pattern::pattern>(Size); \
    template Case make<float, Pattern::pattern>(Size);
NEQUAR_PATTERN(make_gemm, nn)
NEQUAR_PATTERN(make_gemm, nt)
NEQUAR_PATTERN(make_gemm, tn)
NEQUAR_PATTERN(make_gemm, tt)
#define NEQUAR_THIN(thin)                                   \
    template Case make_thin_gemm<double, Thin::thin>(Size); \
    template Case make_thin_gemm<float, Thin::thin>(Size);
NEQUAR_THIN(few_columns)
NEQUAR_THIN(few_rows)
NEQUAR_THIN(few_steps)
NEQUAR_PATTERN(make_object_product, nn)
NEQUAR_PATTERN(make_object_product, nt)
NEQUAR_PATTERN(make_object_product, tn)

}  // namespace bench
