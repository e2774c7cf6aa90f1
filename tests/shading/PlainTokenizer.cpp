#include "PlainTokenizer.h"

#include <cstdlib>
#include <map>

using krShadingDag::Token;
using krShadingDag::TokenType;

namespace
{

const std::map<std::string, TokenType> kKeywords{
    {"out", TokenType::KeywordOut},
    {"return", TokenType::KeywordReturn},
    {"output", TokenType::KeywordOutput},
    {"constant", TokenType::KeywordConstant},
    {"do", TokenType::KeywordDo},
    {"else", TokenType::KeywordElse},
    {"evaluate", TokenType::KeywordEvaluate},
    {"for", TokenType::KeywordFor},
    {"fragment", TokenType::KeywordFragment},
    {"if", TokenType::KeywordIf},
    {"uniform", TokenType::KeywordUniform},
    {"illuminance", TokenType::KeywordIlluminance},
    {"vertex", TokenType::KeywordVertex},
    {"while", TokenType::KeywordWhile},
};

const std::map<std::string, TokenType> kSymbols{
    {"+", TokenType::Plus},
    {"-", TokenType::Minus},
    {"*", TokenType::Star},
    {"/", TokenType::Slash},
    {"%", TokenType::Percent},
    {"++", TokenType::PlusPlus},
    {"--", TokenType::MinusMinus},
    {"=", TokenType::Assign},
    {"+=", TokenType::PlusAssign},
    {"-=", TokenType::MinusAssign},
    {"*=", TokenType::StarAssign},
    {"/=", TokenType::SlashAssign},
    {"%=", TokenType::PercentAssign},
    {"==", TokenType::Equal},
    {">", TokenType::Greater},
    {">=", TokenType::GreaterEqual},
    {"<", TokenType::Less},
    {"<=", TokenType::LessEqual},
    {"!=", TokenType::NotEqual},
    {"!", TokenType::Not},
    {"||", TokenType::OrOr},
    {"&&", TokenType::AndAnd},
    {";", TokenType::Semicolon},
    {",", TokenType::Comma},
    {".", TokenType::Dot},
    {"?", TokenType::Question},
    {":", TokenType::Colon},
    {"(", TokenType::OpenParen},
    {")", TokenType::CloseParen},
    {"{", TokenType::OpenBrace},
    {"}", TokenType::CloseBrace},
    {"[", TokenType::OpenBracket},
    {"]", TokenType::CloseBracket},
    {"@", TokenType::At},
};

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

} // namespace

char PlainTokenizer::at(std::uint64_t i) const
{
    if (i >= fSource.size())
        throw SourceEnded();
    return fSource[i];
}

std::string PlainTokenizer::cut(std::uint64_t from, std::uint64_t to) const
{
    return from < fSource.size() ? fSource.substr(from, to + 1 - from) : std::string();
}

void PlainTokenizer::take(Token& token, TokenType type, unsigned bytes)
{
    token.type = type;
    token.text = cut(fPosition, fPosition + bytes - 1).c_str();
    fPosition += bytes;
    fColumn += bytes;
}

void PlainTokenizer::nextToken(Token& token)
{
    token = Token();
    if (fPosition >= fSource.size())
    {
        token.type = TokenType::EndOfStream;
        return;
    }
    for (; std::string(" \t\r\n").find(at(fPosition)) != std::string::npos; ++fPosition)
    {
        ++fColumn;
        if (at(fPosition) == '\n')
        {
            ++fLine;
            fColumn = 1;
        }
    }
    token.line = fLine;
    token.column = fColumn;
    token.position = fPosition;
    const char c = at(fPosition);
    if (isLetter(c))
        return word(token);
    if (isDigit(c))
        return number(token);
    if (c == '"')
    {
        ++fColumn;
        const std::uint64_t close = search(fPosition + 1, "\"");
        token.type = TokenType::QuotedString;
        token.text = krString::CString(std::string_view(fSource).substr(fPosition + 1, close - fPosition - 1));
        fPosition = close + 1;
        return;
    }
    if (c == '/' && (at(fPosition + 1) == '/' || at(fPosition + 1) == '*'))
        return comment(token);
    if (std::string("+-*/%=<>!&|").find(c) != std::string::npos)
    {
        const auto pair = kSymbols.find({c, at(fPosition + 1)});
        if (pair != kSymbols.end())
            return take(token, pair->second, 2);
    }
    const auto single = kSymbols.find(std::string(1, c));
    if (single != kSymbols.end())
        return take(token, single->second, 1);
    take(token, TokenType::Unknown, 1);
    token.text = krString::CString(c);
    --fColumn;
}

void PlainTokenizer::word(Token& token)
{
    std::uint64_t end = fPosition;
    while (isLetter(at(end)) || isDigit(at(end)))
        ++end;
    take(token, TokenType::Identifier, static_cast<unsigned>(end - fPosition));
    for (unsigned type = 1; type < kDataTypeCount; ++type)
        if (krString::equal(token.text, dataTypeName(static_cast<DataType>(type))))
            token.dataType = static_cast<DataType>(type);
    const auto keyword = kKeywords.find(token.text.asChar());
    if (token.dataType != kInvalidType)
        token.type = TokenType::DataTypeName;
    else if (keyword != kKeywords.end())
        token.type = keyword->second;
}

void PlainTokenizer::number(Token& token)
{
    std::uint64_t end = fPosition;
    while (isDigit(at(end)))
        ++end;
    if (at(end) == '.')
    {
        const char next = at(end + 1);
        if (next == 'e' || next == 'E' || !isLetter(next))
            do
                ++end;
            while (isDigit(at(end)));
    }
    if (at(end) == 'e' || at(end) == 'E')
    {
        ++end;
        if (at(end) == '-')
            ++end;
        while (isDigit(at(end)))
            ++end;
    }
    take(token, TokenType::Number, static_cast<unsigned>(end - fPosition));
    token.floatValue = static_cast<float>(std::strtod(token.text.asChar(), nullptr));
    token.intValue = token.floatValue < 18446744073709551616.0f ? static_cast<std::uint64_t>(token.floatValue) : ~0ull;
    token.isFractional = token.floatValue != static_cast<float>(token.intValue);
}

void PlainTokenizer::comment(Token& token)
{
    const bool isBlock = at(fPosition + 1) == '*';
    const std::uint64_t last = search(fPosition + 2, isBlock ? "*/" : "\n");
    token.type = TokenType::Comment;
    token.text = krString::CString(std::string_view(cut(fPosition, last)));
    fPosition = last + 1;
}

/// The index of a one-byte target, or that of a two-byte one and 3.
std::uint64_t PlainTokenizer::search(std::uint64_t from, const std::string& target)
{
    for (std::uint64_t i = from;; ++i)
    {
        const char c = at(i);
        const char next = at(i + 1);
        if (c == '\n')
        {
            ++fLine;
            fColumn = 1;
            if (target == "\n")
                return i;
        }
        else if (c == '/' && next == '/')
        {
            while (at(i) != '\n')
                ++i;
            ++i; // and one byte that nobody looks at
            ++fLine;
            fColumn = 1;
        }
        else if (std::string({c, next}) == target)
        {
            fColumn += 2;
            return i + 3;
        }
        else if (std::string(1, c) == target)
            return i;
        else
            ++fColumn;
    }
}
