// What all packed matrices have in common: copies, moves, storage that is also a vector, arrays
// inside the object, comparison and printing.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <sstream>
#include <utility>

#include "structured/packed_support.h"

namespace {

using namespace packed_test;

template <class Kind>
class Packed : public testing::Test {};
using Kinds = testing::Types<Diagonal, DiagonalFloat, Symmetric, SymmetricFloat, Lower, LowerFloat,
                             Upper, UpperFloat>;
TYPED_TEST_SUITE(Packed, Kinds);

template <class Kind>
typename Kind::Packed numbered_packed(int n) {
    typename Kind::Packed packed;
    packed.c_Create(n, n);
    for (int i = 0; i < packed.vs(); ++i) packed[i] = typename Kind::Real(i + 1);
    return packed;
}

TYPED_TEST(Packed, CopiesAreDeepAndMovesLeaveAnEmptyMatrix) {
    using Matrix = typename TypeParam::Packed;
    using Real = typename TypeParam::Real;
    Matrix initial;
    EXPECT_STREQ(initial.gcn_Get_Class_Name().c_str(), TypeParam::name);
    EXPECT_EQ(initial.mh() * initial.mw() * initial.vs(), 1);
    Matrix a = numbered_packed<TypeParam>(4);
    const Matrix original = a;
    a.cp_Copy(&a);
    a = *&a;
    EXPECT_TRUE(a == original);
    Matrix copy;
    copy.cp_Copy(&a);
    copy[0] = Real(-1);
    EXPECT_TRUE(a == original);
    EXPECT_TRUE(copy != a);

    std::vector<Matrix> several(3, a);
    several.emplace_back(std::move(a));
    several.insert(several.begin(), copy);
    EXPECT_TRUE(several.back() == original);
    EXPECT_TRUE(several.front() == copy);

    // What was moved from is empty, and can be copied, exported and used again.
    EXPECT_EQ(a.vs() + a.mh() + a.mw(), 0);  // NOLINT: this state is promised
    const Matrix of_empty(a);
    EXPECT_TRUE(of_empty == a);
    nequar::Matrix<Real> dense;
    dense.c_Create(2, 2);
    export_to<TypeParam>(a, dense);
    EXPECT_EQ(dense.mh(), 0);
    EXPECT_EQ(failures_of(a), "");
    copy = a;
    EXPECT_EQ(copy.vs(), 0);
    EXPECT_STREQ(copy.gcn_Get_Class_Name().c_str(), TypeParam::name);
    a.c_Create(4, 4);
    a = original;
    EXPECT_TRUE(a == original);
    a = std::move(several.front());
    EXPECT_EQ(a[0], Real(-1));
}

// A packed matrix is also a vector, which anyone may resize.
TYPED_TEST(Packed, NothingIsAddressedBeyondTheVector) {
    using Real = typename TypeParam::Real;
    const auto original = numbered_packed<TypeParam>(4);
    auto emptied = original;
    auto moved_from = original;
    const auto taken = std::move(moved_from);
    static_cast<nequar::Vector<Real>&>(emptied).c_Create(0);
    for (auto* const packed : {&emptied, &moved_from}) {
        EXPECT_EQ(packed->ge_Get_Element(-1, 7), Real(0));
        EXPECT_EQ(failures_of(*packed), TypeParam::element_failure);
        packed->se_Set_Element(0, 0, Real(1));
        EXPECT_EQ(failures_of(*packed), TypeParam::setting_failure);
        Real out = -1;
        int count = -1;
        packed->gb_Get_Band(0, 0, &out, count);
        EXPECT_EQ(failures_of(*packed), TypeParam::getting_band_failure);
        packed->sb_Set_Band(0, 0, Real(1), count);
        EXPECT_EQ(failures_of(*packed), TypeParam::setting_band_failure);
        packed->sb_Set_Band(0, 0, &out, count);
        EXPECT_EQ(failures_of(*packed), TypeParam::setting_band_failure);
        EXPECT_EQ(out, Real(-1));
        EXPECT_EQ(count, -1);
        std::ostringstream text;
        text << *packed;
    }
    nequar::Matrix<Real> dense;
    export_to<TypeParam>(emptied, dense);
    EXPECT_EQ(failures_of(emptied), "e_Export: 2");
    EXPECT_EQ(dense.mh(), 0);

    // What is left of a shortened vector can still be read; a copy has zeros for the rest.
    auto shortened = original;
    static_cast<nequar::Vector<Real>&>(shortened).c_Create(3);
    EXPECT_EQ(shortened.ge_Get_Element(2, 2), Real(3));
    EXPECT_EQ(failures_of(shortened), "");
    EXPECT_EQ(shortened.ge_Get_Element(3, 3), Real(0));
    EXPECT_EQ(failures_of(shortened), TypeParam::element_failure);
    const auto copy = shortened;
    EXPECT_TRUE(copy != shortened);
    export_to<TypeParam>(copy, dense);
    EXPECT_EQ(dense[2][2], Real(3));
    EXPECT_EQ(dense[3][3], Real(0));

    // A longer one does no harm.
    auto lengthened = original;
    static_cast<nequar::Vector<Real>&>(lengthened).c_Create(20, Real(3));
    export_to<TypeParam>(lengthened, dense);
    EXPECT_EQ(dense[3][3], Real(3));
    EXPECT_EQ(failures_of(lengthened), "");
}

TYPED_TEST(Packed, ArraysInsideTheObjectItself) {
    using Real = typename TypeParam::Real;
    const auto original = numbered_packed<TypeParam>(30);
    const std::vector<Real> elements(original.p(), original.p() + original.vs());
    for (const int n : {2, 5}) {
        auto inside = original;
        auto apart = original;
        import_square<TypeParam>(inside, n, inside.p() + 3);
        import_square<TypeParam>(apart, n, elements.data() + 3);
        EXPECT_TRUE(inside == apart);
    }
    auto inside = original;
    auto apart = original;
    int count = 0;
    inside.gb_Get_Band(0, 0, inside.p(), count);
    EXPECT_TRUE(inside == original);
    if constexpr (!is_diagonal<TypeParam>) {
        std::vector<Real> line(30);
        int first = 0;
        int last = 0;
        original.gr_Get_Row(3, line.data(), first, last);
        inside.gr_Get_Row(3, inside.p() + 1, first, last);
        EXPECT_TRUE(std::equal(line.begin(), line.end(), inside.p() + 1));
        if constexpr (!is_symmetric<TypeParam>) {
            inside = original;
            inside.sr_Set_Row(3, inside.p() + 2, first, last);
            apart.sr_Set_Row(3, elements.data() + 2, first, last);
            EXPECT_TRUE(inside == apart);
            // One line of a triangle fills its own array of equal size.
            int height = 0;
            int width = 0;
            is_lower<TypeParam> ? inside.c_Create(5, 1, Real(3)) : inside.c_Create(1, 5, Real(3));
            apart = inside;
            inside.e_Export(true, &height, &width, inside.p(), true);
            EXPECT_TRUE(inside == apart);
        }
    }
}

TYPED_TEST(Packed, ComparesAndPrintsLikeTheDenseMatrix) {
    using Real = typename TypeParam::Real;
    for (const int n : {3, 20}) {
        const auto packed = numbered_packed<TypeParam>(n);
        nequar::Matrix<Real> dense;
        export_to<TypeParam>(packed, dense);
        std::ostringstream packed_text;
        std::ostringstream dense_text;
        packed_text << packed;
        dense_text << dense;
        EXPECT_EQ(packed_text.str(), dense_text.str());
    }
    auto packed = numbered_packed<TypeParam>(2);
    packed[1] = std::numeric_limits<Real>::quiet_NaN();
    EXPECT_FALSE(packed == packed);
    if constexpr (!is_symmetric<TypeParam>) {
        typename TypeParam::Packed wide;
        typename TypeParam::Packed tall;
        wide.c_Create(2, 5, Real(1));
        tall.c_Create(5, 2, Real(1));
        EXPECT_FALSE(wide == tall);
        is_lower<TypeParam> ? tall.c_Create(2, 2, Real(1)) : wide.c_Create(2, 2, Real(1));
        EXPECT_FALSE(wide == tall);
    }
}

}  // namespace
