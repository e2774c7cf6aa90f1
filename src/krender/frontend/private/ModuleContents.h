#pragma once
#include "krender/frontend/private/SyntaxReader.h"
#include <krender/frontend/Module.h>

namespace krFrontend
{

/// What a module holds.
struct ModuleContents
{
    SourceSet sources;
    SyntaxStore store;
    SyntaxTree tree;
    std::vector<Diagnostic> diagnostics;
    std::size_t errorCount = 0;
};

} // namespace krFrontend
