#pragma once
#include <krender/shading/Statement.h>

#include <cstddef>
#include <string_view>
#include <vector>

/// Where a statement's text begins in a fragment program.
struct StatementPlace
{
    std::size_t line;                         ///< from 1
    const krShadingDag::Statement* statement; ///< of the material or a light, borrowed from it
};

/// What a fragment program holds besides its material and lights, and what a compiler tells of it. With it, a light's
/// uniforms are declared once, however many illuminance blocks there are.
struct FragmentExtras
{
    /// Whole functions in the target's language, put ahead of the main one; borrowed for the call.
    std::string_view functions;

    // What comes back.
    std::size_t functionsLine = 0; ///< the line at which the functions begin, from 1
    /// The statements in the order of the program; one stands there as often as it was printed.
    std::vector<StatementPlace> statements;
    /// Whether the program would have more than kMostProgramBytes: both programs are empty then.
    bool isTooLarge = false;
};

/// The bytes that a fragment program with extras may have.
inline constexpr std::size_t kMostProgramBytes = std::size_t{16} << 20;
