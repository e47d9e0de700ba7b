#include "nequar_algebra/structured/triangular.h"

#include <algorithm>
#include <limits>
#include <ostream>

#include "core/twin_name.h"
#include "frame/print.h"
#include "structured/views.h"

// An upper matrix is the transpose of a lower one: below, `row` and `column` are those of the lower
// picture, in which band d holds the elements (row p + d, column p).

namespace nequar {
namespace {

template <class Real, TriangleSide side>
constexpr const char* name_of_triangular() {
    return side == TriangleSide::lower
               ? twin_name<Real>("CNqMatrix_TriangularLower", "CNqMatrixFloat_TriangularLower")
               : twin_name<Real>("CNqMatrix_TriangularUpper", "CNqMatrixFloat_TriangularUpper");
}

template <TriangleSide side>
int row_of(int x, int y) {
    return side == TriangleSide::lower ? y : x;
}
template <TriangleSide side>
int column_of(int x, int y) {
    return side == TriangleSide::lower ? x : y;
}

}  // namespace

template <class Real, TriangleSide side>
MatrixTriangular<Real, side>::MatrixTriangular()
    : PackedMatrix<Real>(name_of_triangular<Real, side>()) {
    c_Create(1, 1, Real(0));
}

template <class Real, TriangleSide side>
MatrixTriangular<Real, side>::MatrixTriangular(const MatrixTriangular& other) = default;
template <class Real, TriangleSide side>
MatrixTriangular<Real, side>::MatrixTriangular(MatrixTriangular&& other) noexcept = default;
template <class Real, TriangleSide side>
MatrixTriangular<Real, side>::~MatrixTriangular() = default;
template <class Real, TriangleSide side>
MatrixTriangular<Real, side>& MatrixTriangular<Real, side>::operator=(
    const MatrixTriangular& other) = default;
template <class Real, TriangleSide side>
MatrixTriangular<Real, side>& MatrixTriangular<Real, side>::operator=(
    MatrixTriangular&& other) noexcept = default;

template <class Real, TriangleSide side>
int MatrixTriangular<Real, side>::zivs_Initialize_and_Vector_Size(int height, int width) {
    Size count = -1;
    if (height >= 1 && width >= 1)
        count =
            PackedShape::lower(row_of<side>(width, height), column_of<side>(width, height)).count();
    if (count < 1 || count > std::numeric_limits<int>::max()) {
        this->report("1", "zivs_Initialize_and_Vector_Size");
        return -1;
    }
    this->set_shape({height, width, static_cast<int>(count)});
    return static_cast<int>(count);
}

template <class Real, TriangleSide side>
bool MatrixTriangular<Real, side>::create(int height, int width) {
    const CNqClass::CallScope scope(this);
    const auto before = this->shape();
    return this->create_packed(zivs_Initialize_and_Vector_Size(height, width), before);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::c_Create(int height, int width) {
    create(height, width);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::c_Create(int height, int width, Real value) {
    if (create(height, width)) std::fill_n(this->p(), this->stored_count(), value);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::cp_Copy(const MatrixTriangular* source) {
    this->copy_packed(*source);
}

// ---- elements and bands -------------------------------------------------------------------------

template <class Real, TriangleSide side>
bool MatrixTriangular<Real, side>::find_index(int& x, int& y, int& index) const {
    constexpr const char* kMethod = "fi_Find_Index_of_element";
    this->mce(x, y);
    const int row = row_of<side>(x, y);
    const int column = column_of<side>(x, y);
    if (row < column) {
        this->report("1", kMethod);
        return false;
    }
    const Size found = packed_shape(this).index(row, column);
    if (found >= this->vs()) {
        this->report("2", kMethod);
        return false;
    }
    index = static_cast<int>(found);
    return true;
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::fi_Find_Index_of_element(int& x, int& y, int& index) const {
    find_index(x, y, index);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::fp_Find_Position_of_element(int index, int& x, int& y) const {
    if (index < 0 || index >= this->stored_count())
        return this->report("1", "fp_Find_Position_of_element");
    const PackedShape shape = packed_shape(this);
    const int d = static_cast<int>(shape.band_of(index));
    const int position = index - static_cast<int>(shape.start(d));
    x = side == TriangleSide::lower ? position : position + d;
    y = side == TriangleSide::lower ? position + d : position;
}

template <class Real, TriangleSide side>
bool MatrixTriangular<Real, side>::find_band(int& x, int& y, int& first, int& last) const {
    constexpr const char* kMethod = "fib_Find_Index_range_of_a_Band";
    this->mce(x, y);
    const int d = row_of<side>(x, y) - column_of<side>(x, y);
    if (d < 0) {
        this->report("1", kMethod);
        return false;
    }
    const PackedShape shape = packed_shape(this);
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

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::fib_Find_Index_range_of_a_Band(int& x, int& y, int& first,
                                                                  int& last) const {
    find_band(x, y, first, last);
}

template <class Real, TriangleSide side>
Real MatrixTriangular<Real, side>::ge_Get_Element(int x, int y) const {
    int index = 0;
    return find_index(x, y, index) ? (*this)[index] : Real(0);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::se_Set_Element(int x, int y, Real value) {
    int index = 0;
    if (find_index(x, y, index)) (*this)[index] = value;
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::gb_Get_Band(int x, int y, Real* out, int& count) const {
    int first = 0;
    int last = 0;
    if (find_band(x, y, first, last)) count = this->read_run(first, last, out);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::sb_Set_Band(int x, int y, Real value, int& count) {
    int first = 0;
    int last = 0;
    if (find_band(x, y, first, last)) count = this->fill_run(first, last, value);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::sb_Set_Band(int x, int y, const Real* values, int& count) {
    int first = 0;
    int last = 0;
    if (find_band(x, y, first, last)) count = this->write_run(first, last, values);
}

// ---- rows and columns ---------------------------------------------------------------------------

// A line is a row or a column of the matrix. A line that reaches out from the diagonal towards the
// stored corner starts or ends on the diagonal, unless the shape cuts it off before.
template <class Real, TriangleSide side>
bool MatrixTriangular<Real, side>::find_range(bool of_row, int& line, int& first, int& last) const {
    const char* const method =
        of_row ? "fvr_Find_Valid_range_of_Row" : "fvc_Find_Valid_range_of_Column";
    of_row ? this->mcr(line) : this->mcc(line);
    const int length = of_row ? this->mw() : this->mh();  // elements along the line
    const bool from_start = of_row == (side == TriangleSide::lower);
    if (from_start ? length == 0 : line >= length) {
        this->report("1", method);
        return false;
    }
    first = from_start ? 0 : line;
    last = from_start ? std::min(line, length - 1) : length - 1;
    return true;
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::fvr_Find_Valid_range_of_Row(int& y, int& x_first,
                                                               int& x_last) const {
    find_range(true, y, x_first, x_last);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::fvc_Find_Valid_range_of_Column(int& x, int& y_first,
                                                                  int& y_last) const {
    find_range(false, x, y_first, y_last);
}

template <class Real, TriangleSide side>
template <class Visit>
void MatrixTriangular<Real, side>::visit_line(bool of_row, int line, Visit visit) const {
    const PackedShape shape = packed_shape(this);
    if (of_row == (side == TriangleSide::lower))
        shape.visit_row(line, visit);
    else
        shape.visit_column(line, visit);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::get_line(bool of_row, int line, Real* out, int& first,
                                            int& last) const {
    const auto kept = this->keep_if_inside(out);
    if (!kept || !this->is_whole())
        return this->report("2", of_row ? "gr_Get_Row" : "gc_Get_Column");
    int from = 0;
    int to = 0;
    if (!find_range(of_row, line, from, to)) return;
    const Real* const packed = kept.moved(this->p());
    const int length = of_row ? this->mw() : this->mh();
    std::fill(out, out + from, Real(0));
    visit_line(of_row, line, [=](Size i, Size index) { out[i] = packed[index]; });
    std::fill(out + to + 1, out + length, Real(0));
    first = from;
    last = to;
}

template <class Real, TriangleSide side>
template <class Values>
void MatrixTriangular<Real, side>::set_line(bool of_row, int line, const Values& values, int& first,
                                            int& last) {
    if (!this->is_whole()) return this->report("2", of_row ? "sr_Set_Row" : "sc_Set_Column");
    if (!find_range(of_row, line, first, last)) return;
    Real* const packed = this->p();
    visit_line(of_row, line, [=](Size i, Size index) { packed[index] = values(i); });
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::set_line_from(bool of_row, int line, const Real* values,
                                                 int& first, int& last) {
    const auto kept = this->keep_if_inside(values);
    if (!kept) return this->report("2", of_row ? "sr_Set_Row" : "sc_Set_Column");
    values = kept.moved(values);
    set_line(
        of_row, line, [values](Size i) { return values[i]; }, first, last);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::gr_Get_Row(int y, Real* out, int& x_first, int& x_last) const {
    get_line(true, y, out, x_first, x_last);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::gc_Get_Column(int x, Real* out, int& y_first,
                                                 int& y_last) const {
    get_line(false, x, out, y_first, y_last);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::sr_Set_Row(int y, Real value, int& x_first, int& x_last) {
    set_line(
        true, y, [value](Size) { return value; }, x_first, x_last);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::sr_Set_Row(int y, const Real* values, int& x_first,
                                              int& x_last) {
    set_line_from(true, y, values, x_first, x_last);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::sc_Set_Column(int x, Real value, int& y_first, int& y_last) {
    set_line(
        false, x, [value](Size) { return value; }, y_first, y_last);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::sc_Set_Column(int x, const Real* values, int& y_first,
                                                 int& y_last) {
    set_line_from(false, x, values, y_first, y_last);
}

// ---- import and export --------------------------------------------------------------------------

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::i_Import(const Matrix<Real>* dense) {
    i_Import(true, dense->mh(), dense->mw(), dense->p()[0]);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::i_Import(bool row_major, int height, int width,
                                            const Real* elements) {
    const CNqClass::CallScope scope(this);
    const auto kept = this->keep_if_inside(elements);
    elements = kept.moved(elements);
    if (!kept || !create(height, width)) return this->report("1", "i_Import");
    pack_lower(as_lower(side, view_of_array(row_major, height, width, elements)), this->p());
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::e_Export(Matrix<Real>* dense, bool clear) const {
    const CNqClass::CallScope scope(this);
    if (!this->is_whole()) return this->report("2", "e_Export");
    if (!this->size_dense(dense, this->mh(), this->mw(), "e_Export")) return;
    int height = 0;
    int width = 0;
    e_Export(true, &height, &width, dense->p()[0], clear);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::e_Export(bool row_major, int* height, int* width, Real* elements,
                                            bool clear) const {
    const auto kept = this->keep_if_inside(elements);
    if (!kept || !this->is_whole()) return this->report("2", "e_Export");
    *height = this->mh();
    *width = this->mw();
    const View<Real> a = as_lower(side, view_of_array(row_major, this->mh(), this->mw(), elements));
    if (clear) fill_above_diagonal(Real(0), a);
    unpack_lower<Real>(kept.moved(this->p()), a);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::es_Export_as_Symmetric_matrix(Matrix<Real>* dense) const {
    const CNqClass::CallScope scope(this);
    constexpr const char* kMethod = "es_Export_as_Symmetric_matrix";
    if (!this->is_whole()) return this->report("2", kMethod);
    if (!this->size_dense(dense, this->mh(), this->mh(), kMethod)) return;
    int n = 0;
    es_Export_as_Symmetric_matrix(true, &n, dense->p()[0]);
}

template <class Real, TriangleSide side>
void MatrixTriangular<Real, side>::es_Export_as_Symmetric_matrix(bool row_major, int* n,
                                                                 Real* elements) const {
    constexpr const char* kMethod = "es_Export_as_Symmetric_matrix";
    if (this->mh() != this->mw()) return this->report("1", kMethod);
    const auto kept = this->keep_if_inside(elements);
    if (!kept || !this->is_whole()) return this->report("2", kMethod);
    *n = this->mh();
    unpack_symmetric<Real>(kept.moved(this->p()),
                           view_of_array(row_major, this->mh(), this->mw(), elements));
}

template <class Real, TriangleSide side>
bool MatrixTriangular<Real, side>::operator==(const MatrixTriangular& other) const noexcept {
    return this->has_equal_elements(other);
}

template <class Real, TriangleSide side>
std::ostream& operator<<(std::ostream& out, const MatrixTriangular<Real, side>& matrix) {
    const PackedShape shape = packed_shape(&matrix);
    return print_matrix(out, matrix.mh(), matrix.mw(), [&matrix, shape](int y, int x) {
        const int row = row_of<side>(x, y);
        const int column = column_of<side>(x, y);
        if (row < column) return Real(0);
        const Size index = shape.index(row, column);
        return index < matrix.vs() ? matrix.p()[index] : Real(0);
    });
}

#define NEQUAR_INSTANTIATE(Real, side)                          \
    template class MatrixTriangular<Real, side>;                \
    template NEQUAR_API std::ostream& operator<<(std::ostream&, \
                                                 const MatrixTriangular<Real, side>&);
NEQUAR_INSTANTIATE(double, TriangleSide::lower)
NEQUAR_INSTANTIATE(double, TriangleSide::upper)
NEQUAR_INSTANTIATE(float, TriangleSide::lower)
NEQUAR_INSTANTIATE(float, TriangleSide::upper)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
