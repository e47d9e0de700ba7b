// SparseVector: storage, import and export, elements. Statistics and arithmetic, and the
// self-tests, are defined in the _impl.h files, which only this unit includes.
#include "nequar_algebra/sparse/sparse_vector.h"

#include <algorithm>
#include <utility>

#include "core/twin_name.h"
#include "frame/views.h"
#include "sparse/algorithm/dense.h"
#include "sparse/fault_text.h"
#include "sparse/inside.h"
#include "sparse/vector_operations_impl.h"
#include "sparse/vector_self_test_impl.h"

namespace nequar {

template <class Real>
SparseVector<Real>::SparseVector() {
    this->set_class_name(twin_name<Real>("CNqSvector", "CNqSvectorFloat"));
    czv(1, 1);
}

template <class Real>
SparseVector<Real>::SparseVector(const SparseVector& other) : CNqClass(other) {
    cp_Copy(&other);
}

template <class Real>
SparseVector<Real>::SparseVector(SparseVector&& other) noexcept
    : CNqClass(other),
      dimension_(std::exchange(other.dimension_, 0)),
      values_(std::move(other.values_)),
      indices_(std::move(other.indices_)) {
    zet_xm();
}

template <class Real>
SparseVector<Real>::~SparseVector() = default;

template <class Real>
SparseVector<Real>& SparseVector<Real>::operator=(const SparseVector& other) {
    CNqClass::operator=(other);
    cp_Copy(&other);
    return *this;
}

template <class Real>
SparseVector<Real>& SparseVector<Real>::operator=(SparseVector&& other) noexcept {
    if (this == &other) return *this;
    CNqClass::operator=(other);
    dimension_ = std::exchange(other.dimension_, 0);
    values_ = std::move(other.values_);
    indices_ = std::move(other.indices_);
    zet_xm();
    return *this;
}

template <class Real>
bool SparseVector<Real>::cp_Copy(const SparseVector* source) {
    if (source == this) return true;
    zet_xm();
    const Stored outcome = copy(source->values_, source->indices_, values_, indices_);
    if (outcome != Stored::done) return this->fail(code_of(outcome), "cp_Copy");
    dimension_ = source->dimension_;
    return true;
}

template <class Real>
void SparseVector<Real>::zet_xm() noexcept {
    const bool mode = this->get_Get_Error_Trace_mode();
    values_.zet_s(mode);
    indices_.zet_s(mode);
    kernels_.zet_s(mode);
}

// ---- storage ------------------------------------------------------------------------------------

template <class Real>
bool SparseVector<Real>::czv(int dimension, int number_of_expected_non_zero_elements) {
    constexpr const char* kName = "czv_Create_Zero_Vector";
    const int expected = number_of_expected_non_zero_elements;
    if (expected < 0) return this->fail("number_of_expected_non_zero_elements<0", kName);
    if (dimension <= 0) return this->fail("dimension<=0", kName);
    zet_xm();
    const Stored outcome = reserve(values_, indices_, expected);
    if (outcome != Stored::done) return this->fail(code_of(outcome), kName);
    values_.in_Initialize(expected);
    indices_.in_Initialize(expected);
    dimension_ = dimension;
    return true;
}

template <class Real>
bool SparseVector<Real>::mbs(int n) {
    zet_xm();
    const Stored outcome = change_blank_space(values_, indices_, n);
    return outcome == Stored::done || this->fail(code_of(outcome), "mbs_Modify_Blank_Space");
}

template <class Real>
bool SparseVector<Real>::z_cne(int n) {
    zet_xm();
    const Stored outcome = change_count(values_, indices_, n);
    return outcome == Stored::done ||
           this->fail(code_of(outcome), "z_cne_Change_Number_of_Elements");
}

template <class Real>
void SparseVector<Real>::z_gii(Real** values, int** indices, int* dimension, int* count,
                               int* blank) {
    if (values != nullptr) *values = values_.p();
    if (indices != nullptr) *indices = indices_.p();
    give(dimension, dim());
    give(count, nee());
    give(blank, sbs());
}

template <class Real>
void SparseVector<Real>::z_gii(const Real** values, const int** indices, int* dimension, int* count,
                               int* blank) const {
    give(values, values_.p());
    give(indices, indices_.p());
    give(dimension, dim());
    give(count, nee());
    give(blank, sbs());
}

template <class Real>
bool SparseVector<Real>::refuse(const char* message, const char* method) const {
    this->set_error_detail(message);
    this->zsm_Save_Message(CNqString::literal(method));
    return false;
}

template <class Real>
bool SparseVector<Real>::ivi(int i) const {
    if (i < 0) return refuse("i<0", "ivi_Is_Valid_Index");
    return i < dimension_ || refuse("i>=dimension", "ivi_Is_Valid_Index");
}

template <class Real>
bool SparseVector<Real>::ivr(int start, int length) const {
    constexpr const char* kName = "ivr_Is_Valid_Range";
    if (start < 0) return refuse("start<0", kName);
    if (start >= dimension_) return refuse("start>=dimension", kName);
    return length > 0 || refuse("length<=0", kName);
}

// ---- import and export --------------------------------------------------------------------------

template <class Real>
bool SparseVector<Real>::tip(int dimension, const GrowableVector<Real>* values,
                             const GrowableVector<int>* indices) const {
    constexpr const char* kName = "tip_Test_Input_Parameters";
    if (dimension < 1) return refuse("non-positive vector dimension", kName);
    if (values->nee() != indices->nee() || values->sbs() != indices->sbs())
        return refuse("different sizes", kName);
    const SparseFault fault = find_run_fault(dimension, indices->p(), indices->nee());
    return fault == SparseFault::none || refuse(text_of_run_fault(fault), kName);
}

template <class Real>
bool SparseVector<Real>::im(int dimension, const GrowableVector<Real>* values,
                            const GrowableVector<int>* indices) {
    const CNqClass::CallScope scope(this);
    zet_xm();
    if (!tip(dimension, values, indices) ||
        copy(*values, *indices, values_, indices_) != Stored::done)
        return this->fail("bad Input(s)", "im_Import");
    dimension_ = dimension;
    return true;
}

template <class Real>
bool SparseVector<Real>::im(const Vector<Real>* a) {
    constexpr const char* kName = "im_Import";
    constexpr int kSpare = 4;
    const CNqClass::CallScope scope(this);
    const Strided<const Real> dense = view_of(a);
    const Size count = count_nonzeros(dense);
    if (count > kLargestIntCount - kSpare || !czv(a->vs(), static_cast<int>(count) + kSpare))
        return this->fail("1", kName);
    if (!z_cne(static_cast<int>(count))) return this->fail("2", kName);
    fill_from_dense(dense, elements_of(indices_), elements_of(values_));
    return true;
}

template <class Real>
bool SparseVector<Real>::ex(Vector<Real>* a) const {
    if (a->c_Create(dimension_, Real(0)) == nullptr) {
        this->adopt_failure_of(*a);
        return this->fail("1", "ex_Export");
    }
    write_to_dense(SparseInside<Real>::run(*this), view_of(a));
    return true;
}

template <class Real>
bool SparseVector<Real>::ex(int* dimension, GrowableVector<Real>* values,
                            GrowableVector<int>* indices) const {
    if (values != nullptr && !values->cp_Copy(&values_)) return this->fail("1", "ex_Export");
    if (indices != nullptr && !indices->cp_Copy(&indices_)) return this->fail("2", "ex_Export");
    give(dimension, dimension_);
    return true;
}

// ---- elements -----------------------------------------------------------------------------------

template <class Real>
bool SparseVector<Real>::ge(int i, Real* value) const {
    const CNqClass::CallScope scope(this);
    *value = Real(0);
    if (!ivi(i)) return this->fail("bad index", "ge_Get_Element");
    const Run<Real> run = SparseInside<Real>::run(*this);
    const Size at = first_not_below(run.indices, 0, run.count, i);
    if (at < run.count && run.indices[at] == i) *value = run.values[at];
    return true;
}

template <class Real>
bool SparseVector<Real>::write_element(int i, Real v, const char* method) {
    const CNqClass::CallScope scope(this);
    zet_xm();
    if (!ivi(i)) return this->fail("bad index", method);
    const Run<Real> run = SparseInside<Real>::run(*this);
    const bool appends = run.count == 0 || run.indices[run.count - 1] < i;
    const Size found = appends ? run.count : first_not_below(run.indices, 0, run.count, i);
    const int at = static_cast<int>(found);
    if (found < run.count && run.indices[found] == i) {
        values_[at] = v;
        return true;
    }
    if (v == Real(0)) return true;
    const Stored outcome = insert(values_, indices_, at, v, i);
    return outcome == Stored::done || this->fail(code_of(outcome), method);
}

template <class Real>
bool SparseVector<Real>::se(int i, Real v) {
    return write_element(i, v, "se_Set_Element");
}

template <class Real>
bool SparseVector<Real>::ace(int i, Real v) {
    return write_element(i, v, "ace_Add_Constant_to_an_Element");
}

template <class Real>
bool SparseVector<Real>::g(int start, int length, SparseVector* out) const {
    constexpr const char* kName = "g_Get";
    const CNqClass::CallScope scope(this);
    if (out == this) {
        SparseVector part;
        part.zet_s(this->get_Get_Error_Trace_mode());
        const bool done = g(start, length, &part);
        if (done) {
            out->dimension_ = part.dimension_;
            out->values_ = std::move(part.values_);
            out->indices_ = std::move(part.indices_);
            out->zet_xm();
        }
        return done;
    }
    out->zet_s(this->get_Get_Error_Trace_mode());
    if (!ivr(start, length)) return this->fail("bad index range", kName);
    const Run<Real> run = SparseInside<Real>::run(*this);
    const Range part = part_between(run.indices, {0, run.count}, start, Size(start) + length);
    Size count = 0;
    for (Size k = part.begin; k < part.end; ++k) count += run.values[k] != Real(0);
    if (nee() == kLargestIntCount || !out->czv(length, nee() + 1)) {
        this->adopt_failure_of(*out);
        return this->fail("czv", kName);
    }
    if (!out->z_cne(static_cast<int>(count))) {
        this->adopt_failure_of(*out);
        return this->fail("z_cne", kName);
    }
    int to = 0;
    for (Size k = part.begin; k < part.end; ++k) {
        if (run.values[k] == Real(0)) continue;
        out->values_[to] = run.values[k];
        out->indices_[to] = run.indices[k] - start;
        ++to;
    }
    return true;
}

template <class Real>
bool SparseVector<Real>::s(int start, const SparseVector* src) {
    constexpr const char* kName = "s_Set";
    const CNqClass::CallScope scope(this);
    zet_xm();
    if (!ivr(start, src->dimension_)) return this->fail("bad index range", kName);
    if (src == this) {
        const SparseVector kept(*src);
        if (kept.dim() != dimension_ || kept.nee() != nee())
            return this->fail("r_Replace 1", kName);
        return s(start, &kept);
    }
    const Run<Real> run = SparseInside<Real>::run(*this);
    const Run<Real> source = SparseInside<Real>::run(*src);
    const Size fitting = first_not_below(source.indices, 0, source.count, Size(dimension_) - start);
    const Range part =
        part_between(run.indices, {0, run.count}, start, Size(start) + src->dimension_);
    const Stored outcome = replace(values_, indices_, part.begin, part.length(), source.values,
                                   source.indices, fitting, start);
    return outcome == Stored::done ||
           this->fail(outcome == Stored::values_refused ? "r_Replace 1" : "r_Replace 2", kName);
}

template <class Real>
bool SparseVector<Real>::rze() {
    zet_xm();
    const Size kept = remove_zeros(elements_of(values_), elements_of(indices_), Size(nee()));
    const Stored outcome = change_count(values_, indices_, static_cast<int>(kept));
    return outcome == Stored::done || this->fail(code_of(outcome), "rze_Remove_Zero_Elements");
}

template <class Real>
bool SparseVector<Real>::itze() const {
    return nee() < dimension_ || has_zero(values_.p(), Size(nee()));
}

template <class Real>
bool SparseVector<Real>::fize(int& i) const {
    const Size found = first_zero_before_end(SparseInside<Real>::run(*this));
    if (found < 0) return false;
    i = static_cast<int>(found);
    return true;
}

template class SparseVector<double>;
template class SparseVector<float>;

}  // namespace nequar
