#include "Inspection.h"
#include "ReservedNames.h"

#include <algorithm>
#include <utility>
#include <vector>

using krShadingDag::TokenType;
using krTools::inQuotes;
using krTools::Predecessor;
using krTools::ScannedStatement;
using krTools::ScannedToken;
using Kind = krTools::ScannedStatement::Kind;

namespace
{

void lintElse(const Inspection& in, const ScannedStatement& statement)
{
    const ScannedToken& token = in.token(statement.first);
    switch (statement.predecessor)
    {
    case Predecessor::If:
        break;
    case Predecessor::IfOverBareIf:
        in.warn(Warning::DanglingElse, token,
                "this \"else\" goes with the outer \"if\": put braces around the inner one");
        break;
    case Predecessor::ElseIf:
        in.warn(Warning::ElseWithoutIf, token,
                "this \"else\" has no \"if\": an \"else if\" ends with its statement, so put braces around the \"if\" "
                "behind \"else\" "
                "and all that belongs to it");
        break;
    case Predecessor::None:
    case Predecessor::Else:
    case Predecessor::Other:
        in.warn(Warning::ElseWithoutIf, token, "this \"else\" has no \"if\" before it");
        break;
    }
}

void lintCondition(const Inspection& in, const ScannedStatement& statement)
{
    for (std::uint32_t i = statement.first + 2; i < statement.last; ++i)
        if (in.typeAt(i) == TokenType::OpenParen)
        {
            in.warn(Warning::ParenInCondition, in.token(i),
                    "the condition ends at the first \")\": compute what stands in parentheses before the \"if\"");
            return;
        }
}

void lintBraces(const Inspection& in, const ScannedStatement& statement)
{
    for (std::uint32_t i = statement.first; i < statement.last; ++i)
        if (in.typeAt(i) == TokenType::OpenBrace || in.typeAt(i) == TokenType::CloseBrace)
        {
            in.warn(Warning::BraceInStatement, in.token(i),
                    "this " + inQuotes(in.text(i)) + " is part of an ordinary statement" +
                        (i > statement.first ? ": is a \";\" missing before it?" : ""));
            return;
        }
}

/// Finds "for (...) {", "while (...) {" and "do {".
class LoopFinder
{
public:
    explicit LoopFinder(const Inspection& in) : fIn(in) {}

    /// Looks at the next token; ask for all of a body in order.
    void visit(std::size_t i)
    {
        switch (fIn.typeAt(i))
        {
        case TokenType::OpenParen:
            fParens.push_back(i);
            break;
        case TokenType::CloseParen:
            if (!fParens.empty())
            {
                const std::size_t keyword = fParens.back() - 1;
                fParens.pop_back();
                const TokenType type = fIn.typeAt(keyword);
                if (type == TokenType::KeywordFor || type == TokenType::KeywordWhile)
                    check(keyword, i + 1);
            }
            break;
        case TokenType::KeywordDo:
            check(i, i + 1);
            break;
        default:
            break;
        }
    }

    /// The braces of the loops found, in order.
    [[nodiscard]] const std::vector<std::size_t>& braces() const noexcept { return fBraces; }

private:
    void check(std::size_t keyword, std::size_t brace)
    {
        if (fIn.typeAt(brace) != TokenType::OpenBrace)
            return;
        fBraces.push_back(brace);
        fIn.warn(Warning::BracedLoop, fIn.token(keyword),
                 "a loop cannot have a body in braces: its first \";\" ends the statement, and its \"}\" the block "
                 "around it");
    }

    const Inspection& fIn;
    std::vector<std::size_t> fParens;
    std::vector<std::size_t> fBraces;
};

void lintDeclaration(const Inspection& in, std::size_t i)
{
    // A type directly before a name declares it; elsewhere a type is followed by "(".
    if (in.typeAt(i) == TokenType::DataTypeName && in.typeAt(i + 1) == TokenType::Identifier &&
        (isReserved(in.text(i + 1)) || isStandardValue(in.text(i + 1))))
        warnReserved(in, i + 1);
}

void lintNumber(const Inspection& in, std::size_t i)
{
    if (in.typeAt(i) != TokenType::Number || in.typeAt(i + 1) != TokenType::Plus)
        return;
    const char last = in.text(i).back();
    if ((last == 'e' || last == 'E') && in.token(i + 1).begin == in.token(i).end)
        in.warn(Warning::ExponentPlus, in.token(i + 1),
                "an exponent takes no plus sign: this is " + inQuotes(in.text(i)) + ", \"+\" and what follows");
}

} // namespace

void lintBody(const Inspection& in)
{
    LoopFinder loops(in);
    const std::size_t bodyBegin =
        in.function.statements.empty() ? in.function.tokens.size() : in.function.statements.front().first;
    for (std::size_t i = bodyBegin; i < in.function.tokens.size(); ++i)
    {
        loops.visit(i);
        lintDeclaration(in, i);
        lintNumber(in, i);
    }

    // A statement that holds a brace is reported once, by the warning that knows most about it.
    bool isCutCondition = false;
    std::size_t loop = 0;
    for (const ScannedStatement& statement : in.function.statements)
    {
        const bool afterCutCondition = std::exchange(isCutCondition, false);
        switch (statement.kind)
        {
        case Kind::If:
            lintCondition(in, statement);
            isCutCondition = std::any_of(in.function.tokens.begin() + statement.first + 2,
                                         in.function.tokens.begin() + statement.last,
                                         [](const ScannedToken& token) { return token.type == TokenType::OpenParen; });
            break;
        case Kind::Else:
            lintElse(in, statement);
            break;
        case Kind::Illuminance:
            if (in.resultWord() == "light")
                in.warn(Warning::IlluminanceInLight, in.token(statement.first),
                        "a light's own illuminance block stays in the program as it is");
            break;
        case Kind::Opaque:
        {
            const bool isIlluminance = in.typeAt(statement.first) == TokenType::KeywordIlluminance;
            if (isIlluminance)
                in.warn(Warning::IlluminanceArguments, in.token(statement.first),
                        "\"illuminance\" takes no arguments: without a \"{\" behind it this is an ordinary statement");
            while (loop < loops.braces().size() && loops.braces()[loop] < statement.first)
                ++loop;
            const bool isLoop = loop < loops.braces().size() && loops.braces()[loop] <= statement.last;
            if (!isIlluminance && !isLoop && !afterCutCondition)
                lintBraces(in, statement);
            break;
        }
        case Kind::Block:
        case Kind::Empty:
            break;
        }
    }
}
