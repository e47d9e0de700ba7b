#include "nequar_algebra/structured/toeplitz.h"

#include <algorithm>
#include <ostream>

#include "core/overlap.h"
#include "core/twin_name.h"
#include "core/workspace.h"
#include "core/wrap.h"
#include "frame/print.h"
#include "structured/algorithm/toeplitz.h"
#include "structured/views.h"

namespace nequar {
namespace {

constexpr const char* kDurbin = "u_sywd_Solve_Yule_Walker_equation_by_Durbin";
constexpr const char* kLevinson = "u_slel_Solve_Linear_Equation_by_Levinson";
constexpr const char* kTrench = "u_fimt_Find_Inverse_Matrix_by_Trench";
constexpr const char* kOutOfMemory = "out of memory";
constexpr const char* kCannotSize = "cannot size the output";

template <class Real>
bool deliver(const Real* result, int size, Vector<Real>* out) {
    if (out->c_Create(size) == nullptr) return false;
    std::copy_n(result, size, out->p());
    return true;
}

// Row `index` of the matrix of order n: r[index] ... r[1] r[0] r[1] ...
template <class Real>
void write_row(const Real* r, int n, int index, Real* out) {
    std::reverse_copy(r, r + index + 1, out);
    std::copy(r + 1, r + (n - index), out + index + 1);
}

template <class Real>
void write_matrix(const Real* r, int n, Real* out) {
    for (int i = 0; i < n; ++i) write_row(r, n, i, out + Size(i) * n);
}

}  // namespace

template <class Real>
MatrixToeplitzSymmetric<Real>::MatrixToeplitzSymmetric() {
    this->set_class_name(
        twin_name<Real>("CNqMatrix_Toeplitz_Symmetric", "CNqMatrixFloat_Toeplitz_Symmetric"));
    r_.c_Create(1, Real(1));
}

template <class Real>
MatrixToeplitzSymmetric<Real>::~MatrixToeplitzSymmetric() = default;

template <class Real>
void MatrixToeplitzSymmetric<Real>::cp_Copy(const MatrixToeplitzSymmetric* source) {
    r_.cp_Copy(&source->r_);
}

template <class Real>
void MatrixToeplitzSymmetric<Real>::ms_Matrix_Width_Height(int& width, int& height) const noexcept {
    width = height = r_.vs();
}

template <class Real>
bool MatrixToeplitzSymmetric<Real>::im_Import(int n, const Vector<Real>& v) {
    const char* detail = nullptr;
    if (n <= 0)
        detail = "1";
    else if (v.vs() < n)
        detail = "Bad Upper Part";
    else if (!deliver(v.p(), n, &r_))
        detail = kOutOfMemory;
    if (detail != nullptr) this->report(detail, "im_Import");
    return detail == nullptr;
}

template <class Real>
void MatrixToeplitzSymmetric<Real>::ex_Export(Matrix<Real>* dense, MatrixSymmetric<Real>* symmetric,
                                              Vector<Real>* r) const {
    const int n = r_.vs();
    if (r != nullptr && r == symmetric) return this->report("1", "ex_Export");
    if (dense != nullptr) {
        if (dense->c_Create(n, n) == nullptr) return this->report("1", "ex_Export");
        write_matrix(r_.p(), n, dense->p()[0]);
    }
    if (symmetric != nullptr) {
        if (!size_packed(symmetric, n, n)) return this->report("1", "ex_Export");
        Real* band = symmetric->p();
        for (int d = 0; d < n; ++d) band = std::fill_n(band, n - d, r_[d]);
    }
    if (r != nullptr && r->cp_Copy(&r_) == nullptr) this->report("1", "ex_Export");
}

template <class Real>
void MatrixToeplitzSymmetric<Real>::ex_Export(bool /*row_major*/, Real* elements,
                                              int* order) const {
    write_matrix(r_.p(), r_.vs(), elements);
    *order = r_.vs();
}

template <class Real>
Real MatrixToeplitzSymmetric<Real>::ge_Get_Element(int x, int y) const {
    const int n = r_.vs();
    if (n == 0) {
        this->report("1", "ge_Get_Element");
        return Real(0);
    }
    return r_[std::abs(wrapped(x, n) - wrapped(y, n))];
}

template <class Real>
bool MatrixToeplitzSymmetric<Real>::get_line(int index, Real* out, const char* method) const {
    const int n = r_.vs();
    if (n == 0) {
        this->report("1", method);
        return false;
    }
    write_row(r_.p(), n, wrapped(index, n), out);
    return true;
}

template <class Real>
void MatrixToeplitzSymmetric<Real>::get_line(int index, Vector<Real>* out,
                                             const char* method) const {
    if (r_.vs() == 0 || out->c_Create(r_.vs()) == nullptr) return this->report("1", method);
    get_line(index, out->p(), method);
}

template <class Real>
void MatrixToeplitzSymmetric<Real>::gr_Get_Row(int index, Real* out) const {
    get_line(index, out, "gr_Get_Row");
}
template <class Real>
void MatrixToeplitzSymmetric<Real>::gr_Get_Row(int index, Vector<Real>* out) const {
    get_line(index, out, "gr_Get_Row");
}
template <class Real>
void MatrixToeplitzSymmetric<Real>::gc_Get_Column(int index, Real* out) const {
    get_line(index, out, "gc_Get_Column");
}
template <class Real>
void MatrixToeplitzSymmetric<Real>::gc_Get_Column(int index, Vector<Real>* out) const {
    get_line(index, out, "gc_Get_Column");
}

// ---- the algorithms -----------------------------------------------------------------------------

template <class Real>
bool MatrixToeplitzSymmetric<Real>::fail_with(const Outcome& outcome, const char* method) const {
    switch (outcome.kind) {
        case OutcomeKind::singular:
            return this->fail("r[0]==0", method);
        case OutcomeKind::no_memory:
            return this->fail(kOutOfMemory, method);
        default:
            return this->fail("Not Positive-Definite", method);
    }
}

template <class Real>
bool MatrixToeplitzSymmetric<Real>::u_sywd_Solve_Yule_Walker_equation_by_Durbin(
    const Vector<Real>& r, Vector<Real>* y, MatrixToeplitzSymmetric* T) const {
    if (r.vs() < 1) return this->fail("1", kDurbin);
    const int m = r.vs() - 1;
    Workspace<Real> solution(m);
    if (!solution) return this->fail(kOutOfMemory, kDurbin);
    if (T != nullptr) T->im_Import(m, r);
    const Outcome outcome = durbin(Size(m), r.p(), solution.data());
    if (!outcome) return fail_with(outcome, kDurbin);
    return deliver(solution.data(), m, y) ? true : this->fail(kCannotSize, kDurbin);
}

template <class Real>
bool MatrixToeplitzSymmetric<Real>::slel_Solve_Linear_Equation_by_Levinson(Vector<Real>& b) const {
    return u_slel_Solve_Linear_Equation_by_Levinson(r_, b, b);
}

template <class Real>
bool MatrixToeplitzSymmetric<Real>::u_slel_Solve_Linear_Equation_by_Levinson(
    const Vector<Real>& r, const Vector<Real>& b, Vector<Real>& x) const {
    const int n = b.vs();
    if (r.vs() < n || r.vs() < 1) return this->fail("1", kLevinson);
    Workspace<Real> solution(n);
    if (!solution) return this->fail(kOutOfMemory, kLevinson);
    const Outcome outcome =
        n == 0 ? leading_element(r[0]) : levinson(Size(n), r.p(), b.p(), solution.data());
    if (!outcome) return fail_with(outcome, kLevinson);
    return deliver(solution.data(), n, &x) ? true : this->fail(kCannotSize, kLevinson);
}

template <class Real>
bool MatrixToeplitzSymmetric<Real>::fimt_Find_Inverse_Matrix_by_Trench(
    Matrix<Real>* dense, MatrixSymmetric<Real>* symmetric) const {
    return u_fimt_Find_Inverse_Matrix_by_Trench(r_, dense, symmetric);
}

template <class Real>
bool MatrixToeplitzSymmetric<Real>::u_fimt_Find_Inverse_Matrix_by_Trench(
    const Vector<Real>& r, Matrix<Real>* dense, MatrixSymmetric<Real>* symmetric) const {
    const int n = r.vs();
    if (n < 1) return this->fail("1", kTrench);
    if (const Outcome outcome = leading_element(r[0]); !outcome) return fail_with(outcome, kTrench);
    if (dense == nullptr) {
        MatrixSymmetric<Real> unwanted;
        MatrixSymmetric<Real>& packed = symmetric != nullptr ? *symmetric : unwanted;
        const Vector<Real> first_row = r;  // r may be the packed matrix itself
        if (first_row.vs() != n) return this->fail(kOutOfMemory, kTrench);
        if (!size_packed(&packed, n, n)) return this->fail(kCannotSize, kTrench);
        const Outcome outcome = trench_packed(Size(n), first_row.p(), packed.p());
        return outcome ? true : fail_with(outcome, kTrench);
    }
    if (dense->c_Create(n, n) == nullptr) return this->fail(kCannotSize, kTrench);
    const Outcome outcome = trench(Size(n), r.p(), view_of(dense));
    if (!outcome) return fail_with(outcome, kTrench);
    if (symmetric == nullptr) return true;
    if (!size_packed(symmetric, n, n)) return this->fail(kCannotSize, kTrench);
    pack_lower(reading(view_of(dense)), symmetric->p());
    return true;
}

template <class Real>
std::ostream& operator<<(std::ostream& out, const MatrixToeplitzSymmetric<Real>& matrix) {
    return print_matrix(out, matrix.mh(), matrix.mw(),
                        [&matrix](int y, int x) { return matrix.ge_Get_Element(x, y); });
}

#define NEQUAR_INSTANTIATE(Real)                                \
    template class MatrixToeplitzSymmetric<Real>;               \
    template NEQUAR_API std::ostream& operator<<(std::ostream&, \
                                                 const MatrixToeplitzSymmetric<Real>&);
NEQUAR_INSTANTIATE(double)
NEQUAR_INSTANTIATE(float)
#undef NEQUAR_INSTANTIATE

}  // namespace nequar
