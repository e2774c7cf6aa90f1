#include "Fountain.h"

#include "Streams.h"
#include "Vector3.h"

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/geometry/GeometryLogicalGroup.h>
#include <krender/geometry/ParticleDataIterator.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <vector>

namespace
{

constexpr const char* kFixedGroup = "fixed";
constexpr const char* kMovingGroup = "moving";
constexpr float kSize = 0.055f; // radius of a disc
constexpr unsigned kRim = 8;    // corners of a disc around its centre

constexpr float kLife = 1.9f; // seconds
constexpr float kGravity = 3.6f;
constexpr float kRise = 3.45f; // speed at the mouth
constexpr float kSpread = 0.5f;
constexpr float kMouth = -1.15f; // height

/// The direction from the centre of a disc to a corner of its rim, in the plane of the disc.
Vector3 rimDirection(unsigned corner)
{
    const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(corner) / kRim;
    return {std::cos(angle), std::sin(angle), 0};
}

/// A pseudo-random number from 0 to 1 for each particle and each `which`.
float numberOf(unsigned particle, unsigned which)
{
    std::uint32_t hash = particle * 0x9e3779b9u + which * 0x85ebca6bu;
    hash = (hash ^ (hash >> 15)) * 0x2c1b3c6du;
    hash = (hash ^ (hash >> 12)) * 0x297a2d39u;
    return static_cast<float>((hash ^ (hash >> 15)) >> 8) / static_cast<float>(1 << 24);
}

/// A stream of zeros.
/// @param count  particles
Ref<GeometryData> emptyStream(const char* name, GeometryData::DataType type, unsigned components, unsigned count)
{
    return Ref<GeometryData>::adopt(new GeometryData(name, type, GeometryData::float32, components, count,
                                                     new float[std::size_t{components} * count](), true, false));
}

} // namespace

Fountain::Fountain(unsigned count, Geometry& geometry) : fGeometry(geometry)
{
    const auto positions = emptyStream("position", GeometryData::vertex, 3, count);
    const auto velocities = emptyStream("velocity", GeometryData::userData, 3, count);
    const auto colours = emptyStream("color", GeometryData::color, 3, count);
    const auto alpha = emptyStream("alpha", GeometryData::userData, 1, count);
    fParticles = Ref<ParticleData>::adopt(
        new ParticleData(ParticleData::single, kSize, *positions, *velocities, nullptr, colours.get(), alpha.get()));

    // Only the positions and colours of the discs change; their triangles and texture coordinates stay.
    std::vector<float> textureCoords;
    std::vector<unsigned> entries;
    for (unsigned particle = 0; particle < count; ++particle)
    {
        const unsigned middle = particle * (kRim + 1);
        textureCoords.insert(textureCoords.end(), {0.5f, 0.5f});
        for (unsigned corner = 0; corner < kRim; ++corner)
        {
            const Vector3 direction = rimDirection(corner);
            textureCoords.insert(textureCoords.end(), {0.5f + 0.5f * direction.x, 0.5f + 0.5f * direction.y});
            entries.insert(entries.end(), {middle, middle + 1 + corner, middle + 1 + (corner + 1) % kRim});
        }
    }
    // The list names no streams: the moving ones are replaced in each frame and the list outlives them.
    fGeometry.createOrReuseLogicalGroup(kFixedGroup)
        ->appendData({newStream(kStreamKinds[kTextureCoords], textureCoords)},
                     {newList(GeometryDataIndex::triangles, {}, entries)});
}

AABoundingBox Fountain::bounds() { return {krLinear::PointFlt(-1, -1, -1), krLinear::PointFlt(1, 1, 1)}; }

void Fountain::update(double seconds, const krLinear::AffineMatrix& view)
{
    move(seconds);
    fParticles->sortByDepth(krLinear::ProjMatrix(view), nullptr, 0);
    writeDiscs(view);
}

void Fountain::move(double seconds)
{
    for (ParticleDataIterator particle(*fParticles, nullptr, 0); !particle.isDone(); particle.next())
    {
        const unsigned number = particle.index();
        const auto age = static_cast<float>(std::fmod(seconds + kLife * numberOf(number, 0), kLife));
        const float around = 2 * std::numbers::pi_v<float> * numberOf(number, 1);
        const float outwards = kSpread * std::sqrt(numberOf(number, 2));
        const float up = kRise * (0.85f + 0.15f * numberOf(number, 3));

        float* const velocity = particle.velocity();
        velocity[0] = outwards * std::cos(around);
        velocity[1] = up - kGravity * age;
        velocity[2] = outwards * std::sin(around);
        float* const position = particle.position();
        position[0] = velocity[0] * age;
        position[1] = kMouth + up * age - 0.5f * kGravity * age * age;
        position[2] = velocity[2] * age;
        // White foam turns into blue water and fades out.
        const float spent = age / kLife;
        float* const colour = particle.color();
        colour[0] = 0.95f - 0.8f * spent;
        colour[1] = 0.97f - 0.5f * spent;
        colour[2] = 1.0f;
        *particle.alpha() = 1 - spent * spent * spent;
    }
}

void Fountain::writeDiscs(const krLinear::AffineMatrix& view)
{
    const auto eyeAxis = [&view](unsigned column)
    {
        return Vector3{static_cast<float>(view(0, column)), static_cast<float>(view(1, column)),
                       static_cast<float>(view(2, column))};
    };
    const Vector3 right = eyeAxis(0);
    const Vector3 up = eyeAxis(1);
    const Vector3 towardsEye = eyeAxis(2);

    std::array<std::vector<float>, kStreamSlots> values;
    const auto add = [&values](StreamSlot slot, const Vector3& v) {
        values[slot].insert(values[slot].end(), {v.x, v.y, v.z});
    };
    ParticleDataIterator particle(*fParticles, nullptr, 0);
    for (particle.useParticleDataFilter(); !particle.isDone(); particle.next())
    {
        const float* position = particle.position();
        const float* colour = particle.color();
        const Vector3 middle{position[0], position[1], position[2]};
        for (unsigned corner = 0; corner <= kRim; ++corner)
        {
            const Vector3 flat = corner == 0 ? Vector3{} : rimDirection(corner - 1);
            const Vector3 outwards = right * flat.x + up * flat.y;
            add(kPositions, middle + outwards * fParticles->size());
            add(kNormals, normalized(outwards + towardsEye * 0.5f));
            add(kTangents, right);
            values[kColours].insert(values[kColours].end(), {colour[0], colour[1], colour[2], *particle.alpha()});
        }
    }

    GeometryLogicalGroup& group = *fGeometry.createOrReuseLogicalGroup(kMovingGroup);
    group.reset();
    std::vector<const GeometryData*> streams;
    for (const StreamSlot slot : {kPositions, kNormals, kTangents, kColours})
        streams.push_back(newStream(kStreamKinds[slot], values[slot]));
    group.appendData(streams, {});
}
