// Sums and element by element products of vectors and matrices.
#include <algorithm>

#include "algebra/plain.h"

namespace nequar::test {
namespace {

template <class Real>
class Sums : public testing::Test {
protected:
    // run(v, out) sets out = a v[0] + b v[1] + c v[2] + d v[3] + constant + product v[0] v[1].
    template <class Operand>
    struct Sum {
        std::function<void(Operand*, Operand*)> run;
        Real a, b = 0, c = 0, d = 0, constant = 0, product = 0;
    };

    template <class Operand>
    static Operand operand(int h, int w, unsigned seed) {
        if constexpr (std::is_same_v<Operand, Matrix<Real>>)
            return random_matrix<Real>(h, w, seed);
        else
            return random_vector<Real>(h * w, seed);
    }
    static Real* elements(Matrix<Real>& m) { return m.p()[0]; }
    static Real* elements(Vector<Real>& v) { return v.p(); }

    // Into each operand, which keeps its storage, and into one of another size.
    template <class Operand, std::size_t n>
    static void expect_sums(const Sum<Operand> (&sums)[n]) {
        for (std::size_t i = 0; i < n; ++i)
            for (const auto& [h, w] :
                 {std::pair(0, 0), {3, 0}, {1, 1}, {7, 1}, {600, 1}, {1025, 1}, {40, 30}})
                for (int target = 0; target < 5; ++target) {
                    SCOPED_TRACE(testing::Message() << "sum " << i << " into " << target);
                    Operand v[5], expected = operand<Operand>(h, w, 9);
                    for (int k = 0; k < 4; ++k) v[k] = operand<Operand>(h, w, unsigned(k));
                    v[4] = operand<Operand>(2, 5, 9);
                    const Sum<Operand>& s = sums[i];
                    for (int k = 0; k < h * w; ++k) {
                        const Real a = elements(v[0])[k], b = elements(v[1])[k];
                        elements(expected)[k] = s.a * a + s.b * b + s.c * elements(v[2])[k] +
                                                s.d * elements(v[3])[k] + s.constant +
                                                s.product * a * b;
                    }
                    const Real* const storage = elements(v[target]);
                    s.run(v, v + target);
                    EXPECT_LT(largest_difference(v[target], expected), bound<Real>(20));
                    EXPECT_TRUE(target == 4 || elements(v[target]) == storage);
                }
    }
};

TWIN_TEST(Sums, OfVectorsIntoAnyOperand) {
    using V = Vector<Real>;
    const AlgebraForMatrix<Real> al;
    const typename TestFixture::template Sum<V> sums[] = {
        {[&](V* v, V* out) { al.avv_Add_Vector_Vector(v, v + 1, out); }, 1, 1},
        {[&](V* v, V* out) { al.avv_Add_Vector_Vector(v, v + 1, v + 2, out); }, 1, 1, 1},
        {[&](V* v, V* out) { al.avv_Add_Vector_Vector(v, v + 1, v + 2, v + 3, out); }, 1, 1, 1, 1},
        {[&](V* v, V* out) { al.avvw_Add_Vector_Vector_with_Weight(v, v + 1, 2, -3, out); }, 2, -3},
        {[&](V* v, V* out) {
             al.avvw_Add_Vector_Vector_with_Weight(v, v + 1, v + 2, 2, -3, 5, out);
         },
         2, -3, 5},
        {[&](V* v, V* out) {
             al.avvw_Add_Vector_Vector_with_Weight(v, v + 1, v + 2, v + 3, 2, -3, 5, 7, out);
         },
         2, -3, 5, 7},
        {[&](V* v, V* out) { al.svv_Subtract_Vector_Vector(v, v + 1, out); }, 1, -1},
        {[&](V* v, V* out) { al.mvve_Multiply_Vector_Vector_Elementwise(v, v + 1, out); }, 0, 0, 0,
         0, 0, 1},
        {[&](V* v, V* out) { al.avc_Add_Vector_Constant(v, 3, out); }, 1, 0, 0, 0, 3},
        {[&](V* v, V* out) { al.mvc_Multiply_Vector_Constant(v, 3, out); }, 3}};
    this->expect_sums(sums);
    EXPECT_TRUE(never_failed(al));
    V x = vector_of<Real>({1, -2});  // in every place
    al.avv_Add_Vector_Vector(&x, &x, &x, &x, &x);
    EXPECT_TRUE(x == vector_of<Real>({4, -8}));
}

TWIN_TEST(Sums, OfMatricesIntoAnyOperand) {
    using M = Matrix<Real>;
    const AlgebraForMatrix<Real> al;
    const typename TestFixture::template Sum<M> sums[] = {
        {[&](M* m, M* out) { al.amm_Add_Matrix_Matrix(m, m + 1, out); }, 1, 1},
        {[&](M* m, M* out) { al.amm_Add_Matrix_Matrix(m, m + 1, m + 2, out); }, 1, 1, 1},
        {[&](M* m, M* out) { al.amm_Add_Matrix_Matrix(m, m + 1, m + 2, m + 3, out); }, 1, 1, 1, 1},
        {[&](M* m, M* out) { al.ammw_Add_Matrix_Matrix_with_Weight(m, m + 1, 2, -3, out); }, 2, -3},
        {[&](M* m, M* out) {
             al.ammw_Add_Matrix_Matrix_with_Weight(m, m + 1, m + 2, 2, -3, 5, out);
         },
         2, -3, 5},
        {[&](M* m, M* out) {
             al.ammw_Add_Matrix_Matrix_with_Weight(m, m + 1, m + 2, m + 3, 2, -3, 5, 7, out);
         },
         2, -3, 5, 7},
        {[&](M* m, M* out) { al.smm_Subtract_Matrix_Matrix(m, m + 1, out); }, 1, -1},
        {[&](M* m, M* out) { al.mmme_Multiply_Matrix_Elementwise(m, m + 1, out); }, 0, 0, 0, 0, 0,
         1},
        {[&](M* m, M* out) { al.amc_Add_Matrix_Constant(m, 3, out); }, 1, 0, 0, 0, 3},
        {[&](M* m, M* out) { al.mmc_Multiply_Matrix_Constant(m, 3, out); }, 3}};
    this->expect_sums(sums);
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(Sums, WithTransposedAndDiagonalMatrices) {
    const AlgebraForMatrix<Real> al;
    for (const auto& [h, w] : {std::pair(1, 1), {3, 0}, {5, 3}, {33, 33}, {70, 130}, {200, 40}}) {
        SCOPED_TRACE(testing::Message() << h << 'x' << w);
        const Matrix<Real> operands[] = {random_matrix<Real>(h, w, 1), random_matrix<Real>(w, h, 2),
                                         random_matrix<Real>(2, 3)};
        const auto& [A, B, other] = operands;
        const auto d = random_vector<Real>(std::max(h, w), 3);
        const auto expected = sum_of(A, transposed(B), 2, -3);
        for (int target = 0; target < 3; ++target) {
            Matrix<Real> m[] = {A, B, other};
            al.amtw_Add_Matrix_Tmatrix_with_Weight(m, m + 1, 2, -3, m + target);
            EXPECT_LT(largest_difference(m[target], expected), bound<Real>(8)) << target;
            al.amdw_Add_Matrix_Dmatrix_with_Weight(&A, &d, 2, 5, m + 1);
            al.amdw_Add_Matrix_Dmatrix_with_Weight(&(m[0] = A), &d, 2, 5, m);
            EXPECT_LT(largest_difference(m[0], sum_of(A, diagonal_of(d, h, w), 2, 5)),
                      bound<Real>(8));
            EXPECT_TRUE(m[0] == m[1]);
        }
        if (h != w) continue;
        auto C = A;
        al.amtw_Add_Matrix_Tmatrix_with_Weight(&C, &C, 2, -3, &C);
        EXPECT_LT(largest_difference(C, sum_of(A, transposed(A), 2, -3)), bound<Real>(8));
    }
    EXPECT_TRUE(never_failed(al));
}

TWIN_TEST(Sums, OfDifferentShapesAreReportedAndNothingIsTouched) {
    AlgebraForMatrix<Real> al;
    {
        const auto A = random_matrix<Real>(2, 3, 1), B = random_matrix<Real>(3, 2, 2);
        const auto kept = random_matrix<Real>(4, 5, 3);
        const auto d = random_vector<Real>(1, 3);
        auto out = kept;
        EXPECT_REFUSED(amm_Add_Matrix_Matrix, &A, &B, &out);
        EXPECT_REFUSED(amm_Add_Matrix_Matrix, &A, &A, &B, &out);
        EXPECT_REFUSED(amm_Add_Matrix_Matrix, &A, &A, &A, &B, &out);
        EXPECT_REFUSED(smm_Subtract_Matrix_Matrix, &A, &B, &out);
        EXPECT_REFUSED(ammw_Add_Matrix_Matrix_with_Weight, &A, &B, 1, 2, &out);
        EXPECT_REFUSED(ammw_Add_Matrix_Matrix_with_Weight, &A, &A, &B, 1, 2, 3, &out);
        EXPECT_REFUSED(ammw_Add_Matrix_Matrix_with_Weight, &A, &A, &A, &B, 1, 2, 3, 4, &out);
        EXPECT_REFUSED(mmme_Multiply_Matrix_Elementwise, &A, &B, &out);
        EXPECT_REFUSED(amtw_Add_Matrix_Tmatrix_with_Weight, &A, &A, 1, 2, &out);
        EXPECT_REFUSED(amdw_Add_Matrix_Dmatrix_with_Weight, &A, &d, 1, 2, &out);
        EXPECT_REFUSED(cdm_Convert_Dmatrix_to_Matrix, 2, 3, &d, &out);
        EXPECT_REFUSED(tpms_Transpose_Matrix_Square, &out);
    }
    const auto a = random_vector<Real>(4, 1), b = random_vector<Real>(5, 2);
    const auto kept = vector_of<Real>({7, 8, 9});
    auto out = kept;
    EXPECT_REFUSED(avv_Add_Vector_Vector, &a, &b, &out);
    EXPECT_REFUSED(avv_Add_Vector_Vector, &a, &a, &b, &out);
    EXPECT_REFUSED(avv_Add_Vector_Vector, &a, &a, &a, &b, &out);
    EXPECT_REFUSED(avv_Add_Vector_Vector, &a, &b, &out, &out);  // a later operand is the output
    EXPECT_REFUSED(svv_Subtract_Vector_Vector, &a, &b, &out);
    EXPECT_REFUSED(avvw_Add_Vector_Vector_with_Weight, &b, &a, 1, 2, &out);
    EXPECT_REFUSED(avvw_Add_Vector_Vector_with_Weight, &a, &a, &b, 1, 2, 3, &out);
    EXPECT_REFUSED(avvw_Add_Vector_Vector_with_Weight, &a, &a, &a, &b, 1, 2, 3, 4, &out);
    EXPECT_REFUSED(mvve_Multiply_Vector_Vector_Elementwise, &a, &b, &out);
    EXPECT_REFUSED(ds_Distance_Squared_between_two_points, &a, &b);
    EXPECT_EQ(al.ds_Distance_Squared_between_two_points(&a, &b), Real(-1));
}

}  // namespace
}  // namespace nequar::test
