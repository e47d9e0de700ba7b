// SparseSymmetricMatrix: self-tests. Random symmetric matrices with full dense twins; each
// operation is carried out on both, and the exported result has to equal the dense one exactly.
// Included by sparse_symmetric_matrix.cpp alone.
#pragma once

#include "frame/views.h"
#include "nequar_algebra/sparse/sparse_symmetric_matrix.h"
#include "sparse/algorithm/symmetric.h"
#include "sparse/random_elements.h"
#include "sparse/self_test.h"
#include "sparse/self_test_dense.h"

namespace nequar {

template <class Real>
bool SparseSymmetricMatrix<Real>::u_mrsm_Make_a_Random_Sparse_Matrix(int n, int number_of_non_zeros,
                                                                     double min, double max,
                                                                     SparseSymmetricMatrix* s,
                                                                     Matrix<Real>* a) const {
    constexpr const char* kName = "u_mrsm_Make_a_Random_Sparse_Matrix";
    const CNqClass::CallScope scope(this);
    const auto low = static_cast<Real>(min);
    const auto high = static_cast<Real>(max);
    if (n < 1 || number_of_non_zeros < 0) return this->fail("1", kName);
    if (!(low <= high) || std::isinf(low) || std::isinf(high)) return this->fail("2", kName);
    Matrix<Real> own_dense;
    SparseSymmetricMatrix own_sparse;
    if (a == nullptr) a = &own_dense;
    if (s == nullptr) s = &own_sparse;
    if (a->c_Create(n, n) == nullptr) {
        this->adopt_failure_of(*a);
        return this->fail("3", kName);
    }
    draw_elements(Strided<Real>(a->p()[0], element_count(a)), number_of_non_zeros, low, high);
    const View<Real> dense = view_of(a);
    for (Size r = 0; r < n; ++r)
        for (Size c = 0; c < r; ++c)
            if (dense(r, c) == Real(0)) dense(r, c) = dense(c, r);
    if (s->im(a, true, a)) return true;
    this->adopt_failure_of(*s);
    return this->fail("4", kName);
}

namespace {

template <class Real>
using SymmetricPair = TwinPair<SparseSymmetricMatrix<Real>, Matrix<Real>>;

template <class Real>
void set_both(Matrix<Real>& a, int x, int y, Real v) {
    a[y][x] = a[x][y] = v;
}

template <class Real, class Check>
const char* first_code(const SparseSymmetricMatrix<Real>& maker, const SelfTestInput& input,
                       const Check& check) {
    SymmetricPair<Real> pair;
    maker.zet_x(&pair.s);
    maker.zet_x(&pair.other);
    const auto draw = [&](int number, SparseSymmetricMatrix<Real>* s, Matrix<Real>* a) {
        return maker.u_mrsm_Make_a_Random_Sparse_Matrix(input.d1, number, input.min, input.max, s,
                                                        a);
    };
    return first_code(input, pair, draw, check);
}

// ---- elements --------------------------------------------------------------

template <class Real>
const char* code_of_elements(SymmetricPair<Real>& pair, int repetition) {
    SparseSymmetricMatrix<Real>& s = pair.s;
    Matrix<Real>& a = pair.a;
    const int n = a.mh();
    Real value = 0;
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x)
            if (!s.ge(x, y, &value) || value != a[y][x]) return "8";
    if (s.ge(n, 0, &value) || value != Real(0)) return "9";
    if (s.se(0, -1, Real(1)) || s.ace(-1, 0, Real(1)) || !holds(s, a)) return "10";

    // Every other element takes the value of the other matrix, 0.0 included; each pair is named
    // from either side in turn.
    for (int y = 0; y < n; ++y)
        for (int x = (y + repetition) % 2; x <= y; x += 2) {
            const Real v = pair.b[y][x];
            set_both(a, x, y, v);
            if (!(x % 3 == 0 ? s.ace(y, x, v) : x % 3 == 1 ? s.se(y, x, v) : s.se(x, y, v)))
                return "11";
        }
    if (!holds(s, a)) return "12";
    Size zeros = 0;
    Size zeros_of_half = 0;
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x) {
            zeros += a[y][x] == Real(0);
            zeros_of_half += x <= y && a[y][x] == Real(0);
        }
    if (!s.rze() || s.nee() != Size(n) * (Size(n) + 1) / 2 - zeros_of_half || !holds(s, a))
        return "13";
    int x = -1;
    int y = -1;
    if (s.itze() != (zeros > 0) || s.fize(x, y) != (zeros > 0) || (zeros > 0 && a[y][x] != Real(0)))
        return "14";
    return nullptr;
}

// ---- columns, rows, blocks ----------------------------------------------------------------------

// Each part of each line is read from the first matrix and written, element by element, into the
// second.
template <class Real>
const char* code_of_lines(SymmetricPair<Real>& pair, bool rows) {
    const int n = pair.a.mh();
    SparseVector<Real> part;
    for (int line = 0; line < n; ++line)
        for (int first = 0; first < n; ++first)
            for (int length = n - first; length > 0; --length) {
                if (!(rows ? pair.s.gr(first, line, length, &part)
                           : pair.s.gc(line, first, length, &part)))
                    return "8";
                const Matrix<Real> expected = rows ? dense_part(pair.a, first, line, length, 1)
                                                   : dense_part(pair.a, line, first, 1, length);
                for (int k = 0; k < length; ++k) {
                    Real v = 0;
                    set_both(pair.b, line, first + k, expected.p()[0][k]);
                    if (!part.ge(k, &v) || !pair.other.se(line, first + k, v)) return "9";
                }
                if (!(dense_line(part, rows) == expected)) return "10";
                if (!holds(pair.other, pair.b)) return "11";
            }
    return nullptr;
}

template <class Real>
const char* code_of_blocks(SymmetricPair<Real>& pair) {
    const int n = pair.a.mh();
    SparseMatrix<Real> block;
    SparseSymmetricMatrix<Real> taken;
    pair.s.zet_x(&block);
    pair.s.zet_x(&taken);
    for (int x = 0; x < n; ++x)
        for (int y = 0; y < n; ++y)
            for (int dx = n - x; dx > 0; --dx)
                for (int dy = n - y; dy > 0; --dy) {
                    if (!pair.s.gb(x, y, dx, dy, &block)) return "8";
                    const Matrix<Real> part = dense_part(pair.a, x, y, dx, dy);
                    if (!holds(block, part)) return "10";
                    if (x != y || dx != dy) continue;  // only blocks on the diagonal are symmetric
                    for (const bool lower : {true, false}) {
                        if (!taken.im(&block, lower)) return "9";
                        if (!holds(taken, part)) return "11";
                    }
                }
    return nullptr;
}

// ---- two matrices -------------------------------------------------------------------------------

template <class Real>
const char* code_of_update(const SymmetricPair<Real>& pair) {
    const int n = pair.a.mh();
    SparseVector<Real> v;
    SparseSymmetricMatrix<Real> updated = pair.s;
    Matrix<Real> dense = pair.a;
    if (!pair.other.gc(0, 0, n, &v)) return "13";
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x)
            if (pair.b[y][0] != Real(0) && pair.b[x][0] != Real(0))
                dense[y][x] += pair.b[y][0] * pair.b[x][0];
    return updated.mvva(&v) && holds(updated, dense) ? nullptr : "14";
}

// A dense matrix of which the halves come from two symmetric ones, imported from either half by
// each road.
template <class Real>
const char* code_of_conversions(const SymmetricPair<Real>& pair) {
    const int n = pair.a.mh();
    Matrix<Real> mixed = pair.a;
    for (int y = 0; y < n; ++y)
        for (int x = y; x < n; ++x) mixed[y][x] = pair.b[y][x];
    SparseMatrix<Real> general;
    if (!general.im(&mixed)) return "16";
    for (const bool lower : {true, false}) {
        Matrix<Real> full = lower ? pair.a : pair.b;
        for (int i = 0; i < n; ++i) full[i][i] = pair.b[i][i];
        SparseSymmetricMatrix<Real> taken;
        Matrix<Real> symmetric;
        Matrix<Real> in_place = mixed;
        if (!taken.im(&mixed, lower) || !holds(taken, full)) return "17";
        if (!taken.im(&mixed, lower, &symmetric) || !holds(taken, full) || symmetric != full)
            return "18";
        if (!taken.im(&in_place, lower, &in_place) || !holds(taken, full) || in_place != full)
            return "19";
        if (!taken.im(&general, lower, &symmetric) || !holds(taken, full) || symmetric != full)
            return "20";
        MatrixSymmetric<Real> packed;
        packed.il_Import_Lower_part_of(&full);
        if (!taken.im(&packed, &symmetric) || !holds(taken, full) || symmetric != full) return "21";
        SparseMatrix<Real> exported;
        if (!taken.ex(&exported, &symmetric) || !holds(exported, full) || symmetric != full)
            return "22";
    }
    return nullptr;
}

}  // namespace

template <class Real>
bool SparseSymmetricMatrix<Real>::u_toe_Test_Operations_Elementary(int n, double density,
                                                                   double min, double max,
                                                                   double constant,
                                                                   int repetitions) {
    constexpr const char* kName = "u_toe_Test_Operations_Elementary";
    const CNqClass::CallScope scope(this);
    const SelfTestInput input = {n, n, density, min, max, repetitions};
    const auto c = static_cast<Real>(constant);
    const char* const bad = code_of_bad_parameter(input, c);
    if (bad != nullptr) return this->fail(bad, kName);
    const char* const failed =
        first_code(*this, input, [c](SymmetricPair<Real>& pair, int repetition) {
            const char* code = code_of_elements(pair, repetition);
            if (code == nullptr) code = code_of_statistics(pair.s, pair.a);
            if (code == nullptr) code = code_of_scalars(pair.s, pair.a, c);
            return code != nullptr ? code : code_of_comparison(pair);
        });
    return failed == nullptr || this->fail(failed, kName);
}

template <class Real>
bool SparseSymmetricMatrix<Real>::u_toc_Test_Operations_for_Columns(int n, double density,
                                                                    double min, double max,
                                                                    int repetitions) {
    const CNqClass::CallScope scope(this);
    const char* const failed =
        first_code(*this, {n, n, density, min, max, repetitions},
                   [](SymmetricPair<Real>& pair, int) { return code_of_lines(pair, false); });
    return failed == nullptr || this->fail(failed, "u_toc_Test_Operations_for_Columns");
}

template <class Real>
bool SparseSymmetricMatrix<Real>::u_tor_Test_Operations_for_Rows(int n, double density, double min,
                                                                 double max, int repetitions) {
    const CNqClass::CallScope scope(this);
    const char* const failed =
        first_code(*this, {n, n, density, min, max, repetitions},
                   [](SymmetricPair<Real>& pair, int) { return code_of_lines(pair, true); });
    return failed == nullptr || this->fail(failed, "u_tor_Test_Operations_for_Rows");
}

template <class Real>
bool SparseSymmetricMatrix<Real>::u_tob_Test_Operations_for_Blocks(int n, double density,
                                                                   double min, double max,
                                                                   int repetitions) {
    const CNqClass::CallScope scope(this);
    const char* const failed =
        first_code(*this, {n, n, density, min, max, repetitions},
                   [](SymmetricPair<Real>& pair, int) { return code_of_blocks(pair); });
    return failed == nullptr || this->fail(failed, "u_tob_Test_Operations_for_Blocks");
}

template <class Real>
bool SparseSymmetricMatrix<Real>::u_tom_Test_Operations_with_Matrices(int n, double density,
                                                                      double min, double max,
                                                                      int repetitions) {
    const CNqClass::CallScope scope(this);
    const char* const failed = first_code(
        *this, {n, n, density, min, max, repetitions}, [](SymmetricPair<Real>& pair, int) {
            const char* code = code_of_matrix_sums(pair);
            if (code == nullptr) code = code_of_update(pair);
            if (code == nullptr) code = code_of_distance(pair);
            return code != nullptr ? code : code_of_conversions(pair);
        });
    return failed == nullptr || this->fail(failed, "u_tom_Test_Operations_with_Matrices");
}

template <class Real>
bool SparseSymmetricMatrix<Real>::u_tot_Test_Operations_Total(
    int n, double density, double min, double max, double constant, int repetitions_elementary,
    int repetitions_columns, int repetitions_rows, int repetitions_blocks,
    int repetitions_matrices) {
    constexpr const char* kName = "u_tot_Test_Operations_Total";
    const CNqClass::CallScope scope(this);
    if (!u_toe_Test_Operations_Elementary(n, density, min, max, constant, repetitions_elementary))
        return this->fail("u_toe_Test_Operations_Elementary", kName);
    if (!u_toc_Test_Operations_for_Columns(n, density, min, max, repetitions_columns))
        return this->fail("u_toc_Test_Operations_for_Columns", kName);
    if (!u_tor_Test_Operations_for_Rows(n, density, min, max, repetitions_rows))
        return this->fail("u_tor_Test_Operations_for_Rows", kName);
    if (!u_tob_Test_Operations_for_Blocks(n, density, min, max, repetitions_blocks))
        return this->fail("u_tob_Test_Operations_for_Blocks", kName);
    if (!u_tom_Test_Operations_with_Matrices(n, density, min, max, repetitions_matrices))
        return this->fail("u_tom_Test_Operations_with_Matrices", kName);
    return true;
}

}  // namespace nequar
