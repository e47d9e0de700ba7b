// What all packed matrices have in common: copies, moves, storage that is also a vector, arrays
// inside the object, comparison and printing.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <limits>
#include <sstream>
#include <utility>
#include <vector>

#include "structured/packed_support.h"

namespace {

using namespace packed_test;

template <class Kind>
class Packed : public testing::Test {
public:
    static Shape square(int n) { return {n, n, n / 2, n / 3}; }
    static typename Kind::Packed numbered(int n) {
        typename Kind::Packed packed;
        Kind::create(packed, square(n));
        for (int i = 0; i < packed.vs(); ++i) packed[i] = typename Kind::Real(i + 1);
        return packed;
    }
    static void resize(typename Kind::Packed& packed, int size) {
        static_cast<nequar::Vector<typename Kind::Real>&>(packed).c_Create(size);
    }
};
TYPED_TEST_SUITE(Packed, AllKinds);

TYPED_TEST(Packed, CopiesAreDeepAndMovesLeaveAnEmptyMatrix) {
    using Matrix = typename TypeParam::Packed;
    Matrix initial;
    EXPECT_EQ(initial.gcn_Get_Class_Name().c_str(), TypeParam::name());
    EXPECT_EQ(initial.mh() * initial.mw() * initial.vs(), 1);
    Matrix a = TestFixture::numbered(4);
    const Matrix original = a;
    a.cp_Copy(&a);
    a = *&a;
    EXPECT_TRUE(a == original);
    Matrix copy, assigned;
    copy.cp_Copy(&a);
    assigned = a;
    EXPECT_TRUE(copy == original && assigned == original);
    EXPECT_TRUE(TypeParam::exported(copy) == TypeParam::exported(original));
    copy[0] = -1;
    EXPECT_TRUE(a == original);
    EXPECT_TRUE(copy != a);

    const Matrix moved = std::move(a);
    EXPECT_TRUE(moved == original);
    // What was moved from is empty, and can be copied, exported and used again.
    EXPECT_EQ(a.vs() + a.mh() + a.mw(), 0);  // NOLINT: this state is promised
    const Matrix of_empty(a);
    EXPECT_TRUE(of_empty == a);
    EXPECT_EQ(TypeParam::exported(a).mh(), 0);
    EXPECT_EQ(failures_of(a), "");
    copy = a;
    EXPECT_EQ(copy.vs(), 0);
    EXPECT_EQ(copy.gcn_Get_Class_Name().c_str(), TypeParam::name());
    TypeParam::create(a, TestFixture::square(4));
    a = original;
    EXPECT_TRUE(a == original);
}

// A packed matrix is also a vector, which anyone may resize.
TYPED_TEST(Packed, NothingIsAddressedBeyondTheVector) {
    using Real = typename TypeParam::Real;
    constexpr bool is_diagonal = TypeParam::is_diagonal;
    const std::string code = TypeParam::is_band ? ": 3" : ": 2";
    const auto original = TestFixture::numbered(4);
    const int count = original.vs();
    auto emptied = original, shortened = original, moved_from = original;
    const auto taken = std::move(moved_from);
    TestFixture::resize(emptied, 0);
    TestFixture::resize(shortened, count - 1);
    for (auto* const packed : {&emptied, &shortened, &moved_from}) {
        const bool is_moved = packed == &moved_from;
        Real out[4] = {-1, -1, -1, -1};
        int first = -1, last = -1;
        const auto expect_failure = [&](const std::string& failure) {
            EXPECT_EQ(failures_of(*packed), failure);
            EXPECT_TRUE(first == -1 && last == -1 && out[0] == Real(-1));
        };
        if (packed != &shortened) {
            const std::string fi = "fi_Find_Index_of_element" + code;
            const std::string fib = "fib_Find_Index_range_of_a_Band" + code;
            EXPECT_EQ(packed->ge_Get_Element(-1, 7), Real(0));
            expect_failure(is_diagonal ? "ge_Get_Element: 1" : fi);
            packed->se_Set_Element(0, 0, Real(1));
            expect_failure(is_diagonal ? "se_Set_Element: 2" : fi);
            packed->gb_Get_Band(0, 0, out, first);
            expect_failure(is_diagonal ? "gb_Get_Band: 2" : fib);
            packed->sb_Set_Band(0, 0, Real(1), first);
            expect_failure(is_diagonal ? "sb_Set_Band: 2" : fib);
            packed->sb_Set_Band(0, 0, out, first);
            expect_failure(is_diagonal ? "sb_Set_Band: 2" : fib);
        }
        if constexpr (!is_diagonal) {
            const auto expect_no_line = [&](bool of_row, const std::string& method) {
                if (is_moved && !TypeParam::is_mirrored)
                    expect_failure(of_row ? "fvr_Find_Valid_range_of_Row: 1"
                                          : "fvc_Find_Valid_range_of_Column: 1");
                else
                    expect_failure(method + code);
            };
            packed->gr_Get_Row(1, out, first, last);
            expect_no_line(true, "gr_Get_Row");
            packed->gc_Get_Column(1, out, first, last);
            expect_no_line(false, "gc_Get_Column");
            if constexpr (!TypeParam::is_mirrored) {
                packed->sr_Set_Row(1, Real(1), first, last);
                expect_no_line(true, "sr_Set_Row");
                packed->sc_Set_Column(1, out, first, last);
                expect_no_line(false, "sc_Set_Column");
            }
            for (const int index : {-1, is_moved ? 0 : count, INT_MIN, INT_MAX}) {
                packed->fp_Find_Position_of_element(index, first, last);
                expect_failure("fp_Find_Position_of_element: 1");
            }
        }
        if constexpr (TypeParam::is_band_symmetric) {
            int line = 0;
            if (is_moved) packed->fvr_Find_Valid_range_of_Row(line, first, last);
            if (is_moved) expect_failure("fvr_Find_Valid_range_of_Row: 2");
            packed->i_Import(true, 4, out, 0);
            if (!is_moved) expect_failure("i_Import: 2");
        }
        if (is_moved) continue;
        EXPECT_EQ(TypeParam::exported(*packed).mh(), 0);
        expect_failure("e_Export" + code);
        if constexpr (TypeParam::is_triangle) {
            nequar::Matrix<Real> dense;
            packed->es_Export_as_Symmetric_matrix(&dense);
            expect_failure("es_Export_as_Symmetric_matrix: 2");
            EXPECT_EQ(dense.mh(), 0);
        }
    }
    // What is left of a shortened vector can still be read and printed; a copy has zeros for the
    // rest, which a longer one does not need.
    std::ostringstream text;
    text << emptied << shortened << moved_from;
    const auto copy = shortened;
    EXPECT_TRUE(copy != shortened && copy.vs() == count && copy[count - 1] == Real(0));
    EXPECT_EQ(shortened.ge_Get_Element(0, 0), original.ge_Get_Element(0, 0));
    EXPECT_EQ(copy.ge_Get_Element(0, 0), original.ge_Get_Element(0, 0));
    auto lengthened = original;
    TestFixture::resize(lengthened, 40);
    for (int i = 0; i < 40; ++i) lengthened[i] = Real(i + 1);
    EXPECT_TRUE(TypeParam::exported(lengthened) == TypeParam::exported(original));
    EXPECT_EQ(failures_of(lengthened), "");
}

TYPED_TEST(Packed, ArraysInsideTheObjectItself) {
    using Real = typename TypeParam::Real;
    const auto original = TestFixture::numbered(30);
    const std::vector<Real> elements(original.p(), original.p() + original.vs());
    for (const int n : {2, 5}) {
        auto inside = original, apart = original;
        TypeParam::import(inside, TestFixture::square(n), inside.p() + 3);
        TypeParam::import(apart, TestFixture::square(n), elements.data() + 3);
        EXPECT_TRUE(inside == apart);
    }
    auto inside = original, apart = original;
    int first = 0, last = 0;
    std::vector<Real> line(30);
    original.gb_Get_Band(0, 0, line.data(), last);
    const int shift = TypeParam::is_diagonal ? 0 : 1;  // into the band itself, as far as it fits
    std::copy_n(line.begin(), last, apart.p() + shift);
    inside.gb_Get_Band(0, 0, inside.p() + shift, first);
    EXPECT_TRUE(inside == apart && first == last);
    if constexpr (!TypeParam::is_diagonal) {
        inside = original;
        original.gr_Get_Row(3, line.data(), first, last);
        inside.gr_Get_Row(3, inside.p() + 1, first, last);
        EXPECT_TRUE(std::equal(line.begin(), line.end(), inside.p() + 1));
        if constexpr (!TypeParam::is_mirrored) {
            inside = apart = original;
            inside.sr_Set_Row(3, inside.p() + 2, first, last);
            apart.sr_Set_Row(3, elements.data() + 2, first, last);
            EXPECT_TRUE(inside == apart);
        }
        if constexpr (TypeParam::is_triangle) {
            // One line of a triangle fills its own array of equal size.
            inside.c_Create(TypeParam::is_lower ? 5 : 1, TypeParam::is_lower ? 1 : 5, Real(3));
            apart = inside;
            inside.e_Export(true, &first, &last, inside.p(), true);
            EXPECT_TRUE(inside == apart);
        }
    }
}

TYPED_TEST(Packed, ComparesAndPrintsLikeTheDenseMatrix) {
    using Real = typename TypeParam::Real;
    for (const int n : {3, 20}) {
        const auto packed = TestFixture::numbered(n);
        std::ostringstream packed_text, dense_text;
        packed_text << packed;
        dense_text << TypeParam::exported(packed);
        EXPECT_EQ(packed_text.str(), dense_text.str());
    }
    auto packed = TestFixture::numbered(2);
    packed[1] = std::numeric_limits<Real>::quiet_NaN();
    EXPECT_FALSE(packed == packed);
    if constexpr (!TypeParam::is_mirrored) {
        typename TypeParam::Packed wide, tall;
        TypeParam::create(wide, {2, 5}, Real(1));
        TypeParam::create(tall, {5, 2}, Real(1));
        EXPECT_FALSE(wide == tall);
        TypeParam::create(TypeParam::is_lower ? tall : wide, {2, 2}, Real(1));
        EXPECT_FALSE(wide == tall);
    }
}

}  // namespace
