#include <krender/geometry/ParticleDataIterator.h>

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/ParticleData.h>

#include <cstddef>
#include <cstdint>

namespace
{

float* floatsOf(const GeometryData& stream) noexcept { return static_cast<float*>(stream.data()); }

} // namespace

ParticleDataIterator::ParticleDataIterator(const ParticleData& particles, const unsigned* filter,
                                           unsigned filterCount) noexcept
{
    reset(particles, filter, filterCount);
}

ParticleDataIterator::~ParticleDataIterator() = default;

void ParticleDataIterator::reset(const ParticleData& particles, const unsigned* filter, unsigned filterCount) noexcept
{
    fCurrent = 0;
    fParticles = &particles;
    fFilter = filter;
    fStreams = &particles.streams();
    fStreamCount = static_cast<std::uint32_t>(fStreams->size());

    const auto stream = [this](int number) -> const GeometryData&
    { return *(*fStreams)[static_cast<std::size_t>(number)]; };
    const GeometryData& positions = stream(particles.positionStream());
    const GeometryData& velocities = stream(particles.velocityStream());
    if (particles.isClustered())
    {
        fCount = velocities.count();
        if (fCount != 0)
            fPositionsPerParticle = positions.count() / fCount;
    }
    else
        fCount = filter ? filterCount : positions.count();

    fPositions = floatsOf(positions);
    fVelocities = floatsOf(velocities);
    const bool hasColors = particles.colorStream() > 0;
    fNormals = particles.normalStream() > 0 ? floatsOf(stream(particles.normalStream())) : nullptr;
    fColors = hasColors ? floatsOf(stream(particles.colorStream())) : nullptr;
    fColorComponents = hasColors ? stream(particles.colorStream()).elementSize() : 0;
    fAlpha = particles.alphaStream() > 0 ? floatsOf(stream(particles.alphaStream())) : nullptr;
}

void ParticleDataIterator::setFilter(const unsigned* filter, unsigned filterCount) noexcept
{
    fFilter = filter;
    fCount = filter ? filterCount : 0;
}

void ParticleDataIterator::useParticleDataFilter() noexcept
{
    setFilter(fParticles->sortOrder(), fParticles->sortedCount());
}

void ParticleDataIterator::next() noexcept
{
    if (fCurrent < fCount)
        ++fCurrent;
}

void* ParticleDataIterator::userData(unsigned k) const noexcept
{
    if (k >= fStreamCount)
        return nullptr;
    const GeometryData& stream = *(*fStreams)[k];
    const std::size_t elementBytes =
        std::size_t{GeometryData::elementTypeSize(stream.elementType())} * stream.elementSize();
    return elementAt(stream.data(), elementBytes);
}

void* ParticleDataIterator::elementAt(void* array, std::size_t elementBytes) const noexcept
{
    std::size_t offset = 0;
    if (!array || __builtin_mul_overflow(elementBytes, index(), &offset))
        return nullptr;
    return static_cast<char*>(array) + offset;
}
