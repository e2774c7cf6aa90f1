#pragma once
#include "Material.h"

#include <krender/shading/DataType.h>

#include <epoxy/gl.h>

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

/// The values of a program's uniforms: set one by one, or gathered for its uniform block where it has one.
class GlUniforms
{
public:
    /// @param program  linked; borrowed
    GlUniforms(GLuint program, const Material& material);
    GlUniforms(const GlUniforms&) = delete;
    GlUniforms& operator=(const GlUniforms&) = delete;
    ~GlUniforms();

    // The program must be in use. What it does not have is passed over.

    /// @param numbers  as many as the type takes; matrices row by row, for column vectors
    void set(const std::string& name, DataType type, std::span<const double> numbers);
    void setSampler(const std::string& name, GLint unit) const;
    /// Gives the block what was set since, ahead of a drawing.
    void flush();

private:
    struct Member
    {
        int offset;       ///< in bytes
        int matrixStride; ///< likewise, of a matrix
    };

    [[nodiscard]] GLint location(const std::string& name) const;
    void write(const Member& member, DataType type, std::span<const double> numbers);

    GLuint fProgram;
    GLuint fBuffer = 0;
    std::map<std::string, Member> fMembers;
    std::vector<std::byte> fBlock;
    bool fIsDirty = false;
};
