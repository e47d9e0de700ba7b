// SparseMatrix: transposition, arithmetic, statistics. Included by sparse_matrix.cpp alone.
#pragma once

#include "core/workspace.h"
#include "kernel/kernel.h"
#include "nequar_algebra/sparse/sparse_matrix.h"
#include "sparse/algorithm/compare.h"
#include "sparse/algorithm/reduce.h"
#include "sparse/algorithm/transpose.h"
#include "sparse/inside.h"

namespace nequar {

template <class Real>
bool SparseMatrix<Real>::t(SparseMatrix* out) const {
    constexpr const char* kName = "t_Transpose";
    constexpr int kSpare = 4;
    const CNqClass::CallScope scope(this);
    if (out == this) {
        SparseMatrix transposed;
        transposed.zet_s(this->get_Get_Error_Trace_mode());
        const bool done = t(&transposed);
        if (done) out->take_columns(transposed);
        return done;
    }
    out->zet_s(this->get_Get_Error_Trace_mode());
    const Columns<Real> columns = SparseInside<Real>::columns(*this);
    const Size count = stored_in_columns(columns);
    if (count > kLargestIntCount - kSpare ||
        !out->czm(this->mw(), this->mh(), static_cast<int>(count) + kSpare)) {
        this->adopt_failure_of(*out);
        return this->fail("czm", kName);
    }
    if (!are_within(columns.rows, count, columns.height) || !out->z_cne(static_cast<int>(count))) {
        this->adopt_failure_of(*out);
        return this->fail("z_cne", kName);
    }
    // Without the scratch it takes longer, and no more.
    const Size moved = travellers<Real>(count, columns.height);
    Workspace<Traveller<Real>> scratch(moved);
    transpose(columns, moved > 0 ? scratch.data() : nullptr, SparseInside<Real>::start(*out),
              elements_of(SparseInside<Real>::rows(*out)),
              elements_of(SparseInside<Real>::values(*out)));
    return true;
}

template <class Real>
bool SparseMatrix<Real>::amm(const SparseMatrix* b) {
    return this->add(*b, Real(1), "amm_Add_Matrix_Matrix");
}

template <class Real>
bool SparseMatrix<Real>::ammw(const SparseMatrix* b, Real w) {
    return this->add(*b, w, "ammw_Add_Matrix_Matrix_with_Weight");
}

// a - a is computed element by element like any other difference, so b may be this object.
template <class Real>
bool SparseMatrix<Real>::smm(const SparseMatrix* b) {
    return this->add(*b, Real(-1), "smm_Subtract_Matrix_Matrix");
}

template <class Real>
bool SparseMatrix<Real>::mvva(const SparseVector<Real>* u, const SparseVector<Real>* v) {
    constexpr const char* kName = "mvva_Multiply_Vector_Vector_and_Accumulate";
    const CNqClass::CallScope scope(this);
    this->zet_xm();
    if (u->dim() != this->mh()) return this->fail("dim1!=hh", kName);
    if (v->dim() != this->mw()) return this->fail("dim2!=ww", kName);
    const Run<Real> left = SparseInside<Real>::run(*u);
    const Run<Real> right = SparseInside<Real>::run(*v);
    RunCursor<Real> cursor(right);
    AddRule<Real> rule{Real(0)};
    const Stored outcome = SparseInside<Real>::merge(
        *this, rule, 0, this->mw(), whole_column,
        [&](Size c) {
            const Size k = cursor.find(c);
            rule.factor = k < 0 ? Real(0) : right.values[k];
            return rule.factor == Real(0) ? Run<Real>{} : left;
        },
        0);
    return outcome == Stored::done || this->fail(insertion_code(outcome), kName);
}

template <class Real>
bool SparseMatrix<Real>::mmme(const SparseMatrix* b) {
    return this->multiply_elementwise(*b, "mmme_Multiply_Matrix_Matrix_Elementwise");
}

template <class Real>
SparseMatrix<Real> SparseMatrix<Real>::operator*(Real c) const {
    SparseMatrix out;
    this->multiply_into(c, out);
    return out;
}

template <class Real>
SparseMatrix<Real> SparseMatrix<Real>::operator/(Real c) const {
    SparseMatrix out;
    this->divide_into(c, out);
    return out;
}

template <class Real>
bool SparseMatrix<Real>::operator==(const SparseMatrix& b) const {
    return this->has_equal_elements(b);
}

// ---- statistics ---------------------------------------------------------------------------------

template <class Real>
Size element_count_of(const SparseMatrix<Real>& a) {
    return Size(a.mw()) * a.mh();
}

template <class Real>
Real SparseMatrix<Real>::mse(const SparseMatrix* b) const {
    if (b->mh() != this->mh() || b->mw() != this->mw()) {
        this->report("different width or height", "mse_Mean_Squared_Error");
        return Real(0);
    }
    return mean_squared_difference(SparseInside<Real>::columns(*this),
                                   SparseInside<Real>::columns(*b));
}

template <class Real>
Real SparseMatrix<Real>::m() const {
    const Columns<Real> columns = SparseInside<Real>::columns(*this);
    return mean(columns.values, columns.count, element_count_of(*this));
}

template <class Real>
Real SparseMatrix<Real>::mst(Real& stdev) const {
    const Columns<Real> columns = SparseInside<Real>::columns(*this);
    const Real average = m();
    stdev = deviation(columns.values, columns.count, element_count_of(*this), average);
    return average;
}

template <class Real>
Real SparseMatrix<Real>::nf() const {
    const Columns<Real> columns = SparseInside<Real>::columns(*this);
    return kernel::norm2<Real>({columns.values, columns.count});
}

template <class Real>
Real SparseMatrix<Real>::extremum(bool largest, int* x, int* y, const char* method) const {
    const auto give = [x, y](int column, int row) {
        if (x != nullptr) *x = column;
        if (y != nullptr) *y = row;
    };
    const Columns<Real> columns = SparseInside<Real>::columns(*this);
    if (columns.count == 0) {
        give(0, 0);
        return Real(0);
    }
    const Size at = largest ? position_of_largest(columns.values, columns.count)
                            : position_of_smallest(columns.values, columns.count);
    const Real value = columns.values[at];
    if ((largest ? value < Real(0) : value > Real(0)) && itze()) {
        int column = 0;
        int row = 0;
        if (fize(column, row))
            give(column, row);
        else
            this->report("impossible", method);
        return Real(0);
    }
    if (x != nullptr || y != nullptr)
        give(static_cast<int>(column_of(columns, at)), columns.rows[at]);
    return value;
}

template <class Real>
Real SparseMatrix<Real>::max(int* x, int* y) const {
    return extremum(true, x, y, "max_Maximum");
}

template <class Real>
Real SparseMatrix<Real>::min(int* x, int* y) const {
    return extremum(false, x, y, "min_Minimum");
}

template <class Real>
Real SparseMatrix<Real>::maxmin(Real& minimum, int* xmax, int* ymax, int* xmin, int* ymin) const {
    constexpr const char* kName = "maxmin_Maximum_and_Minimum";
    const CNqClass::CallScope scope(this);
    minimum = extremum(false, xmin, ymin, kName);
    return extremum(true, xmax, ymax, kName);
}

}  // namespace nequar
