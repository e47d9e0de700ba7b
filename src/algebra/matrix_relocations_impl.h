// AlgebraForMatrix: relocations of columns and rows by a permutation. Included by
// matrix_algebra.cpp alone.
#pragma once

#include "algebra/algorithm/permutations.h"
#include "algebra/details.h"
#include "algebra/temporary.h"
#include "core/workspace.h"
#include "frame/views.h"
#include "nequar_algebra/algebra/matrix_algebra.h"

namespace nequar {

// The check of a relocation of `lines` lines, and the scratch that it leaves for the move.
template <class Real>
class Relocation {
public:
    Relocation(const CNqVectorInt* r, int lines, Size row_size)
        : flags_(lines), row_(row_size), fault_(check(r, lines)) {}

    // The detail of the failure, null when there is none.
    const char* fault() const { return fault_; }
    bool* flags() const { return flags_.data(); }
    Real* row() const { return row_.data(); }

private:
    const char* check(const CNqVectorInt* r, int lines) const {
        if (r->vs() != lines) return "1";
        if (!flags_ || !row_) return kOutOfMemory;
        switch (check_relocation(lines, r->p(), flags_.data())) {
            case RelocationFault::out_of_range:
                return "2";
            case RelocationFault::repeated:
                return "3";
            case RelocationFault::none:
                break;
        }
        return nullptr;
    }

    Workspace<bool> flags_;
    Workspace<Real> row_;
    const char* fault_;
};

// ---- columns ----

template <class Real>
void AlgebraForMatrix<Real>::orc_Relocate_Columns(const MatrixReal* A, const CNqVectorInt* r,
                                                  MatrixReal* out) const {
    constexpr const char* kName = "orc_Relocate_Columns";
    if (out == A) return orc_Relocate_Columns(out, r);
    if (!size_as(A, out)) return this->report_sizing(*out, kName);
    const Relocation<Real> relocation(r, A->mw(), 0);
    if (relocation.fault() != nullptr) return this->report(relocation.fault(), kName);
    relocate_columns(view_of(A), r->p(), view_of(out));
}

template <class Real>
void AlgebraForMatrix<Real>::orc_Relocate_Columns(MatrixReal* A, const CNqVectorInt* r) const {
    const Relocation<Real> relocation(r, A->mw(), A->mw());
    if (relocation.fault() != nullptr)
        return this->report(relocation.fault(), "orc_Relocate_Columns");
    relocate_columns_in_place(view_of(A), r->p(), relocation.row());
}

template <class Real>
bool AlgebraForMatrix<Real>::orci_Relocate_Columns_Inverse(MatrixReal* A,
                                                           const CNqVectorInt* r) const {
    const Relocation<Real> relocation(r, A->mw(), A->mw());
    if (relocation.fault() != nullptr)
        return this->fail(relocation.fault(), "orci_Relocate_Columns_Inverse");
    relocate_columns_back(view_of(A), r->p(), relocation.row());
    return true;
}

// ---- rows ----

template <class Real>
void AlgebraForMatrix<Real>::orr_Relocate_Rows(const MatrixReal* A, const CNqVectorInt* r,
                                               MatrixReal* out) const {
    constexpr const char* kName = "orr_Relocate_Rows";
    if (out == A) return orr_Relocate_Rows(out, r);
    if (!size_as(A, out)) return this->report_sizing(*out, kName);
    const Relocation<Real> relocation(r, A->mh(), 0);
    if (relocation.fault() != nullptr) return this->report(relocation.fault(), kName);
    relocate_rows(view_of(A), r->p(), view_of(out));
}

template <class Real>
void AlgebraForMatrix<Real>::orr_Relocate_Rows(MatrixReal* A, const CNqVectorInt* r) const {
    const Relocation<Real> relocation(r, A->mh(), A->mw());
    if (relocation.fault() != nullptr) return this->report(relocation.fault(), "orr_Relocate_Rows");
    relocate_rows_in_place(view_of(A), r->p(), relocation.row(), relocation.flags());
}

template <class Real>
void AlgebraForMatrix<Real>::orri_Relocate_Rows_Inverse(MatrixReal* A,
                                                        const CNqVectorInt* r) const {
    const Relocation<Real> relocation(r, A->mh(), A->mw());
    if (relocation.fault() != nullptr)
        return this->report(relocation.fault(), "orri_Relocate_Rows_Inverse");
    relocate_rows_back(view_of(A), r->p(), relocation.row(), relocation.flags());
}

}  // namespace nequar
