#include <krender/shading/Statement.h>

#include "krender/shading/private/StatementPrinter.h"
#include <krender/shading/Tokenizer.h>

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

/// The tokens of a source text without comments, placed where the text stood in its source.
std::vector<Token> tokensOf(const krString::CString& text, const FileLocation& location, std::uint64_t position)
{
    Tokenizer tokenizer;
    tokenizer.openString(text);
    std::vector<Token> tokens;
    while (tokenizer.position() < text.length())
    {
        Token token;
        tokenizer.nextToken(&token);
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

} // namespace

Statement::Statement() : fText(invalidText()) {}

Statement::~Statement() = default;

const std::vector<Token>& Statement::tokens() const
{
    if (!fTokens)
    {
        std::vector<Token> tokens;
        if (fOrigin)
        {
            tokens = tokensOf(fText, fOrigin->location, fOrigin->position);
            if (fType == StatementType::If)
                tokens = {tokens.begin() + 2, tokens.end() - 1};
            else if (tokens.size() == 1)
                tokens.clear(); // a lone ";"
            else
            {
                tokens.pop_back();
                tokens.insert(tokens.begin(), tokens.front());
            }
        }
        fTokens = std::make_unique<const std::vector<Token>>(std::move(tokens));
    }
    return *fTokens;
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
    fOrigin.reset();
    fTokens.reset();
}

void Statement::setSourceText(krString::CString text, const FileLocation& location, std::uint64_t position)
{
    setText(std::move(text), true);
    fOrigin = Origin{location, position};
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
    clear();
    fType = other.fType;
    setText(other.fText, other.fIsLiteral);
    fOrigin = other.fOrigin;
    fChildren.cloneFrom(other.fChildren);
}

krString::CString indent(const krString::CString& text, const krString::CString& prefix)
{
    std::string indented;
    appendIndented(indented, text.view(), prefix.view());
    return krString::CString(std::move(indented));
}

} // namespace krShadingDag
