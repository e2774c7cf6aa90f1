// Full KRSL made of tokens. The first byte says whether the others pick words of a list, or edit a shipped source: three
// bytes an edit, for the place, for what is done there, and for the word that comes in.
#include "FrontendFuzz.h"

#include <frontend/Tokens.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace
{

constexpr std::array kWords{
    "material",
    "light",
    "m(",
    "out float4 outRGBA",
    ")",
    "{",
    "}",
    "(",
    ";",
    ",",
    "[",
    "]",
    "[[",
    "]]",
    "=",
    "+",
    "-",
    "*",
    "/",
    "%",
    "++",
    "--",
    "!",
    "&&",
    "||",
    "^^",
    "==",
    "!=",
    "<",
    ">",
    "<=",
    ">=",
    "+=",
    "-=",
    "*=",
    "/=",
    "%=",
    "?",
    ":",
    ".",
    ".x",
    ".xy",
    ".rgb",
    ".zyxw",
    "[0]",
    "[i]",
    "0",
    "1",
    "2",
    "3",
    "2147483647",
    "0x10",
    "1.0",
    "0.5",
    "1e9",
    "true",
    "false",
    "\"text\"",
    "\n#include \"1\"\n",
    "//\n",
    "/*",
    "*/",
    "@",
    "#",
    "float",
    "float2",
    "float3",
    "float4",
    "int",
    "int2",
    "int3",
    "int4",
    "bool",
    "bool2",
    "bool3",
    "bool4",
    "matrix2",
    "matrix3",
    "matrix4",
    "void",
    "sampler2D",
    "samplerCube",
    "sampler1DShadow",
    "string",
    "uniform",
    "vertex",
    "constant",
    "fragment",
    "const",
    "in",
    "out",
    "inout",
    "if (",
    "else",
    "for (",
    "while (",
    "do",
    "break;",
    "continue;",
    "return",
    "return;",
    "discard;",
    "illuminance {",
    "output",
    "outRGBA",
    "outLightWorldDir",
    "outLightDiffuseColor",
    "gWorldPos",
    "gWorldNormal",
    "gEyePos",
    "gLightWorldDir",
    "gLightDiffuseColor",
    "gObjPos",
    "a",
    "b",
    "c",
    "i",
    "f",
    "g",
    "h",
    "m",
    "v",
    "sample",
    "half",
    "input",
    "main",
    "mul(",
    "mix(",
    "lerp(",
    "pow(",
    "max(",
    "mod(",
    "atan(",
    "texture2D(",
    "lessThan(",
    "not(",
    "any(",
    "equal(",
    "transpose(",
    "saturate(",
    "f(",
    "g(",
    "float f(float a)",
    "void g(out int i)",
    "\nmaterial m(uniform float a, out float4 outRGBA) {",
    "\nlight h(uniform float3 c, out float3 outLightWorldDir) {",
    "outRGBA = float4(1.0, 1.0, 1.0, 1.0);",
    "int i = 0;",
    "float a = 1.0;",
    "matrix3 m = matrix3(1.0);",
    "float c[3];",
    "float4(1.0)",
    "float3(0, 1, 2)",
    "m[0]",
    "m[i][1]",
    "c[i]",
    "i++",
    "--i",
    "(i += 1)",
    "(a = b)",
    "a = ",
    "b += ",
};

const std::vector<std::vector<std::string>>& sources()
{
    static const std::vector<std::vector<std::string>> list = []
    {
        std::vector<std::vector<std::string>> split;
        for (const char* folder : {KRENDER_SHARE "/materials", KRENDER_FRONTEND_SOURCES})
            for (const auto& entry : std::filesystem::directory_iterator(folder))
                if (entry.path().extension() == ".krs" && entry.file_size() < 8192)
                {
                    std::ostringstream text;
                    text << std::ifstream(entry.path()).rdbuf();
                    split.push_back(tokens::split(text.str()));
                }
        std::sort(split.begin(), split.end());
        return split;
    }();
    return list;
}

std::string edited(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::string> parts = sources()[data[0] % sources().size()];
    for (std::size_t i = 1; i + 2 < size && !parts.empty(); i += 3)
    {
        const auto at = parts.begin() + static_cast<std::ptrdiff_t>(data[i] * parts.size() / 256);
        const std::string word = std::string(kWords[data[i + 2] % kWords.size()]) + ' ';
        const auto other = parts.begin() + static_cast<std::ptrdiff_t>(data[i + 2] * parts.size() / 256);
        switch (data[i + 1] % 5)
        {
        case 0:
            parts.erase(at);
            break;
        case 1:
            parts.insert(at, word);
            break;
        case 2:
            *at = word;
            break;
        case 3:
            std::iter_swap(at, other);
            break;
        case 4:
            *at = std::string(*other);
            break;
        }
    }
    return tokens::join(parts);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    std::vector<std::string> parts(1);
    if (data[0] % 2 == 0)
        for (std::size_t i = 1; i < size; ++i)
            parts.front().append(kWords[data[i] % kWords.size()]).push_back(' ');
    else
        parts.front() = edited(data + 1, size - 1);
    parts.emplace_back("const float a = 0.5; float f(float a) { return a; }");
    frontendFuzz::readAndCompile(std::move(parts));
    return 0;
}
