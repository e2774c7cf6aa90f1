#pragma once
#include <krender/Export.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace krFrontend
{

/// Looks for the names that a mistyped one may have been meant to be, for messages: the front end's own, and a host's
/// about a material, a light or an input that it does not find.
class KRENDER_EXPORT NearNames
{
public:
    /// @param wanted  borrowed for the object's life
    explicit NearNames(std::string_view wanted) noexcept : fWanted(wanted) {}

    /// Takes a name that exists. It is near when two letters differ, or a third of the wanted name's, and no other is much
    /// nearer. Case plays no part, and two neighbours in the wrong order are one difference.
    void consider(std::string_view candidate);

    /// The nearest name, the first of equals; empty when none is near.
    [[nodiscard]] std::string best() const { return fNear.empty() ? std::string() : fNear.front().name; }
    /// The end of a message, such as "; did you mean a, b or c?", with the nearest names, three at most; empty when none
    /// is near.
    [[nodiscard]] std::string didYouMean() const;

private:
    struct Near
    {
        std::size_t distance;
        std::string name;
    };

    std::string_view fWanted;
    std::vector<Near> fNear; ///< the nearest first
};

/// NearNames::didYouMean() for a list of the names that there are.
[[nodiscard]] KRENDER_EXPORT std::string didYouMean(std::string_view wanted, const std::vector<std::string>& names);

} // namespace krFrontend
