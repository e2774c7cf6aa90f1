#pragma once
#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>
#include <vector>

/// Sources as lists of tokens, for mutants of them.
namespace tokens
{

/// The words, numbers and operators of a source; each with the blanks and comments behind it, so that they join to it.
inline std::vector<std::string> split(std::string_view text)
{
    const auto isWord = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; };
    const auto isBlank = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
    std::vector<std::string> found;
    for (std::size_t i = 0; i < text.size();)
    {
        const std::size_t begin = i++;
        if (isWord(text[begin]) || (text[begin] == '.' && i < text.size() && isWord(text[i])))
            while (i < text.size() && (isWord(text[i]) || text[i] == '.'))
                ++i;
        else if (std::string_view("=&|^+-").find(text[begin]) != std::string_view::npos)
            while (i < text.size() && i < begin + 2 && (text[i] == '=' || text[i] == text[begin]))
                ++i;
        for (bool more = true; more;)
        {
            const std::size_t was = i;
            while (i < text.size() && isBlank(text[i]))
                ++i;
            if (text.substr(i).starts_with("//"))
                i = std::min(text.find('\n', i), text.size());
            more = i != was;
        }
        found.emplace_back(text.substr(begin, i - begin));
    }
    return found;
}

inline std::string join(const std::vector<std::string>& parts)
{
    std::string text;
    for (const std::string& part : parts)
        text += part;
    return text;
}

} // namespace tokens
