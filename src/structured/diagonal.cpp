#include "nequar_algebra/structured/diagonal.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "core/twin_name.h"
#include "frame/print.h"
#include "frame/views.h"
#include "kernel/kernel.h"

namespace nequar {

template <class Real>
MatrixDiagonal<Real>::MatrixDiagonal()
    : PackedMatrix<Real>(twin_name<Real>("CNqMatrix_Diagonal", "CNqMatrixFloat_Diagonal")) {
    c_Create(1, 1, Real(0));
}

template <class Real>
MatrixDiagonal<Real>::MatrixDiagonal(const MatrixDiagonal& other) = default;
template <class Real>
MatrixDiagonal<Real>::MatrixDiagonal(MatrixDiagonal&& other) noexcept = default;
template <class Real>
MatrixDiagonal<Real>::~MatrixDiagonal() = default;
template <class Real>
MatrixDiagonal<Real>& MatrixDiagonal<Real>::operator=(const MatrixDiagonal& other) = default;
template <class Real>
MatrixDiagonal<Real>& MatrixDiagonal<Real>::operator=(MatrixDiagonal&& other) noexcept = default;

template <class Real>
int MatrixDiagonal<Real>::zivs_Initialize_and_Vector_Size(int height, int width) {
    const int length = std::min(height, width);
    if (length < 1) {
        this->report(height < width ? "2" : "1", "zivs_Initialize_and_Vector_Size");
        return -1;
    }
    this->set_shape({height, width, length});
    return length;
}

template <class Real>
bool MatrixDiagonal<Real>::create(int height, int width) {
    const CNqClass::CallScope scope(this);
    const typename PackedMatrix<Real>::Shape before = this->shape();
    return this->create_packed(zivs_Initialize_and_Vector_Size(height, width), before);
}

template <class Real>
void MatrixDiagonal<Real>::c_Create(int height, int width) {
    create(height, width);
}

template <class Real>
void MatrixDiagonal<Real>::c_Create(int height, int width, Real value) {
    if (create(height, width)) std::fill_n(this->p(), this->stored_count(), value);
}

template <class Real>
void MatrixDiagonal<Real>::cp_Copy(const MatrixDiagonal* source) {
    this->copy_packed(*source);
}

template <class Real>
Real MatrixDiagonal<Real>::ge_Get_Element(int x, int y) const {
    this->mce(x, y);
    if (x != y) return Real(0);
    if (x < this->vs()) return (*this)[x];
    this->report("1", "ge_Get_Element");
    return Real(0);
}

template <class Real>
void MatrixDiagonal<Real>::se_Set_Element(int x, int y, Real value) {
    this->mce(x, y);
    if (x != y) return this->report("1", "se_Set_Element");
    if (x >= this->vs()) return this->report("2", "se_Set_Element");
    (*this)[x] = value;
}

template <class Real>
bool MatrixDiagonal<Real>::find_band(int x, int y, const char* method) const {
    this->mce(x, y);
    if (x == y && this->stored_count() > 0 && this->is_whole()) return true;
    this->report(x != y ? "1" : "2", method);
    return false;
}

template <class Real>
void MatrixDiagonal<Real>::gb_Get_Band(int x, int y, Real* out, int& count) const {
    if (find_band(x, y, "gb_Get_Band")) count = this->read_run(0, this->stored_count() - 1, out);
}

template <class Real>
void MatrixDiagonal<Real>::sb_Set_Band(int x, int y, Real value, int& count) {
    if (find_band(x, y, "sb_Set_Band")) count = this->fill_run(0, this->stored_count() - 1, value);
}

template <class Real>
void MatrixDiagonal<Real>::sb_Set_Band(int x, int y, const Real* values, int& count) {
    if (find_band(x, y, "sb_Set_Band")) count = this->write_run(0, this->stored_count() - 1, values);
}

template <class Real>
void MatrixDiagonal<Real>::i_Import(const Matrix<Real>* dense) {
    i_Import(true, dense->mh(), dense->mw(), dense->p()[0]);
}

template <class Real>
void MatrixDiagonal<Real>::i_Import(bool row_major, int height, int width, const Real* elements) {
    const CNqClass::CallScope scope(this);
    const auto kept = this->keep_if_inside(elements);
    elements = kept.moved(elements);
    if (!kept || !create(height, width)) return this->report("1", "i_Import");
    kernel::copy(view_of_array(row_major, height, width, elements).diagonal(),
                 Strided<Real>(this->p(), this->stored_count()));
}

template <class Real>
void MatrixDiagonal<Real>::e_Export(Matrix<Real>* dense, bool zero_fill) const {
    const CNqClass::CallScope scope(this);
    if (!this->is_whole()) return this->report("2", "e_Export");
    if (!this->size_dense(dense, this->mh(), this->mw(), "e_Export")) return;
    int height = 0;
    int width = 0;
    e_Export(true, &height, &width, dense->p()[0], zero_fill);
}

template <class Real>
void MatrixDiagonal<Real>::e_Export(bool row_major, int* height, int* width, Real* elements,
                                    bool zero_fill) const {
    const CNqClass::CallScope scope(this);
    const auto kept = this->keep_if_inside(elements);
    if (!kept || !this->is_whole()) return this->report("2", "e_Export");
    *height = this->mh();
    *width = this->mw();
    const auto a = view_of_array(row_major, this->mh(), this->mw(), elements);
    const Strided<const Real> diagonal(kept.moved(this->p()), this->stored_count());
    if (zero_fill) kernel::fill(Real(0), a);
    kernel::copy(diagonal, a.diagonal());
}

template <class Real>
bool MatrixDiagonal<Real>::operator==(const MatrixDiagonal& other) const noexcept {
    return this->has_equal_elements(other);
}

template <class Real>
std::ostream& operator<<(std::ostream& out, const MatrixDiagonal<Real>& matrix) {
    return print_matrix(out, matrix.mh(), matrix.mw(), [&matrix](int y, int x) {
        return x == y && x < matrix.vs() ? matrix[x] : Real(0);
    });
}

#define NEQUAR_INSTANTIATE(Real)         \
    template class MatrixDiagonal<Real>; \
    template NEQUAR_API std::ostream& operator<<(std::ostream&, const MatrixDiagonal<Real>&);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
