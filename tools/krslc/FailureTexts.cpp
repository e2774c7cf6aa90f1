#include "FailureTexts.h"

#include <common/Words.h>

#include <algorithm>
#include <array>
#include <unordered_set>

namespace
{

struct FailureText
{
    std::string_view text;
    std::string_view meaning;
};

constexpr std::array kFailureTexts{
    FailureText{"UNABLE TO ALLOCATE INTERPOLANT!", "no register is left for this per-vertex input"},
    FailureText{"A2V REGISTER OVERFLOW, NOT A RECOGNIZED DATATYPE",
                "no register is left for this per-vertex input, and its type has no zero value"},
    FailureText{"UNRECOGNIZED COMPOUND TYPE!!!", "the material holds a statement of unknown kind"},
    FailureText{"!!!INVALID!!!", "the material holds an empty statement"},
};

/// Finds a vector type with a width other than 1 to 4, as inputs of other types than float to float4 leave it: "vec9",
/// and "float9" in the other target.
void findWidths(std::string_view text, std::string_view type, krTools::Findings& findings)
{
    for (std::size_t at = text.find(type); at != std::string_view::npos; at = text.find(type, at + 1))
    {
        const std::size_t digits = at + type.size();
        const std::size_t end = std::min(text.find_first_not_of("0123456789", digits), text.size());
        const std::string_view width = text.substr(digits, end - digits);
        if (width.empty() || !krTools::isWholeWord(text, at, end))
            continue;
        if (width.size() > 1 || width[0] < '1' || width[0] > '4')
            findings.error(
                at, "no target has a vector type of this width: the per-vertex input's type cannot travel between "
                    "the stages");
    }
}

/// Looks at the lines that the generators declare uniforms in: a tab, "uniform", the type, the name and a mark.
void findRepeatedUniforms(std::string_view text, krTools::Findings& findings)
{
    constexpr std::string_view kDeclaration = "\n\tuniform ";
    std::unordered_set<std::string_view> names;
    for (std::size_t at = text.find(kDeclaration); at != std::string_view::npos; at = text.find(kDeclaration, at + 1))
    {
        const std::size_t type = at + kDeclaration.size();
        const std::size_t end = std::min(text.find('\n', type), text.size()) - 1;
        const std::size_t name = text.rfind(' ', end) + 1;
        if (name > type && !names.insert(text.substr(name, end - name)).second)
            findings.error(name,
                           "another uniform is called " + krTools::inQuotes(text.substr(name, end - name)) + " too");
    }
}

} // namespace

void findFailureTexts(const krTools::Source& program, krTools::Findings& findings)
{
    const std::string_view text = program.text();
    for (const FailureText& failure : kFailureTexts)
        for (std::size_t at = text.find(failure.text); at != std::string_view::npos;
             at = text.find(failure.text, at + 1))
            findings.error(at, std::string(failure.meaning));
    findWidths(text, "vec", findings);
    findWidths(text, "float", findings);
    findRepeatedUniforms(text, findings);
}
