#pragma once
#include <krender/Export.h>
#include <krender/core/IResource.h>
#include <krender/core/Ref.h>
#include <krender/core/RefVector.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>
#include <krender/platform/String.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

class GeometryData;

/// A particle system: its streams, the index list that draws them and, after a sort, their order from back to front.
class KRENDER_EXPORT ParticleData : public IResource
{
public:
    /// How the host draws the particles. The library only asks whether they are clustered.
    enum ParticleType : std::int32_t
    {
        single = 0,
        cluster = 1, ///< several positions and one velocity for each particle
        trail = 2,
        trailCluster = 3, ///< several positions and one velocity for each particle
    };

    /// Refs each stream that is given. All hold float32 components, one element for each particle.
    /// @param size        kept for the host
    /// @param positions   3 components; clustered particles have the same number of positions each
    /// @param velocities  3 components
    /// @param normals     3 components; null for none
    /// @param colors      any number of components; null for none
    /// @param alpha       1 component; null for none
    ParticleData(const ParticleType& type, float size, GeometryData& positions, GeometryData& velocities,
                 GeometryData* normals, GeometryData* colors, GeometryData* alpha);
    /// Unrefs the index list and all streams, added ones included.
    ~ParticleData() override;

    [[nodiscard]] ParticleType particleType() const noexcept { return fParticleType; }
    /// Whether each particle has several positions.
    [[nodiscard]] bool isClustered() const noexcept
    {
        return fParticleType == cluster || fParticleType == trailCluster;
    }
    [[nodiscard]] float size() const noexcept { return fSize; }
    /// RGBA, opaque white at first.
    [[nodiscard]] const std::array<float, 4>& color() const noexcept { return fColor; }
    /// @param rgba  four floats, copied
    void setColor(const float* rgba) noexcept;

    /// The index list that draws the particles, over the streams of the constructor: points, without indices. Borrowed.
    [[nodiscard]] GeometryDataIndex* index() const noexcept { return fIndex.get(); }
    /// Sets the primitive type of the index list.
    void setDrawType(GeometryDataIndex::DrawPrimitiveType type) noexcept { fIndex->setPrimitiveType(type); }

    /// Positions and velocities; normals, colours and alpha where given; then the streams of addData(). Borrowed.
    [[nodiscard]] const std::vector<const GeometryData*>& streams() const noexcept { return fStreams.pointers(); }
    /// The stream of this number; null when there is none. Borrowed.
    [[nodiscard]] const GeometryData* getData(unsigned i) const noexcept;
    /// The number of the first stream with this streamName(); 0xFFFFFFFF when there is none.
    [[nodiscard]] unsigned getDataIndex(const krString::CString& name) const noexcept;
    /// Appends a stream. Deliberate: it is adopted, unlike those of the constructor, and the index list does not get it.
    void addData(const GeometryData& stream);

    // The numbers of the streams; -1 where there is none.

    [[nodiscard]] int positionStream() const noexcept { return 0; }
    [[nodiscard]] int velocityStream() const noexcept { return 1; }
    [[nodiscard]] int normalStream() const noexcept { return fNormalStream; }
    [[nodiscard]] int colorStream() const noexcept { return fColorStream; }
    [[nodiscard]] int alphaStream() const noexcept { return fAlphaStream; }

    /// Sorts the positions by their depth as DepthSorter does, and keeps the order in place of an earlier one.
    /// @param filter       numbers of the positions to sort, borrowed for the call; null for all positions. With a filter
    ///                     the order holds places in the filter. The present sortOrder() may be the filter.
    /// @param filterCount  length of the filter
    /// @return             whether there is an order now. There is none without positions, without an array of them, and
    ///                     with an empty filter.
    bool sortByDepth(const krLinear::ProjMatrix& m, const unsigned* filter, unsigned filterCount);
    /// Drops the order.
    void removeSortByDepth() noexcept;
    /// The order from back to front; null when there is none. It has sortedCount() entries, or filterCount if that is more;
    /// after a filtered sort, the entries from filterCount on are 0.
    [[nodiscard]] const unsigned* sortOrder() const noexcept { return fSortOrder.get(); }
    /// The number of positions at the last sort, whether or not it was filtered; 0 after removeSortByDepth().
    [[nodiscard]] std::uint32_t sortedCount() const noexcept { return fSortedCount; }
    /// Whether there is an order.
    [[nodiscard]] bool sorted() const noexcept { return fSorted; }

protected:
    // For derived classes; the library only sets their first values.

    std::uint32_t fReserved = 0;
    bool fSpare = false;

private:
    ParticleType fParticleType;
    RefVector<const GeometryData> fStreams;
    std::unique_ptr<unsigned[]> fSortOrder;
    std::uint32_t fSortedCount = 0;
    bool fSorted = false;
    Ref<GeometryDataIndex> fIndex; // after the streams, which must outlive it
    float fSize;
    std::array<float, 4> fColor{1.0f, 1.0f, 1.0f, 1.0f};
    int fNormalStream = -1;
    int fColorStream = -1;
    int fAlphaStream = -1;
};

/// The smallest power of two that is not below `n`; 1 for 0, and 0 above 2^31, where 32 bits hold none.
[[nodiscard]] KRENDER_EXPORT unsigned ceilPow2(unsigned n) noexcept;
