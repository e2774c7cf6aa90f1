#pragma once
#include <epoxy/gl.h>

#include <span>

/// Links a program of krview's own. Its texts are written in the words of new versions, `in`, `out`, and `result` for
/// what a fragment becomes, which a few lines ahead make known to old ones; cube maps are read with textureCube.
/// Throws a DisplayError when the driver refuses it.
/// @param attributes  their names, in the order of their locations
/// @return  owned by the caller
[[nodiscard]] GLuint linkOwnProgram(const char* vertexText, const char* fragmentText,
                                    std::span<const char* const> attributes);
