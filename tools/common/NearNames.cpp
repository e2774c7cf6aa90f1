#include <common/NearNames.h>

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace krTools
{

namespace
{

constexpr std::size_t kMaxLength = 100; // longer names are no typing slips
constexpr std::size_t kMaxSuggestions = 3;

char folded(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

/// Levenshtein's distance (1965), letters in either case being equal, by rows of the usual table.
std::size_t editDistance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i)
    {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j)
        {
            const std::size_t replaced = diagonal + (folded(a[i]) == folded(b[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

} // namespace

std::vector<std::string> nearNames(std::string_view name, const std::vector<std::string>& candidates)
{
    if (name.size() > kMaxLength)
        return {};
    std::vector<std::pair<std::size_t, std::string>> found;
    for (const std::string& candidate : candidates)
        if (candidate.size() <= kMaxLength)
            if (const std::size_t distance = editDistance(name, candidate);
                distance <= std::max<std::size_t>(2, name.size() / 3))
                found.emplace_back(distance, candidate);
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    found.resize(std::min(found.size(), kMaxSuggestions));

    std::vector<std::string> names;
    names.reserve(found.size());
    for (auto& [distance, candidate] : found)
        names.push_back(std::move(candidate));
    return names;
}

std::string didYouMean(std::string_view name, const std::vector<std::string>& candidates)
{
    const std::vector<std::string> names = nearNames(name, candidates);
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i)
        text += (i == 0 ? "; did you mean " : i + 1 == names.size() ? " or " : ", ") + names[i];
    return text.empty() ? text : text + "?";
}

} // namespace krTools
