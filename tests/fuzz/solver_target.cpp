// Every method code on matrices of any values: all calls end, NaN is never lost, and the methods
// that are backward stable leave small residuals where everything is finite.
#include <nequar_algebra/nequar_algebra.h>

#include "fuzz/awkward_matrix.h"

namespace {

using namespace nequar;
using namespace nequar::fuzz;

// The codes of the stable methods, with a dense and with a packed matrix: QR, QL, RQ, LQ; A = L L^T
// and U U^T. LU without real pivoting, Gauss-Jordan, and spectral ones that drop values are none.
bool is_stable(int code, bool is_packed) {
    return is_packed ? code >= 2 && code != 6 && code != 9 : code == 2 || code == 4;
}

template <class Real>
bool solves(const Matrix<Real>& a, const Matrix<Real>& b, const Matrix<Real>& x,
            const Wide& product) {
    const Wide size = Wide(a).magnitudes() * Wide(x).magnitudes();
    const long double tiny = std::numeric_limits<Real>::min() /
                             static_cast<long double>(std::numeric_limits<Real>::epsilon());
    const long double scale =
        Wide(a).largest() * Wide(x).largest() * a.mw() + size.largest() + Wide(b).largest();
    return agree<Real>(b, product, scale + tiny * Wide(a).largest());
}

template <class Real>
void check(const Matrix<Real>& a, const Matrix<Real>& b, const Matrix<Real>& x, bool is_stable,
           bool is_inverse = false) {
    if (has_nan(a)) NEQUAR_REQUIRE(!is_finite(x));
    // Elimination divides by a pivot that has overflowed: far from the end of the range alone.
    const double end = double(std::numeric_limits<Real>::max()) / (64.0 * a.mh() * a.mw());
    if (!is_stable || !(test::largest_of(a) < end) || !is_finite(b) || !is_finite(x)) return;
    // An inverse is stable from one side or from the other.
    NEQUAR_REQUIRE(solves(a, b, x, Wide(a) * Wide(x)) ||
                   (is_inverse && solves(a, b, x, Wide(x) * Wide(a))));
}

template <class Real>
void run(Input input) {
    const LinearEquation<Real> tool;
    const int n = some_order(input);
    const int m = input.below(8) == 0 ? some_order(input) : n;
    Matrix<Real> a = some_matrix<Real>(input, m, n), x;
    const Matrix<Real> b = some_matrix<Real>(input, m, 1 + input.below(3));
    const Matrix<Real> one = test::identity_of<Real>(m);
    Vector<Real> y;
    for (int code = -1; code <= 10; ++code) {
        if (tool.sle_Solve_Linear_Equation(code, &a, &b, &x))
            check(a, b, x, is_stable(code, false));
        if (tool.im_Inverse_Matrix(code, &a, &x)) check(a, one, x, is_stable(code, false), true);
    }
    if (tool.slup_Solve_based_on_LUP(&a, &b, &x)) check(a, b, x, n <= 6);
    if (tool.ilup_Inverse_matrix_based_on_LUP(&a, &x) && has_nan(a)) NEQUAR_REQUIRE(!is_finite(x));
    const Real tolerance = input.coin() ? Real(1e-4) : input.value<Real>();
    if (tool.pisv_Pseudo_Inverse_matrix_based_on_SVD(&a, tolerance, &x))
        NEQUAR_REQUIRE(x.mh() == n && x.mw() == m && is_finite(a));
    tool.ssv_Solve_based_on_SVD(&a, tolerance, &b, &x);
    tool.shle_c0_Solve_Homogeneous_Linear_Equation_with_Cx_is_0(&a, &b, tolerance, &y);
    tool.shle_gh_Solve_Homogeneous_Linear_Equation_with_x_is_Gx_hat(&a, &b, tolerance, &y, nullptr);

    if (m != n) return;
    make_symmetric(a);
    if (input.coin())
        for (int i = 0; i < n; ++i) a[i][i] = std::abs(a[i][i]) * 16;
    const MatrixSymmetric<Real> s = test::packed_of(a);
    for (int code = -1; code <= 10; ++code) {
        if (tool.sle_Solve_Linear_Equation(code, &s, &b, &x)) check(a, b, x, is_stable(code, true));
        if (tool.im_Inverse_Matrix(code, &s, &x)) check(a, one, x, is_stable(code, true), true);
    }
    if (tool.piev_Pseudo_Inverse_matrix_based_on_EVD(&s, tolerance, &x) && has_nan(a))
        NEQUAR_REQUIRE(!is_finite(x));

    // The structured systems of the same first row.
    Vector<Real> row, f;
    a.gr_Get_Row(0, 0, n, &row);
    b.gc_Get_Column(0, 0, n, &f);
    MatrixToeplitzSymmetric<Real> t;
    if (t.im_Import(n, row)) {
        t.fimt_Find_Inverse_Matrix_by_Trench(&x, nullptr);
        t.slel_Solve_Linear_Equation_by_Levinson(f);
        t.u_sywd_Solve_Yule_Walker_equation_by_Durbin(row, &f, &t);
    }
    MatrixVandermonde<Real> v;
    f = row;
    v.im_Import(row);
    v.sle_Solve_Linear_Equation(f);
    v.u_fcp_Find_Coefficients_of_Polynomial(row, row, input.coin());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    if (input.coin())
        run<double>(input);
    else
        run<float>(input);
    return 0;
}
