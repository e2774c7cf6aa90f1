#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

namespace krFrontend
{

/// A word by its number: equal words have equal numbers.
using Name = std::uint32_t;

/// The words of a set of sources, each kept once. The texts are borrowed from the sources.
class NameTable
{
public:
    /// Holds the keywords and type names, whose numbers come first.
    NameTable();

    Name intern(std::string_view text);
    [[nodiscard]] std::string_view text(Name name) const noexcept { return fTexts[name]; }
    /// How many words there are; names are numbered from 0 up to it.
    [[nodiscard]] std::size_t size() const noexcept { return fTexts.size(); }

private:
    void grow();

    std::vector<std::string_view> fTexts;
    std::vector<std::uint32_t> fHashes;
    std::vector<Name> fSlots; // open addressing; the size is a power of two
};

} // namespace krFrontend
