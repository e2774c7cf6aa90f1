#include "SourceGenerator.h"

#include <array>

namespace
{

/// What the two languages spell differently.
struct Spelling
{
    const char* vector;
    const char* uniform;
    const char* varying;
    const char* result;
    const char* begin;
    const char* end;
};

constexpr Spelling kKrsl{"float3", "uniform ", "vertex ", "output", "", ""};
constexpr Spelling kGlsl{"vec3", "", "", "result", "\tvec3 result;\n", "\treturn result;\n"};

void appendFunction(std::string& out, std::size_t number, const Spelling& s)
{
    static constexpr std::array kWords{"base", "sheen", "rough", "warp", "grain", "depth", "tint"};
    const std::string n = std::to_string(number);
    const char* const word = kWords[number % kWords.size()];
    const char* const other = kWords[(number / 7 + 3) % kWords.size()];

    out.append(s.vector).append(" ").append(word).append(other).append(n).append("(");
    out.append(s.uniform).append(s.vector).append(" tone, ").append(s.varying).append("float gain)\n{\n");
    out.append(s.begin);
    out.append("\t").append(s.vector).append(" part = tone * gain + 0.").append(n).append("; // ").append(other);
    out.append("\n");
    if (number % 3 == 0)
        out.append("\tif (gain > 0.5)\n\t{\n\t\tpart *= 2.0;\n\t}\n\telse\n\t\tpart -= 1.5e-2;\n");
    else
        out.append("\tpart = part.zyx * part + tone.xxy / (gain + 1.25);\n");
    out.append("\t").append(s.result).append(" = part * part;\n").append(s.end).append("}\n\n");
}

std::string makeSource(std::size_t bytes, const Spelling& spelling)
{
    std::string source;
    source.reserve(bytes + 512);
    for (std::size_t number = 0; source.size() < bytes; ++number)
        appendFunction(source, number, spelling);
    return source;
}

} // namespace

std::string makeKrslSource(std::size_t bytes) { return makeSource(bytes, kKrsl); }

std::string makeGlslSource(std::size_t bytes) { return makeSource(bytes, kGlsl); }
