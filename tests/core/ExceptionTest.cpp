#include <krender/core/Exception.h>

#include <krender/platform/String.h>

#include <gtest/gtest.h>

#include <string>

TEST(VerifyAlways, ThrowsOnlyWhenTheConditionFails)
{
    EXPECT_NO_THROW(verifyAlways(true, "unused"));
    try
    {
        verifyAlways(false, "x");
        FAIL() << "nothing was thrown";
    }
    catch (const Exception& e)
    {
        EXPECT_EQ(e.type, 0);
        EXPECT_STREQ(e.message.asChar(), "x");
    }
}
