#include <krender/shading/Tokenizer.h>

#include "krender/shading/private/Words.h"
#include <krender/core/Exception.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>
#include <krender/shading/Token.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>

namespace krShadingDag
{

namespace
{

/// What a byte can begin.
enum class ByteClass : unsigned char
{
    Unknown,
    Blank, ///< other than a line break
    Newline,
    Letter,
    Digit,
    Quote,
    Slash,
    PlusOrMinus,
    OpEqual, ///< an operator that a "=" may follow
    Pair,    ///< an operator only when it is doubled
    Single,
};

struct ByteInfo
{
    ByteClass byteClass = ByteClass::Unknown;
    TokenType single = TokenType::Unknown;    ///< the token of the byte alone
    TokenType withEqual = TokenType::Unknown; ///< of the byte and "="
    TokenType doubled = TokenType::Unknown;   ///< of the byte twice
};

constexpr std::array<ByteInfo, 256> kBytes = []
{
    std::array<ByteInfo, 256> bytes{};
    const auto set = [&bytes](char c, ByteInfo info) { bytes[static_cast<unsigned char>(c)] = info; };
    for (const char c : {' ', '\t', '\r'})
        set(c, {ByteClass::Blank});
    set('\n', {ByteClass::Newline});
    for (char c = 'a'; c <= 'z'; ++c)
        set(c, {ByteClass::Letter});
    for (char c = 'A'; c <= 'Z'; ++c)
        set(c, {ByteClass::Letter});
    set('_', {ByteClass::Letter});
    for (char c = '0'; c <= '9'; ++c)
        set(c, {ByteClass::Digit});
    set('"', {ByteClass::Quote});
    set('/', {ByteClass::Slash, TokenType::Slash, TokenType::SlashAssign});
    set('+', {ByteClass::PlusOrMinus, TokenType::Plus, TokenType::PlusAssign, TokenType::PlusPlus});
    set('-', {ByteClass::PlusOrMinus, TokenType::Minus, TokenType::MinusAssign, TokenType::MinusMinus});
    set('!', {ByteClass::OpEqual, TokenType::Not, TokenType::NotEqual});
    set('%', {ByteClass::OpEqual, TokenType::Percent, TokenType::PercentAssign});
    set('*', {ByteClass::OpEqual, TokenType::Star, TokenType::StarAssign});
    set('<', {ByteClass::OpEqual, TokenType::Less, TokenType::LessEqual});
    set('=', {ByteClass::OpEqual, TokenType::Assign, TokenType::Equal});
    set('>', {ByteClass::OpEqual, TokenType::Greater, TokenType::GreaterEqual});
    set('&', {ByteClass::Pair, TokenType::Unknown, TokenType::Unknown, TokenType::AndAnd});
    set('|', {ByteClass::Pair, TokenType::Unknown, TokenType::Unknown, TokenType::OrOr});
    set(';', {ByteClass::Single, TokenType::Semicolon});
    set(',', {ByteClass::Single, TokenType::Comma});
    set('.', {ByteClass::Single, TokenType::Dot});
    set('?', {ByteClass::Single, TokenType::Question});
    set(':', {ByteClass::Single, TokenType::Colon});
    set('(', {ByteClass::Single, TokenType::OpenParen});
    set(')', {ByteClass::Single, TokenType::CloseParen});
    set('{', {ByteClass::Single, TokenType::OpenBrace});
    set('}', {ByteClass::Single, TokenType::CloseBrace});
    set('[', {ByteClass::Single, TokenType::OpenBracket});
    set(']', {ByteClass::Single, TokenType::CloseBracket});
    set('@', {ByteClass::Single, TokenType::At});
    return bytes;
}();

const ByteInfo& infoOf(char c) noexcept { return kBytes[static_cast<unsigned char>(c)]; }

[[noreturn]] void throwSourceEnded() { throw Exception(kSourceEnded, ""); }

/// The value of up to 15 digits and a dot: the digits and the power of ten to divide them by are both exact in a double,
/// so one division rounds correctly (Clinger, "How to Read Floating Point Numbers Accurately", 1990). NaN for all else.
double parsePlainNumber(const char* begin, const char* end) noexcept
{
    static constexpr std::array kPowers{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14};
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    if (end - begin > 15)
        return kNone;
    std::uint64_t digits = 0;
    const char* fraction = end;
    for (const char* c = begin; c != end; ++c)
    {
        if (*c == '.')
            fraction = c + 1;
        else if (infoOf(*c).byteClass == ByteClass::Digit)
            digits = 10 * digits + static_cast<std::uint64_t>(*c - '0');
        else
            return kNone;
    }
    return static_cast<double>(digits) / kPowers[static_cast<std::size_t>(end - fraction)];
}

/// The value of a number's text as strtod reads it in the C locale; "1e" and "1e-" are 1.
double parseNumber(const char* begin, const char* end)
{
    double value = parsePlainNumber(begin, end);
    if (!std::isnan(value))
        return value;
    if (std::from_chars(begin, end, value).ec == std::errc())
        return value;
    // Out of range: too large gives infinity, too small gives 0 or what is left of it.
    static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(std::string(begin, end).c_str(), nullptr, cLocale);
}

std::uint64_t truncated(float value) noexcept
{
    constexpr float kLimit = 18446744073709551616.0f; // 2^64
    return value < kLimit ? static_cast<std::uint64_t>(value) : std::numeric_limits<std::uint64_t>::max();
}

} // namespace

void Tokenizer::nextToken(Token* token)
{
    resetToken(*token);
    Lexeme lexeme;
    scan(lexeme);
    fillToken(*token, lexeme);
}

krString::CString Tokenizer::stringify(unsigned long from, unsigned long to) const
{
    // Places are 32-bit numbers here, for the comparison as for the bytes.
    const std::int64_t first = std::max(static_cast<std::int32_t>(from), 0);
    const std::int64_t end =
        std::min(std::int64_t{static_cast<std::int32_t>(to)} + 1, static_cast<std::int64_t>(size()));
    if (end <= first)
        return {};
    return krString::CString(std::string_view(c_str() + first, static_cast<std::size_t>(end - first)));
}

krString::CString Tokenizer::stringify(const Token& first, const Token& last) const
{
    return stringify(first.position, last.position);
}

/// Deliberate: line, column and isFractional keep what an earlier token left there.
void Tokenizer::resetToken(Token& token)
{
    token.type = TokenType::Unknown;
    token.text.assign({});
    token.position = 0;
    token.intValue = 1;
    token.floatValue = 0.0f;
    token.dataType = kInvalidType;
}

/// Makes a reset token into the record of a lexeme.
void Tokenizer::fillToken(Token& token, const Lexeme& lexeme) const
{
    token.type = lexeme.type;
    if (lexeme.type == TokenType::EndOfStream)
        return; // which has no place
    token.dataType = lexeme.dataType;
    token.position = lexeme.position;
    const char* const text = c_str() + lexeme.textBegin;
    const std::size_t length = lexeme.textEnd - lexeme.textBegin;
    token.text.assign({text, length});
    token.line = lexeme.location.line;
    token.column = lexeme.location.column;
    if (lexeme.type == TokenType::Number)
    {
        token.floatValue = static_cast<float>(parseNumber(text, text + length));
        token.intValue = truncated(token.floatValue);
        token.isFractional = token.floatValue != static_cast<float>(token.intValue);
    }
}

char Tokenizer::byteAt(std::uint64_t position) const
{
    if (position >= size())
        throwSourceEnded();
    return c_str()[position];
}

void Tokenizer::scan(Lexeme& lexeme)
{
    lexeme.type = TokenType::Unknown;
    lexeme.dataType = kInvalidType;
    if (fPosition >= size())
    {
        lexeme.type = TokenType::EndOfStream;
        return;
    }

    skipBlanks(lexeme);
    const char c = c_str()[fPosition];
    const ByteInfo& info = infoOf(c);
    switch (info.byteClass)
    {
    case ByteClass::Letter:
        return processAlphanumeric(lexeme);
    case ByteClass::Digit:
        return processNumeric(lexeme);
    case ByteClass::Quote:
        return processQuotedString(lexeme);
    case ByteClass::Slash:
        return processDivide(lexeme);
    case ByteClass::PlusOrMinus:
        return processPlusOrMinus(lexeme, info.single, info.withEqual, info.doubled, c);
    case ByteClass::OpEqual:
        return processOpEqual(lexeme, info.single, info.withEqual);
    case ByteClass::Pair:
        return processPair(lexeme, info.doubled, c);
    case ByteClass::Single:
        return finish(lexeme, info.single, 1);
    case ByteClass::Unknown:
    case ByteClass::Blank:
    case ByteClass::Newline:
        break;
    }
    // Deliberate: such a byte takes no column, so what follows it in the line is placed one to the left.
    lexeme.textEnd = ++fPosition;
}

/// Moves to the next token and places the lexeme there.
void Tokenizer::skipBlanks(Lexeme& lexeme)
{
    const char* const bytes = c_str();
    const std::uint64_t end = size();
    std::uint64_t i = fPosition;
    FileLocation location = fLocation;
    for (; i < end; ++i)
    {
        const ByteClass byteClass = infoOf(bytes[i]).byteClass;
        if (byteClass == ByteClass::Blank)
            ++location.column;
        else if (byteClass == ByteClass::Newline)
            location = {location.line + 1, 1};
        else
            break;
    }
    fPosition = i;
    fLocation = location;
    if (i == end)
        throwSourceEnded();
    lexeme.location = location;
    lexeme.position = i;
    lexeme.textBegin = i;
}

/// Ends a token that takes one column a byte.
void Tokenizer::finish(Lexeme& lexeme, TokenType type, unsigned length)
{
    lexeme.type = type;
    fPosition += length;
    fLocation.column += length;
    lexeme.textEnd = fPosition;
}

void Tokenizer::processAlphanumeric(Lexeme& lexeme)
{
    const char* const bytes = c_str();
    const std::uint64_t end = size();
    std::uint64_t i = fPosition + 1;
    while (i < end &&
           (infoOf(bytes[i]).byteClass == ByteClass::Letter || infoOf(bytes[i]).byteClass == ByteClass::Digit))
        ++i;
    if (i == end)
        throwSourceEnded();
    const WordKind kind = classifyWord({bytes + fPosition, i - fPosition});
    lexeme.dataType = kind.dataType;
    lexeme.type = kind.type;
    fLocation.column += i - fPosition;
    fPosition = i;
    lexeme.textEnd = i;
}

void Tokenizer::processNumeric(Lexeme& lexeme)
{
    std::uint64_t i = fPosition;
    const auto skipDigits = [this, &i]
    {
        while (infoOf(byteAt(i)).byteClass == ByteClass::Digit)
            ++i;
    };
    const auto isExponent = [](char c) { return c == 'e' || c == 'E'; };

    lexeme.type = TokenType::Number;
    skipDigits();
    if (byteAt(i) == '.')
    {
        const char next = byteAt(i + 1);
        if (infoOf(next).byteClass != ByteClass::Letter || isExponent(next))
        {
            ++i;
            skipDigits();
        }
    }
    if (isExponent(byteAt(i)))
    {
        ++i;
        // Deliberate: only "-" is a sign here, so "1e+5" is the sum of 1 and 5.
        if (byteAt(i) == '-')
            ++i;
        skipDigits();
    }
    fLocation.column += i - fPosition;
    fPosition = i;
    lexeme.textEnd = i;
}

void Tokenizer::processQuotedString(Lexeme& lexeme)
{
    FileLocation location{fLocation.line, fLocation.column + 1};
    const std::uint64_t close = searchForOneChar(fPosition + 1, '"', location);
    lexeme.type = TokenType::QuotedString;
    lexeme.textBegin = fPosition + 1;
    lexeme.textEnd = close;
    fPosition = close + 1;
    fLocation = location;
}

void Tokenizer::processDivide(Lexeme& lexeme)
{
    const char next = byteAt(fPosition + 1);
    if (next == '=')
        return finish(lexeme, TokenType::SlashAssign, 2);
    if (next != '/' && next != '*')
        return finish(lexeme, TokenType::Slash, 1);

    FileLocation location = fLocation;
    // Deliberate: the two bytes behind "*/" belong to the comment.
    const std::uint64_t last = next == '/' ? searchForOneChar(fPosition + 2, '\n', location)
                                           : searchForTwoChars(fPosition + 2, '*', '/', location);
    lexeme.type = TokenType::Comment;
    lexeme.textEnd = std::min<std::uint64_t>(last + 1, size());
    fPosition = last + 1;
    fLocation = location;
}

void Tokenizer::processOpEqual(Lexeme& lexeme, TokenType single, TokenType withEqual)
{
    if (byteAt(fPosition + 1) == '=')
        finish(lexeme, withEqual, 2);
    else
        finish(lexeme, single, 1);
}

void Tokenizer::processPlusOrMinus(Lexeme& lexeme, TokenType single, TokenType withEqual, TokenType doubled, char c)
{
    if (byteAt(fPosition + 1) == c)
        finish(lexeme, doubled, 2);
    else
        processOpEqual(lexeme, single, withEqual);
}

void Tokenizer::processPair(Lexeme& lexeme, TokenType doubled, char c)
{
    if (byteAt(fPosition + 1) == c)
        return finish(lexeme, doubled, 2);
    lexeme.textEnd = ++fPosition; // half an operator is an unknown byte
}

/// Skips a line comment within text that is searched. Deliberate: the byte behind its line break is not looked at, and a
/// line comment that holds another one goes on over the next line.
std::uint64_t Tokenizer::pastNestedComment(std::uint64_t from, FileLocation& location) const
{
    while (byteAt(from) != '\n')
        ++from;
    location = {location.line + 1, 1};
    return from + 2;
}

/// The index of the first match from a place on. Lines and columns are counted up to the match.
/// @param forNewline  whether to stop at a line break, which is never given to matches
/// @param matches     decides on a byte and the one behind it
template <class Matches>
std::uint64_t Tokenizer::search(std::uint64_t from, bool forNewline, FileLocation& location, Matches matches) const
{
    const char* const bytes = c_str();
    for (std::uint64_t i = from;;)
    {
        if (i + 1 >= size())
            throwSourceEnded();
        const char c = bytes[i];
        if (c == '\n')
        {
            location = {location.line + 1, 1};
            if (forNewline)
                return i;
            ++i;
        }
        else if (c == '/' && bytes[i + 1] == '/')
            i = pastNestedComment(i, location);
        else if (matches(c, bytes[i + 1]))
            return i;
        else
        {
            ++location.column;
            ++i;
        }
    }
}

std::uint64_t Tokenizer::searchForOneChar(std::uint64_t from, char target, FileLocation& location) const
{
    return search(from, target == '\n', location, [target](char c, char) { return c == target; });
}

std::uint64_t Tokenizer::searchForTwoChars(std::uint64_t from, char first, char second, FileLocation& location) const
{
    const std::uint64_t found =
        search(from, false, location, [first, second](char c, char next) { return c == first && next == second; });
    location.column += 2;
    return found + 3;
}

} // namespace krShadingDag
