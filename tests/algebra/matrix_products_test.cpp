// Products: values in every pattern, the state after a mismatch, aliasing, chains.
#include <array>
#include <functional>
#include <limits>

#include "algebra/plain.h"

namespace {

using namespace plain;

TWINS(MatrixProductsTest);

// Every product that gives a matrix (a vector), in both forms, from operands of any shape: B and x
// are given in the shape that fits an hA x wA matrix A and a result with n columns.
template <class Real>
struct MatrixProduct {
    const char* accumulate_name;
    const char* mismatch;
    void (nequar::AlgebraForMatrix<Real>::*accumulate)(const nequar::Matrix<Real>*,
                                                       const nequar::Matrix<Real>*,
                                                       nequar::Matrix<Real>*) const;
    void (nequar::AlgebraForMatrix<Real>::*set)(const nequar::Matrix<Real>*,
                                                const nequar::Matrix<Real>*,
                                                nequar::Matrix<Real>*) const;
    bool transposed_a, transposed_b;
};

template <class Real>
std::array<MatrixProduct<Real>, 3> matrix_products() {
    using Al = nequar::AlgebraForMatrix<Real>;
    return {{{"mmma_Multiply_Matrix_Matrix_and_Accumulate", "1",
              &Al::mmma_Multiply_Matrix_Matrix_and_Accumulate, &Al::mmm_Multiply_Matrix_Matrix,
              false, false},
             {"mmta_Multiply_Matrix_Tmatrix_and_Accumulate", "2",
              &Al::mmta_Multiply_Matrix_Tmatrix_and_Accumulate, &Al::mmt_Multiply_Matrix_Tmatrix,
              false, true},
             {"mtma_Multiply_Tmatrix_Matrix_and_Accumulate", "2",
              &Al::mtma_Multiply_Tmatrix_Matrix_and_Accumulate, &Al::mtm_Multiply_Tmatrix_Matrix,
              true, false}}};
}

TWIN_TEST(MatrixProductsTest, MatrixTimesMatrix) {
    const nequar::AlgebraForMatrix<Real> al;
    for (const auto& p : matrix_products<Real>())
        for (const auto& shape : {std::array{1, 1, 1},
                                  {4, 4, 4},
                                  {3, 70, 5},
                                  {65, 33, 40},
                                  {2, 0, 3},
                                  {0, 4, 2},
                                  {5, 3, 0}}) {
            const int m = shape[0], k = shape[1], n = shape[2];

            const auto A =
                p.transposed_a ? random_matrix<Real>(k, m, 1) : random_matrix<Real>(m, k, 1);
            const auto B =
                p.transposed_b ? random_matrix<Real>(n, k, 2) : random_matrix<Real>(k, n, 2);
            const Element expected = product(p.transposed_a ? transpose_of(A) : of(A),
                                             p.transposed_b ? transpose_of(B) : of(B), k);
            auto C = random_matrix<Real>(m, n, 3);
            const auto before = C;
            (al.*p.accumulate)(&A, &B, &C);
            EXPECT_LT(largest_difference(
                          C, m, n, [&](int y, int x) { return before[y][x] + expected(y, x); }),
                      bound<Real>(2 * k));
            auto D = random_matrix<Real>(2, 2, 4);
            (al.*p.set)(&A, &B, &D);
            EXPECT_LT(largest_difference(D, m, n, expected), bound<Real>(2 * k));
        }
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(MatrixProductsTest, OutputThatIsAnInput) {
    const nequar::AlgebraForMatrix<Real> al;
    for (const auto& p : matrix_products<Real>())
        for (const int n : {2, 30}) {  // with and without scratch on the heap
            const auto A = random_matrix<Real>(n, n, 1);
            const auto B = random_matrix<Real>(n, n, 2);
            const auto expected = [&](const auto& left, const auto& right) {
                return product(p.transposed_a ? transpose_of(left) : of(left),
                               p.transposed_b ? transpose_of(right) : of(right), n);
            };
            auto X = A;
            (al.*p.set)(&X, &B, &X);
            EXPECT_LT(largest_difference(X, n, n, expected(A, B)), bound<Real>(2 * n));
            X = B;
            (al.*p.set)(&A, &X, &X);
            EXPECT_LT(largest_difference(X, n, n, expected(A, B)), bound<Real>(2 * n));
            X = A;
            (al.*p.set)(&X, &X, &X);
            EXPECT_LT(largest_difference(X, n, n, expected(A, A)), bound<Real>(2 * n));
            EXPECT_TRUE(never_failed(al));

            // The accumulating form refuses what the set form allows.
            X = A;
            const nequar::AlgebraForMatrix<Real> fresh;
            (fresh.*p.accumulate)(&X, &B, &X);
            EXPECT_TRUE(failed_with(fresh, p.accumulate_name, "1"));
            (fresh.*p.accumulate)(&B, &X, &X);
            EXPECT_TRUE(failed_with(fresh, p.accumulate_name, "1"));
            EXPECT_TRUE(X == A);
        }
    // The output grows: 2 x 3 times 3 x 40 into A.
    auto A = random_matrix<Real>(2, 3, 1);
    const auto B = random_matrix<Real>(3, 40, 2);
    const auto expected = product(of(A), of(B), 3);
    al.mmm_Multiply_Matrix_Matrix(&A, &B, &A);
    EXPECT_LT(largest_difference(A, 2, 40, expected), bound<Real>(6));
}

TWIN_TEST(MatrixProductsTest, MismatchLeavesSetOutputsZeroAndOthersUntouched) {
    const nequar::AlgebraForMatrix<Real> al;
    const auto zero = [](int, int) { return 0.0; };
    for (const auto& p : matrix_products<Real>()) {
        const auto A = p.transposed_a ? random_matrix<Real>(3, 2, 1) : random_matrix<Real>(2, 3, 1);
        const auto B = p.transposed_b ? random_matrix<Real>(5, 4, 2) : random_matrix<Real>(4, 5, 2);
        auto C = random_matrix<Real>(2, 5, 3);
        const auto before = C;
        (al.*p.accumulate)(&A, &B, &C);
        EXPECT_TRUE(failed_with(al, p.accumulate_name, p.mismatch));
        EXPECT_TRUE(C == before);
        C = random_matrix<Real>(3, 3, 3);
        (al.*p.set)(&A, &B, &C);
        EXPECT_TRUE(failed_with(al, p.accumulate_name, p.mismatch));
        EXPECT_EQ(largest_difference(C, 2, 5, zero), 0) << p.accumulate_name;
        // An output that does not fit is a mismatch of the accumulating form only.
        auto fitting = p.transposed_b ? random_matrix<Real>(5, 3, 2) : random_matrix<Real>(3, 5, 2);
        C = random_matrix<Real>(5, 2, 3);
        (al.*p.accumulate)(&A, &fitting, &C);
        EXPECT_TRUE(failed_with(al, p.accumulate_name, p.mismatch));
        // The aliased operand is lost to the zeros, too.
        auto X = A;
        (al.*p.set)(&X, &B, &X);
        EXPECT_EQ(largest_difference(X, 2, 5, zero), 0);
    }
}

TWIN_TEST(MatrixProductsTest, MatricesAndVectors) {
    using Al = nequar::AlgebraForMatrix<Real>;
    using Vector = nequar::Vector<Real>;
    using Matrix = nequar::Matrix<Real>;
    const nequar::AlgebraForMatrix<Real> al;
    struct Case {
        const char* name;
        std::function<void(const Al&, const Matrix*, const Vector*, Vector*)> accumulate, set;
        bool transposed;
    };
#define PRODUCT(accumulate, set, transposed, ...)                                                   \
    {                                                                                               \
#accumulate,                                                                                \
            [](auto& a, auto A, auto x,                                                             \
               auto                                                                                 \
                   y) { a.accumulate(__VA_ARGS__, y); },                                            \
                                                      [](auto& a, auto A, auto x,                   \
                                                         auto                                       \
                                                             y) { a.set(__VA_ARGS__, y); },         \
                                                                                         transposed \
    }
    const Case cases[] = {
        PRODUCT(mmva_Multiply_Matrix_Vector_and_Accumulate, mmv_Multiply_Matrix_Vector, false, A,
                x),
        PRODUCT(mvma_Multiply_Vector_Matrix_and_Accumulate, mvm_Multiply_Vector_Matrix, true, x, A),
        PRODUCT(mvta_Multiply_Vector_Tmatrix_and_Accumulate, mvt_Multiply_Vector_Tmatrix, false, x,
                A)};
#undef PRODUCT
    for (const auto& [name, accumulate, set, transposed] : cases) {
        for (const auto& shape : {std::array{1, 1}, {4, 7}, {90, 35}, {6, 6}, {3, 0}, {0, 3}}) {
            const int h = shape[0], w = shape[1];

            const auto A = random_matrix<Real>(h, w, 1);
            const int in = transposed ? h : w;
            const int out = transposed ? w : h;
            const auto x = random_vector<Real>(in, 2);
            const Element expected =
                product(transposed ? transpose_of(A) : of(A), column_of(x), in);
            auto y = random_vector<Real>(out, 3);
            const auto before = y;
            accumulate(al, &A, &x, &y);
            EXPECT_LT(largest_difference(y, out, [&](int i) { return before[i] + expected(i, 0); }),
                      bound<Real>(2 * in))
                << name;
            for (const bool in_place : {false, true}) {
                if (in_place) y = x;
                set(al, &A, in_place ? &y : &x, &y);
                EXPECT_LT(largest_difference(y, out, [&](int i) { return expected(i, 0); }),
                          bound<Real>(2 * in))
                    << name << in_place;
            }
        }
        EXPECT_TRUE(never_failed(al));
        const Al fresh;
        const auto A = random_matrix<Real>(3, 4, 1);
        auto x = random_vector<Real>(5, 2);
        auto y = random_vector<Real>(2, 3);
        const auto before = y;
        accumulate(fresh, &A, &x, &y);
        EXPECT_TRUE(failed_with(fresh, name, "2"));
        EXPECT_TRUE(y == before);
        accumulate(fresh, &A, &x, &x);
        EXPECT_TRUE(failed_with(fresh, name, "1"));
        set(fresh, &A, &x, &y);
        EXPECT_TRUE(failed_with(fresh, name, "2"));
        EXPECT_EQ(largest_difference(y, transposed ? 4 : 3, [](int) { return 0.0; }), 0) << name;
    }
}

TWIN_TEST(MatrixProductsTest, OuterProductsAndForms) {
    const nequar::AlgebraForMatrix<Real> al;
    for (const auto& shape : {std::array{1, 1}, {5, 3}, {300, 40}}) {
        const int h = shape[0], w = shape[1];

        const auto x = random_vector<Real>(h, 1);
        const auto y = random_vector<Real>(w, 2);
        const auto A = random_matrix<Real>(h, w, 3);
        const auto outer = product(column_of(x), row_of(y), 1);
        auto M = A;
        al.mvva_Multiply_Vector_Vector_and_Accumulate(&x, &y, &M);
        EXPECT_LT(largest_difference(M, h, w, [&](int r, int c) { return A[r][c] + outer(r, c); }),
                  bound<Real>(2));
        nequar::Matrix<Real> N;
        al.mvv_Multiply_Vector_Vector(&x, &y, &N);
        EXPECT_LT(largest_difference(N, h, w, outer), bound<Real>(1));
        al.mvv_Multiply_Vector_Vector(&x, &x, &N);
        EXPECT_LT(largest_difference(N, h, h, product(column_of(x), row_of(x), 1)), bound<Real>(1));

        double form = 0;
        for (int r = 0; r < h; ++r)
            for (int c = 0; c < w; ++c) form += double(x[r]) * A[r][c] * y[c];
        Real s = 1;
        al.mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate(&x, &A, &y, s);
        EXPECT_LT(std::abs(s - 1 - form), bound<Real>(h * w));
        auto z = x;  // the result may lie within an operand
        al.mvmv_Multiply_Vector_Matrix_Vector(&z, &A, &y, z[0]);
        EXPECT_LT(std::abs(z[0] - form), bound<Real>(h * w));
    }
    EXPECT_TRUE(never_failed(al));

    const auto x = random_vector<Real>(3, 1);
    auto M = random_matrix<Real>(3, 2, 1);
    const auto before = M;
    EXPECT_FAILED("1", mvva_Multiply_Vector_Vector_and_Accumulate, &x, &x, &M);
    EXPECT_TRUE(M == before);
    Real s = 5;
    EXPECT_FAILED("1", mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate, &x, &M, &x, s);
    EXPECT_EQ(s, 5);
    al.mvmv_Multiply_Vector_Matrix_Vector(&x, &M, &x, s);
    EXPECT_TRUE(failed_with(al, "mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate", "1"));
    EXPECT_EQ(s, 0);
}

TWIN_TEST(MatrixProductsTest, DiagonalFactors) {
    const nequar::AlgebraForMatrix<Real> al;
    const auto d = random_vector<Real>(40, 9);
    for (const auto& shape : {std::array{1, 1, 1},
                              {4, 5, 5},
                              {3, 30, 20},
                              {3, 20, 30},
                              {2, 0, 3},
                              {2, 3, 0},
                              {0, 2, 3}}) {
        const int h = shape[0], w = shape[1], wD = shape[2];

        const auto A = random_matrix<Real>(h, w, 1);
        const auto expected = product(of(A), diagonal_of(d), w);
        auto C = random_matrix<Real>(h, wD, 2);
        const auto before = C;
        al.mmda_Multiply_Matrix_Dmatrix_and_Accumulate(wD, &A, &d, &C);
        EXPECT_LT(largest_difference(C, h, wD,
                                     [&](int y, int x) { return before[y][x] + expected(y, x); }),
                  bound<Real>(2));
        C = random_matrix<Real>(2, 2, 3);
        al.mmd_Multiply_Matrix_Dmatrix(wD, &A, &d, &C);
        EXPECT_LT(largest_difference(C, h, wD, expected), bound<Real>(1));
        C = A;
        al.mmd_Multiply_Matrix_Dmatrix(wD, &C, &d, &C);
        EXPECT_LT(largest_difference(C, h, wD, expected), bound<Real>(1));

        const auto x = random_vector<Real>(w, 4);
        const auto scaled = [&](int i) { return i < w ? double(x[i]) * d[i] : 0.0; };
        auto y = random_vector<Real>(wD, 5);
        const auto old = y;
        al.mvda_Multiply_Vector_Dmatrix_and_Accumulate(w, wD, &x, &d, &y);
        EXPECT_LT(largest_difference(y, wD, [&](int i) { return old[i] + scaled(i); }),
                  bound<Real>(2));
        y = x;
        al.mvd_Multiply_Vector_Dmatrix(w, wD, &y, &d, &y);
        EXPECT_LT(largest_difference(y, wD, scaled), bound<Real>(1));
        y = d;
        al.mvd_Multiply_Vector_Dmatrix(w, wD, &x, &y, &y);
        EXPECT_LT(largest_difference(y, wD, scaled), bound<Real>(1));
        double form = 0;
        for (int i = 0; i < wD; ++i) form += scaled(i) * old[i];
        Real s = 1;
        al.mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate(w, wD, &x, &d, &old, s);
        EXPECT_LT(std::abs(s - 1 - form), bound<Real>(wD));
        al.mvdv_Multiply_Vector_Dmatrix_Vector(w, wD, &x, &d, &old, s);
        EXPECT_LT(std::abs(s - form), bound<Real>(wD));
    }
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(MatrixProductsTest, DiagonalFactorsThatDoNotFit) {
    const nequar::AlgebraForMatrix<Real> al;
    const auto A = random_matrix<Real>(2, 3, 1);
    auto C = random_matrix<Real>(2, 4, 2);
    const auto before = C;
    const auto d = random_vector<Real>(3, 3);
    const auto shorter = random_vector<Real>(2, 3);
    auto& out = C;
    const auto& kept = before;
    EXPECT_REFUSED(mmda_Multiply_Matrix_Dmatrix_and_Accumulate, 4, &A, &shorter, &C);
    EXPECT_REFUSED(mmda_Multiply_Matrix_Dmatrix_and_Accumulate, 3, &A, &d, &C);
    EXPECT_REFUSED(mmda_Multiply_Matrix_Dmatrix_and_Accumulate, -1, &A, &d, &C);
    EXPECT_REFUSED(mmda_Multiply_Matrix_Dmatrix_and_Accumulate, 4, &C, &d, &C);
    al.mmd_Multiply_Matrix_Dmatrix(3, &A, &shorter, &C);
    EXPECT_TRUE(failed_with(al, "mmda_Multiply_Matrix_Dmatrix_and_Accumulate", "1"));
    EXPECT_EQ(largest_difference(C, 2, 3, [](int, int) { return 0.0; }), 0);

    auto x = random_vector<Real>(3, 4);
    auto y = random_vector<Real>(5, 5);
    EXPECT_FAILED("2", mvda_Multiply_Vector_Dmatrix_and_Accumulate, 3, 5, &x, &shorter, &y);
    EXPECT_FAILED("2", mvda_Multiply_Vector_Dmatrix_and_Accumulate, 3, 4, &x, &d, &y);
    EXPECT_FAILED("1", mvda_Multiply_Vector_Dmatrix_and_Accumulate, 3, 3, &x, &d, &x);
    EXPECT_FAILED("1", mvda_Multiply_Vector_Dmatrix_and_Accumulate, 3, 3, &d, &x, &x);
    EXPECT_TRUE(y == random_vector<Real>(5, 5) && x == random_vector<Real>(3, 4));
    al.mvd_Multiply_Vector_Dmatrix(4, 2, &x, &d, &y);
    EXPECT_TRUE(failed_with(al, "mvda_Multiply_Vector_Dmatrix_and_Accumulate", "2"));
    EXPECT_TRUE(y == vector<Real>({0, 0}));
    Real s = 5;
    al.mvdv_Multiply_Vector_Dmatrix_Vector(3, 3, &x, &d, &y, s);
    EXPECT_TRUE(failed_with(al, "mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate", "1"));
    EXPECT_EQ(s, 0);
}

TWIN_TEST(MatrixProductsTest, ChainsIntoAnyOperand) {
    using Matrix = nequar::Matrix<Real>;
    const nequar::AlgebraForMatrix<Real> al;
    const Matrix A = random_matrix<Real>(3, 30, 1), B = random_matrix<Real>(30, 20, 2),
                 C = random_matrix<Real>(20, 40, 3), D = random_matrix<Real>(40, 5, 4);
    const auto d = random_vector<Real>(25, 5);
    const Element AB = product(of(A), of(B), 30);
    const Element ABC = product(AB, of(C), 20);
    const Element ABCD = product(AB, product(of(C), of(D), 40), 20);
    const double tolerance = bound<Real>(90) * 200;
    for (int target = 0; target < 5; ++target) {
        Matrix m[5] = {A, B, C, D, Matrix()};
        al.mmm_Multiply_Matrix_Matrix(&m[0], &m[1], &m[2], &m[3], &m[target]);
        EXPECT_LT(largest_difference(m[target], 3, 5, ABCD), tolerance) << target;
        Matrix n[5] = {A, B, C, D, Matrix()};
        al.mmm_Multiply_Matrix_Matrix(&n[0], &n[1], &n[2], &n[target]);
        EXPECT_LT(largest_difference(n[target], 3, 40, ABC), tolerance) << target;
        // A diag B and A diag C^T, with A 3 x 30, diag 30 x 20 or 30 x 40
        Matrix p[5] = {A, random_matrix<Real>(20, 6, 7), random_matrix<Real>(6, 20, 8), D,
                       Matrix()};
        const Element AD = product(of(A), diagonal_of(d), 25);
        const Element ADB = product(AD, of(p[1]), 20), ADC = product(AD, transpose_of(p[2]), 20);
        al.mmdm_Multiply_Matrix_Dmatrix_Matrix(&p[0], &d, &p[1], &p[target]);
        EXPECT_LT(largest_difference(p[target], 3, 6, ADB), tolerance) << target;
        Matrix q[5] = {A, B, random_matrix<Real>(6, 20, 8), D, Matrix()};
        al.mmdt_Multiply_Matrix_Dmatrix_Tmatrix(&q[0], &d, &q[2], &q[target]);
        EXPECT_LT(largest_difference(q[target], 3, 6, ADC), tolerance) << target;
    }
    for (const bool aliased : {false, true}) {
        const auto check = [&](int in, int out, auto run, const Element& expected) {
            const auto x = random_vector<Real>(in, 6);
            auto y = x;
            nequar::Vector<Real> other;
            nequar::Vector<Real>* const target = aliased ? &y : &other;
            run(&y, target);
            const Element e = product(expected, column_of(x), in);
            EXPECT_LT(largest_difference(*target, out, [&](int i) { return e(i, 0); }), tolerance);
        };
        const auto transposed = [](const Element& e) {
            return [e](int y, int x) { return e(x, y); };
        };
        check(
            20, 3, [&](auto x, auto y) { al.mmv_Multiply_Matrix_Vector(&A, &B, x, y); }, AB);
        check(
            40, 3, [&](auto x, auto y) { al.mmv_Multiply_Matrix_Vector(&A, &B, &C, x, y); }, ABC);
        check(
            5, 3, [&](auto x, auto y) { al.mmv_Multiply_Matrix_Vector(&A, &B, &C, &D, x, y); },
            ABCD);
        check(
            3, 20, [&](auto x, auto y) { al.mvm_Multiply_Vector_Matrix(x, &A, &B, y); },
            transposed(AB));
        check(
            3, 40, [&](auto x, auto y) { al.mvm_Multiply_Vector_Matrix(x, &A, &B, &C, y); },
            transposed(ABC));
    }
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(MatrixProductsTest, ChainsThatDoNotFitLeaveZeros) {
    const nequar::AlgebraForMatrix<Real> al;
    const auto A = random_matrix<Real>(2, 3, 1), B = random_matrix<Real>(3, 4, 2),
               C = random_matrix<Real>(5, 6, 3);
    const auto d = random_vector<Real>(2, 4);
    nequar::Matrix<Real> out;
    const auto expect_matrix = [&](int h, int w, const char* name) {
        EXPECT_TRUE(failed_with(al, name, "1"));
        EXPECT_EQ(largest_difference(out, h, w, [](int, int) { return 0.0; }), 0);
        out = random_matrix<Real>(1, 1, 5);
    };
    const char* name = "mmma_Multiply_Matrix_Matrix_and_Accumulate";
    al.mmm_Multiply_Matrix_Matrix(&A, &B, &C, &out);
    expect_matrix(2, 6, name);
    al.mmm_Multiply_Matrix_Matrix(&C, &A, &B, &out);
    expect_matrix(5, 4, name);
    al.mmm_Multiply_Matrix_Matrix(&A, &B, &A, &B, &out);
    expect_matrix(2, 4, name);
    name = "mmda_Multiply_Matrix_Dmatrix_and_Accumulate";
    al.mmdm_Multiply_Matrix_Dmatrix_Matrix(&A, &d, &B, &out);
    expect_matrix(2, 4, name);
    al.mmdt_Multiply_Matrix_Dmatrix_Tmatrix(&A, &d, &C, &out);
    expect_matrix(2, 5, name);
    auto x = random_vector<Real>(6, 5);
    al.mmv_Multiply_Matrix_Vector(&A, &B, &C, &x, &x);
    EXPECT_TRUE(failed_with(al, "mmva_Multiply_Matrix_Vector_and_Accumulate", "2"));
    EXPECT_TRUE(x == vector<Real>({0, 0}));
    al.mvm_Multiply_Vector_Matrix(&x, &A, &B, &C, &x);
    EXPECT_TRUE(failed_with(al, "mvma_Multiply_Vector_Matrix_and_Accumulate", "2"));
    EXPECT_EQ(largest_difference(x, 6, [](int) { return 0.0; }), 0);
}

TWIN_TEST(MatrixProductsTest, NotANumberPassesThrough) {
    const nequar::AlgebraForMatrix<Real> al;
    auto A = matrix<Real>(2, 2, {0, 0, 0, 1});
    auto B = A;
    B[0][1] = std::numeric_limits<Real>::quiet_NaN();
    nequar::Matrix<Real> C;
    al.mmm_Multiply_Matrix_Matrix(&A, &B, &C);  // 0 * NaN
    EXPECT_TRUE(std::isnan(C[0][1]) && C[0][0] == 0);
    B[0][1] = std::numeric_limits<Real>::infinity();
    al.mmt_Multiply_Matrix_Tmatrix(&A, &B, &C);
    EXPECT_TRUE(std::isnan(C[0][0]));
    // What the output held does not matter to a set form.
    C.c_Create(2, 2, std::numeric_limits<Real>::quiet_NaN());
    al.mmm_Multiply_Matrix_Matrix(&A, &A, &C);
    EXPECT_TRUE(C == A);
}

TWIN_TEST(MatrixProductsTest, SizesThatCannotBeHadEndTheOperation) {
    const nequar::AlgebraForMatrix<Real> al;
    nequar::Matrix<Real> wide;  // 0 x n, so that the product is n x n
    wide.c_Create(0, std::numeric_limits<int>::max());
    auto C = random_matrix<Real>(1, 2, 1);
    const auto before = C;
    al.mtm_Multiply_Tmatrix_Matrix(&wide, &wide, &C);
    EXPECT_STREQ(al.grm_Get_Recorded_Message().c_str(),
                 (std::string(al.gcn_Get_Class_Name().c_str()) +
                  "::mtm_Multiply_Tmatrix_Matrix: cannot size the output")
                     .c_str());
    EXPECT_TRUE(C == before);
    const auto d = random_vector<Real>(3, 1);
    al.mmd_Multiply_Matrix_Dmatrix(-1, &C, &d, &C);
    EXPECT_STREQ(al.ged_Get_Error_Detail().c_str(), "cannot size the output");
    EXPECT_TRUE(C == before);
}

}  // namespace
