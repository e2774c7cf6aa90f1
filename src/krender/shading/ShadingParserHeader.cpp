// Declarations and function headers.
#include <krender/shading/ShadingParser.h>

#include "krender/shading/private/Require.h"

#include <krender/platform/String.h>
#include <krender/shading/DataType.h>
#include <krender/shading/FunctionType.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/ShadingParserLimits.h>
#include <krender/shading/Token.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace krShadingDag
{

namespace
{

struct OperatorName
{
    TokenType token;
    const char* name;
};

constexpr std::array kOperators{
    OperatorName{TokenType::Plus, "operator+"},        OperatorName{TokenType::Minus, "operator-"},
    OperatorName{TokenType::Star, "operator*"},        OperatorName{TokenType::Slash, "operator/"},
    OperatorName{TokenType::Percent, "operator%"},     OperatorName{TokenType::Equal, "operator=="},
    OperatorName{TokenType::NotEqual, "operator!="},   OperatorName{TokenType::Greater, "operator>"},
    OperatorName{TokenType::Less, "operator<"},        OperatorName{TokenType::GreaterEqual, "operator>="},
    OperatorName{TokenType::LessEqual, "operator<="},  OperatorName{TokenType::OrOr, "operator||"},
    OperatorName{TokenType::AndAnd, "operator&&"},     OperatorName{TokenType::PlusPlus, "operator++"},
    OperatorName{TokenType::MinusMinus, "operator--"}, OperatorName{TokenType::Not, "operator!"},
    OperatorName{TokenType::At, "operator@"},          OperatorName{TokenType::OpenBracket, "operator[]"},
};

/// The function name that stands for "operator" and the token behind it.
krString::CString operatorName(const Token& symbol, const Token& returnType)
{
    for (const OperatorName& row : kOperators)
        if (row.token == symbol.type)
            return row.name;
    if (symbol.type == TokenType::DataTypeName)
        return returnType.text; // a conversion
    require(tokenToCompFreq(symbol) != kFreqInvalid, "Expected valid operator symbol");
    return symbol.text;
}

/// The type that a header's return word stands for; a shader type returns nothing.
DataType returnTypeOf(const Token& word)
{
    if (word.type == TokenType::DataTypeName)
        return word.dataType;
    const FunctionType shaderType(word.text);
    require(krString::equal(shaderType.toString(), word.text),
            "Unrecognized return data type or shader type: ", word.text);
    require(shaderType.allowedInKRSL(), "Shader type is not allowed in KRSL: ", word.text);
    return kVoid;
}

} // namespace

CompFreq tokenToCompFreq(const Token& token) noexcept
{
    switch (token.type)
    {
    case TokenType::KeywordConstant:
        return kFreqConstant;
    case TokenType::KeywordUniform:
        return kFreqUniform;
    case TokenType::KeywordVertex:
        return kFreqVertex;
    case TokenType::KeywordFragment:
        return kFreqFragment;
    default:
        return kFreqInvalid;
    }
}

void ShadingParser::parseFunc()
{
    TokenType last = TokenType::Unknown;
    unsigned count = 0;
    while (last != TokenType::Semicolon && last != TokenType::OpenBrace)
    {
        last = accumulate_token().type;
        if (fEndOfStream)
        {
            krString::plusEqual(fErrorText, "error: found no function declaration or definition.\n");
            return;
        }
        if (++count > fLimits.maxHeaderTokens)
            refuse("Header of more than " + std::to_string(fLimits.maxHeaderTokens) + " tokens");
    }
    if (last == TokenType::Semicolon)
        return parseFuncDecl();
    require(last == TokenType::OpenBrace,
            "unexpected token during function declaration: ", fQueue[fQueue.size() - 1].text);
    parseFuncDef();
}

void ShadingParser::parseFuncDecl()
{
    beginSpec(kDeclaration);
    const unsigned close = readHeader();
    require(peek(close + 1).type == TokenType::Semicolon, "Expected semicolon");
    finishSpec();
    fQueue.clear();
}

void ShadingParser::parseFuncDef()
{
    beginSpec(kDefinition);
    const unsigned close = readHeader();
    require(peek(close + 1).type == TokenType::OpenBrace, "Expected braces");
    require(fQueue.size() == std::size_t{close} + 2, "INTERNAL ERROR: Buffer overrun");
    fQueue.dropAllButLast();

    for (const std::vector<ShadingAttribute>* visible : {&fpNodeSpec->inputs(), &fpNodeSpec->outputs()})
        for (const ShadingAttribute& attribute : *visible)
            fVariables.emplace_back(attribute.name(), attribute);
    require(parseCompoundStatement(fpNodeSpec->body()), "Parsing error!");
    finishSpec();
}

void ShadingParser::beginSpec(NodeType nodeType)
{
    fpNodeSpec = fOwnSpecs.emplace_back(std::make_unique<ShadingNodeSpec>(nodeType)).get();
}

/// Hands the finished spec to the library, if it is to have it.
void ShadingParser::finishSpec()
{
    if (!fAddToLibrary)
        return;
    ShadingNodeSpec* const registered = fpNodeSpec->addToLibrary();
    if (registered == fpNodeSpec)
        static_cast<void>(fOwnSpecs.back().release());
    fOwnSpecs.pop_back();
    fpNodeSpec = registered;
}

unsigned ShadingParser::parseFuncHeader()
{
    beginSpec(kDeclaration);
    return readHeader();
}

unsigned ShadingParser::readHeader()
{
    unsigned i = 0;
    const CompFreqRange outputRange = readOptionalCompFreqRange(i);
    const Token& result = peek(i);
    const DataType returnType = returnTypeOf(result);

    const Token& name = peek(++i);
    require(name.type == TokenType::Identifier, "Invalid function name");
    if (krString::equal(name.text, "operator"))
    {
        const Token& symbol = peek(++i);
        fpNodeSpec->setName(operatorName(symbol, result));
        require(symbol.type != TokenType::OpenBracket || peek(++i).type == TokenType::CloseBracket, "Expected ']'");
    }
    else
        fpNodeSpec->setName(name.text);
    if (returnType != kVoid)
        fOutputs.push_back(fpNodeSpec->addOutput(returnType, "output", outputRange));

    require(peek(++i).type == TokenType::OpenParen, "Expected '('");
    ++i;
    while (peek(i).type != TokenType::CloseParen)
        readArgument(i);
    require(!fOutputs.empty(), "Function needs at least one output.");
    return i;
}

/// Reads one argument of a header, and a comma behind it where there is one.
void ShadingParser::readArgument(unsigned& index)
{
    const bool isOutput = peek(index).type == TokenType::KeywordOut;
    if (isOutput)
        ++index;
    const CompFreqRange range = readOptionalCompFreqRange(index);
    const Token& type = peek(index);
    require(type.type == TokenType::DataTypeName && type.dataType != kInvalidType && type.dataType != kVoid,
            "Not a valid data type: ", type.text);
    const Token& name = peek(++index);
    require(name.type == TokenType::Identifier, "Expected argument name: ", name.text);
    if (isOutput)
        fOutputs.push_back(fpNodeSpec->addOutput(type.dataType, name.text, range));
    else
        fInputs.push_back(fpNodeSpec->addInput(type.dataType, name.text, range));
    if (peek(++index).type == TokenType::Comma)
        ++index;
}

CompFreqRange ShadingParser::readOptionalCompFreqRange(unsigned& index)
{
    const CompFreq minFreq = tokenToCompFreq(peek(index));
    if (minFreq == kFreqInvalid)
        return kFullRange;
    ++index;
    if (peek(index).type != TokenType::Colon)
        return {minFreq, minFreq};
    ++index;
    const CompFreq maxFreq = tokenToCompFreq(peek(index));
    require(maxFreq != kFreqInvalid, "Expected maximum frequency specifier.");
    ++index;
    // Deliberate: a reversed range is empty and no error, and the compilers declare no input that has it.
    return minFreq <= maxFreq ? CompFreqRange{minFreq, maxFreq} : CompFreqRange{};
}

} // namespace krShadingDag
