// Rows and columns: operations, interchanges, relocations. What is checked on columns is done to
// the rows of the transpose as well.
#include <algorithm>
#include <numeric>
#include <random>

#include "algebra/plain.h"

namespace nequar {
namespace {

using namespace test;

template <class Real>
class MatrixLines : public testing::Test {
protected:
    using Al = AlgebraForMatrix<Real>;
    using M = Matrix<Real>;

    // What becomes of the columns of A, and of the rows of its transpose.
    template <class... Arguments>
    M both(void (Al::*columns)(M*, Arguments...) const, void (Al::*rows)(M*, Arguments...) const,
           const M& A, Arguments... arguments) const {
        M B = A, C = transposed(A);
        (algebra.*columns)(&B, arguments...);
        (algebra.*rows)(&C, arguments...);
        EXPECT_TRUE(C == transposed(B));
        return B;
    }
    M add(const M& A, int i, int j, int k) const {
        return both(&Al::oac_Add_Columns, &Al::oar_Add_Rows, A, i, j, k);
    }
    M subtract(const M& A, int i, int j, int k) const {
        return both(&Al::osc_Subtract_Columns, &Al::osr_Subtract_Rows, A, i, j, k);
    }
    M add_weighted(const M& A, int i, int j, int k) const {
        return both(&Al::oacw_Add_Columns_with_Weight, &Al::oarw_Add_Rows_with_Weight, A, i, j, k,
                    Real(2), Real(-4));
    }
    M multiply(const M& A, int i, int k) const {
        return both(&Al::omcc_Multiply_Column_with_Constant, &Al::omrc_Multiply_Row_with_Constant,
                    A, i, k, Real(-3));
    }
    M relocate(const M& A, int i, int k) const {
        return both(&Al::orc_Relocate_Column, &Al::orr_Relocate_Row, A, i, k);
    }
    template <class... Places>
    M permute(const M& A, Places... places) const {
        return both(&Al::opc_Permute_Columns, &Al::opr_Permute_Rows, A, places...);
    }
    template <class List>
    M permute_back(const M& A, const List* list) const {
        return both(&Al::opci_Permute_Columns_Inverse, &Al::opri_Permute_Rows_Inverse, A, list);
    }

    Al algebra;
};

TWIN_TEST(MatrixLines, OperationsOnTwoLinesIntoAny) {
    constexpr int w = 5;
    const auto A = random_matrix<Real>(21, w, 1);
    const auto place = [](int x) { return ((x % w) + w) % w; };
    for (const int i : {0, 3, -1, 1003})
        for (const int j : {3, 4, -w})
            for (const int k : {0, 1, 3, -1, std::numeric_limits<int>::min() + 2}) {
                SCOPED_TRACE(testing::Message() << i << ' ' << j << ' ' << k);
                // Column k became value(element of column i, element of column j).
                const auto expect = [&](const Matrix<Real>& found, auto value) {
                    auto B = A;
                    for (int y = 0; y < 21; ++y)
                        B[y][place(k)] = value(A[y][place(i)], A[y][place(j)]);
                    EXPECT_TRUE(found == B);
                };
                expect(this->add(A, i, j, k), [](Real a, Real b) { return a + b; });
                expect(this->subtract(A, i, j, k), [](Real a, Real b) { return a - b; });
                expect(this->add_weighted(A, i, j, k),
                       [](Real a, Real b) { return 2 * a - 4 * b; });
                expect(this->multiply(A, i, k), [](Real a, Real) { return -3 * a; });
                expect(this->relocate(A, i, k), [](Real a, Real) { return a; });
                EXPECT_TRUE(this->permute(this->permute(A, i, k), k, i) == A);
                EXPECT_TRUE(this->permute(A, i, j) == matrix_of<Real>(21, w, [&](int y, int x) {
                                const int from = place(i), to = place(j);
                                return A[y][x == from ? to : x == to ? from : x];
                            }));
            }
    EXPECT_TRUE(never_failed(this->algebra));
}

TWIN_TEST(MatrixLines, NothingHappensToAnEmptyMatrix) {
    CNqMatrixInt P;
    P.c_Create(2, 3, 7);
    const auto p = vector_of<int>({1, 2});
    for (const auto& [h, w] : {std::pair(0, 0), {0, 3}, {3, 0}}) {
        const auto A = zeros<Real>(h, w);
        EXPECT_TRUE(this->add(A, 1, -2, 3) == A && this->add_weighted(A, 1, 2, 3) == A);
        EXPECT_TRUE(this->subtract(A, 1, 2, 3) == A && this->multiply(A, 1, 2) == A);
        EXPECT_TRUE(this->relocate(A, 1, 2) == A && this->permute(A, 1, 2) == A);
        EXPECT_TRUE(this->permute(A, &p) == A && this->permute_back(A, &std::as_const(P)) == A);
    }
    EXPECT_TRUE(never_failed(this->algebra));
}

TWIN_TEST(MatrixLines, InterchangesInOrderAndBack) {
    const auto kept = random_matrix<Real>(19, 4, 1);
    // 0 1 2 3 -> swap 0,2: 2 1 0 3 -> swap 1,2: 2 0 1 3 -> (2,2) -> swap 3,0: 3 0 1 2
    const int order[] = {3, 0, 1, 2};
    const auto expected = matrix_of<Real>(19, 4, [&](int y, int x) { return kept[y][order[x]]; });
    const auto p = vector_of<int>({2, 2, 2, 0});
    const auto P = [] {
        CNqMatrixInt pairs;
        pairs.c_Create(2, 4);
        for (int k = 0; k < 4; ++k) {
            pairs[0][k] = k - 4;
            pairs[1][k] = k < 3 ? 2 : 4;
        }
        return pairs;
    }();
    EXPECT_TRUE(this->permute(kept, &p) == expected && this->permute(kept, &P) == expected);
    EXPECT_TRUE(this->permute_back(expected, &p) == kept);
    EXPECT_TRUE(this->permute_back(expected, &P) == kept);
    // Longer than the matrix is wide, with indices of any size, repeated ones too.
    const auto wild = vector_of<int>({-0x80000000p0, 5, -7, 3, 2, 1, 0x7fffffffp0, 0, 0});
    const auto permuted = this->permute(kept, &wild);
    EXPECT_FALSE(permuted == kept);
    EXPECT_TRUE(this->permute_back(permuted, &wild) == kept);
    EXPECT_TRUE(never_failed(this->algebra));

    const CNqMatrixInt flat;
    auto& al = this->algebra;
    auto out = kept;
    EXPECT_REFUSED(opc_Permute_Columns, &out, &flat);
    EXPECT_REFUSED(opci_Permute_Columns_Inverse, &out, &flat);
    EXPECT_REFUSED(opr_Permute_Rows, &out, &flat);
    EXPECT_REFUSED(opri_Permute_Rows_Inverse, &out, &flat);
}

TWIN_TEST(MatrixLines, Relocations) {
    using Algebra = AlgebraForMatrix<Real>;
    const auto& al = this->algebra;
    for (const int w : {0, 1, 4, 200}) {
        const auto A = random_matrix<Real>(7, w, 1);
        CNqVectorInt r;
        r.c_Create(w);
        std::iota(r.p(), r.p() + w, 0);
        std::shuffle(r.p(), r.p() + w, std::mt19937(5));
        if (w > 1) std::swap(r[0], *std::find(r.p(), r.p() + w, 0));  // a fixed line
        const CNqVectorInt* const places = &r;
        auto expected = A, other = A;
        for (int x = 0; x < w; ++x)
            for (int y = 0; y < 7; ++y) {
                expected[y][r[x]] = A[y][x];
                other[y][r[x]] = r[x] == x ? 9 : A[y][x];
            }
        auto B = this->both(&Algebra::orc_Relocate_Columns, &Algebra::orr_Relocate_Rows, A, places);
        EXPECT_TRUE(B == expected);
        EXPECT_TRUE(al.orci_Relocate_Columns_Inverse(&B, places) && B == A);
        B = transposed(expected);
        al.orri_Relocate_Rows_Inverse(&B, places);
        EXPECT_TRUE(B == transposed(A));
        al.orr_Relocate_Rows(&B, places, &B);
        EXPECT_TRUE(B == transposed(expected));
        // Into a distinct matrix: fixed lines keep what was there.
        Matrix<Real> C;
        C.c_Create(7, w, 9);
        al.orc_Relocate_Columns(&A, places, &C);
        EXPECT_TRUE(C == other);
        const auto turned = transposed(A);
        C.c_Create(w, 7, 9);
        al.orr_Relocate_Rows(&turned, places, &C);
        EXPECT_TRUE(C == transposed(other));
    }
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(MatrixLines, RelocationsThatAreNoPermutation) {
    auto& al = this->algebra;
    const std::pair<CNqVectorInt, const char*> cases[] = {
        {vector_of<int>({0, 1}), "1"},    {vector_of<int>({0, 1, 2, 3}), "1"},
        {vector_of<int>({0, 1, 3}), "2"}, {vector_of<int>({-1, 1, 2}), "2"},
        {vector_of<int>({1, 1, 9}), "2"},  // the range of all comes first
        {vector_of<int>({2, 0, 2}), "3"}};
    const auto kept = random_matrix<Real>(3, 3, 1);
    for (const auto& [r, detail] : cases) {
        auto A = kept;
        Matrix<Real> out;
        EXPECT_FAILED(detail, orc_Relocate_Columns, &A, &r, &out);
        EXPECT_TRUE(out.mh() == 3 && out.mw() == 3);  // sized before the check
        EXPECT_FAILED(detail, orr_Relocate_Rows, &A, &r, &(out = zeros<Real>(1, 1)));
        EXPECT_TRUE(out.mh() == 3 && out.mw() == 3);
        EXPECT_FAILED(detail, orc_Relocate_Columns, &A, &r);
        EXPECT_FAILED(detail, orr_Relocate_Rows, &A, &r);
        EXPECT_FAILED(detail, orri_Relocate_Rows_Inverse, &A, &r);
        EXPECT_FAILED(detail, orci_Relocate_Columns_Inverse, &A, &r);
        EXPECT_FALSE(al.orci_Relocate_Columns_Inverse(&A, &r));
        EXPECT_TRUE(A == kept);
    }
}

}  // namespace
}  // namespace nequar
