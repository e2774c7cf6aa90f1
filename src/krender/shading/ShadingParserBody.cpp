// Statements and function bodies. Only the block structure is recognised: every other statement is kept as its text.
#include <krender/shading/ShadingParser.h>

#include "krender/shading/private/Require.h"
#include <krender/shading/Statement.h>

#include <string>

namespace krShadingDag
{

namespace
{

Statement& appendTyped(StatementCompound& block, StatementType type)
{
    Statement* const statement = block.appendStatement(nullptr);
    statement->setType(type);
    return *statement;
}

} // namespace

bool ShadingParser::parseStatement(StatementCompound& block)
{
    return parseWhole(&ShadingParser::beginStatement, block);
}

bool ShadingParser::parseCompoundStatement(StatementCompound& block)
{
    return parseWhole(&ShadingParser::beginCompound, block);
}

bool ShadingParser::parseIlluminanceStatement(StatementCompound& block)
{
    return parseWhole(&ShadingParser::beginIlluminance, block);
}

bool ShadingParser::parseIfStatement(StatementCompound& block) { return parseWhole(&ShadingParser::beginIf, block); }

bool ShadingParser::parseElseStatement(StatementCompound& block)
{
    return parseWhole(&ShadingParser::beginElse, block);
}

bool ShadingParser::parseOpaqueStatement(StatementCompound& block)
{
    const bool isEmpty = peek(0).type == TokenType::Semicolon;
    if (isEmpty && fLimits.refuseEmptyStatements)
        refuse("Empty statement");
    Statement& statement = appendTyped(block, StatementType::Opaque);
    const FileLocation location{peek(0).line, peek(0).column};
    const std::uint64_t begin = peek(0).position;
    // Deliberate: an empty statement keeps its ";" at the front, so without the limit a block that holds one is read
    // without end.
    const std::uint64_t end = isEmpty ? begin : consumeThroughSemicolon();
    statement.setSourceText(fTokenizer.stringify(begin, end), location, begin);
    return true;
}

/// Reads a form with all that it holds, if it begins here.
bool ShadingParser::parseWhole(Begin begin, StatementCompound& block)
{
    OpenLists open;
    const bool begins = (this->*begin)(block, open);
    readLists(open);
    return begins;
}

bool ShadingParser::beginStatement(StatementCompound& block, OpenLists& open)
{
    return beginCompound(block, open) || beginIlluminance(block, open) || beginIf(block, open) ||
           beginElse(block, open) || parseOpaqueStatement(block);
}

bool ShadingParser::beginCompound(StatementCompound& block, OpenLists& open)
{
    if (peek(0).type != TokenType::OpenBrace)
        return false;
    openBody(appendNesting(block, StatementType::Block, open), open);
    return true;
}

bool ShadingParser::beginIlluminance(StatementCompound& block, OpenLists& open)
{
    if (peek(0).type != TokenType::KeywordIlluminance || peek(1).type != TokenType::OpenBrace)
        return false;
    Statement& statement = appendNesting(block, StatementType::Illuminance, open);
    dropFront();
    openBody(statement, open);
    return true;
}

bool ShadingParser::beginIf(StatementCompound& block, OpenLists& open)
{
    if (peek(0).type != TokenType::KeywordIf || peek(1).type != TokenType::OpenParen)
        return false;
    Statement& statement = appendNesting(block, StatementType::If, open);
    const FileLocation location{peek(0).line, peek(0).column};
    const std::uint64_t begin = peek(0).position;
    dropFront();
    dropFront();

    // Deliberate: the first ")" ends the condition, so it cannot hold parentheses of its own.
    const auto isConditionEnd = [](TokenType type)
    {
        return type == TokenType::CloseParen || type == TokenType::CloseBrace || type == TokenType::Semicolon ||
               type == TokenType::EndOfStream;
    };
    while (!isConditionEnd(peek(0).type))
        dropFront();
    require(peek(0).type == TokenType::CloseParen, "Expected close-parentheses after if statement");
    statement.setSourceText(fTokenizer.stringify(begin, peek(0).position), location, begin);
    dropFront();
    openBody(statement, open);
    return true;
}

bool ShadingParser::beginElse(StatementCompound& block, OpenLists& open)
{
    if (peek(0).type != TokenType::KeywordElse)
        return false;
    Statement& statement = appendNesting(block, StatementType::Else, open);
    dropFront();
    openBody(statement, open);
    return true;
}

/// Appends an empty statement that is about to hold others.
Statement& ShadingParser::appendNesting(StatementCompound& block, StatementType type, const OpenLists& open)
{
    if (open.size() >= fLimits.maxNesting)
        refuse("Nesting deeper than " + std::to_string(fLimits.maxNesting));
    return appendTyped(block, type);
}

/// Opens the list of what a statement holds: the statements of a block, whose "{" is consumed, or a single one.
void ShadingParser::openBody(Statement& statement, OpenLists& open)
{
    const bool isBraced = peek(0).type == TokenType::OpenBrace;
    if (isBraced)
        dropFront();
    open.push_back({&statement.children(), isBraced});
}

/// Reads all open lists to their ends, the last one first.
void ShadingParser::readLists(OpenLists& open)
{
    while (!open.empty())
    {
        const OpenList list = open.back();
        const bool atEnd = list.isBraced ? peek(0).type == TokenType::CloseBrace : !list.statements->empty();
        if (!atEnd)
        {
            beginStatement(*list.statements, open);
            continue;
        }
        if (list.isBraced)
            dropFront();
        open.pop_back();
    }
}

/// Consumes a statement of other kinds and returns where its ";" stands. Most tokens of a source go by here; they are
/// not made into records.
std::uint64_t ShadingParser::consumeThroughSemicolon()
{
    TokenType type = TokenType::Unknown;
    std::uint64_t position = 0;
    while (!fQueue.empty() && type != TokenType::Semicolon && type != TokenType::EndOfStream)
    {
        type = fQueue.front().type;
        position = fQueue.front().position;
        dropFront();
    }
    Tokenizer::Lexeme lexeme;
    while (type != TokenType::Semicolon && type != TokenType::EndOfStream)
    {
        if (!fEndOfStream)
            fTokenizer.scan(lexeme);
        else
            lexeme.type = TokenType::EndOfStream;
        type = lexeme.type;
        position = lexeme.position;
    }
    fEndOfStream = fEndOfStream || type == TokenType::EndOfStream;
    require(type == TokenType::Semicolon, "internal compiler error... unexpected end of KRSL stream.");
    return position;
}

} // namespace krShadingDag
