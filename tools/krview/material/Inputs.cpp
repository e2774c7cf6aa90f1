#include "Inputs.h"

#include <krview/gl/DeviceBuffer.h>

#include <krender/geometry/GeometryData.h>

#include <algorithm>
#include <array>
#include <cstddef>

Inputs::Inputs(const std::vector<const InputValues*>& values, const Material& material, Pictures& pictures)
    : fValues(values, material)
{
    for (const auto& [input, numbers, picture, blur] : fValues.uniforms())
        if (isSampler(input->type))
            fTextures.push_back(pictures.texture(*input, picture, blur));
}

void Inputs::setUniforms(GlUniforms& uniforms) const
{
    GLint unit = 0;
    for (const auto& [input, numbers, picture, blur] : fValues.uniforms())
    {
        if (!isSampler(input->type))
        {
            uniforms.set(input->programName, input->type, numbers);
            continue;
        }
        glActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + unit));
        fTextures[static_cast<std::size_t>(unit)]->bind();
        uniforms.setSampler(input->programName, unit++);
    }
    glActiveTexture(GL_TEXTURE0);
}

void Inputs::bindAttributes(const GlProgram& program, const Groups& groups) const
{
    for (const ResolvedInputs::Attribute& attribute : fValues.attributes())
    {
        const GLint found = program.attribute(attribute.name);
        if (found < 0)
            continue;
        const auto location = static_cast<GLuint>(found);
        if (const GeometryData* stream = findStream(groups, attribute.stream))
        {
            DeviceBuffer::of(*stream).bind();
            glVertexAttribPointer(location, static_cast<GLint>(stream->elementSize()), GL_FLOAT, GL_FALSE, 0, nullptr);
            glEnableVertexAttribArray(location);
            continue;
        }
        std::array<GLdouble, 4> numbers{0, 0, 0, 1};
        std::copy_n(attribute.numbers.begin(), std::min<std::size_t>(attribute.numbers.size(), 4), numbers.begin());
        glVertexAttrib4dv(location, numbers.data());
    }
}

void Inputs::unbindAttributes(const GlProgram& program) const
{
    for (const ResolvedInputs::Attribute& attribute : fValues.attributes())
        if (const GLint location = program.attribute(attribute.name); location >= 0)
            glDisableVertexAttribArray(static_cast<GLuint>(location));
}
