#include "nequar_algebra/structured/band.h"

#include <algorithm>
#include <limits>
#include <ostream>
#include <utility>

#include "core/twin_name.h"
#include "frame/print.h"
#include "frame/views.h"
#include "kernel/kernel.h"
#include "structured/algorithm/band.h"

namespace nequar {

template <class Real>
MatrixBand<Real>::MatrixBand()
    : PackedMatrix<Real>(twin_name<Real>("CNqMatrix_Band", "CNqMatrixFloat_Band")) {
    c_Create(1, 1, 0, 0, Real(0));
}

template <class Real>
MatrixBand<Real>::MatrixBand(const MatrixBand& other) = default;

template <class Real>
MatrixBand<Real>::MatrixBand(MatrixBand&& other) noexcept
    : PackedMatrix<Real>(std::move(other)),
      p_(std::exchange(other.p_, 0)),
      q_(std::exchange(other.q_, 0)) {}

template <class Real>
MatrixBand<Real>::~MatrixBand() = default;

template <class Real>
MatrixBand<Real>& MatrixBand<Real>::operator=(const MatrixBand& other) {
    CNqClass::operator=(other);
    cp_Copy(&other);
    return *this;
}

template <class Real>
MatrixBand<Real>& MatrixBand<Real>::operator=(MatrixBand&& other) noexcept {
    if (this == &other) return *this;
    PackedMatrix<Real>::operator=(std::move(other));
    p_ = std::exchange(other.p_, 0);
    q_ = std::exchange(other.q_, 0);
    return *this;
}

template <class Real>
BandShape MatrixBand<Real>::band_shape() const noexcept {
    return {this->mh(), this->mw(), p_, q_};
}

template <class Real>
int MatrixBand<Real>::zivs_Initialize_and_Vector_Size(int height, int width, int p, int q) {
    Size count = -1;
    if (height > 0 && width > 0 && p >= 0 && p < height && q >= 0 && q < width)
        count = BandShape{height, width, p, q}.count();
    if (count < 1 || count > std::numeric_limits<int>::max()) {
        this->report("1", "zivs_Initialize_and_Vector_Size");
        return -1;
    }
    this->set_shape({height, width, static_cast<int>(count)});
    p_ = p;
    q_ = q;
    return static_cast<int>(count);
}

template <class Real>
bool MatrixBand<Real>::create(int height, int width, int p, int q) {
    const CNqClass::CallScope scope(this);
    const auto before = this->shape();
    const int p_before = p_;
    const int q_before = q_;
    if (this->create_packed(zivs_Initialize_and_Vector_Size(height, width, p, q), before))
        return true;
    p_ = p_before;
    q_ = q_before;
    return false;
}

template <class Real>
void MatrixBand<Real>::c_Create(int height, int width, int p, int q) {
    create(height, width, p, q);
}

template <class Real>
void MatrixBand<Real>::c_Create(int height, int width, int p, int q, Real value) {
    if (create(height, width, p, q)) std::fill_n(this->p(), this->stored_count(), value);
}

template <class Real>
void MatrixBand<Real>::cp_Copy(const MatrixBand* source) {
    this->copy_packed(*source);
    if (this->stored_count() != source->stored_count() || this->mh() != source->mh()) return;
    p_ = source->p_;  // not taken where the elements could not be
    q_ = source->q_;
}

template <class Real>
void MatrixBand<Real>::msb_Matrix_Width_Height_Bands(int& width, int& height, int& p,
                                                     int& q) const noexcept {
    this->ms(width, height);
    p = p_;
    q = q_;
}

// ---- elements and bands -------------------------------------------------------------------------

template <class Real>
bool MatrixBand<Real>::find_index(int& x, int& y, int& index) const {
    constexpr const char* kMethod = "fi_Find_Index_of_element";
    this->mce(x, y);
    if (x - y > q_ || y - x > p_) {
        this->report(x > y ? "2" : "1", kMethod);
        return false;
    }
    const Size found = band_shape().index(x, y);
    if (found >= this->vs()) {
        this->report("3", kMethod);
        return false;
    }
    index = static_cast<int>(found);
    return true;
}

template <class Real>
void MatrixBand<Real>::fi_Find_Index_of_element(int& x, int& y, int& index) const {
    find_index(x, y, index);
}

template <class Real>
void MatrixBand<Real>::fp_Find_Position_of_element(int index, int& x, int& y) const {
    if (index < 0 || index >= this->stored_count())
        return this->report("1", "fp_Find_Position_of_element");
    const BandShape shape = band_shape();
    const Size k = shape.band_of(index);
    const int position = index - static_cast<int>(shape.start(k));
    const int d = static_cast<int>(k) - p_;
    x = position + std::max(d, 0);
    y = position + std::max(-d, 0);
}

template <class Real>
bool MatrixBand<Real>::find_band(int& x, int& y, int& first, int& last) const {
    constexpr const char* kMethod = "fib_Find_Index_range_of_a_Band";
    this->mce(x, y);
    if (x - y > q_ || y - x > p_) {
        this->report(x > y ? "1" : "2", kMethod);
        return false;
    }
    const BandShape shape = band_shape();
    const Size start = shape.start(x - y + p_);
    const Size end = shape.start(x - y + p_ + 1);
    if (start == end || end > this->vs()) {
        this->report("3", kMethod);
        return false;
    }
    first = static_cast<int>(start);
    last = static_cast<int>(end - 1);
    return true;
}

template <class Real>
void MatrixBand<Real>::fib_Find_Index_range_of_a_Band(int& x, int& y, int& first, int& last) const {
    find_band(x, y, first, last);
}

template <class Real>
Real MatrixBand<Real>::ge_Get_Element(int x, int y) const {
    int index = 0;
    return find_index(x, y, index) ? (*this)[index] : Real(0);
}

template <class Real>
void MatrixBand<Real>::se_Set_Element(int x, int y, Real value) {
    int index = 0;
    if (find_index(x, y, index)) (*this)[index] = value;
}

template <class Real>
void MatrixBand<Real>::gb_Get_Band(int x, int y, Real* out, int& count) const {
    int first = 0;
    int last = 0;
    if (find_band(x, y, first, last)) count = this->read_run(first, last, out);
}

template <class Real>
void MatrixBand<Real>::sb_Set_Band(int x, int y, Real value, int& count) {
    int first = 0;
    int last = 0;
    if (find_band(x, y, first, last)) count = this->fill_run(first, last, value);
}

template <class Real>
void MatrixBand<Real>::sb_Set_Band(int x, int y, const Real* values, int& count) {
    int first = 0;
    int last = 0;
    if (find_band(x, y, first, last)) count = this->write_run(first, last, values);
}

// ---- rows and columns ---------------------------------------------------------------------------

// A line is a row of the matrix, or a column, which is a row of its transpose.
template <class Real>
bool MatrixBand<Real>::find_range(bool of_row, int& line, int& first, int& last) const {
    of_row ? this->mcr(line) : this->mcc(line);
    const BandShape shape = of_row ? band_shape() : band_shape().transposed();
    const Size from = shape.first_of_row(line);
    const Size to = shape.last_of_row(line);
    if (from > to) {
        this->report("1",
                     of_row ? "fvr_Find_Valid_range_of_Row" : "fvc_Find_Valid_range_of_Column");
        return false;
    }
    first = static_cast<int>(from);
    last = static_cast<int>(to);
    return true;
}

template <class Real>
void MatrixBand<Real>::fvr_Find_Valid_range_of_Row(int& r, int& first, int& last) const {
    find_range(true, r, first, last);
}

template <class Real>
void MatrixBand<Real>::fvc_Find_Valid_range_of_Column(int& c, int& first, int& last) const {
    find_range(false, c, first, last);
}

template <class Real>
void MatrixBand<Real>::get_line(bool of_row, int line, Real* out, int& first, int& last) const {
    const auto kept = this->keep_if_inside(out);
    if (!kept || !this->is_whole())
        return this->report("3", of_row ? "gr_Get_Row" : "gc_Get_Column");
    if (!find_range(of_row, line, first, last)) return;
    const Real* const packed = kept.moved(this->p());
    const BandShape shape = band_shape();
    std::fill(out, out + (of_row ? this->mw() : this->mh()), Real(0));
    for (int i = first; i <= last; ++i)
        out[i] = packed[of_row ? shape.index(i, line) : shape.index(line, i)];
}

template <class Real>
template <class Values>
void MatrixBand<Real>::set_line(bool of_row, int line, const Values& values, int& first,
                                int& last) {
    if (!this->is_whole()) return this->report("3", of_row ? "sr_Set_Row" : "sc_Set_Column");
    if (!find_range(of_row, line, first, last)) return;
    const BandShape shape = band_shape();
    for (int i = first; i <= last; ++i)
        this->p()[of_row ? shape.index(i, line) : shape.index(line, i)] = values(i);
}

template <class Real>
void MatrixBand<Real>::set_line_from(bool of_row, int line, const Real* values, int& first,
                                     int& last) {
    const auto kept = this->keep_if_inside(values);
    if (!kept) return this->report("3", of_row ? "sr_Set_Row" : "sc_Set_Column");
    values = kept.moved(values);
    set_line(
        of_row, line, [values](int i) { return values[i]; }, first, last);
}

template <class Real>
void MatrixBand<Real>::gr_Get_Row(int r, Real* out, int& first, int& last) const {
    get_line(true, r, out, first, last);
}

template <class Real>
void MatrixBand<Real>::gc_Get_Column(int c, Real* out, int& first, int& last) const {
    get_line(false, c, out, first, last);
}

template <class Real>
void MatrixBand<Real>::sr_Set_Row(int r, Real value, int& first, int& last) {
    set_line(
        true, r, [value](int) { return value; }, first, last);
}

template <class Real>
void MatrixBand<Real>::sr_Set_Row(int r, const Real* values, int& first, int& last) {
    set_line_from(true, r, values, first, last);
}

template <class Real>
void MatrixBand<Real>::sc_Set_Column(int c, Real value, int& first, int& last) {
    set_line(
        false, c, [value](int) { return value; }, first, last);
}

template <class Real>
void MatrixBand<Real>::sc_Set_Column(int c, const Real* values, int& first, int& last) {
    set_line_from(false, c, values, first, last);
}

// ---- import and export --------------------------------------------------------------------------

template <class Real>
void MatrixBand<Real>::i_Import(const Matrix<Real>* dense, int p, int q) {
    i_Import(true, dense->mh(), dense->mw(), dense->p()[0], p, q);
}

template <class Real>
void MatrixBand<Real>::i_Import(bool row_major, int height, int width, const Real* elements, int p,
                                int q) {
    const CNqClass::CallScope scope(this);
    const auto kept = this->keep_if_inside(elements);
    elements = kept.moved(elements);
    if (!kept || !create(height, width, p, q)) return this->report("1", "i_Import");
    pack_band(band_shape(), view_of_array(row_major, height, width, elements), this->p());
}

template <class Real>
void MatrixBand<Real>::e_Export(Matrix<Real>* dense, bool zero_fill) const {
    const CNqClass::CallScope scope(this);
    if (!this->is_whole()) return this->report("3", "e_Export");
    if (!this->size_dense(dense, this->mh(), this->mw(), "e_Export")) return;
    int height = 0;
    int width = 0;
    e_Export(true, &height, &width, dense->p()[0], zero_fill);
}

template <class Real>
void MatrixBand<Real>::e_Export(bool row_major, int* height, int* width, Real* elements,
                                bool zero_fill) const {
    const auto kept = this->keep_if_inside(elements);
    if (!kept || !this->is_whole()) return this->report("3", "e_Export");
    *height = this->mh();
    *width = this->mw();
    if (this->stored_count() == 0) return;
    if (zero_fill) kernel::fill(Size(this->mh()) * this->mw(), Real(0), elements);
    unpack_band<Real>(band_shape(), kept.moved(this->p()),
                      view_of_array(row_major, this->mh(), this->mw(), elements));
}

template <class Real>
bool MatrixBand<Real>::operator==(const MatrixBand& other) const noexcept {
    return p_ == other.p_ && q_ == other.q_ && this->has_equal_elements(other);
}

template <class Real>
std::ostream& operator<<(std::ostream& out, const MatrixBand<Real>& matrix) {
    int width = 0;
    int height = 0;
    int p = 0;
    int q = 0;
    matrix.msb_Matrix_Width_Height_Bands(width, height, p, q);
    const BandShape shape = {height, width, p, q};
    return print_matrix(out, height, width, [&matrix, shape](int y, int x) {
        const Size index = shape.contains(x, y) ? shape.index(x, y) : matrix.vs();
        return index < matrix.vs() ? matrix.p()[index] : Real(0);
    });
}

#define NEQUAR_INSTANTIATE(Real)     \
    template class MatrixBand<Real>; \
    template NEQUAR_API std::ostream& operator<<(std::ostream&, const MatrixBand<Real>&);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
