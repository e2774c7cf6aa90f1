#include <common/MessageOutput.h>

#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace krTools
{

namespace
{

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
    KindStyle{MessageKind::Rest, "", ""},
};
static_assert(kStyles.back().kind == static_cast<MessageKind>(kStyles.size() - 1));

const KindStyle& styleOf(MessageKind kind) { return kStyles[static_cast<std::size_t>(kind)]; }

/// The escape sequences of a kind of message; all empty where no colour is wanted.
struct Colours
{
    const char* kind;
    const char* bold;
    const char* plain;
};

Colours coloursOf(const ShownMessage& message)
{
    static const bool wantsColour = []
    {
        const char* noColour = std::getenv("NO_COLOR");
        const char* terminal = std::getenv("TERM");
        return (!noColour || !*noColour) && terminal && std::string_view(terminal) != "dumb" &&
               ::isatty(STDERR_FILENO) != 0;
    }();
    if (!wantsColour || message.kind == MessageKind::Rest)
        return {"", "", ""};
    return {styleOf(message.kind).colour, message.hasPlace ? "\033[1m" : "", "\033[0m"};
}

} // namespace

const char* messageWord(MessageKind kind) noexcept { return styleOf(kind).word; }

void MessageOutput::show(const ShownMessage& message)
{
    const auto [kindColour, bold, plain] = coloursOf(message);
    std::string text =
        bold + message.origin + ": " + kindColour + messageWord(message.kind) + plain + bold + message.text;
    text.append(message.hasPlace ? plain : "").append("\n");
    if (!message.underline.empty())
        text.append(message.line)
            .append("\n")
            .append(message.blanks)
            .append(kindColour)
            .append(message.underline)
            .append(plain)
            .append("\n");
    std::fputs(text.c_str(), stderr);
}

MessageOutput& standardMessages()
{
    static MessageOutput output;
    return output;
}

} // namespace krTools
