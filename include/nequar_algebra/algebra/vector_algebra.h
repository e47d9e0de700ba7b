#pragma once

#include "nequar_algebra/frame/algebra_basic.h"
#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/vector.h"

namespace nequar {

/// Vector arithmetic and small geometry in the plane and in space.
///
/// Inputs come first, then scalars, then the output, which is sized here. All checks are made
/// before anything is written: a failed check leaves the output as it was. Operations that answer
/// nothing report a failure with `zet_pme`, those that answer bool with `zsm` and false; the detail
/// is given with each. An output that cannot be sized, or memory that cannot be had for a copy, is
/// reported with the detail "cannot size the output" or "out of memory", and ends the operation.
///
/// The output may be any of the inputs. An elementwise operation then works in place and does not
/// size it.
///
/// Cost: one pass over the elements.
///
/// The object has no state of its own beside the frame's; one object must not be used by two
/// threads at the same time.
template <class Real>
class NEQUAR_API AlgebraForVector : public CNqClass {
public:
    /// The vectors of this twin.
    using VectorReal = Vector<Real>;

    AlgebraForVector();
    AlgebraForVector(const AlgebraForVector&) = default;
    AlgebraForVector(AlgebraForVector&&) noexcept = default;
    ~AlgebraForVector() override;
    AlgebraForVector& operator=(const AlgebraForVector&) = default;
    AlgebraForVector& operator=(AlgebraForVector&&) noexcept = default;

    /// Hands the error-trace flag on to the member objects.
    void zet_xm_Error_Trace_mode_Transfer_to_its_Members();
    void zet_xm() { zet_xm_Error_Trace_mode_Transfer_to_its_Members(); }

    // ---- sums and products, element by element ----

    /// out = a + b. "1": the sizes differ.
    void avv_Add_Vector_Vector(const VectorReal* a, const VectorReal* b, VectorReal* out) const;
    /// out = (a + b) + c, and ((a + b) + c) + d. Every operand is checked before out is written;
    /// out may be any of them. "1": the sizes differ.
    void avv_Add_Vector_Vector(const VectorReal* a, const VectorReal* b, const VectorReal* c,
                               VectorReal* out) const;
    void avv_Add_Vector_Vector(const VectorReal* a, const VectorReal* b, const VectorReal* c,
                               const VectorReal* d, VectorReal* out) const;
    /// out = wa a + wb b. "1": the sizes differ.
    void avvw_Add_Vector_Vector_with_Weight(const VectorReal* a, const VectorReal* b, Real wa,
                                            Real wb, VectorReal* out) const;
    /// Weighted sums of three and four, with the rules of `avv_Add_Vector_Vector`.
    void avvw_Add_Vector_Vector_with_Weight(const VectorReal* a, const VectorReal* b,
                                            const VectorReal* c, Real wa, Real wb, Real wc,
                                            VectorReal* out) const;
    void avvw_Add_Vector_Vector_with_Weight(const VectorReal* a, const VectorReal* b,
                                            const VectorReal* c, const VectorReal* d, Real wa,
                                            Real wb, Real wc, Real wd, VectorReal* out) const;
    /// out = a - b. "1": the sizes differ.
    void svv_Subtract_Vector_Vector(const VectorReal* a, const VectorReal* b,
                                    VectorReal* out) const;
    /// out_i = a_i b_i. "1": the sizes differ.
    void mvve_Multiply_Vector_Vector_Elementwise(const VectorReal* a, const VectorReal* b,
                                                 VectorReal* out) const;
    /// out_i = a_i + c.
    void avc_Add_Vector_Constant(const VectorReal* a, Real c, VectorReal* out) const;
    /// out = c a.
    void mvc_Multiply_Vector_Constant(const VectorReal* a, Real c, VectorReal* out) const;

    // ---- scalars ----

    /// The sum of a_i b_i.
    ///
    /// There is no value that could say that the sizes differ: that ENDS THE PROCESS, with status
    /// 0, after the message "ps_Product_Scalar: 1" was printed.
    Real ps_Product_Scalar(const VectorReal* a, const VectorReal* b) const;
    /// The sum of a_i^2.
    Real ms_Magnitude_Squared(const VectorReal* a) const;
    /// The square of the Euclidean distance between a and b; -1.0 and detail "1" when the sizes
    /// differ.
    Real ds_Distance_Squared_between_two_points(const VectorReal* a, const VectorReal* b) const;
    /// Divides a by its 2-norm in place, at any scale. False, without a report and with a as it
    /// was, when a is zero or empty or holds a NaN or an infinity.
    bool n_Normalize_vector(VectorReal* a) const;

    // ---- geometry ----
    //
    // Points are vectors of two or three coordinates. Normals have length one. The sizes are the
    // only thing that is checked: a degenerate segment or triangle SUCCEEDS and gives a zero
    // normal (and offset); NaN or infinity among the coordinates succeeds and gives NaN.

    /// out = a x b. "1", "2": a, b does not have size 3.
    bool pv3_Product_Vector_of_vector_3D(const VectorReal* a, const VectorReal* b,
                                         VectorReal* out) const;
    /// The unit vector along (p1 - p0) x (p2 - p0). "1", "2", "3": p0, p1, p2 does not have size 3.
    bool nvt_Normal_Vector_of_Triangle_3D(const VectorReal* p0, const VectorReal* p1,
                                          const VectorReal* p2, VectorReal* n) const;
    /// (a, b, c) with a x + b y + c = 0 through p0 and p1 and a^2 + b^2 = 1; positive to the left
    /// of the way from p0 to p1. "1", "2": p0, p1 does not have size 2.
    bool fl_Find_Line_equation_of_segment_2D(const VectorReal* p0, const VectorReal* p1,
                                             VectorReal* line) const;
    /// (a, b, c, d) with a x + b y + c z + d = 0 through the three points, the normal (a, b, c)
    /// that of the triangle. "1", "2", "3": p0, p1, p2 does not have size 3.
    bool fp_Find_Plane_equation_of_triangle_3D(const VectorReal* p0, const VectorReal* p1,
                                               const VectorReal* p2, VectorReal* plane) const;
    /// The unit vector (-dy, dx) / |d| with d = p1 - p0, to the left of the way from p0 to p1.
    /// "1", "2": p0, p1 does not have size 2.
    bool nvs_Normal_Vector_of_Segment_2D(const VectorReal* p0, const VectorReal* p1,
                                         VectorReal* n) const;

    /// (a x + b y + c)^2 / (a^2 + b^2): the squared distance from p to the line, whose normal may
    /// have any length. Infinite or NaN for a line without a normal.
    ///
    /// There is no value that could say that a size is wrong: a point that does not have size 2
    /// ("1") and a line that does not have size 3 ("2") END THE PROCESS, with status 0, after the
    /// message was printed.
    Real dspl_Distance_Squared_between_Point_2D_and_Line(const VectorReal* p,
                                                         const VectorReal* line) const;
    /// (a x + b y + c z + d)^2 / (a^2 + b^2 + c^2), for a point of size 3 ("1") and a plane of size
    /// 4 ("2"); ends the process likewise.
    Real dspp_Distance_Squared_between_Point_3D_and_Plane(const VectorReal* p,
                                                          const VectorReal* plane) const;

    // ---- raw arrays ----
    //
    // The names are seen from the vector's side turned around: "export" fills a vector from an
    // array, "import" fills an array from a vector. Either side may be double or float. The array
    // may lie within the vector.

    /// out, sized n, = src[0 … n-1].
    void ev_Export_Vector(int n, const double* src, Vector<double>* out) const;
    void ev_Export_Vector(int n, const double* src, Vector<float>* out) const;
    void ev_Export_Vector(int n, const float* src, Vector<double>* out) const;
    void ev_Export_Vector(int n, const float* src, Vector<float>* out) const;
    /// n = the size of a; dst[0 … n-1] = a.
    void iv_Import_Vector(const Vector<double>* a, double* dst, int& n) const;
    void iv_Import_Vector(const Vector<double>* a, float* dst, int& n) const;
    void iv_Import_Vector(const Vector<float>* a, double* dst, int& n) const;
    void iv_Import_Vector(const Vector<float>* a, float* dst, int& n) const;

protected:
    /// The sizing of an output was refused: its own report, then one under `method`.
    void report_sizing(const CNqClass& output, const char* method) const;
    bool fail_sizing(const CNqClass& output, const char* method) const;

    LCNqAlgebra_Basic basic_;

private:
    bool store(const Real* elements, int n, VectorReal* out, const char* method) const;
};

}  // namespace nequar

using LCNqAlgebra_for_Vector = nequar::AlgebraForVector<double>;
using LCNqAlgebra_for_VectorFloat = nequar::AlgebraForVector<float>;

extern template class nequar::AlgebraForVector<double>;
extern template class nequar::AlgebraForVector<float>;
