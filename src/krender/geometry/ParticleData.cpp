#include <krender/geometry/ParticleData.h>

#include <krender/core/Ref.h>
#include <krender/core/RefVector.h>
#include <krender/geometry/DepthSorter.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>
#include <krender/platform/String.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <utility>

ParticleData::ParticleData(const ParticleType& type, float size, GeometryData& positions, GeometryData& velocities,
                           GeometryData* normals, GeometryData* colors, GeometryData* alpha)
    : fParticleType(type), fSize(size)
{
    const auto keep = [this](const GeometryData& stream)
    {
        fStreams.append(Ref(&stream));
        return static_cast<int>(streams().size()) - 1;
    };
    keep(positions);
    keep(velocities);
    if (normals)
        fNormalStream = keep(*normals);
    if (colors)
        fColorStream = keep(*colors);
    if (alpha)
        fAlphaStream = keep(*alpha);
    fIndex = Ref<GeometryDataIndex>::adopt(
        new GeometryDataIndex(GeometryDataIndex::points, 0, streams(), nullptr, nullptr, nullptr));
}

ParticleData::~ParticleData() = default;

void ParticleData::setColor(const float* rgba) noexcept { std::copy_n(rgba, fColor.size(), fColor.begin()); }

const GeometryData* ParticleData::getData(unsigned i) const noexcept
{
    return i < streams().size() ? streams()[i] : nullptr;
}

unsigned ParticleData::getDataIndex(const krString::CString& name) const noexcept
{
    const auto found =
        std::find_if(streams().begin(), streams().end(),
                     [&name](const GeometryData* stream) { return krString::equal(name, stream->streamName()); });
    return found != streams().end() ? static_cast<unsigned>(found - streams().begin()) : 0xFFFFFFFFu;
}

void ParticleData::addData(const GeometryData& stream) { fStreams.append(Ref<const GeometryData>::adopt(&stream)); }

bool ParticleData::sortByDepth(const krLinear::ProjMatrix& m, const unsigned* filter, unsigned filterCount)
{
    const auto former = std::move(fSortOrder); // may be the filter
    removeSortByDepth();
    const GeometryData& positions = *streams()[static_cast<std::size_t>(positionStream())];
    fSortedCount = positions.count();
    if (fSortedCount == 0 || (filter && filterCount == 0))
        return false;

    // ParticleDataIterator::useParticleDataFilter() walks sortedCount entries, also after a sort of fewer.
    const unsigned ordered = filter ? filterCount : fSortedCount;
    const unsigned entries = std::max(ordered, fSortedCount);
    auto order = std::make_unique_for_overwrite<unsigned[]>(entries);
    std::fill(order.get() + ordered, order.get() + entries, 0u);
    fSorted = DepthSorter::sortByDepth(m, order.get(), fSortedCount, static_cast<const float*>(positions.data()),
                                       filter, filter ? filterCount : 0);
    if (fSorted)
        fSortOrder = std::move(order);
    return fSorted;
}

void ParticleData::removeSortByDepth() noexcept
{
    fSortOrder.reset();
    fSortedCount = 0;
    fSorted = false;
}

unsigned ceilPow2(unsigned n) noexcept { return n > 0x80000000u ? 0 : std::bit_ceil(n); }
