#include <krender/geometry/GeometryDataIndex.h>

#include <krender/core/IHWMemoryObject.h>
#include <krender/core/IResource.h>
#include <krender/geometry/GeometryData.h>

#include <cstddef>
#include <cstring>

GeometryDataIndex::GeometryDataIndex(DrawPrimitiveType primitiveType, unsigned count,
                                     const std::vector<const GeometryData*>& data, unsigned* indices,
                                     const unsigned* rangeEnd, const unsigned* rangeStart)
    : fId(takeUniqueID()),
      fPrimitiveType(primitiveType),
      fCount(count),
      fIndices(indices),
      fRangeEnd(rangeEnd ? *rangeEnd : count),
      fRangeStart(rangeStart ? *rangeStart : 0),
      fData(data)
{
}

// Deliberate: without the guard of takeUniqueID() against 0, so a short list takes exactly what the generator holds.
GeometryDataIndex::GeometryDataIndex(DrawPrimitiveType primitiveType, unsigned count, unsigned* indices)
    : fId(fsUniqueIDGenerator++),
      fPrimitiveType(primitiveType),
      fCount(count),
      fIndices(indices),
      fRangeEnd(0),
      fRangeStart(0)
{
}

GeometryDataIndex::~GeometryDataIndex()
{
    if (fOwnsIndices)
        delete[] fIndices;
    deleteHanger();
    deleteDataHangers();
}

std::unique_ptr<unsigned[]> GeometryDataIndex::widenedIndices() const
{
    if (!fIndices)
        return nullptr;
    auto words = std::make_unique_for_overwrite<unsigned[]>(std::size_t{2} * fCount);
    for (std::size_t i = 0; i < fCount; ++i)
    {
        const std::uint64_t entry = fIndices[i];
        std::memcpy(&words[2 * i], &entry, sizeof entry);
    }
    return words;
}

void GeometryDataIndex::setHanger(IHWMemoryObject* hanger) const
{
    if (hanger == fHanger)
        return;
    deleteHanger();
    fHanger = hanger;
}

void GeometryDataIndex::deleteHanger() const
{
    if (fOwnsIndices)
        delete fHanger;
    fHanger = nullptr;
}

void GeometryDataIndex::deleteDataHangers() const
{
    for (const GeometryData* stream : fData)
        if (stream)
            stream->deleteHanger();
}
