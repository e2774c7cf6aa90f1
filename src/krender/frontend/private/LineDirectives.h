#pragma once

namespace krFrontend
{

struct Program;

/// Puts a "#line" directive, with the file's name, ahead of each line of the fragment program that does not follow its
/// source from the line before, and of each line of the program's own that follows one of a source. What a compiler
/// finds then stands at the source's line.
void addLineDirectives(Program& program);

} // namespace krFrontend
