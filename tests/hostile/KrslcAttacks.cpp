#include "Attacks.h"

#include <filesystem>

namespace
{

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

std::vector<std::string> compile(std::vector<std::string> more)
{
    std::vector<std::string> words{"compile", "--material", "m.krs", "--validate", "-o", "x"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

void writeNestedDefines(const Workplace& place)
{
    std::string text = "#define a0 u+u+u+u+u+u+u+u\n";
    for (int i = 1; i < 9; ++i)
    {
        const std::string before = std::string("a") + std::to_string(i - 1);
        text +=
            std::string("#define a") + std::to_string(i) + ' ' + before + pieces(7, std::string("+") + before) + '\n';
    }
    writeMaterial(place, text + "outRGBA.r = a8;\n");
}

void writeLine(const Workplace& place) { writeMaterial(place, "#line 2147483000\noutRGBA.r = u;\n"); }

/// A light of a megabyte, and a material that is lit by it two thousand times.
void writeBigLight(const Workplace& place)
{
    place.write("l.krs",
                "light big(uniform float3 color, out float3 outLightWorldDir, out float3 outLightAmbientColor,\n"
                "out float3 outLightDiffuseColor, out float3 outLightSpecularColor)\n{\n" +
                    pieces(kMegabyte / 30, "outLightDiffuseColor += color;") + "}\n");
    writeMaterial(place, pieces(2000, "illuminance { outRGBA.r += 1.0; }\n"));
}

/// A light that has a name of its own for its sampler, by lines of the preprocessor.
void writeLitBySamplers(const Workplace& place)
{
    place.write("l.krs",
                "light lamp(uniform sampler2D map, out float3 outLightWorldDir, out float3 outLightAmbientColor,\n"
                "out float3 outLightDiffuseColor, out float3 outLightSpecularColor)\n"
                "{ outLightDiffuseColor = texture2D(map, float2(0.5, 0.5)).rgb; } // #1\n");
    writeMaterial(place, "illuminance { outRGBA.r += gLightDiffuseColor.r; } // #1\n");
}

/// Thirty thousand functions of one name: their arguments' types are the digits of their numbers.
void writeOverloads(const Workplace& place)
{
    constexpr const char* kTypes[] = {"float", "float2", "float3", "float4", "int", "int2", "int3", "int4"};
    std::string text;
    for (unsigned i = 0; i < 30000; ++i)
    {
        text += "float f(float x";
        for (unsigned digits = i, k = 0; k < 5; ++k, digits /= 8)
            text += std::string(", ") + kTypes[digits % 8] + " a" + std::to_string(k);
        text += ") { return x; }\n";
    }
    place.write("m.krs", text);
}

void writeDense(const Workplace& place)
{
    place.write("m.krs", std::string("float f(float a){") + pieces(2 * kMegabyte, "a;") + "}\n");
}

void writeLoopOfLinks(const Workplace& place)
{
    writeMaterial(place, "");
    std::filesystem::create_symlink("loop", place.path() / "loop");
}

} // namespace

std::vector<Attack> krslcAttacks()
{
    const auto nothing = [](const Workplace&) {};
    return {
        {"NameOfAMegabyte", [](const Workplace& p) { writeMaterial(p, std::string(kMegabyte, 'q') + ";\n"); },
         compile({}), 1, "a name has more than 1024 bytes"},
        {"EndlessExpression",
         [](const Workplace& p) { writeMaterial(p, std::string("u") + pieces(1400000, "+u") + ";\n"); }, compile({}), 1,
         "the expression has more than 4096 operators"},
        {"EndlessExpressionPlain",
         [](const Workplace& p) { writeMaterial(p, std::string("outRGBA.r = u") + pieces(200000, " + u") + ";\n"); },
         compile({"--plain"}), 1, "x.frag:37:40008: error: an expression of more than 10000 operators"},
        {"LongestExpressionPlain",
         [](const Workplace& p) { writeMaterial(p, std::string("outRGBA.r = u") + pieces(9990, " + u") + ";\n"); },
         compile({"--plain", "--target", "all"}), 0, ""},
        {"NestedDefines", writeNestedDefines, compile({}), 1, "m.krs:4:1: error: the only directive is #include"},
        {"NestedDefinesPlain", writeNestedDefines, compile({"--plain"}), 1, "x.frag:37:2: error: a line of the prepr"},
        {"NestedDefinesPlainCg", writeNestedDefines, compile({"--plain", "--target", "cg"}), 1,
         "error: a line of the preprocessor"},
        {"FarLine", writeLine, compile({}), 1, "m.krs:4:1: error: the only directive is #include"},
        {"FarLinePlain", writeLine, compile({"--plain"}), 1, "x.frag:37:2: error: a line of the preprocessor"},
        {"LineBehindAQuotationMark",
         [](const Workplace& p) { writeMaterial(p, "outRGBA.r = \"/*\";\n#line 2147483000\noutRGBA.r = u;\n"); },
         compile({"--plain"}), 1, "error: a line of the preprocessor"},
        {"SamplersOfLightsPlain", writeLitBySamplers,
         compile({"--plain", "--lib", "l.krs", "--light", "a=lamp", "--light", "b=lamp"}), 0, ""},
        {"ManyBlocks",
         [](const Workplace& p)
         { writeMaterial(p, pieces(4990, std::string("{") + pieces(40, "outRGBA.r += u;") + "}\n")); },
         compile({}), 1, "a program of more than 1 MB is not checked"},
        {"LargeLight", writeBigLight, compile({"--lib", "l.krs", "--light", "k=big"}), 1, "would have more than 16 MB"},
        {"LargeLightPlain", writeBigLight, compile({"--plain", "--lib", "l.krs", "--light", "k=big"}), 1,
         "would have more than 16 MB"},
        {"OverloadsOfOneName", writeOverloads, {"check", "m.krs"}, 0, "", 300},
        {"DenseSource", writeDense, {"check", "m.krs"}, 0, "", 400},
        {"DenseSourcePlain", writeDense, {"check", "--plain", "m.krs"}, 0, "", 400},
        {"DenseSourceAsJson", writeDense, {"specs", "--json", "m.krs"}, 0, "", 400},
        {"SourceWithoutEnd", nothing, {"check", "/dev/zero"}, 2, "it has more than 16 MB"},
        {"SourceWithoutEndPlain", nothing, {"check", "--plain", "/dev/zero"}, 2, "it has more than 64 MB"},
        {"TokensWithoutEnd", nothing, {"tokens", "/dev/zero"}, 2, "it has more than 64 MB"},
        {"CommentWithoutEnd",
         [](const Workplace& p) { p.write("m.krs", "float f;\n  /*" + std::string(kMegabyte, '*')); },
         {"tokens", "m.krs"},
         1,
         "m.krs:2:3: error: the source ends within"},
        {"NameThatClearsTheTerminal", nothing, {"check", "a\033[2J.krs"}, 2, "cannot read 'a\\x1b[2J.krs'"},
        {"PathThatIsShownWhole",
         nothing,
         {"check", std::string(900, 'q') + "/the-end.krs"},
         2,
         "the-end.krs': File name"},
        {"OutputsInALoopOfLinks",
         writeLoopOfLinks,
         {"compile", "--material", "m.krs", "--vertex", "loop/a", "--fragment", "loop/b"},
         2,
         "cannot write 'loop/a': Too many levels of symbolic links"},
        {"OutputThatIsALoop",
         writeLoopOfLinks,
         {"compile", "--material", "m.krs", "--vertex", "a", "--fragment", "loop"},
         2,
         "cannot write 'loop': Too many levels of symbolic links"},
    };
}
