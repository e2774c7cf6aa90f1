#pragma once
#include <limits>

namespace krShadingDag
{

/// What a parser refuses besides the language's own errors. By default it refuses nothing more: hosts that read sources
/// from people set kLimitsForAnySource.
struct ShadingParserLimits
{
    static constexpr unsigned kUnlimited = std::numeric_limits<unsigned>::max();

    /// Refuses a ";" where a statement should begin. Without this a function body that holds one is read without end,
    /// until memory is used up.
    bool refuseEmptyStatements = false;
    /// How deep blocks and the bodies of ifs and elses may lie within each other. A function's own block is level 1.
    unsigned maxNesting = kUnlimited;
    /// How many tokens parseFunc may read to the end of a header, the ";" or "{" included. The time that a header takes
    /// grows with the square of its inputs.
    unsigned maxHeaderTokens = kUnlimited;
};

/// With these, reading comes to an end whatever the source. No material that people write reaches them.
inline constexpr ShadingParserLimits kLimitsForAnySource{
    .refuseEmptyStatements = true, .maxNesting = 5000, .maxHeaderTokens = 50000};

} // namespace krShadingDag
