#include "krender/frontend/private/SyntaxReader.h"

#include <krender/frontend/SourceSet.h>
#include <krender/shading/ShadingAttribute.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace krFrontend
{
namespace
{

constexpr std::array<std::pair<std::string_view, FunctionKind>, 4> kShaderWords{{
    {"material", FunctionKind::Material},
    {"light", FunctionKind::Light},
    {"displacement", FunctionKind::Displacement},
    {"regular", FunctionKind::Regular},
}};

krShadingDag::CompFreq frequencyOf(TokenKind kind) noexcept
{
    switch (kind) // NOLINT(clang-diagnostic-switch-enum): every other word is no frequency
    {
    case TokenKind::Constant:
        return krShadingDag::kFreqConstant;
    case TokenKind::Uniform:
        return krShadingDag::kFreqUniform;
    case TokenKind::Vertex:
        return krShadingDag::kFreqVertex;
    case TokenKind::Fragment:
        return krShadingDag::kFreqFragment;
    default:
        return krShadingDag::kFreqInvalid;
    }
}

constexpr bool isOverloadable(TokenKind kind) noexcept
{
    return (kind >= TokenKind::Plus && kind <= TokenKind::Or) || (kind >= TokenKind::Equal && kind <= TokenKind::At) ||
           kind == TokenKind::TypeName;
}

} // namespace

SyntaxReader::SyntaxReader(const SourceFile& file, SyntaxStore& store, SyntaxTree& tree, DiagnosticList& diagnostics)
    : fFile(file),
      fStore(store),
      fTree(tree),
      fDiagnostics(diagnostics),
      fLexer(file, store.names, diagnostics),
      fToken(fLexer.next()),
      fAhead(fLexer.next()),
      fPreviousEnd(file.begin())
{
}

void SyntaxReader::advance()
{
    fPreviousEnd = fToken.end;
    fPreviousHasError = fToken.hasError;
    fToken = fAhead;
    fAhead = fLexer.next();
}

bool SyntaxReader::accept(TokenKind kind)
{
    if (!is(kind))
        return false;
    advance();
    return true;
}

std::string_view SyntaxReader::textOf(SourceRange range) const noexcept
{
    return fFile.text().substr(range.begin - fFile.begin(), range.end - range.begin);
}

void SyntaxReader::fail(std::string_view expected)
{
    // Where a token was reported just now, what does not fit is its consequence.
    if (!fFailed && !fGaveUp && !fToken.hasError && !fPreviousHasError)
    {
        if (is(TokenKind::EndOfFile))
            fDiagnostics.report(Message::UnexpectedEnd, previousEnd(), {expected});
        else
            fDiagnostics.report(Message::UnexpectedToken, fToken.range(), {expected, tokenText()});
    }
    fFailed = true;
}

bool SyntaxReader::expect(TokenKind kind, std::string_view what)
{
    if (accept(kind))
        return true;
    fail(what);
    return false;
}

bool SyntaxReader::expectSemicolon()
{
    if (accept(TokenKind::Semicolon))
        return true;
    // Where the next line begins or the block ends, only the ";" is missing, and nothing need be passed over.
    if (!fFailed && !fGaveUp && (fToken.startsLine || is(TokenKind::CloseBrace)))
    {
        fDiagnostics.report(Message::MissingSemicolon, previousEnd()).fix(previousEnd(), ";");
        return true;
    }
    fail("';'");
    return false;
}

void SyntaxReader::skipBraces()
{
    for (unsigned depth = 0; !is(TokenKind::EndOfFile); advance())
    {
        if (is(TokenKind::OpenBrace))
            ++depth;
        else if (is(TokenKind::CloseBrace) && --depth == 0)
            break;
    }
    accept(TokenKind::CloseBrace);
}

void SyntaxReader::skipStatement()
{
    fFailed = false;
    while (!is(TokenKind::EndOfFile) && !is(TokenKind::CloseBrace))
    {
        if (is(TokenKind::OpenBrace))
        {
            skipBraces();
            return;
        }
        if (accept(TokenKind::Semicolon))
            return;
        advance();
    }
}

void SyntaxReader::skipDeclaration()
{
    fFailed = false;
    while (!is(TokenKind::EndOfFile))
    {
        if (is(TokenKind::OpenBrace))
        {
            skipBraces();
            return;
        }
        if (accept(TokenKind::Semicolon) || accept(TokenKind::CloseBrace))
            return;
        advance();
    }
}

SyntaxReader::Level::Level(SyntaxReader& reader) : fReader(reader)
{
    if (++fReader.fDepth == kDeepestNesting + 1)
        fReader.giveUp(Message::TooDeep, std::to_string(kDeepestNesting));
}

void SyntaxReader::giveUp(Message message, std::string_view limit)
{
    if (!fGaveUp)
        fDiagnostics.report(message, fToken.range(), {limit});
    fGaveUp = true;
    fFailed = true;
    fLexer.stop();
    fAhead = fLexer.next();
    advance();
}

void SyntaxReader::readFile(std::vector<IncludeRequest>& includes)
{
    while (!is(TokenKind::EndOfFile))
    {
        if (is(TokenKind::Hash))
            readInclude(includes);
        else if (is(TokenKind::Const))
            readConstants();
        else if (!accept(TokenKind::Semicolon))
            readFunction();
        if (fFailed)
            skipDeclaration();
    }
}

void SyntaxReader::readInclude(std::vector<IncludeRequest>& includes)
{
    constexpr std::string_view kInclude = "include";
    const Offset begin = fToken.begin;
    const bool isAlone = fToken.startsLine;
    advance();
    if (!isAlone || !is(TokenKind::Identifier) || tokenText() != kInclude || fAhead.kind != TokenKind::Text)
    {
        fDiagnostics.report(Message::Directive, {begin, fToken.end});
        while (!is(TokenKind::EndOfFile) && !fToken.startsLine)
            advance();
        return;
    }
    advance();
    const std::string_view path = tokenText();
    const SourceRange range{begin, fToken.end};
    advance();
    if (path.size() > 2 && path.ends_with('"'))
        includes.push_back({range, std::string(path.substr(1, path.size() - 2))});
    else if (path.ends_with('"'))
        fDiagnostics.report(Message::EmptyInclude, range);
}

Symbol* SyntaxReader::readName(SymbolKind kind, Type type, Offset typeBegin)
{
    if (!is(TokenKind::Identifier))
    {
        fail("a name");
        return nullptr;
    }
    Symbol* symbol = fStore.arena.make<Symbol>();
    symbol->kind = kind;
    symbol->type = type;
    symbol->name = fToken.name;
    symbol->range = fToken.range();
    symbol->typeBegin = typeBegin;
    advance();
    return symbol;
}

void SyntaxReader::readConstants()
{
    const Offset begin = fToken.begin;
    advance();
    if (!is(TokenKind::TypeName))
    {
        fail("the type of the constant");
        return;
    }
    const Type type = typeOfWord(tokenText());
    advance();
    do
    {
        Symbol* constant = readName(SymbolKind::Constant, type, begin);
        if (!constant)
            return;
        constant->isConst = true;
        if (is(TokenKind::OpenBracket))
        {
            fDiagnostics.report(Message::ArrayNotHere, fToken.range());
            fFailed = true;
            return;
        }
        if (!expect(TokenKind::Assign, "'=' and the value of the constant"))
            return;
        constant->initializer = readExpression();
        if (fFailed)
            return;
        fTree.constants.push_back(constant);
    } while (accept(TokenKind::Comma));
    expectSemicolon();
}

bool SyntaxReader::readFrequencies(krShadingDag::CompFreqRange& range)
{
    const LexerToken first = fToken;
    range.minFreq = range.maxFreq = frequencyOf(kind());
    if (range.minFreq == krShadingDag::kFreqInvalid)
    {
        range = krShadingDag::kFullRange;
        return true;
    }
    advance();
    if (!accept(TokenKind::Colon))
        return true;
    range.maxFreq = frequencyOf(kind());
    if (range.maxFreq == krShadingDag::kFreqInvalid)
    {
        fail("the higher frequency: constant, uniform, vertex or fragment");
        return false;
    }
    const LexerToken last = fToken;
    advance();
    if (range.minFreq > range.maxFreq)
        fDiagnostics.report(Message::ReversedRange, {first.begin, last.end})
            .fix(first.range(), textOf(last.range()))
            .fix(last.range(), textOf(first.range()));
    return true;
}

void SyntaxReader::readFunction()
{
    Function& function = fStore.functions.emplace_back();
    const Offset begin = fToken.begin;
    if (!readFrequencies(function.resultRange) || !readResult(function) || !readFunctionName(function) ||
        !expect(TokenKind::OpenParen, "'(' and the arguments") || !readArguments(function))
    {
        fStore.functions.pop_back();
        return;
    }
    function.header = {begin, fPreviousEnd};
    fTree.functions.push_back(&function);
    if (is(TokenKind::OpenBrace))
        function.body = readBlock();
    else if (!accept(TokenKind::Semicolon))
        fail("'{' and the body, or ';' for a declaration");
}

bool SyntaxReader::readResult(Function& function)
{
    if (is(TokenKind::TypeName))
    {
        function.result = typeOfWord(tokenText());
        advance();
        return true;
    }
    const auto word =
        std::find_if(kShaderWords.begin(), kShaderWords.end(), [&](const auto& w) { return w.first == tokenText(); });
    if (word == kShaderWords.end())
    {
        fail("a function, material, light or constant");
        return false;
    }
    function.kind = word->second;
    advance();
    return true;
}

bool SyntaxReader::readFunctionName(Function& function)
{
    function.name = fToken.name;
    function.range = fToken.range();
    if (!is(TokenKind::Identifier))
    {
        fail("the name of the function");
        return false;
    }
    const bool isOperator = tokenText() == "operator";
    advance();
    if (!isOperator || is(TokenKind::OpenParen))
        return true;
    function.isOperator = true;
    if (accept(TokenKind::OpenBracket))
    {
        if (!expect(TokenKind::CloseBracket, "']'"))
            return false;
    }
    else if (isOverloadable(kind()) || frequencyOf(kind()) != krShadingDag::kFreqInvalid)
        advance();
    else
    {
        fail("an operator");
        return false;
    }
    function.range.end = fPreviousEnd;
    function.name = fStore.names.intern(textOf(function.range));
    return true;
}

bool SyntaxReader::readArguments(Function& function)
{
    Symbol** last = &function.arguments;
    while (!accept(TokenKind::CloseParen))
    {
        Symbol* argument = readArgument(function);
        if (!argument)
            return false;
        *last = argument;
        last = &argument->next;
        ++function.argumentCount;
        if (accept(TokenKind::Comma))
        {
            if (is(TokenKind::CloseParen))
            {
                fail("an argument");
                return false;
            }
        }
        else if (!is(TokenKind::CloseParen))
        {
            if (!is(TokenKind::TypeName) && !is(TokenKind::Out) && !is(TokenKind::Inout) &&
                frequencyOf(kind()) == krShadingDag::kFreqInvalid)
            {
                fail("',' or ')'");
                return false;
            }
            fDiagnostics.report(Message::MissingComma, previousEnd()).fix(previousEnd(), ",");
        }
    }
    return true;
}

Symbol* SyntaxReader::readArgument(Function& function)
{
    const Offset begin = fToken.begin;
    SymbolKind kind = SymbolKind::Input;
    if (accept(TokenKind::Out))
        kind = SymbolKind::Output;
    else if (accept(TokenKind::Inout))
        kind = SymbolKind::Inout;
    krShadingDag::CompFreqRange frequencies;
    if (!readFrequencies(frequencies))
        return nullptr;
    if (!is(TokenKind::TypeName))
    {
        fail("the type of an argument");
        return nullptr;
    }
    const Type type = typeOfWord(tokenText());
    advance();
    Symbol* argument = readName(kind, type, begin);
    if (!argument)
        return nullptr;
    argument->function = &function;
    argument->frequencies = frequencies;
    if (is(TokenKind::OpenBracket) && fAhead.kind != TokenKind::OpenBracket)
    {
        fDiagnostics.report(Message::ArrayNotHere, fToken.range());
        fFailed = true;
        return nullptr;
    }
    if (accept(TokenKind::Assign))
        argument->initializer = readExpression();
    if (fFailed || (is(TokenKind::OpenBracket) && !readMetadata(*argument)))
        return nullptr;
    return argument;
}

bool SyntaxReader::readMetadata(Symbol& argument)
{
    advance();
    advance();
    std::vector<Metadata>& items = fTree.metadata.emplace_back();
    argument.metadata = static_cast<std::uint32_t>(fTree.metadata.size());
    while (!is(TokenKind::CloseBracket))
    {
        if (!is(TokenKind::TypeName))
        {
            fail("the type of a metadata item, or ']]'");
            return false;
        }
        const Type type = typeOfWord(tokenText());
        const Offset begin = fToken.begin;
        advance();
        Symbol* item = readName(SymbolKind::Constant, type, begin);
        if (!item || !expect(TokenKind::Assign, "'=' and the value"))
            return false;
        item->initializer = readExpression();
        if (fFailed)
            return false;
        items.push_back({item, {}});
        if (!accept(TokenKind::Comma) && !is(TokenKind::CloseBracket))
        {
            fail("',' or ']]'");
            return false;
        }
    }
    advance();
    return expect(TokenKind::CloseBracket, "']]'");
}

} // namespace krFrontend
