#pragma once
#include <krender-targets/SpirvProgram.h>
#include <krender/frontend/Interface.h>

#include <nlohmann/json_fwd.hpp>

#include <optional>

namespace krTools
{

/// What a host has to give a program, as docs/schema/krslc-program.schema.json describes it.
/// @param translation  where the target is translated; else nothing
[[nodiscard]] nlohmann::ordered_json jsonOf(const krFrontend::ProgramInterface& interface,
                                            const std::optional<krTargets::Translation>& translation);
/// A function, material or light, as docs/schema/krslc-interface.schema.json describes it.
[[nodiscard]] nlohmann::ordered_json jsonOf(const krFrontend::SourceSet& sources,
                                            const krFrontend::ShaderInterface& shader);

/// The word for a kind of shader.
[[nodiscard]] const char* kindName(krFrontend::ShaderKind kind) noexcept;

} // namespace krTools
