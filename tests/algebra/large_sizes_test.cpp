// Sizes whose products do not fit an int, where they can be had.
#include <gtest/gtest.h>
#include <nequar_algebra/nequar_algebra.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace nequar::test {
namespace {

long long free_gigabytes() {
    std::ifstream file("/proc/meminfo");
    std::string line;
    while (std::getline(file, line) && line.rfind("MemAvailable:", 0) != 0) {
    }
    return line.empty() ? 0 : std::atoll(line.c_str() + line.find(':') + 1) >> 20;
}

// 46400 x 46400 floats, 8.6 GB: more elements than an int can count.
TEST(LargeMatrix, MoreElementsThanAnIntCanCount) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizers need more memory than there is";
#endif
    if (std::getenv("NEQUAR_TEST_LARGE") == nullptr)
        GTEST_SKIP() << "takes 8.6 GB; set NEQUAR_TEST_LARGE to run it";
    if (free_gigabytes() < 11) GTEST_SKIP() << "not enough memory is free";
    constexpr int n = 46400;
    CNqMatrixFloat a;
    ASSERT_NE(a.c_Create(n, n, 0.0F), nullptr);
    const std::ptrdiff_t last = std::ptrdiff_t(n) * n - 1;
    a[0][0] = 2;
    a[0][n - 1] = 3;
    a[n - 1][0] = 4;
    a[n - 1][n - 1] = 5;
    EXPECT_TRUE(a.p()[0][last] == 5 && a.p()[0][last - n + 1] == 4);

    const LCNqAlgebra_for_MatrixFloat algebra;
    CNqVectorFloat x, y;
    a.gr_Get_Row(n - 1, 0, n, &x);
    EXPECT_TRUE(x[0] == 4 && x[n - 1] == 5);
    a.gc_Get_Column(n - 1, 0, n, &x);
    EXPECT_TRUE(x[0] == 3 && x[n - 1] == 5);
    algebra.mmv_Multiply_Matrix_Vector(&a, &x, &y);
    EXPECT_TRUE(y.vs() == n && y[0] == 21 && y[n - 1] == 37 && y[n / 2] == 0);
    algebra.tpms_Transpose_Matrix_Square(&a);
    algebra.mvm_Multiply_Vector_Matrix(&x, &a, &y);
    EXPECT_TRUE(y[0] == 21 && y[n - 1] == 37 && y[n / 2] == 0);
    algebra.mmc_Multiply_Matrix_Constant(&a, 2, &a);
    EXPECT_TRUE(a.p()[0][last] == 10 && a[0][n - 1] == 8);
    EXPECT_EQ(algebra.ged_Get_Error_Detail(), "");
}

}  // namespace
}  // namespace nequar::test
