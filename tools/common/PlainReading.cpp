#include <common/PlainReading.h>

#include <krender/core/Exception.h>
#include <krender/shading/ShadingParser.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

using krShadingDag::ShadingNodeSpec;
using krShadingDag::Token;
using krShadingDag::TokenType;

namespace krTools
{

namespace
{

/// Hands a source to the parser function by function.
class PlainReader
{
public:
    PlainReader(const Source& source, Findings& findings) : fSource(source), fFindings(findings)
    {
        fParser.setLimits(krShadingDag::kLimitsForAnySource);
    }

    PlainReading read()
    {
        try
        {
            for (bool more = readFirst(); more;)
                more = readNext();
            fReading.parsed = !fFailed;
        }
        catch (const Exception& error)
        {
            fail(error.message.asChar());
        }
        return std::move(fReading);
    }

private:
    /// Only parseString opens a text. It keeps the function out of the library.
    bool readFirst()
    {
        const Header header = firstHeader();
        ShadingNodeSpec* first = nullptr;
        if (!fParser.parseString(fSource.contents(), &first))
        {
            const std::string message = fParser.errorString().asChar();
            const std::string line = message.substr(0, message.find('\n') + 1);
            constexpr std::string_view kError = "error ";
            if (line.starts_with(kError))
                fail(line.substr(kError.size(), line.size() - kError.size() - 1));
            else
                end(line);
            return false;
        }
        std::unique_ptr<ShadingNodeSpec> own(first);
        ShadingNodeSpec* const registered = own->addToLibrary();
        if (registered == own.get())
            (void)own.release();
        fReading.functions.push_back({registered, header.resultWord});
        return true;
    }

    bool readNext()
    {
        fParser.reset();
        const Header header = headerOf([this](unsigned i) { return fParser.token_ahead(i); });
        const std::size_t count = ShadingNodeSpec::fLibrary.size();
        fParser.parseFunc();
        const krString::CString messages = fParser.errorString();
        if (messages.length() > 0)
        {
            end(messages.asChar());
            return false;
        }
        // The library has the new one last among those of its name, or has copied it into one that it had.
        ShadingNodeSpec::Library::iterator first;
        ShadingNodeSpec::Library::iterator last;
        ShadingNodeSpec::findSpecsInLibrary(header.name, first, last);
        if (ShadingNodeSpec::fLibrary.size() > count && first != last)
            fReading.functions.push_back({std::prev(last)->second, header.resultWord});
        return true;
    }

    /// What a spec does not keep of its header.
    struct Header
    {
        std::string resultWord;
        krString::CString name;
    };

    template <class TokenAt>
    static Header headerOf(TokenAt tokenAt)
    {
        const bool hasRange = tokenToCompFreq(tokenAt(0)) != krShadingDag::kFreqInvalid;
        const unsigned result = !hasRange ? 0 : tokenAt(1).type == TokenType::Colon ? 3 : 1;
        return {tokenAt(result).text.asChar(), tokenAt(result + 1).text};
    }

    /// The first header, before the parser has read it.
    [[nodiscard]] Header firstHeader() const
    {
        krShadingDag::Tokenizer tokenizer;
        tokenizer.openString(fSource.contents());
        std::vector<Token> tokens(5);
        try
        {
            for (std::size_t i = 0; i < tokens.size(); i += tokens[i].type == TokenType::Comment ? 0 : 1)
                tokenizer.nextToken(&tokens[i]);
        }
        catch (const Exception&)
        {
            // The parser will say so.
        }
        return headerOf([&tokens](unsigned i) { return tokens[i]; });
    }

    /// The source has no further function. What is left is the byte that closes a file, or a header without an end.
    void end(const std::string& messages)
    {
        fReading.messages = messages;
        const Token front = fParser.token_ahead(0);
        if (front.type != TokenType::EndOfStream && front.position < fSource.size())
            fFindings.error(front.position, "the source ends within this header: a \";\" or a body is missing");
    }

    void fail(const std::string& message)
    {
        fFailed = true;
        Token front;
        try
        {
            front = fParser.token_ahead(0);
        }
        catch (const Exception&)
        {
            front = findUnreadable();
        }
        const std::string place = "line " + std::to_string(front.line) + ", column " + std::to_string(front.column);
        fReading.messages = "stdlib.krs(" + place + ") : error " + message + '\n';
        // Messages of limits name the place themselves.
        const std::string suffix = " at " + place;
        fFindings.error(front.type == TokenType::EndOfStream ? fSource.size() : front.position,
                        message.empty()             ? "the source ends within what begins here"
                        : message.ends_with(suffix) ? message.substr(0, message.size() - suffix.size())
                                                    : message);
    }

    /// Where the comment, string or blanks begin that the source ends within.
    [[nodiscard]] Token findUnreadable() const
    {
        krShadingDag::Tokenizer tokenizer;
        tokenizer.openString(fSource.contents());
        Token token;
        try
        {
            do
                tokenizer.nextToken(&token);
            while (token.type != TokenType::EndOfStream);
        }
        catch (const Exception&)
        {
            token.type = TokenType::Unknown;
            token.position = tokenizer.position();
            token.line = tokenizer.location().line;
            token.column = tokenizer.location().column;
        }
        return token;
    }

    const Source& fSource;
    Findings& fFindings;
    krShadingDag::ShadingParser fParser;
    PlainReading fReading;
    bool fFailed = false;
};

} // namespace

PlainLibrary::~PlainLibrary()
{
    fSpecs.swap(ShadingNodeSpec::fLibrary);
    ShadingNodeSpec::clearLibrary();
    fSpecs.swap(ShadingNodeSpec::fLibrary);
}

PlainReading PlainLibrary::read(const Source& source, Findings& findings)
{
    fSpecs.swap(ShadingNodeSpec::fLibrary);
    PlainReading reading = PlainReader(source, findings).read();
    fSpecs.swap(ShadingNodeSpec::fLibrary);
    return reading;
}

const ShadingNodeSpec* PlainLibrary::findDefinition(const std::string& name) const
{
    const auto [first, last] = fSpecs.equal_range(name.c_str());
    const auto found = std::find_if(first, last, [](const auto& entry) { return isDefinition(*entry.second); });
    return found == last ? nullptr : found->second;
}

} // namespace krTools
