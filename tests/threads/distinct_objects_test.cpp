// Threads that use objects of their own: each gets what a single thread gets, bit for bit, its
// failures stand on its own objects, and the process's last message is always a whole one. To be
// run under the thread sanitizer, too.
#include <gtest/gtest.h>
#include <nequar_algebra/nequar_algebra.h>

#include <cstring>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "support/matrix_gallery.h"

namespace nequar::test {
namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 6;

template <class Real>
void add_to(std::vector<double>& all, const Matrix<Real>& a) {
    for (int i = 0; i < a.mh(); ++i) all.insert(all.end(), a[i], a[i] + a.mw());
}

template <class Real>
void solve_and_decompose(std::uint64_t seed, std::vector<double>& all) {
    const int n = 20 + static_cast<int>(seed % 3) * 40;
    LinearEquation<Real> tool;
    const Matrix<Real> a = dominant_matrix<Real>(n, seed), b = random_matrix<Real>(n, 3, seed);
    Matrix<Real> x;
    for (int code = 0; code < 10; ++code)
        if (tool.sle_Solve_Linear_Equation(code, &a, &b, &x)) add_to(all, x);
    MatrixDiagonal<Real> d;
    int count = 0;
    tool.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(&a, nullptr, &d, &x, 1000,
                                                                      count);
    add_to(all, x);
    tool.fin_Find_Input_Null_vector_space(&a, Real(0.5), count, &x, nullptr, nullptr, nullptr);
    add_to(all, x);
    AlgebraForMatrixSpecial<Real> algebra;
    algebra.mmm_Multiply_Matrix_Matrix(&a, &a, &a, &x);
    algebra.imt_Inverse_Matrix_for_Triangular_matrix(true, &x, &x);
    add_to(all, x);
}

template <class Real>
void use_structured_and_sparse(std::uint64_t seed, std::vector<double>& all) {
    const int n = 30 + static_cast<int>(seed % 5);
    Matrix<Real> x = dominant_matrix<Real>(n, seed);
    MatrixBand<Real> band;
    band.i_Import(&x, 3, 4);
    band.e_Export(&x, true);
    add_to(all, x);
    Vector<Real> row;
    row.c_Create(n);
    for (int i = 0; i < n; ++i) row[i] = Real(1) / Real(1 + i);
    MatrixToeplitzSymmetric<Real> toeplitz;
    toeplitz.im_Import(n, row);
    toeplitz.fimt_Find_Inverse_Matrix_by_Trench(&x, nullptr);
    add_to(all, x);
    SparseMatrix<Real> m;
    m.im(&x);
    m.t(&m);
    m.amm(&m);
    m.ex(&x);
    add_to(all, x);
    EXPECT_TRUE(m.u_tot_Test_Operations_Total(5, 6, 0.4, -3, 3, 2, 1, 1, 1, 1, 1));
}

template <class Real>
void draw_and_analyse(std::uint64_t seed, std::vector<double>& all) {
    RandomNumberGeneratorAdvanced<Real> random;
    Vector<Real> x;
    PrincipalComponents<Real> pca;
    pca.c_Create(8, 5, Real(0.05), Real(0.1));
    for (int i = 0; i < 8; ++i) {
        random.gng(0, 1, 5, x);  // seeded by the clock: not the same each time
        random.ss_Set_Seed(static_cast<int>(seed) + i);
        for (int k = 0; k < 5; ++k) all.push_back(x[k] = random.gu(-1, 1));
        pca.inv_INput_a_Vector(x, nullptr);
    }
    EXPECT_TRUE(pca.cevvcm_Calculate_Eigen_Values_and_Vectors_of_Covariance_Matrix());
    all.push_back(double(pca.rre()));
}

// Failures of this thread's objects, and the message that some thread has left last.
template <class Real>
void fail_and_look(std::uint64_t, std::vector<double>&) {
    const LinearEquation<Real> tool;
    const Matrix<Real> a = random_matrix<Real>(3, 4);
    Matrix<Real> x;
    EXPECT_FALSE(tool.im_Inverse_Matrix(2, &a, &x));
    EXPECT_STREQ(tool.ged_Get_Error_Detail().c_str(), "5");
    x.c_Create(-1, 2);
    const std::string name = x.gcn_Get_Class_Name().c_str();
    EXPECT_EQ(x.grm_Get_Recorded_Message().c_str(), name + "::c_Create: 1");
    const std::string last = Nq_Last_Message().c_str();
    // Any class that the threads use, but one message and whole.
    static const std::regex whole("L?CNq[A-Za-z_]+::[A-Za-z0-9_]+: [^:]+");
    EXPECT_TRUE(std::regex_match(last, whole)) << last;
}

std::vector<double> work(int thread) {
    using Family = void (*)(std::uint64_t, std::vector<double>&);
    constexpr Family families[][2] = {
        {solve_and_decompose<double>, solve_and_decompose<float>},
        {use_structured_and_sparse<double>, use_structured_and_sparse<float>},
        {draw_and_analyse<double>, draw_and_analyse<float>},
        {fail_and_look<double>, fail_and_look<float>}};
    std::vector<double> all;
    for (int round = 0; round < kRounds; ++round)
        for (int step = 0; step < 4; ++step)  // each thread begins with another family
            for (const Family use : families[(step + thread) % 4])
                use(static_cast<std::uint64_t>(thread * kRounds + round), all);
    return all;
}

TEST(Threads, DistinctObjectsAreIndependent) {
    std::vector<std::vector<double>> found(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([t, &found] { found[std::size_t(t)] = work(t); });
    for (std::thread& thread : threads) thread.join();
    for (int t = 0; t < kThreads; ++t) {
        SCOPED_TRACE(t);
        const std::vector<double> alone = work(t), &shared = found[std::size_t(t)];
        ASSERT_GT(alone.size(), 1000u);
        ASSERT_EQ(shared.size(), alone.size());
        EXPECT_EQ(std::memcmp(shared.data(), alone.data(), alone.size() * sizeof(double)), 0);
    }
}

}  // namespace
}  // namespace nequar::test
