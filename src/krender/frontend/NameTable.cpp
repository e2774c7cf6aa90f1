#include "krender/frontend/private/NameTable.h"

#include "krender/frontend/private/Lexer.h"

#include <span>
#include <string>

namespace krFrontend
{
namespace
{

constexpr Name kFree = 0xFFFFFFFFu;

std::uint32_t hashOf(std::string_view text) noexcept
{
    std::uint32_t hash = 2166136261u; // FNV-1a
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    return hash ^ (hash >> 15);
}

} // namespace

NameTable::NameTable() : fSlots(1024, kFree)
{
    for (const std::string_view word : fixedWords())
        intern(word);
}

Name NameTable::intern(std::string_view text)
{
    const std::uint32_t hash = hashOf(text);
    std::size_t slot = hash & (fSlots.size() - 1);
    for (; fSlots[slot] != kFree; slot = (slot + 1) & (fSlots.size() - 1))
        if (fHashes[fSlots[slot]] == hash && fTexts[fSlots[slot]] == text)
            return fSlots[slot];
    const Name name = static_cast<Name>(fTexts.size());
    fTexts.push_back(text);
    fHashes.push_back(hash);
    fSlots[slot] = name;
    if (2 * fTexts.size() > fSlots.size())
        grow();
    return name;
}

void NameTable::grow()
{
    fSlots.assign(2 * fSlots.size(), kFree);
    for (Name name = 0; name < fTexts.size(); ++name)
    {
        std::size_t slot = fHashes[name] & (fSlots.size() - 1);
        while (fSlots[slot] != kFree)
            slot = (slot + 1) & (fSlots.size() - 1);
        fSlots[slot] = name;
    }
}

} // namespace krFrontend
