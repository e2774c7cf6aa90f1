#include "PageTemplate.h"

#include <common/DataFiles.h>
#include <common/PrintedMessage.h>
#include <common/Source.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <map>
#include <string_view>

namespace
{

/// Text that cannot end the element or the attribute that it stands in.
std::string escaped(const std::string& text)
{
    std::string html;
    for (const char c : krTools::printable(text))
        switch (c)
        {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default:
            html += c;
        }
    return html;
}

std::string hexadecimal(const std::array<float, 3>& color)
{
    std::string text = "#";
    for (const float part : color)
    {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x",
                      static_cast<unsigned>(std::lround(255 * std::clamp(part, 0.0f, 1.0f))));
        text += digits;
    }
    return text;
}

} // namespace

std::string pageOf(const std::string& title, const std::array<float, 3>& background, const std::string& data)
{
    constexpr std::size_t kMostBytes = std::size_t{1} << 20;
    const std::string pageTemplate = krTools::readText(krTools::dataFile("page/page.html"), kMostBytes);
    constexpr float kDark = 0.5f;
    const bool isDark = 0.3f * background[0] + 0.59f * background[1] + 0.11f * background[2] < kDark;
    const std::map<std::string, std::string, std::less<>> marks{{"TITLE", escaped(title)},
                                                                {"BACK", hexadecimal(background)},
                                                                {"SCHEME", isDark ? "dark" : "light"},
                                                                {"DATA", data}};
    // A mark is a word between two of these signs. What is put in is not looked at again.
    constexpr char kSign = '@';
    std::string page;
    std::string_view rest = pageTemplate;
    for (std::size_t at; (at = rest.find(kSign)) != std::string_view::npos;)
    {
        const std::size_t end = std::min(rest.find(kSign, at + 1), rest.size());
        const auto mark = marks.find(rest.substr(at + 1, end - at - 1));
        page += rest.substr(0, at);
        page += mark == marks.end() ? "@" : mark->second;
        rest.remove_prefix(mark == marks.end() ? at + 1 : end + 1);
    }
    return page.append(rest);
}
