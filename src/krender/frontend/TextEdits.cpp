#include "krender/frontend/private/TextEdits.h"

#include <krender/frontend/SourceSet.h>

#include <algorithm>
#include <tuple>

namespace krFrontend
{

std::string concat(std::initializer_list<std::string_view> pieces)
{
    std::string text;
    for (const std::string_view piece : pieces)
        text += piece;
    return text;
}

void TextEdits::insertBefore(Offset at, std::string text)
{
    if (!text.empty())
        fEdits.push_back({{at, at}, Kind::Before, std::move(text)});
}

void TextEdits::insertAfter(Offset at, std::string text)
{
    if (!text.empty())
        fEdits.push_back({{at, at}, Kind::After, std::move(text)});
}

void TextEdits::replace(SourceRange range, std::string text)
{
    fEdits.push_back({range, Kind::Replace, std::move(text)});
}

std::string TextEdits::apply(const SourceSet& sources, SourceRange range)
{
    std::stable_sort(fEdits.begin(), fEdits.end(),
                     [](const Edit& a, const Edit& b) {
                         return std::make_tuple(a.range.begin, a.kind, b.range.end) <
                                std::make_tuple(b.range.begin, b.kind, a.range.end);
                     });
    std::string text;
    Offset done = range.begin;
    for (Edit& edit : fEdits)
    {
        if (edit.range.begin < done) // within what was replaced
            continue;
        text += sources.text({done, edit.range.begin});
        text += edit.text;
        done = edit.range.end;
    }
    text += sources.text({done, range.end});
    return text;
}

} // namespace krFrontend
