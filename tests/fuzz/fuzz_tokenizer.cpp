// Every source is split into tokens that lie one behind another, and cut back out of it.
#include "FuzzInput.h"

#include <krender/core/Exception.h>
#include <krender/shading/Tokenizer.h>

using namespace krShadingDag;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Tokenizer tokenizer;
    tokenizer.openString(textOf(data, size));
    std::uint64_t end = 0;
    try
    {
        for (Token token; tokenizer.nextToken(&token), token.type != TokenType::EndOfStream;)
        {
            require(token.position >= end && token.position < size, "tokens follow each other");
            end = tokenizer.position();
            require(end > token.position, "each token takes a byte at least");
            require(tokenizer.stringify(token, token).length() == 1, "a token's first byte can be cut out");
        }
    }
    catch (const Exception& e)
    {
        require(e.type == kSourceEnded && e.message.length() == 0, "only the end of a source is an error here");
    }
    return 0;
}
