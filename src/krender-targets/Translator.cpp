#include "krender-targets/private/Translator.h"

#include <krender-targets/SpirvProgram.h>
#include <krender/frontend/Interface.h>
#include <krender/shadergen/Target.h>
#include <krender/shading/DataType.h>

#include <spirv_cross/spirv_glsl.hpp>
#include <spirv_cross/spirv_hlsl.hpp>
#include <spirv_cross/spirv_msl.hpp>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

namespace krTargets
{
namespace
{

using krFrontend::ProgramInterface;
using krFrontend::UniformInterface;

/// What stands for the uniform block in texts.
constexpr const char* kBlockInstance = "kr";
/// HLSL has it ahead of each member's name, where "kr_Normal" would be the vertex input.
constexpr const char* kHlslInstance = "kr_uniform";

void requireName(const std::string& found, const std::string& wanted)
{
    if (found != wanted)
        throw std::runtime_error("the translation calls '" + wanted + "' '" + found + "'");
}

/// Whether hosts find everything under the name that the interface tells.
void checkNames(const spirv_cross::Compiler& compiler, const ProgramInterface& interface)
{
    const spirv_cross::ShaderResources resources = compiler.get_shader_resources();
    const auto nameAt = [&compiler](const auto& list, spv::Decoration decoration, int number)
    {
        for (const spirv_cross::Resource& resource : list)
            if (compiler.get_decoration(resource.id, decoration) == static_cast<unsigned>(number))
                return compiler.get_name(resource.id);
        return std::string();
    };
    const bool isVertex = compiler.get_execution_model() == spv::ExecutionModelVertex;
    const spirv_cross::TypeID block = resources.uniform_buffers[0].base_type_id;
    unsigned member = 0;
    for (const krFrontend::FrameUniformInterface& uniform : interface.block.frameUniforms)
        requireName(compiler.get_member_name(block, member++), uniform.programName);
    for (const UniformInterface& uniform : interface.uniforms)
        if (uniform.offset >= 0)
            requireName(compiler.get_member_name(block, member++), uniform.programName);
        else if (!isVertex)
            requireName(nameAt(resources.sampled_images, spv::DecorationBinding, uniform.binding), uniform.programName);
    if (!isVertex)
        return;
    for (const krFrontend::FrameInputInterface& input : interface.block.frameInputs)
        requireName(nameAt(resources.stage_inputs, spv::DecorationLocation, input.location), input.programName);
    for (const krFrontend::VertexInputInterface& input : interface.vertexInputs)
        requireName(nameAt(resources.stage_inputs, spv::DecorationLocation, input.location), input.programName);
}

/// Names the block's instance alike in both stages, which older dialects link by it, and compiles.
std::string compile(spirv_cross::Compiler& compiler, const ProgramInterface& interface,
                    const char* instance = kBlockInstance)
{
    const spirv_cross::ShaderResources resources = compiler.get_shader_resources();
    compiler.set_name(resources.uniform_buffers[0].id, instance);
    std::string text = compiler.compile();
    checkNames(compiler, interface);
    return text;
}

/// The samplers' indices where each kind of resource is counted from 0.
std::vector<SamplerPlace> countedSamplers(const ProgramInterface& interface)
{
    std::vector<SamplerPlace> places;
    for (const UniformInterface& uniform : interface.uniforms)
        if (uniform.binding >= 0)
            places.push_back({uniform.binding - 1, uniform.binding - 1});
    return places;
}

std::string bytesOf(const std::vector<std::uint32_t>& code)
{
    std::string bytes;
    bytes.reserve(code.size() * sizeof code[0]);
    for (const std::uint32_t word : code)
        for (unsigned shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(word >> shift & 0xFFu);
    return bytes;
}

Translation translateToSpirv(const Binaries& code, const ProgramInterface&, const Target&)
{
    return {bytesOf(code.vertex), bytesOf(code.fragment), "main", Addressing::Binding, "", false, {}};
}

struct GlslDialect
{
    std::string_view target;
    unsigned version;
    bool isEmbedded;
    bool hasBlocks;
};

constexpr std::array kDialects{
    GlslDialect{"glsl330", 330, false, true},
    GlslDialect{"essl300", 300, true, true},
    GlslDialect{"essl100", 100, true, false},
};

std::string glslText(const std::vector<std::uint32_t>& code, const ProgramInterface& interface,
                     const GlslDialect& dialect)
{
    spirv_cross::CompilerGLSL compiler(code);
    spirv_cross::CompilerGLSL::Options options;
    options.version = dialect.version;
    options.es = dialect.isEmbedded;
    options.enable_420pack_extension = false;
    options.vertex.support_nonzero_base_instance = false;
    options.fragment.default_float_precision = spirv_cross::CompilerGLSL::Options::Highp;
    compiler.set_common_options(options);
    return compile(compiler, interface);
}

Translation translateToGlsl(const Binaries& code, const ProgramInterface& interface, const Target& target)
{
    const GlslDialect& dialect = *std::find_if(kDialects.begin(), kDialects.end(),
                                               [&](const GlslDialect& row) { return row.target == target.name; });
    return {glslText(code.vertex, interface, dialect),
            glslText(code.fragment, interface, dialect),
            "main",
            Addressing::Name,
            dialect.hasBlocks ? "" : std::string(kBlockInstance) + '.',
            false,
            {}};
}

std::string hlslText(const std::vector<std::uint32_t>& code, const ProgramInterface& interface)
{
    spirv_cross::CompilerHLSL compiler(code);
    spirv_cross::CompilerHLSL::Options options;
    options.shader_model = 50;
    compiler.set_hlsl_options(options);
    // Registers count from 0 a kind: there are 16 for samplers, and the set's bindings begin behind the block.
    for (const UniformInterface& uniform : interface.uniforms)
        if (uniform.binding >= 0)
        {
            spirv_cross::HLSLResourceBinding place;
            place.stage = compiler.get_execution_model();
            place.binding = static_cast<unsigned>(uniform.binding);
            place.srv.register_binding = place.sampler.register_binding = place.binding - 1;
            compiler.add_hlsl_resource_binding(place);
        }
    return compile(compiler, interface, kHlslInstance);
}

Translation translateToHlsl(const Binaries& code, const ProgramInterface& interface, const Target&)
{
    return {hlslText(code.vertex, interface), hlslText(code.fragment, interface), "main", Addressing::Index, "", true,
            countedSamplers(interface)};
}

std::string mslText(const std::vector<std::uint32_t>& code, const ProgramInterface& interface)
{
    spirv_cross::CompilerMSL compiler(code);
    spirv_cross::CompilerMSL::Options options;
    options.set_msl_version(2, 0);
    compiler.set_msl_options(options);
    for (const UniformInterface& uniform : interface.uniforms)
        if (uniform.binding >= 0)
        {
            spirv_cross::MSLResourceBinding place;
            place.stage = compiler.get_execution_model();
            place.basetype = spirv_cross::SPIRType::SampledImage;
            place.binding = static_cast<unsigned>(uniform.binding);
            place.count = 1;
            place.msl_texture = place.msl_sampler = place.binding - 1;
            compiler.add_msl_resource_binding(place);
        }
    return compile(compiler, interface);
}

Translation translateToMsl(const Binaries& code, const ProgramInterface& interface, const Target&)
{
    return {mslText(code.vertex, interface), mslText(code.fragment, interface), "main0", Addressing::Index, "", false,
            countedSamplers(interface)};
}

struct Road
{
    std::string_view target;
    Translation (*translate)(const Binaries& code, const ProgramInterface& interface, const Target& target);
};

constexpr std::array kRoads{
    Road{"spirv", translateToSpirv},   Road{"glsl330", translateToGlsl}, Road{"essl300", translateToGlsl},
    Road{"essl100", translateToGlsl}, Road{"hlsl", translateToHlsl},    Road{"msl", translateToMsl},
};

} // namespace

Translation translateCode(const Binaries& code, const ProgramInterface& interface, const Target& target)
{
    const auto road =
        std::find_if(kRoads.begin(), kRoads.end(), [&target](const Road& row) { return row.target == target.name; });
    if (road == kRoads.end())
        throw std::runtime_error("there is no translation for " + std::string(target.name));
    return road->translate(code, interface, target);
}

} // namespace krTargets
