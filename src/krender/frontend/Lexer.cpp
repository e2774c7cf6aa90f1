#include "krender/frontend/private/Lexer.h"

#include "krender/frontend/private/Message.h"
#include "krender/frontend/private/Type.h"

#include <krender/frontend/SourceSet.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <string>

namespace krFrontend
{
namespace
{

constexpr unsigned kKeywords = 21;
constexpr std::array<std::string_view, kKeywords + 23> kFixedWords{"break",
                                                                   "const",
                                                                   "constant",
                                                                   "continue",
                                                                   "discard",
                                                                   "do",
                                                                   "else",
                                                                   "evaluate",
                                                                   "false",
                                                                   "for",
                                                                   "fragment",
                                                                   "if",
                                                                   "illuminance",
                                                                   "inout",
                                                                   "out",
                                                                   "output",
                                                                   "return",
                                                                   "true",
                                                                   "uniform",
                                                                   "vertex",
                                                                   "while",
                                                                   "void",
                                                                   "bool",
                                                                   "bool2",
                                                                   "bool3",
                                                                   "bool4",
                                                                   "float",
                                                                   "float2",
                                                                   "float3",
                                                                   "float4",
                                                                   "int",
                                                                   "int2",
                                                                   "int3",
                                                                   "int4",
                                                                   "matrix2",
                                                                   "matrix3",
                                                                   "matrix4",
                                                                   "sampler1D",
                                                                   "sampler2D",
                                                                   "sampler3D",
                                                                   "samplerCube",
                                                                   "sampler1DShadow",
                                                                   "sampler2DShadow",
                                                                   "string"};
static_assert(static_cast<unsigned>(TokenKind::While) - static_cast<unsigned>(TokenKind::Break) + 1 == kKeywords);

constexpr std::size_t kLongestWord = 1024;

constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }
constexpr bool isWordBegin(char c) noexcept { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
constexpr bool isWord(char c) noexcept { return isWordBegin(c) || isDigit(c); }
constexpr bool isBlank(char c) noexcept
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

struct Punctuation
{
    std::string_view text;
    TokenKind kind;
};

// Of two that begin alike the longer one stands first.
constexpr std::array kPunctuation{
    Punctuation{"++", TokenKind::PlusPlus},
    Punctuation{"--", TokenKind::MinusMinus},
    Punctuation{"+=", TokenKind::PlusAssign},
    Punctuation{"-=", TokenKind::MinusAssign},
    Punctuation{"*=", TokenKind::StarAssign},
    Punctuation{"/=", TokenKind::SlashAssign},
    Punctuation{"%=", TokenKind::PercentAssign},
    Punctuation{"==", TokenKind::Equal},
    Punctuation{"!=", TokenKind::NotEqual},
    Punctuation{"<=", TokenKind::LessEqual},
    Punctuation{">=", TokenKind::GreaterEqual},
    Punctuation{"&&", TokenKind::And},
    Punctuation{"||", TokenKind::Or},
    Punctuation{"^^", TokenKind::Xor},
    Punctuation{"(", TokenKind::OpenParen},
    Punctuation{")", TokenKind::CloseParen},
    Punctuation{"[", TokenKind::OpenBracket},
    Punctuation{"]", TokenKind::CloseBracket},
    Punctuation{"{", TokenKind::OpenBrace},
    Punctuation{"}", TokenKind::CloseBrace},
    Punctuation{",", TokenKind::Comma},
    Punctuation{";", TokenKind::Semicolon},
    Punctuation{":", TokenKind::Colon},
    Punctuation{"?", TokenKind::Question},
    Punctuation{".", TokenKind::Dot},
    Punctuation{"=", TokenKind::Assign},
    Punctuation{"+", TokenKind::Plus},
    Punctuation{"-", TokenKind::Minus},
    Punctuation{"*", TokenKind::Star},
    Punctuation{"/", TokenKind::Slash},
    Punctuation{"%", TokenKind::Percent},
    Punctuation{"!", TokenKind::Not},
    Punctuation{"<", TokenKind::Less},
    Punctuation{">", TokenKind::Greater},
    Punctuation{"#", TokenKind::Hash},
    Punctuation{"@", TokenKind::At},
};

/// Where in kPunctuation the search for a first byte begins; kPunctuation's size for a byte that begins none.
constexpr std::array<std::uint8_t, 256> kFirstPunctuation = []
{
    std::array<std::uint8_t, 256> first{};
    first.fill(kPunctuation.size());
    for (std::size_t i = kPunctuation.size(); i-- > 0;)
        first[static_cast<unsigned char>(kPunctuation[i].text[0])] = static_cast<std::uint8_t>(i);
    return first;
}();

/// Whether a float is too large for its type; one that is too small counts as 0.
bool isOverflow(std::string_view digits, std::errc error, double value) noexcept
{
    if (error == std::errc())
        return value > static_cast<double>(std::numeric_limits<float>::max());
    const bool hasExponent = digits.find_first_of("eE") != std::string_view::npos;
    return digits.find('-') == std::string_view::npos && (hasExponent || (digits[0] != '0' && digits[0] != '.'));
}

} // namespace

std::span<const std::string_view> fixedWords() noexcept { return kFixedWords; }

Lexer::Lexer(const SourceFile& file, NameTable& names, DiagnosticList& diagnostics)
    : fNames(names),
      fDiagnostics(diagnostics),
      fBase(file.begin()),
      fBegin(file.text().data()),
      fAt(fBegin),
      fEnd(fBegin + file.text().size())
{
    if (file.text().starts_with("\xEF\xBB\xBF"))
        fAt += 3;
}

Offset Lexer::offset(const char* at) const noexcept { return fBase + static_cast<Offset>(at - fBegin); }

LexerToken Lexer::next()
{
    const std::size_t errors = fDiagnostics.errorCount();
    while (true)
    {
        LexerToken token;
        token.startsLine = skipBlanks();
        token.begin = token.end = offset(fAt);
        if (fAt == fEnd)
            return token;
        if (isWordBegin(*fAt))
            readWord(token);
        else if (isDigit(*fAt) || (*fAt == '.' && fAt + 1 < fEnd && isDigit(fAt[1])))
            readNumber(token);
        else if (*fAt == '"')
            readText(token);
        else
            readPunctuation(token);
        token.end = offset(fAt);
        token.hasError = fDiagnostics.errorCount() != errors;
        if (token.kind != TokenKind::Unknown)
            return token;
    }
}

bool Lexer::skipBlanks()
{
    bool startsLine = fAt == fBegin || fAt[-1] == '\n' || offset(fAt) == fBase + 3;
    while (fAt < fEnd)
    {
        if (isBlank(*fAt))
        {
            startsLine |= *fAt == '\n';
            ++fAt;
        }
        else if (*fAt == '/' && fAt + 1 < fEnd && fAt[1] == '/')
            fAt = std::find(fAt, fEnd, '\n');
        else if (*fAt == '/' && fAt + 1 < fEnd && fAt[1] == '*')
            skipBlockComment();
        else
            break;
    }
    return startsLine;
}

void Lexer::skipBlockComment()
{
    constexpr std::string_view kClose = "*/";
    const char* const begin = fAt;
    fAt = std::search(fAt + 2, fEnd, kClose.begin(), kClose.end());
    if (fAt == fEnd)
        fDiagnostics.report(Message::OpenComment, {offset(begin), offset(begin + 2)});
    else
        fAt += kClose.size();
}

void Lexer::readWord(LexerToken& token)
{
    const char* const begin = fAt;
    fAt = std::find_if_not(fAt, fEnd, isWord);
    std::string_view word(begin, static_cast<std::size_t>(fAt - begin));
    if (word.size() > kLongestWord)
    {
        fDiagnostics.report(Message::LongWord, {token.begin, offset(fAt)}, {std::to_string(kLongestWord)});
        word = word.substr(0, kLongestWord);
    }
    token.name = fNames.intern(word);
    if (token.name < kKeywords)
        token.kind = static_cast<TokenKind>(static_cast<unsigned>(TokenKind::Break) + token.name);
    else
        token.kind = token.name < kFixedWords.size() ? TokenKind::TypeName : TokenKind::Identifier;
}

void Lexer::readNumber(LexerToken& token)
{
    const char* const begin = fAt;
    if (*fAt == '0' && fAt + 1 < fEnd && (fAt[1] == 'x' || fAt[1] == 'X'))
    {
        readHexNumber(token);
        return;
    }
    fAt = std::find_if_not(fAt, fEnd, isDigit);
    bool isFloat = fAt < fEnd && *fAt == '.';
    if (isFloat)
        fAt = std::find_if_not(fAt + 1, fEnd, isDigit);
    if (fAt < fEnd && (*fAt == 'e' || *fAt == 'E'))
    {
        const char* digits = fAt + 1;
        if (digits < fEnd && (*digits == '+' || *digits == '-'))
            ++digits;
        if (digits < fEnd && isDigit(*digits))
        {
            isFloat = true;
            fAt = std::find_if_not(digits, fEnd, isDigit);
        }
    }
    const std::string_view digits(begin, static_cast<std::size_t>(fAt - begin));
    if (isFloat && fAt < fEnd && (*fAt == 'f' || *fAt == 'F'))
        ++fAt;
    const char* const end = fAt;
    fAt = std::find_if_not(fAt, fEnd, isWord);
    const SourceRange range{token.begin, offset(fAt)};
    token.kind = isFloat ? TokenKind::FloatNumber : TokenKind::IntNumber;
    const std::from_chars_result result = std::from_chars(digits.data(), digits.data() + digits.size(), token.number);
    const bool isTooLarge = isFloat
                                ? isOverflow(digits, result.ec, token.number)
                                : result.ec != std::errc() || token.number > std::numeric_limits<std::int32_t>::max();
    if (isTooLarge)
        token.number = 0.0; // which every type holds
    if (end != fAt)
        fDiagnostics.report(Message::BadNumber, range,
                            {std::string_view(begin, static_cast<std::size_t>(fAt - begin))});
    else if (!isFloat && digits.size() > 1 && digits[0] == '0')
        fDiagnostics.report(Message::LeadingZero, range)
            .fix(range, digits.substr(std::min(digits.find_first_not_of('0'), digits.size() - 1)));
    else if (isTooLarge)
        fDiagnostics.report(Message::NumberTooLarge, range, {typeName(isFloat ? kFloatType : kIntType)});
}

void Lexer::readHexNumber(LexerToken& token)
{
    const char* const begin = fAt;
    fAt = std::find_if_not(fAt, fEnd, isWord);
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(begin + 2, fAt, value, 16);
    token.kind = TokenKind::IntNumber;
    const bool isTooLarge = error != std::errc() || value > std::numeric_limits<std::int32_t>::max();
    token.number = isTooLarge ? 0.0 : static_cast<double>(value);
    const SourceRange range{token.begin, offset(fAt)};
    if (end != fAt || end == begin + 2)
        fDiagnostics.report(Message::BadNumber, range,
                            {std::string_view(begin, static_cast<std::size_t>(fAt - begin))});
    else if (isTooLarge)
        fDiagnostics.report(Message::NumberTooLarge, range, {typeName(kIntType)});
}

void Lexer::readText(LexerToken& token)
{
    token.kind = TokenKind::Text;
    const char* const begin = fAt;
    fAt = std::find_if(fAt + 1, fEnd, [](char c) { return c == '"' || c == '\n'; });
    if (fAt < fEnd && *fAt == '"')
        ++fAt;
    else
        fDiagnostics.report(Message::OpenText, {offset(begin), offset(fAt)});
}

void Lexer::readPunctuation(LexerToken& token)
{
    const std::string_view rest(fAt, static_cast<std::size_t>(fEnd - fAt));
    for (std::size_t i = kFirstPunctuation[static_cast<unsigned char>(*fAt)]; i < kPunctuation.size(); ++i)
    {
        if (!rest.starts_with(kPunctuation[i].text))
            continue;
        token.kind = kPunctuation[i].kind;
        fAt += kPunctuation[i].text.size();
        return;
    }
    token.kind = TokenKind::Unknown;
    const char* const begin = fAt;
    fAt = std::find_if(fAt + 1, fEnd,
                       [](char c)
                       {
                           return isBlank(c) || isWord(c) || c == '"' ||
                                  kFirstPunctuation[static_cast<unsigned char>(c)] < kPunctuation.size();
                       });
    fDiagnostics.report(Message::UnknownCharacter, {offset(begin), offset(fAt)},
                        {std::string_view(begin, static_cast<std::size_t>(fAt - begin))});
}

} // namespace krFrontend
