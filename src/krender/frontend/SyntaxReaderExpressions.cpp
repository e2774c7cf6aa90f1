#include "krender/frontend/private/SyntaxReader.h"

#include "krender/frontend/private/Arena.h"
#include "krender/frontend/private/DiagnosticList.h"
#include "krender/frontend/private/Lexer.h"
#include "krender/frontend/private/Message.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/Type.h"

#include <krender/frontend/SourceSet.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace krFrontend
{
namespace
{

/// How strongly a binary operator binds; 0: it is none.
constexpr int precedenceOf(TokenKind kind) noexcept
{
    switch (kind) // NOLINT(clang-diagnostic-switch-enum): all others are no binary operators
    {
    case TokenKind::Or:
        return 1;
    case TokenKind::Xor:
        return 2;
    case TokenKind::And:
        return 3;
    case TokenKind::Equal:
    case TokenKind::NotEqual:
        return 4;
    case TokenKind::Less:
    case TokenKind::Greater:
    case TokenKind::LessEqual:
    case TokenKind::GreaterEqual:
        return 5;
    case TokenKind::Plus:
    case TokenKind::Minus:
        return 6;
    case TokenKind::Star:
    case TokenKind::Slash:
    case TokenKind::Percent:
        return 7;
    default:
        return 0;
    }
}

constexpr bool isAssignment(TokenKind kind) noexcept
{
    return kind >= TokenKind::Assign && kind <= TokenKind::PercentAssign;
}

/// The component that a letter of a swizzle names, and the set that the letter is of; 4 for any other letter.
constexpr std::uint8_t componentOf(char letter, unsigned& set) noexcept
{
    constexpr std::array<std::string_view, 2> kSets{"xyzw", "rgba"};
    for (set = 0; set < kSets.size(); ++set)
        if (const std::size_t at = kSets[set].find(letter); at != std::string_view::npos)
            return static_cast<std::uint8_t>(at);
    return 4;
}

} // namespace

Expr* SyntaxReader::makeExpr(ExprKind kind, Offset begin, Offset end)
{
    Expr* expr = fStore.arena.make<Expr>();
    expr->kind = kind;
    expr->begin = expr->word = begin;
    expr->end = end;
    return expr;
}

Expr* SyntaxReader::makeOperation(ExprKind kind, TokenKind op, Offset mark, Expr* first, Expr* second)
{
    Expr* expr = makeExpr(kind, first->begin, second->end);
    expr->op = op;
    expr->mark = mark;
    expr->first = first;
    first->next = second;
    return expr;
}

Expr* SyntaxReader::badExpr() { return makeExpr(ExprKind::Bad, fToken.begin, fToken.begin); }

bool SyntaxReader::countOperator()
{
    if (++fOperators <= kMostOperators)
        return true;
    if (!fFailed)
        fDiagnostics.report(Message::LongExpression, fToken.range(), {std::to_string(kMostOperators)});
    fFailed = true;
    return false;
}

Expr* SyntaxReader::readExpression()
{
    fOperators = 0;
    Expr* expr = readAssignment();
    // What is cut off at a limit has nothing more to be wrong with it.
    const bool isCut = fGaveUp || fOperators > kMostOperators;
    return isCut ? makeExpr(ExprKind::Bad, expr->begin, expr->end) : expr;
}

Expr* SyntaxReader::readAssignment()
{
    // To the right of an assignment stands another one: "a = b = c" is read as a list and put together from its end.
    struct Target
    {
        Expr* expr;
        TokenKind op;
        Offset mark;
    };
    std::vector<Target> targets;
    Expr* value = readConditional();
    while (isAssignment(kind()) && !fFailed && countOperator())
    {
        targets.push_back({value, kind(), fToken.begin});
        advance();
        value = readConditional();
    }
    for (; !targets.empty(); targets.pop_back())
        value = makeOperation(ExprKind::Assign, targets.back().op, targets.back().mark, targets.back().expr, value);
    return value;
}

Expr* SyntaxReader::readConditional()
{
    Expr* value = readBinary(1);
    if (!is(TokenKind::Question))
        return value;
    struct Choice
    {
        Expr* condition;
        Expr* value;
        Offset mark;
    };
    std::vector<Choice> choices;
    while (is(TokenKind::Question) && !fFailed && countOperator())
    {
        advance();
        Choice choice{value, badExpr(), 0};
        {
            const Level level(*this);
            choice.value = readAssignment();
        }
        choice.mark = fToken.begin;
        if (!expect(TokenKind::Colon, "':' and the other value"))
            return value;
        choices.push_back(choice);
        value = readBinary(1);
    }
    for (; !choices.empty(); choices.pop_back())
    {
        const Choice& choice = choices.back();
        choice.value->next = value;
        value = makeOperation(ExprKind::Conditional, TokenKind::Question, choice.mark, choice.condition, choice.value);
        value->end = value->third()->end;
    }
    return value;
}

Expr* SyntaxReader::readBinary(int least)
{
    Expr* left = readUnary();
    while (!fFailed)
    {
        const TokenKind op = kind();
        const int precedence = precedenceOf(op);
        if (precedence < least || precedence == 0 || !countOperator())
            break;
        const Offset mark = fToken.begin;
        advance();
        Expr* right = readBinary(precedence + 1);
        left = makeOperation(ExprKind::Binary, op, mark, left, right);
    }
    return left;
}

Expr* SyntaxReader::readUnary()
{
    switch (kind()) // NOLINT(clang-diagnostic-switch-enum): all others begin an operand
    {
    case TokenKind::Plus:
    case TokenKind::Minus:
    case TokenKind::Not:
    case TokenKind::PlusPlus:
    case TokenKind::MinusMinus:
        break;
    default:
        return readPostfix();
    }
    const Level level(*this);
    if (!countOperator())
        return badExpr();
    Expr* expr = makeExpr(ExprKind::Unary, fToken.begin, fToken.end);
    expr->op = kind();
    expr->mark = fToken.begin;
    advance();
    expr->first = readUnary();
    expr->end = expr->first->end;
    return expr;
}

Expr* SyntaxReader::readPostfix()
{
    const unsigned depth = fDepth;
    Expr* value = readPrimary();
    while (!fFailed)
    {
        if (is(TokenKind::OpenBracket) && fAhead.kind != TokenKind::OpenBracket) // two of them begin metadata
            value = readIndex(value);
        else if (is(TokenKind::Dot))
            value = readSwizzle(value);
        else if (is(TokenKind::PlusPlus) || is(TokenKind::MinusMinus))
        {
            if (!countOperator())
                break;
            Expr* postfix = makeExpr(ExprKind::Postfix, value->begin, fToken.end);
            postfix->op = kind();
            postfix->mark = fToken.begin;
            postfix->first = value;
            value = postfix;
            advance();
        }
        else
            break;
        // Each of them puts the value one level deeper into the tree.
        if (++fDepth == kDeepestNesting + 1)
            giveUp(Message::TooDeep, std::to_string(kDeepestNesting));
    }
    fDepth = depth;
    return value;
}

Expr* SyntaxReader::readIndex(Expr* value)
{
    const Level level(*this);
    Expr* index = makeExpr(ExprKind::Index, value->begin, fToken.end);
    index->mark = fToken.begin;
    advance();
    index->first = value;
    value->next = readAssignment();
    if (!fFailed)
        expect(TokenKind::CloseBracket, "']'");
    index->end = fPreviousEnd;
    return index;
}

Expr* SyntaxReader::readSwizzle(Expr* value)
{
    Expr* swizzle = makeExpr(ExprKind::Swizzle, value->begin, fAhead.end);
    swizzle->mark = fToken.begin;
    swizzle->first = value;
    advance();
    const std::string_view letters = tokenText();
    if (!is(TokenKind::Identifier))
    {
        fail("the components: letters of xyzw or of rgba");
        return swizzle;
    }
    unsigned set = 0;
    unsigned firstSet = 0;
    bool isGood = letters.size() <= 4;
    for (std::size_t i = 0; i < letters.size() && isGood; ++i)
    {
        swizzle->swizzle[i] = componentOf(letters[i], i == 0 ? firstSet : set);
        isGood = swizzle->swizzle[i] < 4 && (i == 0 || set == firstSet);
    }
    if (!isGood)
    {
        fDiagnostics.report(Message::BadSwizzle, fToken.range(), {letters});
        swizzle->kind = ExprKind::Bad;
        swizzle->first = nullptr;
    }
    advance();
    return swizzle;
}

Expr* SyntaxReader::readPrimary()
{
    Expr* expr = nullptr;
    switch (kind()) // NOLINT(clang-diagnostic-switch-enum): no other token begins an operand
    {
    case TokenKind::IntNumber:
    case TokenKind::FloatNumber:
        return readNumber();
    case TokenKind::True:
    case TokenKind::False:
        expr = makeExpr(ExprKind::Bool, fToken.begin, fToken.end);
        expr->number = is(TokenKind::True) ? 1.0 : 0.0;
        advance();
        return expr;
    case TokenKind::Text:
        expr = makeExpr(ExprKind::Text, fToken.begin, fToken.end);
        advance();
        return expr;
    case TokenKind::OpenParen:
        return readParenthesized();
    case TokenKind::Identifier:
    case TokenKind::Output:
        expr = makeExpr(ExprKind::Variable, fToken.begin, fToken.end);
        expr->name = fToken.name;
        expr->symbol = nullptr;
        advance();
        if (!is(TokenKind::OpenParen))
            return expr;
        expr->kind = ExprKind::Call;
        return readOperands(expr);
    case TokenKind::TypeName:
        expr = makeExpr(ExprKind::Construct, fToken.begin, fToken.end);
        expr->type = typeOfWord(tokenText());
        advance();
        if (is(TokenKind::OpenParen))
            return readOperands(expr);
        fail("'(' and the values");
        return expr;
    default:
        fail("a value");
        return badExpr();
    }
}

Expr* SyntaxReader::readNumber()
{
    Expr* expr = makeExpr(ExprKind::Number, fToken.begin, fToken.end);
    expr->op = kind();
    expr->number = fToken.number;
    advance();
    return expr;
}

Expr* SyntaxReader::readParenthesized()
{
    const Level level(*this);
    const Offset begin = fToken.begin;
    advance();
    Expr* expr = readAssignment();
    if (!fFailed)
        expect(TokenKind::CloseParen, "')'");
    expr->begin = begin;
    expr->end = fPreviousEnd;
    return expr;
}

Expr* SyntaxReader::readOperands(Expr* call)
{
    const Level level(*this);
    call->mark = fToken.begin;
    advance();
    Expr** last = &call->first;
    while (!fFailed && !is(TokenKind::CloseParen))
    {
        Expr* operand = readAssignment();
        *last = operand;
        last = &operand->next;
        if (!is(TokenKind::CloseParen) && !expect(TokenKind::Comma, "',' or ')'"))
            break;
        if (is(TokenKind::CloseParen) && fPreviousEnd != operand->end && !fFailed)
            fail("a value");
    }
    if (!fFailed)
        expect(TokenKind::CloseParen, "')'");
    call->end = fPreviousEnd;
    return call;
}

} // namespace krFrontend
