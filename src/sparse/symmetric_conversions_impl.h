// SparseSymmetricMatrix: from and to dense, packed and general sparse matrices; columns, rows and
// blocks. Included by sparse_symmetric_matrix.cpp alone.
#pragma once

#include <algorithm>

#include "core/workspace.h"
#include "frame/views.h"
#include "kernel/kernel.h"
#include "nequar_algebra/sparse/sparse_symmetric_matrix.h"
#include "sparse/algorithm/gather.h"
#include "sparse/algorithm/symmetric.h"
#include "sparse/inside.h"

namespace nequar {

enum class Gathered { done, no_scratch, not_created, not_counted };

// Makes `out` of the elements of a source, with four positions of blank space; create(expected)
// gives it its shape.
template <class Source, class Real, class Create>
Gathered gather(const Source& source, CompressedColumns<Real>& out, const Create& create) {
    constexpr Size kSpare = 4;
    const Size pointers = source.width() + 1;
    Workspace<int> start(pointers);
    if (!start) return Gathered::no_scratch;
    const Size count = count_elements(source, start.data());
    if (count > kLargestIntCount - kSpare || !create(static_cast<int>(count + kSpare)))
        return Gathered::not_created;
    if (!out.z_cne(static_cast<int>(count))) return Gathered::not_counted;
    put_elements(source, start.data(), elements_of(SparseInside<Real>::rows(out)),
                 elements_of(SparseInside<Real>::values(out)));
    std::copy(start.data(), start.data() + pointers, SparseInside<Real>::start(out));
    return Gathered::done;
}

// ---- import -------------------------------------------------------------------------------------

template <class Real>
bool SparseSymmetricMatrix<Real>::im(const Matrix<Real>* a, bool lower, Matrix<Real>* symmetric) {
    constexpr const char* kName = "im_Import";
    const CNqClass::CallScope scope(this);
    const int n = a->mh();
    if (a->mw() != n || n < 1) return this->fail("1", kName);
    if (symmetric != nullptr && symmetric != a && symmetric->c_Create(n, n) == nullptr) {
        this->adopt_failure_of(*symmetric);
        return this->fail("2", kName);
    }
    const DenseHalf<Real> source{view_of(a), lower ? Half::lower : Half::upper};
    switch (gather(source, *this, [&](int expected) { return czm(n, expected); })) {
        case Gathered::done:
            break;
        case Gathered::not_counted:
            return this->fail("3", kName);
        default:
            return this->fail("1", kName);
    }
    if (symmetric == nullptr) return true;
    const View<Real> full = view_of(symmetric);
    if (symmetric != a) kernel::copy(view_of(a), full);
    mirror_lower_triangle(lower ? full : full.transposed());
    return true;
}

template <class Real>
bool SparseSymmetricMatrix<Real>::im(const MatrixSymmetric<Real>* s, Matrix<Real>* symmetric) {
    const CNqClass::CallScope scope(this);
    Matrix<Real> scratch;
    Matrix<Real>* const dense = symmetric != nullptr ? symmetric : &scratch;
    s->e_Export(dense);
    if (dense->mh() != s->mh() || dense->mw() != s->mw()) {
        this->adopt_failure_of(*s);
        return this->fail("1", "im_Import");
    }
    return im(dense, true, nullptr) || this->fail("1", "im_Import");
}

template <class Real>
bool SparseSymmetricMatrix<Real>::im(const SparseMatrix<Real>* m, bool lower,
                                     Matrix<Real>* symmetric) {
    constexpr const char* kName = "im_Import";
    const CNqClass::CallScope scope(this);
    const int n = m->mh();
    if (m->mw() != n) return this->fail("4", kName);
    Workspace<int> scratch(n);
    if (!scratch) return this->fail("4", kName);
    if (symmetric != nullptr && symmetric->c_Create(n, n) == nullptr) {
        this->adopt_failure_of(*symmetric);
        return this->fail("4", kName);
    }
    const ColumnsHalf<Real> source{SparseInside<Real>::columns(*m),
                                   lower ? Half::lower : Half::upper};
    switch (gather(source, *this, [&](int expected) { return czm(n, expected); })) {
        case Gathered::done:
            break;
        case Gathered::not_counted:
            return this->fail("z_cne", kName);
        default:
            return this->fail("4", kName);
    }
    if (symmetric != nullptr)
        write_full_to_dense(SparseInside<Real>::columns(*this), scratch.data(), view_of(symmetric));
    return true;
}

// ---- export -------------------------------------------------------------------------------------

template <class Real>
bool SparseSymmetricMatrix<Real>::ex(SparseMatrix<Real>* m, Matrix<Real>* a) const {
    constexpr const char* kName = "ex_Export";
    const CNqClass::CallScope scope(this);
    const int n = this->mh();
    const Columns<Real> columns = SparseInside<Real>::columns(*this);
    Workspace<int> scratch(n);
    if (!scratch) return this->fail("2", kName);
    if (a != nullptr && a->c_Create(n, n) == nullptr) {
        this->adopt_failure_of(*a);
        return this->fail("1", kName);
    }
    if (m != nullptr) {
        m->zet_s(this->get_Get_Error_Trace_mode());
        const auto create = [&](int expected) { return m->czm(n, n, expected); };
        const Gathered outcome =
            is_gapless(columns) ? gather(FullMatrix<Real>{columns}, *m, create)
                                : gather(FullBlock<Real>{columns, 0, 0, n, n, true}, *m, create);
        if (outcome == Gathered::no_scratch) return this->fail("2", kName);
        if (outcome != Gathered::done) {
            this->adopt_failure_of(*m);
            return this->fail(outcome == Gathered::not_created ? "czm" : "z_cne", kName);
        }
    }
    if (a != nullptr) write_full_to_dense(columns, scratch.data(), view_of(a));
    return true;
}

// ---- columns, rows, blocks of the full matrix ---------------------------------------------------

template <class Real>
bool SparseSymmetricMatrix<Real>::gc(int x, int y, int dy, SparseVector<Real>* out) const {
    constexpr const char* kName = "gc_Get_Column";
    constexpr int kSpare = 4;
    const CNqClass::CallScope scope(this);
    out->zet_s(this->get_Get_Error_Trace_mode());
    if (!this->ivrc(x, y, dy)) return this->fail("bad index range", kName);
    const FullColumn<Real> part{SparseInside<Real>::columns(*this), x, y, dy};
    int start[2];
    const int count = static_cast<int>(count_elements(part, start));
    if (count > kLargestIntCount - kSpare || !out->czv(dy, count + kSpare)) {
        this->adopt_failure_of(*out);
        return this->fail("czv", kName);
    }
    if (!out->z_cne(count)) {
        this->adopt_failure_of(*out);
        return this->fail("z_cne", kName);
    }
    put_elements(part, start, elements_of(SparseInside<Real>::indices(*out)),
                 elements_of(SparseInside<Real>::values(*out)));
    return true;
}

template <class Real>
bool SparseSymmetricMatrix<Real>::gr(int x, int y, int dx, SparseVector<Real>* out) const {
    const CNqClass::CallScope scope(this);
    return gc(y, x, dx, out) || this->fail("1", "gr_Get_Row");
}

template <class Real>
bool SparseSymmetricMatrix<Real>::gb(int x, int y, int dx, int dy, SparseMatrix<Real>* out) const {
    constexpr const char* kName = "gb_Get_Block";
    const CNqClass::CallScope scope(this);
    out->zet_s(this->get_Get_Error_Trace_mode());
    if (!this->ivrb(x, y, dx, dy)) return this->fail("1", kName);
    const FullBlock<Real> block{SparseInside<Real>::columns(*this), x, y, dx, dy, false};
    if (gather(block, *out, [&](int expected) { return out->czm(dy, dx, expected); }) ==
        Gathered::done)
        return true;
    this->adopt_failure_of(*out);
    return this->fail("1", kName);
}

}  // namespace nequar
