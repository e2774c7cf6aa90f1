#include <krender/shading/ShadingParser.h>

#include <krender/core/Exception.h>
#include <krender/platform/String.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/Token.h>
#include <krender/shading/Tokenizer.h>

#include <string>
#include <utility>

namespace krShadingDag
{

namespace
{

std::string textOf(const FileLocation& place)
{
    return "line " + std::to_string(place.line) + ", column " + std::to_string(place.column);
}

} // namespace

ShadingParser::ShadingParser() { reset(); }

ShadingParser::~ShadingParser() = default;

void ShadingParser::reset()
{
    fEndOfStream = false;
    fSecondText = {};
    fErrorText = {};
    fQueue.clear();
    forgetFunction();
    fAddToLibrary = true;
}

/// Clears what belongs to one function; its spec is not deleted.
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
    fOwnSpecs.clear();
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
        const std::string place = textOf(frontLocation());
        krString::plusEqual(fErrorText, krString::plus(("stdlib.krs(" + place + ") : error ").c_str(), e.message));
        krString::plusEqual(fErrorText, "\n");
        return false;
    }
}

bool ShadingParser::parseString(const krString::CString& code, ShadingNodeSpec** spec)
{
    reset();
    fOwnSpecs.clear();
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
    *spec = fOwnSpecs.back().release();
    fOwnSpecs.pop_back();
    fpNodeSpec = nullptr;
    return true;
}

krString::CString ShadingParser::errorString() { return std::exchange(fErrorText, {}); }

/// The place that an error is reported at: that of the front token, or where the tokenizer stands when it cannot read
/// one.
FileLocation ShadingParser::frontLocation()
{
    try
    {
        return {front().line, front().column};
    }
    catch (const Exception&)
    {
        return fTokenizer.location();
    }
}

/// Throws what a limit has to say of the source at the front token.
void ShadingParser::refuse(std::string what)
{
    what += " at " + textOf(frontLocation());
    throw Exception(kVerificationFailed, krString::CString(std::move(what)));
}

/// Appends a token, which holds what an earlier one left there.
Token& ShadingParser::TokenQueue::append()
{
    if (fEnd == fTokens.size())
        fTokens.emplace_back();
    return fTokens[fEnd++];
}

/// Drops the front token, if there is one.
void ShadingParser::TokenQueue::dropFront() noexcept
{
    static constexpr std::size_t kKept = 64;
    if (empty())
        return;
    if (++fFront == fEnd)
        clear();
    else if (fFront > kKept)
    {
        // Somebody always looks ahead, so the queue is never empty.
        fTokens.pop_front();
        --fFront;
        --fEnd;
    }
}

Token& ShadingParser::accumulate_token()
{
    Tokenizer::Lexeme lexeme;
    do
        fTokenizer.scan(lexeme);
    while (lexeme.type == TokenType::Comment);
    Token& token = fQueue.append();
    Tokenizer::resetToken(token);
    token.line = token.column = 1;
    token.isFractional = false;
    fTokenizer.fillToken(token, lexeme);
    if (token.type == TokenType::EndOfStream)
        fEndOfStream = true;
    return token;
}

/// Reads up to the n-th token.
const Token& ShadingParser::readAhead(unsigned n)
{
    while (fQueue.size() <= n && !fEndOfStream)
        accumulate_token();
    if (n < fQueue.size())
        return fQueue[n];
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
    Token token = front();
    dropFront();
    return token;
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
