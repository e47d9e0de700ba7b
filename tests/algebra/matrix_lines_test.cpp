// Rows and columns: operations, interchanges, relocations. What is checked on columns is done to
// the rows of the transpose as well.
#include <algorithm>
#include <numeric>
#include <random>

#include "algebra/plain.h"

namespace nequar::test {
namespace {

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
    using A = AlgebraForMatrix<Real>;
    for (const auto& [h, w] : {std::pair(21, 5), {0, 0}, {0, 3}, {3, 0}})
        for (const int i : {0, 3, -1, 1003})
            for (const int j : {3, 4, -5})
                for (const int k : {0, 1, 3, -1, std::numeric_limits<int>::min() + 2}) {
                    SCOPED_TRACE(testing::Message() << i << ' ' << j << ' ' << k);
                    const auto m = random_matrix<Real>(h, w, 1);
                    const auto place = [width = w](int x) { return (x % width + width) % width; };
                    // Column k becomes a column i + b column j.
                    const auto check = [&](auto columns, auto rows, Real a, Real b,
                                           auto... arguments) {
                        const auto expected = matrix_of<Real>(m.mh(), m.mw(), [&](int y, int x) {
                            return x == place(k) ? a * m[y][place(i)] + b * m[y][place(j)]
                                                 : m[y][x];
                        });
                        EXPECT_TRUE(this->both(columns, rows, m, arguments...) == expected);
                    };
                    check(&A::oac_Add_Columns, &A::oar_Add_Rows, 1, 1, i, j, k);
                    check(&A::osc_Subtract_Columns, &A::osr_Subtract_Rows, 1, -1, i, j, k);
                    check(&A::oacw_Add_Columns_with_Weight, &A::oarw_Add_Rows_with_Weight, 2, -4, i,
                          j, k, Real(2), Real(-4));
                    check(&A::omcc_Multiply_Column_with_Constant,
                          &A::omrc_Multiply_Row_with_Constant, -3, 0, i, k, Real(-3));
                    check(&A::orc_Relocate_Column, &A::orr_Relocate_Row, 1, 0, i, k);
                    EXPECT_TRUE(this->permute(this->permute(m, i, k), k, i) == m);
                    EXPECT_TRUE(this->permute(m, i, j) == matrix_of<Real>(h, w, [&](int y, int x) {
                                    const int from = place(i), to = place(j);
                                    return m[y][x == from ? to : x == to ? from : x];
                                }));
                }
    EXPECT_TRUE(never_failed(this->algebra));
}

TWIN_TEST(MatrixLines, InterchangesInOrderAndBack) {
    const auto kept = random_matrix<Real>(19, 4, 1);
    // 0 1 2 3 -> swap 0,2: 2 1 0 3 -> swap 1,2: 2 0 1 3 -> (2,2) -> swap 3,0: 3 0 1 2
    const int order[] = {3, 0, 1, 2};
    const auto expected = matrix_of<Real>(19, 4, [&](int y, int x) { return kept[y][order[x]]; });
    const auto p = vector_of<int>({2, 2, 2, 0});
    CNqMatrixInt pairs;
    pairs.c_Create(2, 4, 2);
    for (int k = 0; k < 4; ++k) pairs[0][k] = k - 4;
    pairs[1][3] = 4;
    const CNqMatrixInt* const P = &pairs;
    EXPECT_TRUE(this->permute(kept, &p) == expected && this->permute(kept, P) == expected);
    EXPECT_TRUE(this->permute_back(expected, &p) == kept &&
                this->permute_back(expected, P) == kept);
    // Longer than the matrix is wide, with indices of any size, repeated ones too.
    const auto wild = vector_of<int>({-0x80000000p0, 5, -7, 3, 2, 1, 0x7fffffffp0, 0, 0});
    for (const auto& empty :
         {constant_matrix<Real>(0, 0), constant_matrix<Real>(0, 3), constant_matrix<Real>(3, 0)})
        EXPECT_TRUE(this->permute(empty, &wild) == empty && this->permute_back(empty, P) == empty);
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
        EXPECT_FAILED(detail, orr_Relocate_Rows, &A, &r, &(out = constant_matrix<Real>(1, 1)));
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
}  // namespace nequar::test
