// Statements and function bodies. Only the block structure is recognised: every other statement is kept as its text.
#include <krender/shading/ShadingParser.h>

#include "krender/shading/private/Require.h"
#include <krender/shading/Statement.h>

namespace krShadingDag
{

bool ShadingParser::parseStatement(StatementCompound& block)
{
    return parseCompoundStatement(block) || parseIlluminanceStatement(block) || parseIfStatement(block) ||
           parseElseStatement(block) || parseOpaqueStatement(block);
}

bool ShadingParser::parseCompoundStatement(StatementCompound& block)
{
    if (peek(0).type != TokenType::OpenBrace)
        return false;
    dropFront();
    parseBlock(appendTyped(block, StatementType::Block).children());
    return true;
}

bool ShadingParser::parseIlluminanceStatement(StatementCompound& block)
{
    if (peek(0).type != TokenType::KeywordIlluminance || peek(1).type != TokenType::OpenBrace)
        return false;
    dropFront();
    dropFront();
    parseBlock(appendTyped(block, StatementType::Illuminance).children());
    return true;
}

bool ShadingParser::parseIfStatement(StatementCompound& block)
{
    if (peek(0).type != TokenType::KeywordIf || peek(1).type != TokenType::OpenParen)
        return false;
    const FileLocation location{peek(0).line, peek(0).column};
    const std::uint64_t begin = peek(0).position;
    dropFront();
    dropFront();

    Statement& statement = appendTyped(block, StatementType::If);
    // The first ")" ends the condition, so it cannot hold parentheses of its own.
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
    parseBody(statement.children());
    return true;
}

bool ShadingParser::parseElseStatement(StatementCompound& block)
{
    if (peek(0).type != TokenType::KeywordElse)
        return false;
    dropFront();
    parseBody(appendTyped(block, StatementType::Else).children());
    return true;
}

bool ShadingParser::parseOpaqueStatement(StatementCompound& block)
{
    Statement& statement = appendTyped(block, StatementType::Opaque);
    const FileLocation location{peek(0).line, peek(0).column};
    const std::uint64_t begin = peek(0).position;
    // An empty statement is kept without consuming its ";", on which a block's loop never ends. Sources that hold one
    // were never part of the language, and what reads past it would give them a meaning.
    const std::uint64_t end = peek(0).type == TokenType::Semicolon ? begin : consumeThroughSemicolon();
    statement.setSourceText(fTokenizer.stringify(begin, end), location, begin);
    return true;
}

/// Appends an empty statement of a type.
Statement& ShadingParser::appendTyped(StatementCompound& block, StatementType type)
{
    Statement* const statement = block.appendStatement(nullptr);
    statement->setType(type);
    return *statement;
}

/// Reads statements up to a "}" and consumes it; the "{" has been consumed.
void ShadingParser::parseBlock(StatementCompound& block)
{
    while (peek(0).type != TokenType::CloseBrace)
        parseStatement(block);
    dropFront();
}

/// Reads what an if or an else governs: one statement, or those of a block.
void ShadingParser::parseBody(StatementCompound& block)
{
    if (peek(0).type != TokenType::OpenBrace)
    {
        parseStatement(block);
        return;
    }
    dropFront();
    parseBlock(block);
}

/// Consumes a statement of other kinds and returns where its ";" stands. Most tokens of a source go by here; they are
/// not made into records.
std::uint64_t ShadingParser::consumeThroughSemicolon()
{
    TokenType type = TokenType::Unknown;
    std::uint64_t position = 0;
    while (fQueueFront < fQueue.size() && type != TokenType::Semicolon && type != TokenType::EndOfStream)
    {
        type = fQueue[fQueueFront].type;
        position = fQueue[fQueueFront].position;
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
