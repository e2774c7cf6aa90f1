#pragma once
#include <krender/Export.h>
#include <krender/frontend/Module.h>
#include <krender/frontend/SourceSet.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What editors ask of a source. All of it works on sources with errors too, as far as they could be read.
namespace krFrontend
{

enum class NameKind : std::uint8_t
{
    Function,
    Material,
    Light,
    Displacement,
    Constant, ///< at file level
    Input,    ///< of a function, material or light
    Output,   ///< out or inout; in a function also `output`
    Local,
    Provided, ///< a value that programs have, such as gWorldPos
    BuiltIn,  ///< a function of the language
};

/// What a name stands for.
struct Declaration
{
    NameKind kind = NameKind::Local;
    std::string name;
    /// As KRSL declares it, on one line: "uniform float roughness", "float3 sky(float3 direction)".
    std::string text;
    /// Of the name where it is declared, a function's definition rather than its declarations; empty for what no source
    /// declares.
    SourceRange range;
    /// Where the name can be used; something of the same name within may hide it. Empty as above.
    SourceRange scope;
};

/// A name at some place, with what it stands for.
struct NameUse
{
    SourceRange range;
    Declaration declaration;
};

/// An expression at some place, with its type as KRSL writes it: "float3", "bool2", "float[4]".
struct TypedExpression
{
    SourceRange range;
    std::string type;
};

/// All that the sources declare, arguments and locals too, in the order of the places.
[[nodiscard]] KRENDER_EXPORT std::vector<Declaration> declarationsOf(const Module& module);

/// The name that stands at a place, or ends there; nothing where there is none, or none that could be understood.
[[nodiscard]] KRENDER_EXPORT std::optional<NameUse> nameAt(const Module& module, Offset offset);

/// Everywhere that the thing named at a place is named, its declaration among them, in the order of the places. Empty
/// where nameAt() finds nothing.
[[nodiscard]] KRENDER_EXPORT std::vector<SourceRange> usesOf(const Module& module, Offset offset);

/// The smallest expression around a place whose type is known.
[[nodiscard]] KRENDER_EXPORT std::optional<TypedExpression> expressionAt(const Module& module, Offset offset);

/// What can be named at a place: locals, arguments, and what the file level and the language have, ordered by name.
/// Overloads stand there one by one.
[[nodiscard]] KRENDER_EXPORT std::vector<Declaration> namesVisibleAt(const Module& module, Offset offset);

} // namespace krFrontend
