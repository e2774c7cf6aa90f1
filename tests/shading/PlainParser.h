#pragma once
#include <string>

/// What a plain reading of one function came to.
struct PlainResult
{
    enum Outcome
    {
        Read,
        Rejected,
        Endless, ///< an empty statement within a block: the library would never return
    };
    Outcome outcome;
    std::string text; ///< the function as dumped by dumpFunction, or the error text
};

namespace krShadingDag
{
class ShadingNodeSpec;
}

/// Reads one function with plain means: a queue of token records, every token copied, nothing made on demand.
[[nodiscard]] PlainResult parsePlainly(const std::string& source);

/// All that a node spec says, statement by statement with the tokens.
[[nodiscard]] std::string dumpFunction(const krShadingDag::ShadingNodeSpec& spec);
