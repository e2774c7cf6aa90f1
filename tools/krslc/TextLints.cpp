#include "Inspection.h"

#include <algorithm>

using krShadingDag::TokenType;
using krTools::inQuotes;
using krTools::ScannedToken;

namespace
{

bool isBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

/// Within a comment or string the tokenizer takes "//" for the beginning of a comment, skips to the next line and leaves
/// out that line's first byte.
void lintLineComment(const Inspection& in, const ScannedToken& comment, std::string_view text)
{
    std::size_t line = text.find('\n');
    const std::size_t inner = text.find("//", 2);
    if (inner >= line)
        return;
    while (++line < text.size())
    {
        const std::size_t end = std::min(text.find('\n', line), text.size());
        const std::string_view carried = text.substr(line, end - line);
        const std::size_t first = carried.find_first_not_of(" \t\r");
        if (first != std::string_view::npos && !carried.substr(first).starts_with("//"))
        {
            in.warn(Warning::SlashesInComment, comment.begin + inner,
                    "a second \"//\" carries this comment over the next line: " + inQuotes(carried.substr(first, 40)));
            return;
        }
        line = end;
    }
}

void lintBlockComment(const Inspection& in, const ScannedToken& comment, std::string_view text)
{
    // The two bytes behind "*/" belong to the comment, even where the source has ended.
    const std::size_t end = comment.end - comment.begin - 2;
    if (const std::size_t hidden = text.find("*/", 2); hidden + 2 < end)
        in.warn(Warning::HiddenCommentEnd, comment.begin + hidden,
                "this \"*/\" does not end the comment: a \"//\" before it hides it");
    if (const std::string_view swallowed = text.substr(end); !isBlank(swallowed))
        in.warn(Warning::CommentSwallowsCode, comment.begin + end + swallowed.find_first_not_of(" \t\r\n"),
                "a comment takes the two bytes behind \"*/\" with it: leave two blanks or an empty line there");
}

void lintComments(const Inspection& in)
{
    for (const ScannedToken& comment : in.function.comments)
    {
        const std::string_view text = in.scanner.text(comment);
        if (text.starts_with("//"))
            lintLineComment(in, comment, text);
        else
            lintBlockComment(in, comment, text);
    }
}

void lintStrings(const Inspection& in)
{
    for (const ScannedToken& token : in.function.tokens)
        if (token.type == TokenType::QuotedString)
            if (const std::size_t slashes = in.scanner.text(token).find("//"); slashes != std::string_view::npos)
                in.warn(Warning::SlashesInString, token.begin + slashes,
                        "\"//\" in a string hides what follows up to the second byte of the next line, a closing quote "
                        "included");
}

} // namespace

void lintText(const Inspection& in)
{
    lintComments(in);
    lintStrings(in);
}
