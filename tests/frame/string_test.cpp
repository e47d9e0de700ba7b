#include "nequar_algebra/frame/string.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <utility>

namespace {

TEST(String, CopiesAreIndependentAndLiteralsArePointedAt) {
    std::string source = "singular";
    CNqString owned(source.c_str());
    const CNqString copy = owned;
    source[0] = 'x';
    owned = "other";
    EXPECT_EQ(copy, "singular");
    EXPECT_EQ(copy.size(), 8);
    const char* const text = "literal";
    const CNqString second = CNqString(CNqString::literal(text));
    EXPECT_EQ(second.c_str(), text);
    EXPECT_EQ(CNqString(nullptr), "");
    EXPECT_FALSE(second == "literally" || second == nullptr);
}

TEST(String, TakesFromItselfAndFromAPartOfItself) {
    CNqString s("0123456789");
    const CNqString& same = s;
    s = same;
    s = s.c_str() + 4;
    EXPECT_EQ(s, "456789");
    CNqString& alias = s;
    s = std::move(alias);
    EXPECT_EQ(s, "456789");
    CNqString taken = std::move(s);
    EXPECT_EQ(s, "");
    for (int i = 0; i < 5; ++i) taken.fm_Format("%s|%s", taken.c_str(), taken.c_str());
    EXPECT_EQ(taken.size(), 32 * 6 + 31);
    taken.fm_Format("%d %s", INT_MIN, "");
    EXPECT_EQ(taken, "-2147483648 ");
}

TEST(String, CreatesSpaceKeepingTheText) {
    CNqString s = CNqString::literal("text");
    for (const int count : {0, 2, 4, 5, 1000, 3}) {
        ASSERT_TRUE(s.zcs_Create_Space(count));
        EXPECT_EQ(s, "text");
    }
    const char* const place = s.c_str();
    EXPECT_TRUE(s.zcs_Create_Space(900));
    EXPECT_EQ(s.c_str(), place);
    EXPECT_FALSE(s.zcs_Create_Space(-1) || s.zcs_Create_Space(INT_MAX));
}

}  // namespace
