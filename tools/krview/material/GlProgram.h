#pragma once
#include "GlUniforms.h"
#include "Material.h"

#include <epoxy/gl.h>

#include <memory>
#include <optional>
#include <string>

/// A material's vertex and fragment programs, compiled and linked by the driver.
class GlProgram
{
public:
    /// Compiles and links.
    /// @param output  gets the driver's errors with their places in the KRSL sources
    /// @return  null when there are errors
    [[nodiscard]] static std::unique_ptr<GlProgram> link(const Material& material, krTools::MessageOutput& output);
    GlProgram(const GlProgram&) = delete;
    GlProgram& operator=(const GlProgram&) = delete;
    ~GlProgram();

    [[nodiscard]] GLuint id() const noexcept { return fId; }
    [[nodiscard]] GlUniforms& uniforms() noexcept { return *fUniforms; }
    /// The location of an attribute; -1 when the program does not use it.
    [[nodiscard]] GLint attribute(const std::string& name) const { return glGetAttribLocation(fId, name.c_str()); }

private:
    GlProgram();
    [[nodiscard]] bool attach(const Material& material, const krTools::Source& text, GLenum stage,
                              krTools::MessageOutput& output) const;

    GLuint fId;
    std::optional<GlUniforms> fUniforms; ///< once it is linked
};
