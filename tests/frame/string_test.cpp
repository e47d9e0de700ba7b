#include "nequar_algebra/frame/string.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <utility>
#include <vector>

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
    const CNqString literal = CNqString::literal(text);
    const CNqString second = literal;
    EXPECT_EQ(second.c_str(), text);
    EXPECT_EQ(CNqString(nullptr), "");
    EXPECT_FALSE(literal == "literally");
    EXPECT_FALSE(literal == nullptr);
}

TEST(String, AssignsFromItselfAndFromAPartOfItself) {
    CNqString s("0123456789");
    const CNqString& same = s;
    s = same;
    EXPECT_EQ(s, "0123456789");
    s = s.c_str() + 4;
    EXPECT_EQ(s, "456789");
    CNqString& alias = s;
    s = std::move(alias);
    EXPECT_EQ(s, "456789");

    CNqString taken = std::move(s);
    EXPECT_EQ(taken, "456789");
    EXPECT_EQ(s, "");
    s = "again";
    EXPECT_EQ(s, "again");
}

TEST(String, FormatsFromItself) {
    CNqString s("ab");
    for (int i = 0; i < 5; ++i) s.fm_Format("%s|%s", s.c_str(), s.c_str());
    EXPECT_EQ(s.size(), 32 * 2 + 31);
    s.fm_Format("%d %s", INT_MIN, "x");
    EXPECT_EQ(s, "-2147483648 x");
    s.fm_Format("%s", "");
    EXPECT_EQ(s, "");
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
    EXPECT_FALSE(s.zcs_Create_Space(-1));
    EXPECT_FALSE(s.zcs_Create_Space(INT_MAX));
    EXPECT_EQ(s, "text");
}

}  // namespace
