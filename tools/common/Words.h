#pragma once
#include <algorithm>
#include <string_view>

namespace krTools
{

/// Whether a byte can stand in a name; no locale plays a part.
[[nodiscard]] inline bool isWordByte(char c) noexcept
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

/// Whether a text can be the name of a function or a variable.
[[nodiscard]] inline bool isName(std::string_view text) noexcept
{
    return !text.empty() && !(text[0] >= '0' && text[0] <= '9') && std::all_of(text.begin(), text.end(), isWordByte);
}

/// Whether the bytes from one index to before another are a word of the text, and not part of a longer one.
[[nodiscard]] inline bool isWholeWord(std::string_view text, std::size_t begin, std::size_t end) noexcept
{
    return (begin == 0 || !isWordByte(text[begin - 1])) && (end >= text.size() || !isWordByte(text[end]));
}

} // namespace krTools
