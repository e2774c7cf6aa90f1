#include "FrontEnds.h"

#include "cg/CgText.h"

#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>
#include <glslang/SPIRV/GlslangToSpv.h>
#include <spirv-tools/libspirv.hpp>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <unistd.h>

namespace frontends
{

namespace
{

/// glslang's process-wide tables, made when first needed.
class Process
{
public:
    static void need() { static const Process process; }

private:
    Process() { glslang::InitializeProcess(); }
    ~Process() { glslang::FinalizeProcess(); }
};

/// What a front end made of one HLSL program.
struct Compiled
{
    std::string faults;
    std::vector<std::uint32_t> code;
};

/// Gives the "%" of ints the sign of the dividend, as Cg and HLSL have it: glslang takes the sign of the divisor.
void mendRemainders(std::vector<std::uint32_t>& code)
{
    constexpr std::size_t kHeaderWords = 5;
    constexpr std::uint32_t kSMod = 139;
    constexpr std::uint32_t kSRem = 138;
    for (std::size_t i = kHeaderWords; i < code.size(); i += code[i] >> 16)
        if ((code[i] & 0xFFFFu) == kSMod)
            code[i] -= kSMod - kSRem;
}

Compiled compileHlsl(EShLanguage stage, const std::string& source)
{
    Process::need();
    const char* text = source.c_str();
    glslang::TShader shader(stage);
    shader.setStrings(&text, 1);
    shader.setEntryPoint("main");
    shader.setSourceEntryPoint("main");
    shader.setEnvInput(glslang::EShSourceHlsl, stage, glslang::EShClientVulkan, 100);
    shader.setEnvClient(glslang::EShClientVulkan, glslang::EShTargetVulkan_1_0);
    shader.setEnvTarget(glslang::EShTargetSpv, glslang::EShTargetSpv_1_0);
    shader.setAutoMapBindings(true);
    shader.setAutoMapLocations(true);
    const auto messages =
        static_cast<EShMessages>(EShMsgSpvRules | EShMsgVulkanRules | EShMsgReadHlsl | EShMsgHlslDX9Compatible);
    glslang::TProgram program;
    program.addShader(&shader);
    if (!shader.parse(GetDefaultResources(), 500, false, messages))
        return {shader.getInfoLog(), {}};
    if (!program.link(messages) || !program.mapIO())
        return {program.getInfoLog(), {}};

    Compiled compiled;
    glslang::GlslangToSpv(*program.getIntermediate(stage), compiled.code);
    mendRemainders(compiled.code);
    spvtools::SpirvTools tools(SPV_ENV_VULKAN_1_0);
    tools.SetMessageConsumer([&](spv_message_level_t, const char*, const spv_position_t&, const char* message)
                             { compiled.faults += std::string(message) + '\n'; });
    if (!tools.Validate(compiled.code) && compiled.faults.empty())
        compiled.faults = "invalid code";
    return compiled;
}

std::string adapterPart(const char* name) { return scenes::readFile(std::string(KRENDER_CG_ADAPTER "/") + name); }

Compiled compileCgVertex(const std::string& program)
{
    return compileHlsl(EShLangVertex, adapterPart("prologue.hlsl") + "#define main cgMain\n#define uniform\n#line 1\n" +
                                          program + "\n#undef main" + adapterPart("vertex_end.hlsl"));
}

Compiled compileCgFragment(const std::string& program)
{
    return compileHlsl(EShLangFragment, adapterPart("prologue.hlsl") + "#line 1\n" + program);
}

/// Turns code back into GLSL with the spirv-cross program.
std::string decompile(const std::vector<std::uint32_t>& code)
{
    std::string path = (std::filesystem::temp_directory_path() / "krender-XXXXXX").string();
    const int descriptor = mkstemp(path.data());
    if (descriptor < 0)
        return "";
    close(descriptor);
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(code.data()), static_cast<std::streamsize>(code.size() * sizeof(code[0])));
    std::string text;
    if (FILE* pipe = popen(("spirv-cross --version 120 --no-es --no-420pack-extension " + path).c_str(), "r"))
    {
        std::array<char, 4096> buffer{};
        while (const std::size_t n = fread(buffer.data(), 1, buffer.size(), pipe))
            text.append(buffer.data(), n);
        pclose(pipe);
    }
    std::filesystem::remove(path);
    return text;
}

/// Renames the struct of uniforms, which comes back with a number for its name: the stages' must not clash.
std::string nameUniforms(const std::string& program, const std::string& name)
{
    std::smatch found;
    if (!std::regex_search(program, found, std::regex(R"(uniform _Global (_\d+);)")))
        return program;
    return std::regex_replace(program, std::regex("\\b" + found[1].str() + "\\b"), name);
}

} // namespace

std::string glslFaults(const scenes::Programs& programs)
{
    Process::need();
    glslang::TShader vertex(EShLangVertex);
    glslang::TShader fragment(EShLangFragment);
    glslang::TProgram program;
    std::string faults;
    const auto add = [&](glslang::TShader& shader, const std::string& text)
    {
        const std::string whole = kGlslPreamble + text;
        const char* source = whole.c_str();
        shader.setStrings(&source, 1);
        if (!shader.parse(GetDefaultResources(), 110, false, EShMsgDefault))
            faults += shader.getInfoLog();
        program.addShader(&shader);
    };
    add(vertex, programs.vertex);
    add(fragment, programs.fragment);
    if (faults.empty() && !program.link(EShMsgDefault))
        faults = program.getInfoLog();
    return faults;
}

std::string cgFaults(const scenes::Programs& programs)
{
    return cgTextFaults(programs) + compileCgVertex(programs.vertex).faults +
           compileCgFragment(programs.fragment).faults;
}

scenes::Programs cgAsGlsl(const scenes::Programs& programs)
{
    // What leaves the one stage and enters the other has to have one name.
    const std::regex leaving(R"(\b_entryPointOutput_)");
    const std::regex entering(R"(\bIN_(?!\d))"); // IN_1 is an input that was called IN
    return {
        std::regex_replace(nameUniforms(decompile(compileCgVertex(programs.vertex).code), "inVertex"), leaving, "to_"),
        std::regex_replace(nameUniforms(decompile(compileCgFragment(programs.fragment).code), "inFragment"), entering,
                           "to_")};
}

} // namespace frontends
