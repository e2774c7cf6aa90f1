#pragma once
#include <string>
#include <string_view>

namespace krFrontend
{

/// Looks for the name that a mistyped one was meant to be.
class NearNames
{
public:
    explicit NearNames(std::string_view wanted) : fWanted(wanted), fBestDistance(wanted.size() / 3 + 1) {}

    void consider(std::string_view candidate);
    /// The nearest candidate, the first of equals; empty when none is near.
    [[nodiscard]] const std::string& best() const noexcept { return fBest; }

private:
    std::string_view fWanted;
    std::string fBest;
    std::size_t fBestDistance; // a candidate has to be nearer, or as near while there is none
};

} // namespace krFrontend
