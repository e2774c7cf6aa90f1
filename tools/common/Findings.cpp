#include <common/Findings.h>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace krTools
{

namespace
{

constexpr std::size_t kMaxShown = 400;   // bytes of a message
constexpr std::size_t kMaxContext = 100; // bytes of a source line on either side of the caret

struct SeverityStyle
{
    const char* word;
    const char* colour;
};

SeverityStyle styleOf(Severity severity)
{
    return severity == Severity::Error ? SeverityStyle{"error: ", "\033[1;31m"}
                                       : SeverityStyle{"warning: ", "\033[1;35m"};
}

/// The bytes of the UTF-8 character that the text begins with; 0 when it is broken.
std::size_t characterLength(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text[0]);
    const std::size_t length = first < 0x80                    ? 1
                               : first >= 0xc2 && first < 0xe0 ? 2
                               : first >= 0xe0 && first < 0xf0 ? 3
                               : first >= 0xf0 && first < 0xf5 ? 4
                                                               : 0;
    if (length > text.size())
        return 0;
    const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; };
    return std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(std::max<std::size_t>(length, 1)),
                       continues)
               ? length
               : 0;
}

/// Appends the text fit to be shown.
/// @return  how many characters wide it comes out
std::size_t appendPrintable(std::string& out, std::string_view text)
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::size_t width = 0;
    while (!text.empty())
    {
        const std::size_t length = characterLength(text);
        const auto byte = static_cast<unsigned char>(text[0]);
        if (length == 0 || (byte < 0x20 && byte != '\t') || byte == 0x7f)
        {
            out += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
            width += 4;
            text.remove_prefix(1);
            continue;
        }
        out += text.substr(0, length);
        ++width;
        text.remove_prefix(length);
    }
    return width;
}

/// The line, or as much of it as stands near the place, and a caret below the place.
std::string excerpt(const Source::Place& place)
{
    const std::size_t caret = std::min(place.column - 1, place.text.size());
    const std::size_t begin = caret > kMaxContext ? caret - kMaxContext : 0;
    const std::size_t end = std::min(place.text.size(), caret + kMaxContext);
    const std::string_view before = place.text.substr(begin, caret - begin);

    std::string text = begin > 0 ? "..." : "";
    std::string pad(text.size(), ' ');
    // Tabs stay tabs under the line, so that the caret lands right whatever their width.
    for (std::size_t i = 0, tab; i <= before.size(); i = tab + 1)
    {
        tab = std::min(before.find('\t', i), before.size());
        pad.append(appendPrintable(text, before.substr(i, tab - i)), ' ');
        if (tab < before.size())
        {
            text += '\t';
            pad += '\t';
        }
    }
    appendPrintable(text, place.text.substr(caret, end - caret));
    return text + (end < place.text.size() ? "...\n" : "\n") + pad;
}

} // namespace

void Findings::add(Finding finding)
{
    fHasErrors |= finding.severity == Severity::Error;
    if (fKept.size() < kMaxKept)
        fKept.push_back(std::move(finding));
    else
        ++fNotKept;
}

void Findings::error(std::size_t position, std::string text, std::string_view name)
{
    add({position, Severity::Error, name, std::move(text)});
}

void Findings::sort()
{
    std::stable_sort(fKept.begin(), fKept.end(),
                     [](const Finding& a, const Finding& b) { return a.position < b.position; });
}

std::string printable(std::string_view text)
{
    std::string shown;
    appendPrintable(shown, text.substr(0, kMaxShown));
    return text.size() > kMaxShown ? shown + "..." : shown;
}

std::string inQuotes(std::string_view text) { return std::string(1, '"').append(text).append(1, '"'); }

bool wantsColour(std::FILE* file)
{
    const char* noColour = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    return (!noColour || !*noColour) && terminal && std::string_view(terminal) != "dumb" &&
           ::isatty(::fileno(file)) != 0;
}

void print(std::FILE* file, const Source& source, const Findings& findings)
{
    const bool colour = wantsColour(file);
    const char* const plain = colour ? "\033[0m" : "";
    const char* const bold = colour ? "\033[1m" : "";
    for (const Finding& finding : findings.kept())
    {
        const Source::Place place = source.place(finding.position);
        const SeverityStyle style = styleOf(finding.severity);
        std::string text = bold + source.name() + ':' + std::to_string(place.line) + ':' +
                           std::to_string(place.column) + ": " + (colour ? style.colour : "") + style.word + plain +
                           bold + printable(finding.text);
        if (!finding.name.empty())
            text.append(" [-W").append(finding.name).append("]");
        text += plain;
        text += '\n' + excerpt(place) + (colour ? style.colour : "") + '^' + plain + '\n';
        std::fputs(text.c_str(), file);
    }
    if (findings.notKept() > 0)
        std::fprintf(file, "%s: %zu more messages are not shown\n", source.name().c_str(), findings.notKept());
}

void print(std::FILE* file, std::string_view program, Severity severity, std::string_view text)
{
    const bool colour = wantsColour(file);
    const SeverityStyle style = styleOf(severity);
    const std::string shown = printable(text);
    std::fprintf(file, "%.*s: %s%s%s%s\n", static_cast<int>(program.size()), program.data(), colour ? style.colour : "",
                 style.word, colour ? "\033[0m" : "", shown.c_str());
}

} // namespace krTools
