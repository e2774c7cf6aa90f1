// What krender-targets says when the programs are wrong, and that its answers depend on nothing else.
#include "TargetPrograms.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <spirv_cross/spirv_glsl.hpp>

#include <algorithm>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace
{

const std::string kSource = R"(light sun(uniform bool isOn, uniform sampler2D slide, uniform float3 color,
    out float3 outLightDiffuseColor)
{
    outLightDiffuseColor = isOn ? color * texture2D(slide, gWorldPos.xy).rgb : float3(0);
}
material m(uniform float a, uniform bool lit, uniform matrix2 turn, uniform sampler2D unused, uniform int2 i,
    uniform matrix3 wide, uniform float3 b, uniform float c, uniform matrix4 whole, uniform int3 j,
    vertex float2 uv, vertex float4 tint, out float4 outRGBA)
{
    outRGBA = float4(turn * uv, wide[0].x, a) * tint + whole[1];
    illuminance
    {
        outRGBA.rgb += gLightDiffuseColor * b * c;
    }
    outRGBA.x += lit ? float(i.x + j.z) : 0;
}
)";

TEST(Faults, StandAtTheLineOfTheSource)
{
    const Request request = requestOf(kSource);
    krFrontend::Program program = compileFor(request, *findTarget("glsl450")).program;
    const std::string text = "outRGBA.rgb += gLightDiffuseColor";
    program.fragment.replace(program.fragment.find(text), text.size(), "outRGBA.rgb += nothing");
    std::vector<krFrontend::ProgramDiagnostic> faults;
    EXPECT_FALSE(krTargets::SpirvProgram::build(program, faults));
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_TRUE(faults[0].diagnostic.text.starts_with("this is a fault of krender's: 'nothing'"));
    ASSERT_EQ(faults[0].module, &request.modules[0]);
    const krFrontend::SourceLocation at = request.modules[0].sources().location(faults[0].diagnostic.range.begin);
    EXPECT_EQ(at.line, 13u);
    EXPECT_EQ(at.column, 9u);
}

TEST(Faults, OfLengthAndOfStagesThatDisagreeHaveNoPlace)
{
    const krFrontend::Program good = compileFor(requestOf(kSource), *findTarget("glsl450")).program;
    krFrontend::Program program = good;
    program.vertex.append(krTargets::kMostCompiledBytes, ' ');
    std::vector<krFrontend::ProgramDiagnostic> faults;
    EXPECT_FALSE(krTargets::SpirvProgram::build(program, faults));
    program = good;
    const std::string member = "float a;";
    program.vertex.replace(program.vertex.find(member), member.size(), "float z;");
    EXPECT_FALSE(krTargets::SpirvProgram::build(program, faults));
    ASSERT_EQ(faults.size(), 2u);
    EXPECT_FALSE(faults[0].module || faults[1].module);
    const auto binary = krTargets::SpirvProgram::build(good, faults);
    ASSERT_TRUE(binary);
    EXPECT_FALSE(binary->translate(*findTarget("cg"), faults));
    EXPECT_EQ(faults.size(), 3u);
}

// The library works the block out by itself.
TEST(Interface, HasThePlacesThatTheCodeHas)
{
    const krFrontend::Program program = compileFor(requestOf(kSource), *findTarget("spirv")).program;
    std::vector<krFrontend::ProgramDiagnostic> faults;
    const auto binary = krTargets::SpirvProgram::build(program, faults);
    ASSERT_TRUE(binary);
    const std::vector<std::uint32_t> code(binary->fragmentCode().begin(), binary->fragmentCode().end());
    const spirv_cross::CompilerGLSL compiler(code);
    const spirv_cross::ShaderResources resources = compiler.get_shader_resources();
    const spirv_cross::TypeID block = resources.uniform_buffers[0].base_type_id;
    const spirv_cross::SPIRType& type = compiler.get_type(block);
    EXPECT_EQ((compiler.get_declared_struct_size(type) + 15) / 16 * 16,
              static_cast<std::size_t>(program.interface.block.size));
    unsigned member = 0;
    const auto expectMember = [&](const std::string& name, int offset, int stride)
    {
        EXPECT_EQ(compiler.get_member_name(block, member), name);
        EXPECT_EQ(compiler.type_struct_member_offset(type, member), static_cast<unsigned>(offset)) << name;
        const unsigned found = stride > 0 ? compiler.type_struct_member_matrix_stride(type, member) : 0;
        EXPECT_EQ(found, static_cast<unsigned>(stride)) << name;
        ++member;
    };
    for (const krFrontend::FrameUniformInterface& uniform : program.interface.block.frameUniforms)
        expectMember(uniform.programName, uniform.offset, uniform.matrixStride);
    std::map<std::string, unsigned> bindings;
    for (const spirv_cross::Resource& sampler : resources.sampled_images)
        bindings[sampler.name] = compiler.get_decoration(sampler.id, spv::DecorationBinding);
    for (const krFrontend::UniformInterface& uniform : program.interface.uniforms)
        if (uniform.offset >= 0)
            expectMember(uniform.programName, uniform.offset, uniform.matrixStride);
        else
            EXPECT_EQ(bindings[uniform.programName], static_cast<unsigned>(uniform.binding)) << uniform.programName;
    EXPECT_EQ(member, type.member_types.size());
    EXPECT_EQ(bindings.size(), 2u);
}

// The longest expression that the front end takes, in a thread with little room.
TEST(Translations, NeedNoLargeStack)
{
    std::string sum = "u";
    for (unsigned i = 0; i < 4000; ++i)
        sum += " + u";
    const Request request = requestOf("material m(uniform float u, out float4 outRGBA)\n{ outRGBA = float4(" + sum + "); }\n");
    const krFrontend::Program program = compileFor(request, *findTarget("glsl450")).program;
    struct Work
    {
        const krFrontend::Program& program;
        bool isDone = false;
    } work{program};
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, std::size_t{128} << 10);
    pthread_t thread{};
    const auto run = [](void* argument) -> void*
    {
        Work& own = *static_cast<Work*>(argument);
        std::vector<krFrontend::ProgramDiagnostic> faults;
        const auto binary = krTargets::SpirvProgram::build(own.program, faults);
        own.isDone = binary && binary->translate(*findTarget("msl"), faults) &&
                     binary->translate(*findTarget("hlsl"), faults);
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
    pthread_attr_destroy(&attributes);
    pthread_join(thread, nullptr);
    EXPECT_TRUE(work.isDone);
}

TEST(Translations, AreTheSameInAnyOrderAndInAnyThread)
{
    const Request request = requestOf(kSource);
    const auto all = [&request](bool reversed)
    {
        std::vector<const Target*> order = vulkanTargets();
        if (reversed)
            std::reverse(order.begin(), order.end());
        std::map<std::string, std::string> texts;
        for (const Target* target : order)
        {
            const TargetProgram program = compileFor(request, *target);
            texts[std::string(target->name)] = program.problems + program.vertex() + program.fragment();
        }
        return texts;
    };
    const auto expected = all(false);
    std::vector<std::map<std::string, std::string>> found(4);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < found.size(); ++i)
        threads.emplace_back([&, i] { found[i] = all(i % 2 == 1); });
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& texts : found)
        EXPECT_EQ(texts, expected);
}

} // namespace
