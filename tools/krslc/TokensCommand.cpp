#include "TokensCommand.h"

#include <common/ExitStatus.h>
#include <common/Findings.h>
#include <common/StandardOutput.h>

#include <krender/core/Exception.h>
#include <krender/shading/Tokenizer.h>

#include <array>
#include <cinttypes>
#include <cstdio>

using krShadingDag::Token;

namespace
{

void appendEscaped(std::string& out, std::string_view text)
{
    constexpr char kDigits[] = "0123456789abcdef";
    for (const char c : text)
    {
        const auto byte = static_cast<unsigned char>(c);
        switch (c)
        {
        case '\\':
            out += "\\\\";
            break;
        case '\t':
            out += "\\t";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        default:
            if (byte >= 0x20 && byte <= 0x7e)
                out += c;
            else
                out += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
}

/// One line: the fields in a fixed order, separated by tabs.
void appendToken(std::string& out, const Token& token)
{
    std::array<char, 160> fields;
    const int length = std::snprintf(
        fields.data(), fields.size(), "%u\t%" PRIu64 "\t%" PRIu64 "\t%" PRIu64 "\t%" PRIu64 "\t%.9g\t%u\t%d\t",
        static_cast<unsigned>(token.type), token.line, token.column, token.position, token.intValue,
        static_cast<double>(token.floatValue), static_cast<unsigned>(token.dataType), token.isFractional ? 1 : 0);
    out.append(fields.data(), static_cast<std::size_t>(length));
    appendEscaped(out, token.text.view());
    out += '\n';
}

} // namespace

int printTokens(const std::string& path)
{
    const krTools::Source source(path);
    krShadingDag::Tokenizer tokenizer;
    tokenizer.openString(source.contents());

    krTools::StandardOutput output;
    std::string line;
    krTools::Findings findings;
    int status = krTools::kDone;
    for (bool more = true; more;)
    {
        line.clear();
        Token token;
        try
        {
            tokenizer.nextToken(&token);
            appendToken(line, token);
            more = token.type != krShadingDag::TokenType::EndOfStream;
        }
        catch (const Exception&)
        {
            line = "EXCEPTION\n";
            findings.error(tokenizer.position(),
                           "the source ends within the comment, string or blanks that begin here");
            status = krTools::kInputHasErrors;
            more = false;
        }
        output.write(line);
    }
    output.finish();
    krTools::print(source, findings);
    return status;
}
