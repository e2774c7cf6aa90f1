#pragma once
#include <krender/frontend/SourceSet.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace krFrontend
{

/// The pieces in order, as one text.
[[nodiscard]] std::string concat(std::initializer_list<std::string_view> pieces);

/// Changes to a piece of source that leave the rest of its text as the writer laid it out.
class TextEdits
{
public:
    /// Puts text before a place, behind what was put there earlier: the outer of two expressions that begin together
    /// comes first.
    void insertBefore(Offset at, std::string text);
    /// Puts text behind what ends at a place, behind what was put there earlier: the inner of two expressions that end
    /// together comes first.
    void insertAfter(Offset at, std::string text);
    /// Replaces a range; of two that overlap the outer one stays.
    void replace(SourceRange range, std::string text);

    [[nodiscard]] bool empty() const noexcept { return fEdits.empty(); }
    /// The range of the source with the edits made, which all lie within it.
    [[nodiscard]] std::string apply(const SourceSet& sources, SourceRange range);

private:
    enum class Kind : std::uint8_t
    {
        After,
        Before,
        Replace,
    };
    struct Edit
    {
        SourceRange range;
        Kind kind;
        std::string text;
    };

    std::vector<Edit> fEdits;
};

} // namespace krFrontend
