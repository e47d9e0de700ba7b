#pragma once

#include <cstddef>

#include "nequar_algebra/frame/class.h"

namespace nequar {

/// The kernels of `LCNqAlgebra_Basic` for one element type, on raw arrays.
///
/// Vectors are arrays of n elements. Matrices are flat arrays without gaps; the leading flag of a
/// matrix kernel says in which order: true row by row (element (r, c) of an h x w matrix at
/// r * w + c), false column by column (at r + h * c). The flag holds for every matrix of the call.
/// A kernel without the flag works on rows, where that makes a difference.
///
/// The output is the last array. The product kernels add into it ("and Accumulate").
///
/// Nothing is checked and nothing is reported: arrays must be as long as the sizes say. A size of
/// zero or less means that there is nothing to do. Arrays may overlap: an input that would be
/// written while it is still needed is copied first (if memory for the copy cannot be had, the
/// output is left as it is). NaN and infinity pass through.
///
/// Cost: one pass over the elements; twice the product of the three sizes for a product of
/// matrices, 2 h w for one with a vector.
///
/// The trailing int selects nothing: it is accepted for the sake of callers that give it.
template <class Real>
class NEQUAR_API AlgebraBasic {
public:
    // ---- vectors ----

    /// out = a + b
    void avv_Add_Vector_Vector(std::ptrdiff_t n, const Real* a, const Real* b, Real* out) const;
    /// out = wa a + wb b
    void avvw_Add_Vector_Vector_with_Weight(std::ptrdiff_t n, const Real* a, const Real* b, Real wa,
                                            Real wb, Real* out) const;
    /// out_i = a_i + c
    void avc_Add_Vector_Constant(std::ptrdiff_t n, const Real* a, Real c, Real* out) const;
    /// out = a - b
    void svv_Subtract_Vector_Vector(std::ptrdiff_t n, const Real* a, const Real* b,
                                    Real* out) const;
    /// out = c a
    void mvc_Multiply_Vector_Constant(std::ptrdiff_t n, const Real* a, Real c, Real* out) const;
    /// out_i = a_i b_i
    void mvve_Multiply_Vector_Vector_Elementwise(std::ptrdiff_t n, const Real* a, const Real* b,
                                                 Real* out) const;
    /// sum of a_i b_i; 0 for n = 0
    Real ps_Product_Scalar(std::ptrdiff_t n, const Real* a, const Real* b, int mode = 3) const;
    /// sum of |a_i|
    Real n1_Norm_1(std::ptrdiff_t n, const Real* a, int mode = 3) const;
    /// sqrt(sum of a_i^2), right for elements whose squares over- or underflow
    Real n2_Norm_2(std::ptrdiff_t n, const Real* a, int mode = 3) const;
    /// (sum of |a_i|^p)^(1/p), scaled likewise; the largest |a_i| for p = infinity. NaN when p is
    /// not above zero.
    Real np_Norm_p(Real p, std::ptrdiff_t n, const Real* a, int mode = 3) const;
    /// Divides a by its 2-norm in place, at any scale. False, and a unchanged, when the norm is
    /// zero, when n is not above zero, or when a holds a NaN or an infinity.
    bool n_Normalize_vector(std::ptrdiff_t n, Real* a, int mode = 3) const;
    /// sqrt(sum of (a_i - b_i)^2), scaled as the 2-norm
    Real d2_Distance_2(std::ptrdiff_t n, const Real* a, const Real* b, int mode = 3) const;

    // ---- geometry ----
    //
    // Lines are (a, b, c) with a x + b y + c = 0, planes (a, b, c, d) with a x + b y + c z + d = 0,
    // both with a normal of length one. Outputs are always written: a kernel that answers false
    // because its points define nothing gives a zero normal and offset, one that answers false
    // because of a NaN or an infinity gives NaN. The test for degeneracy is exact: points that are
    // collinear but for rounding define something.

    /// out = a x b
    void pv3_Product_Vector_of_vector_3D(const Real* a, const Real* b, Real* out) const;
    /// The unit vector along (p1 - p0) x (p2 - p0); false for collinear points.
    bool nvt_Normal_Vector_of_Triangle_3D(const Real* p0, const Real* p1, const Real* p2,
                                          Real* out) const;
    /// The line through two points; a x + b y + c is positive to the left of the way from p0 to p1
    /// and is the distance from the line. False when the points are equal.
    bool fl_Find_Line_equation_of_segment_2D(const Real* p0, const Real* p1, Real* out) const;
    /// The plane through three points, its normal that of the triangle; false for collinear points.
    bool fp_Find_Plane_equation_of_triangle_3D(const Real* p0, const Real* p1, const Real* p2,
                                               Real* out) const;
    /// (a x + b y + c)^2 / (a^2 + b^2): the line's normal need not have length one. Without a
    /// normal the result is infinite, or NaN if c is zero too.
    Real dspl_Distance_Squared_between_Point_2D_and_Line(const Real* point, const Real* line) const;
    /// (a x + b y + c z + d)^2 / (a^2 + b^2 + c^2), likewise.
    Real dspp_Distance_Squared_between_Point_3D_and_Plane(const Real* point,
                                                          const Real* plane) const;

    // ---- making and transposing matrices ----

    /// out = identity, n x n; false when n is negative
    bool ci_Create_Identity_matrix(int n, Real* out) const;
    /// out = the h x w matrix with d on its diagonal and zeros elsewhere
    void cdm_Convert_Dmatrix_to_Matrix(bool row_major, int h, int w, const Real* d,
                                       Real* out) const;
    /// out (w x h) = A^T, A being h x w
    void tpm_Transpose_Matrix(bool row_major, int h, int w, const Real* a, Real* out) const;
    /// A := A^T, n x n
    void tpms_Transpose_Matrix_Square(int n, Real* a) const;

    // ---- weighted sums ----

    /// out = wa A + wd D, both h x w, D the diagonal matrix of d (min(h, w) elements)
    void amdw_Add_Matrix_Dmatrix_with_Weight(bool row_major, int h, int w, const Real* a,
                                             const Real* d, Real wa, Real wd, Real* out) const;
    /// out = wa A + wb B^T, A and out h x w, B w x h
    void amtw_Add_Matrix_Tmatrix_with_Weight(bool row_major, int h, int w, const Real* a,
                                             const Real* b, Real wa, Real wb, Real* out) const;

    // ---- products, added into the output ----

    /// C += A B: A hA x wA, B wA x wB, C hA x wB
    void mmma_Multiply_Matrix_Matrix_and_Accumulate(bool row_major, int hA, int wA, int wB,
                                                    const Real* a, const Real* b, Real* c) const;
    /// C += A B^T: A hA x wA, B hB x wA, C hA x hB
    void mmta_Multiply_Matrix_Tmatrix_and_Accumulate(bool row_major, int hA, int wA, int hB,
                                                     const Real* a, const Real* b, Real* c) const;
    /// C += A^T B: A hA x wA, B hA x wB, C wA x wB
    void mtma_Multiply_Tmatrix_Matrix_and_Accumulate(bool row_major, int hA, int wA, int wB,
                                                     const Real* a, const Real* b, Real* c) const;
    /// C += A D: A hA x wA, D wA x wD with the diagonal d (min(wA, wD) elements), C hA x wD
    void mmda_Multiply_Matrix_Dmatrix_and_Accumulate(bool row_major, int hA, int wA, int wD,
                                                     const Real* a, const Real* d, Real* c) const;
    /// y += A x: A h x w, x w elements, y h elements
    void mmva_Multiply_Matrix_Vector_and_Accumulate(bool row_major, int h, int w, const Real* a,
                                                    const Real* x, Real* y) const;
    /// y^T += x^T A: A h x w, x h elements, y w elements
    void mvma_Multiply_Vector_Matrix_and_Accumulate(bool row_major, int h, int w, const Real* x,
                                                    const Real* a, Real* y) const;
    /// y^T += x^T A^T: A h x w, x w elements, y h elements
    void mvta_Multiply_Vector_Tmatrix_and_Accumulate(bool row_major, int h, int w, const Real* x,
                                                     const Real* a, Real* y) const;
    /// y^T += x^T D: D hD x wD with the diagonal d, x hD elements, y wD elements
    void mvda_Multiply_Vector_Dmatrix_and_Accumulate(bool row_major, int hD, int wD, const Real* x,
                                                     const Real* d, Real* y) const;
    /// M += x y^T: M h x w, x h elements, y w elements
    void mvva_Multiply_Vector_Vector_and_Accumulate(bool row_major, int h, int w, const Real* x,
                                                    const Real* y, Real* m) const;
    /// s += x^T A y: A h x w, x h elements, y w elements
    void mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate(bool row_major, int h, int w,
                                                            const Real* x, const Real* a,
                                                            const Real* y, Real& s) const;
    /// s += x^T D y: D hD x wD with the diagonal d, x hD elements, y wD elements
    void mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate(bool row_major, int hD, int wD,
                                                             const Real* x, const Real* d,
                                                             const Real* y, Real& s) const;

    // ---- structure of an n x n matrix ----
    //
    // The tolerance bounds the magnitude of what should vanish: as it stands when `relative` is
    // false, times the largest magnitude in A when it is true. An exact zero (an exact equality)
    // always passes, a NaN never does. An empty matrix has every structure.

    /// Whether all elements above the diagonal vanish.
    bool il_Is_Lower_matrix(bool row_major, int n, const Real* a, Real tolerance,
                            bool relative) const;
    /// Whether all elements below the diagonal vanish.
    bool iu_Is_Upper_matrix(bool row_major, int n, const Real* a, Real tolerance,
                            bool relative) const;
    /// Whether a_ij - a_ji vanishes for all i, j.
    bool isy_Is_Symmetric_matrix(int n, const Real* a, Real tolerance, bool relative) const;
    /// Whether A is symmetric in that sense and its lower triangle has a Cholesky factorization
    /// with pivots above zero (false, too, if memory for a copy of A cannot be had). n^3 / 3.
    bool ispd_Is_Symmetric_and_Positive_Definite_matrix(int n, const Real* a, Real tolerance,
                                                        bool relative) const;
    /// Whether |a_ii| exceeds the sum of the other magnitudes in every row.
    bool isdd_Is_Strictly_Diagonal_Dominant(int n, const Real* a) const;

protected:
    AlgebraBasic() = default;
    AlgebraBasic(const AlgebraBasic&) = default;
    AlgebraBasic& operator=(const AlgebraBasic&) = default;
    ~AlgebraBasic() = default;
};

}  // namespace nequar

extern template class nequar::AlgebraBasic<double>;
extern template class nequar::AlgebraBasic<float>;

/// The raw-array kernels, each for double and for float: what they compute is described at
/// `nequar::AlgebraBasic`. The object has no state between calls.
class NEQUAR_API LCNqAlgebra_Basic : public CNqClass,
                                     public nequar::AlgebraBasic<double>,
                                     public nequar::AlgebraBasic<float> {
    using Double = nequar::AlgebraBasic<double>;
    using Float = nequar::AlgebraBasic<float>;

public:
    LCNqAlgebra_Basic();
    ~LCNqAlgebra_Basic() override;
    LCNqAlgebra_Basic(const LCNqAlgebra_Basic&) = default;
    LCNqAlgebra_Basic(LCNqAlgebra_Basic&&) noexcept = default;
    LCNqAlgebra_Basic& operator=(const LCNqAlgebra_Basic&) = default;
    LCNqAlgebra_Basic& operator=(LCNqAlgebra_Basic&&) noexcept = default;

    using Double::amdw_Add_Matrix_Dmatrix_with_Weight;
    using Double::amtw_Add_Matrix_Tmatrix_with_Weight;
    using Double::avc_Add_Vector_Constant;
    using Double::avv_Add_Vector_Vector;
    using Double::avvw_Add_Vector_Vector_with_Weight;
    using Double::cdm_Convert_Dmatrix_to_Matrix;
    using Double::ci_Create_Identity_matrix;
    using Double::d2_Distance_2;
    using Double::dspl_Distance_Squared_between_Point_2D_and_Line;
    using Double::dspp_Distance_Squared_between_Point_3D_and_Plane;
    using Double::fl_Find_Line_equation_of_segment_2D;
    using Double::fp_Find_Plane_equation_of_triangle_3D;
    using Double::il_Is_Lower_matrix;
    using Double::isdd_Is_Strictly_Diagonal_Dominant;
    using Double::ispd_Is_Symmetric_and_Positive_Definite_matrix;
    using Double::isy_Is_Symmetric_matrix;
    using Double::iu_Is_Upper_matrix;
    using Double::mmda_Multiply_Matrix_Dmatrix_and_Accumulate;
    using Double::mmma_Multiply_Matrix_Matrix_and_Accumulate;
    using Double::mmta_Multiply_Matrix_Tmatrix_and_Accumulate;
    using Double::mmva_Multiply_Matrix_Vector_and_Accumulate;
    using Double::mtma_Multiply_Tmatrix_Matrix_and_Accumulate;
    using Double::mvc_Multiply_Vector_Constant;
    using Double::mvda_Multiply_Vector_Dmatrix_and_Accumulate;
    using Double::mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate;
    using Double::mvma_Multiply_Vector_Matrix_and_Accumulate;
    using Double::mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate;
    using Double::mvta_Multiply_Vector_Tmatrix_and_Accumulate;
    using Double::mvva_Multiply_Vector_Vector_and_Accumulate;
    using Double::mvve_Multiply_Vector_Vector_Elementwise;
    using Double::n1_Norm_1;
    using Double::n2_Norm_2;
    using Double::n_Normalize_vector;
    using Double::np_Norm_p;
    using Double::nvt_Normal_Vector_of_Triangle_3D;
    using Double::ps_Product_Scalar;
    using Double::pv3_Product_Vector_of_vector_3D;
    using Double::svv_Subtract_Vector_Vector;
    using Double::tpm_Transpose_Matrix;
    using Double::tpms_Transpose_Matrix_Square;
    using Float::amdw_Add_Matrix_Dmatrix_with_Weight;
    using Float::amtw_Add_Matrix_Tmatrix_with_Weight;
    using Float::avc_Add_Vector_Constant;
    using Float::avv_Add_Vector_Vector;
    using Float::avvw_Add_Vector_Vector_with_Weight;
    using Float::cdm_Convert_Dmatrix_to_Matrix;
    using Float::ci_Create_Identity_matrix;
    using Float::d2_Distance_2;
    using Float::dspl_Distance_Squared_between_Point_2D_and_Line;
    using Float::dspp_Distance_Squared_between_Point_3D_and_Plane;
    using Float::fl_Find_Line_equation_of_segment_2D;
    using Float::fp_Find_Plane_equation_of_triangle_3D;
    using Float::il_Is_Lower_matrix;
    using Float::isdd_Is_Strictly_Diagonal_Dominant;
    using Float::ispd_Is_Symmetric_and_Positive_Definite_matrix;
    using Float::isy_Is_Symmetric_matrix;
    using Float::iu_Is_Upper_matrix;
    using Float::mmda_Multiply_Matrix_Dmatrix_and_Accumulate;
    using Float::mmma_Multiply_Matrix_Matrix_and_Accumulate;
    using Float::mmta_Multiply_Matrix_Tmatrix_and_Accumulate;
    using Float::mmva_Multiply_Matrix_Vector_and_Accumulate;
    using Float::mtma_Multiply_Tmatrix_Matrix_and_Accumulate;
    using Float::mvc_Multiply_Vector_Constant;
    using Float::mvda_Multiply_Vector_Dmatrix_and_Accumulate;
    using Float::mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate;
    using Float::mvma_Multiply_Vector_Matrix_and_Accumulate;
    using Float::mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate;
    using Float::mvta_Multiply_Vector_Tmatrix_and_Accumulate;
    using Float::mvva_Multiply_Vector_Vector_and_Accumulate;
    using Float::mvve_Multiply_Vector_Vector_Elementwise;
    using Float::n1_Norm_1;
    using Float::n2_Norm_2;
    using Float::n_Normalize_vector;
    using Float::np_Norm_p;
    using Float::nvt_Normal_Vector_of_Triangle_3D;
    using Float::ps_Product_Scalar;
    using Float::pv3_Product_Vector_of_vector_3D;
    using Float::svv_Subtract_Vector_Vector;
    using Float::tpm_Transpose_Matrix;
    using Float::tpms_Transpose_Matrix_Square;
};
