#include "FrontEnds.h"

#include <common/Findings.h>
#include <common/Source.h>
#include <validation/CgReader.h>
#include <validation/CgValidator.h>
#include <validation/GlslValidator.h>
#include <validation/PairFindings.h>

#include <glslang/SPIRV/GlslangToSpv.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <vector>

namespace frontends
{

namespace
{

using Validator = krTools::PairFindings (*)(const krTools::Source&, const krTools::Source&);

std::string faults(Validator validate, const scenes::Programs& programs)
{
    const krTools::PairFindings findings =
        validate(krTools::Source("vertex", programs.vertex), krTools::Source("fragment", programs.fragment));
    std::string text;
    for (const krTools::Findings& program : {findings.vertex, findings.fragment})
        for (const krTools::Finding& finding : program.kept())
            if (finding.severity == krTools::Severity::Error)
                text += finding.text + '\n';
    for (const std::string& error : findings.pair)
        text += error + '\n';
    return text;
}

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

std::vector<std::uint32_t> codeOf(EShLanguage stage, const std::string& program)
{
    krTools::CgReader reader(stage);
    krTools::Findings findings;
    std::vector<std::uint32_t> code;
    if (reader.read(krTools::Source("program", program), findings))
        glslang::GlslangToSpv(reader.tree(), code);
    mendRemainders(code);
    return code;
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
    return faults([](const krTools::Source& vertex, const krTools::Source& fragment)
                  { return krTools::validateGlsl(*findTarget("glsl"), vertex, fragment); },
                  programs);
}

std::string cgFaults(const scenes::Programs& programs) { return faults(krTools::validateCg, programs); }

scenes::Programs cgAsGlsl(const scenes::Programs& programs)
{
    // What leaves the one stage and enters the other has to have one name.
    const std::regex leaving(R"(\b_entryPointOutput_)");
    const std::regex entering(R"(\bIN_(?!\d))"); // IN_1 is an input that was called IN
    return {
        std::regex_replace(nameUniforms(decompile(codeOf(EShLangVertex, programs.vertex)), "inVertex"), leaving, "to_"),
        std::regex_replace(nameUniforms(decompile(codeOf(EShLangFragment, programs.fragment)), "inFragment"), entering,
                           "to_")};
}

} // namespace frontends
