// Rows and columns: operations, interchanges, relocations. What is checked on columns is checked on
// the rows of the transpose.
#include <algorithm>
#include <limits>
#include <numeric>
#include <random>

#include "algebra/plain.h"

namespace {

using namespace plain;

// The column operations of one matrix, or the row operations of its transpose.
template <class Real>
class Lines {
public:
    using Al = nequar::AlgebraForMatrix<Real>;
    using M = nequar::Matrix<Real>;

    Lines(const Al& algebra, bool rows) : al_(algebra), rows_(rows) {}

    template <class Columns, class Rows>
    void apply(M* A, Columns columns, Rows rows) const {
        if (!rows_) return columns(A);
        al_.tpm_Transpose_Matrix(A, A);
        rows(A);
        al_.tpm_Transpose_Matrix(A, A);
    }
#define LINE_OPERATION(name, columns, rows)                           \
    template <class... Arguments>                                     \
    void name(M* A, const Arguments&... arguments) const {            \
        apply(                                                        \
            A, [&](M* m) { al_.columns(m, argument(arguments)...); }, \
            [&](M* m) { al_.rows(m, argument(arguments)...); });      \
    }
    LINE_OPERATION(add, oac_Add_Columns, oar_Add_Rows)
    LINE_OPERATION(add_weighted, oacw_Add_Columns_with_Weight, oarw_Add_Rows_with_Weight)
    LINE_OPERATION(subtract, osc_Subtract_Columns, osr_Subtract_Rows)
    LINE_OPERATION(multiply, omcc_Multiply_Column_with_Constant, omrc_Multiply_Row_with_Constant)
    LINE_OPERATION(relocate, orc_Relocate_Column, orr_Relocate_Row)
    LINE_OPERATION(permute, opc_Permute_Columns, opr_Permute_Rows)
    LINE_OPERATION(permute_back, opci_Permute_Columns_Inverse, opri_Permute_Rows_Inverse)
    LINE_OPERATION(relocate_all, orc_Relocate_Columns, orr_Relocate_Rows)
    LINE_OPERATION(relocate_back, orci_Relocate_Columns_Inverse, orri_Relocate_Rows_Inverse)
#undef LINE_OPERATION
    void relocate(const M& A, const CNqVectorInt& r, M* out) const {
        if (!rows_) return al_.orc_Relocate_Columns(&A, &r, out);
        M transposed;
        al_.tpm_Transpose_Matrix(&A, &transposed);
        al_.tpm_Transpose_Matrix(out, out);
        al_.orr_Relocate_Rows(&transposed, &r, out);
        al_.tpm_Transpose_Matrix(out, out);
    }

private:
    template <class Scalar>
    static Scalar argument(Scalar x) {
        return x;
    }
    static const CNqVectorInt* argument(const CNqVectorInt& list) {
        return &list;
    }
    static const CNqMatrixInt* argument(const CNqMatrixInt& list) {
        return &list;
    }

    const Al& al_;
    bool rows_;
};

template <class Real>
class MatrixLinesTest : public ::testing::Test {
protected:
    const nequar::AlgebraForMatrix<Real> algebra;
    const Lines<Real> lines[2] = {{algebra, false}, {algebra, true}};
};

TWIN_TEST(MatrixLinesTest, OperationsOnTwoLinesIntoAny) {
    constexpr int h = 21, w = 5;
    const auto A = random_matrix<Real>(h, w, 1);
    const auto at = [&](int y, int x) { return double(A[y][((x % w) + w) % w]); };
    for (const auto& line : this->lines)
        for (const int i : {0, 3, -1, 1003})
            for (const int j : {3, 4, -w})
                for (const int k : {0, 1, 3, -1, std::numeric_limits<int>::min() + 2}) {
                    const auto check = [&](auto run, int target, auto value) {
                        auto B = A;
                        run(&B);
                        const int column = ((target % w) + w) % w;
                        EXPECT_LT(largest_difference(B, h, w,
                                                     [&](int y, int x) {
                                                         return x == column ? value(y) : at(y, x);
                                                     }),
                                  bound<Real>(4))
                            << i << ' ' << j << ' ' << k;
                    };
                    check([&](auto* B) { line.add(B, i, j, k); }, k,
                          [&](int y) { return at(y, i) + at(y, j); });
                    check([&](auto* B) { line.add_weighted(B, i, j, k, Real(2), Real(-3)); }, k,
                          [&](int y) { return 2 * at(y, i) - 3 * at(y, j); });
                    check([&](auto* B) { line.subtract(B, i, j, k); }, k,
                          [&](int y) { return at(y, i) - at(y, j); });
                    check([&](auto* B) { line.multiply(B, i, k, Real(-2)); }, k,
                          [&](int y) { return -2 * at(y, i); });
                    check([&](auto* B) { line.relocate(B, i, k); }, k,
                          [&](int y) { return at(y, i); });
                    auto B = A;
                    line.permute(&B, i, k);
                    line.permute(&B, k, i);
                    EXPECT_TRUE(B == A);
                    line.permute(&B, i, j);
                    const int from = ((i % w) + w) % w, to = ((j % w) + w) % w;
                    EXPECT_EQ(
                        largest_difference(B, h, w,
                                           [&](int y, int x) {
                                               return at(y, x == from ? to : x == to ? from : x);
                                           }),
                        0);
                }
    EXPECT_TRUE(never_failed(this->algebra));
}

TWIN_TEST(MatrixLinesTest, NothingHappensToAnEmptyMatrix) {
    CNqMatrixInt P;
    P.c_Create(2, 3, 7);
    for (const auto& shape : {std::array{0, 0}, {0, 3}, {3, 0}})
        for (const auto& line : this->lines) {
            const int h = shape[0], w = shape[1];
            nequar::Matrix<Real> A;
            A.c_Create(h, w);
            line.add(&A, 1, -2, 3);
            line.add_weighted(&A, 1, 2, 3, Real(4), Real(5));
            line.subtract(&A, 1, 2, 3);
            line.multiply(&A, 1, 2, Real(3));
            line.relocate(&A, 1, 2);
            line.permute(&A, 1, 2);
            line.permute(&A, indices({1, 2}));
            line.permute_back(&A, P);
            EXPECT_TRUE(A.mh() == h && A.mw() == w);
        }
    EXPECT_TRUE(never_failed(this->algebra));
}

TWIN_TEST(MatrixLinesTest, InterchangesInOrderAndBack) {
    const auto A = random_matrix<Real>(19, 4, 1);
    // 0 1 2 3 -> swap 0,2: 2 1 0 3 -> swap 1,2: 2 0 1 3 -> (2,2) -> swap 3,0: 3 0 1 2
    const int order[] = {3, 0, 1, 2};
    const auto expected = [&](int y, int x) { return double(A[y][order[x]]); };
    CNqMatrixInt P;
    P.c_Create(2, 4);
    for (int k = 0; k < 4; ++k) {
        P[0][k] = k - 4;
        P[1][k] = k < 3 ? 2 : 4;
    }
    for (const auto& line : this->lines) {
        auto B = A;
        line.permute(&B, indices({2, 2, 2, 0}));
        EXPECT_EQ(largest_difference(B, 19, 4, expected), 0);
        line.permute_back(&B, indices({2, 2, 2, 0}));
        EXPECT_TRUE(B == A);
        line.permute(&B, P);
        EXPECT_EQ(largest_difference(B, 19, 4, expected), 0);
        line.permute_back(&B, P);
        EXPECT_TRUE(B == A);
        // Longer than the matrix is wide, with indices of any size, repeated ones too.
        const auto wild = indices({std::numeric_limits<int>::min(), 5, -7, 3, 2, 1,
                                   std::numeric_limits<int>::max(), 0, 0});
        line.permute(&B, wild);
        EXPECT_FALSE(B == A);
        line.permute_back(&B, wild);
        EXPECT_TRUE(B == A);
    }
    EXPECT_TRUE(never_failed(this->algebra));

    const CNqMatrixInt flat;
    auto B = A;
    const auto& al = this->algebra;
    auto& out = B;
    const auto& kept = A;
    EXPECT_REFUSED(opc_Permute_Columns, &B, &flat);
    EXPECT_REFUSED(opci_Permute_Columns_Inverse, &B, &flat);
    EXPECT_REFUSED(opr_Permute_Rows, &B, &flat);
    EXPECT_REFUSED(opri_Permute_Rows_Inverse, &B, &flat);
}

TWIN_TEST(MatrixLinesTest, Relocations) {
    for (const int w : {0, 1, 4, 200}) {
        const auto A = random_matrix<Real>(7, w, 1);
        CNqVectorInt r;
        r.c_Create(w);
        std::iota(r.p(), r.p() + w, 0);
        std::mt19937 engine(5);
        std::shuffle(r.p(), r.p() + w, engine);
        if (w > 1) std::swap(r[0], *std::find(r.p(), r.p() + w, 0));  // a fixed line
        for (const auto& line : this->lines) {
            auto B = A;
            line.relocate_all(&B, r);
            EXPECT_EQ(B.mw(), w);
            for (int x = 0; x < w; ++x)
                for (int y = 0; y < 7; ++y) EXPECT_EQ(B[y][r[x]], A[y][x]);
            line.relocate_back(&B, r);
            EXPECT_TRUE(B == A);
            // Into a distinct matrix: fixed lines keep what was there.
            nequar::Matrix<Real> C;
            C.c_Create(7, w, 9);
            line.relocate(A, r, &C);
            for (int x = 0; x < w; ++x)
                for (int y = 0; y < 7; ++y) EXPECT_EQ(C[y][r[x]], r[x] == x ? 9 : A[y][x]);
            // The output is the input: fixed lines keep their values.
            this->algebra.tpm_Transpose_Matrix(&A, &B);
            this->algebra.orr_Relocate_Rows(&B, &r, &B);
            for (int x = 0; x < w; ++x) EXPECT_EQ(B[r[x]][0], A[0][x]);
        }
    }
    EXPECT_TRUE(never_failed(this->algebra));
}

TWIN_TEST(MatrixLinesTest, RelocationsThatAreNoPermutation) {
    const auto& al = this->algebra;
    const struct {
        CNqVectorInt r;
        const char* detail;
    } cases[] = {{indices({0, 1}), "1"},    {indices({0, 1, 2, 3}), "1"},
                 {indices({0, 1, 3}), "2"}, {indices({-1, 1, 2}), "2"},
                 {indices({1, 1, 9}), "2"},  // the range of all comes first
                 {indices({2, 0, 2}), "3"}};
    const auto kept = random_matrix<Real>(3, 3, 1);
    for (const auto& [r, detail] : cases) {
        auto A = kept;
        nequar::Matrix<Real> out;
        EXPECT_FAILED(detail, orc_Relocate_Columns, &A, &r, &out);
        EXPECT_TRUE(out.mh() == 3 && out.mw() == 3);  // sized before the check
        EXPECT_FAILED(detail, orc_Relocate_Columns, &A, &r);
        EXPECT_FAILED(detail, orci_Relocate_Columns_Inverse, &A, &r);
        EXPECT_FALSE(al.orci_Relocate_Columns_Inverse(&A, &r));
        out.c_Create(1, 1);
        EXPECT_FAILED(detail, orr_Relocate_Rows, &A, &r, &out);
        EXPECT_TRUE(out.mh() == 3 && out.mw() == 3);
        EXPECT_FAILED(detail, orr_Relocate_Rows, &A, &r);
        EXPECT_FAILED(detail, orri_Relocate_Rows_Inverse, &A, &r);
        EXPECT_TRUE(A == kept);
    }
    auto A = kept;
    const auto r = indices({2, 0, 1});
    EXPECT_TRUE(al.orci_Relocate_Columns_Inverse(&A, &r));
}

}  // namespace
