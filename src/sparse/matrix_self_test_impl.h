// SparseMatrix: self-tests. Random sparse matrices with dense twins; each operation is carried out
// on both, and the exported result has to equal the dense one exactly, since all of them move
// elements or compute each by itself. Included by sparse_matrix.cpp alone.
#pragma once

#include "frame/views.h"
#include "nequar_algebra/sparse/sparse_matrix.h"
#include "sparse/random_elements.h"
#include "sparse/self_test.h"
#include "sparse/self_test_dense.h"

namespace nequar {

template <class Real>
bool SparseMatrix<Real>::u_mrsm_Make_a_Random_Sparse_Matrix(int d1, int d2, int number_of_non_zeros,
                                                            double min, double max, SparseMatrix* s,
                                                            Matrix<Real>* a) const {
    constexpr const char* kName = "u_mrsm_Make_a_Random_Sparse_Matrix";
    const CNqClass::CallScope scope(this);
    const auto low = static_cast<Real>(min);
    const auto high = static_cast<Real>(max);
    if (d1 < 1 || d2 < 1 || number_of_non_zeros < 0) return this->fail("1", kName);
    if (!(low <= high) || std::isinf(low) || std::isinf(high)) return this->fail("2", kName);
    Matrix<Real> own_dense;
    SparseMatrix own_sparse;
    if (a == nullptr) a = &own_dense;
    if (s == nullptr) s = &own_sparse;
    if (a->c_Create(d1, d2) == nullptr) {
        this->adopt_failure_of(*a);
        return this->fail("3", kName);
    }
    draw_elements(Strided<Real>(a->p()[0], element_count(a)), number_of_non_zeros, low, high);
    if (s->im(a)) return true;
    this->adopt_failure_of(*s);
    return this->fail("4", kName);
}

namespace {

template <class Real>
using MatrixPair = TwinPair<SparseMatrix<Real>, Matrix<Real>>;

template <class Real, class Check>
const char* first_code(const SparseMatrix<Real>& maker, const SelfTestInput& input,
                       MatrixPair<Real>& pair, const Check& check) {
    const auto draw = [&](int number, SparseMatrix<Real>* s, Matrix<Real>* a) {
        return maker.u_mrsm_Make_a_Random_Sparse_Matrix(input.d1, input.d2, number, input.min,
                                                        input.max, s, a);
    };
    return first_code(input, pair, draw, check);
}

template <class Real>
const char* code_of_elements(MatrixPair<Real>& pair, int repetition) {
    SparseMatrix<Real>& s = pair.s;
    Matrix<Real>& a = pair.a;
    const int d1 = a.mh();
    const int d2 = a.mw();
    Real value = 0;
    for (int y = 0; y < d1; ++y)
        for (int x = 0; x < d2; ++x)
            if (!s.ge(x, y, &value) || value != a[y][x]) return "8";
    if (s.ge(d2, 0, &value) || value != Real(0)) return "9";
    if (s.se(0, -1, Real(1)) || s.ace(-1, 0, Real(1)) || !holds(s, a)) return "10";

    // Every other element takes the value of the other matrix, 0.0 included.
    for (int y = 0; y < d1; ++y)
        for (int x = (y + repetition) % 2; x < d2; x += 2) {
            const Real v = pair.b[y][x];
            a[y][x] = v;
            if (!(x % 3 == 0 ? s.ace(x, y, v) : s.se(x, y, v))) return "11";
        }
    if (!holds(s, a)) return "12";
    const Size zeros = std::count(a.p()[0], a.p()[0] + element_count(&a), Real(0));
    if (!s.rze() || s.nee() != element_count(&a) - zeros || !holds(s, a)) return "13";
    int x = -1;
    int y = -1;
    if (s.itze() != (zeros > 0) || s.fize(x, y) != (zeros > 0) || (zeros > 0 && a[y][x] != Real(0)))
        return "14";
    return nullptr;
}

// Each part of each line is taken from the first matrix into the second.
template <class Real>
const char* code_of_lines(MatrixPair<Real>& pair, bool rows) {
    const int lines = rows ? pair.a.mh() : pair.a.mw();
    const int size = rows ? pair.a.mw() : pair.a.mh();
    SparseVector<Real> part;
    for (int line = 0; line < lines; ++line)
        for (int first = 0; first < size; ++first)
            for (int length = size - first; length > 0; --length) {
                const int x = rows ? first : line;
                const int y = rows ? line : first;
                if (!(rows ? pair.s.gr(x, y, length, &part) : pair.s.gc(x, y, length, &part)))
                    return "8";
                if (!(rows ? pair.other.sr(x, y, &part) : pair.other.sc(x, y, &part))) return "9";
                const Matrix<Real> expected =
                    dense_part(pair.a, x, y, rows ? length : 1, rows ? 1 : length);
                set_part(pair.b, x, y, expected);
                if (!(dense_line(part, rows) == expected)) return "10";
                if (!holds(pair.other, pair.b)) return "11";
            }
    return nullptr;
}

template <class Real>
const char* code_of_blocks(MatrixPair<Real>& pair, SparseMatrix<Real>& block) {
    const int d1 = pair.a.mh();
    const int d2 = pair.a.mw();
    for (int x = 0; x < d2; ++x)
        for (int y = 0; y < d1; ++y)
            for (int dx = d2 - x; dx > 0; --dx)
                for (int dy = d1 - y; dy > 0; --dy) {
                    if (!pair.s.gb(x, y, dx, dy, &block)) return "8";
                    if (!pair.other.sb(x, y, &block)) return "9";
                    const Matrix<Real> expected = dense_part(pair.a, x, y, dx, dy);
                    set_part(pair.b, x, y, expected);
                    if (!holds(block, expected)) return "10";
                    if (!holds(pair.other, pair.b)) return "11";
                }
    return nullptr;
}

template <class Real>
const char* code_of_transposition(const MatrixPair<Real>& pair) {
    Matrix<Real> turned;
    if (turned.c_Create(pair.a.mw(), pair.a.mh()) == nullptr) return "12";
    kernel::transpose<Real>(view_of(&pair.a), view_of(&turned));
    SparseMatrix<Real> transposed;
    SparseMatrix<Real> in_place = pair.s;
    return pair.s.t(&transposed) && holds(transposed, turned) && in_place.t(&in_place) &&
                   holds(in_place, turned)
               ? nullptr
               : "12";
}

// A column of the one times a row of the other, added.
template <class Real>
const char* code_of_update(const MatrixPair<Real>& pair) {
    const int d1 = pair.a.mh();
    const int d2 = pair.a.mw();
    SparseVector<Real> left, right;
    if (!pair.s.gc(0, 0, d1, &left) || !pair.other.gr(0, 0, d2, &right)) return "13";
    Matrix<Real> dense = pair.a;
    for (int y = 0; y < d1; ++y)
        for (int x = 0; x < d2; ++x)
            if (pair.a[y][0] != Real(0) && pair.b[0][x] != Real(0))
                dense[y][x] += pair.b[0][x] * pair.a[y][0];
    SparseMatrix<Real> updated = pair.s;
    return updated.mvva(&left, &right) && holds(updated, dense) ? nullptr : "14";
}

}  // namespace

template <class Real>
bool SparseMatrix<Real>::u_toe_Test_Operations_Elementary(int d1, int d2, double density,
                                                          double min, double max, double constant,
                                                          int repetitions) {
    constexpr const char* kName = "u_toe_Test_Operations_Elementary";
    const CNqClass::CallScope scope(this);
    const SelfTestInput input = {d1, d2, density, min, max, repetitions};
    const auto c = static_cast<Real>(constant);
    const char* const bad = code_of_bad_parameter(input, c);
    if (bad != nullptr) return this->fail(bad, kName);
    MatrixPair<Real> pair;
    const char* const failed =
        first_code(*this, input, pair, [c](MatrixPair<Real>& drawn, int repetition) {
            const char* code = code_of_elements(drawn, repetition);
            if (code == nullptr) code = code_of_statistics(drawn.s, drawn.a);
            if (code == nullptr) code = code_of_scalars(drawn.s, drawn.a, c);
            return code != nullptr ? code : code_of_comparison(drawn);
        });
    return failed == nullptr || this->fail(failed, kName);
}

template <class Real>
bool SparseMatrix<Real>::u_toc_Test_Operations_for_Columns(int d1, int d2, double density,
                                                           double min, double max,
                                                           int repetitions) {
    const CNqClass::CallScope scope(this);
    MatrixPair<Real> pair;
    const char* const failed =
        first_code(*this, {d1, d2, density, min, max, repetitions}, pair,
                   [](MatrixPair<Real>& drawn, int) { return code_of_lines(drawn, false); });
    return failed == nullptr || this->fail(failed, "u_toc_Test_Operations_for_Columns");
}

template <class Real>
bool SparseMatrix<Real>::u_tor_Test_Operations_for_Rows(int d1, int d2, double density, double min,
                                                        double max, int repetitions) {
    const CNqClass::CallScope scope(this);
    MatrixPair<Real> pair;
    const char* const failed =
        first_code(*this, {d1, d2, density, min, max, repetitions}, pair,
                   [](MatrixPair<Real>& drawn, int) { return code_of_lines(drawn, true); });
    return failed == nullptr || this->fail(failed, "u_tor_Test_Operations_for_Rows");
}

template <class Real>
bool SparseMatrix<Real>::u_tob_Test_Operations_for_Blocks(int d1, int d2, double density,
                                                          double min, double max, int repetitions) {
    const CNqClass::CallScope scope(this);
    MatrixPair<Real> pair;
    SparseMatrix block;
    this->zet_x(&pair.s, &pair.other, &block);
    const char* const failed =
        first_code(*this, {d1, d2, density, min, max, repetitions}, pair,
                   [&block](MatrixPair<Real>& drawn, int) { return code_of_blocks(drawn, block); });
    return failed == nullptr || this->fail(failed, "u_tob_Test_Operations_for_Blocks");
}

template <class Real>
bool SparseMatrix<Real>::u_tom_Test_Operations_with_Matrices(int d1, int d2, double density,
                                                             double min, double max,
                                                             int repetitions) {
    const CNqClass::CallScope scope(this);
    MatrixPair<Real> pair;
    const char* const failed = first_code(
        *this, {d1, d2, density, min, max, repetitions}, pair, [](MatrixPair<Real>& drawn, int) {
            const char* code = code_of_matrix_sums(drawn);
            if (code == nullptr) code = code_of_transposition(drawn);
            if (code == nullptr) code = code_of_update(drawn);
            return code != nullptr ? code : code_of_distance(drawn);
        });
    return failed == nullptr || this->fail(failed, "u_tom_Test_Operations_with_Matrices");
}

template <class Real>
bool SparseMatrix<Real>::u_tot_Test_Operations_Total(int d1, int d2, double density, double min,
                                                     double max, double constant,
                                                     int repetitions_elementary,
                                                     int repetitions_columns, int repetitions_rows,
                                                     int repetitions_blocks,
                                                     int repetitions_matrices) {
    constexpr const char* kName = "u_tot_Test_Operations_Total";
    const CNqClass::CallScope scope(this);
    if (!u_toe_Test_Operations_Elementary(d1, d2, density, min, max, constant,
                                          repetitions_elementary))
        return this->fail("u_toe_Test_Operations_Elementary", kName);
    if (!u_toc_Test_Operations_for_Columns(d1, d2, density, min, max, repetitions_columns))
        return this->fail("u_toc_Test_Operations_for_Columns", kName);
    if (!u_tor_Test_Operations_for_Rows(d1, d2, density, min, max, repetitions_rows))
        return this->fail("u_tor_Test_Operations_for_Rows", kName);
    if (!u_tob_Test_Operations_for_Blocks(d1, d2, density, min, max, repetitions_blocks))
        return this->fail("u_tob_Test_Operations_for_Blocks", kName);
    if (!u_tom_Test_Operations_with_Matrices(d1, d2, density, min, max, repetitions_matrices))
        return this->fail("u_tom_Test_Operations_with_Matrices", kName);
    return true;
}

}  // namespace nequar
