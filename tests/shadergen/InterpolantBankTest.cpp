#include <krender/shadergen/InterpolantBank.h>

#include <krender/platform/String.h>

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace
{

/// The addresses of values taken one after the other, separated by blanks; "-" where there was no room.
std::string addresses(InterpolantBank& bank, std::initializer_list<unsigned> widths)
{
    std::string all;
    for (const unsigned width : widths)
    {
        bool ok = false;
        const krString::CString address = bank.allocateInterpolant(width, ok, nullptr, nullptr);
        all += all.empty() ? "" : " ";
        all += ok ? address.asChar() : "-";
    }
    return all;
}

} // namespace

TEST(InterpolantBank, PackedValuesFillTheFirstRegisterWithRoom)
{
    InterpolantBank bank(2, true);
    EXPECT_EQ(addresses(bank, {3, 2, 1, 2, 1}), "0.xyz 1.xy 0.w 1.zw -");
}

TEST(InterpolantBank, UnpackedValuesTakeARegisterEach)
{
    InterpolantBank bank(3, false);
    EXPECT_EQ(addresses(bank, {1, 1, 4, 1}), "0.x 1.x 2.xyzw -");
    EXPECT_STREQ(completeInterpolantsGeneration(bank).asChar(),
                 "\tfloat1 _TEXCOORD0\t: TEXCOORD0;\n\tfloat1 _TEXCOORD1\t: TEXCOORD1;\n"
                 "\tfloat4 _TEXCOORD2\t: TEXCOORD2;\n};\n\n");
}

TEST(InterpolantBank, ReservedRegistersAreNeitherTakenNorDeclared)
{
    InterpolantBank bank(4, true);
    bank.interpolant(0).reserve(true, false, false, false);
    bank.interpolant(1).reserve(true, true, true, false);
    bank.interpolant(1).reserve(false, false, false, false);
    EXPECT_EQ(bank.interpolant(1).freeComponents(), 1u) << "reserving frees nothing";
    EXPECT_STREQ(completeInterpolantsGeneration(bank).asChar(), "};\n\n");
    EXPECT_EQ(addresses(bank, {1, 4}), "2.x 3.xyzw");
    EXPECT_STREQ(completeInterpolantsGeneration(bank).asChar(),
                 "\tfloat1 _TEXCOORD2\t: TEXCOORD2;\n\tfloat4 _TEXCOORD3\t: TEXCOORD3;\n};\n\n");
}

TEST(InterpolantBank, TakesComponentsThatAreNotAdjacent)
{
    InterpolantBank bank(1, true);
    bank.interpolant(0).isFree = {false, true, false, true};
    EXPECT_EQ(addresses(bank, {2}), "0.yw");
}

TEST(InterpolantBank, HandsOutRegisterAndSwizzleOnlyOnSuccess)
{
    InterpolantBank bank(12, false);
    krString::CString index = "before";
    krString::CString swizzle = "before";
    bool ok = false;
    for (unsigned i = 0; i < 11; ++i)
        (void)bank.allocateInterpolant(2, ok, &index, &swizzle);
    EXPECT_STREQ(index.asChar(), "10");
    EXPECT_STREQ(swizzle.asChar(), "xy");

    InterpolantBank empty(0, true);
    EXPECT_STREQ(empty.allocateInterpolant(1, ok, &index, &swizzle).asChar(), "UNABLE TO ALLOCATE INTERPOLANT!");
    EXPECT_FALSE(ok);
    EXPECT_STREQ(index.asChar(), "10");
    EXPECT_STREQ(swizzle.asChar(), "xy");
}
