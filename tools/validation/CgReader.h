#pragma once
#include <common/Findings.h>

#include <glslang/Public/ShaderLang.h>

namespace krTools
{

/// Reads one Cg program with glslang's HLSL front end: no Cg compiler comes with today's systems, and HLSL is Cg's sibling.
/// The front end gets a copy in which
/// - Cg's texture functions are written out in HLSL's, and glstate.matrix.mvp is a uniform;
/// - POSITION is SV_Position;
/// - words that HLSL reserves or defines and Cg does not are ordinary names;
/// - the vertex program is a function that the true entry calls with global uniforms, since it assigns to a uniform
///   parameter, which HLSL forbids.
class CgReader
{
public:
    /// @param stage  EShLangVertex or EShLangFragment
    explicit CgReader(EShLanguage stage);

    /// Reads the program, once. Errors are added at their places.
    /// @return  whether it is correct
    [[nodiscard]] bool read(const Source& program, Findings& findings);

    /// The program as glslang holds it, laid out for Vulkan, once it was read without an error.
    [[nodiscard]] const glslang::TIntermediate& tree() const { return *fProgram.getIntermediate(fStage); }

private:
    EShLanguage fStage;
    glslang::TShader fShader;
    glslang::TProgram fProgram; // ends before the shader in it
};

} // namespace krTools
