#include <krender/geometry/ParticleData.h>

#include <krender/geometry/DepthSorter.h>
#include <krender/geometry/GeometryData.h>

#include <algorithm>
#include <bit>

ParticleData::ParticleData(const ParticleType& type, float size, GeometryData& positions, GeometryData& velocities,
                           GeometryData* normals, GeometryData* colors, GeometryData* alpha)
    : fParticleType(type), fSize(size)
{
    const auto keep = [this](const GeometryData& stream)
    {
        stream.ref();
        fStreams.push_back(&stream);
        return static_cast<int>(fStreams.size()) - 1;
    };
    keep(positions);
    keep(velocities);
    if (normals)
        fNormalStream = keep(*normals);
    if (colors)
        fColorStream = keep(*colors);
    if (alpha)
        fAlphaStream = keep(*alpha);
    fIndex = new GeometryDataIndex(GeometryDataIndex::points, 0, fStreams, nullptr, nullptr, nullptr);
}

ParticleData::~ParticleData()
{
    fIndex->unref();
    for (const GeometryData* stream : fStreams)
        stream->unref();
}

void ParticleData::setColor(const float* rgba) noexcept { std::copy_n(rgba, fColor.size(), fColor.begin()); }

const GeometryData* ParticleData::getData(unsigned i) const noexcept
{
    return i < fStreams.size() ? fStreams[i] : nullptr;
}

unsigned ParticleData::getDataIndex(const krString::CString& name) const noexcept
{
    const auto found =
        std::find_if(fStreams.begin(), fStreams.end(),
                     [&name](const GeometryData* stream) { return krString::equal(name, stream->streamName()); });
    return found != fStreams.end() ? static_cast<unsigned>(found - fStreams.begin()) : 0xFFFFFFFFu;
}

bool ParticleData::sortByDepth(const krLinear::ProjMatrix& m, const unsigned* filter, unsigned filterCount)
{
    removeSortByDepth();
    const GeometryData& positions = *fStreams[static_cast<std::size_t>(positionStream())];
    fSortedCount = positions.count();
    if (fSortedCount == 0 || (filter && filterCount == 0))
        return false;

    // An iterator that takes the order as its filter walks sortedCount entries, also after a sort of fewer.
    const unsigned ordered = filter ? filterCount : fSortedCount;
    const unsigned entries = std::max(ordered, fSortedCount);
    fSortOrder = std::make_unique_for_overwrite<unsigned[]>(entries);
    std::fill(fSortOrder.get() + ordered, fSortOrder.get() + entries, 0u);
    fSorted = DepthSorter::sortByDepth(m, fSortOrder.get(), fSortedCount, static_cast<const float*>(positions.data()),
                                       filter, filter ? filterCount : 0);
    return fSorted;
}

void ParticleData::removeSortByDepth() noexcept
{
    fSortOrder.reset();
    fSortedCount = 0;
    fSorted = false;
}

unsigned ceilPow2(unsigned n) noexcept { return n > 0x80000000u ? 0 : std::bit_ceil(n); }
