#include "PlainParser.h"

#include <krender/core/Exception.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/ShadingParser.h>
#include <krender/shading/Statement.h>
#include <krender/shading/StatementCompound.h>
#include <krender/shading/Token.h>
#include <krender/shading/Tokenizer.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <sstream>
#include <string_view>
#include <vector>

using namespace krShadingDag;

namespace
{

struct Failure
{
    std::string message;
};
struct EndlessBlock
{
};

const std::map<std::string, std::string> gOperatorNames = []
{
    std::map<std::string, std::string> names;
    for (const char* symbol :
         {"+", "-", "*", "/", "%", "==", "!=", ">", "<", ">=", "<=", "||", "&&", "++", "--", "!", "@"})
        names[symbol] = std::string("operator").append(symbol);
    for (const char* keyword : {"constant", "uniform", "vertex", "fragment"})
        names[keyword] = keyword;
    return names;
}();

void dumpTokens(std::ostream& out, const std::vector<Token>& tokens)
{
    for (const Token& t : tokens)
        out << ' ' << static_cast<unsigned>(t.type) << ':' << t.text.view() << '@' << t.position << ',' << t.line << ','
            << t.column << '=' << t.intValue << ',' << t.floatValue << ',' << t.isFractional << t.dataType;
}

void dumpOpening(std::ostream& out, StatementType type, const std::string& text, bool isLiteral,
                 const std::vector<Token>& tokens)
{
    out << static_cast<unsigned>(type) << isLiteral << '\'' << text << '\'';
    dumpTokens(out, tokens);
    out << "[\n";
}

void dumpList(std::ostream& out, const StatementCompound& list)
{
    for (unsigned i = 0; i < list.size(); ++i)
    {
        const Statement& s = *list.statement(i);
        const std::string text(s.isLiteral() ? s.text().view() : std::string_view());
        dumpOpening(out, s.type(), text, s.isLiteral(), s.tokens());
        dumpList(out, s.children());
        out << "]\n";
    }
}

void dumpAttribute(std::ostream& out, const char* role, DataType type, std::string_view name,
                   const CompFreqRange& range)
{
    out << role << ' ' << type << ' ' << name << ' ' << range.minFreq << ':' << range.maxFreq << '\n';
}

class PlainParser
{
public:
    explicit PlainParser(const std::string& source) : fSource(source)
    {
        fTokenizer.openString(krString::CString(std::string_view(source)));
    }

    std::string parse()
    {
        do
        {
            accumulate();
            if (fQueue.back().type == TokenType::EndOfStream)
                throw Failure{"error: found no function declaration or definition.\n"
                              "internal error: !fpNodeSpec after parsing code string.\n"};
        } while (fQueue.back().type != TokenType::Semicolon && fQueue.back().type != TokenType::OpenBrace);
        const bool isDeclaration = fQueue.back().type == TokenType::Semicolon;

        const std::size_t close = header();
        check(fQueue[close + 1].type == (isDeclaration ? TokenType::Semicolon : TokenType::OpenBrace),
              isDeclaration ? "Expected semicolon" : "Expected braces");
        const std::string head = (isDeclaration ? "4 " : "5 ") + fName + "\n" + fInputs.str() + fOutputs.str();
        fQueue.erase(fQueue.begin(), fQueue.end() - 1);
        if (!isDeclaration)
            statement();
        return head + fBody.str();
    }

private:
    static void check(bool condition, const std::string& message)
    {
        if (!condition)
            throw Failure{"error " + message + "\n"};
    }

    /// The source from one place through another, as far as there is any.
    [[nodiscard]] std::string cut(std::uint64_t from, std::uint64_t to) const
    {
        return from < fSource.size() ? fSource.substr(from, to + 1 - from) : std::string();
    }

    void accumulate()
    {
        Token token;
        do
            fTokenizer.nextToken(&token);
        while (token.type == TokenType::Comment);
        fQueue.push_back(token);
    }

    Token ahead(std::size_t n)
    {
        while (fQueue.size() <= n && (fQueue.empty() || fQueue.back().type != TokenType::EndOfStream))
            accumulate();
        return n < fQueue.size() ? fQueue[n] : fQueue.back();
    }

    Token consume()
    {
        Token front = ahead(0);
        if (front.type != TokenType::EndOfStream)
            fQueue.pop_front();
        return front;
    }

    CompFreqRange range(std::size_t& i)
    {
        const CompFreq low = tokenToCompFreq(fQueue[i]);
        if (low == kFreqInvalid)
            return kFullRange;
        if (fQueue[++i].type != TokenType::Colon)
            return {low, low};
        const CompFreq high = tokenToCompFreq(fQueue[++i]);
        check(high != kFreqInvalid, "Expected maximum frequency specifier.");
        ++i;
        return low <= high ? CompFreqRange{low, high} : CompFreqRange{};
    }

    std::size_t header()
    {
        std::size_t i = 0;
        const CompFreqRange outputRange = range(i);
        const Token result = fQueue[i];
        const std::string word(result.text.view());
        const bool isType = result.type == TokenType::DataTypeName;
        if (!isType)
        {
            const std::string known = " regular material displacement light texture2D texture3D ";
            check(!word.empty() && word.find(' ') == std::string::npos &&
                      known.find(" " + word + " ") != std::string::npos,
                  "Unrecognized return data type or shader type: " + word);
            check(word != "texture2D" && word != "texture3D", "Shader type is not allowed in KRSL: " + word);
        }
        check(fQueue[++i].type == TokenType::Identifier, "Invalid function name");
        fName = fQueue[i].text.view();
        if (fName == "operator")
        {
            const Token symbol = fQueue[++i];
            const auto named = gOperatorNames.find(std::string(symbol.text.view()));
            if (symbol.type == TokenType::OpenBracket)
            {
                check(fQueue[++i].type == TokenType::CloseBracket, "Expected ']'");
                fName = "operator[]";
            }
            else if (symbol.type == TokenType::DataTypeName)
                fName = word;
            else
            {
                check(named != gOperatorNames.end() && symbol.type != TokenType::QuotedString,
                      "Expected valid operator symbol");
                fName = named->second;
            }
        }
        if (isType && result.dataType != kVoid)
            output("output", result.dataType, outputRange);
        check(fQueue[++i].type == TokenType::OpenParen, "Expected '('");
        for (++i; fQueue[i].type != TokenType::CloseParen;)
            argument(i);
        check(!fOutputs.str().empty(), "Function needs at least one output.");
        return i;
    }

    void argument(std::size_t& i)
    {
        const bool isOutput = fQueue[i].type == TokenType::KeywordOut;
        i += isOutput;
        const CompFreqRange frequencies = range(i);
        const Token type = fQueue[i];
        check(type.type == TokenType::DataTypeName && type.dataType != kVoid,
              std::string("Not a valid data type: ").append(type.text.view()));
        const std::string name(fQueue[++i].text.view());
        check(fQueue[i].type == TokenType::Identifier, "Expected argument name: " + name);
        ++i;
        if (isOutput)
            output(name, type.dataType, frequencies);
        else
        {
            check(std::find(fInputNames.begin(), fInputNames.end(), name) == fInputNames.end(),
                  "input variable already exists: " + name);
            fInputNames.push_back(name);
            dumpAttribute(fInputs, "in", type.dataType, name, frequencies);
        }
        i += fQueue[i].type == TokenType::Comma;
    }

    void output(const std::string& name, DataType type, const CompFreqRange& frequencies)
    {
        dumpAttribute(fOutputs, "out", type, name, frequencies);
    }

    void statement()
    {
        const TokenType type = ahead(0).type;
        if (type == TokenType::OpenBrace)
            return compound(StatementType::Block, 1);
        if (type == TokenType::KeywordIlluminance && ahead(1).type == TokenType::OpenBrace)
            return compound(StatementType::Illuminance, 2);
        if (type == TokenType::KeywordIf && ahead(1).type == TokenType::OpenParen)
            return condition();
        if (type == TokenType::KeywordElse)
        {
            consume();
            dumpOpening(fBody, StatementType::Else, "", false, {});
            return governed();
        }
        opaque();
    }

    void compound(StatementType type, int opening)
    {
        for (; opening > 0; --opening)
            consume();
        dumpOpening(fBody, type, "", false, {});
        block();
    }

    void block()
    {
        while (ahead(0).type != TokenType::CloseBrace)
        {
            if (ahead(0).type == TokenType::Semicolon)
                throw EndlessBlock();
            statement();
        }
        consume();
        fBody << "]\n";
    }

    void condition()
    {
        const Token first = consume();
        consume();
        std::vector<Token> tokens;
        while (ahead(0).type != TokenType::CloseParen)
        {
            const TokenType type = ahead(0).type;
            check(type != TokenType::CloseBrace && type != TokenType::Semicolon && type != TokenType::EndOfStream,
                  "Expected close-parentheses after if statement");
            tokens.push_back(consume());
        }
        dumpOpening(fBody, StatementType::If, cut(first.position, consume().position), true, tokens);
        governed();
    }

    void governed()
    {
        if (ahead(0).type != TokenType::OpenBrace)
        {
            statement();
            fBody << "]\n";
            return;
        }
        consume();
        block();
    }

    void opaque()
    {
        Token current = ahead(0);
        const Token first = current;
        std::vector<Token> tokens;
        while (current.type != TokenType::Semicolon)
        {
            tokens.push_back(current);
            current = consume();
            check(current.type != TokenType::EndOfStream, "internal compiler error... unexpected end of KRSL stream.");
        }
        dumpOpening(fBody, StatementType::Opaque, cut(first.position, current.position), true, tokens);
        fBody << "]\n";
    }

    const std::string& fSource;
    Tokenizer fTokenizer;
    std::deque<Token> fQueue;
    std::string fName;
    std::vector<std::string> fInputNames;
    std::ostringstream fInputs;
    std::ostringstream fOutputs;
    std::ostringstream fBody;
};

} // namespace

PlainResult parsePlainly(const std::string& source)
{
    try
    {
        return {PlainResult::Read, PlainParser(source).parse()};
    }
    catch (const Failure& failure)
    {
        return {PlainResult::Rejected, failure.message};
    }
    catch (const Exception&)
    {
        return {PlainResult::Rejected, "error \n"};
    }
    catch (const EndlessBlock&)
    {
        return {PlainResult::Endless, ""};
    }
}

std::string dumpFunction(const ShadingNodeSpec& spec)
{
    std::ostringstream out;
    out << spec.nodeType() << ' ' << spec.name().view() << '\n';
    for (const ShadingAttribute& a : spec.inputs())
        dumpAttribute(out, "in", a.dataType(), a.name().view(), a.range());
    for (const ShadingAttribute& a : spec.outputs())
        dumpAttribute(out, "out", a.dataType(), a.name().view(), a.range());
    dumpList(out, spec.body());
    return out.str();
}
