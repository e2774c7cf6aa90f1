#pragma once
#include <common/Findings.h>

#include <string>
#include <vector>

/// What a GLSL 1.20 program of this system begins with when it goes to a driver.
inline constexpr std::string_view kGlslPreamble = "#version 120\n#define vec1 float\n";

/// Compiles GLSL programs and links them, with a real compiler front end. One object exists at a time.
class GlslValidator
{
public:
    GlslValidator();
    GlslValidator(const GlslValidator&) = delete;
    GlslValidator& operator=(const GlslValidator&) = delete;
    ~GlslValidator();

    /// Compiles and links the two programs of a material. A program without the preamble is read as if it had it.
    /// @param vertexFindings, fragmentFindings  get the errors and warnings that have a place
    /// @return  what is wrong with the pair, when each compiles; one text an error
    [[nodiscard]] std::vector<std::string> validate(const krTools::Source& vertex, krTools::Findings& vertexFindings,
                                                    const krTools::Source& fragment,
                                                    krTools::Findings& fragmentFindings) const;
};
