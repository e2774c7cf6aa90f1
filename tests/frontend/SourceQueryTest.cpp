#include <krender/frontend/SourceQuery.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using krFrontend::Declaration;
using krFrontend::Module;
using krFrontend::Offset;
using krFrontend::SourceRange;

constexpr std::string_view kSource = R"(const float kHalf = 0.5;
float fade(float x);
material m(uniform float scale = kHalf, vertex float2 uv, float3 gWorldPos, out float4 outRGBA)
{
	float3 sum = gWorldPos;
	for (int i = 0; i < 4; ++i)
	{
		float scale2 = fade(scale) + kHalf;
		sum += scale2 * normalize(gWorldNormal);
	}
	if (uv.x > scale) { float w[2]; w[0] = 1.0; sum.x = w[0]; }
	illuminance
	{
		sum += gLightDiffuseColor;
	}
	outRGBA = float4(sum, unknown + 1.0);
}
float fade(float x)
{
	float kHalf = x * 2.0;
	output = kHalf;
}
)";

/// The place of the text's nth occurrence, counted from 0.
Offset placeOf(std::string_view text, unsigned n = 0)
{
    std::size_t place = kSource.find(text);
    for (; n > 0; --n)
        place = kSource.find(text, place + 1);
    EXPECT_NE(place, std::string_view::npos) << text;
    return static_cast<Offset>(place);
}

unsigned lineOf(const Module& module, SourceRange range) { return module.sources().location(range.begin).line; }

Module read() { return Module::readText("m.krs", std::string(kSource)); }

struct NameCase
{
    std::string_view at;
    unsigned nth;
    std::string_view text;
    unsigned line; ///< of the declaration; 0: none
    std::vector<unsigned> useLines;
};

TEST(SourceQuery, SaysWhatANameStandsForAndWhereElseItIsNamed)
{
    const Module module = read();
    const std::vector<NameCase> cases{
        {"kHalf", 1, "const float kHalf", 1, {1, 3, 8}},
        {"kHalf", 3, "float kHalf", 20, {20, 21}},
        {"fade", 0, "float fade(float x)", 18, {2, 8, 18}},
        {"fade", 1, "float fade(float x)", 18, {2, 8, 18}},
        {"x * 2", 0, "float x", 18, {18, 20}},
        {"output", 0, "float output", 18, {21}},
        {"m(", 0, "material m(uniform float scale, vertex float2 uv, float3 gWorldPos, out float4 outRGBA)", 3, {3}},
        {"scale)", 0, "uniform float scale", 3, {3, 8, 11}},
        {"scale2", 1, "float scale2", 8, {8, 9}},
        {"i < 4", 0, "int i", 6, {6, 6, 6}},
        {"w[0]", 1, "float w[2]", 11, {11, 11, 11}},
        {"gWorldPos;", 0, "float3 gWorldPos", 0, {3, 5}},
        {"gLightDiffuseColor", 0, "float3 gLightDiffuseColor", 0, {14}},
        {"normalize", 0, "float...float4 normalize(float...float4)", 0, {9}},
    };
    for (const NameCase& c : cases)
    {
        SCOPED_TRACE(std::string(c.at) + " " + std::to_string(c.nth));
        const auto use = krFrontend::nameAt(module, placeOf(c.at, c.nth));
        ASSERT_TRUE(use);
        EXPECT_EQ(use->declaration.text, c.text);
        EXPECT_EQ(use->range.begin, placeOf(c.at, c.nth));
        if (c.line != 0)
            EXPECT_EQ(lineOf(module, use->declaration.range), c.line);
        else
            EXPECT_EQ(use->declaration.range, SourceRange());
        std::vector<unsigned> lines;
        for (const SourceRange range : krFrontend::usesOf(module, placeOf(c.at, c.nth)))
        {
            EXPECT_EQ(module.sources().text(range), use->declaration.name);
            lines.push_back(lineOf(module, range));
        }
        EXPECT_EQ(lines, c.useLines);
    }
    for (const std::string_view nothing : {"unknown", "illuminance", "= 0.5", "0.5"})
        EXPECT_FALSE(krFrontend::nameAt(module, placeOf(nothing))) << nothing;
}

TEST(SourceQuery, ListsWhatIsDeclaredInTheOrderOfThePlaces)
{
    std::string names;
    for (const Declaration& declaration : krFrontend::declarationsOf(read()))
        names += declaration.name + " ";
    EXPECT_EQ(names, "kHalf fade x m scale uv gWorldPos outRGBA sum i scale2 w fade x kHalf ");
}

TEST(SourceQuery, KnowsTheTypeOfTheSmallestExpression)
{
    const Module module = read();
    const std::vector<std::array<std::string_view, 3>> cases{
        {"scale2 * n", "scale2", "float"},
        {"* normalize", "scale2 * normalize(gWorldNormal)", "float3"},
        {"(gWorldNormal", "normalize(gWorldNormal)", "float3"},
        {"x > ", "uv.x", "float"},
        {"> scale", "uv.x > scale", "bool"},
        {"w[0];", "w", "float[2]"},
        {"[0];", "w", "float[2]"},
        {"1.0)", "1.0", "float"},
        {"unknown", "float4(sum, unknown + 1.0)", ""},
    };
    for (const auto& [at, text, type] : cases)
    {
        const auto found = krFrontend::expressionAt(module, placeOf(at));
        ASSERT_EQ(found.has_value(), !type.empty()) << at;
        if (found)
        {
            EXPECT_EQ(module.sources().text(found->range), text) << at;
            EXPECT_EQ(found->type, type) << at;
        }
    }
}

TEST(SourceQuery, ListsTheNamesThatAPlaceSees)
{
    const Module module = read();
    const auto sees = [&](Offset place, std::string_view text)
    {
        const std::vector<Declaration> visible = krFrontend::namesVisibleAt(module, place);
        return std::any_of(visible.begin(), visible.end(), [text](const Declaration& d) { return d.text == text; });
    };
    const Offset loop = placeOf("sum += scale2");
    for (const std::string_view text :
         {"float scale2", "int i", "float3 sum", "uniform float scale", "const float kHalf", "float fade(float x)",
          "float3 gWorldNormal", "bool any(bool2...bool4)"})
        EXPECT_TRUE(sees(loop, text)) << text;
    for (const std::string_view text : {"float w[2]", "float3 gLightDiffuseColor", "float x"})
        EXPECT_FALSE(sees(loop, text)) << text;
    EXPECT_FALSE(sees(placeOf("fade(scale)"), "float scale2")) << "within its own value";
    EXPECT_TRUE(sees(placeOf("sum += gLight"), "float3 gLightDiffuseColor"));
    EXPECT_FALSE(sees(placeOf("output"), "const float kHalf")) << "hidden";
    EXPECT_TRUE(sees(placeOf("output"), "float kHalf"));
    EXPECT_FALSE(sees(0, "float3 gWorldNormal")) << "file level";
}

} // namespace
