#include <krender/shading/ShadingParser.h>

#include <krender/core/Exception.h>

#include <array>
#include <cstdio>

namespace krShadingDag
{

ShadingParser::ShadingParser() { reset(); }

ShadingParser::~ShadingParser() = default;

void ShadingParser::reset()
{
    fEndOfStream = false;
    fSecondText = {};
    fErrorText = {};
    fQueue.clear();
    fQueueFront = 0;
    if (fUnfinished)
        fAbandoned.push_back(std::move(fUnfinished));
    forgetFunction();
    fAddToLibrary = true;
}

void ShadingParser::forgetFunction()
{
    fpNodeSpec = nullptr;
    fInputs.clear();
    fOutputs.clear();
    fVariables.clear();
}

bool ShadingParser::parseFile(const krString::CString& path, bool)
{
    reset();
    if (!fTokenizer.open(path))
    {
        fErrorText = "Couldn't not find stdlib.krs file!\n";
        return false;
    }
    try
    {
        while (!fEndOfStream)
        {
            parseFunc();
            forgetFunction();
        }
        return true;
    }
    catch (const Exception& e)
    {
        const FileLocation place = frontLocation();
        std::array<char, 64> text;
        std::snprintf(text.data(), text.size(), "line %lu, column %lu", static_cast<unsigned long>(place.line),
                      static_cast<unsigned long>(place.column));
        for (const krString::CString& part : {krString::CString("stdlib.krs("), krString::CString(text.data()),
                                              krString::CString(") : error "), e.message, krString::CString("\n")})
            krString::plusEqual(fErrorText, part);
        return false;
    }
}

bool ShadingParser::parseString(const krString::CString& code, ShadingNodeSpec** spec)
{
    reset();
    fAddToLibrary = false;
    fTokenizer.openString(code);
    try
    {
        parseFunc();
    }
    catch (const Exception& e)
    {
        krString::plusEqual(fErrorText, krString::plus(krString::plus("error ", e.message), "\n"));
        return false;
    }
    if (!fpNodeSpec)
    {
        krString::plusEqual(fErrorText, "internal error: !fpNodeSpec after parsing code string.\n");
        return false;
    }
    *spec = fpNodeSpec;
    return true;
}

krString::CString ShadingParser::errorString() { return std::exchange(fErrorText, {}); }

/// The place that an error is reported at: that of the front token, or where the tokenizer stands when it cannot read
/// one.
FileLocation ShadingParser::frontLocation()
{
    try
    {
        const Token& front = peek(0);
        return {front.line, front.column};
    }
    catch (const Exception&)
    {
        return fTokenizer.location();
    }
}

Token& ShadingParser::accumulate_token()
{
    Tokenizer::Lexeme lexeme;
    do
        fTokenizer.scan(lexeme);
    while (lexeme.type == TokenType::Comment);
    Token& token = fQueue.emplace_back();
    fTokenizer.fillToken(token, lexeme);
    if (token.type == TokenType::EndOfStream)
        fEndOfStream = true;
    return token;
}

const Token& ShadingParser::peek(unsigned n)
{
    while (fQueue.size() - fQueueFront <= n && !fEndOfStream)
        accumulate_token();
    if (fQueue.size() - fQueueFront > n)
        return fQueue[fQueueFront + n];
    static const Token endOfStream = []
    {
        Token token;
        token.type = TokenType::EndOfStream;
        return token;
    }();
    return endOfStream;
}

Token ShadingParser::token_ahead(unsigned n) { return peek(n); }

Token ShadingParser::consume_front_token()
{
    Token front = peek(0);
    dropFront();
    return front;
}

/// Consumes the front token without making a copy of it.
void ShadingParser::dropFront()
{
    if (fQueueFront < fQueue.size())
        ++fQueueFront;
    if (fQueueFront == fQueue.size())
    {
        fQueue.clear();
        fQueueFront = 0;
    }
}

krString::CString ShadingParser::originalString(const Token& first, const Token& last) const
{
    return fTokenizer.stringify(first, last);
}

bool ShadingParser::retrieveVariable(const krString::CString& name, ShadingAttribute& out)
{
    for (const auto& [variable, attribute] : fVariables)
        if (krString::equal(variable, name))
        {
            out = attribute;
            return true;
        }
    return false;
}

bool ShadingParser::assignVariable(const krString::CString& name, const ShadingAttribute& attribute)
{
    for (auto& [variable, held] : fVariables)
        if (krString::equal(variable, name) && held.dataType() == attribute.dataType())
        {
            held = attribute;
            return true;
        }
    return false;
}

} // namespace krShadingDag
