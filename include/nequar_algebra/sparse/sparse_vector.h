#pragma once

#include "nequar_algebra/frame/algebra_basic.h"
#include "nequar_algebra/frame/class.h"
#include "nequar_algebra/frame/growable_vector.h"
#include "nequar_algebra/frame/vector.h"

namespace nequar {

template <class Real>
struct SparseInside;

/// A vector of fixed dimension that stores selected elements: their values, and their indices in
/// strictly increasing order. A stored value may be 0.0 (an "explicit zero"); elements that are not
/// stored read as 0.0.
///
/// Each operation has a short name, and a long one that forwards to it. Failures are reported under
/// the long name, answer false (0.0 where a number is returned) and leave the object as it was.
/// `ivi`, `ivr` and `tip` only save their message. An output may be the object itself, and so may
/// an operand. Copies are deep; a move leaves an empty vector of dimension 0.
///
/// Cost, where an operation does not name it: O(stored elements), O(1) for sizes and tests of
/// indices; setting an element that was not stored moves those behind it.
template <class Real>
class NEQUAR_API SparseVector : public CNqClass {
public:
    /// Dimension 1, nothing stored, room for one element.
    SparseVector();
    SparseVector(const SparseVector& other);
    SparseVector(SparseVector&& other) noexcept;
    ~SparseVector() override;
    SparseVector& operator=(const SparseVector& other);
    SparseVector& operator=(SparseVector&& other) noexcept;
    /// Makes this vector a copy of another, blank space included; nothing when it is the same.
    bool cp_Copy(const SparseVector* source);

    /// Hands the error-trace flag to values, indices and kernels.
    void zet_xm() noexcept;
    void zet_xm_Error_Trace_mode_Transfer_to_its_Members() noexcept { zet_xm(); }

    // ---- creation and storage -------------------------------------------------------------------

    /// Nothing stored, room for the expected number: "number_of_expected_non_zero_elements<0",
    /// "dimension<=0", "1" and "2" when values and indices cannot be had.
    bool czv(int dimension, int number_of_expected_non_zero_elements);
    bool czv_Create_Zero_Vector(int dimension, int number_of_expected_non_zero_elements) {
        return czv(dimension, number_of_expected_non_zero_elements);
    }
    int dim() const noexcept { return dimension_; }
    int dim_DIMension() const noexcept { return dim(); }
    /// The number of stored elements.
    int nee() const noexcept { return values_.nee(); }
    int nee_Number_of_Enrolled_Elements() const noexcept { return nee(); }
    /// The number of reserved positions that are empty.
    int sbs() const noexcept { return values_.sbs(); }
    int sbs_Size_of_Blank_Space() const noexcept { return sbs(); }
    /// Makes the blank space n positions long; "1" when the values, "2" when the indices refuse.
    bool mbs(int n);
    bool mbs_Modify_Blank_Space(int n) { return mbs(n); }
    /// Sets the number of values and of indices ("1", "2"); this ends the filling of storage that
    /// `z_gii` gave out.
    bool z_cne(int n);
    bool z_cne_Change_Number_of_Elements(int n) { return z_cne(n); }
    /// Hands out the element pointers of values and indices, which reach the blank space and hold
    /// until the vector is next changed; dimension, number of elements, blank space. Null: not
    /// wanted.
    void z_gii(Real** values = nullptr, int** indices = nullptr, int* dimension = nullptr,
               int* count = nullptr, int* blank = nullptr);
    void z_gii(const Real** values, const int** indices = nullptr, int* dimension = nullptr,
               int* count = nullptr, int* blank = nullptr) const;
    void z_gii_Get_Informations_Internal(Real** values = nullptr, int** indices = nullptr,
                                         int* dimension = nullptr, int* count = nullptr,
                                         int* blank = nullptr) {
        z_gii(values, indices, dimension, count, blank);
    }
    void z_gii_Get_Informations_Internal(const Real** values, const int** indices = nullptr,
                                         int* dimension = nullptr, int* count = nullptr,
                                         int* blank = nullptr) const {
        z_gii(values, indices, dimension, count, blank);
    }

    /// 0 <= i < dimension; "i<0", "i>=dimension".
    bool ivi(int i) const;
    bool ivi_Is_Valid_Index(int i) const { return ivi(i); }
    /// 0 <= start < dimension and length > 0; "start<0", "start>=dimension", "length<=0". The end
    /// of the range is not tested: what lies beyond the dimension is passed over by those who ask.
    bool ivr(int start, int length) const;
    bool ivr_Is_Valid_Range(int start, int length) const { return ivr(start, length); }

    // ---- import, export -------------------------------------------------------------------------

    /// Whether the arrays hold a vector of that dimension: "non-positive vector dimension",
    /// "different sizes" (counts or blank spaces), then for each element "negative index", "index
    /// is greater than dimension" (or equal to it), "not increasing order".
    bool tip(int dimension, const GrowableVector<Real>* values,
             const GrowableVector<int>* indices) const;
    bool tip_Test_Input_Parameters(int dimension, const GrowableVector<Real>* values,
                                   const GrowableVector<int>* indices) const {
        return tip(dimension, values, indices);
    }
    /// Copies the arrays in when `tip` finds them good, else "bad Input(s)".
    bool im(int dimension, const GrowableVector<Real>* values, const GrowableVector<int>* indices);
    bool im_Import(int dimension, const GrowableVector<Real>* values,
                   const GrowableVector<int>* indices) {
        return im(dimension, values, indices);
    }
    /// Takes the elements other than 0.0 of a dense vector (a NaN is one), and reserves four
    /// positions more: "1" when the vector cannot be made, "2" when it cannot be filled.
    bool im(const Vector<Real>* a);
    bool im_Import(const Vector<Real>* a) { return im(a); }
    /// Makes a dense vector of this one; "1" when it cannot be sized.
    bool ex(Vector<Real>* a) const;
    bool ex_Export(Vector<Real>* a) const { return ex(a); }
    /// Copies out what is wanted; null: not wanted. "1" and "2" when values and indices cannot be
    /// copied.
    bool ex(int* dimension, GrowableVector<Real>* values, GrowableVector<int>* indices) const;
    bool ex_Export(int* dimension, GrowableVector<Real>* values,
                   GrowableVector<int>* indices) const {
        return ex(dimension, values, indices);
    }

    // ---- elements -------------------------------------------------------------------------------

    /// Element i; outside of the vector 0.0 and "bad index". O(log stored).
    bool ge(int i, Real* value) const;
    bool ge_Get_Element(int i, Real* value) const { return ge(i, value); }
    /// Overwrites a stored element, by 0.0 too; inserts one that is not stored unless v is 0.0.
    /// "bad index"; "1" and "2" when it cannot be inserted.
    bool se(int i, Real v);
    bool se_Set_Element(int i, Real v) { return se(i, v); }
    /// Despite its name the same as `se…`: the stored value is replaced by v, not increased.
    bool ace(int i, Real v);
    bool ace_Add_Constant_to_an_Element(int i, Real v) { return ace(i, v); }
    /// out gets dimension `length` and the elements start … start+length-1 as far as they exist,
    /// without explicit zeros; room for one element more than this vector stores. "bad index
    /// range", "czv", "z_cne".
    bool g(int start, int length, SparseVector* out) const;
    bool g_Get(int start, int length, SparseVector* out) const { return g(start, length, out); }
    /// Replaces the elements from `start` on by what src stores, explicit zeros included; what
    /// would lie at or beyond the dimension is left out. "bad index range", "r_Replace 1",
    /// "r_Replace 2".
    bool s(int start, const SparseVector* src);
    bool s_Set(int start, const SparseVector* src) { return s(start, src); }
    /// Removes the explicit zeros ("1", "2").
    bool rze();
    bool rze_Remove_Zero_Elements() { return rze(); }
    /// Whether an element, stored or not, is 0.0.
    bool itze() const;
    bool itze_Ise_There_a_Zero_Element() const { return itze(); }
    /// Gives the first zero element before the last stored one, or 0 when nothing is stored. Zero
    /// elements after the last stored one are not found: false although `itze…` says true.
    bool fize(int& i) const;
    bool fize_Find_Coordinate_of_a_Zero_Element(int& i) const { return fize(i); }

    // ---- statistics -----------------------------------------------------------------------------

    /// The largest (smallest) element and its index. Among equal stored ones the first stored
    /// element wins, else the last. A negative maximum (positive minimum) gives way to a zero
    /// element, at the index of `fize…`; when that finds none, "impossible" is reported, 0.0
    /// returned and the index not written. NaN is chosen only as first stored element. Nothing
    /// stored: 0.0 at index 0. The pointers may be null.
    Real max(int* i = nullptr) const;
    Real max_Maximum(int* i = nullptr) const { return max(i); }
    Real min(int* i = nullptr) const;
    Real min_Minimum(int* i = nullptr) const { return min(i); }
    /// Both: the maximum is returned.
    Real maxmin(Real& minimum, int* imax = nullptr, int* imin = nullptr) const;
    Real maxmin_Maximum_and_Minimum(Real& minimum, int* imax = nullptr, int* imin = nullptr) const {
        return maxmin(minimum, imax, imin);
    }
    /// Mean of all elements, those that are not stored included.
    Real m() const;
    Real m_Mean() const { return m(); }
    /// The mean, and the population deviation of all elements, those that are not stored included.
    Real mst(Real& stdev) const;
    Real mst_Mean_and_Stdev(Real& stdev) const { return mst(stdev); }
    /// Sum of the squared differences of all elements: "different dimensions". O(stored of both).
    Real ds(const SparseVector* b) const;
    Real ds_Distance_Squared(const SparseVector* b) const { return ds(b); }
    /// The same divided by the dimension.
    Real mse(const SparseVector* b) const;
    Real mse_Mean_Squared_Error(const SparseVector* b) const { return mse(b); }
    /// Sum of the products of the elements stored in both: "different dimensions".
    Real ps(const SparseVector* b) const;
    Real ps_Product_Scalar(const SparseVector* b) const { return ps(b); }
    /// 1-norm, 2-norm, p-norm (p > 0, else NaN) of the stored values.
    Real n1() const;
    Real n1_Norm_One() const { return n1(); }
    Real n2() const;
    Real n2_Norm_Two() const { return n2(); }
    Real ng(int p) const;
    Real ng_Norm_General(int p) const { return ng(p); }

    // ---- operations -----------------------------------------------------------------------------

    /// this += b, this += w b, this -= b: "different dimensions"; "se_Set_Element" when an element
    /// cannot be stored. A sum that is 0.0 is stored where this vector stored an element before,
    /// and nowhere else. O(stored of both).
    bool avv(const SparseVector* b);
    bool avv_Add_Vector_Vector(const SparseVector* b) { return avv(b); }
    bool avvw(const SparseVector* b, Real w);
    bool avvw_Add_Vector_Vector_with_Weight(const SparseVector* b, Real w) { return avvw(b, w); }
    bool svv(const SparseVector* b);
    bool svv_Subtract_Vector_Vector(const SparseVector* b) { return svv(b); }
    /// this[i] *= b[i]; what b does not store becomes an explicit zero. "different dimensions".
    bool mvve(const SparseVector* b);
    bool mvve_Multiply_Vector_Vector_Elementwise(const SparseVector* b) { return mvve(b); }
    /// Multiplies every stored value by c; a value that becomes 0.0 stays stored.
    bool mvc(Real c);
    bool mvc_Multiply_Vector_Constant(Real c) { return mvc(c); }
    bool operator*=(Real c) { return mvc(c); }
    /// Divides every stored value by c; c = 0.0 is reported ("divide by zero") and changes nothing.
    bool operator/=(Real c);
    /// A vector with the same indices: "czv", "z_cne", "divide by zero" recorded on this object; a
    /// failure gives a vector of this dimension that stores nothing.
    SparseVector operator*(Real c) const;
    SparseVector operator/(Real c) const;
    /// Equal dimension and equal elements, a stored 0.0 being equal to an element that is not
    /// stored; a NaN equals nothing.
    bool operator==(const SparseVector& b) const;

    // ---- self-tests -----------------------------------------------------------------------------
    //
    // As those of the sparse matrix, against dense vectors; "2" is the dimension's code.

    /// A random vector: `number_of_non_zeros` positions, drawn with repetition, get values of
    /// min … max. s and its dense twin a may be null. "1": dimension or number; "2": range; "3",
    /// "4": the vectors cannot be made.
    bool u_mrsv_Make_a_Random_Sparse_Vector(int dimension, int number_of_non_zeros, double min,
                                            double max, SparseVector* s, Vector<Real>* a) const;
    /// Elements, statistics, norms, scalar operators with the constant given (if it is 0.0,
    /// division has to fail); a constant that is not finite is refused ("1").
    bool u_toe_Test_Operations_Elementary(int dimension, double density, double min, double max,
                                          double constant, int repetitions);
    /// Every part of a vector read, and written into another.
    bool u_tob_Test_Operations_for_Blocks(int dimension, double density, double min, double max,
                                          int repetitions);
    /// Sums, products and distances of two vectors.
    bool u_tov_Test_Operations_with_Vectors(int dimension, double density, double min, double max,
                                            int repetitions);
    /// All of them in this order, each with its repetitions, to the first that fails; its name is
    /// the error detail.
    bool u_tot_Test_Operations_Total(int dimension, double density, double min, double max,
                                     double constant, int repetitions_elementary,
                                     int repetitions_blocks, int repetitions_vectors);

private:
    friend struct SparseInside<Real>;

    bool refuse(const char* message, const char* method) const;
    bool write_element(int i, Real v, const char* method);
    bool add(const SparseVector* b, Real factor, const char* method);
    Real extremum(bool largest, int* i, const char* method) const;
    bool copy_indices(SparseVector& out, const char* method) const;

    int dimension_ = 0;
    GrowableVector<Real> values_;
    GrowableVector<int> indices_;
    LCNqAlgebra_Basic kernels_;
};

}  // namespace nequar

using CNqSvector = nequar::SparseVector<double>;
using CNqSvectorFloat = nequar::SparseVector<float>;

extern template class nequar::SparseVector<double>;
extern template class nequar::SparseVector<float>;
