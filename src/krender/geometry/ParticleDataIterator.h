#pragma once
#include <krender/Export.h>
#include <krender/geometry/ParticleData.h>

#include <cstddef>
#include <cstdint>
#include <vector>

class GeometryData;

/// Walks the particles of a particle system, in the order of the streams or through a filter: a list of particle
/// numbers, such as the order by depth. The particles and the filter are borrowed.
class KRENDER_EXPORT ParticleDataIterator
{
public:
    /// As reset(), with positionsPerParticle() 1 for particles that are not clustered.
    ParticleDataIterator(const ParticleData& particles, const unsigned* filter, unsigned filterCount) noexcept;
    ParticleDataIterator(const ParticleDataIterator&) noexcept = default;
    ParticleDataIterator& operator=(const ParticleDataIterator&) noexcept = default;
    virtual ~ParticleDataIterator();

    /// Starts over, with the streams that the particles have now. Deliberate: only clustered particles set
    /// positionsPerParticle(), so a reset from them to others leaves their number.
    /// @param filter       particle numbers, borrowed until the filter is changed; null for all particles in order
    /// @param filterCount  length of the filter. Deliberate: it is not used for clustered particles, of which as many are
    ///                     walked as there are velocities, so a filter for them has that many entries.
    void reset(const ParticleData& particles, const unsigned* filter, unsigned filterCount) noexcept;
    /// Changes the filter without moving. Null walks nothing, whatever `filterCount` is.
    void setFilter(const unsigned* filter, unsigned filterCount) noexcept;
    /// Makes the filter the particles' order by depth, with their sortedCount(); without an order nothing is walked. For
    /// unfiltered sorts only: after a filtered one the order holds places in the filter, and another number of them.
    void useParticleDataFilter() noexcept;

    /// Goes on to the next particle; at the end it stays.
    void next() noexcept;
    [[nodiscard]] bool isDone() const noexcept { return fCurrent >= fCount; }
    [[nodiscard]] std::uint32_t current() const noexcept { return fCurrent; }
    [[nodiscard]] std::uint32_t count() const noexcept { return fCount; }
    [[nodiscard]] std::uint32_t positionsPerParticle() const noexcept { return fPositionsPerParticle; }
    /// The number of components of color(), 0 without colours.
    [[nodiscard]] std::uint32_t colorComponents() const noexcept { return fColorComponents; }

    /// The number of the current particle. Not to be called when done, nor is any accessor below.
    [[nodiscard]] unsigned index() const noexcept { return fFilter ? fFilter[fCurrent] : fCurrent; }

    // The current particle's elements. Null without the stream or its array, and when the element's place is beyond what
    // size_t holds.

    /// 3 x positionsPerParticle() floats.
    [[nodiscard]] float* position() const noexcept
    {
        return valueAt(fPositions, std::size_t{3} * fPositionsPerParticle);
    }
    /// 3 floats.
    [[nodiscard]] float* velocity() const noexcept { return valueAt(fVelocities, 3); }
    /// 3 floats.
    [[nodiscard]] float* normal() const noexcept { return valueAt(fNormals, 3); }
    /// colorComponents() floats.
    [[nodiscard]] float* color() const noexcept { return valueAt(fColors, fColorComponents); }
    /// 1 float. Deliberate: null also without colours.
    [[nodiscard]] float* alpha() const noexcept { return fColors ? valueAt(fAlpha, 1) : nullptr; }
    /// The element of stream `k`, a number from 0. Streams that were added after the last reset() are not seen.
    [[nodiscard]] void* userData(unsigned k) const noexcept;

private:
    [[nodiscard]] void* elementAt(void* array, std::size_t elementBytes) const noexcept;
    [[nodiscard]] float* valueAt(float* array, std::size_t components) const noexcept
    {
        return static_cast<float*>(elementAt(array, components * sizeof(float)));
    }

    const ParticleData* fParticles = nullptr;
    const unsigned* fFilter = nullptr;
    std::uint32_t fCurrent = 0;
    std::uint32_t fCount = 0;
    std::uint32_t fPositionsPerParticle = 1;
    const std::vector<const GeometryData*>* fStreams = nullptr;
    std::uint32_t fStreamCount = 0;
    std::uint32_t fColorComponents = 0;
    float* fPositions = nullptr;
    float* fVelocities = nullptr;
    float* fNormals = nullptr;
    float* fColors = nullptr;
    float* fAlpha = nullptr;
};
