#include <common/FunctionScanner.h>

#include <krender/core/Exception.h>
#include <krender/shading/FunctionType.h>
#include <krender/shading/ShadingParser.h>

#include <algorithm>
#include <array>
#include <unordered_set>

using krShadingDag::Token;
using krShadingDag::TokenType;

namespace krTools
{

namespace
{

using Kind = ScannedStatement::Kind;

/// The tokens that can be the name of an operator; "[" goes with a "]".
constexpr std::array kOperators{TokenType::Plus,
                                TokenType::Minus,
                                TokenType::Star,
                                TokenType::Slash,
                                TokenType::Percent,
                                TokenType::Equal,
                                TokenType::NotEqual,
                                TokenType::Greater,
                                TokenType::Less,
                                TokenType::GreaterEqual,
                                TokenType::LessEqual,
                                TokenType::OrOr,
                                TokenType::AndAnd,
                                TokenType::PlusPlus,
                                TokenType::MinusMinus,
                                TokenType::Not,
                                TokenType::At,
                                TokenType::OpenBracket,
                                TokenType::DataTypeName,
                                TokenType::KeywordConstant,
                                TokenType::KeywordUniform,
                                TokenType::KeywordVertex,
                                TokenType::KeywordFragment};

void require(bool condition, const ScannedToken& token)
{
    if (!condition)
        throw ScanFailure{ScanFailure::Kind::Rejected, token.begin, {}};
}

void requireType(const ScannedToken& token, TokenType type) { require(token.type == type, token); }

krShadingDag::CompFreq frequencyOf(const ScannedToken& token)
{
    Token keyword;
    keyword.type = token.type;
    return krShadingDag::tokenToCompFreq(keyword);
}

/// Whether a text names a shader type that sources may use.
bool isShaderType(std::string_view text)
{
    const krString::CString word(text);
    const krShadingDag::FunctionType type(word);
    return krString::equal(type.toString(), word) && type.allowedInKRSL();
}

} // namespace

/// A list of statements that the scan is in.
struct FunctionScanner::Level
{
    Kind owner;
    bool isBraced;         ///< else the body is a single statement
    std::uint32_t opening; ///< where its brace stands in the source, or its owner when there is none
    Predecessor last = Predecessor::None;
};

void ScannedFunction::clear()
{
    *this = {.tokens = std::move(tokens),
             .comments = std::move(comments),
             .resultRange = {},
             .resultWord = {},
             .name = {},
             .arguments = std::move(arguments),
             .statements = std::move(statements),
             .failure = {}};
    tokens.clear();
    comments.clear();
    arguments.clear();
    statements.clear();
}

FunctionScanner::FunctionScanner(const Source& source) : fSource(source) { fTokenizer.openString(source.contents()); }

bool FunctionScanner::next(ScannedFunction& function)
{
    function.clear();
    fNext = 0;
    if (fDone)
        return false;
    try
    {
        // The first ";" or "{" decides what the function is; a header holds neither.
        TokenType type = TokenType::Unknown;
        do
        {
            type = peek(function, static_cast<unsigned>(function.tokens.size())).type;
            if (function.tokens.size() > kMaxHeaderTokens)
                throw ScanFailure{ScanFailure::Kind::TooMuch, function.tokens.front().begin,
                                  "no \";\" or \"{\" ends this header within 50000 tokens"};
        } while (type != TokenType::Semicolon && type != TokenType::OpenBrace && type != TokenType::EndOfStream);
        if (type == TokenType::EndOfStream)
        {
            fDone = true;
            const bool hasText = function.tokens.size() > 1 && !isClosingByte(function.tokens.front());
            if (hasText)
                function.failure = {ScanFailure::Kind::Unfinished, function.tokens.front().begin,
                                    "the source ends within this header: a \";\" or a body is missing"};
            return hasText || !function.comments.empty();
        }
        function.isDefinition = type == TokenType::OpenBrace;
        scanHeader(function);
        if (function.isDefinition)
            scanBody(function);
    }
    catch (const ScanFailure& failure)
    {
        function.failure = failure;
        fDone = true;
    }
    return true;
}

std::string_view FunctionScanner::text(const ScannedToken& token) const noexcept
{
    const std::size_t begin = std::min<std::size_t>(token.begin, fSource.size());
    return fSource.text().substr(begin, token.end - begin);
}

ScannedToken FunctionScanner::readToken(ScannedFunction& function)
{
    for (;;)
    {
        Token token;
        try
        {
            fTokenizer.nextToken(&token);
        }
        catch (const Exception&)
        {
            failUnclosedToken();
        }
        if (token.type == TokenType::EndOfStream)
            return {};
        const ScannedToken scanned{token.type, token.dataType, static_cast<std::uint32_t>(token.position),
                                   static_cast<std::uint32_t>(fTokenizer.position())};
        if (token.type != TokenType::Comment)
            return scanned;
        function.comments.push_back(scanned);
    }
}

/// The n-th token not consumed yet; the end of the stream is a token too, and stays the last.
const ScannedToken& FunctionScanner::peek(ScannedFunction& function, unsigned ahead)
{
    std::vector<ScannedToken>& tokens = function.tokens;
    while (tokens.size() <= fNext + ahead && (tokens.empty() || tokens.back().type != TokenType::EndOfStream))
    {
        tokens.push_back(readToken(function));
        if (tokens.back().type == TokenType::EndOfStream)
            tokens.back().begin = tokens.back().end = static_cast<std::uint32_t>(fSource.size());
    }
    return tokens[std::min(fNext + ahead, tokens.size() - 1)];
}

bool FunctionScanner::isClosingByte(const ScannedToken& token) const noexcept { return token.begin == fSource.size(); }

/// The tokenizer gives no reason when the source ends within a token, but stands where that token begins.
void FunctionScanner::failUnclosedToken() const
{
    const std::size_t position = fTokenizer.position();
    const std::string_view rest = fSource.text().substr(std::min(position, fSource.size()));
    const std::size_t line = std::min(rest.find('\n'), rest.size());
    std::string_view text = "the source ends within this token";
    if (rest.starts_with("/*"))
        text = rest.find("*/", 2) == std::string_view::npos ? "this comment is not closed"
                                                            : "this comment is not closed: a \"//\" within it hides "
                                                              "what follows up to the next line, \"*/\" included";
    else if (rest.starts_with("//"))
        text = rest.substr(2, line).find("//") < line && line < rest.size()
                   ? "this comment does not end: a second \"//\" in a line carries it over the next line"
                   : "the source ends within this comment: a line break is missing";
    else if (rest.starts_with('"'))
        text = rest.find('"', 1) == std::string_view::npos
                   ? "this string is not closed"
                   : "this string is not closed: a \"//\" within it hides what follows up to the next line";
    throw ScanFailure{ScanFailure::Kind::Unfinished, position, text};
}

krShadingDag::CompFreqRange FunctionScanner::scanRange(const ScannedFunction& function, unsigned& index)
{
    const krShadingDag::CompFreq first = frequencyOf(function.tokens[index]);
    if (first == krShadingDag::kFreqInvalid)
        return krShadingDag::kFullRange;
    if (function.tokens[++index].type != TokenType::Colon)
        return {first, first};
    const krShadingDag::CompFreq last = frequencyOf(function.tokens[++index]);
    require(last != krShadingDag::kFreqInvalid, function.tokens[index]);
    ++index;
    return first <= last ? krShadingDag::CompFreqRange{first, last} : krShadingDag::CompFreqRange{};
}

/// Every check stands for one of the parser's, in its order. The ";" or "{" at the end of the tokens passes none of
/// them, so no index runs past it.
void FunctionScanner::scanHeader(ScannedFunction& function) const
{
    const std::vector<ScannedToken>& tokens = function.tokens;
    unsigned i = 0;
    function.resultRange = scanRange(function, i);
    const ScannedToken& result = tokens[i];
    require(result.type == TokenType::DataTypeName || isShaderType(text(result)), result);
    function.resultWord = i;
    const bool returnsValue = result.type == TokenType::DataTypeName && result.dataType != kVoid;

    const ScannedToken& name = tokens[++i];
    requireType(name, TokenType::Identifier);
    if (text(name) == "operator")
    {
        const ScannedToken& symbol = tokens[++i];
        require(std::find(kOperators.begin(), kOperators.end(), symbol.type) != kOperators.end(), symbol);
        if (symbol.type == TokenType::OpenBracket)
            requireType(tokens[++i], TokenType::CloseBracket);
    }
    function.name = i;
    requireType(tokens[++i], TokenType::OpenParen);
    ++i;

    std::unordered_set<std::string_view> inputs;
    bool hasOutput = returnsValue;
    while (tokens[i].type != TokenType::CloseParen)
    {
        ScannedArgument argument{};
        argument.first = i;
        argument.isOutput = tokens[i].type == TokenType::KeywordOut;
        i += argument.isOutput ? 1 : 0;
        argument.range = scanRange(function, i);
        argument.type = i;
        require(tokens[i].type == TokenType::DataTypeName && tokens[i].dataType != kVoid, tokens[i]);
        ++i;
        argument.name = i;
        requireType(tokens[i], TokenType::Identifier);
        function.arguments.push_back(argument);
        if (argument.isOutput)
            hasOutput = true;
        else if (!inputs.insert(text(tokens[i])).second)
            throw ScanFailure{ScanFailure::Kind::DuplicateInput, tokens[i].begin, {}};
        ++i;
        i += tokens[i].type == TokenType::Comma ? 1 : 0;
    }
    require(hasOutput, tokens[*function.name]);
    require(i + 2 == tokens.size(), tokens[i + 1]);
}

/// Ends the statement that the innermost list of statements has just completed, with all that ends along with it.
void FunctionScanner::endStatement(std::vector<Level>& levels, Predecessor ended)
{
    while (!levels.empty() && !levels.back().isBraced)
    {
        const bool overBareIf = ended == Predecessor::If || ended == Predecessor::IfOverBareIf;
        const bool isIf = levels.back().owner == Kind::If;
        levels.pop_back();
        ended = isIf ? (overBareIf ? Predecessor::IfOverBareIf : Predecessor::If)
                     : (overBareIf ? Predecessor::ElseIf : Predecessor::Else);
    }
    if (!levels.empty())
        levels.back().last = ended;
}

void FunctionScanner::scanBody(ScannedFunction& function)
{
    fNext = function.tokens.size();
    std::vector<Level> levels{{Kind::Block, true, function.tokens.back().begin}};
    const auto endedBy = [](Kind kind) {
        return kind == Kind::If ? Predecessor::If : kind == Kind::Else ? Predecessor::Else : Predecessor::Other;
    };

    while (!levels.empty())
    {
        if (levels.size() > kMaxDepth)
            throw ScanFailure{ScanFailure::Kind::TooDeep, levels.back().opening,
                              "statements are nested more than 5000 deep"};
        if (levels.back().isBraced && peek(function).type == TokenType::CloseBrace)
        {
            ++fNext;
            const Kind ended = levels.back().owner;
            levels.pop_back();
            endStatement(levels, endedBy(ended));
            continue;
        }
        const std::size_t depth = levels.size();
        beginStatement(function, levels);
        if (levels.size() == depth)
            endStatement(levels, Predecessor::Other);
    }
}

/// Reads a statement that holds no others, or as much of one as stands before its first.
void FunctionScanner::beginStatement(ScannedFunction& function, std::vector<Level>& levels)
{
    const ScannedToken front = peek(function);
    const auto first = static_cast<std::uint32_t>(fNext);
    Kind kind = Kind::Opaque;
    switch (front.type)
    {
    case TokenType::OpenBrace:
        kind = Kind::Block;
        break;
    case TokenType::KeywordIlluminance:
        kind = peek(function, 1).type == TokenType::OpenBrace ? Kind::Illuminance : Kind::Opaque;
        break;
    case TokenType::KeywordIf:
        kind = peek(function, 1).type == TokenType::OpenParen ? Kind::If : Kind::Opaque;
        break;
    case TokenType::KeywordElse:
        kind = Kind::Else;
        break;
    case TokenType::Semicolon:
        kind = Kind::Empty;
        break;
    default:
        break;
    }

    const std::size_t index = function.statements.size();
    function.statements.push_back({kind, levels.back().last, first, first});
    if (kind == Kind::Opaque)
        scanOpaque(function, levels);
    else
        ++fNext;
    if (kind == Kind::Empty && ++function.emptyStatements > kMaxEmptyStatements)
        throw ScanFailure{ScanFailure::Kind::TooMuch, front.begin, "there are more than 1000 empty statements"};
    if (kind == Kind::If)
        scanCondition(function);
    function.statements[index].last = static_cast<std::uint32_t>(fNext - 1);
    if (kind == Kind::Opaque || kind == Kind::Empty)
        return;

    const ScannedToken& body = kind == Kind::Block ? front : peek(function);
    const bool isBraced = body.type == TokenType::OpenBrace;
    levels.push_back({kind, isBraced, isBraced ? body.begin : front.begin});
    fNext += isBraced && kind != Kind::Block ? 1 : 0;
}

/// The condition ends at the first ")", whatever was opened within it.
void FunctionScanner::scanCondition(ScannedFunction& function)
{
    ++fNext;
    for (;; ++fNext)
    {
        const ScannedToken& token = peek(function);
        if (token.type == TokenType::CloseParen)
            break;
        require(token.type != TokenType::CloseBrace && token.type != TokenType::Semicolon &&
                    token.type != TokenType::EndOfStream,
                token);
    }
    ++fNext;
}

void FunctionScanner::scanOpaque(ScannedFunction& function, const std::vector<Level>& levels)
{
    const ScannedToken first = peek(function);
    while (peek(function).type != TokenType::Semicolon)
    {
        if (peek(function).type == TokenType::EndOfStream)
        {
            if (first.type != TokenType::EndOfStream && !isClosingByte(first))
                throw ScanFailure{ScanFailure::Kind::Unfinished, first.begin,
                                  "the source ends within this statement: a \";\" is missing"};
            throw ScanFailure{ScanFailure::Kind::Unfinished, levels.back().opening,
                              levels.back().isBraced ? "the source ends within the block that begins here"
                                                     : "the source ends before the statement that belongs here"};
        }
        ++fNext;
    }
    ++fNext;
}

} // namespace krTools
