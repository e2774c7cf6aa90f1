#pragma once
#include <common/Findings.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace krTools
{

/// What the names that glslang must not see begin with in the text that it gets; messages show them without it.
inline constexpr std::string_view kHiddenPrefix = "krslc_";

/// Makes glslang's tables, which stay until the program ends. Needed before anything else of it is used.
void startGlslang();

/// Calls the visitor with each line of a log that begins with "ERROR: " or "WARNING: ", without that word.
template <class Visitor>
void forEachMessage(std::string_view log, Visitor visit)
{
    constexpr std::array kWords{std::pair{std::string_view("ERROR: "), Severity::Error},
                                std::pair{std::string_view("WARNING: "), Severity::Warning}};
    while (!log.empty())
    {
        const std::size_t end = std::min(log.find('\n'), log.size());
        const std::string_view line = log.substr(0, end);
        for (const auto& [word, severity] : kWords)
            if (line.starts_with(word))
                visit(severity, line.substr(word.size()));
        log.remove_prefix(std::min(end + 1, log.size()));
    }
}

/// Adds the messages of a log to a program's findings, each on the word that it quotes.
/// @param string  the index that the program had among the strings that glslang compiled; what is found in another
///                stands at the program's begin
void addLog(std::string_view log, const Source& program, unsigned string, Findings& findings);

} // namespace krTools
