// Sizes whose products do not fit an int: refused where they cannot be had, right where they can.
#include <nequar_algebra/nequar_algebra.h>

#include <cstdlib>
#include <fstream>
#include <limits>
#include <string>

#include "support/chain.h"
#include "support/matrix_gallery.h"
#include "support/twins.h"

namespace nequar::test {
namespace {

constexpr int kMost = std::numeric_limits<int>::max();

TWINS(LargeSizes);

// Whatever is refused leaves what was there.
TWIN_TEST(LargeSizes, ThatCannotBeHadAreRefused) {
    Matrix<Real> m;
    m.c_Create(2, 3, Real(7));
    EXPECT_EQ(m.c_Create(kMost, kMost), nullptr);
    EXPECT_STREQ(m.ged_Get_Error_Detail().c_str(), "1");  // the bytes do not fit 64 bits
    EXPECT_TRUE(m.mh() == 2 && m.mw() == 3 && m[1][2] == Real(7));

    MatrixSymmetric<Real> symmetric;
    symmetric.c_Create(2, 2, Real(5));
    symmetric.c_Create(65536, 65536);  // n (n + 1) / 2 is 2^31 + 2^15
    EXPECT_EQ(records_of(symmetric), "zivs_Initialize_and_Vector_Size: 1\nc_Create: 1");
    EXPECT_TRUE(symmetric.mh() == 2 && symmetric.vs() == 3 && symmetric[2] == Real(5));
    MatrixTriangular<Real, TriangleSide::lower> lower;
    lower.c_Create(kMost, 2);  // 2^32 - 3 elements
    EXPECT_EQ(lower.vs(), 1);
    MatrixTriangular<Real, TriangleSide::upper> upper;
    upper.c_Create(65536, 65536);
    EXPECT_EQ(upper.vs(), 1);
    MatrixBand<Real> band;
    band.c_Create(kMost, kMost, 1, 1);  // three bands
    EXPECT_EQ(band.vs(), 1);
    MatrixBandSymmetric<Real> band_symmetric;
    band_symmetric.c_Create(kMost, 1);
    EXPECT_EQ(band_symmetric.vs(), 1);

    SparseMatrix<Real> sparse;
    EXPECT_FALSE(sparse.czm(3, kMost, 1));  // one pointer more than there are columns
    EXPECT_FALSE(sparse.cim(3, kMost));
    EXPECT_TRUE(sparse.czm(kMost, 3, 1) && sparse.se(2, kMost - 1, Real(4)));
    Real value = 0;
    EXPECT_TRUE(sparse.ge(2, kMost - 1, &value) && value == Real(4));
    EXPECT_FALSE(sparse.ivrb(2, kMost - 1, 1, kMost));
    SparseMatrix<Real> turned;
    EXPECT_FALSE(sparse.t(&turned));  // kMost columns

    GrowableVector<Real> grown;
    EXPECT_FALSE(grown.mbs(-1));
    CNqXRmatrix rows;
    EXPECT_FALSE(rows.in_Initialize(kMost, kMost));
}

long long free_gigabytes() {
    std::ifstream file("/proc/meminfo");
    std::string name;
    long long kilobytes = 0;
    for (std::string unit; file >> name >> kilobytes; std::getline(file, unit))
        if (name == "MemAvailable:") return kilobytes >> 20;
    return 0;
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
    ASSERT_GT(last, std::ptrdiff_t(kMost));
    a[0][0] = 2;
    a[0][n - 1] = 3;
    a[n - 1][0] = 4;
    a[n - 1][n - 1] = 5;
    EXPECT_TRUE(a.p()[0][last] == 5 && a.p()[0][last - n + 1] == 4);

    CNqVectorFloat part, y;
    a.gr_Get_Row(n - 1, n - 1, 1, &part);
    EXPECT_EQ(part[0], 5);
    a.gc_Get_Column(n - 1, n - 1, 1, &part);
    EXPECT_EQ(part[0], 5);
    const LCNqAlgebra_for_MatrixFloat algebra;
    CNqVectorFloat x;
    x.c_Create(n, 0.0F);
    x[0] = 1;
    x[n - 1] = 10;
    algebra.mmv_Multiply_Matrix_Vector(&a, &x, &y);
    EXPECT_TRUE(y.vs() == n && y[0] == 32 && y[n - 1] == 54 && y[n / 2] == 0);
    algebra.tpms_Transpose_Matrix_Square(&a);
    algebra.mvm_Multiply_Vector_Matrix(&x, &a, &y);
    EXPECT_TRUE(y[0] == 32 && y[n - 1] == 54 && y[n / 2] == 0);
    algebra.mmc_Multiply_Matrix_Constant(&a, 2, &a);
    EXPECT_TRUE(a.p()[0][last] == 10 && a[0][0] == 4 && a[0][n - 1] == 8);
    EXPECT_STREQ(algebra.ged_Get_Error_Detail().c_str(), "");
}

}  // namespace
}  // namespace nequar::test
