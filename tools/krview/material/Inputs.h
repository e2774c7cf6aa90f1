#pragma once
#include "GlProgram.h"
#include "Pictures.h"
#include "ResolvedInputs.h"

#include <krview/gl/Texture.h>
#include <krview/mesh/Streams.h>
#include <krview/scene/Scene.h>

#include <krender/core/Ref.h>

#include <string>
#include <vector>

/// The values of a program's inputs in the driver.
class Inputs
{
public:
    /// Looks up the values of the inputs of the material and its lights, and their pictures. Throws an InputError for a
    /// value that does not fit, a krTools::FileError for a picture that cannot be read, and Cancelled.
    /// @param values    what the user set; the first that has an input's name counts. Borrowed for the call
    /// @param material  borrowed
    Inputs(const std::vector<const InputValues*>& values, const Material& material, Pictures& pictures);

    /// The numbers of a uniform; null when there is none of that name in scenes, and for a sampler.
    [[nodiscard]] const std::vector<double>* numbers(const std::string& name) const { return fValues.numbers(name); }

    /// Sets the uniforms of a program that is in use.
    void setUniforms(GlUniforms& uniforms) const;
    /// The number of texture units that setUniforms() takes, from the first.
    [[nodiscard]] GLint textureUnits() const noexcept { return static_cast<GLint>(fTextures.size()); }
    /// Binds the attributes to the streams of a surface, which must have their device copies.
    void bindAttributes(const GlProgram& program, const Groups& groups) const;
    /// Disables the attributes again.
    void unbindAttributes(const GlProgram& program) const;

private:
    ResolvedInputs fValues;
    std::vector<Ref<Texture>> fTextures; ///< of the samplers, in order
};
