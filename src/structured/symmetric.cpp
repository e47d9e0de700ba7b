#include "nequar_algebra/structured/symmetric.h"

#include <algorithm>
#include <limits>
#include <ostream>

#include "core/twin_name.h"
#include "frame/print.h"
#include "structured/views.h"

namespace nequar {

template <class Real>
MatrixSymmetric<Real>::MatrixSymmetric()
    : PackedMatrix<Real>(twin_name<Real>("CNqMatrix_Symmetric", "CNqMatrixFloat_Symmetric")) {
    c_Create(1, 1, Real(0));
}

template <class Real>
MatrixSymmetric<Real>::MatrixSymmetric(const MatrixSymmetric& other) = default;
template <class Real>
MatrixSymmetric<Real>::MatrixSymmetric(MatrixSymmetric&& other) noexcept = default;
template <class Real>
MatrixSymmetric<Real>::~MatrixSymmetric() = default;
template <class Real>
MatrixSymmetric<Real>& MatrixSymmetric<Real>::operator=(const MatrixSymmetric& other) = default;
template <class Real>
MatrixSymmetric<Real>& MatrixSymmetric<Real>::operator=(MatrixSymmetric&& other) noexcept = default;

template <class Real>
int MatrixSymmetric<Real>::zivs_Initialize_and_Vector_Size(int height, int width) {
    const Size count = PackedShape::lower(height, width).count();
    if (height != width || width < 1 || count > std::numeric_limits<int>::max()) {
        this->report("1", "zivs_Initialize_and_Vector_Size");
        return -1;
    }
    this->set_shape({height, width, static_cast<int>(count)});
    return static_cast<int>(count);
}

template <class Real>
bool MatrixSymmetric<Real>::create(int height, int width) {
    const CNqClass::CallScope scope(this);
    const auto before = this->shape();
    return this->create_packed(zivs_Initialize_and_Vector_Size(height, width), before);
}

template <class Real>
void MatrixSymmetric<Real>::c_Create(int height, int width) {
    create(height, width);
}

template <class Real>
void MatrixSymmetric<Real>::c_Create(int height, int width, Real value) {
    if (create(height, width)) std::fill_n(this->p(), this->stored_count(), value);
}

template <class Real>
void MatrixSymmetric<Real>::cp_Copy(const MatrixSymmetric* source) {
    this->copy_packed(*source);
}

// ---- elements and bands -------------------------------------------------------------------------

template <class Real>
bool MatrixSymmetric<Real>::find_index(int& x, int& y, int& index) const {
    this->mce(x, y);
    const Size found = packed_shape(this).index(std::max(x, y), std::min(x, y));
    if (found >= this->vs()) {
        this->report("2", "fi_Find_Index_of_element");
        return false;
    }
    index = static_cast<int>(found);
    return true;
}

template <class Real>
void MatrixSymmetric<Real>::fi_Find_Index_of_element(int& x, int& y, int& index) const {
    find_index(x, y, index);
}

template <class Real>
void MatrixSymmetric<Real>::fp_Find_Position_of_element(int index, int& x, int& y) const {
    if (index < 0 || index >= this->stored_count())
        return this->report("1", "fp_Find_Position_of_element");
    const PackedShape shape = packed_shape(this);
    const Size d = shape.band_of(index);
    const Size position = index - shape.start(d);
    x = static_cast<int>(position);
    y = static_cast<int>(position + d);
}

template <class Real>
bool MatrixSymmetric<Real>::find_band(int& x, int& y, int& first, int& last) const {
    this->mce(x, y);
    const PackedShape shape = packed_shape(this);
    const Size d = std::max(x, y) - std::min(x, y);
    const Size start = shape.start(d);
    const Size end = start + shape.length(d);
    if (start == end || end > this->vs()) {
        this->report("2", "fib_Find_Index_range_of_a_Band");
        return false;
    }
    first = static_cast<int>(start);
    last = static_cast<int>(end - 1);
    return true;
}

template <class Real>
void MatrixSymmetric<Real>::fib_Find_Index_range_of_a_Band(int& x, int& y, int& first,
                                                           int& last) const {
    find_band(x, y, first, last);
}

template <class Real>
Real MatrixSymmetric<Real>::ge_Get_Element(int x, int y) const {
    int index = 0;
    return find_index(x, y, index) ? (*this)[index] : Real(0);
}

template <class Real>
void MatrixSymmetric<Real>::se_Set_Element(int x, int y, Real value) {
    int index = 0;
    if (find_index(x, y, index)) (*this)[index] = value;
}

template <class Real>
void MatrixSymmetric<Real>::gb_Get_Band(int x, int y, Real* out, int& count) const {
    int first = 0;
    int last = 0;
    if (find_band(x, y, first, last)) count = this->read_run(first, last, out);
}

template <class Real>
void MatrixSymmetric<Real>::sb_Set_Band(int x, int y, Real value, int& count) {
    int first = 0;
    int last = 0;
    if (find_band(x, y, first, last)) count = this->fill_run(first, last, value);
}

template <class Real>
void MatrixSymmetric<Real>::sb_Set_Band(int x, int y, const Real* values, int& count) {
    int first = 0;
    int last = 0;
    if (find_band(x, y, first, last)) count = this->write_run(first, last, values);
}

// ---- rows ---------------------------------------------------------------------------------------

template <class Real>
void MatrixSymmetric<Real>::get_line(int r, Real* out, int& first, int& last,
                                     const char* method) const {
    const auto kept = this->keep_if_inside(out);
    if (!kept || !this->is_whole() || this->stored_count() == 0) return this->report("2", method);
    this->mcr(r);
    const Real* const packed = kept.moved(this->p());
    const PackedShape shape = packed_shape(this);
    shape.visit_row(r, [=](Size column, Size index) { out[column] = packed[index]; });
    shape.visit_column(r, [=](Size row, Size index) { out[row] = packed[index]; });
    first = 0;
    last = this->mw() - 1;
}

template <class Real>
void MatrixSymmetric<Real>::gr_Get_Row(int r, Real* out, int& first, int& last) const {
    get_line(r, out, first, last, "gr_Get_Row");
}

template <class Real>
void MatrixSymmetric<Real>::gc_Get_Column(int c, Real* out, int& first, int& last) const {
    get_line(c, out, first, last, "gc_Get_Column");
}

// ---- import and export --------------------------------------------------------------------------

template <class Real>
bool MatrixSymmetric<Real>::is_square(const Matrix<Real>* dense, const char* method) const {
    if (dense->mh() == dense->mw()) return true;
    this->report("1", method);
    return false;
}

template <class Real>
void MatrixSymmetric<Real>::i_Import(const Matrix<Real>* dense) {
    if (is_square(dense, "i_Import<CNqMatrix>")) i_Import(true, dense->mh(), dense->p()[0]);
}

template <class Real>
void MatrixSymmetric<Real>::i_Import(bool row_major, int n, const Real* elements) {
    const CNqClass::CallScope scope(this);
    const auto kept = this->keep_if_inside(elements);
    elements = kept.moved(elements);
    if (!kept || !create(n, n)) return this->report("1", "i_Import");
    pack_symmetric_average(view_of_array(row_major, n, n, elements), this->p());
}

template <class Real>
void MatrixSymmetric<Real>::import_triangle(TriangleSide side, bool row_major, int n,
                                            const Real* elements, const char* method) {
    const CNqClass::CallScope scope(this);
    const auto kept = this->keep_if_inside(elements);
    elements = kept.moved(elements);
    if (!kept || !create(n, n)) return this->report("1", method);
    pack_lower(as_lower(side, view_of_array(row_major, n, n, elements)), this->p());
}

template <class Real>
void MatrixSymmetric<Real>::il_Import_Lower_part_of(const Matrix<Real>* dense) {
    if (is_square(dense, "il_Import_Lower_part_of <CNqMatrix>"))
        il_Import_Lower_part_of(true, dense->mh(), dense->p()[0]);
}

template <class Real>
void MatrixSymmetric<Real>::il_Import_Lower_part_of(bool row_major, int n, const Real* elements) {
    import_triangle(TriangleSide::lower, row_major, n, elements, "il_Import_Lower_part_of");
}

template <class Real>
void MatrixSymmetric<Real>::iu_Import_Upper_part_of(const Matrix<Real>* dense) {
    if (is_square(dense, "iu_Import_Upper_part_of <CNqMatrix>"))
        iu_Import_Upper_part_of(true, dense->mh(), dense->p()[0]);
}

template <class Real>
void MatrixSymmetric<Real>::iu_Import_Upper_part_of(bool row_major, int n, const Real* elements) {
    import_triangle(TriangleSide::upper, row_major, n, elements, "iu_Import_Upper_part_of");
}

template <class Real>
void MatrixSymmetric<Real>::e_Export(Matrix<Real>* dense) const {
    const CNqClass::CallScope scope(this);
    if (!this->is_whole()) return this->report("2", "e_Export");
    if (!this->size_dense(dense, this->mh(), this->mw(), "e_Export")) return;
    unpack_symmetric<Real>(this->p(), view_of(dense));
}

template <class Real>
void MatrixSymmetric<Real>::e_Export(bool row_major, int* n, Real* elements) const {
    const auto kept = this->keep_if_inside(elements);
    if (!kept || !this->is_whole()) return this->report("2", "e_Export");
    *n = this->mh();
    unpack_symmetric<Real>(kept.moved(this->p()),
                           view_of_array(row_major, this->mh(), this->mw(), elements));
}

template <class Real>
bool MatrixSymmetric<Real>::operator==(const MatrixSymmetric& other) const noexcept {
    return this->has_equal_elements(other);
}

template <class Real>
std::ostream& operator<<(std::ostream& out, const MatrixSymmetric<Real>& matrix) {
    const PackedShape shape = packed_shape(&matrix);
    return print_matrix(out, matrix.mh(), matrix.mw(), [&matrix, shape](int y, int x) {
        const Size index = shape.index(std::max(x, y), std::min(x, y));
        return index < matrix.vs() ? matrix.p()[index] : Real(0);
    });
}

#define NEQUAR_INSTANTIATE(Real)          \
    template class MatrixSymmetric<Real>; \
    template NEQUAR_API std::ostream& operator<<(std::ostream&, const MatrixSymmetric<Real>&);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
