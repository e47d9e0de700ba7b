// SparseSymmetricMatrix: creation, elements, arithmetic, statistics. What leads to other kinds of
// matrices and vectors, and the self-tests, are defined in the _impl.h files, which only this unit
// includes.
#include "nequar_algebra/sparse/sparse_symmetric_matrix.h"

#include <utility>

#include "core/twin_name.h"
#include "sparse/algorithm/reduce.h"
#include "sparse/algorithm/symmetric.h"
#include "sparse/extremum.h"
#include "sparse/fault_text.h"
#include "sparse/inside.h"
#include "sparse/symmetric_conversions_impl.h"
#include "sparse/symmetric_self_test_impl.h"

namespace nequar {

template <class Real>
SparseSymmetricMatrix<Real>::SparseSymmetricMatrix()
    : CompressedColumns<Real>(
          twin_name<Real>("CNqSmatrix_Symmetric", "CNqSmatrixFloat_Symmetric")) {
    czm(1, 1);
}

template <class Real>
SparseSymmetricMatrix<Real>::SparseSymmetricMatrix(const SparseSymmetricMatrix& other) = default;
template <class Real>
SparseSymmetricMatrix<Real>::SparseSymmetricMatrix(SparseSymmetricMatrix&& other) noexcept =
    default;
template <class Real>
SparseSymmetricMatrix<Real>::~SparseSymmetricMatrix() = default;
template <class Real>
SparseSymmetricMatrix<Real>& SparseSymmetricMatrix<Real>::operator=(
    const SparseSymmetricMatrix& other) = default;
template <class Real>
SparseSymmetricMatrix<Real>& SparseSymmetricMatrix<Real>::operator=(
    SparseSymmetricMatrix&& other) noexcept = default;

template <class Real>
bool SparseSymmetricMatrix<Real>::cp_Copy(const SparseSymmetricMatrix* source) {
    return this->copy_columns(*source);
}

template <class Real>
bool SparseSymmetricMatrix<Real>::czm(int n, int number_of_expected_non_zero_elements) {
    return this->create(n, n, number_of_expected_non_zero_elements);
}

template <class Real>
bool SparseSymmetricMatrix<Real>::cim(int n, int extra) {
    return this->create_identity(n, extra);
}

// ---- compressed columns given as arrays ---------------------------------------------------------

template <class Real>
bool SparseSymmetricMatrix<Real>::tip(int n, const GrowableVector<Real>* values,
                                      const GrowableVector<int>* rows,
                                      const Vector<int>* start) const {
    const auto refuse = [this](const char* message) {
        this->set_error_detail(message);
        this->zsm_Save_Message("tip_Test_Input_Parameters");
        return false;
    };
    if (n < 1) return refuse("height<=0");
    if (rows->nee() != values->nee()) return refuse("bad row-index 0");
    if (Size(start->vs()) - 1 != n) return refuse("ww!=hh");
    const SparseFault fault =
        find_column_fault(n, n, start->p(), rows->p(), rows->nee(), StoredHalf::lower);
    return fault == SparseFault::none || refuse(text_of_half_fault(fault));
}

template <class Real>
bool SparseSymmetricMatrix<Real>::im(int n, const GrowableVector<Real>* values,
                                     const GrowableVector<int>* rows, const Vector<int>* start) {
    const CNqClass::CallScope scope(this);
    if (!tip(n, values, rows, start) || !this->copy_arrays(n, *values, *rows, *start))
        return this->fail("bad Input(s)", "im_Import");
    return true;
}

// ---- elements -----------------------------------------------------------------------------------

template <class Real>
bool SparseSymmetricMatrix<Real>::ge(int x, int y, Real* value) const {
    if (x > y) std::swap(x, y);
    if (x >= 0 && y < this->mh()) {
        *value = this->element(x, y);
        return true;
    }
    const CNqClass::CallScope scope(this);
    *value = Real(0);
    this->ivip(x, y);
    return this->fail("bad index", "ge_Get_Element");
}

template <class Real>
bool SparseSymmetricMatrix<Real>::se(int x, int y, Real v) {
    constexpr const char* kName = "se_Set_Element";
    const CNqClass::CallScope scope(this);
    if (x > y) std::swap(x, y);
    if (!this->ivip(x, y)) return this->fail("bad index", kName);
    return this->write_element(x, y, v, kName);
}

template <class Real>
bool SparseSymmetricMatrix<Real>::ace(int x, int y, Real v) {
    constexpr const char* kName = "ace_Add_Constant_to_an_Element";
    const CNqClass::CallScope scope(this);
    if (x > y) std::swap(x, y);
    if (!this->ivip(x, y)) return this->fail("bad index", kName);
    return this->write_element(x, y, v, kName);
}

template <class Real>
bool SparseSymmetricMatrix<Real>::itze() const {
    const Columns<Real> columns = SparseInside<Real>::columns(*this);
    return stored_in_full(columns) < columns.width * columns.height ||
           has_zero(columns.values, columns.count);
}

template <class Real>
bool SparseSymmetricMatrix<Real>::fize(int& x, int& y) const {
    Size column = 0;
    Size row = 0;
    if (!find_zero(SparseInside<Real>::columns(*this), StoredHalf::lower, column, row))
        return false;
    x = static_cast<int>(column);
    y = static_cast<int>(row);
    return true;
}

// ---- operations on the stored half --------------------------------------------------------------

template <class Real>
bool SparseSymmetricMatrix<Real>::amm(const SparseSymmetricMatrix* b) {
    return this->add(*b, Real(1), "amm_Add_Matrix_Matrix");
}

template <class Real>
bool SparseSymmetricMatrix<Real>::ammw(const SparseSymmetricMatrix* b, Real w) {
    return this->add(*b, w, "ammw_Add_Matrix_Matrix_with_Weight");
}

template <class Real>
bool SparseSymmetricMatrix<Real>::smm(const SparseSymmetricMatrix* b) {
    return this->add(*b, Real(-1), "smm_Subtract_Matrix_Matrix");
}

template <class Real>
bool SparseSymmetricMatrix<Real>::mvva(const SparseVector<Real>* v) {
    constexpr const char* kName = "mvva_Multiply_Vector_Vector_and_Accumulate";
    const CNqClass::CallScope scope(this);
    this->zet_xm();
    if (v->dim() != this->mh()) return this->fail("dim1!=hh", kName);
    const Run<Real> run = SparseInside<Real>::run(*v);
    RunCursor<Real> cursor(run);
    AddRule<Real> rule{Real(0)};
    const Stored outcome = SparseInside<Real>::merge(
        *this, rule, 0, this->mw(), whole_column,
        [&](Size c) {
            const Size k = cursor.find(c);
            rule.factor = k < 0 ? Real(0) : run.values[k];
            if (rule.factor == Real(0)) return Run<Real>{};
            return Run<Real>{run.indices + k, run.values + k, run.count - k};
        },
        0);
    return outcome == Stored::done || this->fail(insertion_code(outcome), kName);
}

template <class Real>
bool SparseSymmetricMatrix<Real>::mmme(const SparseSymmetricMatrix* b) {
    return this->multiply_elementwise(*b, "mmme_Multiply_Matrix_Matrix_Elementwise");
}

template <class Real>
SparseSymmetricMatrix<Real> SparseSymmetricMatrix<Real>::operator*(Real c) const {
    SparseSymmetricMatrix out;
    this->multiply_into(c, out);
    return out;
}

template <class Real>
SparseSymmetricMatrix<Real> SparseSymmetricMatrix<Real>::operator/(Real c) const {
    SparseSymmetricMatrix out;
    this->divide_into(c, out);
    return out;
}

template <class Real>
bool SparseSymmetricMatrix<Real>::operator==(const SparseSymmetricMatrix& b) const {
    return this->has_equal_elements(b);
}

// ---- statistics of the full matrix --------------------------------------------------------------

template <class Real>
Real SparseSymmetricMatrix<Real>::mse(const SparseSymmetricMatrix* b) const {
    if (b->mh() != this->mh()) {
        this->report("different width or height", "mse_Mean_Squared_Error");
        return Real(0);
    }
    return mean_squared_difference_of_full(SparseInside<Real>::columns(*this),
                                           SparseInside<Real>::columns(*b));
}

template <class Real>
Real SparseSymmetricMatrix<Real>::m() const {
    return mean_of_full(SparseInside<Real>::columns(*this));
}

template <class Real>
Real SparseSymmetricMatrix<Real>::mst(Real& stdev) const {
    const Real average = m();
    stdev = deviation_of_full(SparseInside<Real>::columns(*this), average);
    return average;
}

template <class Real>
Real SparseSymmetricMatrix<Real>::nf() const {
    return norm_of_full(SparseInside<Real>::columns(*this));
}

template <class Real>
Real SparseSymmetricMatrix<Real>::extremum(bool largest, int* x, int* y, const char* method) const {
    bool impossible = false;
    const Real value = find_extremum<Real>(*this, largest, x, y, impossible);
    if (impossible) this->report("impossible", method);
    return value;
}

template <class Real>
Real SparseSymmetricMatrix<Real>::max(int* x, int* y) const {
    return extremum(true, x, y, "max_Maximum");
}

template <class Real>
Real SparseSymmetricMatrix<Real>::min(int* x, int* y) const {
    return extremum(false, x, y, "min_Minimum");
}

template <class Real>
Real SparseSymmetricMatrix<Real>::maxmin(Real& minimum, int* xmax, int* ymax, int* xmin,
                                         int* ymin) const {
    constexpr const char* kName = "maxmin_Maximum_and_Minimum";
    const CNqClass::CallScope scope(this);
    minimum = extremum(false, xmin, ymin, kName);
    return extremum(true, xmax, ymax, kName);
}

template class SparseSymmetricMatrix<double>;
template class SparseSymmetricMatrix<float>;

}  // namespace nequar
