#include <krender/geometry/GeometryDataIterator.h>

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

GeometryDataIterator::GeometryDataIterator(const GeometryDataIndex* index, const unsigned* textureSets) noexcept
{
    reset(index, textureSets);
}

void GeometryDataIterator::reset(const GeometryDataIndex* index, const unsigned* textureSets) noexcept
{
    fIndex = index;
    fPosition = 0;
    fCount = index ? index->count() : 0;
    fRangeBegin = 0;
    fRangeEnd = 0;
    fUseRange = false;
    fStreams.fill(nullptr);
    if (!index)
        return;

    for (const GeometryData* stream : index->data())
    {
        if (!stream)
            continue;
        switch (stream->dataType())
        {
        case GeometryData::vertex:
            setSlot(kVertex, *stream);
            break;
        case GeometryData::normal:
            setSlot(kNormal, *stream);
            break;
        case GeometryData::alternateNormal:
            setSlot(kAlternateNormal, *stream);
            break;
        case GeometryData::color:
            setSlot(kColor, *stream);
            break;
        case GeometryData::weight:
            setSlot(kWeight, *stream);
            break;
        case GeometryData::binormal:
            setSlot(kBinormal, *stream);
            break;
        case GeometryData::userData:
            setSlot(kUserData, *stream);
            break;
        case GeometryData::textureCoord:
            setSlotsBySet(kTextureCoord, kTextureCoord2, *stream, textureSets);
            break;
        case GeometryData::tangent:
            setSlotsBySet(kTangent, kTangent2, *stream, textureSets);
            break;
        case GeometryData::tangentSpaceCorrection:
        case GeometryData::colorPerVertexMask:
            break;
        }
    }
}

bool GeometryDataIterator::setRange(unsigned long begin, unsigned long end) noexcept
{
    fUseRange = end <= fCount;
    if (fUseRange)
    {
        fRangeBegin = begin;
        fRangeEnd = end;
    }
    return fUseRange;
}

void GeometryDataIterator::next() noexcept
{
    if (fPosition < end())
        ++fPosition;
}

unsigned long GeometryDataIterator::computeIndex(unsigned long elementSize) const noexcept
{
    return elementSize * entry();
}

void GeometryDataIterator::setSlot(Slot slot, const GeometryData& stream) noexcept
{
    fStreams[slot] = stream.data();
    fElementSizes[slot] = stream.elementSize();
}

void GeometryDataIterator::setSlotsBySet(Slot first, Slot second, const GeometryData& stream,
                                         const unsigned* textureSets) noexcept
{
    const auto set = static_cast<unsigned>(stream.setIndex);
    if (!textureSets || textureSets[0] == set)
        setSlot(first, stream);
    if (!textureSets || textureSets[1] == set)
        setSlot(second, stream);
}

std::uint64_t GeometryDataIterator::entry() const noexcept
{
    std::uint64_t result = 0;
    std::memcpy(&result, reinterpret_cast<const char*>(fIndex->indices()) + fPosition * sizeof result, sizeof result);
    return result;
}

float* GeometryDataIterator::value(Slot slot) const noexcept
{
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(fElementSizes[slot] * sizeof(float), entry(), &bytes))
        return nullptr;
    return static_cast<float*>(fStreams[slot]) + bytes / sizeof(float);
}
