#include "EqualVertices.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace
{

constexpr unsigned kFree = 0xffffffff;
constexpr unsigned kMostSteps = 256; ///< through the table, for one vertex

/// The bits of the values of each vertex, side by side.
class Rows
{
public:
    Rows(const PartArrays& part, std::span<const StreamSlot> slots)
    {
        for (const StreamSlot slot : slots)
            if (!part.values[slot].empty())
                fWidth += kStreamKinds[slot].components;
        fBits.resize(fWidth * part.vertexCount());
        std::size_t column = 0;
        for (const StreamSlot slot : slots)
            if (const std::vector<float>& values = part.values[slot]; !values.empty())
            {
                const std::size_t components = kStreamKinds[slot].components;
                for (std::size_t i = 0; i < values.size(); ++i) // adding 0 takes the sign of -0 away
                    fBits[i / components * fWidth + column + i % components] =
                        std::bit_cast<std::uint32_t>(values[i] + 0.0f);
                column += components;
            }
    }

    [[nodiscard]] std::span<const std::uint32_t> operator[](std::size_t vertex) const
    {
        return {fBits.data() + vertex * fWidth, fWidth};
    }

private:
    std::size_t fWidth = 0;
    std::vector<std::uint32_t> fBits;
};

std::uint64_t hashOf(std::span<const std::uint32_t> row)
{
    std::uint64_t hash = 0x9e3779b97f4a7c15;
    for (const std::uint32_t bits : row)
    {
        hash = (hash ^ bits) * 0xd6e8feb86659fd93;
        hash ^= hash >> 32;
    }
    return hash;
}

} // namespace

std::vector<unsigned> firstEqualVertices(const PartArrays& part, std::span<const StreamSlot> slots)
{
    const Rows rows(part, slots);
    const std::size_t count = part.vertexCount();
    std::vector<unsigned> table(std::bit_ceil(2 * count + 1), kFree);
    std::vector<unsigned> firsts(count);
    for (std::size_t vertex = 0; vertex < count; ++vertex)
    {
        const std::span<const std::uint32_t> row = rows[vertex];
        firsts[vertex] = static_cast<unsigned>(vertex);
        std::size_t place = hashOf(row) & (table.size() - 1);
        for (unsigned step = 0; step < kMostSteps; ++step, place = (place + 1) & (table.size() - 1))
        {
            if (table[place] == kFree)
            {
                table[place] = static_cast<unsigned>(vertex);
                break;
            }
            if (std::ranges::equal(rows[table[place]], row))
            {
                firsts[vertex] = table[place];
                break;
            }
        }
    }
    return firsts;
}
