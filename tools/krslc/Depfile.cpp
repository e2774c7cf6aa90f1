#include "Depfile.h"

namespace
{

/// A path as make reads it back: blanks, "#" and ":" behind a backslash, "$" doubled.
std::string escaped(const std::string& path)
{
    std::string text;
    for (const char c : path)
    {
        if (c == ' ' || c == '\t' || c == '#' || c == ':')
            text += '\\';
        else if (c == '$')
            text += '$';
        text += c;
    }
    return text;
}

} // namespace

std::string makeRule(const std::vector<std::string>& targets, const std::vector<std::string>& sources)
{
    std::string text;
    for (const std::string& target : targets)
        text.append(text.empty() ? "" : " ").append(escaped(target));
    text += ':';
    for (const std::string& source : sources)
        text.append(" \\\n  ").append(escaped(source));
    return text + '\n';
}
