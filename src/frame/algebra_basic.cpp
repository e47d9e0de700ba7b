// The raw-array kernels: sizes clamped, inputs that overlap the output kept apart, one call down.
#include "nequar_algebra/frame/algebra_basic.h"

#include "core/overlap.h"
#include "frame/algorithm/add_transposed.h"
#include "frame/algorithm/bilinear_form.h"
#include "frame/algorithm/diagonal.h"
#include "frame/algorithm/geometry.h"
#include "frame/algorithm/norm.h"
#include "frame/algorithm/structure.h"
#include "frame/views.h"
#include "kernel/kernel.h"

LCNqAlgebra_Basic::LCNqAlgebra_Basic() {
    set_class_name("LCNqAlgebra_Basic");
}

LCNqAlgebra_Basic::~LCNqAlgebra_Basic() = default;

namespace nequar {
namespace {

using kernel::Update;

Size at_least_zero(Size size) {
    return size > 0 ? size : 0;
}

template <class Real>
Strided<const Real> vector(Size n, const Real* a) {
    return {a, at_least_zero(n)};
}

template <class Real>
Strided<Real> vector(Size n, Real* a) {
    return {a, at_least_zero(n)};
}

template <class Real>
View<Real> matrix(bool row_major, Size h, Size w, Real* a) {
    return view_of_array(row_major, at_least_zero(h), at_least_zero(w), a);
}

template <class Real>
Size count_of(const View<Real>& view) {
    return view.height * view.width;
}

// C += A B, all three packed
template <class Real>
void accumulate_product(View<const Real> a, View<const Real> b, View<Real> c) {
    const Apart<Real> apart_a(a.data, count_of(a), c.data, count_of(c));
    const Apart<Real> apart_b(b.data, count_of(b), c.data, count_of(c));
    if (!apart_a || !apart_b) return;
    a.data = apart_a.data();
    b.data = apart_b.data();
    kernel::gemm(Real(1), a, b, Update::accumulate, c);
}

// y += A x
template <class Real>
void accumulate_product(View<const Real> a, const Real* x, Real* y) {
    const Apart<Real> apart_a(a.data, count_of(a), y, a.height);
    const Apart<Real> apart_x(x, a.width, y, a.height);
    if (!apart_a || !apart_x) return;
    a.data = apart_a.data();
    kernel::gemv(Real(1), a, vector(a.width, apart_x.data()), Update::accumulate,
                 vector(a.height, y));
}

}  // namespace

// ---- vectors ----

template <class Real>
void AlgebraBasic<Real>::avv_Add_Vector_Vector(Size n, const Real* a, const Real* b,
                                               Real* out) const {
    const ApartUnlessSame<Real> x(a, n, out);
    const ApartUnlessSame<Real> y(b, n, out);
    if (n > 0 && x && y) kernel::add(n, x.data(), y.data(), out);
}

template <class Real>
void AlgebraBasic<Real>::avvw_Add_Vector_Vector_with_Weight(Size n, const Real* a, const Real* b,
                                                            Real wa, Real wb, Real* out) const {
    const ApartUnlessSame<Real> x(a, n, out);
    const ApartUnlessSame<Real> y(b, n, out);
    if (n > 0 && x && y) kernel::add_weighted(n, x.data(), y.data(), wa, wb, out);
}

template <class Real>
void AlgebraBasic<Real>::avc_Add_Vector_Constant(Size n, const Real* a, Real c, Real* out) const {
    const ApartUnlessSame<Real> x(a, n, out);
    if (n > 0 && x) kernel::add_constant(n, x.data(), c, out);
}

template <class Real>
void AlgebraBasic<Real>::svv_Subtract_Vector_Vector(Size n, const Real* a, const Real* b,
                                                    Real* out) const {
    const ApartUnlessSame<Real> x(a, n, out);
    const ApartUnlessSame<Real> y(b, n, out);
    if (n > 0 && x && y) kernel::subtract(n, x.data(), y.data(), out);
}

template <class Real>
void AlgebraBasic<Real>::mvc_Multiply_Vector_Constant(Size n, const Real* a, Real c,
                                                      Real* out) const {
    const ApartUnlessSame<Real> x(a, n, out);
    if (n > 0 && x) kernel::scale(n, x.data(), c, out);
}

template <class Real>
void AlgebraBasic<Real>::mvve_Multiply_Vector_Vector_Elementwise(Size n, const Real* a,
                                                                 const Real* b, Real* out) const {
    const ApartUnlessSame<Real> x(a, n, out);
    const ApartUnlessSame<Real> y(b, n, out);
    if (n > 0 && x && y) kernel::multiply_elementwise(n, x.data(), y.data(), out);
}

template <class Real>
Real AlgebraBasic<Real>::ps_Product_Scalar(Size n, const Real* a, const Real* b, int) const {
    return kernel::dot(vector(n, a), vector(n, b));
}

template <class Real>
Real AlgebraBasic<Real>::n1_Norm_1(Size n, const Real* a, int) const {
    return kernel::sum_of_magnitudes(vector(n, a));
}

template <class Real>
Real AlgebraBasic<Real>::n2_Norm_2(Size n, const Real* a, int) const {
    return kernel::norm2(vector(n, a));
}

template <class Real>
Real AlgebraBasic<Real>::np_Norm_p(Real p, Size n, const Real* a, int) const {
    return norm_p(p, vector(n, a));
}

template <class Real>
bool AlgebraBasic<Real>::n_Normalize_vector(Size n, Real* a, int) const {
    return normalize(vector(n, a));
}

template <class Real>
Real AlgebraBasic<Real>::d2_Distance_2(Size n, const Real* a, const Real* b, int) const {
    return kernel::distance2(vector(n, a), vector(n, b));
}

// ---- geometry ----

template <class Real>
void AlgebraBasic<Real>::pv3_Product_Vector_of_vector_3D(const Real* a, const Real* b,
                                                         Real* out) const {
    cross_product(a, b, out);
}

template <class Real>
bool AlgebraBasic<Real>::nvt_Normal_Vector_of_Triangle_3D(const Real* p0, const Real* p1,
                                                          const Real* p2, Real* out) const {
    return normal_of_triangle(p0, p1, p2, out);
}

template <class Real>
bool AlgebraBasic<Real>::fl_Find_Line_equation_of_segment_2D(const Real* p0, const Real* p1,
                                                             Real* out) const {
    return line_of_segment(p0, p1, out);
}

template <class Real>
bool AlgebraBasic<Real>::fp_Find_Plane_equation_of_triangle_3D(const Real* p0, const Real* p1,
                                                               const Real* p2, Real* out) const {
    return plane_of_triangle(p0, p1, p2, out);
}

template <class Real>
Real AlgebraBasic<Real>::dspl_Distance_Squared_between_Point_2D_and_Line(const Real* point,
                                                                         const Real* line) const {
    return distance_squared_to_line(point, line);
}

template <class Real>
Real AlgebraBasic<Real>::dspp_Distance_Squared_between_Point_3D_and_Plane(const Real* point,
                                                                          const Real* plane) const {
    return distance_squared_to_plane(point, plane);
}

// ---- making and transposing matrices ----

template <class Real>
bool AlgebraBasic<Real>::ci_Create_Identity_matrix(int n, Real* out) const {
    if (n < 0) return false;
    const View<Real> identity = matrix(true, n, n, out);
    kernel::fill(Real(0), identity);
    for (Size i = 0; i < n; ++i) identity(i, i) = 1;
    return true;
}

template <class Real>
void AlgebraBasic<Real>::cdm_Convert_Dmatrix_to_Matrix(bool row_major, int h, int w, const Real* d,
                                                       Real* out) const {
    const View<Real> m = matrix(row_major, h, w, out);
    const Apart<Real> diagonal(d, m.diagonal().size, out, count_of(m));
    if (diagonal) set_diagonal(diagonal.data(), m);
}

template <class Real>
void AlgebraBasic<Real>::tpm_Transpose_Matrix(bool row_major, int h, int w, const Real* a,
                                              Real* out) const {
    View<const Real> from = matrix(row_major, h, w, a);
    const Apart<Real> apart(a, count_of(from), out, count_of(from));
    if (!apart) return;
    from.data = apart.data();
    kernel::transpose(from, matrix(row_major, w, h, out));
}

template <class Real>
void AlgebraBasic<Real>::tpms_Transpose_Matrix_Square(int n, Real* a) const {
    kernel::transpose_in_place(matrix(true, n, n, a));
}

// ---- weighted sums ----

template <class Real>
void AlgebraBasic<Real>::amdw_Add_Matrix_Dmatrix_with_Weight(bool row_major, int h, int w,
                                                             const Real* a, const Real* d, Real wa,
                                                             Real wd, Real* out) const {
    const View<Real> sum = matrix(row_major, h, w, out);
    const ApartUnlessSame<Real> x(a, count_of(sum), out);
    const Apart<Real> diagonal(d, sum.diagonal().size, out, count_of(sum));
    if (x && diagonal)
        add_diagonal(matrix(row_major, h, w, x.data()), diagonal.data(), wa, wd, sum);
}

template <class Real>
void AlgebraBasic<Real>::amtw_Add_Matrix_Tmatrix_with_Weight(bool row_major, int h, int w,
                                                             const Real* a, const Real* b, Real wa,
                                                             Real wb, Real* out) const {
    const View<Real> sum = matrix(row_major, h, w, out);
    const ApartUnlessSame<Real> x(a, count_of(sum), out);
    const Apart<Real> y(b, count_of(sum), out, count_of(sum));
    if (x && y)
        add_transposed(matrix(row_major, h, w, x.data()), matrix(row_major, w, h, y.data()), wa, wb,
                       sum);
}

// ---- products ----

template <class Real>
void AlgebraBasic<Real>::mmma_Multiply_Matrix_Matrix_and_Accumulate(bool row_major, int hA, int wA,
                                                                    int wB, const Real* a,
                                                                    const Real* b, Real* c) const {
    accumulate_product(matrix(row_major, hA, wA, a), matrix(row_major, wA, wB, b),
                       matrix(row_major, hA, wB, c));
}

template <class Real>
void AlgebraBasic<Real>::mmta_Multiply_Matrix_Tmatrix_and_Accumulate(bool row_major, int hA, int wA,
                                                                     int hB, const Real* a,
                                                                     const Real* b, Real* c) const {
    accumulate_product(matrix(row_major, hA, wA, a), matrix(row_major, hB, wA, b).transposed(),
                       matrix(row_major, hA, hB, c));
}

template <class Real>
void AlgebraBasic<Real>::mtma_Multiply_Tmatrix_Matrix_and_Accumulate(bool row_major, int hA, int wA,
                                                                     int wB, const Real* a,
                                                                     const Real* b, Real* c) const {
    accumulate_product(matrix(row_major, hA, wA, a).transposed(), matrix(row_major, hA, wB, b),
                       matrix(row_major, wA, wB, c));
}

template <class Real>
void AlgebraBasic<Real>::mmda_Multiply_Matrix_Dmatrix_and_Accumulate(bool row_major, int hA, int wA,
                                                                     int wD, const Real* a,
                                                                     const Real* d, Real* c) const {
    View<const Real> from = matrix(row_major, hA, wA, a);
    const View<Real> to = matrix(row_major, hA, wD, c);
    const Size diagonal_size = from.width < to.width ? from.width : to.width;
    const Apart<Real> x(a, count_of(from), c, count_of(to));
    const Apart<Real> diagonal(d, diagonal_size, c, count_of(to));
    if (!x || !diagonal) return;
    from.data = x.data();
    multiply_by_diagonal(from, diagonal.data(), Update::accumulate, to);
}

template <class Real>
void AlgebraBasic<Real>::mmva_Multiply_Matrix_Vector_and_Accumulate(bool row_major, int h, int w,
                                                                    const Real* a, const Real* x,
                                                                    Real* y) const {
    accumulate_product(matrix(row_major, h, w, a), x, y);
}

template <class Real>
void AlgebraBasic<Real>::mvma_Multiply_Vector_Matrix_and_Accumulate(bool row_major, int h, int w,
                                                                    const Real* x, const Real* a,
                                                                    Real* y) const {
    accumulate_product(matrix(row_major, h, w, a).transposed(), x, y);
}

template <class Real>
void AlgebraBasic<Real>::mvta_Multiply_Vector_Tmatrix_and_Accumulate(bool row_major, int h, int w,
                                                                     const Real* x, const Real* a,
                                                                     Real* y) const {
    accumulate_product(matrix(row_major, h, w, a), x, y);
}

template <class Real>
void AlgebraBasic<Real>::mvda_Multiply_Vector_Dmatrix_and_Accumulate(bool, int hD, int wD,
                                                                     const Real* x, const Real* d,
                                                                     Real* y) const {
    const Size n = at_least_zero(hD < wD ? hD : wD);
    const Apart<Real> apart_x(x, n, y, n);
    const Apart<Real> apart_d(d, n, y, n);
    if (apart_x && apart_d)
        multiply_by_diagonal(n, n, apart_x.data(), apart_d.data(), Update::accumulate, y);
}

template <class Real>
void AlgebraBasic<Real>::mvva_Multiply_Vector_Vector_and_Accumulate(bool row_major, int h, int w,
                                                                    const Real* x, const Real* y,
                                                                    Real* m) const {
    const View<Real> sum = matrix(row_major, h, w, m);
    const Apart<Real> apart_x(x, sum.height, m, count_of(sum));
    const Apart<Real> apart_y(y, sum.width, m, count_of(sum));
    if (apart_x && apart_y)
        kernel::ger(Real(1), vector(h, apart_x.data()), vector(w, apart_y.data()), sum);
}

template <class Real>
void AlgebraBasic<Real>::mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate(
    bool row_major, int h, int w, const Real* x, const Real* a, const Real* y, Real& s) const {
    s += bilinear_form(vector(h, x), matrix(row_major, h, w, a), vector(w, y));
}

template <class Real>
void AlgebraBasic<Real>::mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate(
    bool, int hD, int wD, const Real* x, const Real* d, const Real* y, Real& s) const {
    s += diagonal_form(at_least_zero(hD < wD ? hD : wD), x, d, y);
}

// ---- structure ----

template <class Real>
bool AlgebraBasic<Real>::il_Is_Lower_matrix(bool row_major, int n, const Real* a, Real tolerance,
                                            bool relative) const {
    return is_lower(matrix(row_major, n, n, a), {tolerance, relative});
}

template <class Real>
bool AlgebraBasic<Real>::iu_Is_Upper_matrix(bool row_major, int n, const Real* a, Real tolerance,
                                            bool relative) const {
    return is_lower(matrix(!row_major, n, n, a), {tolerance, relative});
}

template <class Real>
bool AlgebraBasic<Real>::isy_Is_Symmetric_matrix(int n, const Real* a, Real tolerance,
                                                 bool relative) const {
    return is_symmetric(matrix(true, n, n, a), {tolerance, relative});
}

template <class Real>
bool AlgebraBasic<Real>::ispd_Is_Symmetric_and_Positive_Definite_matrix(int n, const Real* a,
                                                                        Real tolerance,
                                                                        bool relative) const {
    const View<const Real> from = matrix(true, n, n, a);
    if (!is_symmetric(from, {tolerance, relative})) return false;
    const Workspace<Real> work(count_of(from));
    if (!work) return false;
    const View<Real> copy = matrix(true, n, n, work.data());
    kernel::copy(from, copy);
    return has_cholesky_factor(copy);
}

template <class Real>
bool AlgebraBasic<Real>::isdd_Is_Strictly_Diagonal_Dominant(int n, const Real* a) const {
    return is_diagonally_dominant(matrix(true, n, n, a));
}

template class AlgebraBasic<double>;
template class AlgebraBasic<float>;

}  // namespace nequar
