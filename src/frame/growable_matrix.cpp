// Vectors are the columns (growth by columns) or the rows (growth by rows) of one dense matrix that
// is as wide (high) as there is room. The matrix is handed out, so its shape is asked for each time
// and never remembered beside it.
#include "nequar_algebra/frame/growable_matrix.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <type_traits>
#include <utility>

#include "core/twin_name.h"
#include "frame/growth.h"

namespace nequar {
namespace {

constexpr bool by_columns(Growth growth) {
    return growth == Growth::columns;
}

template <class Real, Growth growth>
constexpr const char* name_of_growable_matrix() {
    return by_columns(growth) ? twin_name<Real>("CNqXCmatrix", "CNqXCmatrixFloat")
                              : twin_name<Real>("CNqXRmatrix", "CNqXRmatrixFloat");
}

template <class Real>
int vectors_of(Growth growth, const Matrix<Real>& matrix) {
    return by_columns(growth) ? matrix.mw() : matrix.mh();
}

template <class Real>
int vector_size_of(Growth growth, const Matrix<Real>& matrix) {
    return by_columns(growth) ? matrix.mh() : matrix.mw();
}

template <class Real>
bool shape(Growth growth, int size, int vectors, Matrix<Real>& matrix) {
    const bool columns = by_columns(growth);
    return matrix.c_Create(columns ? size : vectors, columns ? vectors : size) != nullptr;
}

template <class Real>
void move_elements(const Real* from, std::ptrdiff_t count, Real* to) {
    if (count > 0) std::memmove(to, from, static_cast<std::size_t>(count) * sizeof(Real));
}

// The first `count` vectors of `from` become those of `to` from `place` on. The two may be one.
template <class Real>
void copy_vectors(Growth growth, const Matrix<Real>& from, int count, Matrix<Real>& to, int place) {
    if (by_columns(growth)) {
        for (int y = 0; y < from.mh(); ++y) move_elements(from[y], count, to[y] + place);
    } else if (count > 0) {
        move_elements(from[0], std::ptrdiff_t(count) * from.mw(), to[place]);
    }
}

}  // namespace

template <class Real, Growth growth>
GrowableMatrix<Real, growth>::GrowableMatrix() {
    set_class_name(name_of_growable_matrix<Real, growth>());
}

template <class Real, Growth growth>
GrowableMatrix<Real, growth>::GrowableMatrix(const GrowableMatrix& other) : CNqClass(other) {
    cp_Copy(&other);
}

template <class Real, Growth growth>
GrowableMatrix<Real, growth>::GrowableMatrix(GrowableMatrix&& other) noexcept
    : CNqClass(std::move(other)),
      matrix_(std::move(other.matrix_)),
      count_(std::exchange(other.count_, 0)) {}

template <class Real, Growth growth>
GrowableMatrix<Real, growth>::~GrowableMatrix() = default;

template <class Real, Growth growth>
GrowableMatrix<Real, growth>& GrowableMatrix<Real, growth>::operator=(const GrowableMatrix& other) {
    CNqClass::operator=(other);
    cp_Copy(&other);
    return *this;
}

template <class Real, Growth growth>
GrowableMatrix<Real, growth>& GrowableMatrix<Real, growth>::operator=(
    GrowableMatrix&& other) noexcept {
    if (this == &other) return *this;
    CNqClass::operator=(std::move(other));
    matrix_ = std::move(other.matrix_);
    count_ = std::exchange(other.count_, 0);
    return *this;
}

template <class Real, Growth growth>
bool GrowableMatrix<Real, growth>::cp_Copy(const GrowableMatrix* other) {
    assert(other != nullptr);
    if (other == this) return true;
    if (!shape(growth, other->vs(), other->room(), matrix_)) {
        adopt_failure_of(matrix_);
        return fail("2", "cp_Copy");
    }
    count_ = other->nee();
    copy_vectors(growth, other->matrix_, count_, matrix_, 0);
    return true;
}

// ---- sizes and room -----------------------------------------------------------------------------

template <class Real, Growth growth>
int GrowableMatrix<Real, growth>::vs_Vector_Size() const noexcept {
    return vector_size_of(growth, matrix_);
}

template <class Real, Growth growth>
int GrowableMatrix<Real, growth>::room() const noexcept {
    return vectors_of(growth, matrix_);
}

template <class Real, Growth growth>
int GrowableMatrix<Real, growth>::nee_Number_of_Enrolled_Elements() const noexcept {
    return std::min(count_, room());
}

template <class Real, Growth growth>
int GrowableMatrix<Real, growth>::sbs_Size_of_Blank_Space() const noexcept {
    return room() - nee();
}

// Takes a matrix with more room, after the vectors that are stored have been copied into it.
template <class Real, Growth growth>
void GrowableMatrix<Real, growth>::take_over(Matrix<Real>& larger) noexcept {
    count_ = nee();
    if (count_ > 0) copy_vectors(growth, matrix_, count_, larger, 0);
    matrix_ = std::move(larger);
}

template <class Real, Growth growth>
bool GrowableMatrix<Real, growth>::move_to(int size, int room) {
    Matrix<Real> fresh;
    if (!shape(growth, size, room, fresh)) {
        adopt_failure_of(fresh);
        return false;
    }
    take_over(fresh);
    return true;
}

// Room for `needed` vectors; when it has to grow it grows by more, if that can be had.
template <class Real, Growth growth>
bool GrowableMatrix<Real, growth>::make_room(std::ptrdiff_t needed) {
    if (needed <= room()) return true;
    if (needed > kLargestIntCount) return false;
    Matrix<Real> fresh;
    if (!shape(growth, vs(), static_cast<int>(grown_room(room(), needed)), fresh))
        return move_to(vs(), static_cast<int>(needed));
    take_over(fresh);
    return true;
}

template <class Real, Growth growth>
bool GrowableMatrix<Real, growth>::in_Initialize(int size, int expected) {
    if (size < 0 || expected < 0) return fail("1", "in_Initialize");
    if (!shape(growth, size, expected, matrix_)) {
        adopt_failure_of(matrix_);
        return fail("2", "in_Initialize");
    }
    count_ = 0;
    return true;
}

template <class Real, Growth growth>
bool GrowableMatrix<Real, growth>::is_Initialize_Space(int size, int expected) {
    if (size < 0 || expected < 0) return fail("1", "is_Initialize_Space");
    if (nee() > 0 && size != vs()) return fail("3", "is_Initialize_Space");
    if (size == vs() && expected <= room()) return true;
    return move_to(size, std::max(expected, nee())) || fail("2", "is_Initialize_Space");
}

template <class Real, Growth growth>
bool GrowableMatrix<Real, growth>::mbs_Modify_Blank_Space(int n) {
    if (n < 0) return fail("1", "mbs_Modify_Blank_Space");
    const Size wanted = Size(nee()) + n;
    if (wanted == room()) return true;
    if (wanted > kLargestIntCount || !move_to(vs(), static_cast<int>(wanted)))
        return fail("2", "mbs_Modify_Blank_Space");
    return true;
}

template <class Real, Growth growth>
bool GrowableMatrix<Real, growth>::z_cne_Change_Number_of_Elements(int n) {
    if (n < 0) return fail("1", "z_cne_Change_Number_of_Elements");
    if (!make_room(n)) return fail("2", "z_cne_Change_Number_of_Elements");
    const int before = nee();
    const int fresh = std::max(n - before, 0);
    if (by_columns(growth)) {
        for (int y = 0; y < vs(); ++y) std::fill_n(matrix_[y] + before, fresh, Real(0));
    } else if (fresh > 0) {
        std::fill_n(matrix_[before], std::ptrdiff_t(fresh) * vs(), Real(0));
    }
    count_ = n;
    return true;
}

// ---- appending ----------------------------------------------------------------------------------

template <class Real, Growth growth>
bool GrowableMatrix<Real, growth>::ap_Append(const Matrix<Real>* matrix, int count) {
    assert(matrix != nullptr);
    if (count < 0 || count > vectors_of(growth, *matrix)) return fail("1", "ap_Append");
    if (vector_size_of(growth, *matrix) != vs()) return fail("3", "ap_Append");
    // Should the matrix be this container's own, its vectors come along when it grows.
    const Size total = Size(nee()) + count;
    if (!make_room(total)) return fail("2", "ap_Append");
    copy_vectors(growth, *matrix, count, matrix_, nee());
    count_ = static_cast<int>(total);
    return true;
}

template <class Real, Growth growth>
bool GrowableMatrix<Real, growth>::ap_Append(const Vector<Real>* vector) {
    assert(vector != nullptr);
    if (vector->vs() != vs()) return fail("3", "ap_Append");
    const int place = nee();
    if (!make_room(Size(place) + 1)) return fail("2", "ap_Append");
    if (by_columns(growth)) {
        for (int y = 0; y < vs(); ++y) matrix_[y][place] = (*vector)[y];
    } else if (vs() > 0) {
        move_elements(vector->p(), vs(), matrix_[place]);
    }
    count_ = place + 1;
    return true;
}

// ---- looking inside -----------------------------------------------------------------------------

template <class Real, Growth growth>
void GrowableMatrix<Real, growth>::sizes(int* width, int* height, int* count,
                                         int* blank) const noexcept {
    if (width != nullptr) *width = matrix_.mw();
    if (height != nullptr) *height = matrix_.mh();
    if (count != nullptr) *count = nee();
    if (blank != nullptr) *blank = sbs();
}

template <class Real, Growth growth>
void GrowableMatrix<Real, growth>::z_gii_Get_Informations_Internal(Matrix<Real>** matrix,
                                                                   Real*** rows, int* width,
                                                                   int* height, int* count,
                                                                   int* blank) noexcept {
    if (matrix != nullptr) *matrix = &matrix_;
    if (rows != nullptr) *rows = matrix_.p();
    sizes(width, height, count, blank);
}

template <class Real, Growth growth>
void GrowableMatrix<Real, growth>::z_gii_Get_Informations_Internal(const Matrix<Real>** matrix,
                                                                   const Real* const** rows,
                                                                   int* width, int* height,
                                                                   int* count,
                                                                   int* blank) const noexcept {
    if (matrix != nullptr) *matrix = &matrix_;
    if (rows != nullptr) *rows = matrix_.p();
    sizes(width, height, count, blank);
}

template <class Real, Growth growth>
bool GrowableMatrix<Real, growth>::operator==(const GrowableMatrix& other) const noexcept {
    const int count = nee();
    const int size = vs();
    if (count != other.nee() || size != other.vs()) return false;
    const int rows = by_columns(growth) ? size : count;
    const int columns = by_columns(growth) ? count : size;
    for (int y = 0; y < rows; ++y)
        if (!std::equal(matrix_[y], matrix_[y] + columns, other.matrix_[y])) return false;
    return true;
}

template class GrowableMatrix<double, Growth::columns>;
template class GrowableMatrix<float, Growth::columns>;
template class GrowableMatrix<double, Growth::rows>;
template class GrowableMatrix<float, Growth::rows>;

}  // namespace nequar
