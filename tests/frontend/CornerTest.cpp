// What random programs rarely reach: corners of statements and expressions, accepted by every target and drawn the same.
#include "GeneratedPrograms.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

struct Corner
{
    const char* name;
    const char* source; ///< statements of a material with the inputs below
    const char* functions = "";
};

void PrintTo(const Corner& corner, std::ostream* out) { *out << corner.name; }

class Corners : public testing::TestWithParam<Corner>
{
};

constexpr Corner kCorners[] = {
    {"ReturnedValueOnTheNextLine", "f += next(f);", "float next(float x)\n{\n    return\n        x + 1.0;\n}\n"},
    {"ConstantWithRemainder", "const int k = 7 % 4; const int2 j = int2(k, 1); f += k + j.x;"},
    {"ConstantOfAnInputsDefault", "const float k = u + 1.0; bool b = n > k; f += b ? k : 0;"},
    {"IndexOfAnInputsDefault", "f += v[n];"},
    {"FloatConstantOfAnInt", "f += kHalf;", "const int kOne = 1;\nconst float kHalf = kOne;\n"},
    {"SmallMatrixFromALargerOne", "f += matrix2(matrix3(1.0))[n - 1][1] + matrix2(0.5)[0][1];"},
    {"MatrixInput", "f += (m2 * float2(1, 2)).x;"},
    {"InputsNamedLikeInsertedFunctions", "f += float3(any, all, 1) == float3(1) ? transpose : 0; a *= a;"},
    {"VariableNamedLikeAMacrosFunction", "float f4tex2D = 0.5; f += texture2D(s, float2(f4tex2D)).x;"},
    {"StatementsThatBeginWithATypesName", "float4(u).x; bool2(true, false); matrix3(u); float3(u, u, u) * u;"},
    {"SwizzledColumns", "a[1].xyz.zx = float2(0.5, 0.25); (a[1].yx)++; (a[1]).x = 2.0; a[n - 1].zyx.x *= 0.5;"},
    {"ElementsOfSwizzledColumns", "a[2].xy[1] = 0.75; f += a[0].zyx.yx[0]; a[0].zyx[n] = 5; ++a[1].zx[n - 1];"},
    {"ElementsOfColumnsAsOutputs", "f += one(a[2][1]) + one(a[2].xz[1]); f += one(a[n][n]);",
     "float one(inout float x) { x += 0.5; return x; }\n"},
    {"SteppedColumns", "++a[0].x; a[1]++; --a[n - 1]; a[0][n]--; f += (a[2]++).x;"},
    {"ColumnTimesItsMatrix", "a[0] *= a; a *= a; v *= a; v = a * v * a;"},
    {"SwizzlesOfSwizzlesStored", "v.xyz.yx = v.xy; v.xy[1] = 2; v.xyz.yx[n - 1]++;"},
    {"ChoicesWithinChoices",
     "float arr[2]; arr[0] = arr[1] = 1;"
     "bool b = u > 0.1 && (arr[n - 1] = 2.0) > 1.0 || one(arr[1]) > 2.0;"
     "f = b ? one(f) : (u > 0.5 ? one(arr[0]) : 0);"
     "for (int i = 0, j = 3; i < j && one(f) < 9.0; i++) ;",
     "float one(inout float x) { x += 0.5; return x; }\n"},
    {"ChainsOfOperators", "f += u > 5.0 && n > 1 ^^ true ? 1 : 2; bool b = u > 0.5 ^^ n > 1 ^^ true; b = b == true != "
                          "false; f += b ? 1 : 2; f = -(-f) - -f;"},
    {"CommentsInOddPlaces", "f /* a */ += /* b */ float /* c */ ( // d\n n /* e */ % /* f */ 2 ) /* g */ ;"},
    {"BlocksThatHideTheirLoopsCounter", "for (int i = 0; i < 2; i++) { float i = u; f += i; { int i = n; f += i; } }"},
    {"HeadsOverSeveralLines",
     "for (int i = 0;\n     i < 3; // three\n     i++)\n    if (i\n        == 1)\n        continue;"},
};

TEST_P(Corners, AreAcceptedAndDrawnTheSameByEveryTarget)
{
    const Corner& corner = GetParam();
    const std::string source =
        std::string(corner.functions) +
        "material m(uniform float u = 1, uniform int n = 2, uniform matrix2 m2, uniform float any,\n"
        "    uniform float all, uniform float transpose, uniform sampler2D s, out float4 outRGBA)\n"
        "{\n    matrix3 a = matrix3(1.0);\n    float f = 0.0;\n    float3 v = float3(u);\n    " +
        corner.source +
        "\n    outRGBA = float4(abs(sin(float3(f) + gWorldNormal + v + a[0] + a[1] * 2 + a[2] * n)), 1);\n}\n";
    ASSERT_EQ(faultsOf(source), "") << source;
    Canvas canvas;
    const CompiledSource compiled = compileSource(source);
    EXPECT_LE(pictureDifference(canvas, compiled), kSamePicture) << textsOf(compiled);
}

INSTANTIATE_TEST_SUITE_P(Sources, Corners, testing::ValuesIn(kCorners),
                         [](const auto& given) { return std::string(given.param.name); });

TEST(Names, OfTheGreatestLengthLeaveRoomForWhatProgramsPutAhead)
{
    const std::string uv(1024, 'v');
    const std::string scale(1024, 's');
    EXPECT_EQ(faultsOf("material m(vertex float2 " + uv + ", uniform float " + scale +
                       ", out float4 outRGBA)\n{\n    outRGBA = float4(" + uv + " * " + scale + ", 0, 1);\n}\n"),
              "");
}

/// What a program means, and not only that the targets agree about it: statements that leave a value in f.
struct Meaning
{
    const char* name;
    const char* statements;
    const char* value;
};

void PrintTo(const Meaning& meaning, std::ostream* out) { *out << meaning.name; }

class Meanings : public testing::TestWithParam<Meaning>
{
};

constexpr Meaning kMeanings[] = {
    {"ElseIfs",
     "for (int i = 0; i < 4; i++) if (i < 1) f += 1; else if (i < 2) f += 10; else if (i < 3) f += 100; "
     "else f += 1000;",
     "1111"},
    {"NestedElse", "if (f < 1) if (f > 1) f = 5; else f = 7;", "7"},
    {"BreakAndContinue", "for (int i = 0; i < 9; i++) { if (i == 2) continue; if (i == 5) break; f += i; }", "8"},
    {"DoAndWhile", "int i = 5; do f += 1; while (i < 3); while (i-- > 2) f += 10;", "31"},
    {"ReturnAndOutput", "f = early(2) + early(-2);", "13"},
    {"InoutAndOut", "float b; f = both(b, f); f += b;", "8"},
    {"Remainders", "f = -7 % 4 + 7 % -4 * 10;", "27"},
    {"IntDivision", "f = 7 / 2 + float(7) / 2;", "6.5"},
    {"ShortCircuit", "bool b = f > 1 && (f = 9) > 1 || (f += 2) > 1; b = b || (f = 100) > 1;", "2"},
    {"HiddenNames", "{ float f = f + 3; f += 1; } float early = early(2); f += early;", "3"},
    {"MatrixTimesVector", "f = (matrix2(1, 2, 3, 4) * float2(1, 10)).y + mul(float2(1, 10), matrix2(1, 2, 3, 4)).x;",
     "63"},
    {"Columns", "matrix2 m = matrix2(1, 2, 3, 4); m[1] = float2(5, 6); m[0][1] = 7; f = m[1].x * 10 + (m * m)[0].y;",
     "99"},
    {"Swizzles", "float4 v = float4(1, 2, 3, 4); v.wzy = v.xyz; f = dot(v, float4(1000, 100, 10, 1));", "1321"},
    {"Overloads", "f = which(1) + which(1.0) * 10 + which(float2(1)) * 100;", "321"},
    {"Mod", "f = mod(-1, 4) + mod(-5.0, 3.0) * 10;", "13"},
    {"Precedence", "f = 1 + 2 * 3 - 4 / 2 + (true || false && false ? 10 : 20) + (false ^^ true && true ? 100 : 0);",
     "115"},
};

TEST_P(Meanings, AreDrawnByEveryTarget)
{
    constexpr std::string_view kFunctions =
        "float early(float x) { output = 3; if (x > 0) return x + 1; output += 7; }\n"
        "float both(out float a, inout float b) { a = 5; b += 1; return b + 2; }\n"
        "float which(int i) { return 1; }\nfloat which(float x) { return 2; }\n"
        "float which(float2 v) { return 3; }\n";
    const auto sourceOf = [&](const Meaning& meaning)
    {
        return std::string(kFunctions) + "material m(out float4 outRGBA)\n{\n    float f = 0;\n    " +
               meaning.statements + "\n    outRGBA = abs(f - " + meaning.value +
               ") < 0.01 ? float4(1) : float4(0, 0, 0, 1);\n}\n";
    };
    const CompiledSource found = compileSource(sourceOf(GetParam()));
    ASSERT_EQ(found.problems, "");
    const CompiledSource white = compileSource(sourceOf({"", "", "0"}));
    Canvas canvas;
    EXPECT_EQ(pictureDifference(canvas, {{found.programs[0], white.programs[1]}, ""}), 0.0) << textsOf(found);
    EXPECT_EQ(pictureDifference(canvas, {{white.programs[0], found.programs[1]}, ""}), 0.0) << textsOf(found);
}

INSTANTIATE_TEST_SUITE_P(Of, Meanings, testing::ValuesIn(kMeanings),
                         [](const auto& given) { return std::string(given.param.name); });

} // namespace
