#pragma once
#include <common/MaterialCompiler.h>

#include <krender/frontend/Interface.h>

#include <nlohmann/json_fwd.hpp>

#include <string>

/// What a host has to give a program, as docs/schema/krslc-program.schema.json describes it.
[[nodiscard]] nlohmann::ordered_json jsonOf(const krTools::CompiledProgram& compiled);
/// A function, material or light, as docs/schema/krslc-interface.schema.json describes it.
[[nodiscard]] nlohmann::ordered_json jsonOf(const krFrontend::SourceSet& sources,
                                            const krFrontend::ShaderInterface& shader);

/// The word for a kind of shader.
[[nodiscard]] const char* kindName(krFrontend::ShaderKind kind) noexcept;
