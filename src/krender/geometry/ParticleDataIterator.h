#pragma once
#include <krender/geometry/ParticleData.h>

#include <cstddef>
#include <cstdint>
#include <vector>

class GeometryData;

/// Walks the particles of a particle system, in the order of the streams or through a filter: a list of particle
/// numbers, such as the order by depth. All is borrowed.
class KRENDER_EXPORT ParticleDataIterator
{
public:
    /// As reset(), with one position a particle.
    ParticleDataIterator(const ParticleData& particles, const unsigned* filter, unsigned filterCount) noexcept;
    ParticleDataIterator(const ParticleDataIterator&) noexcept = default;
    ParticleDataIterator& operator=(const ParticleDataIterator&) noexcept = default;
    virtual ~ParticleDataIterator();

    /// Starts over, with the streams that the particles have now. What several positions a particle have set stays set for
    /// particles of one position: an iterator stays with particles of one kind.
    /// @param filter       particle numbers, borrowed until the next filter; null for all particles in order
    /// @param filterCount  length of the filter. Of particles with several positions as many are walked as there are
    ///                     velocities, with or without a filter; setFilter() sets the number.
    void reset(const ParticleData& particles, const unsigned* filter, unsigned filterCount) noexcept;
    /// Changes the filter without moving; null walks nothing.
    void setFilter(const unsigned* filter, unsigned filterCount) noexcept;
    /// Takes the particles' order by depth as the filter; without an order nothing is walked.
    void useParticleDataFilter() noexcept;

    void next() noexcept;
    [[nodiscard]] bool isDone() const noexcept { return fCurrent >= fCount; }
    [[nodiscard]] std::uint32_t current() const noexcept { return fCurrent; }
    [[nodiscard]] std::uint32_t count() const noexcept { return fCount; }
    [[nodiscard]] std::uint32_t positionsPerParticle() const noexcept { return fPositionsPerParticle; }
    /// The number of components of color(), 0 without colours.
    [[nodiscard]] std::uint32_t colorComponents() const noexcept { return fColorComponents; }

    /// The number of the current particle. Not to be asked when done, like what follows.
    [[nodiscard]] unsigned index() const noexcept { return fFilter ? fFilter[fCurrent] : fCurrent; }
    /// 3 x positionsPerParticle floats.
    [[nodiscard]] float* position() const noexcept
    {
        return valueAt(fPositions, std::size_t{3} * fPositionsPerParticle);
    }
    /// 3 floats.
    [[nodiscard]] float* velocity() const noexcept { return valueAt(fVelocities, 3); }
    /// 3 floats, null without normals.
    [[nodiscard]] float* normal() const noexcept { return valueAt(fNormals, 3); }
    /// colorComponents() floats, null without colours.
    [[nodiscard]] float* color() const noexcept { return valueAt(fColors, fColorComponents); }
    /// 1 float, null without colours: alpha refines a colour and is not looked at alone.
    [[nodiscard]] float* alpha() const noexcept { return fColors ? valueAt(fAlpha, 1) : nullptr; }
    /// The element of stream `k` for the current particle, null when there is no such stream.
    [[nodiscard]] void* userData(unsigned k) const noexcept;

private:
    /// The current particle's element of an array; null without one.
    [[nodiscard]] float* valueAt(float* array, std::size_t components) const noexcept
    {
        return array ? array + components * index() : nullptr;
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
