// Products: values in every pattern, the state after a mismatch, aliasing, chains.
#include "algebra/plain.h"

namespace nequar::test {
namespace {

TWINS(MatrixProducts);

// A product C of A and B, whose operands may be vectors: columns here.
template <class Real>
class Run {
    using Al = AlgebraForMatrix<Real>;
    using M = Matrix<Real>;
    using V = Vector<Real>;

public:
    Run(void (Al::*run)(const M*, const M*, M*) const) : matrices_(run) {}
    Run(void (Al::*run)(const M*, const V*, V*) const) : from_right_(run) {}
    Run(void (Al::*run)(const V*, const M*, V*) const) : from_left_(run) {}

    bool of_matrices() const { return matrices_ != nullptr; }
    void operator()(const Al& al, const M* A, const M* B, M* C) const {
        if (of_matrices()) return (al.*matrices_)(A, B, C);
        V x, y;
        B->gc_Get_Column(0, 0, B->mh(), &x);
        C->gc_Get_Column(0, 0, C->mh(), &y);
        V* const out = B == C ? &x : &y;
        if (from_right_ != nullptr)
            (al.*from_right_)(A, &x, out);
        else
            (al.*from_left_)(&x, A, out);
        *C = column_of(*out);
    }

private:
    void (Al::*matrices_)(const M*, const M*, M*) const = nullptr;
    void (Al::*from_right_)(const M*, const V*, V*) const = nullptr;
    void (Al::*from_left_)(const V*, const M*, V*) const = nullptr;
};

template <class Real>
struct Product {
    std::string name, mismatch;  // the name without _and_Accumulate
    Run<Real> accumulate, set;
    bool transposed_a, transposed_b;

    auto fails(const AlgebraForMatrix<Real>& al, const std::string& detail) const {
        return fails_as(al, name + "_and_Accumulate: " + detail, false);
    }
};

template <class Real>
std::array<Product<Real>, 6> products() {
    using Al = AlgebraForMatrix<Real>;
    return {{{"mmma_Multiply_Matrix_Matrix", "1", &Al::mmma_Multiply_Matrix_Matrix_and_Accumulate,
              &Al::mmm_Multiply_Matrix_Matrix, false, false},
             {"mmta_Multiply_Matrix_Tmatrix", "2", &Al::mmta_Multiply_Matrix_Tmatrix_and_Accumulate,
              &Al::mmt_Multiply_Matrix_Tmatrix, false, true},
             {"mtma_Multiply_Tmatrix_Matrix", "2", &Al::mtma_Multiply_Tmatrix_Matrix_and_Accumulate,
              &Al::mtm_Multiply_Tmatrix_Matrix, true, false},
             {"mmva_Multiply_Matrix_Vector", "2", &Al::mmva_Multiply_Matrix_Vector_and_Accumulate,
              &Al::mmv_Multiply_Matrix_Vector, false, false},
             {"mvma_Multiply_Vector_Matrix", "2", &Al::mvma_Multiply_Vector_Matrix_and_Accumulate,
              &Al::mvm_Multiply_Vector_Matrix, true, false},
             {"mvta_Multiply_Vector_Tmatrix", "2", &Al::mvta_Multiply_Vector_Tmatrix_and_Accumulate,
              &Al::mvt_Multiply_Vector_Tmatrix, false, false}}};
}

TWIN_TEST(MatrixProducts, ValuesAlsoIntoAnInput) {
    const AlgebraForMatrix<Real> al;
    AlgebraForMatrix<Real> refusing;
    const std::array<int, 3> shapes[] = {{1, 1, 1},  {4, 4, 4},  {6, 6, 2},   {30, 30, 30},
                                         {3, 70, 5}, {2, 3, 40}, {90, 35, 7}, {65, 33, 40},
                                         {2, 0, 3},  {0, 4, 2},  {5, 3, 0}};
    for (const auto& p : products<Real>())
        for (const auto& [m, k, columns] : shapes) {
            SCOPED_TRACE(p.name + " " + std::to_string(m) + " x " + std::to_string(k));
            const int n = p.set.of_matrices() ? columns : 1;
            const Matrix<Real> left = random_matrix<Real>(m, k, 1);
            const Matrix<Real> right = random_matrix<Real>(k, n, 2);
            const Matrix<Real> expected = product(left, right), old = random_matrix<Real>(m, n, 3);
            const Matrix<Real> A = p.transposed_a ? transposed(left) : left;
            const Matrix<Real> B = p.transposed_b ? transposed(right) : right;
            const auto expect = [&, k = k](const Matrix<Real>& found, const Matrix<Real>& wanted) {
                EXPECT_LT(largest_difference(found, wanted), bound<Real>(2 * k));
            };
            Matrix<Real> C = old;
            p.accumulate(al, &A, &B, &C);
            expect(C, sum_of(old, expected));
            C.c_Create(m, n, std::numeric_limits<Real>::quiet_NaN());  // which must vanish
            p.set(al, &A, &B, &C);
            expect(C, expected);
            // The set form allows what the accumulating one refuses.
            C = B;
            p.accumulate(refusing, &A, &C, &C);
            EXPECT_TRUE(C == B && p.fails(refusing, "1"));
            p.set(al, &A, &C, &C);
            expect(C, expected);
            if (!p.set.of_matrices()) continue;
            C = A;
            p.accumulate(refusing, &C, &B, &C);
            EXPECT_TRUE(C == A && p.fails(refusing, "1"));
            p.set(al, &C, &B, &C);
            expect(C, expected);
            if (m != k || k != n) continue;
            C = A;
            p.set(al, &C, &C, &C);
            expect(C, product(left, p.transposed_a || p.transposed_b ? transposed(left) : left));
        }
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(MatrixProducts, MismatchLeavesSetOutputsZeroAndOthersUntouched) {
    AlgebraForMatrix<Real> al;
    for (const auto& p : products<Real>()) {
        SCOPED_TRACE(p.name);
        const int n = p.set.of_matrices() ? 5 : 1;
        const auto A = p.transposed_a ? random_matrix<Real>(3, 2) : random_matrix<Real>(2, 3);
        const auto right = [&](int h) {
            return p.transposed_b ? random_matrix<Real>(n, h) : random_matrix<Real>(h, n);
        };
        const auto expect_failure = [&](const Matrix<Real>& found, const Matrix<Real>& expected) {
            EXPECT_TRUE(p.fails(al, p.mismatch) && found == expected);
            al.cr_Clear_Record();
        };
        const auto B = right(4), fitting = right(3), before = random_matrix<Real>(2, n, 3),
                   zero = constant_matrix<Real>(2, n);
        auto C = before;
        p.accumulate(al, &A, &B, &C);
        expect_failure(C, before);
        p.set(al, &A, &B, &(C = constant_matrix<Real>(3, 3)));
        expect_failure(C, zero);
        // An output that does not fit is a mismatch of the accumulating form only.
        p.accumulate(al, &A, &fitting, &(C = constant_matrix<Real>(5, n)));
        expect_failure(C, constant_matrix<Real>(5, n));
        // The aliased operand is lost to the zeros, too.
        p.set(al, &A, &(C = B), &C);
        expect_failure(C, zero);
        if (!p.set.of_matrices()) continue;
        p.set(al, &(C = A), &B, &C);
        expect_failure(C, zero);
    }
}

TWIN_TEST(MatrixProducts, OuterProductsAndForms) {
    AlgebraForMatrix<Real> al;
    for (const auto& [h, w] : {std::pair(1, 1), {5, 3}, {300, 40}}) {
        const auto x = random_vector<Real>(h, 1), y = random_vector<Real>(w, 2);
        const auto A = random_matrix<Real>(h, w, 3), column = column_of(x);
        const auto outer = product(column, transposed(column_of(y)));
        auto M = A;
        al.mvva_Multiply_Vector_Vector_and_Accumulate(&x, &y, &M);
        EXPECT_LT(largest_difference(M, sum_of(A, outer)), bound<Real>(2));
        al.mvv_Multiply_Vector_Vector(&x, &y, &(M = constant_matrix<Real>(2, 3)));
        EXPECT_LT(largest_difference(M, outer), bound<Real>(1));
        al.mvv_Multiply_Vector_Vector(&x, &x, &M);
        EXPECT_LT(largest_difference(M, product(column, transposed(column))), bound<Real>(1));

        const Real form = product(transposed(column), product(A, column_of(y)))[0][0];
        Real s = 1;
        al.mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate(&x, &A, &y, s);
        EXPECT_LT(std::abs(s - 1 - form), bound<Real>(h * w));
        auto z = x;  // the result may lie within an operand
        al.mvmv_Multiply_Vector_Matrix_Vector(&z, &A, &y, z[0]);
        EXPECT_LT(std::abs(z[0] - form), bound<Real>(h * w));
    }
    EXPECT_TRUE(never_failed(al));

    const auto x = random_vector<Real>(3, 1);
    const auto kept = random_matrix<Real>(3, 2);
    auto out = kept;
    Real s = 5;
    EXPECT_REFUSED(mvva_Multiply_Vector_Vector_and_Accumulate, &x, &x, &out);
    EXPECT_REFUSED(mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate, &x, &kept, &x, s);
    EXPECT_EQ(s, 5);
    al.mvmv_Multiply_Vector_Matrix_Vector(&x, &kept, &x, s);
    EXPECT_TRUE(fails_as(al, "mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate: 1", false) &&
                s == 0);
}

TWIN_TEST(MatrixProducts, DiagonalFactors) {
    const AlgebraForMatrix<Real> al;
    const auto d = random_vector<Real>(40, 9);
    const std::array<int, 3> shapes[] = {{1, 1, 1}, {4, 5, 5}, {3, 30, 20}, {3, 20, 30},
                                         {2, 0, 3}, {2, 3, 0}, {0, 2, 3}};
    for (const auto& [h, w, wD] : shapes) {
        const auto A = random_matrix<Real>(h, w, 1), old = random_matrix<Real>(h, wD, 2);
        const auto D = diagonal_of(d, w, wD), expected = product(A, D);
        auto C = old;
        al.mmda_Multiply_Matrix_Dmatrix_and_Accumulate(wD, &A, &d, &C);
        EXPECT_LT(largest_difference(C, sum_of(old, expected)), bound<Real>(2));
        al.mmd_Multiply_Matrix_Dmatrix(wD, &A, &d, &(C = constant_matrix<Real>(2, 2)));
        EXPECT_LT(largest_difference(C, expected), bound<Real>(1));
        al.mmd_Multiply_Matrix_Dmatrix(wD, &(C = A), &d, &C);
        EXPECT_LT(largest_difference(C, expected), bound<Real>(1));

        const auto x = random_vector<Real>(w, 4), y = random_vector<Real>(wD, 5);
        const auto scaled = product(transposed(D), column_of(x));
        auto z = y;
        al.mvda_Multiply_Vector_Dmatrix_and_Accumulate(w, wD, &x, &d, &z);
        EXPECT_LT(largest_difference(column_of(z), sum_of(column_of(y), scaled)), bound<Real>(2));
        al.mvd_Multiply_Vector_Dmatrix(w, wD, &(z = x), &d, &z);
        EXPECT_LT(largest_difference(column_of(z), scaled), bound<Real>(1));
        al.mvd_Multiply_Vector_Dmatrix(w, wD, &x, &(z = d), &z);
        EXPECT_LT(largest_difference(column_of(z), scaled), bound<Real>(1));
        const Real form = product(transposed(scaled), column_of(y))[0][0];
        Real s = 1;
        al.mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate(w, wD, &x, &d, &y, s);
        EXPECT_LT(std::abs(s - 1 - form), bound<Real>(wD));
        al.mvdv_Multiply_Vector_Dmatrix_Vector(w, wD, &x, &d, &y, s);
        EXPECT_LT(std::abs(s - form), bound<Real>(wD));
    }
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(MatrixProducts, DiagonalFactorsThatDoNotFit) {
    AlgebraForMatrix<Real> al;
    const auto A = random_matrix<Real>(2, 3, 1), kept = random_matrix<Real>(2, 4, 2);
    const auto d = random_vector<Real>(3, 3), shorter = random_vector<Real>(2, 3);
    auto out = kept;
    EXPECT_REFUSED(mmda_Multiply_Matrix_Dmatrix_and_Accumulate, 4, &A, &shorter, &out);
    EXPECT_REFUSED(mmda_Multiply_Matrix_Dmatrix_and_Accumulate, 3, &A, &d, &out);
    EXPECT_REFUSED(mmda_Multiply_Matrix_Dmatrix_and_Accumulate, -1, &A, &d, &out);
    EXPECT_REFUSED(mmda_Multiply_Matrix_Dmatrix_and_Accumulate, 4, &out, &d, &out);
    al.mmd_Multiply_Matrix_Dmatrix(3, &A, &shorter, &out);
    EXPECT_TRUE(fails_as(al, "mmda_Multiply_Matrix_Dmatrix_and_Accumulate: 1", false));
    EXPECT_TRUE(out == constant_matrix<Real>(2, 3));
    al.mmd_Multiply_Matrix_Dmatrix(-1, &out, &d, &out);
    const std::string refused = out.gcn_Get_Class_Name().c_str() + std::string("::c_Create: 1");
    const char* const not_sized = "mmd_Multiply_Matrix_Dmatrix: cannot size the output";
    EXPECT_TRUE(fails_as(al, {refused, not_sized}, false) && out == constant_matrix<Real>(2, 3));

    auto x = d, y = random_vector<Real>(5, 5);
    const auto old = y;
    EXPECT_FAILED("2", mvda_Multiply_Vector_Dmatrix_and_Accumulate, 3, 5, &x, &shorter, &y);
    EXPECT_FAILED("2", mvda_Multiply_Vector_Dmatrix_and_Accumulate, 3, 4, &x, &d, &y);
    EXPECT_FAILED("1", mvda_Multiply_Vector_Dmatrix_and_Accumulate, 3, 3, &x, &d, &x);
    EXPECT_FAILED("1", mvda_Multiply_Vector_Dmatrix_and_Accumulate, 3, 3, &d, &x, &x);
    EXPECT_TRUE(y == old && x == d);
    al.mvd_Multiply_Vector_Dmatrix(4, 2, &x, &d, &y);
    EXPECT_TRUE(fails_as(al, "mvda_Multiply_Vector_Dmatrix_and_Accumulate: 2", false));
    EXPECT_TRUE(y == vector_of<Real>({0, 0}));
    Real s = 5;
    al.mvdv_Multiply_Vector_Dmatrix_Vector(3, 3, &x, &d, &y, s);
    EXPECT_TRUE(fails_as(al, "mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate: 1", false) &&
                s == 0);
}

TWIN_TEST(MatrixProducts, ChainsIntoAnyOperand) {
    using M = Matrix<Real>;
    using V = Vector<Real>;
    const AlgebraForMatrix<Real> al;
    const double tolerance = bound<Real>(90) * 200;
    const M operands[7] = {random_matrix<Real>(3, 30, 1),  random_matrix<Real>(30, 20, 2),
                           random_matrix<Real>(20, 40, 3), random_matrix<Real>(40, 5, 4),
                           random_matrix<Real>(20, 6, 7),  random_matrix<Real>(6, 20, 8)};
    const M &A = operands[0], &B = operands[1], &C = operands[2], &D = operands[3];
    const V d = random_vector<Real>(25, 5);
    const M AB = product(A, B), ABC = product(AB, C), ABCD = product(AB, product(C, D));
    const M AD = product(A, diagonal_of(d, 30, 20));
    const std::pair<std::function<void(M*, M*)>, M> chains[] = {
        {[&](M* m, M* out) { al.mmm_Multiply_Matrix_Matrix(m, m + 1, m + 2, m + 3, out); }, ABCD},
        {[&](M* m, M* out) { al.mmm_Multiply_Matrix_Matrix(m, m + 1, m + 2, out); }, ABC},
        {[&](M* m, M* out) { al.mmdm_Multiply_Matrix_Dmatrix_Matrix(m, &d, m + 4, out); },
         product(AD, operands[4])},
        {[&](M* m, M* out) { al.mmdt_Multiply_Matrix_Dmatrix_Tmatrix(m, &d, m + 5, out); },
         product(AD, transposed(operands[5]))}};
    for (const auto& [run, expected] : chains)
        for (int target = 0; target < 7; ++target) {
            M m[7];
            std::copy_n(operands, 7, m);
            run(m, m + target);
            EXPECT_LT(largest_difference(m[target], expected), tolerance) << target;
        }
    const std::pair<std::function<void(const V*, V*)>, M> of_vectors[] = {
        {[&](const V* x, V* y) { al.mmv_Multiply_Matrix_Vector(&A, &B, x, y); }, AB},
        {[&](const V* x, V* y) { al.mmv_Multiply_Matrix_Vector(&A, &B, &C, x, y); }, ABC},
        {[&](const V* x, V* y) { al.mmv_Multiply_Matrix_Vector(&A, &B, &C, &D, x, y); }, ABCD},
        {[&](const V* x, V* y) { al.mvm_Multiply_Vector_Matrix(x, &A, &B, y); }, transposed(AB)},
        {[&](const V* x, V* y) { al.mvm_Multiply_Vector_Matrix(x, &A, &B, &C, y); },
         transposed(ABC)}};
    for (const auto& [run, expected] : of_vectors) {
        V x = random_vector<Real>(expected.mw(), 6), y;
        const M wanted = product(expected, column_of(x));
        run(&x, &y);
        EXPECT_LT(largest_difference(column_of(y), wanted), tolerance);
        run(&x, &x);
        EXPECT_TRUE(x == y);
    }
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(MatrixProducts, ChainsThatDoNotFitLeaveZeros) {
    const AlgebraForMatrix<Real> al;
    const auto A = random_matrix<Real>(2, 3, 1), B = random_matrix<Real>(3, 4, 2),
               C = random_matrix<Real>(5, 6, 3);
    const auto d = random_vector<Real>(2, 4);
    Matrix<Real> out;
    const auto expect_zeros = [&](int h, int w, const char* records) {
        EXPECT_TRUE(fails_as(al, records, false));
        EXPECT_TRUE(out == constant_matrix<Real>(h, w));
        out = random_matrix<Real>(1, 1, 5);
    };
    al.mmm_Multiply_Matrix_Matrix(&A, &B, &C, &out);
    expect_zeros(2, 6, "mmma_Multiply_Matrix_Matrix_and_Accumulate: 1");
    al.mmm_Multiply_Matrix_Matrix(&C, &A, &B, &out);
    expect_zeros(5, 4, "mmma_Multiply_Matrix_Matrix_and_Accumulate: 1");
    al.mmm_Multiply_Matrix_Matrix(&A, &B, &A, &B, &out);
    expect_zeros(2, 4, "mmma_Multiply_Matrix_Matrix_and_Accumulate: 1");
    al.mmdm_Multiply_Matrix_Dmatrix_Matrix(&A, &d, &B, &out);
    expect_zeros(2, 4, "mmda_Multiply_Matrix_Dmatrix_and_Accumulate: 1");
    al.mmdt_Multiply_Matrix_Dmatrix_Tmatrix(&A, &d, &C, &out);
    expect_zeros(2, 5, "mmda_Multiply_Matrix_Dmatrix_and_Accumulate: 1");
    auto x = random_vector<Real>(6, 5);
    al.mmv_Multiply_Matrix_Vector(&A, &B, &C, &x, &x);
    EXPECT_TRUE(fails_as(al, "mmva_Multiply_Matrix_Vector_and_Accumulate: 2", false));
    EXPECT_TRUE(x == vector_of<Real>({0, 0}));
    al.mvm_Multiply_Vector_Matrix(&x, &A, &B, &C, &x);
    EXPECT_TRUE(fails_as(al, "mvma_Multiply_Vector_Matrix_and_Accumulate: 2", false));
    EXPECT_TRUE(x == vector_of<Real>({0, 0, 0, 0, 0, 0}));
}

}  // namespace
}  // namespace nequar::test
