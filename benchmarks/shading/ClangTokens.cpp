#include "Peers.h"

#include <clang/Basic/LangOptions.h>
#include <clang/Lex/Lexer.h>

std::size_t countTokensWithClang(const std::string& source)
{
    clang::LangOptions options;
    options.LineComment = true;
    clang::Lexer lexer(clang::SourceLocation(), options, source.data(), source.data(), source.data() + source.size());
    std::size_t count = 0;
    for (clang::Token token; lexer.LexFromRawLexer(token), token.isNot(clang::tok::eof);)
        ++count;
    return count;
}
