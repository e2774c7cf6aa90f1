#include <krender/platform/String.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

using krString::CString;

TEST(CString, TakesNullForEmpty)
{
    const CString fromNull(static_cast<const char*>(nullptr));
    EXPECT_STREQ(fromNull.asChar(), "");
    EXPECT_TRUE(krString::equal(fromNull, static_cast<const char*>(nullptr)));
}

TEST(CString, KeepsZeroBytesThroughConcatenation)
{
    CString text(std::string_view("a\0b", 3));
    krString::plusEqual(text, CString('\0'));
    EXPECT_EQ(krString::plus(text, "c").view(), std::string_view("a\0b\0c", 5));
}

TEST(CString, AppendsItselfToItself)
{
    CString text("a text too long to be kept inside the object");
    krString::plusEqual(text, text);
    EXPECT_EQ(text.length(), 88u);
    EXPECT_EQ(text[44], 'a');
}

TEST(CString, OrdersByUnsignedBytesAndPrefixFirst)
{
    const char* ascending[] = {"", "A", "Z", "a", "ab", "b", "\xc3\xa4"};
    for (std::size_t i = 0; i + 1 < std::size(ascending); ++i)
    {
        EXPECT_TRUE(krString::less(ascending[i], ascending[i + 1])) << i;
        EXPECT_FALSE(krString::less(ascending[i + 1], ascending[i])) << i;
    }
    EXPECT_FALSE(krString::less("a", "a"));
}
