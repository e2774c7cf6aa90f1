#include <krender/geometry/Geometry.h>

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/geometry/GeometryLogicalGroup.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <utility>

namespace
{

/// By GeometryDataIndex::DrawPrimitiveType: the indices of one primitive; 0 where a whole list is one primitive.
constexpr std::array<unsigned, 11> kIndicesPerPrimitive{0, 1, 2, 0, 0, 3, 0, 0, 4, 0, 0};
static_assert(kIndicesPerPrimitive.size() == GeometryDataIndex::polygon + 1);

unsigned numberOfPrimitives(const GeometryDataIndex& list) noexcept
{
    const auto type = list.primitiveType();
    if (type < GeometryDataIndex::points || type > GeometryDataIndex::polygon)
        return 0;
    const unsigned perPrimitive = kIndicesPerPrimitive[static_cast<std::size_t>(type)];
    return perPrimitive != 0 ? list.count() / perPrimitive : 1;
}

bool holdsPositive16BitValue(const GeometryData& stream) noexcept
{
    if (stream.count() == 0 || !stream.data())
        return false;
    std::int16_t value = 0;
    std::memcpy(&value, stream.data(), sizeof value);
    return value > 0;
}

/// Whether some group has the stream and it is not secondary.
bool anyGroupHas(const Geometry& geometry, GeometryData::DataType type, unsigned set) noexcept
{
    return std::any_of(geometry.groups().begin(), geometry.groups().end(),
                       [=](const auto& group)
                       { return group && group->geometryDataPtr(type, static_cast<int>(set), false); });
}

} // namespace

constinit int Geometry::fsNumInstances_Geometry = 0;

Geometry::Geometry() { ++fsNumInstances_Geometry; }

Geometry::~Geometry()
{
    reset();
    --fsNumInstances_Geometry;
}

unsigned Geometry::totalNumberOfPrimitives() const noexcept
{
    unsigned total = 0;
    for (const auto& group : fGroups)
        if (group)
            for (const GeometryDataIndex* list : group->indices())
                if (list)
                    total += numberOfPrimitives(*list);
    return total;
}

bool Geometry::indexTypeDiffers(GeometryDataIndex::DrawPrimitiveType type) const noexcept
{
    const auto differs = [type](const GeometryDataIndex* list) { return list && list->primitiveType() != type; };
    return std::any_of(fGroups.begin(), fGroups.end(),
                       [&](const auto& group)
                       { return group && std::any_of(group->indices().begin(), group->indices().end(), differs); });
}

bool Geometry::colorDataHasTransparency(unsigned colorSet) const
{
    std::array<char, 40> name{};
    std::snprintf(name.data(), name.size(), "colorSetTransparency_%d", static_cast<int>(colorSet));
    bool transparent = false;
    for (const auto& group : fGroups)
        if (group)
            if (const GeometryData* stream = group->geometryDataPtr(GeometryData::userData, name.data(), false))
                transparent = holdsPositive16BitValue(*stream);
    return transparent;
}

bool Geometry::hasColorPerVertexMask(unsigned colorSet) const noexcept
{
    return anyGroupHas(*this, GeometryData::colorPerVertexMask, colorSet);
}

bool Geometry::hasTangentSpaceCorrection(unsigned set) const noexcept
{
    return anyGroupHas(*this, GeometryData::tangentSpaceCorrection, set);
}

GeometryLogicalGroup* Geometry::createOrReuseLogicalGroup(const char* name)
{
    const auto matches = [name](const auto& group)
    {
        if (!group)
            return false;
        return group->name() == name || (name && group->name() && std::strcmp(group->name(), name) == 0);
    };
    const auto found = std::find_if(fGroups.begin(), fGroups.end(), matches);
    if (found != fGroups.end())
        return found->get();
    return fGroups.emplace_back(std::make_unique<GeometryLogicalGroup>(name)).get();
}

void Geometry::append(const char* name, const std::vector<const GeometryData*>& data,
                      const std::vector<const GeometryDataIndex*>& indices)
{
    fGroups.push_back(std::make_unique<GeometryLogicalGroup>(name, data, indices));
}

std::unique_ptr<GeometryLogicalGroup> Geometry::takeGroup(std::size_t slot) noexcept
{
    return slot < fGroups.size() ? std::move(fGroups[slot]) : nullptr;
}

void Geometry::reset()
{
    for (auto& group : fGroups)
        group.reset();
    fGroups.clear();
}

void Geometry::deleteGeometryCache(bool dataHangers, bool indexHangers) const
{
    for (const auto& group : fGroups)
        if (group)
            group->deleteHangers(dataHangers, indexHangers);
}
