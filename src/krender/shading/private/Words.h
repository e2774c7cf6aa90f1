#pragma once
#include <krender/shading/DataType.h>
#include <krender/shading/Token.h>

#include <string_view>

namespace krShadingDag
{

/// What a word of the language is.
struct WordKind
{
    TokenType type = TokenType::Identifier;
    DataType dataType = kInvalidType; ///< of a data type name
};

/// Looks a word up among the data type names and keywords; any other word is an identifier.
[[nodiscard]] WordKind classifyWord(std::string_view word) noexcept;

} // namespace krShadingDag
