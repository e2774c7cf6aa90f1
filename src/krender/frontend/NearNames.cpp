#include <krender/frontend/NearNames.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace krFrontend
{
namespace
{

constexpr std::size_t kLongest = 64; // names past it are not compared
constexpr std::size_t kMostNames = 3;
constexpr std::size_t kMostFarther = 1; // than the nearest

char lower(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// The insertions, removals, replacements and exchanges of neighbours between two words (optimal string alignment). The
/// case of letters plays no part.
std::size_t distance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> before(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        last[j] = j;
    const auto isSame = [&](std::size_t i, std::size_t j) { return lower(a[i - 1]) == lower(b[j - 1]); };
    for (std::size_t i = 1; i <= a.size(); ++i)
    {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j)
        {
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (isSame(i, j) ? 0 : 1)});
            if (i > 1 && j > 1 && isSame(i, j - 1) && isSame(i - 1, j))
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
        before.swap(last);
        last.swap(row);
    }
    return last[b.size()];
}

} // namespace

void NearNames::consider(std::string_view candidate)
{
    if (candidate.empty() || fWanted.empty() || candidate == fWanted ||
        std::max(candidate.size(), fWanted.size()) > kLongest)
        return;
    const std::size_t shorter = std::min(candidate.size(), fWanted.size());
    std::size_t most = std::min(std::max<std::size_t>(fWanted.size() / 3, 2), shorter - 1);
    if (!fNear.empty())
        most = std::min(most, fNear.front().distance + kMostFarther);
    if (std::max(candidate.size(), fWanted.size()) - shorter > most)
        return;
    const std::size_t found = distance(fWanted, candidate);
    if (found > most ||
        std::any_of(fNear.begin(), fNear.end(), [candidate](const Near& near) { return near.name == candidate; }))
        return;
    const auto farther =
        std::find_if(fNear.begin(), fNear.end(), [found](const Near& near) { return near.distance > found; });
    fNear.insert(farther, {found, std::string(candidate)});
    std::erase_if(fNear, [this](const Near& near) { return near.distance > fNear.front().distance + kMostFarther; });
    fNear.resize(std::min(fNear.size(), kMostNames));
}

std::string NearNames::didYouMean() const
{
    std::string text;
    for (std::size_t i = 0; i < fNear.size(); ++i)
        text.append(i == 0 ? "; did you mean " : i + 1 == fNear.size() ? " or " : ", ").append(fNear[i].name);
    return text.empty() ? text : text + "?";
}

std::string didYouMean(std::string_view wanted, const std::vector<std::string>& names)
{
    NearNames near(wanted);
    for (const std::string& name : names)
        near.consider(name);
    return near.didYouMean();
}

} // namespace krFrontend
