#include "krender-targets/private/GlslCompiler.h"

#include <krender/frontend/Program.h>

#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>
#include <glslang/SPIRV/GlslangToSpv.h>
#include <spirv-tools/libspirv.hpp>

#include <algorithm>
#include <charconv>
#include <memory>
#include <system_error>

namespace krTargets
{
namespace
{

constexpr int kVersion = 450;
constexpr EShMessages kMessages = static_cast<EShMessages>(EShMsgSpvRules | EShMsgVulkanRules);

/// glslang's tables, which stay until the library is unloaded.
/// It is never finalised: glslang keeps its lock when it runs out of memory, and its finaliser would wait for that.
void startGlslang() { [[maybe_unused]] static const bool isStarted = glslang::InitializeProcess(); }

/// Takes a number and a colon off the front of a text; 0 when they are not there.
std::size_t takeNumber(std::string_view& text)
{
    std::size_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest == end || *rest != ':')
        return 0;
    text.remove_prefix(static_cast<std::size_t>(rest - text.data()) + 1);
    return number;
}

/// Adds the errors of a log, whose lines are "ERROR: string:line: text".
void addLog(std::string_view log, bool isFragment, std::vector<Fault>& faults)
{
    constexpr std::string_view kError = "ERROR: ";
    constexpr std::string_view kOnlyString = "0:";
    while (!log.empty())
    {
        const std::size_t end = std::min(log.find('\n'), log.size());
        std::string_view line = log.substr(0, end);
        log.remove_prefix(std::min(end + 1, log.size()));
        if (!line.starts_with(kError))
            continue;
        line.remove_prefix(kError.size());
        Fault fault{isFragment, 0, {}};
        if (line.starts_with(kOnlyString))
        {
            line.remove_prefix(kOnlyString.size());
            fault.line = takeNumber(line);
            if (!faults.empty() && faults.back().isFragment == isFragment && faults.back().line == fault.line)
                continue; // it follows from the one before
        }
        else if (!faults.empty())
            continue; // it sums up the others
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        fault.text = line;
        faults.push_back(std::move(fault));
    }
}

void parse(glslang::TShader& shader, const std::string& text, std::vector<Fault>& faults)
{
    const char* const start = text.c_str();
    const int length = static_cast<int>(text.size());
    shader.setStringsWithLengths(&start, &length, 1);
    shader.setEnvInput(glslang::EShSourceGlsl, shader.getStage(), glslang::EShClientVulkan, 100);
    shader.setEnvClient(glslang::EShClientVulkan, glslang::EShTargetVulkan_1_0);
    shader.setEnvTarget(glslang::EShTargetSpv, glslang::EShTargetSpv_1_0);
    const bool isFragment = shader.getStage() == EShLangFragment;
    const std::size_t before = faults.size();
    if (shader.parse(GetDefaultResources(), kVersion, false, kMessages))
        return;
    addLog(shader.getInfoLog(), isFragment, faults);
    if (faults.size() == before)
        faults.push_back({isFragment, 0, "the program does not compile"});
}

std::vector<std::uint32_t> codeOf(const glslang::TProgram& program, EShLanguage stage)
{
    std::vector<std::uint32_t> code;
    glslang::SpvOptions options;
    options.disableOptimizer = true;
    glslang::GlslangToSpv(*program.getIntermediate(stage), code, &options);
    return code;
}

void validate(const std::vector<std::uint32_t>& code, bool isFragment, std::vector<Fault>& faults)
{
    spvtools::SpirvTools tools(SPV_ENV_VULKAN_1_0);
    std::string found;
    tools.SetMessageConsumer([&found](spv_message_level_t level, const char*, const spv_position_t&, const char* text)
                             { found = level <= SPV_MSG_ERROR ? text : found; });
    if (!tools.Validate(code))
        faults.push_back({isFragment, 0, "the SPIR-V is not valid: " + found});
}

} // namespace

Binaries compileGlsl(std::string_view vertex, std::string_view fragment, std::vector<Fault>& faults)
{
    startGlslang();
    const std::string vertexText = krFrontend::withoutLineDirectives(vertex);
    const std::string fragmentText = krFrontend::withoutLineDirectives(fragment);
    glslang::TShader vertexShader(EShLangVertex);
    glslang::TShader fragmentShader(EShLangFragment);
    parse(vertexShader, vertexText, faults);
    parse(fragmentShader, fragmentText, faults);
    if (!faults.empty())
        return {};

    glslang::TProgram program;
    program.addShader(&vertexShader);
    program.addShader(&fragmentShader);
    if (!program.link(kMessages))
    {
        addLog(program.getInfoLog(), true, faults);
        if (faults.empty())
            faults.push_back({true, 0, "the programs do not link"});
        return {};
    }
    Binaries binaries{codeOf(program, EShLangVertex), codeOf(program, EShLangFragment)};
    validate(binaries.vertex, false, faults);
    validate(binaries.fragment, true, faults);
    return binaries;
}

} // namespace krTargets
