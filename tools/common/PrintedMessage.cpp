#include <common/PrintedMessage.h>

#include <algorithm>

namespace krTools
{

namespace
{

constexpr std::size_t kMaxShown = 16384; // bytes of a message, of which a path may have 4096
constexpr std::size_t kMaxContext = 100; // bytes of a source line on either side of the place

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

/// Fills in the line, or as much of it as stands near the place, and the underline of the range: "^~~~".
void addExcerpt(ShownMessage& shown, const PrintedMessage& message)
{
    const std::string_view line = message.lineText;
    const std::size_t caret = std::min(message.column - 1, line.size());
    const std::size_t begin = caret > kMaxContext ? caret - kMaxContext : 0;
    const std::size_t end = caret + std::min(line.size() - caret, kMaxContext);
    const std::size_t rangeEnd = caret + std::min(message.length, end - caret);

    shown.line = begin > 0 ? "..." : "";
    shown.blanks.assign(shown.line.size(), ' ');
    appendMarked(shown.line, shown.blanks, line.substr(begin, caret - begin), ' ');
    appendMarked(shown.line, shown.underline, line.substr(caret, rangeEnd - caret), '~');
    appendPrintable(shown.line, line.substr(rangeEnd, end - rangeEnd));
    shown.line += end < line.size() ? "..." : "";
    shown.underline.resize(std::max<std::size_t>(shown.underline.size(), 1));
    shown.underline[0] = '^';
}

void printWithoutPlace(MessageKind kind, std::string_view origin, std::string_view text, MessageOutput& output)
{
    output.show({.kind = kind, .origin = std::string(origin), .text = printable(text)});
}

} // namespace

void print(const PrintedMessage& message, MessageOutput& output)
{
    ShownMessage shown{.kind = message.kind,
                       .hasPlace = true,
                       .origin = printable(message.file) + ':' + std::to_string(message.line) + ':' +
                                 std::to_string(message.column),
                       .text = printable(message.text)};
    if (!message.name.empty())
        shown.text.append(" [").append(message.name).append("]");
    if (message.kind != MessageKind::Fix)
        addExcerpt(shown, message);
    output.show(shown);
}

void printError(std::string_view program, std::string_view text, MessageOutput& output)
{
    printWithoutPlace(MessageKind::Error, program, text, output);
}

void printNote(std::string_view program, std::string_view text)
{
    printWithoutPlace(MessageKind::Note, program, text, standardMessages());
}

void printRest(std::string_view file, std::size_t count, const char* what, MessageOutput& output)
{
    printWithoutPlace(MessageKind::Rest, printable(file), std::to_string(count) + " more " + what + " are not shown",
                      output);
}

std::string printable(std::string_view text)
{
    std::string shown;
    appendPrintable(shown, text.substr(0, kMaxShown));
    return text.size() > kMaxShown ? shown + "..." : shown;
}

std::string inQuotes(std::string_view text) { return std::string(1, '"').append(text).append(1, '"'); }

} // namespace krTools
