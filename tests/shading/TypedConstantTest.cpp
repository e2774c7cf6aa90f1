#include <krender/core/Exception.h>
#include <krender/platform/Linear.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>
#include <krender/shading/TypedConstant.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <sstream>
#include <string>

using krShadingDag::TypedConstant;

namespace
{

TypedConstant ints(int count)
{
    TypedConstant constant;
    constant.assignInts(count, -1, 2, 3, 4);
    return constant;
}

} // namespace

TEST(DataType, NamesConvertBackAndNothingElseDoes)
{
    for (unsigned type = 1; type < kDataTypeCount; ++type)
        EXPECT_EQ(convertToDataType(dataTypeName(static_cast<DataType>(type))), type);
    for (const char* text : {"", "invalidType!", "Float3", "float5", "float33", "sampler", "out", "vertex", " int"})
        EXPECT_EQ(convertToDataType(text), kInvalidType) << text;
    EXPECT_EQ(convertToDataType(nullptr), kInvalidType);
}

TEST(DataType, EveryRowOfTheTable)
{
    // bytes, v(ector) m(atrix) s(ampler) f(loat vector), floats, dimension, type of an element
    const char* const rows[] = {
        "invalidType! 0 - 0 0 invalidType!",
        "void 0 - 0 0 invalidType!",
        "bool 1 - 1 0 invalidType!", // one float
        "float 4 vf 1 1 float",
        "float2 8 vf 2 2 float",
        "float3 12 vf 3 3 float",
        "float4 16 vf 4 4 float",
        "int 4 v 0 1 int", // no float
        "int2 8 v 0 2 int",
        "int3 12 v 0 3 int",
        "int4 16 v 0 4 int",
        "matrix2 16 - 4 2 float2", // no matrix
        "matrix3 36 m 9 3 float3",
        "matrix4 64 m 16 4 float4",
        "sampler1D 4 s 0 0 invalidType!",
        "sampler2D 4 s 0 0 invalidType!",
        "sampler3D 4 s 0 0 invalidType!",
        "samplerCube 4 s 0 0 invalidType!",
        "sampler1DShadow 4 s 0 0 invalidType!",
        "sampler2DShadow 4 s 0 0 invalidType!",
        "string 4 - 0 0 invalidType!",
    };
    ASSERT_EQ(std::size(rows), std::size_t{kDataTypeCount});
    for (unsigned value = 0; value < kDataTypeCount; ++value)
    {
        const auto type = static_cast<DataType>(value);
        const DataTypeInfo& info = dataTypeInfo[type];
        std::string flags = std::string(info.isVector ? "v" : "") + (info.isMatrix ? "m" : "") +
                            (isSampler(type) ? "s" : "") + (isFloatVector(type) ? "f" : "");
        std::ostringstream row;
        row << dataTypeName(type) << ' ' << info.byteSize << ' ' << (flags.empty() ? "-" : flags) << ' '
            << dataTypeNumFloats(type) << ' ' << maxDim(type) << ' ' << dataTypeName(indexedType(type));
        EXPECT_EQ(row.str(), rows[value]);
    }
    EXPECT_EQ(floatConversion, (std::array{kFloat, kFloat2, kFloat3, kFloat4}));
}

TEST(TypedConstant, PrintsInTheLanguagesSyntax)
{
    TypedConstant boolean(5.0f);
    boolean.assignBool(true);
    EXPECT_EQ(boolean.type(), kBool);
    EXPECT_EQ(boolean.getInt(0), 1u) << "the stored word";
    EXPECT_TRUE(boolean.getBool());
    boolean.assignBool(false);
    EXPECT_EQ(boolean.getInt(0), 0u);
    const struct
    {
        TypedConstant constant;
        const char* text;
    } cases[] = {
        {TypedConstant(0.5f), "0.500000"},
        {TypedConstant(-1.0f, 2.0f), "float2(-1.000000,2.000000)"},
        {TypedConstant(1.0f, 2.0f, 0.0000004f), "float3(1.000000,2.000000,0.000000)"},
        {TypedConstant(1.0f, 2.0f, 3.0f, 4.0f), "float4(1.000000,2.000000,3.000000,4.000000)"},
        {TypedConstant(std::numeric_limits<float>::max()), "340282346638528859811704183484516925440.000000"},
        {TypedConstant(-std::numeric_limits<float>::infinity()), "-inf"},
        {ints(1), "4294967295"},
        {ints(2), "{4294967295,2}"},
        {ints(3), "{4294967295,2,3}"},
        {ints(4), "{4294967295,2,3,4}"},
        {TypedConstant("as is\n"), "as is\n"},
        {TypedConstant(krLinear::ProjMatrix(1.0)), ""},
        {boolean, ""},
        {TypedConstant(), ""},
    };
    for (const auto& c : cases)
        EXPECT_STREQ(c.constant.toString().asChar(), c.text);
}

TEST(TypedConstant, CopiesOwnTheirHeapValues)
{
    TypedConstant text("first");
    TypedConstant copy(text);
    text.set(krLinear::ProjMatrix(2.0));
    EXPECT_STREQ(copy.stringValue()->asChar(), "first");
    TypedConstant matrix(text);
    text.release();
    EXPECT_EQ(matrix.type(), kMatrix4);
    EXPECT_EQ((*matrix.matrix())(2, 2), 2.0);
    copy.set(*copy.stringValue());
    EXPECT_STREQ(copy.toString().asChar(), "first") << "a text set from itself";
}

TEST(TypedConstant, StringConstructorLeavesTheInstanceCounterAlone)
{
    const std::int32_t before = TypedConstant::fsNumInstances_TypedConstant;
    {
        const TypedConstant number(1.0f);
        const auto copy = std::make_unique<TypedConstant>(number);
        EXPECT_EQ(TypedConstant::fsNumInstances_TypedConstant, before + 2);
        const TypedConstant text("x");
        EXPECT_EQ(TypedConstant::fsNumInstances_TypedConstant, before + 2);
    }
    EXPECT_EQ(TypedConstant::fsNumInstances_TypedConstant, before - 1);
}

TEST(TypedConstant, AssignsOneToFourComponents)
{
    TypedConstant constant;
    for (const int count : {0, 5, -1})
    {
        EXPECT_THROW(constant.assignFloats(count, 1, 2, 3, 4), Exception);
        EXPECT_THROW(constant.assignInts(count, 1, 2, 3, 4), Exception);
    }
    EXPECT_EQ(constant.type(), kInvalidType);
    constant.assignFloats(4, 9, 9, 9, 9);
    constant.assignFloats(3, 1, 2, 3, 4);
    EXPECT_EQ(constant.type(), kFloat3);
    constant.setFloat(3, 5.0f);
    EXPECT_EQ(constant.getFloat(3), 9.0f) << "what is not counted is not written";
    constant.setFloat(2, 7.0f);
    EXPECT_STREQ(constant.toString().asChar(), "float3(1.000000,2.000000,7.000000)");
    constant.assignInts(4, 9, 9, 9, 9);
    constant.assignInts(3, 1, 2, 3, 4);
    EXPECT_EQ(constant.getInt(3), 9u);
    constant.setFloat(0, 9.0f);
    EXPECT_STREQ(constant.toString().asChar(), "{1,2,3}");
}

TEST(TypedConstant, FoldsFloatsOnly)
{
    using Fold = TypedConstant (TypedConstant::*)(const TypedConstant&, bool&) const;
    const Fold plus = &TypedConstant::plus;
    const Fold minus = &TypedConstant::minus;
    const Fold multiply = &TypedConstant::multiply;
    const Fold divide = &TypedConstant::divide;
    const TypedConstant one(1.0f), two(2.0f), zero(0.0f), v2(1.0f, 2.0f), v3(1.0f, 2.0f, 3.0f),
        v4(2.0f, 4.0f, 6.0f, 8.0f);
    const struct
    {
        Fold fold;
        TypedConstant left, right;
        const char* text; // null where nothing folds
    } cases[] = {
        {plus, v2, TypedConstant(3.0f, 4.0f), "float2(4.000000,6.000000)"},
        {minus, v3, v3, "float3(0.000000,0.000000,0.000000)"},
        {plus, v2, v3, nullptr},
        {plus, two, v3, nullptr},
        {plus, ints(1), ints(1), nullptr},
        {plus, TypedConstant("a"), TypedConstant("b"), nullptr},
        {multiply, v4, v4, "float4(4.000000,16.000000,36.000000,64.000000)"},
        {multiply, two, v3, "float3(2.000000,4.000000,6.000000)"},
        {multiply, v3, two, "float3(2.000000,4.000000,6.000000)"},
        {multiply, v2, v3, nullptr},
        {multiply, two, ints(2), nullptr},
        {multiply, ints(2), ints(2), nullptr},
        {multiply, two, TypedConstant(krLinear::ProjMatrix(1.0)), nullptr},
        {divide, v4, TypedConstant(2.0f, 2.0f, 2.0f, 2.0f), "float4(1.000000,2.000000,3.000000,4.000000)"},
        {divide, one, zero, "inf"},
        {divide, two, v2, nullptr},
        {divide, v2, v3, nullptr},
    };
    for (const auto& c : cases)
    {
        bool ok = c.text == nullptr;
        const TypedConstant result = (c.left.*c.fold)(c.right, ok);
        EXPECT_EQ(ok, c.text != nullptr);
        EXPECT_EQ(result.type() == kInvalidType, c.text == nullptr);
        EXPECT_STREQ(result.toString().asChar(), c.text ? c.text : "");
    }
}

TEST(TypedConstant, VectorByScalarIsOneWhateverTheVector)
{
    bool ok = false;
    const TypedConstant v4(2.0f, 4.0f, 6.0f, 8.0f);
    EXPECT_STREQ(v4.divide(TypedConstant(2.0f), ok).toString().asChar(), "1.000000");
    EXPECT_TRUE(ok);
    EXPECT_EQ(v4.divide(TypedConstant(0.0f), ok).type(), kInvalidType);
    EXPECT_FALSE(ok);
    EXPECT_EQ(ints(2).divide(TypedConstant(4.0f), ok).type(), kFloat) << "nor does its type matter";
    EXPECT_TRUE(ok);
}
