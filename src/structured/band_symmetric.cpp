#include "nequar_algebra/structured/band_symmetric.h"

#include <algorithm>
#include <limits>
#include <ostream>
#include <utility>

#include "core/twin_name.h"
#include "frame/print.h"
#include "kernel/kernel.h"
#include "structured/algorithm/band.h"
#include "structured/views.h"

namespace nequar {

namespace {

// The packed lower triangle of which the stored bands are the beginning.
template <class Real>
PackedShape whole_triangle(const PackedMatrix<Real>* matrix) {
    return PackedShape::lower(matrix->mh(), matrix->mh());
}

}  // namespace

template <class Real>
MatrixBandSymmetric<Real>::MatrixBandSymmetric()
    : PackedMatrix<Real>(
          twin_name<Real>("CNqMatrix_Band_Symmetric", "CNqMatrixFloat_Band_Symmetric")) {
    c_Create(1, 0, Real(0));
}

template <class Real>
MatrixBandSymmetric<Real>::MatrixBandSymmetric(const MatrixBandSymmetric& other) = default;

template <class Real>
MatrixBandSymmetric<Real>::MatrixBandSymmetric(MatrixBandSymmetric&& other) noexcept
    : PackedMatrix<Real>(std::move(other)), b_(std::exchange(other.b_, 0)) {}

template <class Real>
MatrixBandSymmetric<Real>::~MatrixBandSymmetric() = default;

template <class Real>
MatrixBandSymmetric<Real>& MatrixBandSymmetric<Real>::operator=(const MatrixBandSymmetric& other) {
    CNqClass::operator=(other);
    cp_Copy(&other);
    return *this;
}

template <class Real>
MatrixBandSymmetric<Real>& MatrixBandSymmetric<Real>::operator=(
    MatrixBandSymmetric&& other) noexcept {
    if (this == &other) return *this;
    PackedMatrix<Real>::operator=(std::move(other));
    b_ = std::exchange(other.b_, 0);
    return *this;
}

template <class Real>
int MatrixBandSymmetric<Real>::zivs_Initialize_and_Vector_Size(int n, int b) {
    Size count = -1;
    if (n >= 1 && b >= 0 && b < n) count = PackedShape::lower(n, n).start(Size(b) + 1);
    if (count < 1 || count > std::numeric_limits<int>::max()) {
        this->report("1", "zivs_Initialize_and_Vector_Size");
        return -1;
    }
    this->set_shape({n, n, static_cast<int>(count)});
    b_ = b;
    return static_cast<int>(count);
}

template <class Real>
bool MatrixBandSymmetric<Real>::create(int n, int b) {
    const CNqClass::CallScope scope(this);
    const auto before = this->shape();
    const int b_before = b_;
    if (this->create_packed(zivs_Initialize_and_Vector_Size(n, b), before)) return true;
    b_ = b_before;
    return false;
}

template <class Real>
void MatrixBandSymmetric<Real>::c_Create(int n, int b) {
    create(n, b);
}

template <class Real>
void MatrixBandSymmetric<Real>::c_Create(int n, int b, Real value) {
    if (create(n, b)) std::fill_n(this->p(), this->stored_count(), value);
}

template <class Real>
void MatrixBandSymmetric<Real>::cp_Copy(const MatrixBandSymmetric* source) {
    this->copy_packed(*source);
    if (this->stored_count() != source->stored_count() || this->mh() != source->mh()) return;
    b_ = source->b_;  // not taken where the elements could not be
}

template <class Real>
void MatrixBandSymmetric<Real>::msb_Matrix_Width_Height_Bands(int& n, int& b) const noexcept {
    n = this->mh();
    b = b_;
}

// ---- elements and bands -------------------------------------------------------------------------

template <class Real>
bool MatrixBandSymmetric<Real>::find_index(int& x, int& y, int& index) const {
    constexpr const char* kMethod = "fi_Find_Index_of_element";
    this->mce(x, y);
    if (std::max(x, y) - std::min(x, y) > b_) {
        this->report("1", kMethod);
        return false;
    }
    const Size found = whole_triangle(this).index(std::max(x, y), std::min(x, y));
    if (found >= this->vs()) {
        this->report("2", kMethod);
        return false;
    }
    index = static_cast<int>(found);
    return true;
}

template <class Real>
void MatrixBandSymmetric<Real>::fi_Find_Index_of_element(int& x, int& y, int& index) const {
    find_index(x, y, index);
}

template <class Real>
void MatrixBandSymmetric<Real>::fp_Find_Position_of_element(int index, int& x, int& y) const {
    if (index < 0 || index >= this->stored_count())
        return this->report("1", "fp_Find_Position_of_element");
    const PackedShape shape = whole_triangle(this);
    const Size d = shape.band_of(index);
    const Size position = index - shape.start(d);
    x = static_cast<int>(position);
    y = static_cast<int>(position + d);
}

template <class Real>
bool MatrixBandSymmetric<Real>::find_band(int& x, int& y, int& first, int& last) const {
    constexpr const char* kMethod = "fib_Find_Index_range_of_a_Band";
    this->mce(x, y);
    const Size d = std::max(x, y) - std::min(x, y);
    if (d > b_) {
        this->report("1", kMethod);
        return false;
    }
    const PackedShape shape = whole_triangle(this);
    const Size start = shape.start(d);
    const Size end = start + shape.length(d);
    if (start == end || end > this->vs()) {
        this->report("2", kMethod);
        return false;
    }
    first = static_cast<int>(start);
    last = static_cast<int>(end - 1);
    return true;
}

template <class Real>
void MatrixBandSymmetric<Real>::fib_Find_Index_range_of_a_Band(int& x, int& y, int& first,
                                                               int& last) const {
    find_band(x, y, first, last);
}

template <class Real>
Real MatrixBandSymmetric<Real>::ge_Get_Element(int x, int y) const {
    int index = 0;
    return find_index(x, y, index) ? (*this)[index] : Real(0);
}

template <class Real>
void MatrixBandSymmetric<Real>::se_Set_Element(int x, int y, Real value) {
    int index = 0;
    if (find_index(x, y, index)) (*this)[index] = value;
}

template <class Real>
void MatrixBandSymmetric<Real>::gb_Get_Band(int x, int y, Real* out, int& count) const {
    int first = 0;
    int last = 0;
    if (find_band(x, y, first, last)) count = this->read_run(first, last, out);
}

template <class Real>
void MatrixBandSymmetric<Real>::sb_Set_Band(int x, int y, Real value, int& count) {
    int first = 0;
    int last = 0;
    if (find_band(x, y, first, last)) count = this->fill_run(first, last, value);
}

template <class Real>
void MatrixBandSymmetric<Real>::sb_Set_Band(int x, int y, const Real* values, int& count) {
    int first = 0;
    int last = 0;
    if (find_band(x, y, first, last)) count = this->write_run(first, last, values);
}

// ---- rows ---------------------------------------------------------------------------------------

template <class Real>
bool MatrixBandSymmetric<Real>::find_range(int& line, int& first, int& last,
                                           const char* method) const {
    this->mcr(line);
    if (this->mh() == 0) {
        this->report("2", method);
        return false;
    }
    first = std::max(0, line - b_);
    last = static_cast<int>(std::min(Size(this->mh()) - 1, Size(line) + b_));
    return true;
}

template <class Real>
void MatrixBandSymmetric<Real>::fvr_Find_Valid_range_of_Row(int& r, int& first, int& last) const {
    find_range(r, first, last, "fvr_Find_Valid_range_of_Row");
}

template <class Real>
void MatrixBandSymmetric<Real>::fvc_Find_Valid_range_of_Column(int& c, int& first,
                                                               int& last) const {
    find_range(c, first, last, "fvc_Find_Valid_range_of_Column");
}

template <class Real>
void MatrixBandSymmetric<Real>::get_line(int r, Real* out, int& first, int& last,
                                         const char* method) const {
    const auto kept = this->keep_if_inside(out);
    if (!kept || !this->is_whole()) return this->report("2", method);
    if (!find_range(r, first, last, method)) return;
    const Real* const packed = kept.moved(this->p());
    const PackedShape shape = whole_triangle(this);
    std::fill(out, out + this->mw(), Real(0));
    for (int x = first; x <= last; ++x)
        out[x] = packed[shape.index(std::max(x, r), std::min(x, r))];
}

template <class Real>
void MatrixBandSymmetric<Real>::gr_Get_Row(int r, Real* out, int& first, int& last) const {
    get_line(r, out, first, last, "gr_Get_Row");
}

template <class Real>
void MatrixBandSymmetric<Real>::gc_Get_Column(int c, Real* out, int& first, int& last) const {
    get_line(c, out, first, last, "gc_Get_Column");
}

// ---- import and export --------------------------------------------------------------------------

template <class Real>
bool MatrixBandSymmetric<Real>::is_square(const Matrix<Real>* dense, const char* method) const {
    if (dense->mh() == dense->mw()) return true;
    this->report("1", method);
    return false;
}

template <class Real>
void MatrixBandSymmetric<Real>::i_Import(const Matrix<Real>* dense, int b) {
    const CNqClass::CallScope scope(this);
    if (!is_square(dense, "i_Import <CNqMatrix>")) return;
    const Real* const elements = dense->p()[0];
    if (!create(dense->mh(), b)) return this->report("1", "i_Import");
    i_Import(true, dense->mh(), elements, b);
}

template <class Real>
void MatrixBandSymmetric<Real>::i_Import(bool row_major, int n, const Real* elements, int b) {
    const Size order = this->mh();
    if (n < order || b < 0 || b > b_) return this->report("1", "i_Import");
    const auto kept = this->keep_if_inside(elements);
    if (!kept || !this->is_whole()) return this->report("2", "i_Import");
    const View<const Real> whole = view_of_array(row_major, n, n, kept.moved(elements));
    pack_symmetric_band_average(b, whole.block(0, 0, order, order), this->p());
}

template <class Real>
void MatrixBandSymmetric<Real>::i_Import(const MatrixSymmetric<Real>* symmetric, int b) {
    const CNqClass::CallScope scope(this);
    if (!holds_its_elements(symmetric)) return this->report("2", "i_Import");
    if (!create(symmetric->mh(), b)) return this->report("1", "i_Import");
    kernel::copy(Strided<const Real>(symmetric->p(), this->stored_count()),
                 Strided<Real>(this->p(), this->stored_count()));
}

template <class Real>
void MatrixBandSymmetric<Real>::import_triangle(TriangleSide side, bool row_major, int n,
                                                const Real* elements, int b, const char* method) {
    const CNqClass::CallScope scope(this);
    const auto kept = this->keep_if_inside(elements);
    elements = kept.moved(elements);
    if (!kept || !create(n, b)) return this->report("1", method);
    pack_lower_band(b, as_lower(side, view_of_array(row_major, n, n, elements)), this->p());
}

template <class Real>
void MatrixBandSymmetric<Real>::il_Import_Lower_part_of(const Matrix<Real>* dense, int b) {
    if (is_square(dense, "il_Import_Lower_part_of <CNqMatrix>"))
        il_Import_Lower_part_of(true, dense->mh(), dense->p()[0], b);
}

template <class Real>
void MatrixBandSymmetric<Real>::il_Import_Lower_part_of(bool row_major, int n, const Real* elements,
                                                        int b) {
    import_triangle(TriangleSide::lower, row_major, n, elements, b, "il_Import_Lower_part_of");
}

template <class Real>
void MatrixBandSymmetric<Real>::iu_Import_Upper_part_of(const Matrix<Real>* dense, int b) {
    if (is_square(dense, "iu_Import_Upper_part_of <CNqMatrix>"))
        iu_Import_Upper_part_of(true, dense->mh(), dense->p()[0], b);
}

template <class Real>
void MatrixBandSymmetric<Real>::iu_Import_Upper_part_of(bool row_major, int n, const Real* elements,
                                                        int b) {
    import_triangle(TriangleSide::upper, row_major, n, elements, b, "iu_Import_Upper_part_of");
}

template <class Real>
void MatrixBandSymmetric<Real>::e_Export(Matrix<Real>* dense, bool zero_fill) const {
    const CNqClass::CallScope scope(this);
    if (!this->is_whole()) return this->report("2", "e_Export");
    if (!this->size_dense(dense, this->mh(), this->mw(), "e_Export")) return;
    int n = 0;
    e_Export(true, &n, dense->p()[0], zero_fill);
}

template <class Real>
void MatrixBandSymmetric<Real>::e_Export(bool row_major, int* n, Real* elements,
                                         bool zero_fill) const {
    const auto kept = this->keep_if_inside(elements);
    if (!kept || !this->is_whole()) return this->report("2", "e_Export");
    *n = this->mh();
    if (this->stored_count() == 0) return;
    if (zero_fill) kernel::fill(Size(this->mh()) * this->mh(), Real(0), elements);
    unpack_symmetric_band<Real>(b_, kept.moved(this->p()),
                                view_of_array(row_major, this->mh(), this->mh(), elements));
}

template <class Real>
void MatrixBandSymmetric<Real>::e_Export(MatrixSymmetric<Real>* symmetric) const {
    const CNqClass::CallScope scope(this);
    if (!this->is_whole()) return this->report("2", "e_Export");
    if (!size_packed(symmetric, this->mh(), this->mh())) {
        this->adopt_failure_of(*symmetric);
        return this->report("1", "e_Export");
    }
    const Size stored = this->stored_count();
    kernel::copy(Strided<const Real>(this->p(), stored), Strided<Real>(symmetric->p(), stored));
    kernel::fill(symmetric->vs() - stored, Real(0), symmetric->p() + stored);
}

template <class Real>
bool MatrixBandSymmetric<Real>::operator==(const MatrixBandSymmetric& other) const noexcept {
    return b_ == other.b_ && this->has_equal_elements(other);
}

template <class Real>
std::ostream& operator<<(std::ostream& out, const MatrixBandSymmetric<Real>& matrix) {
    int n = 0;
    int b = 0;
    matrix.msb_Matrix_Width_Height_Bands(n, b);
    const PackedShape shape = whole_triangle(&matrix);
    return print_matrix(out, n, n, [&matrix, shape, b](int y, int x) {
        const int lower = std::max(x, y);
        const int upper = std::min(x, y);
        const Size index = lower - upper <= b ? shape.index(lower, upper) : matrix.vs();
        return index < matrix.vs() ? matrix.p()[index] : Real(0);
    });
}

#define NEQUAR_INSTANTIATE(Real)              \
    template class MatrixBandSymmetric<Real>; \
    template NEQUAR_API std::ostream& operator<<(std::ostream&, const MatrixBandSymmetric<Real>&);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
