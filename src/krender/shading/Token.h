#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>

#include <cstdint>
#include <vector>

namespace krShadingDag
{

/// The kinds of tokens. The numbers are fixed, and those between them are never produced.
enum class TokenType : std::uint32_t
{
    Unknown = 0,
    EndOfStream = 1,
    Comment = 2,
    DataTypeName = 3,
    Identifier = 4,
    Number = 5,
    QuotedString = 6,
    KeywordOut = 7,
    KeywordReturn = 8,
    KeywordOutput = 9,
    KeywordConstant = 16,
    KeywordDo = 20,
    KeywordElse = 22,
    KeywordEvaluate = 26,
    KeywordFor = 28,
    KeywordFragment = 29,
    KeywordIf = 31,
    KeywordIlluminance = 32,
    KeywordUniform = 37,
    KeywordVertex = 39,
    KeywordWhile = 49,
    Semicolon = 59,
    Comma = 60,
    Dot = 61,
    Question = 62,
    Colon = 63,
    OpenParen = 64,
    CloseParen = 65,
    OpenBrace = 66,
    CloseBrace = 67,
    OpenBracket = 68,
    CloseBracket = 69,
    Not = 70,
    At = 71,
    Plus = 72,
    Minus = 73,
    Star = 74,
    Slash = 75,
    Percent = 76,
    PlusPlus = 77,
    MinusMinus = 78,
    Assign = 79,
    PlusAssign = 80,
    MinusAssign = 81,
    StarAssign = 82,
    SlashAssign = 83,
    PercentAssign = 84,
    Equal = 85,
    Greater = 86,
    GreaterEqual = 87,
    Less = 88,
    LessEqual = 89,
    NotEqual = 90,
    OrOr = 91,
    AndAnd = 92,
};

/// A place in a source; both count from 1.
struct FileLocation
{
    std::uint64_t line = 1;
    std::uint64_t column = 1;
};

/// One token of a source.
struct Token
{
    TokenType type = TokenType::Unknown;
    krString::CString text;           ///< as it stands in the source; a quoted string without its quotes
    std::uint64_t line = 1;           ///< of the first character; the end of a stream has no place
    std::uint64_t column = 1;         ///< of the first character
    std::uint64_t position = 0;       ///< byte index of the first character
    std::uint64_t intValue = 1;       ///< a number's floatValue truncated towards zero; 1 for all else
    float floatValue = 0.0f;          ///< a number's value
    DataType dataType = kInvalidType; ///< of a data type name
    bool isFractional = false;        ///< whether a number's floatValue differs from its intValue; only numbers set it
};

} // namespace krShadingDag

/// The tokens' texts in order, with nothing between them.
[[nodiscard]] KRENDER_EXPORT krString::CString toString(const std::vector<krShadingDag::Token>& tokens);
