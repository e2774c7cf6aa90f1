#include "krender/geometry/private/DepthOrder.h"

#include "krender/geometry/private/ScratchArray.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <numeric>
#include <utility>

namespace
{

/// A key in the upper half and its place in the lower one, so that both move as one word.
using Item = std::uint64_t;

constexpr unsigned kKeyBits = 32;

/// An integer that orders as the depth does. The addition turns -0 into 0. The bits of a negative number are inverted,
/// since they grow with its magnitude; any other number gets its top bit set, which puts it above them.
std::uint32_t keyOf(float depth) noexcept
{
    const auto bits = std::bit_cast<std::int32_t>(depth + 0.0f);
    const std::int32_t ones = bits >> 31; // all ones for a negative number, else 0; no branch on an unpredictable sign
    return static_cast<std::uint32_t>(bits ^ (ones | std::numeric_limits<std::int32_t>::min()));
}

Item makeItem(float depth, std::uint32_t place) noexcept { return Item{keyOf(depth)} << kKeyBits | place; }

std::uint32_t placeOf(Item item) noexcept { return static_cast<std::uint32_t>(item); }

/// Up to here the tables of a radix sort cost more than comparisons.
constexpr std::uint32_t kFew = 512;

void orderFew(const float* depths, std::uint32_t count, std::uint32_t* order) noexcept
{
    std::array<Item, kFew> items;
    for (std::uint32_t i = 0; i < count; ++i)
        items[i] = makeItem(depths[i], i);
    std::sort(items.begin(), items.begin() + count);
    std::transform(items.begin(), items.begin() + count, order, placeOf);
}

/// Distributes `count` items into the buckets of their digits.
/// @param next   the place of the next item of each bucket
/// @param digit  (item): the bucket's number
/// @param read   (i): the i-th item
/// @param write  (place, item): stores an item
template <class Buckets, class Digit, class Read, class Write>
void distribute(std::uint32_t count, Buckets& next, Digit digit, Read read, Write write) noexcept
{
    for (std::uint32_t i = 0; i < count; ++i)
    {
        const Item item = read(i);
        write(next[digit(item)]++, item);
    }
}

/// @tparam Width  bits of a digit: narrow digits have small tables, wide digits need fewer passes
template <unsigned Width>
void orderMany(const float* depths, std::uint32_t count, std::uint32_t* order)
{
    constexpr unsigned kDigits = (kKeyBits + Width - 1) / Width;
    constexpr std::uint32_t kMask = (1u << Width) - 1;

    std::array<std::array<std::uint32_t, kMask + 1>, kDigits> buckets{};
    for (std::uint32_t i = 0; i < count; ++i)
    {
        const std::uint32_t key = keyOf(depths[i]);
        for (unsigned digit = 0; digit < kDigits; ++digit)
            ++buckets[digit][key >> digit * Width & kMask];
    }

    // A digit that is the same in all keys needs no pass.
    std::array<unsigned, kDigits> digits{};
    unsigned passes = 0;
    for (unsigned digit = 0; digit < kDigits; ++digit)
    {
        auto& sizes = buckets[digit];
        if (sizes[keyOf(depths[0]) >> digit * Width & kMask] == count)
            continue;
        std::exclusive_scan(sizes.begin(), sizes.end(), sizes.begin(), 0u);
        digits[passes++] = digit;
    }

    const ScratchArray<Item> even(passes > 1 ? count : 0);
    const ScratchArray<Item> odd(passes > 2 ? count : 0);
    Item* source = odd.get();
    Item* target = even.get();
    for (unsigned pass = 0; pass < passes; ++pass)
    {
        const unsigned shift = kKeyBits + digits[pass] * Width;
        const auto digitOf = [shift](Item item) { return item >> shift & kMask; };
        const auto depth = [depths](std::uint32_t i) { return makeItem(depths[i], i); };
        const auto item = [source](std::uint32_t i) { return source[i]; };
        const auto toTarget = [target](std::uint32_t place, Item moved) { target[place] = moved; };
        const auto toOrder = [order](std::uint32_t place, Item moved) { order[place] = placeOf(moved); };

        auto& next = buckets[digits[pass]];
        const bool first = pass == 0;
        const bool last = pass + 1 == passes;
        if (first && last)
            distribute(count, next, digitOf, depth, toOrder);
        else if (first)
            distribute(count, next, digitOf, depth, toTarget);
        else if (last)
            distribute(count, next, digitOf, item, toOrder);
        else
            distribute(count, next, digitOf, item, toTarget);
        std::swap(source, target);
    }
}

} // namespace

void orderByDepth(const float* depths, std::uint32_t count, std::uint32_t* order)
{
    // Both checks end at the first pair that is out of order, so random depths pay little for them.
    const auto ascending = [](float a, float b) { return keyOf(a) < keyOf(b); };
    const auto notDescending = [](float a, float b) { return keyOf(a) <= keyOf(b); };
    if (std::is_sorted(depths, depths + count, ascending))
        std::iota(order, order + count, 0u);
    else if (std::adjacent_find(depths, depths + count, notDescending) == depths + count)
        for (std::uint32_t i = 0; i < count; ++i)
            order[i] = count - 1 - i;
    else if (count <= kFew)
        orderFew(depths, count, order);
    else if (count <= 2048)
        orderMany<8>(depths, count, order);
    else
        orderMany<11>(depths, count, order);
}
