#pragma once
#include "Material.h"

#include <epoxy/gl.h>

#include <memory>

/// A material's programs in the driver.
class GlProgram
{
public:
    /// Compiles and links. What the driver rejects is printed at the place in the KRSL sources that it came from.
    /// @return  null when it rejects something
    [[nodiscard]] static std::unique_ptr<GlProgram> link(const Material& material);
    GlProgram(const GlProgram&) = delete;
    GlProgram& operator=(const GlProgram&) = delete;
    ~GlProgram();

    [[nodiscard]] GLuint id() const noexcept { return fId; }
    /// Where a uniform is; -1 when the driver has found no use for it, which setting a value then ignores.
    [[nodiscard]] GLint uniform(const std::string& name) const { return glGetUniformLocation(fId, name.c_str()); }
    /// Where an attribute is; -1 likewise.
    [[nodiscard]] GLint attribute(const std::string& name) const { return glGetAttribLocation(fId, name.c_str()); }

private:
    GlProgram();
    [[nodiscard]] bool attach(const Material& material, const krTools::Source& text, GLenum stage) const;

    GLuint fId;
};
