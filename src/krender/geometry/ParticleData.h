#pragma once
#include <krender/core/IResource.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>
#include <krender/platform/String.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

class GeometryData;

/// A particle system: its streams, the list as which they are drawn and, on demand, the order from back to front.
class KRENDER_EXPORT ParticleData : public IResource
{
public:
    /// What a particle is made of, and how the host draws it. Only the number of positions matters here.
    enum ParticleType : std::int32_t
    {
        single = 0,
        cluster = 1, ///< several positions a particle, one velocity
        trail = 2,
        trailCluster = 3, ///< several positions a particle, one velocity
    };

    /// Takes a reference on each stream that is given. The element type of all is float32.
    /// @param size        kept for the host
    /// @param positions   3 components; for clusters a multiple of the number of velocities
    /// @param velocities  3 components
    /// @param normals     3 components; null for none
    /// @param colors      any number of components; null for none
    /// @param alpha       1 component; null for none
    ParticleData(const ParticleType& type, float size, GeometryData& positions, GeometryData& velocities,
                 GeometryData* normals, GeometryData* colors, GeometryData* alpha);
    /// Gives up the references on the index list and on all streams, added ones included.
    ~ParticleData() override;

    [[nodiscard]] ParticleType particleType() const noexcept { return fParticleType; }
    /// Whether a particle has several positions.
    [[nodiscard]] bool isClustered() const noexcept
    {
        return fParticleType == cluster || fParticleType == trailCluster;
    }
    [[nodiscard]] float size() const noexcept { return fSize; }
    /// RGBA, white at first.
    [[nodiscard]] const std::array<float, 4>& color() const noexcept { return fColor; }
    /// @param rgba  four floats, copied
    void setColor(const float* rgba) noexcept;

    /// The list as which the particles are drawn: points without indices over the streams of the constructor. Borrowed.
    [[nodiscard]] GeometryDataIndex* index() const noexcept { return fIndex; }
    /// Changes the primitive type of the list.
    void setDrawType(GeometryDataIndex::DrawPrimitiveType type) noexcept { fIndex->setPrimitiveType(type); }

    /// Positions, velocities, those given of normals, colours and alpha, then what addData() brought. Borrowed.
    [[nodiscard]] const std::vector<const GeometryData*>& streams() const noexcept { return fStreams; }
    /// The stream of this number, null when there is none. Borrowed.
    [[nodiscard]] const GeometryData* getData(unsigned i) const noexcept;
    /// The number of the first stream of this stream name, 0xFFFFFFFF when there is none.
    [[nodiscard]] unsigned getDataIndex(const krString::CString& name) const noexcept;
    /// Adopts a stream, unlike the constructor: the caller made it for these particles and is done with it. The index
    /// list goes without it.
    void addData(const GeometryData& stream) { fStreams.push_back(&stream); }

    /// The numbers of the streams; -1 where there is none.
    [[nodiscard]] int positionStream() const noexcept { return 0; }
    [[nodiscard]] int velocityStream() const noexcept { return 1; }
    [[nodiscard]] int normalStream() const noexcept { return fNormalStream; }
    [[nodiscard]] int colorStream() const noexcept { return fColorStream; }
    [[nodiscard]] int alphaStream() const noexcept { return fAlphaStream; }

    /// Orders the positions by their depth under `m` as DepthSorter does, and keeps the order.
    /// @param filter       numbers of the positions to be ordered, borrowed for the call; the order then holds places in
    ///                     the filter. Null for all positions.
    /// @param filterCount  length of the filter; with 0 and a filter nothing is ordered
    /// @return             whether there is an order now; without positions or filter entries there is none
    bool sortByDepth(const krLinear::ProjMatrix& m, const unsigned* filter, unsigned filterCount);
    /// Forgets the order.
    void removeSortByDepth() noexcept;
    /// The order, null when there is none. It holds sortedCount() entries, or as many as the filter had if these are more;
    /// entries past the filter's are 0.
    [[nodiscard]] const unsigned* sortOrder() const noexcept { return fSortOrder.get(); }
    /// The number of positions at the last sort, filtered or not.
    [[nodiscard]] std::uint32_t sortedCount() const noexcept { return fSortedCount; }
    [[nodiscard]] bool sorted() const noexcept { return fSorted; }

protected:
    /// A word and a mark for hosts that derive from this class; the library leaves them as they are.
    std::uint32_t fReserved = 0;
    bool fSpare = false;

private:
    ParticleType fParticleType;
    std::unique_ptr<unsigned[]> fSortOrder;
    std::uint32_t fSortedCount = 0;
    bool fSorted = false;
    GeometryDataIndex* fIndex; // one reference
    std::vector<const GeometryData*> fStreams;
    float fSize;
    std::array<float, 4> fColor{1.0f, 1.0f, 1.0f, 1.0f};
    int fNormalStream = -1;
    int fColorStream = -1;
    int fAlphaStream = -1;
};

/// The smallest power of two that is not below `n`, 1 for 0; 0 above 2^31, where there is none of 32 bits.
[[nodiscard]] KRENDER_EXPORT unsigned ceilPow2(unsigned n) noexcept;
