#include <common/PrintedMessage.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace krTools
{

namespace
{

constexpr std::size_t kMaxShown = 16384; // bytes of a message, of which a path may have 4096
constexpr std::size_t kMaxContext = 100; // bytes of a source line on either side of the place

struct KindStyle
{
    MessageKind kind;
    const char* word;
    const char* colour;
};

constexpr std::array kStyles{
    KindStyle{MessageKind::Error, "error: ", "\033[1;31m"},
    KindStyle{MessageKind::Warning, "warning: ", "\033[1;35m"},
    KindStyle{MessageKind::Note, "note: ", "\033[1;36m"},
    KindStyle{MessageKind::Fix, "fix: ", "\033[1;32m"},
};
static_assert(kStyles.back().kind == static_cast<MessageKind>(kStyles.size() - 1));

const KindStyle& styleOf(MessageKind kind) { return kStyles[static_cast<std::size_t>(kind)]; }

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

/// Appends a piece of a source line, and to the line below it a mark under each character. Tabs stay tabs in both, so
/// that the marks land right whatever their width.
void appendMarked(std::string& out, std::string& below, std::string_view piece, char mark)
{
    for (std::size_t i = 0, tab; i <= piece.size(); i = tab + 1)
    {
        tab = std::min(piece.find('\t', i), piece.size());
        below.append(appendPrintable(out, piece.substr(i, tab - i)), mark);
        if (tab < piece.size())
        {
            out += '\t';
            below += '\t';
        }
    }
}

/// The line, or as much of it as stands near the place, and the range underlined: "^~~~".
std::string excerpt(const PrintedMessage& message, const char* colour, const char* plain)
{
    const std::string_view line = message.lineText;
    const std::size_t caret = std::min(message.column - 1, line.size());
    const std::size_t begin = caret > kMaxContext ? caret - kMaxContext : 0;
    const std::size_t end = caret + std::min(line.size() - caret, kMaxContext);
    const std::size_t rangeEnd = caret + std::min(message.length, end - caret);

    std::string text = begin > 0 ? "..." : "";
    std::string below(text.size(), ' ');
    appendMarked(text, below, line.substr(begin, caret - begin), ' ');
    std::string underline;
    appendMarked(text, underline, line.substr(caret, rangeEnd - caret), '~');
    appendPrintable(text, line.substr(rangeEnd, end - rangeEnd));
    underline.resize(std::max<std::size_t>(underline.size(), 1));
    underline[0] = '^';
    return text + (end < line.size() ? "...\n" : "\n") + below + colour + underline + plain + '\n';
}

/// The escape sequences of a kind of message; all empty where no colour is wanted.
struct Colours
{
    const char* kind;
    const char* bold;
    const char* plain;
};

Colours coloursOf(const KindStyle& style)
{
    static const bool wantsColour = []
    {
        const char* noColour = std::getenv("NO_COLOR");
        const char* terminal = std::getenv("TERM");
        return (!noColour || !*noColour) && terminal && std::string_view(terminal) != "dumb" &&
               ::isatty(STDERR_FILENO) != 0;
    }();
    return wantsColour ? Colours{style.colour, "\033[1m", "\033[0m"} : Colours{"", "", ""};
}

void printWithoutPlace(MessageKind kind, std::string_view program, std::string_view text)
{
    const KindStyle& style = styleOf(kind);
    const auto [kindColour, bold, plain] = coloursOf(style);
    const std::string shown = std::string(program) + ": " + kindColour + style.word + plain + printable(text) + '\n';
    std::fputs(shown.c_str(), stderr);
}

} // namespace

void print(const PrintedMessage& message)
{
    const KindStyle& style = styleOf(message.kind);
    const auto [kindColour, bold, plain] = coloursOf(style);
    std::string text = bold + printable(message.file) + ':' + std::to_string(message.line) + ':' +
                       std::to_string(message.column) + ": " + kindColour + style.word + plain + bold +
                       printable(message.text);
    if (!message.name.empty())
        text.append(" [").append(message.name).append("]");
    text.append(plain).append("\n");
    if (message.kind != MessageKind::Fix)
        text += excerpt(message, kindColour, plain);
    std::fputs(text.c_str(), stderr);
}

void printError(std::string_view program, std::string_view text)
{
    printWithoutPlace(MessageKind::Error, program, text);
}

void printNote(std::string_view program, std::string_view text) { printWithoutPlace(MessageKind::Note, program, text); }

std::string printable(std::string_view text)
{
    std::string shown;
    appendPrintable(shown, text.substr(0, kMaxShown));
    return text.size() > kMaxShown ? shown + "..." : shown;
}

std::string inQuotes(std::string_view text) { return std::string(1, '"').append(text).append(1, '"'); }

} // namespace krTools
