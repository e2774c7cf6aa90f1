#pragma once
#include <krender-targets/Export.h>
#include <krender/frontend/Program.h>
#include <krender/shadergen/Target.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// What today's interfaces take, made of the Vulkan GLSL that krender writes. No function throws, except for want of
/// memory, and all may be called from several threads at a time.
namespace krTargets
{

/// How a host reaches the uniform block, the samplers and the vertex inputs of a program. The n-th vertex input is what
/// the interface gives the location n.
enum class Addressing : std::uint8_t
{
    Binding, ///< by the interface's bindings in set 0, the block's is 0; vertex inputs by location
    Name,    ///< by their names in the program; vertex inputs by location too, but for ESSL 1.00
    /// By indices of their own: the block is HLSL's register b0 and the Metal language's buffer 0; vertex inputs are
    /// HLSL's TEXCOORDn and the Metal language's attribute n.
    Index,
};

/// Where a target that addresses by indices has a sampler: HLSL's registers t and s, or the Metal language's indices.
struct SamplerPlace
{
    int texture = 0;
    int sampler = 0;
};

/// A program for one target.
struct Translation
{
    std::string vertex; ///< a text; of SPIR-V the bytes of its words, lower ones first
    std::string fragment;
    std::string entryPoint; ///< of both
    Addressing addressing = Addressing::Binding;
    /// Where a target has no blocks, and each uniform is set by itself: what stands ahead of its name, "kr."; else empty.
    std::string uniformPrefix;
    bool hasSemantics = false; ///< whether vertex inputs go by TEXCOORDn, as in HLSL
    std::vector<SamplerPlace> samplers; ///< in the order of the interface's samplers; empty unless they have indices
};

/// A vertex and a fragment program in SPIR-V 1.0 for Vulkan 1.0, compiled, linked and validated.
class KRENDER_TARGETS_EXPORT SpirvProgram
{
public:
    /// Compiles a program whose target is a row of the language VulkanGlsl; rows that take the material have one text.
    /// @param program  what compileProgram gave; used for the call
    /// @param faults   appended to: what is found is a fault of krender's, and stands at the source's line where there is
    ///                 one; the module is null where there is none
    /// @return  nothing where there are faults
    [[nodiscard]] static std::optional<SpirvProgram> build(const krFrontend::Program& program,
                                                           std::vector<krFrontend::ProgramDiagnostic>& faults);

    SpirvProgram(SpirvProgram&&) noexcept;
    SpirvProgram& operator=(SpirvProgram&&) noexcept;
    ~SpirvProgram();

    [[nodiscard]] std::span<const std::uint32_t> vertexCode() const noexcept;
    [[nodiscard]] std::span<const std::uint32_t> fragmentCode() const noexcept;

    /// Translates the program for a target.
    /// @param target  a row that isTranslated, and for which compileProgram took the material
    /// @param faults  appended to, as by build
    /// @return  nothing where there are faults
    [[nodiscard]] std::optional<Translation> translate(const Target& target,
                                                       std::vector<krFrontend::ProgramDiagnostic>& faults) const;

private:
    struct Contents;
    explicit SpirvProgram(std::unique_ptr<Contents> contents) noexcept;

    std::unique_ptr<Contents> fContents;
};

/// The bytes of a program past which it is not compiled: it would take too long.
inline constexpr std::size_t kMostCompiledBytes = std::size_t{1} << 20;

} // namespace krTargets
