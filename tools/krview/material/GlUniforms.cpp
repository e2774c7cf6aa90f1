#include "GlUniforms.h"

#include <array>
#include <cstring>

namespace
{

/// Whether the components of a type are whole numbers for the driver, as those of a bool are.
bool isWhole(DataType type) { return type == kBool || dataTypeNumFloats(type) == 0; }

void setNumbers(GLint location, DataType type, std::span<const double> numbers)
{
    std::array<GLfloat, 16> floats{};
    std::array<GLint, 16> ints{};
    for (std::size_t i = 0; i < numbers.size(); ++i)
    {
        floats[i] = static_cast<GLfloat>(numbers[i]);
        ints[i] = isWhole(type) ? static_cast<GLint>(numbers[i]) : 0;
    }
    switch (type)
    {
    case kFloat:
        return glUniform1fv(location, 1, floats.data());
    case kFloat2:
        return glUniform2fv(location, 1, floats.data());
    case kFloat3:
        return glUniform3fv(location, 1, floats.data());
    case kFloat4:
        return glUniform4fv(location, 1, floats.data());
    case kBool:
    case kInt:
        return glUniform1iv(location, 1, ints.data());
    case kInt2:
        return glUniform2iv(location, 1, ints.data());
    case kInt3:
        return glUniform3iv(location, 1, ints.data());
    case kInt4:
        return glUniform4iv(location, 1, ints.data());
    case kMatrix2:
        return glUniformMatrix2fv(location, 1, GL_TRUE, floats.data());
    case kMatrix3:
        return glUniformMatrix3fv(location, 1, GL_TRUE, floats.data());
    case kMatrix4:
        return glUniformMatrix4fv(location, 1, GL_TRUE, floats.data());
    default:
        return;
    }
}

} // namespace

GlUniforms::GlUniforms(GLuint program, const Material& material) : fProgram(program)
{
    const krFrontend::UniformBlockInterface& block = material.interface.block;
    if (block.size == 0)
        return;
    for (const krFrontend::FrameUniformInterface& uniform : block.frameUniforms)
        fMembers[uniform.programName] = {uniform.offset, uniform.matrixStride};
    for (const krFrontend::UniformInterface& uniform : material.interface.uniforms)
        if (uniform.offset >= 0)
            fMembers[uniform.programName] = {uniform.offset, uniform.matrixStride};
    fBlock.resize(static_cast<std::size_t>(block.size));
    glGenBuffers(1, &fBuffer);
    if (const GLuint index = glGetUniformBlockIndex(program, block.name.c_str()); index != GL_INVALID_INDEX)
        glUniformBlockBinding(program, index, 0);
}

GlUniforms::~GlUniforms() { glDeleteBuffers(1, &fBuffer); }

GLint GlUniforms::location(const std::string& name) const { return glGetUniformLocation(fProgram, name.c_str()); }

void GlUniforms::set(const std::string& name, DataType type, std::span<const double> numbers)
{
    if (fBlock.empty())
        return setNumbers(location(name), type, numbers);
    if (const auto member = fMembers.find(name); member != fMembers.end())
        write(member->second, type, numbers);
}

void GlUniforms::write(const Member& member, DataType type, std::span<const double> numbers)
{
    const std::size_t side = isMatrix(type) ? maxDim(type) : 1;
    for (std::size_t i = 0; i < numbers.size(); ++i)
    {
        // A block keeps matrices column by column.
        const std::size_t place =
            isMatrix(type) ? i % side * static_cast<std::size_t>(member.matrixStride) + i / side * sizeof(GLfloat)
                           : i * sizeof(GLfloat);
        std::byte* const target = &fBlock[static_cast<std::size_t>(member.offset) + place];
        const auto number = static_cast<GLfloat>(numbers[i]);
        const GLint whole = isWhole(type) ? static_cast<GLint>(numbers[i]) : 0;
        std::memcpy(target, isWhole(type) ? static_cast<const void*>(&whole) : &number, sizeof number);
    }
    fIsDirty = true;
}

void GlUniforms::setSampler(const std::string& name, GLint unit) const { glUniform1i(location(name), unit); }

void GlUniforms::flush()
{
    if (fBlock.empty())
        return;
    glBindBufferBase(GL_UNIFORM_BUFFER, 0, fBuffer);
    if (fIsDirty)
        glBufferData(GL_UNIFORM_BUFFER, static_cast<GLsizeiptr>(fBlock.size()), fBlock.data(), GL_DYNAMIC_DRAW);
    fIsDirty = false;
}
