// SparseMatrix: creation, import and export, elements. Columns, rows and blocks, the operations and
// the self-tests are defined in the _impl.h files, which only this unit includes.
#include "nequar_algebra/sparse/sparse_matrix.h"

#include <utility>

#include "core/twin_name.h"
#include "core/workspace.h"
#include "frame/views.h"
#include "sparse/algorithm/dense.h"
#include "sparse/algorithm/reduce.h"
#include "sparse/fault_text.h"
#include "sparse/inside.h"
#include "sparse/matrix_lines_impl.h"
#include "sparse/matrix_operations_impl.h"
#include "sparse/matrix_self_test_impl.h"

namespace nequar {

template <class Real>
SparseMatrix<Real>::SparseMatrix()
    : CompressedColumns<Real>(twin_name<Real>("CNqSmatrix", "CNqSmatrixFloat")) {
    czm(1, 1, 1);
}

template <class Real>
SparseMatrix<Real>::SparseMatrix(const SparseMatrix& other) = default;
template <class Real>
SparseMatrix<Real>::SparseMatrix(SparseMatrix&& other) noexcept = default;
template <class Real>
SparseMatrix<Real>::~SparseMatrix() = default;
template <class Real>
SparseMatrix<Real>& SparseMatrix<Real>::operator=(const SparseMatrix& other) = default;
template <class Real>
SparseMatrix<Real>& SparseMatrix<Real>::operator=(SparseMatrix&& other) noexcept = default;

template <class Real>
bool SparseMatrix<Real>::cp_Copy(const SparseMatrix* source) {
    return this->copy_columns(*source);
}

template <class Real>
bool SparseMatrix<Real>::czm(int height, int width, int number_of_expected_non_zero_elements) {
    return this->create(height, width, number_of_expected_non_zero_elements);
}

template <class Real>
bool SparseMatrix<Real>::cim(int n, int extra) {
    return this->create_identity(n, extra);
}

// ---- import and export --------------------------------------------------------------------------

template <class Real>
bool SparseMatrix<Real>::tip(int height, const GrowableVector<Real>* values,
                             const GrowableVector<int>* rows, const Vector<int>* start) const {
    const auto refuse = [this](const char* message) {
        this->set_error_detail(message);
        this->zsm_Save_Message("tip_Test_Input_Parameters");
        return false;
    };
    if (height < 1) return refuse("height<=0");
    if (rows->nee() != values->nee()) return refuse("bad row-index 0");
    if (start->vs() < 2) return refuse("bad start-pointer 0");
    const SparseFault fault = find_column_fault(height, start->vs() - 1, start->p(), rows->p(),
                                                rows->nee(), StoredHalf::both);
    return fault == SparseFault::none || refuse(text_of_column_fault(fault));
}

template <class Real>
bool SparseMatrix<Real>::im(int height, const GrowableVector<Real>* values,
                            const GrowableVector<int>* rows, const Vector<int>* start) {
    const CNqClass::CallScope scope(this);
    if (!tip(height, values, rows, start) || !this->copy_arrays(height, *values, *rows, *start))
        return this->fail("bad Input(s)", "im_Import");
    return true;
}

template <class Real>
bool SparseMatrix<Real>::im(const Matrix<Real>* a) {
    constexpr const char* kName = "im_Import";
    constexpr int kSpare = 4;
    const CNqClass::CallScope scope(this);
    const View<const Real> dense = view_of(a);
    Workspace<int> start(dense.width + 1);
    Workspace<unsigned char> marks(dense.height * marks_in_row(dense.width));
    if (!start || !marks) return this->fail("1", kName);
    const Size count = count_nonzeros(dense, marks.data(), start.data());
    if (count > kLargestIntCount - kSpare ||
        !czm(a->mh(), a->mw(), static_cast<int>(count) + kSpare))
        return this->fail("1", kName);
    if (!this->z_cne(static_cast<int>(count))) return this->fail("3", kName);
    fill_from_dense(dense, marks.data(), start.data(), elements_of(SparseInside<Real>::rows(*this)),
                    elements_of(SparseInside<Real>::values(*this)));
    std::copy(start.data(), start.data() + dense.width + 1, SparseInside<Real>::start(*this));
    return true;
}

template <class Real>
bool SparseMatrix<Real>::ex(Matrix<Real>* a) const {
    Workspace<int> next(this->mw());
    if (!next) return this->fail("1", "ex_Export");
    if (a->c_Create(this->mh(), this->mw()) == nullptr) {
        this->adopt_failure_of(*a);
        return this->fail("1", "ex_Export");
    }
    write_to_dense(SparseInside<Real>::columns(*this), next.data(), view_of(a));
    return true;
}

// ---- elements -----------------------------------------------------------------------------------

template <class Real>
bool SparseMatrix<Real>::ge(int x, int y, Real* value) const {
    if (x >= 0 && x < this->mw() && y >= 0 && y < this->mh()) {
        *value = this->element(x, y);
        return true;
    }
    const CNqClass::CallScope scope(this);
    *value = Real(0);
    this->ivip(x, y);
    return this->fail("bad index", "ge_Get_Element");
}

template <class Real>
bool SparseMatrix<Real>::se(int x, int y, Real v) {
    return write(x, y, v, "se_Set_Element");
}

template <class Real>
bool SparseMatrix<Real>::ace(int x, int y, Real v) {
    return write(x, y, v, "ace_Add_Constant_to_an_Element");
}

template <class Real>
bool SparseMatrix<Real>::write(int x, int y, Real v, const char* method) {
    if (x >= 0 && x < this->mw() && y >= 0 && y < this->mh())
        return this->write_element(x, y, v, method);
    const CNqClass::CallScope scope(this);
    this->ivip(x, y);
    return this->fail("bad index", method);
}

template <class Real>
bool SparseMatrix<Real>::itze() const {
    const Columns<Real> columns = SparseInside<Real>::columns(*this);
    return columns.count < columns.width * columns.height ||
           has_zero(columns.values, columns.count);
}

template <class Real>
bool SparseMatrix<Real>::fize(int& x, int& y) const {
    Size column = 0;
    Size row = 0;
    if (!find_zero(SparseInside<Real>::columns(*this), StoredHalf::both, column, row)) return false;
    x = static_cast<int>(column);
    y = static_cast<int>(row);
    return true;
}

template class SparseMatrix<double>;
template class SparseMatrix<float>;

}  // namespace nequar
