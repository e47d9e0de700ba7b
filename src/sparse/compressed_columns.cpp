#include "nequar_algebra/sparse/compressed_columns.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "kernel/kernel.h"
#include "sparse/algorithm/compare.h"
#include "sparse/algorithm/reduce.h"
#include "sparse/inside.h"

namespace nequar {

template <class Real>
CompressedColumns<Real>::CompressedColumns(const char* class_name) {
    this->set_class_name(class_name);
}

template <class Real>
CompressedColumns<Real>::CompressedColumns(const CompressedColumns& other) : CNqClass(other) {
    copy_columns(other);
}

template <class Real>
CompressedColumns<Real>::CompressedColumns(CompressedColumns&& other) noexcept : CNqClass(other) {
    take_columns(other);
}

template <class Real>
CompressedColumns<Real>::~CompressedColumns() = default;

template <class Real>
CompressedColumns<Real>& CompressedColumns<Real>::operator=(const CompressedColumns& other) {
    CNqClass::operator=(other);
    copy_columns(other);
    return *this;
}

template <class Real>
CompressedColumns<Real>& CompressedColumns<Real>::operator=(CompressedColumns&& other) noexcept {
    if (this == &other) return *this;
    CNqClass::operator=(other);
    take_columns(other);
    return *this;
}

template <class Real>
void CompressedColumns<Real>::take_columns(CompressedColumns& other) noexcept {
    other.settle();
    height_ = std::exchange(other.height_, 0);
    values_ = std::move(other.values_);
    rows_ = std::move(other.rows_);
    start_ = std::move(other.start_);
    settled_ = std::exchange(other.settled_, 0);
    zet_xm();
}

template <class Real>
bool CompressedColumns<Real>::copy_columns(const CompressedColumns& source) {
    if (this == &source) return true;
    source.settle();
    if (!copy_arrays(source.height_, source.values_, source.rows_, source.start_))
        return this->fail("1", "cp_Copy");
    return true;
}

template <class Real>
bool CompressedColumns<Real>::copy_arrays(int height, const GrowableVector<Real>& values,
                                          const GrowableVector<int>& rows,
                                          const Vector<int>& start) {
    zet_xm();
    const int blank = values_.sbs();
    const Size room = Size(values.nee()) + std::max(values.sbs(), rows.sbs());
    if (reserve(values_, rows_, room) != Stored::done) return false;
    if (&start != &start_ && start_.cp_Copy(&start) == nullptr) {
        change_blank_space(values_, rows_, blank);
        return false;
    }
    if (copy(values, rows, values_, rows_) != Stored::done) return false;
    height_ = height;
    settled_ = mw();
    return true;
}

template <class Real>
void CompressedColumns<Real>::zet_xm() noexcept {
    const bool mode = this->get_Get_Error_Trace_mode();
    values_.zet_s(mode);
    rows_.zet_s(mode);
    start_.zet_s(mode);
    kernels_.zet_s(mode);
}

// ---- creation -----------------------------------------------------------------------------------

template <class Real>
bool CompressedColumns<Real>::create(int height, int width, int expected) {
    constexpr const char* kName = "czm_Create_Zero_Matrix";
    if (expected < 0) return this->fail("number_of_expected_non_zero_elements<0", kName);
    if (height < 1 || width < 1 || width == std::numeric_limits<int>::max())
        return this->fail("bad matrix size", kName);
    zet_xm();
    const int blank = values_.sbs();
    const Stored outcome = reserve(values_, rows_, expected);
    if (outcome != Stored::done) return this->fail(code_of(outcome), kName);
    if (start_.c_Create(width + 1) == nullptr) {
        change_blank_space(values_, rows_, blank);
        return this->fail("3", kName);
    }
    values_.in_Initialize(expected);
    rows_.in_Initialize(expected);
    height_ = height;
    start_[0] = 0;
    settled_ = 0;
    if (start_is_shared_) settle();
    return true;
}

template <class Real>
bool CompressedColumns<Real>::create_identity(int n, int extra) {
    constexpr const char* kName = "cim_Create_Identity_Matrix";
    const CNqClass::CallScope scope(this);
    if (n < 1) return this->fail("matrix_width_or_height <= 0", kName);
    if (extra < 0)
        return this->fail("number_of_expected_non_zeros < matrix_width_or_height", kName);
    if (extra > std::numeric_limits<int>::max() - n || !create(n, n, n + extra))
        return this->fail("czm", kName);
    if (!z_cne(n)) return this->fail("z_cne", kName);
    for (int i = 0; i < n; ++i) {
        values_[i] = Real(1);
        rows_[i] = i;
        start_[i] = i;
    }
    start_[n] = n;
    settled_ = n;
    return true;
}

template <class Real>
void CompressedColumns<Real>::settle() const noexcept {
    const int width = mw();
    if (settled_ >= width) return;
    std::fill(start_.p() + settled_ + 1, start_.p() + width + 1, nee());
    settled_ = width;
}

template <class Real>
bool CompressedColumns<Real>::mbs(int n) {
    zet_xm();
    const Stored outcome = change_blank_space(values_, rows_, n);
    return outcome == Stored::done || this->fail(code_of(outcome), "mbs_Modify_Blank_Space");
}

template <class Real>
bool CompressedColumns<Real>::z_cne(int n) {
    zet_xm();
    constexpr const char* kName = "z_cne_Change_Number_of_Elements";
    if (n > 0 && mw() == 0) return this->fail("1", kName);  // there are no columns to hold them
    settle();
    const Stored outcome = change_count(values_, rows_, n);
    return outcome == Stored::done || this->fail(code_of(outcome), kName);
}

template <class Real>
void CompressedColumns<Real>::z_gii(Vector<int>** start_vector, Real** values, int** rows,
                                    int** start, int* width, int* height, int* count, int* blank) {
    if (start_vector != nullptr || start != nullptr) {
        settle();
        start_is_shared_ = true;
    }
    give(start_vector, &start_);
    if (values != nullptr) *values = values_.p();
    if (rows != nullptr) *rows = rows_.p();
    give(start, start_.p());
    give(width, mw());
    give(height, mh());
    give(count, nee());
    give(blank, sbs());
}

template <class Real>
void CompressedColumns<Real>::z_gii(const Vector<int>** start_vector, const Real** values,
                                    const int** rows, const int** start, int* width, int* height,
                                    int* count, int* blank) const {
    if (start_vector != nullptr || start != nullptr) {
        settle();
        start_is_shared_ = true;
    }
    give(start_vector, &start_);
    give(values, values_.p());
    give(rows, rows_.p());
    give(start, start_.p());
    give(width, mw());
    give(height, mh());
    give(count, nee());
    give(blank, sbs());
}

// ---- validity of indices ------------------------------------------------------------------------

template <class Real>
bool CompressedColumns<Real>::refuse(const char* message, const char* method) const {
    this->set_error_detail(message);
    this->zsm_Save_Message(CNqString::literal(method));
    return false;
}

template <class Real>
bool CompressedColumns<Real>::check_point(int x, int y, const char* method) const {
    if (x < 0) return refuse("x<0", method);
    if (x >= mw()) return refuse("x>=width", method);
    if (y < 0) return refuse("y<0", method);
    return y < mh() || refuse("y>=height", method);
}

template <class Real>
bool CompressedColumns<Real>::check_width(int x, int dx, const char* method) const {
    if (dx <= 0) return refuse("dx<=0", method);
    return Size(x) + dx <= mw() || refuse("(x+dx)>width", method);
}

template <class Real>
bool CompressedColumns<Real>::check_height(int y, int dy, const char* method) const {
    if (dy <= 0) return refuse("dy<=0", method);
    return Size(y) + dy <= mh() || refuse("(y+dy)>height", method);
}

template <class Real>
bool CompressedColumns<Real>::ivip(int x, int y) const {
    return check_point(x, y, "ivip_Is_Valid_Index_for_Pixel");
}

template <class Real>
bool CompressedColumns<Real>::ivic(int x) const {
    constexpr const char* kName = "ivic_Is_Valid_Index_for_Column";
    if (x < 0) return refuse("x<0", kName);
    return x < mw() || refuse("x>=width", kName);
}

template <class Real>
bool CompressedColumns<Real>::ivir(int y) const {
    constexpr const char* kName = "ivir_Is_Valid_Index_for_Row";
    if (y < 0) return refuse("y<0", kName);
    return y < mh() || refuse("y>=height", kName);
}

template <class Real>
bool CompressedColumns<Real>::ivrr(int x, int y, int dx) const {
    constexpr const char* kName = "ivrr_Is_Valid_Range_for_Row";
    return check_point(x, y, kName) && check_width(x, dx, kName);
}

template <class Real>
bool CompressedColumns<Real>::ivrc(int x, int y, int dy) const {
    constexpr const char* kName = "ivrc_Is_Valid_Range_for_Column";
    return check_point(x, y, kName) && check_height(y, dy, kName);
}

template <class Real>
bool CompressedColumns<Real>::ivrb(int x, int y, int dx, int dy) const {
    constexpr const char* kName = "ivrb_Is_Valid_Range_for_Block";
    return check_point(x, y, kName) && check_width(x, dx, kName) && check_height(y, dy, kName);
}

// ---- elements -----------------------------------------------------------------------------------

// Whether it is stored is a coin toss to the processor: the place to read from is chosen, not
// jumped to.
template <class Real>
Real CompressedColumns<Real>::element(int x, int y) const noexcept {
    static constexpr Real kNotStored = 0;
    const Range column = SparseInside<Real>::column_range(*this, x);
    if (column.length() == 0) return kNotStored;
    const int* const rows = rows_.p();
    __builtin_prefetch(values_.p() + column.begin);
    __builtin_prefetch(values_.p() + column.end - 1);
    const Size at = std::min(first_not_below(rows, column.begin, column.end, y), column.end - 1);
    const Real* const place = values_.p() + at;
    return *(rows[at] == y ? place : &kNotStored);
}

template <class Real>
bool CompressedColumns<Real>::write_element(int x, int y, Real v, const char* method) {
    zet_xm();
    const Range column = SparseInside<Real>::column_range(*this, x);
    const int* const rows = rows_.p();
    Size at = column.end;
    if (column.length() > 0 && rows[column.end - 1] >= y)
        at = first_not_below(rows, column.begin, column.end, y);
    if (at < column.end && rows[at] == y) {
        values_[static_cast<int>(at)] = v;
        return true;
    }
    if (v == Real(0)) return true;
    const int before = nee();
    const Stored outcome = insert(values_, rows_, static_cast<int>(at), v, y);
    if (outcome != Stored::done) return this->fail(code_of(outcome), method);
    if (x < settled_) {
        for (int c = x + 1; c <= settled_; ++c) ++start_[c];
    } else {
        while (settled_ < x) start_[++settled_] = before;
        if (start_is_shared_) settle();
    }
    return true;
}

template <class Real>
bool CompressedColumns<Real>::rze() {
    zet_xm();
    if (nee() == 0) return true;
    SparseInside<Real>::put_in_order(*this);
    const Size kept =
        remove_zeros(elements_of(values_), elements_of(rows_), start_.p(), Size(mw()));
    const Stored outcome = change_count(values_, rows_, static_cast<int>(kept));
    return outcome == Stored::done || this->fail("dec[ww-1]!=count", "rze_Remove_Zero_Elements");
}

// ---- arithmetic on the stored elements ----------------------------------------------------------

template <class Real>
bool CompressedColumns<Real>::mmc(Real c) {
    zet_xm();
    Real* const values = elements_of(values_);
    kernel::scale(Size(nee()), values, c, values);
    return true;
}

template <class Real>
bool CompressedColumns<Real>::operator/=(Real c) {
    zet_xm();
    if (c == Real(0)) return this->fail("divide by zero", "operator/=");
    Real* const values = elements_of(values_);
    divide(values, nee(), c, values);
    return true;
}

template <class Real>
bool CompressedColumns<Real>::copy_structure(CompressedColumns& out, const char* method) const {
    settle();
    out.zet_s(this->get_Get_Error_Trace_mode());
    if (!out.create(mh(), mw(), nee())) {
        this->adopt_failure_of(out);
        return this->fail("czm", method);
    }
    if (!out.z_cne(nee())) {
        this->adopt_failure_of(out);
        return this->fail("z_cne", method);
    }
    std::copy(rows_.p(), rows_.p() + nee(), elements_of(out.rows_));
    std::copy(start_.p(), start_.p() + mw() + 1, out.start_.p());
    out.settled_ = mw();
    return true;
}

template <class Real>
bool CompressedColumns<Real>::multiply_into(Real c, CompressedColumns& out) const {
    const CNqClass::CallScope scope(this);
    if (!copy_structure(out, "operator*")) return false;
    kernel::scale(Size(nee()), values_.p(), c, elements_of(out.values_));
    return true;
}

template <class Real>
bool CompressedColumns<Real>::divide_into(Real c, CompressedColumns& out) const {
    const CNqClass::CallScope scope(this);
    if (c == Real(0)) {
        if (!out.create(mh(), mw(), 0)) this->adopt_failure_of(out);
        return this->fail("divide by zero", "operator/");
    }
    if (!copy_structure(out, "operator/")) return false;
    divide(values_.p(), nee(), c, elements_of(out.values_));
    return true;
}

template <class Real>
bool CompressedColumns<Real>::add(const CompressedColumns& b, Real factor, const char* method) {
    zet_xm();
    if (b.mh() != mh() || b.mw() != mw()) return this->fail("different dimensions", method);
    if (b.nee() == 0) return true;
    const Stored outcome = SparseInside<Real>::add(*this, b, AddRule<Real>{factor});
    return outcome == Stored::done || this->fail(insertion_code(outcome), method);
}

template <class Real>
bool CompressedColumns<Real>::multiply_elementwise(const CompressedColumns& b, const char* method) {
    zet_xm();
    if (b.mh() != mh() || b.mw() != mw()) return this->fail("different dimensions", method);
    const Columns<Real> source = SparseInside<Real>::columns(b);
    const Columns<Real> target = SparseInside<Real>::columns(*this);
    Real* const values = elements_of(values_);
    for (Size c = 0; c < target.width; ++c)
        nequar::multiply_elementwise(target.column(c), source.column(c),
                                     values + target.range(c).begin);
    return true;
}

template <class Real>
bool CompressedColumns<Real>::has_equal_elements(const CompressedColumns& b) const {
    if (this == &b) return true;
    if (mh() != b.mh() || mw() != b.mw()) return false;
    return are_equal(SparseInside<Real>::columns(*this), SparseInside<Real>::columns(b));
}

template class CompressedColumns<double>;
template class CompressedColumns<float>;

}  // namespace nequar
