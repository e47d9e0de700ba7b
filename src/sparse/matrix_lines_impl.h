// SparseMatrix: columns, rows and blocks, read and written. Included by sparse_matrix.cpp alone.
#pragma once

#include <algorithm>

#include "core/workspace.h"
#include "nequar_algebra/sparse/sparse_matrix.h"
#include "sparse/algorithm/block.h"
#include "sparse/inside.h"

namespace nequar {

template <class Real>
bool SparseMatrix<Real>::gc(int x, int y, int dy, SparseVector<Real>* out) const {
    constexpr const char* kName = "gc_Get_Column";
    constexpr Size kSpare = 4;
    const CNqClass::CallScope scope(this);
    out->zet_s(this->get_Get_Error_Trace_mode());
    if (!this->ivrc(x, y, dy)) return this->fail("bad index range", kName);
    const Columns<Real> columns = SparseInside<Real>::columns(*this);
    const Range column = SparseInside<Real>::column_range(*this, x);
    const Range part = part_between(columns.rows, column, y, Size(y) + dy);
    if (column.length() > kLargestIntCount - kSpare ||
        !out->czv(dy, static_cast<int>(column.length() + kSpare))) {
        this->adopt_failure_of(*out);
        return this->fail("czv", kName);
    }
    if (column.length() == 0) return true;
    if (!out->z_cne(static_cast<int>(part.length()))) {
        this->adopt_failure_of(*out);
        return this->fail("z_cne", kName);
    }
    int* const indices = elements_of(SparseInside<Real>::indices(*out));
    std::copy(columns.values + part.begin, columns.values + part.end,
              elements_of(SparseInside<Real>::values(*out)));
    for (Size k = 0; k < part.length(); ++k) indices[k] = columns.rows[part.begin + k] - y;
    return true;
}

template <class Real>
bool SparseMatrix<Real>::gr(int x, int y, int dx, SparseVector<Real>* out) const {
    constexpr const char* kName = "gr_Get_Row";
    const CNqClass::CallScope scope(this);
    out->zet_s(this->get_Get_Error_Trace_mode());
    if (!this->ivrr(x, y, dx)) return this->fail("bad index range", kName);
    const Columns<Real> columns = SparseInside<Real>::columns(*this);
    if (!out->czv(dx, 0)) {
        this->adopt_failure_of(*out);
        return this->fail("czv", kName);
    }
    GrowableVector<Real>& values = SparseInside<Real>::values(*out);
    GrowableVector<int>& indices = SparseInside<Real>::indices(*out);
    for (int c = 0; c < dx; ++c) {
        const Range k = columns.range(x + c);
        const Size at = first_not_below(columns.rows, k.begin, k.end, y);
        if (at == k.end || columns.rows[at] != y) continue;
        if (insert(values, indices, values.nee(), columns.values[at], c) != Stored::done)
            return this->fail("z_cne", kName);
    }
    return true;
}

template <class Real>
bool SparseMatrix<Real>::gb(int x, int y, int dx, int dy, SparseMatrix* out) const {
    constexpr const char* kName = "gb_Get_Block";
    constexpr int kSpare = 4;
    const CNqClass::CallScope scope(this);
    if (out == this) {
        SparseMatrix block;
        block.zet_s(this->get_Get_Error_Trace_mode());
        const bool done = gb(x, y, dx, dy, &block);
        if (done) out->take_columns(block);
        return done;
    }
    out->zet_s(this->get_Get_Error_Trace_mode());
    if (!this->ivrb(x, y, dx, dy)) return this->fail("bad index range", kName);
    const Columns<Real> columns = SparseInside<Real>::columns(*this);
    Workspace<Range> parts(dx);
    if (!parts) return this->fail("czm", kName);
    const Size stored = find_block(columns, x, y, Size(dx), Size(y) + dy, parts.data());
    if (stored > kLargestIntCount - kSpare ||
        !out->czm(dy, dx, static_cast<int>(stored) + kSpare)) {
        this->adopt_failure_of(*out);
        return this->fail("czm", kName);
    }
    if (!out->z_cne(static_cast<int>(stored) + 1)) {
        this->adopt_failure_of(*out);
        return this->fail("11", kName);
    }
    int* const start = SparseInside<Real>::start(*out);
    const Size count = copy_block(columns, parts.data(), Size(dx), y, start,
                                  elements_of(SparseInside<Real>::rows(*out)),
                                  elements_of(SparseInside<Real>::values(*out)));
    if (!out->z_cne(static_cast<int>(count))) {
        this->adopt_failure_of(*out);
        return this->fail("11", kName);
    }
    return start[dx] == count || this->fail("s1[in_dx1]!=k1", kName);
}

template <class Real>
bool SparseMatrix<Real>::sc(int x, int y, const SparseVector<Real>* v) {
    constexpr const char* kName = "sc_Set_Column";
    const CNqClass::CallScope scope(this);
    this->zet_xm();
    if (!this->ivrc(x, y, v->dim())) return this->fail("bad index range", kName);
    SparseInside<Real>::put_in_order(*this);
    const Columns<Real> columns = SparseInside<Real>::columns(*this);
    const Run<Real> run = SparseInside<Real>::run(*v);
    const Range part = part_between(columns.rows, columns.range(x), y, Size(y) + v->dim());
    const Stored outcome =
        replace(SparseInside<Real>::values(*this), SparseInside<Real>::rows(*this), part.begin,
                part.length(), run.values, run.indices, run.count, y);
    if (outcome != Stored::done)
        return this->fail(outcome == Stored::values_refused ? "r_Replace 1" : "r_Replace 2", kName);
    const int change = static_cast<int>(run.count - part.length());
    int* const start = SparseInside<Real>::start(*this);
    for (Size c = Size(x) + 1; c <= columns.width; ++c) start[c] += change;
    return true;
}

template <class Real>
bool SparseMatrix<Real>::sr(int x, int y, const SparseVector<Real>* v) {
    constexpr const char* kName = "sr_Set_Row";
    const CNqClass::CallScope scope(this);
    this->zet_xm();
    if (!this->ivrr(x, y, v->dim())) return this->fail("bad index range", kName);
    const Run<Real> run = SparseInside<Real>::run(*v);
    RunCursor<Real> cursor(run);
    const int row = 0;  // of the run of one element that is written into a column
    const auto element_of_column = [&](Size c) -> Run<Real> {
        const Size k = cursor.find(c - x);
        return k < 0 ? Run<Real>{} : Run<Real>{&row, run.values + k, 1};
    };
    const Stored outcome = SparseInside<Real>::merge(
        *this, WriteRule<Real>{}, x, Size(x) + v->dim(),
        [y](const int* rows, Range column) { return part_between(rows, column, y, Size(y) + 1); },
        element_of_column, y);
    return outcome == Stored::done || this->fail(insertion_code(outcome), kName);
}

template <class Real>
bool SparseMatrix<Real>::sb(int x, int y, const SparseMatrix* b) {
    constexpr const char* kName = "sb_Set_Block";
    const CNqClass::CallScope scope(this);
    this->zet_xm();
    const int height = b->mh();
    if (!this->ivrb(x, y, b->mw(), height)) return this->fail("bad index range", kName);
    if (b == this) return true;
    const Columns<Real> source = SparseInside<Real>::columns(*b);
    const Stored outcome = SparseInside<Real>::merge(
        *this, WriteRule<Real>{}, x, Size(x) + source.width,
        [y, height](const int* rows, Range column) {
            return part_between(rows, column, y, Size(y) + height);
        },
        [x, &source](Size c) { return source.column(c - x); }, y);
    return outcome == Stored::done || this->fail(insertion_code(outcome), kName);
}

}  // namespace nequar
