#include <krender/shading/Statement.h>

#include "krender/shading/private/StatementPrinter.h"
#include <krender/core/Exception.h>
#include <krender/platform/String.h>
#include <krender/shading/StatementCompound.h>
#include <krender/shading/Token.h>
#include <krender/shading/Tokenizer.h>

#include <memory>
#include <string>
#include <utility>

namespace krShadingDag
{

namespace
{

const krString::CString& invalidText()
{
    static const krString::CString text("!!!INVALID!!!\n");
    return text;
}

/// Reads the next token; false when the text ends before it does.
bool readToken(Tokenizer& tokenizer, Token& token)
{
    try
    {
        tokenizer.nextToken(&token);
        return token.type != TokenType::EndOfStream;
    }
    catch (const Exception&)
    {
        return false;
    }
}

/// The tokens of a source text without comments, placed where the text stood in its source.
std::vector<Token> tokensOf(const krString::CString& text, const FileLocation& location, std::uint64_t position)
{
    Tokenizer tokenizer;
    tokenizer.openString(text);
    std::vector<Token> tokens;
    for (Token token; readToken(tokenizer, token); token = Token())
    {
        if (token.type == TokenType::Comment)
            continue;
        if (token.line == 1)
            token.column += location.column - 1;
        token.line += location.line - 1;
        token.position += position;
        tokens.push_back(std::move(token));
    }
    return tokens;
}

/// The tokens between an if statement's "if (" and its ")".
std::vector<Token> conditionOf(std::vector<Token> tokens)
{
    if (tokens.size() < 3)
        return {};
    tokens.pop_back();
    tokens.erase(tokens.begin(), tokens.begin() + 2);
    return tokens;
}

/// The tokens of a statement without its ";". Deliberate: the first stands there twice.
std::vector<Token> opaqueTokensOf(std::vector<Token> tokens)
{
    if (!tokens.empty() && tokens.back().type == TokenType::Semicolon)
        tokens.pop_back();
    if (!tokens.empty())
        tokens.insert(tokens.begin(), Token(tokens.front()));
    return tokens;
}

} // namespace

Statement::Statement() : fText(invalidText()) {}

Statement::~Statement() = default;

const std::vector<Token>& Statement::tokens() const
{
    if (fOrigin)
    {
        std::vector<Token> tokens = tokensOf(fText, fOrigin->location, fOrigin->position);
        fTokens = fOrigin->isCondition ? conditionOf(std::move(tokens)) : opaqueTokensOf(std::move(tokens));
        fOrigin.reset();
    }
    return fTokens;
}

krString::CString Statement::toString(const krString::CString& indent, const krString::CString& step) const
{
    std::string text;
    StatementPrinter(text, indent.view(), step.view()).print(*this);
    return krString::CString(std::move(text));
}

void Statement::setText(krString::CString text, bool isLiteral)
{
    fText = std::move(text);
    fIsLiteral = isLiteral;
    setTokens({});
}

void Statement::setSourceText(krString::CString text, const FileLocation& location, std::uint64_t position)
{
    setText(std::move(text), true);
    fOrigin = Origin{fType == StatementType::If, location, position};
}

void Statement::setTokens(std::vector<Token> tokens) noexcept
{
    fTokens = std::move(tokens);
    fOrigin.reset();
}

void Statement::clear()
{
    fType = StatementType::Invalid;
    setText(invalidText(), false);
    fChildren.clear();
    fParent = nullptr;
}

void Statement::cloneFrom(const Statement& other)
{
    if (this == &other)
        return;
    StatementCompound copies;
    copies.appendCopies(other.fChildren);
    copyAllButChildren(other);
    fParent = nullptr;
    fChildren.clear(); // destroys other when it stands below
    fChildren.takeAll(copies);
}

void Statement::copyAllButChildren(const Statement& other)
{
    fType = other.fType;
    fIsLiteral = other.fIsLiteral;
    fText = other.fText;
    fOrigin = other.fOrigin;
    fTokens = other.fTokens;
}

krString::CString indent(const krString::CString& text, const krString::CString& prefix)
{
    std::string indented;
    appendIndented(indented, text.view(), prefix.view());
    return krString::CString(std::move(indented));
}

} // namespace krShadingDag
