#include "krender/frontend/private/SyntaxReader.h"

#include "krender/frontend/private/Arena.h"
#include "krender/frontend/private/DiagnosticList.h"
#include "krender/frontend/private/Lexer.h"
#include "krender/frontend/private/Message.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/Type.h"

#include <krender/frontend/SourceSet.h>

#include <string>

namespace krFrontend
{

Stmt* SyntaxReader::makeStatement(StmtKind kind)
{
    Stmt* statement = fStore.arena.make<Stmt>();
    statement->kind = kind;
    statement->begin = fToken.begin;
    return statement;
}

Stmt* SyntaxReader::readBlock()
{
    const Level level(*this);
    Stmt* block = makeStatement(StmtKind::Block);
    const SourceRange open = fToken.range();
    advance();
    Stmt** last = &block->body;
    while (!is(TokenKind::CloseBrace) && !is(TokenKind::EndOfFile))
    {
        Stmt* statement = readStatement();
        if (fFailed)
            skipStatement();
        if (statement->kind == StmtKind::Empty)
            continue; // it says nothing, and a long run of them should cost nothing
        *last = statement;
        last = &statement->next;
    }
    if (!accept(TokenKind::CloseBrace) && !fGaveUp)
        fDiagnostics.report(Message::OpenBlock, open);
    block->end = fPreviousEnd;
    return block;
}

Stmt* SyntaxReader::readStatement()
{
    switch (kind()) // NOLINT(clang-diagnostic-switch-enum): all other tokens begin an expression
    {
    case TokenKind::OpenBrace:
        return readBlock();
    case TokenKind::If:
        return readIf();
    case TokenKind::For:
        return readFor();
    case TokenKind::While:
        return readWhile();
    case TokenKind::Do:
        return readDo();
    case TokenKind::Illuminance:
        return readIlluminance();
    default:
        return readSimpleStatement();
    }
}

Stmt* SyntaxReader::readSimpleStatement()
{
    switch (kind()) // NOLINT(clang-diagnostic-switch-enum): all other tokens begin an expression
    {
    case TokenKind::Semicolon:
    {
        Stmt* statement = makeStatement(StmtKind::Empty);
        advance();
        statement->end = fPreviousEnd;
        return statement;
    }
    case TokenKind::Break:
        return readKeywordStatement(StmtKind::Break);
    case TokenKind::Continue:
        return readKeywordStatement(StmtKind::Continue);
    case TokenKind::Discard:
        return readKeywordStatement(StmtKind::Discard);
    case TokenKind::Return:
        return readReturn();
    case TokenKind::Else:
    {
        Stmt* statement = makeStatement(StmtKind::Empty);
        fDiagnostics.report(Message::ElseWithoutIf, fToken.range());
        advance();
        readStatement();
        return statement;
    }
    case TokenKind::Hash:
    {
        Stmt* statement = makeStatement(StmtKind::Empty);
        fDiagnostics.report(Message::Directive, fToken.range());
        do
            advance();
        while (!fToken.startsLine && !is(TokenKind::EndOfFile));
        return statement;
    }
    case TokenKind::Const:
        return finishSimple(readDeclaration());
    case TokenKind::TypeName:
        if (fAhead.kind != TokenKind::OpenParen)
            return finishSimple(readDeclaration());
        [[fallthrough]];
    default:
        Stmt* statement = makeStatement(StmtKind::Expression);
        statement->expr = readExpression();
        return finishSimple(statement);
    }
}

Stmt* SyntaxReader::finishSimple(Stmt* statement)
{
    if (!fFailed)
        expectSemicolon();
    statement->end = fPreviousEnd;
    return statement;
}

Stmt* SyntaxReader::readKeywordStatement(StmtKind kind)
{
    Stmt* statement = makeStatement(kind);
    advance();
    return finishSimple(statement);
}

Stmt* SyntaxReader::readReturn()
{
    Stmt* statement = makeStatement(StmtKind::Return);
    advance();
    // On the next line only what begins a value counts as one: other tokens begin a statement, and a ";" is missing.
    if (fToken.startsLine ? beginsValue() : !is(TokenKind::Semicolon) && !is(TokenKind::CloseBrace))
        statement->expr = readExpression();
    return finishSimple(statement);
}

bool SyntaxReader::beginsValue() const noexcept
{
    switch (kind()) // NOLINT(clang-diagnostic-switch-enum): no other token begins a value
    {
    case TokenKind::Identifier:
    case TokenKind::Output:
    case TokenKind::IntNumber:
    case TokenKind::FloatNumber:
    case TokenKind::True:
    case TokenKind::False:
    case TokenKind::OpenParen:
    case TokenKind::Plus:
    case TokenKind::Minus:
    case TokenKind::PlusPlus:
    case TokenKind::MinusMinus:
    case TokenKind::Not:
        return true;
    default:
        return is(TokenKind::TypeName) && fAhead.kind == TokenKind::OpenParen;
    }
}

Stmt* SyntaxReader::readDeclaration()
{
    Stmt* statement = makeStatement(StmtKind::Declaration);
    const bool isConst = accept(TokenKind::Const);
    if (!is(TokenKind::TypeName))
    {
        fail("a type");
        return statement;
    }
    if (readDeclarators(*statement) && isConst)
        for (Symbol* variable = statement->variables; variable; variable = variable->next)
            variable->isConst = true;
    return statement;
}

bool SyntaxReader::readDeclarators(Stmt& statement)
{
    const Type type = typeOfWord(tokenText());
    advance();
    Symbol** last = &statement.variables;
    do
    {
        Symbol* variable = readName(SymbolKind::Local, type, statement.begin);
        if (!variable)
            return false;
        *last = variable;
        last = &variable->next;
        if (accept(TokenKind::OpenBracket))
        {
            variable->arraySize = readExpression();
            if (fFailed || !expect(TokenKind::CloseBracket, "']'"))
                return false;
            if (is(TokenKind::OpenBracket))
            {
                fDiagnostics.report(Message::ArrayOfArrays, fToken.range());
                fFailed = true;
                return false;
            }
        }
        if (accept(TokenKind::Assign))
            variable->initializer = readExpression();
        if (fFailed)
            return false;
    } while (accept(TokenKind::Comma));
    return true;
}

Stmt* SyntaxReader::readIf()
{
    const Level level(*this);
    Stmt* const first = makeStatement(StmtKind::If);
    Stmt* statement = first;
    const unsigned outerElseIfs = fElseIfs;
    // A chain of "else if" is no nesting.
    while (readIfHead(*statement))
    {
        statement->body = readStatement();
        if (fFailed)
            skipStatement();
        if (!is(TokenKind::Else))
            break;
        advance();
        if (!is(TokenKind::If))
        {
            statement->otherwise = readStatement();
            break;
        }
        if (++fElseIfs > kMostElseIfs)
        {
            giveUp(Message::LongChain, std::to_string(kMostElseIfs));
            break;
        }
        statement->otherwise = makeStatement(StmtKind::If);
        statement = statement->otherwise;
        statement->isChained = true;
    }
    fElseIfs = outerElseIfs;
    for (Stmt* part = first; part; part = part->kind == StmtKind::If ? part->otherwise : nullptr)
        part->end = fPreviousEnd;
    return first;
}

bool SyntaxReader::readIfHead(Stmt& statement)
{
    advance();
    if (!expect(TokenKind::OpenParen, "'(' and the condition"))
        return false;
    statement.expr = readExpression();
    if (fFailed || !expect(TokenKind::CloseParen, "')'"))
        return false;
    statement.mark = fPreviousEnd;
    return true;
}

Stmt* SyntaxReader::readFor()
{
    const Level level(*this);
    Stmt* statement = makeStatement(StmtKind::For);
    advance();
    if (!expect(TokenKind::OpenParen, "'(' and the head of the loop"))
        return statement;
    if (!is(TokenKind::Semicolon))
    {
        statement->init = makeStatement(StmtKind::Expression);
        if (is(TokenKind::Const) || (is(TokenKind::TypeName) && fAhead.kind != TokenKind::OpenParen))
            statement->init = readDeclaration();
        else
            statement->init->expr = readExpression();
        statement->init->end = fPreviousEnd;
    }
    if (fFailed || !expect(TokenKind::Semicolon, "';'"))
        return statement;
    if (!is(TokenKind::Semicolon))
        statement->expr = readExpression();
    if (fFailed || !expect(TokenKind::Semicolon, "';'"))
        return statement;
    if (!is(TokenKind::CloseParen))
        statement->step = readExpression();
    if (fFailed || !expect(TokenKind::CloseParen, "')'"))
        return statement;
    statement->mark = fPreviousEnd;
    statement->body = readStatement();
    statement->end = fPreviousEnd;
    return statement;
}

Stmt* SyntaxReader::readWhile()
{
    const Level level(*this);
    Stmt* statement = makeStatement(StmtKind::While);
    if (!readIfHead(*statement))
        return statement;
    statement->body = readStatement();
    statement->end = fPreviousEnd;
    return statement;
}

Stmt* SyntaxReader::readDo()
{
    const Level level(*this);
    Stmt* statement = makeStatement(StmtKind::DoWhile);
    advance();
    statement->body = readStatement();
    if (fFailed)
        return statement;
    statement->mark = fToken.begin;
    if (!is(TokenKind::While))
    {
        fail("'while' and the condition of the loop");
        return statement;
    }
    const Offset tail = statement->mark;
    readIfHead(*statement);
    statement->mark = tail;
    return finishSimple(statement);
}

Stmt* SyntaxReader::readIlluminance()
{
    const Level level(*this);
    Stmt* statement = makeStatement(StmtKind::Illuminance);
    advance();
    if (!is(TokenKind::OpenBrace))
    {
        fail("'{': an illuminance block has no arguments");
        return statement;
    }
    statement->body = readBlock();
    statement->end = fPreviousEnd;
    return statement;
}

} // namespace krFrontend
