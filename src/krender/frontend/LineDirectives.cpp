#include "krender/frontend/private/LineDirectives.h"

#include <krender/frontend/Program.h>
#include <krender/frontend/SourceSet.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace krFrontend
{
namespace
{

/// The name of a file without its folder, which differs from machine to machine, fit to stand between quotes.
std::string shownName(std::string_view path)
{
    std::string name(path.substr(path.find_last_of('/') + 1));
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c < ' ' || c > '~' || c == '"' || c == '\\'; }, '_');
    return name;
}

} // namespace

void addLineDirectives(Program& program)
{
    constexpr std::string_view kOwnName = "program";
    std::string text;
    std::vector<LineOrigin> origins;
    std::string_view lastFile; // of the source that the lines follow; empty: they are the program's own
    std::size_t lastLine = 0;
    std::string_view rest = program.fragment;
    for (std::size_t i = 0; !rest.empty(); ++i)
    {
        const std::size_t end = std::min(rest.find('\n'), rest.size() - 1) + 1;
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end);
        const LineOrigin origin = i < program.fragmentOrigins.size() ? program.fragmentOrigins[i] : LineOrigin();
        const SourceLocation place =
            origin.module ? origin.module->sources().location(origin.offset) : SourceLocation{"", 0, 0};
        // Nothing can be found in a line of braces alone.
        const bool isBare = line.find_first_not_of(" \t{}\n") == std::string_view::npos;
        const bool follows = place.file == lastFile && (!origin.module || place.line == lastLine + 1);
        if (!follows && !isBare)
        {
            origins.emplace_back();
            const std::size_t number = origin.module ? place.line : origins.size() + 1;
            text += "#line " + std::to_string(number) + " \"" +
                    (origin.module ? shownName(place.file) : std::string(kOwnName)) + "\"\n";
        }
        lastFile = isBare && !follows ? lastFile : place.file;
        lastLine = isBare && !follows ? lastLine + 1 : place.line;
        text += line;
        origins.push_back(origin);
    }
    program.fragment = std::move(text);
    program.fragmentOrigins = std::move(origins);
}

} // namespace krFrontend
