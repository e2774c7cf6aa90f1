#include <validation/GlslValidator.h>

#include <validation/GlslangLog.h>

#include <krender/shadergen/Target.h>

#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>

#include <array>
#include <string_view>

namespace krTools
{

namespace
{

constexpr int kVersion = 120;

void compile(glslang::TShader& shader, const Source& program, Findings& findings)
{
    // glslang wants the version in the first of the strings that are not skipped, an empty one included.
    const std::string_view text = program.text();
    const std::string_view preamble = findTarget("glsl")->preamble;
    const bool isWhole = text.starts_with("#version");
    const std::array<const char*, 2> strings{isWhole ? text.data() : preamble.data(), text.data()};
    const std::array<int, 2> lengths{static_cast<int>(isWhole ? text.size() : preamble.size()),
                                     static_cast<int>(text.size())};
    shader.setStringsWithLengths(strings.data(), lengths.data(), isWhole ? 1 : 2);
    const bool ok = shader.parse(GetDefaultResources(), kVersion, false, EShMsgDefault);
    addLog(shader.getInfoLog(), program, isWhole ? 0 : 1, findings);
    if (!ok && !findings.hasErrors())
        findings.error(0, "this program does not compile");
}

} // namespace

PairFindings validateGlsl(const Source& vertex, const Source& fragment)
{
    startGlslang();
    PairFindings findings;
    glslang::TShader vertexShader(EShLangVertex);
    glslang::TShader fragmentShader(EShLangFragment);
    compile(vertexShader, vertex, findings.vertex);
    compile(fragmentShader, fragment, findings.fragment);
    if (findings.hasErrors())
        return findings;

    glslang::TProgram program;
    program.addShader(&vertexShader);
    program.addShader(&fragmentShader);
    if (program.link(EShMsgDefault))
        return findings;
    forEachMessage(program.getInfoLog(),
                   [&findings](Severity, std::string_view message) { findings.pair.emplace_back(message); });
    if (findings.pair.empty())
        findings.pair.emplace_back("the programs do not link");
    return findings;
}

} // namespace krTools
