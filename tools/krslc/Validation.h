#pragma once
#include <common/Source.h>

/// The two programs of a material for one target, as they are written.
struct ProgramPair
{
    bool isGlsl;
    krTools::Source vertex; ///< named after its file
    krTools::Source fragment;
};

/// Checks both programs with a compiler front end and prints what is wrong with them.
/// @return  whether they are correct, as far as the front end can tell
[[nodiscard]] bool validate(const ProgramPair& programs);
