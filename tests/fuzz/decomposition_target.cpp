// Decompositions of matrices of any values: all end; finite ones far from the end of the range give
// finite factors that rebuild the matrix; what is not finite is refused or stays visible.
#include <nequar_algebra/nequar_algebra.h>

#include "fuzz/awkward_matrix.h"

namespace {

using namespace nequar;
using namespace nequar::fuzz;

using test::unpacked;

template <class Real>
struct Decompositions {
    Input input;
    const LinearEquation<Real> tool{};
    Matrix<Real> a{}, q{}, r{}, z{};
    MatrixDiagonal<Real> d{};
    int count = 0, steps = 0;
    CNqVectorInt perm{};
    bool is_tame = false;  // finite, and so are sums of squares times a growth

    void take(int height, int width, bool symmetric = false) {
        a = some_matrix<Real>(input, height, width);
        if (symmetric) make_symmetric(a);
        is_tame = double(test::largest_of(a)) <
                  double(std::numeric_limits<Real>::max()) / (4.0 * height * width);
    }
    // Whether the factors may be held against the matrix.
    template <class... Matrices>
    bool has_factors(const Matrices&... factors) {
        const bool are_finite = (is_finite(factors) && ...);
        if (is_tame) NEQUAR_REQUIRE(are_finite);
        if (has_nan(a)) NEQUAR_REQUIRE(!are_finite);
        return is_finite(a) && are_finite;
    }

    void lu(bool partial) {
        const int n = some_order(input);
        take(n, n);
        MatrixTriangularLower<Real> l;
        MatrixTriangularUpper<Real> u;
        const bool done =
            partial ? tool.dlup_Decompose_into_LU_matrices_with_Partial_pivoting(&a, &l, &u, &perm,
                                                                                 count)
                    : tool.dluc_Decompose_into_LU_matrices_by_Crout(&a, &l, &u, &perm, count);
        if (!done) return;
        q = unpacked(l);
        r = unpacked(u);
        is_tame = false;  // a tiny pivot lets the factors overflow
        if (!has_factors(q, r)) return;
        const Wide size = Wide(q).magnitudes() * Wide(r).magnitudes();
        // A multiplier may round as a subnormal number does.
        const long double lost = std::numeric_limits<Real>::denorm_min() /
                                 static_cast<long double>(std::numeric_limits<Real>::epsilon());
        NEQUAR_REQUIRE(agree<Real>(test::with_rows(a, perm.p()), Wide(q) * Wide(r),
                                   size.largest() + lost * Wide(r).largest()));
        Real condition = 0;
        tool.ecn_Estimate_Condition_Number(&a, condition);
        tool.d_Determinant(&a, condition);
    }

    void cholesky(bool lower) {
        const int n = some_order(input);
        take(n, n, true);
        if (input.coin())
            for (int i = 0; i < n; ++i) a[i][i] = std::abs(a[i][i]) * 16;
        const MatrixSymmetric<Real> s = test::packed_of(a);
        MatrixTriangularLower<Real> l;
        MatrixTriangularUpper<Real> u;
        if (!(lower ? tool.dch_Decompose_matrix_by_Cholesky_algorithm(&s, &l)
                    : tool.dch_Decompose_matrix_by_Cholesky_algorithm(&s, &u)))
            return;
        NEQUAR_REQUIRE(tool.ipdc_Is_Positive_Definite_matrix_based_on_Cholesky_decomposition(&s) ||
                       !lower);
        q = lower ? unpacked(l) : unpacked(u);
        if (is_finite(a) && is_finite(q)) NEQUAR_REQUIRE(agree(a, Wide(q) * Wide(q).transposed()));
    }

    void householder(int form) {
        const int k = some_order(input), extra = input.below(3);
        const bool is_tall = form == 1 || (form != 2 && input.coin());
        take(is_tall ? k + extra : k, is_tall ? k : k + extra);
        MatrixTriangularUpper<Real> u;
        MatrixTriangularLower<Real> l;
        NEQUAR_REQUIRE(
            form == 0   ? tool.dqrh_Decompose_into_QR_matrices_based_on_Householder(&a, &q, &u)
            : form == 1 ? tool.dqlh_Decompose_into_QL_matrices_based_on_Householder(&a, &q, &l)
            : form == 2 ? tool.drqh_Decompose_into_RQ_matrices_based_on_Householder(&a, &u, &q)
                        : tool.dlqh_Decompose_into_LQ_matrices_based_on_Householder(&a, &l, &q));
        r = form == 0 || form == 2 ? unpacked(u) : unpacked(l);
        // A trapezoid of QL (RQ) that ends in the corner is not one that packed factors hold.
        if (!has_factors(r, q)) return;
        NEQUAR_REQUIRE(is_orthogonal(q));
        NEQUAR_REQUIRE(agree(a, form < 2 ? Wide(q) * Wide(r) : Wide(r) * Wide(q)));
    }

    void pivoted(bool complete) {
        const int n = some_order(input);
        take(n + input.below(3), n);
        if (complete) {
            r = a;
            NEQUAR_REQUIRE(
                tool.u_dco_Decompose_matrix_Complete_Orthogonal_algorithm(&r, &q, &z, count));
        } else {
            NEQUAR_REQUIRE(tool.dqrc_Decompose_into_QR_matrices_with_Column_pivoting(
                &a, &q, &r, &perm, steps, count));
        }
        NEQUAR_REQUIRE(count >= 0 && count <= n);
        if (!is_finite(a) || !is_finite(q) || !is_finite(r)) return;
        NEQUAR_REQUIRE(is_orthogonal(q));
        if (count < n) return;  // documented: the columns behind a lost rank are not reduced
        for (int i = 0; i < r.mh(); ++i)
            for (int j = 0; j < n; ++j)
                if (complete ? j > i : j < i) r[i][j] = 0;
        const Wide rebuilt = Wide(q) * Wide(r);
        if (complete) {
            NEQUAR_REQUIRE(is_orthogonal(z));
            NEQUAR_REQUIRE(agree(a, rebuilt * Wide(z).transposed()));
            return;
        }
        const auto chosen =
            test::matrix_of<Real>(a.mh(), n, [&](int i, int j) { return a[i][perm[j]]; });
        NEQUAR_REQUIRE(agree(chosen, rebuilt));
    }

    void hessenberg() {
        const int n = some_order(input);
        take(n, n);
        NEQUAR_REQUIRE(tool.dhr_Do_Hessenberg_Reduction(&a, &r, &q));
        if (!has_factors(r) || !has_factors(q)) return;
        NEQUAR_REQUIRE(is_orthogonal(q));
        NEQUAR_REQUIRE(agree(a, Wide(q) * Wide(r) * Wide(q).transposed()));
    }

    void singular_values(bool only_bidiagonal) {
        const int n = some_order(input);
        take(n + input.below(3), n);
        const bool done = only_bidiagonal
                              ? tool.bdm_Bidiagonalize_Matrix(&a, &q, &r, &z)
                              : tool.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
                                    &a, &q, &d, &z, 100000, steps);
        if (!only_bidiagonal) {
            NEQUAR_REQUIRE(done == is_finite(a));
            if (done) NEQUAR_REQUIRE(steps < 100000);
            if (done) r = unpacked(d);
        }
        if (!done || !is_finite(a)) return;
        if (is_tame) NEQUAR_REQUIRE(is_finite(r));
        if (!is_finite(r)) return;
        NEQUAR_REQUIRE(is_orthogonal(q) && is_orthogonal(z));
        NEQUAR_REQUIRE(agree(a, Wide(q) * Wide(r) * Wide(z).transposed()));
        for (int i = 0; !only_bidiagonal && i < n; ++i)
            NEQUAR_REQUIRE(d[i] >= 0 && (i == 0 || d[i] <= d[i - 1]));
    }

    void eigenvalues(int mode) {
        const int n = some_order(input);
        take(n, n, true);
        const MatrixSymmetric<Real> s = test::packed_of(a);
        if (mode == 4) {
            NEQUAR_REQUIRE(tool.tdm_Tridiagonalize_Matrix(&s, &q, &r));
        } else {
            NEQUAR_REQUIRE(mode < 3
                               ? tool.devj_Decompose_to_find_Eigen_Values_using_Jacobi_rotations(
                                     mode, &s, &q, &d, 100, Real(0), steps, count)
                               : tool.devt_Decompose_to_find_Eigen_Values_via_Tridiagonalization(
                                     &s, &q, &d, 100000, steps));
            r = unpacked(d);
        }
        if (!is_finite(a)) NEQUAR_REQUIRE(!is_finite(r));
        if (!has_factors(r)) return;
        NEQUAR_REQUIRE(is_orthogonal(q));
        NEQUAR_REQUIRE(agree(a, Wide(q) * Wide(r) * Wide(q).transposed()));
        for (int i = 1; mode < 4 && i < n; ++i) NEQUAR_REQUIRE(d[i] <= d[i - 1]);
    }

    // Rank and subspaces: the null space is orthonormal and A maps it onto what counts as zero.
    void subspaces() {
        take(some_order(input), some_order(input));
        const Real tolerance = input.coin() ? Real(1e-3) : input.value<Real>();
        Vector<Real> x;
        const bool found = tool.fin_Find_Input_Null_vector_space(&a, tolerance, count, &q, nullptr,
                                                                 nullptr, nullptr);
        if (found) {
            NEQUAR_REQUIRE(is_finite(a) && tolerance >= 0 && tolerance < 1);
            NEQUAR_REQUIRE(count >= 0 && count <= std::min(a.mh(), a.mw()));
        }
        if (found && count < a.mw()) {
            NEQUAR_REQUIRE(q.mh() == a.mw() && q.mw() == a.mw() - count && is_orthogonal(q));
            const long double norm = Wide(a).largest() * std::sqrt(1.0L * a.mh() * a.mw());
            const Wide image = Wide(a) * Wide(q);
            NEQUAR_REQUIRE(
                agree<Real>(image, Wide(image.height, image.width),
                            norm * (1 + tolerance / std::numeric_limits<Real>::epsilon())));
        }
        tool.fid_Find_Input_Domain_vector_space(&a, tolerance, count, &q, nullptr, nullptr,
                                                nullptr);
        tool.fou_Find_Output_Unreached_vector_space(&a, tolerance, count, &q, nullptr, nullptr,
                                                    nullptr);
        tool.rev_Rank_based_on_Eigen_Value_decomposition(&a, tolerance, count);
        tool.rqr_Rank_based_on_QR_decomposition_with_column_pivoting(&a, count);
        tool.shle_Solve_Homogeneous_Linear_Equation(&a, &x);
        tool.ogs_Orthogonalize_set_of_vectors_based_on_Gram_Schmidt_algorithm(&a, &q);
        a = some_matrix<Real>(input, 3, 3);
        tool.drq3_Decompose_into_RQ_matrices_for_3x3_matrix(&a, &r, &q);
    }

    void generalized() {
        const int n = some_order(input, 13);
        take(n, n, true);
        const MatrixSymmetric<Real> s = test::packed_of(a);
        take(n, n, true);
        for (int i = 0; i < n; ++i) a[i][i] = std::abs(a[i][i]) * 16 + 1;
        const MatrixSymmetric<Real> t = test::packed_of(a);
        tool.dgea_Do_Generalized_Eigen_Analysis(&s, &t, &q, &d);
    }

    void run() {
        const int choice = input.below(19);
        if (choice < 2) return lu(choice == 0);
        if (choice < 4) return cholesky(choice == 2);
        if (choice < 8) return householder(choice - 4);
        if (choice < 10) return pivoted(choice == 8);
        if (choice == 10) return hessenberg();
        if (choice < 13) return singular_values(choice == 11);
        if (choice < 18) return eigenvalues(choice - 13);
        return input.coin() ? subspaces() : generalized();
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    if (input.coin())
        Decompositions<double>{input}.run();
    else
        Decompositions<float>{input}.run();
    return 0;
}
