// Statements and function bodies. Only the block structure is recognised: every other statement is kept as its text.
#include <krender/shading/ShadingParser.h>

#include "krender/shading/private/Require.h"
#include <krender/shading/ShadingParserLimits.h>
#include <krender/shading/Statement.h>
#include <krender/shading/StatementCompound.h>
#include <krender/shading/Token.h>
#include <krender/shading/Tokenizer.h>

#include <cstdint>
#include <string>
#include <vector>

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
    return readWhole(&ShadingParser::beginStatement, block);
}

bool ShadingParser::parseCompoundStatement(StatementCompound& block)
{
    return readWhole(&ShadingParser::beginCompound, block);
}

bool ShadingParser::parseIlluminanceStatement(StatementCompound& block)
{
    return readWhole(&ShadingParser::beginIlluminance, block);
}

bool ShadingParser::parseIfStatement(StatementCompound& block) { return readWhole(&ShadingParser::beginIf, block); }

bool ShadingParser::parseElseStatement(StatementCompound& block) { return readWhole(&ShadingParser::beginElse, block); }

bool ShadingParser::parseOpaqueStatement(StatementCompound& block)
{
    const bool isEmpty = front().type == TokenType::Semicolon;
    if (isEmpty && fLimits.refuseEmptyStatements)
        refuse("Empty statement");
    Statement& statement = appendTyped(block, StatementType::Opaque);
    const FileLocation location{front().line, front().column};
    const std::uint64_t begin = front().position;
    // Deliberate: an empty statement keeps its ";" at the front, so without the limit a block that holds one is read
    // without end.
    const std::uint64_t end = isEmpty ? begin : consumeThroughSemicolon();
    statement.setSourceText(fTokenizer.stringify(begin, end), location, begin);
    return true;
}

bool ShadingParser::beginStatement(StatementCompound& block)
{
    return beginCompound(block) || beginIlluminance(block) || beginIf(block) || beginElse(block) ||
           parseOpaqueStatement(block);
}

bool ShadingParser::beginCompound(StatementCompound& block)
{
    if (front().type != TokenType::OpenBrace)
        return false;
    openBody(appendNesting(block, StatementType::Block));
    return true;
}

bool ShadingParser::beginIlluminance(StatementCompound& block)
{
    if (front().type != TokenType::KeywordIlluminance || peek(1).type != TokenType::OpenBrace)
        return false;
    Statement& statement = appendNesting(block, StatementType::Illuminance);
    dropFront();
    openBody(statement);
    return true;
}

bool ShadingParser::beginIf(StatementCompound& block)
{
    if (front().type != TokenType::KeywordIf || peek(1).type != TokenType::OpenParen)
        return false;
    Statement& statement = appendNesting(block, StatementType::If);
    const FileLocation location{front().line, front().column};
    const std::uint64_t begin = front().position;
    dropFront();
    dropFront();

    // Deliberate: the first ")" ends the condition, so it cannot hold parentheses of its own.
    const auto isConditionEnd = [](TokenType type)
    {
        return type == TokenType::CloseParen || type == TokenType::CloseBrace || type == TokenType::Semicolon ||
               type == TokenType::EndOfStream;
    };
    while (!isConditionEnd(front().type))
        dropFront();
    require(front().type == TokenType::CloseParen, "Expected close-parentheses after if statement");
    statement.setSourceText(fTokenizer.stringify(begin, front().position), location, begin);
    dropFront();
    openBody(statement);
    return true;
}

bool ShadingParser::beginElse(StatementCompound& block)
{
    if (front().type != TokenType::KeywordElse)
        return false;
    Statement& statement = appendNesting(block, StatementType::Else);
    dropFront();
    openBody(statement);
    return true;
}

/// Appends an empty statement that is about to hold others.
Statement& ShadingParser::appendNesting(StatementCompound& block, StatementType type)
{
    if (fOpenLists.size() >= fLimits.maxNesting)
        refuse("Nesting deeper than " + std::to_string(fLimits.maxNesting));
    return appendTyped(block, type);
}

/// Opens the list of what a statement holds: the statements of a block, whose "{" is consumed, or a single one.
void ShadingParser::openBody(Statement& statement)
{
    const bool isBraced = front().type == TokenType::OpenBrace;
    if (isBraced)
        dropFront();
    fOpenLists.push_back({&statement.children(), isBraced});
}

/// Reads a form with all that it holds, if it begins here.
bool ShadingParser::readWhole(Begin begin, StatementCompound& block)
{
    fOpenLists.clear();
    if (!(this->*begin)(block))
        return false;
    while (!fOpenLists.empty())
    {
        const OpenList list = fOpenLists.back();
        const bool atEnd = list.isBraced ? front().type == TokenType::CloseBrace : !list.statements->empty();
        if (!atEnd)
        {
            beginStatement(*list.statements);
            continue;
        }
        if (list.isBraced)
            dropFront();
        fOpenLists.pop_back();
    }
    return true;
}

/// Consumes a statement of other kinds and returns where its ";" stands. Most tokens of a source go by here; they are
/// not made into records.
std::uint64_t ShadingParser::consumeThroughSemicolon()
{
    TokenType type = TokenType::Unknown;
    std::uint64_t position = 0;
    while (!fQueue.empty() && type != TokenType::Semicolon && type != TokenType::EndOfStream)
    {
        type = front().type;
        position = front().position;
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
