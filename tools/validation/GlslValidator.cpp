#include <validation/GlslValidator.h>

#include <validation/GlslangLog.h>

#include <krender/shadergen/Target.h>

#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace krTools
{

namespace
{

/// How glslang reads the programs of a target.
struct Dialect
{
    std::string_view target;
    glslang::EShSource language;
    int version;
    bool isForVulkan;
    bool isOldest; ///< loops and indices are as narrow as its implementations may have them
};

constexpr std::array kDialects{
    Dialect{"glsl", glslang::EShSourceGlsl, 120, false, false},
    Dialect{"glsl330", glslang::EShSourceGlsl, 330, false, false},
    Dialect{"glsl450", glslang::EShSourceGlsl, 450, true, false},
    Dialect{"essl300", glslang::EShSourceGlsl, 300, false, false},
    Dialect{"essl100", glslang::EShSourceGlsl, 100, false, true},
    Dialect{"hlsl", glslang::EShSourceHlsl, 500, true, false},
};

TBuiltInResource resourcesOf(const Dialect& dialect)
{
    TBuiltInResource resources = *GetDefaultResources();
    if (dialect.isOldest)
        resources.limits = {.nonInductiveForLoops = false,
                            .whileLoops = false,
                            .doWhileLoops = false,
                            .generalUniformIndexing = false,
                            .generalAttributeMatrixVectorIndexing = false,
                            .generalVaryingIndexing = false,
                            .generalSamplerIndexing = false,
                            .generalVariableIndexing = false,
                            .generalConstantMatrixVectorIndexing = false};
    return resources;
}

EShMessages messagesOf(const Dialect& dialect)
{
    const unsigned vulkan = dialect.isForVulkan ? EShMsgSpvRules | EShMsgVulkanRules : 0u;
    const unsigned hlsl = dialect.language == glslang::EShSourceHlsl ? EShMsgReadHlsl | EShMsgHlslOffsets : 0u;
    return static_cast<EShMessages>(vulkan | hlsl);
}

void compile(glslang::TShader& shader, const Dialect& dialect, const Target& target, const Source& program,
             Findings& findings)
{
    // glslang wants the version in the first of the strings that are not skipped, an empty one included.
    const std::string_view text = program.text();
    const std::string_view preamble = target.preamble;
    const bool isWhole = preamble.empty() || text.starts_with("#version");
    const std::array<const char*, 2> strings{isWhole ? text.data() : preamble.data(), text.data()};
    const std::array<int, 2> lengths{static_cast<int>(isWhole ? text.size() : preamble.size()),
                                     static_cast<int>(text.size())};
    shader.setStringsWithLengths(strings.data(), lengths.data(), isWhole ? 1 : 2);
    shader.setEntryPoint("main");
    if (dialect.isForVulkan)
    {
        shader.setEnvInput(dialect.language, shader.getStage(), glslang::EShClientVulkan, 100);
        shader.setEnvClient(glslang::EShClientVulkan, glslang::EShTargetVulkan_1_0);
        shader.setEnvTarget(glslang::EShTargetSpv, glslang::EShTargetSpv_1_0);
    }
    const TBuiltInResource resources = resourcesOf(dialect);
    const bool ok = shader.parse(&resources, dialect.version, false, messagesOf(dialect));
    addLog(shader.getInfoLog(), program, isWhole ? 0 : 1, findings);
    if (!ok && !findings.hasErrors())
        findings.error(0, "this program does not compile");
}

} // namespace

bool canValidateGlsl(const Target& target) noexcept
{
    return std::any_of(kDialects.begin(), kDialects.end(),
                       [&target](const Dialect& dialect) { return dialect.target == target.name; });
}

PairFindings validateGlsl(const Target& target, const Source& vertex, const Source& fragment)
{
    startGlslang();
    const Dialect& dialect = *std::find_if(kDialects.begin(), kDialects.end(),
                                           [&target](const Dialect& row) { return row.target == target.name; });
    PairFindings findings;
    glslang::TShader vertexShader(EShLangVertex);
    glslang::TShader fragmentShader(EShLangFragment);
    compile(vertexShader, dialect, target, vertex, findings.vertex);
    compile(fragmentShader, dialect, target, fragment, findings.fragment);
    if (findings.hasErrors())
        return findings;

    glslang::TProgram program;
    program.addShader(&vertexShader);
    program.addShader(&fragmentShader);
    if (program.link(messagesOf(dialect)))
        return findings;
    forEachMessage(program.getInfoLog(),
                   [&findings](Severity, std::string_view message) { findings.pair.emplace_back(message); });
    if (findings.pair.empty())
        findings.pair.emplace_back("the programs do not link");
    return findings;
}

} // namespace krTools
