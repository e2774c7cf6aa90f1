#pragma once
#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Appends the lowest bytes of a number, the lowest first.
void appendLittle(std::string& bytes, std::uint32_t number, unsigned count);

/// The bytes that stand behind the JSON text of a page, and what the JSON text says of them: see the page's script.
class PageBytes
{
public:
    /// Adds a stream, rounded to 16 bits or, where that is too coarse, to 32; numbers that are not finite become the least one.
    /// @param coarsest  the greatest step between two numbers
    [[nodiscard]] nlohmann::ordered_json addStream(std::span<const float> values, unsigned components, double coarsest);
    /// Adds an index list.
    /// @param corners  entries of a primitive
    [[nodiscard]] nlohmann::ordered_json addList(std::span<const unsigned> entries, unsigned corners);
    /// Adds bytes as they are, where they can be read as whole numbers; the same ones as before are not added again.
    [[nodiscard]] nlohmann::ordered_json addBytes(std::string_view bytes);

    /// The JSON text and the bytes, deflated, as base64. Throws a std::length_error for more than 256 MB.
    [[nodiscard]] std::string packed(const nlohmann::ordered_json& json) const;

private:
    void align();
    /// Adds whole numbers, each component by itself, as the differences from one entry to the next.
    [[nodiscard]] std::size_t addWholes(const std::vector<std::uint32_t>& wholes, std::size_t components, bool isWide);

    std::string fBytes;
    std::vector<std::pair<std::size_t, std::size_t>> fParts; ///< added by addBytes(): where and how many
};
