#include "krender/frontend/private/NearNames.h"

#include <algorithm>
#include <vector>

namespace krFrontend
{
namespace
{

constexpr std::size_t kLongest = 64; // names past it are not compared

/// The insertions, removals, replacements and exchanges of neighbours between two words (optimal string alignment).
std::size_t distance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> before(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        last[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i)
    {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j)
        {
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] != b[j - 1])});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
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
    if (candidate.empty() || candidate == fWanted || candidate.size() > kLongest || fWanted.size() > kLongest)
        return;
    const std::size_t found = distance(fWanted, candidate);
    if (found < fBestDistance || (fBest.empty() && found == fBestDistance && found < candidate.size()))
    {
        fBest = candidate;
        fBestDistance = found;
    }
}

} // namespace krFrontend
